// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "recurringexpenses.h"

#include <QDialog>
#include <QList>

class DatabaseManager;
class QTableWidget;

// The due occurrences of the recurring expenses that ask first: each with
// its day, item, category, an amount to correct (a bill that varies) and a
// tick box, ticked. "Post Ticked" posts the ticked ones at their amounts,
// "Skip Ticked" moves past them without an entry, and "Later" leaves every
// one for the next start. The dialog closes once no occurrence is left.
// Without a parent, as every dialog of the program (see Look); `store`
// outlives the dialog.
class DueExpensesDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(DueExpensesDialog)

public:
    DueExpensesDialog(DatabaseManager &store, const QList<Occurrence> &due);

    // How many occurrences were posted while the dialog showed.
    int postedCount() const { return posted; }

private:
    enum class Step { Post, Skip };
    void handleTicked(Step step);
    void showOccurrences();

    DatabaseManager &store;
    QList<Occurrence> occurrences;
    QTableWidget *tableWidgetDueExpenses = nullptr;
    int posted = 0;
};
