// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "recurringexpenses.h"

#include <QDialog>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLineEdit;
class QSpinBox;

// Adds or edits one recurring expense: its item, amount, category, place,
// step, first day, end and whether it asks first. OK keeps the dialog open
// with a warning while the expense cannot be kept as it is. Without a
// parent, as every dialog of the program (see Look).
class RecurringExpenseDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(RecurringExpenseDialog)

public:
    // `categories` are offered; another may be typed.
    RecurringExpenseDialog(const RecurringExpense &expense, const QStringList &categories);

    // What the fields say, with the id and progress of the expense given.
    RecurringExpense expense() const;

private:
    void acceptIfKept();
    void showEndFields();

    RecurringExpense given;
    QLineEdit *lineEditItem;
    QLineEdit *lineEditAmount;
    QComboBox *comboBoxCategory;
    QLineEdit *lineEditPlace;
    QSpinBox *spinBoxEvery;
    QComboBox *comboBoxUnit;
    QDateEdit *dateEditFirst;
    QComboBox *comboBoxEnd;
    QDateEdit *dateEditUntil;
    QSpinBox *spinBoxTimes;
    QCheckBox *checkBoxConfirm;
};
