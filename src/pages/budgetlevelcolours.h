// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "budgets.h"

#include <QColor>
#include <QString>

// The colours that tell how far a budget has gone, the same wherever it is
// shown: green below 80 %, amber from 80 % to 100 %, red beyond. Each comes
// with the text colour that reads on it.
namespace BudgetLevelColours {

QColor background(BudgetLevel level);
QColor text(BudgetLevel level);
// A style sheet rule body for a widget showing `level`: its background and
// text colours.
QString styleSheet(BudgetLevel level);

} // namespace BudgetLevelColours
