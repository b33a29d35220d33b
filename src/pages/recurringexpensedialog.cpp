// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "recurringexpensedialog.h"

#include "amount.h"
#include "budgets.h"
#include "notice.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QSpinBox>

namespace {

enum EndKind { Never, OnADay, AfterTimes };

} // namespace

RecurringExpenseDialog::RecurringExpenseDialog(const RecurringExpense &expense, const QStringList &categories)
    : QDialog(nullptr), given(expense)
{
    setObjectName(QStringLiteral("RecurringExpenseDialog"));
    setWindowTitle(expense.id > 0 ? tr("Edit Recurring Expense") : tr("Add Recurring Expense"));
    setWindowModality(Qt::ApplicationModal);
    auto *form = new QFormLayout(this);
    const auto addRow = [&](const QString &label, QWidget *field, const char *name) {
        field->setObjectName(QLatin1String(name));
        // Named by the caption beside it, for a screen reader.
        field->setAccessibleName(label);
        form->addRow(label, field);
    };

    lineEditItem = new QLineEdit(expense.item, this);
    addRow(tr("Item"), lineEditItem, "lineEditItem");
    lineEditAmount = new QLineEdit(expense.amount > 0 ? Budgets::money(expense.amount) : QString(), this);
    lineEditAmount->setValidator(new QRegularExpressionValidator(Amount::pattern(Amount::Point::Optional), this));
    addRow(tr("Amount"), lineEditAmount, "lineEditAmount");
    comboBoxCategory = new QComboBox(this);
    comboBoxCategory->setEditable(true);
    comboBoxCategory->addItems(categories);
    comboBoxCategory->setCurrentText(expense.category);
    addRow(tr("Category"), comboBoxCategory, "comboBoxCategory");
    lineEditPlace = new QLineEdit(expense.place, this);
    addRow(tr("Place"), lineEditPlace, "lineEditPlace");

    spinBoxEvery = new QSpinBox(this);
    spinBoxEvery->setRange(1, RecurrenceDates::largestCount);
    spinBoxEvery->setValue(qBound(1, expense.every.count, RecurrenceDates::largestCount));
    addRow(tr("Every"), spinBoxEvery, "spinBoxEvery");
    comboBoxUnit = new QComboBox(this);
    comboBoxUnit->addItem(tr("days"), int(RecurrenceUnit::Day));
    comboBoxUnit->addItem(tr("weeks"), int(RecurrenceUnit::Week));
    comboBoxUnit->addItem(tr("months"), int(RecurrenceUnit::Month));
    comboBoxUnit->addItem(tr("years"), int(RecurrenceUnit::Year));
    comboBoxUnit->setCurrentIndex(comboBoxUnit->findData(int(expense.every.unit)));
    addRow(tr("Unit"), comboBoxUnit, "comboBoxUnit");

    dateEditFirst = new QDateEdit(expense.first.isValid() ? expense.first : QDate::currentDate(), this);
    dateEditFirst->setCalendarPopup(true);
    dateEditFirst->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    addRow(tr("First day"), dateEditFirst, "dateEditFirst");
    comboBoxEnd = new QComboBox(this);
    comboBoxEnd->addItem(tr("Never"), Never);
    comboBoxEnd->addItem(tr("On a last day"), OnADay);
    comboBoxEnd->addItem(tr("After a number of times"), AfterTimes);
    addRow(tr("Ends"), comboBoxEnd, "comboBoxEnd");
    dateEditUntil =
        new QDateEdit(expense.end.until.isValid() ? expense.end.until : dateEditFirst->date().addYears(1), this);
    dateEditUntil->setCalendarPopup(true);
    dateEditUntil->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    addRow(tr("Last day"), dateEditUntil, "dateEditUntil");
    spinBoxTimes = new QSpinBox(this);
    spinBoxTimes->setRange(1, 9999);
    spinBoxTimes->setValue(expense.end.times > 0 ? expense.end.times : 12);
    addRow(tr("Times"), spinBoxTimes, "spinBoxTimes");
    comboBoxEnd->setCurrentIndex(expense.end.until.isValid() ? OnADay : expense.end.times > 0 ? AfterTimes : Never);

    checkBoxConfirm = new QCheckBox(tr("Ask before posting (a bill whose amount varies)"), this);
    checkBoxConfirm->setObjectName(QStringLiteral("checkBoxConfirm"));
    checkBoxConfirm->setChecked(expense.mode == PostingMode::Confirm);
    form->addRow(checkBoxConfirm);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttonBox"));
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &RecurringExpenseDialog::acceptIfKept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(comboBoxEnd, &QComboBox::currentIndexChanged, this, &RecurringExpenseDialog::showEndFields);
    showEndFields();
}

void RecurringExpenseDialog::showEndFields()
{
    const int kind = comboBoxEnd->currentData().toInt();
    dateEditUntil->setEnabled(kind == OnADay);
    spinBoxTimes->setEnabled(kind == AfterTimes);
}

RecurringExpense RecurringExpenseDialog::expense() const
{
    RecurringExpense expense = given;
    expense.item = lineEditItem->text().trimmed();
    expense.amount = lineEditAmount->text().toDouble();
    expense.category = comboBoxCategory->currentText().trimmed();
    expense.place = lineEditPlace->text().trimmed();
    expense.every = { spinBoxEvery->value(), RecurrenceUnit(comboBoxUnit->currentData().toInt()) };
    expense.first = dateEditFirst->date();
    const int kind = comboBoxEnd->currentData().toInt();
    expense.end.until = kind == OnADay ? dateEditUntil->date() : QDate();
    expense.end.times = kind == AfterTimes ? spinBoxTimes->value() : 0;
    expense.mode = checkBoxConfirm->isChecked() ? PostingMode::Confirm : PostingMode::Auto;
    return expense;
}

void RecurringExpenseDialog::acceptIfKept()
{
    const QString problem = RecurringExpenses::problem(expense());
    if (!problem.isEmpty()) {
        Notice::warn(problem);
        return;
    }
    accept();
}
