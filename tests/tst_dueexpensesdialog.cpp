// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "dueexpensesdialog.h"
#include "recurringexpenses.h"

#include "messageboxanswerer.h"
#include "rawdatabase.h"
#include "temphome.h"
#include "widgettest.h"

#include <QHeaderView>
#include <QProcess>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {

struct Fixture
{
    TempHome home;
    DatabaseManager store { nullptr };

    // Electricity from 20 Jan and water from 10 Feb, both asking first, and
    // rent, which does not: due on 28 Feb are electricity on 20 Jan and
    // 20 Feb and water on 10 Feb.
    QList<Occurrence> dueOccurrences()
    {
        RecurringExpenses recurring(store);
        for (const auto &[item, amount, category, first, mode] :
             { std::tuple("Electricity", 80.0, "Bills", QDate(2026, 1, 20), PostingMode::Confirm),
               std::tuple("Water", 35.5, "Bills", QDate(2026, 2, 10), PostingMode::Confirm),
               std::tuple("Rent", 950.0, "Housing", QDate(2026, 1, 1), PostingMode::Auto) }) {
            RecurringExpense expense;
            expense.item = QString::fromLatin1(item);
            expense.amount = amount;
            expense.category = QString::fromLatin1(category);
            expense.every = { 1, RecurrenceUnit::Month };
            expense.first = first;
            expense.mode = mode;
            if (recurring.add(expense) <= 0)
                qWarning("not added: %s", item);
        }
        QList<Occurrence> asking;
        for (const Occurrence &occurrence : recurring.due(QDate(2026, 2, 28), true))
            if (occurrence.mode == PostingMode::Confirm)
                asking << occurrence;
        return asking;
    }

    // "date item price", oldest first, read on a connection of the test's.
    QStringList entries()
    {
        RawDatabase raw(home.databasePath());
        QStringList lines;
        for (const QVariantList &row : raw.rows(QStringLiteral("SELECT TransactDateTime, ItemName, Price FROM Entry "
                                                               "ORDER BY TransactDateTime, SNo")))
            lines << QStringLiteral("%1 %2 %3")
                         .arg(row.at(0).toString(), row.at(1).toString(),
                              QString::number(row.at(2).toDouble(), 'f', 2));
        return lines;
    }

    QString nextDate(const QString &item)
    {
        RawDatabase raw(home.databasePath());
        return raw.scalar(QStringLiteral("SELECT NextDate FROM RecurringExpense WHERE ItemName = '%1'").arg(item))
            .toString();
    }
};

QTableWidget *table(const QDialog &dialog)
{
    return child<QTableWidget>(dialog, "tableWidgetDueExpenses");
}

QList<QStringList> rows(const QDialog &dialog)
{
    QList<QStringList> shown;
    QTableWidget *due = table(dialog);
    for (int row = 0; row < due->rowCount(); ++row) {
        QStringList cells = { due->item(row, 0)->checkState() == Qt::Checked ? QStringLiteral("ticked")
                                                                             : QStringLiteral("unticked") };
        for (int column = 1; column < due->columnCount(); ++column)
            cells << due->item(row, column)->text();
        shown << cells;
    }
    return shown;
}

void click(const QDialog &dialog, const char *button)
{
    QTest::mouseClick(child<QPushButton>(dialog, QLatin1String(button)), Qt::LeftButton);
}

} // namespace

class TestDueExpensesDialog : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void listsEachDueOccurrenceTickedWithAnEditableAmount();
    void postTickedPostsTheTickedOnesAtTheirAmountsAndKeepsTheOthers();
    void skipTickedMovesOnWithoutAnEntryAndClosesWhenNoneIsLeft();
    void laterLeavesEveryOccurrenceForTheNextStart();
    void aTickedOccurrenceWaitsForAnUntickedEarlierOneOfItsExpense();
    void anAmountThatIsNoAmountIsRefusedAndNothingIsPosted();
    void whatAnotherProgramPostedMeanwhileIsNotPostedAgain();
};

void TestDueExpensesDialog::listsEachDueOccurrenceTickedWithAnEditableAmount()
{
    Fixture f;
    DueExpensesDialog dialog(f.store, f.dueOccurrences());
    dialog.show();
    QVERIFY(!dialog.parentWidget());
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Due Expenses"));
    QStringList headings;
    for (int column = 0; column < table(dialog)->columnCount(); ++column)
        headings << table(dialog)->horizontalHeaderItem(column)->text();
    QCOMPARE(headings, QStringList({ "Post", "Date", "Item", "Category", "Amount" }));
    QCOMPARE(rows(dialog),
             QList<QStringList>({ { "ticked", "Tue Jan 20 2026", "Electricity", "Bills", "80.00" },
                                  { "ticked", "Tue Feb 10 2026", "Water", "Bills", "35.50" },
                                  { "ticked", "Fri Feb 20 2026", "Electricity", "Bills", "80.00" } }));
    QVERIFY(table(dialog)->item(0, 4)->flags() & Qt::ItemIsEditable);
    QVERIFY(!(table(dialog)->item(0, 2)->flags() & Qt::ItemIsEditable));
    QCOMPARE(child<QPushButton>(dialog, "pushButtonPostTicked")->text(), QStringLiteral("Post Ticked"));
    QCOMPARE(child<QPushButton>(dialog, "pushButtonSkipTicked")->text(), QStringLiteral("Skip Ticked"));
    QCOMPARE(child<QPushButton>(dialog, "pushButtonLater")->text(), QStringLiteral("Later"));
}

void TestDueExpensesDialog::postTickedPostsTheTickedOnesAtTheirAmountsAndKeepsTheOthers()
{
    Fixture f;
    DueExpensesDialog dialog(f.store, f.dueOccurrences());
    dialog.show();
    // January's bill said 93.47; the water waits.
    table(dialog)->item(0, 4)->setText(QStringLiteral("93.47"));
    table(dialog)->item(1, 0)->setCheckState(Qt::Unchecked);
    table(dialog)->item(2, 4)->setText(QStringLiteral("71"));
    click(dialog, "pushButtonPostTicked");

    QCOMPARE(f.entries(),
             QStringList({ "2026-01-20T00:00:00 Electricity 93.47", "2026-02-20T00:00:00 Electricity 71.00" }));
    QCOMPARE(f.nextDate(QStringLiteral("Electricity")), QStringLiteral("2026-03-20"));
    QCOMPARE(dialog.postedCount(), 2);
    // The water stays, unticked, and the dialog with it.
    QVERIFY(dialog.isVisible());
    QCOMPARE(rows(dialog), QList<QStringList>({ { "unticked", "Tue Feb 10 2026", "Water", "Bills", "35.50" } }));

    table(dialog)->item(0, 0)->setCheckState(Qt::Checked);
    click(dialog, "pushButtonPostTicked");
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(f.entries().size(), 3);
    QCOMPARE(f.nextDate(QStringLiteral("Water")), QStringLiteral("2026-03-10"));
}

void TestDueExpensesDialog::skipTickedMovesOnWithoutAnEntryAndClosesWhenNoneIsLeft()
{
    Fixture f;
    DueExpensesDialog dialog(f.store, f.dueOccurrences());
    dialog.show();
    click(dialog, "pushButtonSkipTicked");
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.postedCount(), 0);
    QCOMPARE(f.entries(), QStringList());
    QCOMPARE(f.nextDate(QStringLiteral("Electricity")), QStringLiteral("2026-03-20"));
    QCOMPARE(f.nextDate(QStringLiteral("Water")), QStringLiteral("2026-03-10"));
}

void TestDueExpensesDialog::laterLeavesEveryOccurrenceForTheNextStart()
{
    Fixture f;
    const QList<Occurrence> due = f.dueOccurrences();
    RawDatabase raw(f.home.databasePath());
    const QStringList before = raw.dumpTables();
    DueExpensesDialog dialog(f.store, due);
    dialog.show();
    click(dialog, "pushButtonLater");
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(raw.dumpTables(), before);
    // Asked again: the same three.
    int asking = 0;
    for (const Occurrence &occurrence : RecurringExpenses(f.store).due(QDate(2026, 2, 28), true))
        asking += occurrence.mode == PostingMode::Confirm ? 1 : 0;
    QCOMPARE(asking, 3);
}

void TestDueExpensesDialog::aTickedOccurrenceWaitsForAnUntickedEarlierOneOfItsExpense()
{
    Fixture f;
    DueExpensesDialog dialog(f.store, f.dueOccurrences());
    dialog.show();
    // January's electricity unticked: February's cannot go before it.
    table(dialog)->item(0, 0)->setCheckState(Qt::Unchecked);
    click(dialog, "pushButtonPostTicked");
    QCOMPARE(f.entries(), QStringList({ "2026-02-10T00:00:00 Water 35.50" }));
    QCOMPARE(f.nextDate(QStringLiteral("Electricity")), QStringLiteral("2026-01-20"));
    QCOMPARE(rows(dialog),
             QList<QStringList>({ { "unticked", "Tue Jan 20 2026", "Electricity", "Bills", "80.00" },
                                  { "ticked", "Fri Feb 20 2026", "Electricity", "Bills", "80.00" } }));
    click(dialog, "pushButtonLater");
}

void TestDueExpensesDialog::anAmountThatIsNoAmountIsRefusedAndNothingIsPosted()
{
    Fixture f;
    const QList<Occurrence> due = f.dueOccurrences();
    RawDatabase raw(f.home.databasePath());
    const QStringList before = raw.dumpTables();
    DueExpensesDialog dialog(f.store, due);
    dialog.show();
    table(dialog)->item(2, 4)->setText(QStringLiteral("0"));
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    click(dialog, "pushButtonPostTicked");
    QVERIFY(answerer.waitForBoxes(1));
    QCOMPARE(answerer.texts(),
             QStringList({ "The amount of Electricity on Fri Feb 20 2026 must be above 0 and at most "
                           "9999999.99, not \"0\". Nothing was posted." }));
    QCOMPARE(raw.dumpTables(), before);
    QVERIFY(dialog.isVisible());
    click(dialog, "pushButtonLater");
}

void TestDueExpensesDialog::whatAnotherProgramPostedMeanwhileIsNotPostedAgain()
{
    Fixture f;
    DueExpensesDialog dialog(f.store, f.dueOccurrences());
    dialog.show();
    // A timer's post-due runs while the dialog shows: everything due by
    // 28 Feb, the rent and the three in the dialog.
    QProcess poster;
    poster.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    poster.start(QStringLiteral(LEDGERLY_POST_DUE_PROGRAM), { QStringLiteral("2026-02-28") });
    QVERIFY(poster.waitForFinished(30000));
    QCOMPARE(poster.exitCode(), 0);
    QCOMPARE(f.entries().size(), 5);

    table(dialog)->item(0, 4)->setText(QStringLiteral("93.47"));
    click(dialog, "pushButtonPostTicked");
    // Nothing twice, and nothing left to ask about.
    QCOMPARE(f.entries(),
             QStringList({ "2026-01-01T00:00:00 Rent 950.00", "2026-01-20T00:00:00 Electricity 80.00",
                           "2026-02-01T00:00:00 Rent 950.00", "2026-02-10T00:00:00 Water 35.50",
                           "2026-02-20T00:00:00 Electricity 80.00" }));
    QCOMPARE(dialog.postedCount(), 0);
    QVERIFY(!dialog.isVisible());
}

QTEST_MAIN(TestDueExpensesDialog)
#include "tst_dueexpensesdialog.moc"
