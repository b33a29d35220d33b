// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "recurringexpenses.h"

#include "budgets.h"
#include "databasemanager.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <memory>

namespace {

QDate day(int year, int month, int dayOfMonth)
{
    return QDate(year, month, dayOfMonth);
}

RecurringExpense expense(const QString &item, double amount, const QString &category, const Recurrence &every,
                         const QDate &first)
{
    RecurringExpense made;
    made.item = item;
    made.amount = amount;
    made.category = category;
    made.every = every;
    made.first = first;
    return made;
}

const Recurrence monthly { 1, RecurrenceUnit::Month };
const Recurrence daily { 1, RecurrenceUnit::Day };

// The entries of one item, as "yyyy-MM-ddTHH:mm:ss price place", oldest
// first, read on a connection of the test's own.
QStringList entriesOf(const QString &databasePath, const QString &item)
{
    RawDatabase raw(databasePath);
    QStringList lines;
    for (const QVariantList &row :
         raw.rows(QStringLiteral("SELECT TransactDateTime, Price, LocationText, EnableGeoLoc, CategoryName FROM Entry "
                                 "WHERE ItemName = '%1' ORDER BY TransactDateTime, SNo")
                      .arg(item)))
        lines << QStringLiteral("%1 %2 %3 %4 %5")
                     .arg(row.at(0).toString(), QString::number(row.at(1).toDouble(), 'f', 2), row.at(2).toString(),
                          row.at(3).toString(), row.at(4).toString());
    return lines;
}

} // namespace

class TestRecurringExpenses : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void anExpenseIsStoredWithItsFirstOccurrenceAsTheNext();
    void anUnknownCategoryIsAddedToTheCategories();
    void anExpenseThatCannotBeKeptIsRefusedAndNothingIsWritten_data();
    void anExpenseThatCannotBeKeptIsRefusedAndNothingIsWritten();
    void postingDuePostsExactlyTheDueOccurrencesOldestFirst();
    void postingDueTwicePostsNothingTheSecondTime();
    void postedEntriesCountInTheCatalogueAndTheBudgets();
    void occurrencesThatAskFirstArePostedOnlyWhenAskedFor();
    void threeTimesPostsThreeAndIsFinished();
    void aLastDayIsPostedAndNothingAfterIt();
    void skippingMovesOnWithoutAnEntry();
    void anOccurrenceAlreadyPostedIsNotPostedAgain();
    void anAmountEditedBeforePostingIsWhatIsStored();
    void expensesAreListedByNextDateWithTheFinishedLast();
    void anEditKeepsWhatWasPostedAndFollowsTheNewSchedule();
    void anEditThatExtendsTheEndStartsAFinishedExpenseAgain();
    void removingAnExpenseKeepsItsEntries();
    void theOccurrencesBetweenTwoDaysIncludeBothDays();
    void aFullFilePostsNothingHalfAndEverythingOnceThereIsRoom();
    void aKilledPosterLeavesEveryOccurrencePostedExactlyOnce();

private:
    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void TestRecurringExpenses::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void TestRecurringExpenses::cleanup()
{
    store.reset();
    home.reset();
}

void TestRecurringExpenses::anExpenseIsStoredWithItsFirstOccurrenceAsTheNext()
{
    RecurringExpenses recurring(*store);
    RecurringExpense rent = expense(QStringLiteral("Rent"), 950, QStringLiteral("Housing"), monthly, day(2026, 1, 31));
    rent.place = QStringLiteral("Landlord");
    rent.mode = PostingMode::Confirm;
    rent.end.times = 12;
    QString failure;
    const int id = recurring.add(rent, &failure);
    QVERIFY2(id > 0, qPrintable(failure));

    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows =
        raw.rows(QStringLiteral("SELECT SNo, ItemName, Price, CategoryName, LocationText, EveryCount, EveryUnit, "
                                "FirstDate, LastDate, Times, Mode, NextIndex, NextDate FROM RecurringExpense"));
    QCOMPARE(rows.size(), 1);
    const QVariantList &row = rows.at(0);
    QCOMPARE(row.at(0).toInt(), id);
    QCOMPARE(row.at(1).toString(), QStringLiteral("Rent"));
    QCOMPARE(row.at(2).toDouble(), 950.0);
    QCOMPARE(row.at(3).toString(), QStringLiteral("Housing"));
    QCOMPARE(row.at(4).toString(), QStringLiteral("Landlord"));
    QCOMPARE(row.at(5).toInt(), 1);
    QCOMPARE(row.at(6).toString(), QStringLiteral("m"));
    QCOMPARE(row.at(7).toString(), QStringLiteral("2026-01-31"));
    QVERIFY(row.at(8).isNull());
    QCOMPARE(row.at(9).toInt(), 12);
    QCOMPARE(row.at(10).toString(), QStringLiteral("confirm"));
    QCOMPARE(row.at(11).toInt(), 0);
    QCOMPARE(row.at(12).toString(), QStringLiteral("2026-01-31"));

    const std::optional<RecurringExpense> read = recurring.of(id);
    QVERIFY(read);
    QCOMPARE(read->item, QStringLiteral("Rent"));
    QCOMPARE(read->every, monthly);
    QCOMPARE(read->end.times, 12);
    QCOMPARE(read->mode, PostingMode::Confirm);
    QCOMPARE(read->next, day(2026, 1, 31));
    QCOMPARE(read->left(), std::optional<qint64>(12));
    // Nothing is posted by adding.
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry")).toInt(), 0);
}

void TestRecurringExpenses::anUnknownCategoryIsAddedToTheCategories()
{
    const int before = store->GetNumberOfCategories();
    QVERIFY(RecurringExpenses(*store).add(
        expense(QStringLiteral("Netflix"), 12.99, QStringLiteral("Streaming"), monthly, day(2026, 3, 1))));
    QVERIFY(store->GetCategoryID(QStringLiteral("Streaming")) > 0);
    QCOMPARE(store->GetNumberOfCategories(), before + 1);
    // A known one is not added twice.
    QVERIFY(RecurringExpenses(*store).add(
        expense(QStringLiteral("Spotify"), 9.99, QStringLiteral("Streaming"), monthly, day(2026, 3, 1))));
    QCOMPARE(store->GetNumberOfCategories(), before + 1);
}

void TestRecurringExpenses::anExpenseThatCannotBeKeptIsRefusedAndNothingIsWritten_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<double>("amount");
    QTest::addColumn<QString>("category");
    QTest::addColumn<int>("count");
    QTest::addColumn<QDate>("until");
    QTest::addColumn<int>("times");
    const QDate none;
    QTest::newRow("no item") << "  " << 10.0 << "Bills" << 1 << none << 0;
    QTest::newRow("no category") << "Phone" << 10.0 << "" << 1 << none << 0;
    QTest::newRow("no amount") << "Phone" << 0.0 << "Bills" << 1 << none << 0;
    QTest::newRow("a negative amount") << "Phone" << -3.0 << "Bills" << 1 << none << 0;
    QTest::newRow("a cent too much") << "Phone" << 10000000.0 << "Bills" << 1 << none << 0;
    QTest::newRow("every 0 months") << "Phone" << 10.0 << "Bills" << 0 << none << 0;
    QTest::newRow("every 100 months") << "Phone" << 10.0 << "Bills" << 100 << none << 0;
    QTest::newRow("an end before the start") << "Phone" << 10.0 << "Bills" << 1 << day(2026, 4, 30) << 0;
    QTest::newRow("both ends") << "Phone" << 10.0 << "Bills" << 1 << day(2026, 12, 31) << 3;
}

void TestRecurringExpenses::anExpenseThatCannotBeKeptIsRefusedAndNothingIsWritten()
{
    QFETCH(QString, item);
    QFETCH(double, amount);
    QFETCH(QString, category);
    QFETCH(int, count);
    QFETCH(QDate, until);
    QFETCH(int, times);
    RecurringExpense refused = expense(item, amount, category, { count, RecurrenceUnit::Month }, day(2026, 5, 1));
    refused.end.until = until;
    refused.end.times = times;
    QVERIFY(!RecurringExpenses::problem(refused).isEmpty());
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    QString failure;
    QCOMPARE(RecurringExpenses(*store).add(refused, &failure), 0);
    QCOMPARE(failure, RecurringExpenses::problem(refused));
    QCOMPARE(raw.dumpTables(), before);
}

void TestRecurringExpenses::postingDuePostsExactlyTheDueOccurrencesOldestFirst()
{
    RecurringExpenses recurring(*store);
    const int rent =
        recurring.add(expense(QStringLiteral("Rent"), 950, QStringLiteral("Housing"), monthly, day(2026, 1, 31)));
    RecurringExpense phone =
        expense(QStringLiteral("Phone"), 25.5, QStringLiteral("Bills"), { 2, RecurrenceUnit::Week }, day(2026, 2, 1));
    phone.place = QStringLiteral("Telco");
    const int phoneId = recurring.add(phone);
    // Starts after the day: nothing of it is due.
    recurring.add(expense(QStringLiteral("Gym"), 30, QStringLiteral("Sport"), monthly, day(2026, 4, 1)));
    QVERIFY(rent > 0 && phoneId > 0);

    const RecurringExpenses::Posting posting = recurring.postDue(day(2026, 3, 31), false);
    QCOMPARE(posting.failure, QString());
    // Rent on 31 Jan, 28 Feb, 31 Mar; the phone every two weeks from 1 Feb:
    // 1 Feb, 15 Feb, 1 Mar, 15 Mar, 29 Mar.
    QStringList order;
    for (const Occurrence &occurrence : posting.posted)
        order << occurrence.date.toString(Qt::ISODate) + QLatin1Char(' ') + occurrence.item;
    QCOMPARE(order,
             QStringList({ "2026-01-31 Rent", "2026-02-01 Phone", "2026-02-15 Phone", "2026-02-28 Rent",
                           "2026-03-01 Phone", "2026-03-15 Phone", "2026-03-29 Phone", "2026-03-31 Rent" }));
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Rent")),
             QStringList({ "2026-01-31T00:00:00 950.00  false Housing", "2026-02-28T00:00:00 950.00  false Housing",
                           "2026-03-31T00:00:00 950.00  false Housing" }));
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Phone")),
             QStringList({ "2026-02-01T00:00:00 25.50 Telco false Bills", "2026-02-15T00:00:00 25.50 Telco false Bills",
                           "2026-03-01T00:00:00 25.50 Telco false Bills", "2026-03-15T00:00:00 25.50 Telco false Bills",
                           "2026-03-29T00:00:00 25.50 Telco false Bills" }));
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Gym")), QStringList());
    // The entries were written in that order too.
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(substr(TransactDateTime, 1, 10), ',') FROM (SELECT "
                                       "TransactDateTime FROM Entry ORDER BY SNo)"))
                 .toString(),
             QStringLiteral("2026-01-31,2026-02-01,2026-02-15,2026-02-28,2026-03-01,2026-03-15,2026-03-29,2026-03-31"));
    QCOMPARE(recurring.of(rent)->next, day(2026, 4, 30));
    QCOMPARE(recurring.of(phoneId)->next, day(2026, 4, 12));
    QCOMPARE(recurring.of(rent)->done, qint64(3));
}

void TestRecurringExpenses::postingDueTwicePostsNothingTheSecondTime()
{
    RecurringExpenses recurring(*store);
    recurring.add(expense(QStringLiteral("Rent"), 950, QStringLiteral("Housing"), monthly, day(2026, 1, 1)));
    QCOMPARE(recurring.postDue(day(2026, 6, 15), false).posted.size(), 6);
    RawDatabase raw(home->databasePath());
    const QStringList after = raw.dumpTables();
    const RecurringExpenses::Posting again = recurring.postDue(day(2026, 6, 15), false);
    QCOMPARE(again.posted.size(), 0);
    QCOMPARE(again.failure, QString());
    QCOMPARE(raw.dumpTables(), after);
    // A later day posts what came due since, and only that.
    QCOMPARE(recurring.postDue(day(2026, 7, 1), false).posted.size(), 1);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry")).toInt(), 7);
}

void TestRecurringExpenses::postedEntriesCountInTheCatalogueAndTheBudgets()
{
    RecurringExpenses recurring(*store);
    recurring.add(expense(QStringLiteral("Netflix"), 12.99, QStringLiteral("Streaming"), monthly, day(2026, 1, 5)));
    Budgets budgets(*store);
    QVERIFY(budgets.set({ QStringLiteral("Streaming"), 20, BudgetPeriod::Month }));
    recurring.postDue(day(2026, 3, 10), false);

    RawDatabase raw(home->databasePath());
    const QList<QVariantList> items =
        raw.rows(QStringLiteral("SELECT CategoryName, UseFrequency, LastPrice, CategoryID FROM Items WHERE ItemName "
                                "= 'Netflix'"));
    QCOMPARE(items.size(), 1);
    QCOMPARE(items.at(0).at(0).toString(), QStringLiteral("Streaming"));
    QCOMPARE(items.at(0).at(1).toInt(), 3);
    QCOMPARE(items.at(0).at(2).toFloat(), 12.99f);
    QCOMPARE(items.at(0).at(3).toInt(), store->GetCategoryID(QStringLiteral("Streaming")));
    // March's budget has seen March's occurrence.
    const std::optional<BudgetStanding> march = budgets.standingOf(QStringLiteral("Streaming"), day(2026, 3, 10), 1);
    QVERIFY(march);
    QCOMPARE(Budgets::money(march->spent), QStringLiteral("12.99"));
}

void TestRecurringExpenses::occurrencesThatAskFirstArePostedOnlyWhenAskedFor()
{
    RecurringExpenses recurring(*store);
    RecurringExpense power =
        expense(QStringLiteral("Electricity"), 80, QStringLiteral("Bills"), monthly, day(2026, 1, 20));
    power.mode = PostingMode::Confirm;
    const int id = recurring.add(power);
    recurring.add(expense(QStringLiteral("Rent"), 950, QStringLiteral("Housing"), monthly, day(2026, 1, 1)));

    QCOMPARE(recurring.due(day(2026, 2, 28), false).size(), 2);
    QCOMPARE(recurring.due(day(2026, 2, 28), true).size(), 4);
    QCOMPARE(recurring.postDue(day(2026, 2, 28), false).posted.size(), 2);
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Electricity")), QStringList());
    QCOMPARE(recurring.of(id)->next, day(2026, 1, 20));

    const RecurringExpenses::Posting all = recurring.postDue(day(2026, 2, 28), true);
    QCOMPARE(all.posted.size(), 2);
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Electricity")).size(), 2);
    QCOMPARE(recurring.of(id)->next, day(2026, 3, 20));
}

void TestRecurringExpenses::threeTimesPostsThreeAndIsFinished()
{
    RecurringExpenses recurring(*store);
    RecurringExpense course = expense(QStringLiteral("Course"), 100, QStringLiteral("Education"),
                                      { 1, RecurrenceUnit::Week }, day(2026, 12, 24));
    course.end.times = 3;
    const int id = recurring.add(course);
    QCOMPARE(recurring.postDue(day(2027, 12, 31), false).posted.size(), 3);
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Course")),
             QStringList({ "2026-12-24T00:00:00 100.00  false Education", "2026-12-31T00:00:00 100.00  false Education",
                           "2027-01-07T00:00:00 100.00  false Education" }));
    const std::optional<RecurringExpense> finished = recurring.of(id);
    QVERIFY(finished->isFinished());
    QCOMPARE(finished->left(), std::optional<qint64>(0));
    RawDatabase raw(home->databasePath());
    QVERIFY(raw.scalar(QStringLiteral("SELECT NextDate FROM RecurringExpense")).isNull());
    QCOMPARE(recurring.postDue(day(2030, 1, 1), true).posted.size(), 0);
}

void TestRecurringExpenses::aLastDayIsPostedAndNothingAfterIt()
{
    RecurringExpenses recurring(*store);
    RecurringExpense lease = expense(QStringLiteral("Lease"), 300, QStringLiteral("Car"), monthly, day(2026, 1, 31));
    lease.end.until = day(2026, 4, 30);
    const int id = recurring.add(lease);
    QCOMPARE(recurring.postDue(day(2026, 12, 31), false).posted.size(), 4);
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Lease")).constLast(),
             QStringLiteral("2026-04-30T00:00:00 300.00  false Car"));
    QVERIFY(recurring.of(id)->isFinished());
}

void TestRecurringExpenses::skippingMovesOnWithoutAnEntry()
{
    RecurringExpenses recurring(*store);
    const int id =
        recurring.add(expense(QStringLiteral("Water"), 40, QStringLiteral("Bills"), monthly, day(2026, 1, 10)));
    const QList<Occurrence> due = recurring.due(day(2026, 2, 10), true);
    QCOMPARE(due.size(), 2);
    QVERIFY(recurring.skip(due.at(0)));
    QCOMPARE(recurring.of(id)->next, day(2026, 2, 10));
    QVERIFY(recurring.post(due.at(1), 40));
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Water")),
             QStringList({ "2026-02-10T00:00:00 40.00  false Bills" }));
    QCOMPARE(recurring.of(id)->next, day(2026, 3, 10));
}

void TestRecurringExpenses::anOccurrenceAlreadyPostedIsNotPostedAgain()
{
    RecurringExpenses recurring(*store);
    recurring.add(expense(QStringLiteral("Water"), 40, QStringLiteral("Bills"), monthly, day(2026, 1, 10)));
    const Occurrence first = recurring.due(day(2026, 1, 10), true).constFirst();
    QVERIFY(recurring.post(first, 40));
    QString failure = QStringLiteral("untouched");
    QVERIFY(!recurring.post(first, 40, &failure));
    QCOMPARE(failure, QString());
    QVERIFY(!recurring.skip(first));
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Water")).size(), 1);
    QCOMPARE(recurring.of(first.expenseId)->done, qint64(1));
}

void TestRecurringExpenses::anAmountEditedBeforePostingIsWhatIsStored()
{
    RecurringExpenses recurring(*store);
    recurring.add(expense(QStringLiteral("Electricity"), 80, QStringLiteral("Bills"), monthly, day(2026, 1, 20)));
    const Occurrence occurrence = recurring.due(day(2026, 1, 31), true).constFirst();
    QString failure;
    QVERIFY(!recurring.post(occurrence, 0, &failure));
    QVERIFY(!failure.isEmpty());
    QVERIFY(recurring.post(occurrence, 93.47, &failure));
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Electricity")),
             QStringList({ "2026-01-20T00:00:00 93.47  false Bills" }));
    // The expense keeps its own amount for the next time.
    QCOMPARE(recurring.of(occurrence.expenseId)->amount, 80.0);
}

void TestRecurringExpenses::expensesAreListedByNextDateWithTheFinishedLast()
{
    RecurringExpenses recurring(*store);
    RecurringExpense once = expense(QStringLiteral("Once"), 5, QStringLiteral("Misc"), monthly, day(2026, 1, 1));
    once.end.times = 1;
    recurring.add(once);
    recurring.add(expense(QStringLiteral("Late"), 5, QStringLiteral("Misc"), monthly, day(2026, 9, 1)));
    recurring.add(expense(QStringLiteral("Early"), 5, QStringLiteral("Misc"), monthly, day(2026, 2, 1)));
    recurring.add(expense(QStringLiteral("Middle"), 5, QStringLiteral("Misc"), monthly, day(2026, 5, 1)));
    recurring.postDue(day(2026, 1, 31), false);
    QStringList items;
    for (const RecurringExpense &each : recurring.all())
        items << each.item;
    QCOMPARE(items, QStringList({ "Early", "Middle", "Late", "Once" }));
}

void TestRecurringExpenses::anEditKeepsWhatWasPostedAndFollowsTheNewSchedule()
{
    RecurringExpenses recurring(*store);
    const int id =
        recurring.add(expense(QStringLiteral("Rent"), 900, QStringLiteral("Housing"), monthly, day(2026, 1, 1)));
    QCOMPARE(recurring.postDue(day(2026, 3, 15), false).posted.size(), 3);
    // From the 15th now, every month, at a new amount: the last one done
    // was 1 Mar, so the next is 15 Mar, and nothing before it again.
    RecurringExpense changed = *recurring.of(id);
    changed.first = day(2026, 1, 15);
    changed.amount = 950;
    QVERIFY(recurring.update(changed));
    const std::optional<RecurringExpense> read = recurring.of(id);
    QCOMPARE(read->next, day(2026, 3, 15));
    QCOMPARE(read->amount, 950.0);
    QCOMPARE(recurring.postDue(day(2026, 4, 20), false).posted.size(), 2);
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Rent")),
             QStringList({ "2026-01-01T00:00:00 900.00  false Housing", "2026-02-01T00:00:00 900.00  false Housing",
                           "2026-03-01T00:00:00 900.00  false Housing", "2026-03-15T00:00:00 950.00  false Housing",
                           "2026-04-15T00:00:00 950.00  false Housing" }));
}

void TestRecurringExpenses::anEditThatExtendsTheEndStartsAFinishedExpenseAgain()
{
    RecurringExpenses recurring(*store);
    RecurringExpense course =
        expense(QStringLiteral("Course"), 60, QStringLiteral("Education"), monthly, day(2026, 1, 10));
    course.end.times = 2;
    const int id = recurring.add(course);
    recurring.postDue(day(2026, 12, 31), false);
    QVERIFY(recurring.of(id)->isFinished());
    RecurringExpense longer = *recurring.of(id);
    longer.end.times = 4;
    QVERIFY(recurring.update(longer));
    QCOMPARE(recurring.of(id)->next, day(2026, 3, 10));
    QCOMPARE(recurring.of(id)->left(), std::optional<qint64>(2));
}

void TestRecurringExpenses::removingAnExpenseKeepsItsEntries()
{
    RecurringExpenses recurring(*store);
    const int id = recurring.add(expense(QStringLiteral("Gym"), 30, QStringLiteral("Sport"), monthly, day(2026, 1, 1)));
    const int other =
        recurring.add(expense(QStringLiteral("Rent"), 900, QStringLiteral("Housing"), monthly, day(2026, 1, 1)));
    recurring.postDue(day(2026, 2, 1), false);
    QVERIFY(recurring.remove(id));
    QVERIFY(!recurring.remove(id));
    QVERIFY(!recurring.of(id));
    QVERIFY(recurring.of(other));
    QCOMPARE(entriesOf(home->databasePath(), QStringLiteral("Gym")).size(), 2);
    // The number of a removed expense is not given again.
    QVERIFY(recurring.add(expense(QStringLiteral("Pool"), 20, QStringLiteral("Sport"), monthly, day(2026, 1, 1))) >
            other);
}

void TestRecurringExpenses::theOccurrencesBetweenTwoDaysIncludeBothDays()
{
    RecurringExpenses recurring(*store);
    recurring.add(
        expense(QStringLiteral("Paper"), 2, QStringLiteral("News"), { 1, RecurrenceUnit::Week }, day(2026, 11, 2)));
    recurring.add(expense(QStringLiteral("Rent"), 900, QStringLiteral("Housing"), monthly, day(2026, 1, 30)));
    // 30 Nov to 30 Dec: the Mondays 30 Nov, 7, 14, 21 and 28 Dec, and the
    // rent of 30 Nov and 30 Dec; nothing before, even though the weekly
    // one has not been posted since 2 Nov.
    QStringList listed;
    double total = 0;
    for (const Occurrence &occurrence : recurring.between(day(2026, 11, 30), day(2026, 12, 30))) {
        listed << occurrence.date.toString(Qt::ISODate) + QLatin1Char(' ') + occurrence.item;
        total += occurrence.amount;
    }
    QCOMPARE(listed,
             QStringList({ "2026-11-30 Paper", "2026-11-30 Rent", "2026-12-07 Paper", "2026-12-14 Paper",
                           "2026-12-21 Paper", "2026-12-28 Paper", "2026-12-30 Rent" }));
    QCOMPARE(total, 1810.0);
}

void TestRecurringExpenses::aFullFilePostsNothingHalfAndEverythingOnceThereIsRoom()
{
    RecurringExpenses recurring(*store);
    for (const char *item : { "Rent", "Phone", "Water" })
        QVERIFY(
            recurring.add(expense(QString::fromLatin1(item), 20, QStringLiteral("Bills"), monthly, day(2026, 1, 1))));
    QVERIFY(limitDatabaseFile());
    const int filled = fillDatabaseFile(*store);
    QVERIFY(filled >= 0);
    RawDatabase raw(home->databasePath());
    const QStringList full = raw.dumpTables();

    const RecurringExpenses::Posting refused = recurring.postDue(day(2026, 3, 1), false);
    QVERIFY(!refused.failure.isEmpty());
    QCOMPARE(refused.posted.size(), 0);
    QCOMPARE(raw.dumpTables(), full);

    QVERIFY(liftDatabaseFileLimit());
    const RecurringExpenses::Posting posted = recurring.postDue(day(2026, 3, 1), false);
    QCOMPARE(posted.failure, QString());
    QCOMPARE(posted.posted.size(), 9);
    for (const char *item : { "Rent", "Phone", "Water" })
        QCOMPARE(entriesOf(home->databasePath(), QString::fromLatin1(item)).size(), 3);
}

// Posts 500 due occurrences in a child process that is killed ten times at
// random moments, then once let finish; every occurrence must be in the
// file exactly once, and each expense's next date must follow its entries.
// The child commits every few occurrences, so that a kill can fall inside
// any transaction and between any two.
void TestRecurringExpenses::aKilledPosterLeavesEveryOccurrencePostedExactlyOnce()
{
    const QDate first = day(2026, 1, 1);
    const QDate until = first.addDays(49);
    QList<int> ids;
    {
        RecurringExpenses recurring(*store);
        for (int number = 0; number < 10; ++number)
            ids << recurring.add(
                expense(QStringLiteral("Bill %1").arg(number), 1 + number, QStringLiteral("Bills"), daily, first));
        QCOMPARE(recurring.due(until, true).size(), 500);
    }
    store.reset();

    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    QSet<QString> confirmed;
    const auto runPoster = [&](bool kill) {
        QProcess poster;
        poster.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const int batch = int(random.bounded(1, 8));
        poster.start(QStringLiteral(LEDGERLY_POST_DUE_PROGRAM),
                     { until.toString(Qt::ISODate), QString::number(batch) });
        QVERIFY2(poster.waitForStarted(), qPrintable(poster.errorString()));
        const int killAfter = int(random.bounded(1, 40));
        QByteArray output;
        while (kill && output.count('\n') < killAfter && poster.state() == QProcess::Running) {
            if (poster.waitForReadyRead(30000))
                output += poster.readAllStandardOutput();
            else
                break;
        }
        // One that has run out of work ends by itself.
        const bool killed = kill && poster.state() == QProcess::Running;
        if (killed)
            poster.kill();
        QVERIFY(poster.waitForFinished(60000));
        if (killed)
            QVERIFY2(poster.exitStatus() == QProcess::CrashExit,
                     qPrintable(QStringLiteral("not killed (seed %1)").arg(seed)));
        else
            QCOMPARE(poster.exitCode(), 0);
        output += poster.readAllStandardOutput();
        for (const QString &line : QString::fromUtf8(output.left(output.lastIndexOf('\n'))).split(QLatin1Char('\n')))
            if (!line.isEmpty())
                confirmed.insert(line);
    };

    const auto checkFile = [&](bool complete, int *posted) {
        RawDatabase raw(home->databasePath());
        QCOMPARE(raw.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
        *posted = 0;
        for (int number = 0; number < ids.size(); ++number) {
            const QString item = QStringLiteral("Bill %1").arg(number);
            const QList<QVariantList> entries = raw.rows(
                QStringLiteral("SELECT TransactDateTime FROM Entry WHERE ItemName = '%1' ORDER BY TransactDateTime")
                    .arg(item));
            const QVariantList next = raw.rows(QStringLiteral("SELECT NextIndex, NextDate FROM RecurringExpense WHERE "
                                                              "SNo = %1")
                                                   .arg(ids.at(number)))
                                          .value(0);
            const int done = next.value(0).toInt();
            // Exactly the first `done` days, each once, and the next day
            // the one after them.
            QCOMPARE(int(entries.size()), done);
            for (int index = 0; index < done; ++index)
                QCOMPARE(entries.at(index).at(0).toString(), first.addDays(index).startOfDay().toString(Qt::ISODate));
            QCOMPARE(next.value(1).toString(), first.addDays(done).toString(Qt::ISODate));
            for (int index = 0; index < done; ++index)
                confirmed.remove(QStringLiteral("%1 %2").arg(ids.at(number)).arg(index));
            *posted += done;
            if (complete)
                QCOMPARE(done, 50);
        }
        // Whatever was confirmed is in the file.
        QVERIFY2(confirmed.isEmpty(), qPrintable(QStringList(confirmed.values()).join(QLatin1Char(','))));
        // One catalogue row per bill, counting every posting.
        QCOMPARE(
            raw.scalar(QStringLiteral("SELECT TOTAL(UseFrequency) FROM Items WHERE ItemName LIKE 'Bill %'")).toInt(),
            *posted);
    };

    int postedBefore = 0;
    for (int run = 0; run < 10; ++run) {
        runPoster(true);
        if (QTest::currentTestFailed())
            return;
        int posted = 0;
        checkFile(false, &posted);
        if (QTest::currentTestFailed())
            return;
        QVERIFY2(posted >= postedBefore, qPrintable(QStringLiteral("seed %1").arg(seed)));
        postedBefore = posted;
    }
    runPoster(false);
    int posted = 0;
    checkFile(true, &posted);
    QCOMPARE(posted, 500);
}

QTEST_GUILESS_MAIN(TestRecurringExpenses)
#include "tst_recurringexpenses.moc"
