#include "list/SortList.h"

#include <QDateTime>
#include <algorithm>
#include <numeric>
#include <optional>
#include <vector>

#include "list/CellValues.h"
#include "list/Columns.h"
#include "list/MainModel.h"
#include "list/NaturalOrder.h"

namespace {

// What a column holds, and so how it sorts.
enum class SortBy { Text, Kilobytes, Date, Year, Seconds, Kbps, Hertz, VideoSize };

SortBy sortByOf(ListType type, int column) {
    if (column == SharedCell::Filesize) {
        return SortBy::Kilobytes;
    }
    if (column == SharedCell::DateModified) {
        return SortBy::Date;
    }
    if (type == ListType::Mp3) {
        switch (column) {
            case Mp3Cell::Year:
                return SortBy::Year;
            case Mp3Cell::Duration:
                return SortBy::Seconds;
            case Mp3Cell::Bitrate:
                return SortBy::Kbps;
            case Mp3Cell::Hertz:
                return SortBy::Hertz;
            default:
                return SortBy::Text;
        }
    }
    // Every type but MP3 has the MPEG columns.
    switch (column) {
        case MpegCell::VideoSize:
            return SortBy::VideoSize;
        case MpegCell::Duration:
            return SortBy::Seconds;
        default:
            return SortBy::Text;
    }
}

// The value of a cell as the sort compares it: by the first figure, then by
// the second. A cell without a value comes before every cell with one.
struct SortValue {
    bool known = false;
    double first = 0;
    double second = 0;

    int compare(const SortValue& other) const {
        if (known != other.known) {
            return known ? 1 : -1;
        }
        if (first != other.first) {
            return first < other.first ? -1 : 1;
        }
        if (second != other.second) {
            return second < other.second ? -1 : 1;
        }
        return 0;
    }
};

SortValue valueOf(const CellValues& values, SortBy by, QStringView cell) {
    const auto one = [](std::optional<double> value) {
        return value ? SortValue{true, *value, 0} : SortValue{};
    };
    switch (by) {
        case SortBy::Kilobytes:
            return one(values.kilobytes(cell));
        case SortBy::Seconds:
            return one(values.seconds(cell));
        case SortBy::Kbps:
            return one(values.kbps(cell));
        case SortBy::Year: {
            const std::optional<qint64> year = values.year(cell);
            return year ? SortValue{true, static_cast<double>(*year), 0} : SortValue{};
        }
        case SortBy::Date: {
            const std::optional<qint64> date = values.dateModifiedOrder(cell);
            return date ? SortValue{true, static_cast<double>(*date), 0} : SortValue{};
        }
        case SortBy::Hertz: {
            const std::optional<HertzValue> hertz = values.hertz(cell);
            return hertz ? SortValue{true, hertz->rate, static_cast<double>(hertz->channels)}
                         : SortValue{};
        }
        case SortBy::VideoSize: {
            const std::optional<VideoSizeValue> size = values.videoSize(cell);
            return size ? SortValue{true, static_cast<double>(size->width),
                                    static_cast<double>(size->height)}
                        : SortValue{};
        }
        case SortBy::Text:
            break;
    }
    return SortValue{};
}

// The positions (from 0) of the rows in the order of their values.
QList<int> valueOrder(const ItemList& items, int column, SortBy by, bool descending) {
    const int rows = items.count();
    const CellValues values;
    std::vector<SortValue> keys;
    keys.reserve(static_cast<std::size_t>(rows));
    for (int i = 1; i <= rows; ++i) {
        keys.push_back(valueOf(values, by, items.cellView(i, column)));
    }
    QList<int> positions(rows);
    std::iota(positions.begin(), positions.end(), 0);
    std::stable_sort(positions.begin(), positions.end(), [&](int a, int b) {
        const int c = keys[static_cast<std::size_t>(a)].compare(keys[static_cast<std::size_t>(b)]);
        return descending ? c > 0 : c < 0;
    });
    return positions;
}

// The positions (from 0) of the rows in the natural order of their texts.
QList<int> textOrder(const ItemList& items, int column, bool descending) {
    QStringList texts;
    texts.reserve(items.count());
    for (int i = 1; i <= items.count(); ++i) {
        texts.append(items.cell(i, column));
    }
    return NaturalOrder().order(texts, descending);
}

}  // namespace

void SortList(MainModel& model, int column, int order) {
    ItemList& items = model.items;
    if (items.count() < 2) {
        return;
    }
    const bool descending = order == 1;
    const SortBy by = sortByOf(model.state.type(), column);
    const QList<int> sorted = by == SortBy::Text ? textOrder(items, column, descending)
                                                 : valueOrder(items, column, by, descending);
    QList<int> positions;
    positions.reserve(sorted.size());
    for (int index : sorted) {
        positions.append(index + 1);
    }
    items.reorder(positions);
}
