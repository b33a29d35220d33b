// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "amount.h"

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
