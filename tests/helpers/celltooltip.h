// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QString>

class QAbstractItemView;

// Rests the pointer on the middle of a cell of `view`, as a user would to
// ask for its tool tip, and returns the tip shown: empty when none shows.
// The event goes to whatever lies there, a cell's label or the viewport.
QString toolTipOfCell(QAbstractItemView *view, int row, int column);

// Hides the tool tip shown, at once.
void hideToolTip();
