// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "amount.h"

#include <QCoreApplication>

#include <cmath>

bool Amount::isTooLarge(const QString &text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    // Digits beyond what a double holds read as infinity, and as no number.
    if (std::isinf(value))
        return true;
    return isNumber && value > largest;
}

QString Amount::tooLargeMessage()
{
    return QCoreApplication::translate("Amount", "Amount is too large. Enter a smaller amount");
}

QRegularExpression Amount::pattern(Point point)
{
    return QRegularExpression(point == Point::Required ? QStringLiteral("[0-9]+\\.[0-9]{0,2}")
                                                       : QStringLiteral("[0-9]+(\\.[0-9]{0,2})?"));
}
