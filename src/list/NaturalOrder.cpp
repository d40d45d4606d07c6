#include "list/NaturalOrder.h"

#include <QLocale>
#include <algorithm>
#include <numeric>
#include <vector>

namespace {

// The C locale collates by code points and ignores the numeric mode.
QLocale collationLocale() {
    const QLocale locale;
    return locale.language() == QLocale::C ? QLocale(QLocale::English) : locale;
}

}  // namespace

NaturalOrder::NaturalOrder() : collator_(collationLocale()) {
    collator_.setNumericMode(true);
    collator_.setCaseSensitivity(Qt::CaseInsensitive);
}

int NaturalOrder::compare(const QString& a, const QString& b) const {
    return collator_.compare(a, b);
}

QList<int> NaturalOrder::order(const QStringList& texts, bool descending) const {
    // Each text's sort key is made once; comparing two keys is much cheaper
    // than collating the two texts again at every step of the sort.
    std::vector<QCollatorSortKey> keys;
    keys.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString& text : texts) {
        keys.push_back(collator_.sortKey(text));
    }
    QList<int> positions(texts.size());
    std::iota(positions.begin(), positions.end(), 0);
    std::stable_sort(positions.begin(), positions.end(), [&](int a, int b) {
        const int c = keys[static_cast<std::size_t>(a)].compare(keys[static_cast<std::size_t>(b)]);
        return descending ? c > 0 : c < 0;
    });
    return positions;
}

QStringList SortedNaturally(const QStringList& texts) {
    QStringList sorted;
    sorted.reserve(texts.size());
    for (int position : NaturalOrder().order(texts)) {
        sorted.append(texts.at(position));
    }
    return sorted;
}
