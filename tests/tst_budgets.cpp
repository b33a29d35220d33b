// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "budgets.h"
#include "databasemanager.h"
#include "migrations.h"

#include "rawdatabase.h"
#include "temphome.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>
#include <limits>
#include <memory>

class TestBudgets : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aBudgetIsStoredInItsOwnTableAndSettingItAgainReplacesIt();
    void removingABudgetDeletesOnlyThatCategorysRow();
    void amountsOutsideZeroToTheLargestAreRefusedAndChangeNothing_data();
    void amountsOutsideZeroToTheLargestAreRefusedAndChangeNothing();
    void budgetsAreListedByCategoryName();
    void spentCountsTheFirstAndLastDayAndNothingOutside();
    void standingsSumEachCategoryInItsOwnPeriod();
    void spentFollowsEntriesAddedChangedAndRemovedByAnyWriter();
    void entriesOfAFileFromBeforeTheSpendingTableAreCounted();
    void applyingSetsAndRemovesInOneTransaction();
    void anApplyThatFailsChangesNothing();
    void theUsedShareIsRoundedHalvesUp_data();
    void theUsedShareIsRoundedHalvesUp();
    void thePaceMarginIsTheElapsedShareLessTheSpent();
    void levelsAndTheirCrossings();
    void moneyHasTwoDecimalsAndNoSeparators();

private:
    int entry(const QString &category, const QDate &day, double price, const QTime &time = QTime(12, 0));

    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void TestBudgets::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void TestBudgets::cleanup()
{
    store.reset();
    home.reset();
}

int TestBudgets::entry(const QString &category, const QDate &day, double price, const QTime &time)
{
    RawDatabase raw(home->databasePath());
    return raw.insertEntry(QStringLiteral("Thing"), category, QDateTime(day, time), price);
}

void TestBudgets::aBudgetIsStoredInItsOwnTableAndSettingItAgainReplacesIt()
{
    Budgets budgets(*store);
    QVERIFY(budgets.set({ QStringLiteral("Food"), 400, BudgetPeriod::Month }));
    QVERIFY(budgets.set({ QStringLiteral("Food"), 95.5, BudgetPeriod::Week }));

    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows = raw.rows(QStringLiteral("SELECT CategoryName, Amount, Period FROM Budget"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(0).toString(), QStringLiteral("Food"));
    QCOMPARE(rows.at(0).at(1).toDouble(), 95.5);
    QCOMPARE(rows.at(0).at(2).toString(), QStringLiteral("week"));
    const std::optional<Budget> food = budgets.of(QStringLiteral("Food"));
    QVERIFY(food);
    QCOMPARE(food->amount, 95.5);
    QCOMPARE(food->period, BudgetPeriod::Week);
    QVERIFY(!budgets.of(QStringLiteral("Travel")));
}

void TestBudgets::removingABudgetDeletesOnlyThatCategorysRow()
{
    Budgets budgets(*store);
    QVERIFY(budgets.set({ QStringLiteral("Food"), 400, BudgetPeriod::Month }));
    QVERIFY(budgets.set({ QStringLiteral("Travel"), 100, BudgetPeriod::Year }));
    QVERIFY(budgets.remove(QStringLiteral("Food")));
    // A name that holds SQL is a name, nothing more.
    QVERIFY(budgets.remove(QStringLiteral("x' OR '1'='1")));

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(CategoryName) FROM Budget")).toString(),
             QStringLiteral("Travel"));
}

void TestBudgets::amountsOutsideZeroToTheLargestAreRefusedAndChangeNothing_data()
{
    QTest::addColumn<double>("amount");
    QTest::newRow("zero") << 0.0;
    QTest::newRow("negative") << -5.0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("a cent too large") << 10000000.0;
}

void TestBudgets::amountsOutsideZeroToTheLargestAreRefusedAndChangeNothing()
{
    QFETCH(double, amount);
    Budgets budgets(*store);
    QVERIFY(budgets.set({ QStringLiteral("Food"), 400, BudgetPeriod::Month }));
    QVERIFY(!Budgets::isAcceptableAmount(amount));
    QVERIFY(!budgets.set({ QStringLiteral("Food"), amount, BudgetPeriod::Month }));
    QVERIFY(!budgets.set({ QStringLiteral("Travel"), amount, BudgetPeriod::Month }));
    QString failure;
    QVERIFY(!budgets.apply({ { QStringLiteral("Travel"), amount, BudgetPeriod::Month } }, { QStringLiteral("Food") },
                           &failure));
    QVERIFY(!failure.isEmpty());

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Budget")).toInt(), 1);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT Amount FROM Budget WHERE CategoryName = 'Food'")).toDouble(), 400.0);
    QVERIFY(Budgets::isAcceptableAmount(9999999.99));
    QVERIFY(Budgets::isAcceptableAmount(0.01));
}

void TestBudgets::budgetsAreListedByCategoryName()
{
    Budgets budgets(*store);
    for (const char *name : { "Travel", "Bills", "Food" })
        QVERIFY(budgets.set({ QString::fromLatin1(name), 10, BudgetPeriod::Month }));
    QStringList names;
    for (const Budget &budget : budgets.all())
        names << budget.category;
    QCOMPARE(names, QStringList({ "Bills", "Food", "Travel" }));
}

void TestBudgets::spentCountsTheFirstAndLastDayAndNothingOutside()
{
    const DateSpan span { QDate(2026, 10, 25), QDate(2026, 11, 24) };
    entry(QStringLiteral("Food"), QDate(2026, 10, 24), 1000, QTime(23, 59, 59)); // the day before
    entry(QStringLiteral("Food"), QDate(2026, 10, 25), 10, QTime(0, 0)); // first day, midnight
    entry(QStringLiteral("Food"), QDate(2026, 11, 24), 2.5, QTime(23, 59, 59)); // last day, its last second
    entry(QStringLiteral("Food"), QDate(2026, 11, 25), 2000, QTime(0, 0)); // the day after
    entry(QStringLiteral("Travel"), QDate(2026, 11, 1), 4000); // another category
    entry(QStringLiteral("food"), QDate(2026, 11, 1), 8000); // names match exactly

    Budgets budgets(*store);
    QCOMPARE(budgets.spent(QStringLiteral("Food"), span), 12.5);
    QCOMPARE(budgets.spent(QStringLiteral("Nothing"), span), 0.0);
}

void TestBudgets::spentFollowsEntriesAddedChangedAndRemovedByAnyWriter()
{
    const DateSpan november { QDate(2026, 11, 1), QDate(2026, 11, 30) };
    Budgets budgets(*store);
    // Through the store, as the new-entry page adds.
    Entry added;
    added.ItemName = QStringLiteral("Bread");
    added.CategoryName = QStringLiteral("Food");
    added.TransactDateTime = QDateTime(QDate(2026, 11, 3), QTime(9, 0));
    added.Price = 4.5f;
    added.LocationText = QStringLiteral("Bakery");
    QVERIFY(store->AddEntry(&added));
    // Through another connection, as another program writes.
    const int cheese = entry(QStringLiteral("Food"), QDate(2026, 11, 4), 7.25);
    const int soap = entry(QStringLiteral("Household"), QDate(2026, 11, 5), 3);
    QCOMPARE(budgets.spent(QStringLiteral("Food"), november), 4.5 + 7.25);

    RawDatabase raw(home->databasePath());
    // A price changed, a category changed, a date moved out of the month.
    QVERIFY(raw.exec(QStringLiteral("UPDATE Entry SET Price = 8.75 WHERE SNo = %1").arg(cheese)));
    QCOMPARE(budgets.spent(QStringLiteral("Food"), november), 4.5 + 8.75);
    QVERIFY(raw.exec(QStringLiteral("UPDATE Entry SET CategoryName = 'Food' WHERE SNo = %1").arg(soap)));
    QCOMPARE(budgets.spent(QStringLiteral("Food"), november), 4.5 + 8.75 + 3);
    QCOMPARE(budgets.spent(QStringLiteral("Household"), november), 0.0);
    QVERIFY(raw.exec(QStringLiteral("UPDATE Entry SET TransactDateTime = '2026-12-01 00:00:00' WHERE SNo = %1")
                         .arg(cheese)));
    QCOMPARE(budgets.spent(QStringLiteral("Food"), november), 4.5 + 3);
    QCOMPARE(budgets.spent(QStringLiteral("Food"), { QDate(2026, 12, 1), QDate(2026, 12, 31) }), 8.75);
    // Removed.
    QVERIFY(raw.exec(QStringLiteral("DELETE FROM Entry WHERE SNo = %1").arg(soap)));
    QCOMPARE(budgets.spent(QStringLiteral("Food"), november), 4.5);
    // Every entry has its one row beside it, and nothing else is there.
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM EntrySpending")).toInt(), 2);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry e JOIN EntrySpending s ON s.SNo = e.SNo AND "
                                       "s.CategoryName = e.CategoryName AND s.TransactDateTime = e.TransactDateTime "
                                       "AND s.Price = e.Price"))
                 .toInt(),
             2);
}

void TestBudgets::entriesOfAFileFromBeforeTheSpendingTableAreCounted()
{
    entry(QStringLiteral("Food"), QDate(2026, 11, 2), 6);
    store.reset();
    {
        // The file as the Ledgerly before the spending table left it: that
        // step and every later one undone (their objects dropped, the
        // version set back), and an entry written since.
        RawDatabase raw(home->databasePath());
        int spendingStep = 0;
        for (const Migration &step : Migrations::all()) {
            for (const QString &statement : step.statements) {
                if (statement.startsWith(QLatin1String("CREATE TABLE EntrySpending ")))
                    spendingStep = step.version;
            }
        }
        QVERIFY(spendingStep > 0);
        const QRegularExpression created(QStringLiteral("^CREATE (?:VIRTUAL )?(TABLE|TRIGGER|INDEX) (\\w+)"));
        for (const Migration &step : Migrations::all()) {
            if (step.version < spendingStep)
                continue;
            for (const QString &statement : step.statements) {
                const QRegularExpressionMatch match = created.match(statement);
                if (match.hasMatch())
                    QVERIFY(raw.exec(QStringLiteral("DROP %1 IF EXISTS %2").arg(match.captured(1), match.captured(2))));
            }
        }
        QVERIFY(raw.exec(QStringLiteral("PRAGMA user_version = %1").arg(spendingStep - 1)));
        QVERIFY(raw.insertEntry(QStringLiteral("Cheese"), QStringLiteral("Food"),
                                QDateTime(QDate(2026, 11, 3), QTime(12, 0)), 4.25)
                > 0);
    }
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
    QCOMPARE(Budgets(*store).spent(QStringLiteral("Food"), { QDate(2026, 11, 1), QDate(2026, 11, 30) }), 6 + 4.25);
}

void TestBudgets::standingsSumEachCategoryInItsOwnPeriod()
{
    Budgets budgets(*store);
    QVERIFY(budgets.set({ QStringLiteral("Food"), 400, BudgetPeriod::Month }));
    QVERIFY(budgets.set({ QStringLiteral("Coffee"), 20, BudgetPeriod::Week }));
    QVERIFY(budgets.set({ QStringLiteral("Travel"), 1000, BudgetPeriod::Year }));
    // Today is Tuesday 24 November 2026, month start 25.
    entry(QStringLiteral("Food"), QDate(2026, 10, 25), 400);
    entry(QStringLiteral("Food"), QDate(2026, 11, 24), 12.5);
    entry(QStringLiteral("Food"), QDate(2026, 10, 24), 99);
    entry(QStringLiteral("Coffee"), QDate(2026, 11, 23), 3); // Monday: this week
    entry(QStringLiteral("Coffee"), QDate(2026, 11, 22), 30); // Sunday: last week
    entry(QStringLiteral("Travel"), QDate(2026, 1, 25), 250); // first day of the budget year
    entry(QStringLiteral("Travel"), QDate(2026, 1, 24), 700); // last day of the one before
    entry(QStringLiteral("Pets"), QDate(2026, 11, 24), 5); // no budget

    const QList<BudgetStanding> standings = budgets.standings(QDate(2026, 11, 24), 25);
    QCOMPARE(standings.size(), 3);
    QCOMPARE(standings.at(0).budget.category, QStringLiteral("Coffee"));
    QCOMPARE(standings.at(0).span.first, QDate(2026, 11, 23));
    QCOMPARE(standings.at(0).spent, 3.0);
    QCOMPARE(standings.at(1).budget.category, QStringLiteral("Food"));
    QCOMPARE(standings.at(1).span.first, QDate(2026, 10, 25));
    QCOMPARE(standings.at(1).span.last, QDate(2026, 11, 24));
    QCOMPARE(standings.at(1).spent, 412.5);
    QCOMPARE(standings.at(1).usedPercent(), 103);
    QCOMPARE(standings.at(1).left(), -12.5);
    QCOMPARE(standings.at(2).budget.category, QStringLiteral("Travel"));
    QCOMPARE(standings.at(2).span.last, QDate(2027, 1, 24));
    QCOMPARE(standings.at(2).spent, 250.0);

    const std::optional<BudgetStanding> food = budgets.standingOf(QStringLiteral("Food"), QDate(2026, 11, 24), 25);
    QVERIFY(food);
    QCOMPARE(food->spent, 412.5);
    QVERIFY(!budgets.standingOf(QStringLiteral("Pets"), QDate(2026, 11, 24), 25));
}

void TestBudgets::applyingSetsAndRemovesInOneTransaction()
{
    Budgets budgets(*store);
    QVERIFY(budgets.set({ QStringLiteral("Food"), 400, BudgetPeriod::Month }));
    QString failure;
    QVERIFY(budgets.apply({ { QStringLiteral("Travel"), 50, BudgetPeriod::Year } }, { QStringLiteral("Food") },
                          &failure));
    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows = raw.rows(QStringLiteral("SELECT CategoryName, Amount, Period FROM Budget"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0), QVariantList({ QStringLiteral("Travel"), 50.0, QStringLiteral("year") }));
}

void TestBudgets::anApplyThatFailsChangesNothing()
{
    Budgets budgets(*store);
    QVERIFY(budgets.set({ QStringLiteral("Food"), 400, BudgetPeriod::Month }));
    RawDatabase holder(home->databasePath());
    QVERIFY(holder.exec(QStringLiteral("BEGIN IMMEDIATE")));
    QString failure;
    QVERIFY(!budgets.apply({ { QStringLiteral("Travel"), 50, BudgetPeriod::Year } }, { QStringLiteral("Food") },
                           &failure));
    QVERIFY(!failure.isEmpty());
    QVERIFY(holder.exec(QStringLiteral("ROLLBACK")));
    QCOMPARE(holder.scalar(QStringLiteral("SELECT group_concat(CategoryName || ' ' || Amount) FROM Budget"))
                 .toString(),
             QStringLiteral("Food 400.0"));
}

void TestBudgets::theUsedShareIsRoundedHalvesUp_data()
{
    QTest::addColumn<double>("spent");
    QTest::addColumn<double>("amount");
    QTest::addColumn<int>("used");
    QTest::newRow("nothing") << 0.0 << 400.0 << 0;
    QTest::newRow("412.50 of 400") << 412.5 << 400.0 << 103;
    QTest::newRow("a half rounds up") << 1.0 << 8.0 << 13; // 12.5 %
    QTest::newRow("just below a half") << 12.49 << 100.0 << 12;
    QTest::newRow("79.5 rounds to 80") << 79.5 << 100.0 << 80;
}

void TestBudgets::theUsedShareIsRoundedHalvesUp()
{
    QFETCH(double, spent);
    QFETCH(double, amount);
    QFETCH(int, used);
    QCOMPARE((BudgetStanding { { QStringLiteral("Food"), amount, BudgetPeriod::Month }, {}, spent }.usedPercent()),
             used);
}

void TestBudgets::thePaceMarginIsTheElapsedShareLessTheSpent()
{
    // A 30-day period, 10 days gone: a third of 300 is 100.
    const BudgetStanding standing { { QStringLiteral("Food"), 300, BudgetPeriod::Month },
                                    { QDate(2026, 11, 1), QDate(2026, 11, 30) },
                                    64.8 };
    QCOMPARE(standing.paceMargin(QDate(2026, 11, 10)), 100 - 64.8);
    QCOMPARE(standing.paceMargin(QDate(2026, 11, 1)), 10 - 64.8);
    QCOMPARE(standing.paceMargin(QDate(2026, 12, 5)), 300 - 64.8);
}

void TestBudgets::levelsAndTheirCrossings()
{
    QCOMPARE(Budgets::level(319.99, 400), BudgetLevel::Below);
    QCOMPARE(Budgets::level(320, 400), BudgetLevel::Nearing);
    QCOMPARE(Budgets::level(400, 400), BudgetLevel::Nearing);
    QCOMPARE(Budgets::level(400.01, 400), BudgetLevel::Over);

    QCOMPARE(Budgets::crossing(300, 320, 400), std::optional(BudgetLevel::Nearing));
    QCOMPARE(Budgets::crossing(320, 399, 400), std::optional<BudgetLevel>());
    QCOMPARE(Budgets::crossing(399, 400, 400), std::optional<BudgetLevel>());
    QCOMPARE(Budgets::crossing(400, 412.5, 400), std::optional(BudgetLevel::Over));
    QCOMPARE(Budgets::crossing(10, 500, 400), std::optional(BudgetLevel::Over));
    QCOMPARE(Budgets::crossing(412.5, 420, 400), std::optional<BudgetLevel>());
}

void TestBudgets::moneyHasTwoDecimalsAndNoSeparators()
{
    QCOMPARE(Budgets::money(400), QStringLiteral("400.00"));
    QCOMPARE(Budgets::money(412.5), QStringLiteral("412.50"));
    QCOMPARE(Budgets::money(-12.5), QStringLiteral("-12.50"));
    QCOMPARE(Budgets::money(1000001), QStringLiteral("1000001.00"));
    QCOMPARE(Budgets::money(400.0 - 399.999999), QStringLiteral("0.00"));
    QCOMPARE(Budgets::money(-0.001), QStringLiteral("0.00"));
}

QTEST_GUILESS_MAIN(TestBudgets)
#include "tst_budgets.moc"
