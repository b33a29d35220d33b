// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "recurringexpensedialog.h"

#include "messageboxanswerer.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

namespace {

RecurringExpense electricity()
{
    RecurringExpense expense;
    expense.id = 7;
    expense.item = QStringLiteral("Electricity");
    expense.amount = 80.5;
    expense.category = QStringLiteral("Bills");
    expense.place = QStringLiteral("Power Co");
    expense.every = { 2, RecurrenceUnit::Month };
    expense.first = QDate(2026, 1, 31);
    expense.end.until = QDate(2026, 12, 31);
    expense.mode = PostingMode::Confirm;
    expense.done = 3;
    expense.next = QDate(2026, 7, 31);
    return expense;
}

void pick(QComboBox *combo, const QString &text)
{
    combo->setCurrentIndex(combo->findText(text));
}

} // namespace

class TestRecurringExpenseDialog : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void anExpenseToEditFillsEveryField();
    void onlyTheFieldOfTheChosenEndCanBeChanged();
    void theExpenseIsWhatTheFieldsSayWithItsNumberAndProgressKept();
    void okKeepsTheDialogOpenWhileTheExpenseCannotBeKept();
};

void TestRecurringExpenseDialog::anExpenseToEditFillsEveryField()
{
    RecurringExpenseDialog dialog(electricity(), { QStringLiteral("Bills"), QStringLiteral("Food") });
    QVERIFY(!dialog.parentWidget());
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Edit Recurring Expense"));
    QCOMPARE(child<QLineEdit>(dialog, "lineEditItem")->text(), QStringLiteral("Electricity"));
    QCOMPARE(child<QLineEdit>(dialog, "lineEditAmount")->text(), QStringLiteral("80.50"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxCategory")->currentText(), QStringLiteral("Bills"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxCategory")->count(), 2);
    QCOMPARE(child<QLineEdit>(dialog, "lineEditPlace")->text(), QStringLiteral("Power Co"));
    QCOMPARE(child<QSpinBox>(dialog, "spinBoxEvery")->value(), 2);
    QCOMPARE(child<QComboBox>(dialog, "comboBoxUnit")->currentText(), QStringLiteral("months"));
    QCOMPARE(child<QDateEdit>(dialog, "dateEditFirst")->date(), QDate(2026, 1, 31));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxEnd")->currentText(), QStringLiteral("On a last day"));
    QCOMPARE(child<QDateEdit>(dialog, "dateEditUntil")->date(), QDate(2026, 12, 31));
    QVERIFY(child<QCheckBox>(dialog, "checkBoxConfirm")->isChecked());
    for (const char *name : { "lineEditItem", "lineEditAmount", "comboBoxCategory", "dateEditFirst" })
        QVERIFY2(!child<QWidget>(dialog, QLatin1String(name))->accessibleName().isEmpty(), name);

    RecurringExpense fresh;
    fresh.first = QDate(2026, 5, 1);
    RecurringExpenseDialog adding(fresh, {});
    QCOMPARE(adding.windowTitle(), QStringLiteral("Add Recurring Expense"));
    QCOMPARE(child<QLineEdit>(adding, "lineEditAmount")->text(), QString());
    QCOMPARE(child<QComboBox>(adding, "comboBoxEnd")->currentText(), QStringLiteral("Never"));
    QVERIFY(!child<QCheckBox>(adding, "checkBoxConfirm")->isChecked());
}

void TestRecurringExpenseDialog::onlyTheFieldOfTheChosenEndCanBeChanged()
{
    RecurringExpenseDialog dialog(electricity(), {});
    auto *end = child<QComboBox>(dialog, "comboBoxEnd");
    auto *until = child<QDateEdit>(dialog, "dateEditUntil");
    auto *times = child<QSpinBox>(dialog, "spinBoxTimes");
    QVERIFY(until->isEnabled());
    QVERIFY(!times->isEnabled());
    pick(end, QStringLiteral("After a number of times"));
    QVERIFY(!until->isEnabled());
    QVERIFY(times->isEnabled());
    pick(end, QStringLiteral("Never"));
    QVERIFY(!until->isEnabled());
    QVERIFY(!times->isEnabled());
}

void TestRecurringExpenseDialog::theExpenseIsWhatTheFieldsSayWithItsNumberAndProgressKept()
{
    RecurringExpenseDialog dialog(electricity(), {});
    child<QLineEdit>(dialog, "lineEditItem")->setText(QStringLiteral("  Power  "));
    child<QLineEdit>(dialog, "lineEditAmount")->setText(QStringLiteral("95"));
    child<QComboBox>(dialog, "comboBoxCategory")->setCurrentText(QStringLiteral("Utilities"));
    child<QSpinBox>(dialog, "spinBoxEvery")->setValue(3);
    pick(child<QComboBox>(dialog, "comboBoxUnit"), QStringLiteral("weeks"));
    pick(child<QComboBox>(dialog, "comboBoxEnd"), QStringLiteral("After a number of times"));
    child<QSpinBox>(dialog, "spinBoxTimes")->setValue(4);
    child<QCheckBox>(dialog, "checkBoxConfirm")->setChecked(false);

    const RecurringExpense read = dialog.expense();
    QCOMPARE(read.id, 7);
    QCOMPARE(read.done, qint64(3));
    QCOMPARE(read.item, QStringLiteral("Power"));
    QCOMPARE(read.amount, 95.0);
    QCOMPARE(read.category, QStringLiteral("Utilities"));
    QCOMPARE(read.place, QStringLiteral("Power Co"));
    QCOMPARE(read.every, (Recurrence { 3, RecurrenceUnit::Week }));
    QCOMPARE(read.first, QDate(2026, 1, 31));
    QVERIFY(!read.end.until.isValid());
    QCOMPARE(read.end.times, 4);
    QCOMPARE(read.mode, PostingMode::Auto);
}

void TestRecurringExpenseDialog::okKeepsTheDialogOpenWhileTheExpenseCannotBeKept()
{
    RecurringExpenseDialog dialog(electricity(), {});
    dialog.show();
    child<QLineEdit>(dialog, "lineEditAmount")->setText(QStringLiteral("0"));
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Ok)->click();
    QVERIFY(answerer.waitForBoxes(1));
    QCOMPARE(answerer.texts(), QStringList({ "0.00 is no amount: an amount is above 0 and at most 9999999.99." }));
    QVERIFY(dialog.isVisible());

    child<QLineEdit>(dialog, "lineEditAmount")->setText(QStringLiteral("12.5"));
    child<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Ok)->click();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
}

QTEST_MAIN(TestRecurringExpenseDialog)
#include "tst_recurringexpensedialog.moc"
