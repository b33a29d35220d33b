// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QRegularExpression>
#include <QString>

// The amounts Ledgerly takes for a price, wherever one is typed (the
// new-entry page, the entry table's price editor): at most 9,999,999.99 and
// a number that a single-precision price can hold.
class Amount
{
public:
    static constexpr double largest = 9999999.99;

    // Whether a typed amount (digits, a point, up to two decimals, as the
    // amount fields take them) is beyond what a price may be. Text that is
    // no number at all is not too large: it reads as 0, as it always has.
    static bool isTooLarge(const QString &text);
    // What a refused amount is told with.
    static QString tooLargeMessage();

    // What an amount field lets be typed: digits and a point, then up to two
    // decimals. Where the point is required (the new-entry page) "12" stays
    // an intermediate input; the entry table, which shows stored prices,
    // also takes a whole number.
    enum class Point { Required, Optional };
    static QRegularExpression pattern(Point point);
};
