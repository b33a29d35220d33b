// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "budgetlevelcolours.h"

QColor BudgetLevelColours::background(BudgetLevel level)
{
    switch (level) {
    case BudgetLevel::Nearing:
        return QColor(255, 191, 0); // amber
    case BudgetLevel::Over:
        return QColor(198, 40, 40); // red
    case BudgetLevel::Below:
        break;
    }
    return QColor(27, 94, 32); // green
}

QColor BudgetLevelColours::text(BudgetLevel level)
{
    // Black reads on amber, white on the darker green and red.
    return level == BudgetLevel::Nearing ? QColor(Qt::black) : QColor(Qt::white);
}

QString BudgetLevelColours::styleSheet(BudgetLevel level)
{
    return QStringLiteral("background-color: %1; color: %2;")
        .arg(background(level).name(), text(level).name());
}
