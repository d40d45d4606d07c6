#pragma once

#include <QCollator>
#include <QList>
#include <QString>
#include <QStringList>

// Names in the order people expect: a run of digits compares by its value, so
// "Track 2" comes before "Track 10", and letter case is ignored, so "a" and
// "A" are equal. The collation is the default locale's (the system's); the C
// locale has none of its own and orders by the common rules English uses.
class NaturalOrder {
public:
    NaturalOrder();

    // Below 0 when a comes first, 0 when they are equal, above 0 otherwise.
    int compare(const QString& a, const QString& b) const;

    // The positions (from 0) of the texts in natural order, ascending or
    // descending. The sort is stable: equal texts keep their order in either
    // direction.
    QList<int> order(const QStringList& texts, bool descending = false) const;

private:
    QCollator collator_;
};

// The texts in natural order, equal ones in the order given.
QStringList SortedNaturally(const QStringList& texts);
