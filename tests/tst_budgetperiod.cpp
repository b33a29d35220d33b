// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "budgetperiod.h"

#include <QTest>

class TestBudgetPeriod : public QObject
{
    Q_OBJECT

private slots:
    void aMonthRunsFromItsStartToTheDayBeforeTheNext_data();
    void aMonthRunsFromItsStartToTheDayBeforeTheNext();
    void aWeekRunsFromMondayToSundayWhateverTheMonthStart_data();
    void aWeekRunsFromMondayToSundayWhateverTheMonthStart();
    void aYearRunsFromTheMonthStartOfJanuary_data();
    void aYearRunsFromTheMonthStartOfJanuary();
    void onlyTheDays1To28AreMonthStarts();
    void periodsAreNamedAsTheFileAndTheCommandLineName();
    void elapsedDaysCountTodayAndStayInsideThePeriod();
};

namespace {

QDate d(int year, int month, int day)
{
    return QDate(year, month, day);
}

} // namespace

void TestBudgetPeriod::aMonthRunsFromItsStartToTheDayBeforeTheNext_data()
{
    QTest::addColumn<QDate>("day");
    QTest::addColumn<int>("monthStart");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::newRow("start 1, first day") << d(2026, 11, 1) << 1 << d(2026, 11, 1) << d(2026, 11, 30);
    QTest::newRow("start 1, last day of a 31-day month") << d(2026, 12, 31) << 1 << d(2026, 12, 1) << d(2026, 12, 31);
    QTest::newRow("start 1, February") << d(2026, 2, 28) << 1 << d(2026, 2, 1) << d(2026, 2, 28);
    QTest::newRow("start 1, leap February") << d(2028, 2, 29) << 1 << d(2028, 2, 1) << d(2028, 2, 29);
    QTest::newRow("start 25, the day before payday") << d(2026, 11, 24) << 25 << d(2026, 10, 25) << d(2026, 11, 24);
    QTest::newRow("start 25, payday") << d(2026, 11, 25) << 25 << d(2026, 11, 25) << d(2026, 12, 24);
    QTest::newRow("start 25, across the year end") << d(2027, 1, 3) << 25 << d(2026, 12, 25) << d(2027, 1, 24);
    QTest::newRow("start 25, through February") << d(2027, 3, 1) << 25 << d(2027, 2, 25) << d(2027, 3, 24);
    QTest::newRow("start 25, through leap February") << d(2028, 2, 29) << 25 << d(2028, 2, 25) << d(2028, 3, 24);
    QTest::newRow("start 28, month end of February") << d(2026, 2, 28) << 28 << d(2026, 2, 28) << d(2026, 3, 27);
    QTest::newRow("start 28, 27 March") << d(2026, 3, 27) << 28 << d(2026, 2, 28) << d(2026, 3, 27);
}

void TestBudgetPeriod::aMonthRunsFromItsStartToTheDayBeforeTheNext()
{
    QFETCH(QDate, day);
    QFETCH(int, monthStart);
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    const DateSpan span = BudgetPeriods::monthHolding(day, monthStart);
    QCOMPARE(span.first, first);
    QCOMPARE(span.last, last);
    QCOMPARE(BudgetPeriods::holding(BudgetPeriod::Month, day, monthStart).first, first);
}

void TestBudgetPeriod::aWeekRunsFromMondayToSundayWhateverTheMonthStart_data()
{
    QTest::addColumn<QDate>("day");
    QTest::addColumn<QDate>("monday");
    // 2026-12-28 is a Monday; 2027-01-03 the Sunday after it.
    QTest::newRow("Monday") << d(2026, 12, 28) << d(2026, 12, 28);
    QTest::newRow("New Year's Eve, a Thursday") << d(2026, 12, 31) << d(2026, 12, 28);
    QTest::newRow("New Year's Day") << d(2027, 1, 1) << d(2026, 12, 28);
    QTest::newRow("Sunday across the year end") << d(2027, 1, 3) << d(2026, 12, 28);
    QTest::newRow("next Monday") << d(2027, 1, 4) << d(2027, 1, 4);
    QTest::newRow("leap day, a Tuesday") << d(2028, 2, 29) << d(2028, 2, 28);
}

void TestBudgetPeriod::aWeekRunsFromMondayToSundayWhateverTheMonthStart()
{
    QFETCH(QDate, day);
    QFETCH(QDate, monday);
    QCOMPARE(monday.dayOfWeek(), 1);
    for (int monthStart : { 1, 25 }) {
        const DateSpan span = BudgetPeriods::holding(BudgetPeriod::Week, day, monthStart);
        QCOMPARE(span.first, monday);
        QCOMPARE(span.last, monday.addDays(6));
        QCOMPARE(span.days(), 7);
    }
}

void TestBudgetPeriod::aYearRunsFromTheMonthStartOfJanuary_data()
{
    QTest::addColumn<QDate>("day");
    QTest::addColumn<int>("monthStart");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::newRow("start 1, New Year's Day") << d(2027, 1, 1) << 1 << d(2027, 1, 1) << d(2027, 12, 31);
    QTest::newRow("start 1, New Year's Eve") << d(2026, 12, 31) << 1 << d(2026, 1, 1) << d(2026, 12, 31);
    QTest::newRow("start 25, 24 January") << d(2027, 1, 24) << 25 << d(2026, 1, 25) << d(2027, 1, 24);
    QTest::newRow("start 25, 25 January") << d(2027, 1, 25) << 25 << d(2027, 1, 25) << d(2028, 1, 24);
    QTest::newRow("start 25, New Year's Day") << d(2027, 1, 1) << 25 << d(2026, 1, 25) << d(2027, 1, 24);
    QTest::newRow("start 25, 24 November") << d(2026, 11, 24) << 25 << d(2026, 1, 25) << d(2027, 1, 24);
    QTest::newRow("start 25, leap year") << d(2028, 2, 29) << 25 << d(2028, 1, 25) << d(2029, 1, 24);
}

void TestBudgetPeriod::aYearRunsFromTheMonthStartOfJanuary()
{
    QFETCH(QDate, day);
    QFETCH(int, monthStart);
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    const DateSpan span = BudgetPeriods::holding(BudgetPeriod::Year, day, monthStart);
    QCOMPARE(span.first, first);
    QCOMPARE(span.last, last);
    QVERIFY(span.contains(day));
}

void TestBudgetPeriod::onlyTheDays1To28AreMonthStarts()
{
    QVERIFY(!BudgetPeriods::isMonthStart(0));
    QVERIFY(BudgetPeriods::isMonthStart(1));
    QVERIFY(BudgetPeriods::isMonthStart(28));
    QVERIFY(!BudgetPeriods::isMonthStart(29));
    QVERIFY(!BudgetPeriods::isMonthStart(-25));
}

void TestBudgetPeriod::periodsAreNamedAsTheFileAndTheCommandLineName()
{
    QCOMPARE(BudgetPeriods::name(BudgetPeriod::Month), QStringLiteral("month"));
    QCOMPARE(BudgetPeriods::name(BudgetPeriod::Week), QStringLiteral("week"));
    QCOMPARE(BudgetPeriods::name(BudgetPeriod::Year), QStringLiteral("year"));
    QCOMPARE(BudgetPeriods::fromName(QStringLiteral("week")), std::optional(BudgetPeriod::Week));
    QCOMPARE(BudgetPeriods::fromName(QStringLiteral("Month")), std::optional<BudgetPeriod>());
    QCOMPARE(BudgetPeriods::fromName(QString()), std::optional<BudgetPeriod>());
}

void TestBudgetPeriod::elapsedDaysCountTodayAndStayInsideThePeriod()
{
    const DateSpan november { d(2026, 10, 25), d(2026, 11, 24) };
    QCOMPARE(november.days(), 31);
    QCOMPARE(BudgetPeriods::daysElapsed(november, d(2026, 10, 24)), 0);
    QCOMPARE(BudgetPeriods::daysElapsed(november, d(2026, 10, 25)), 1);
    QCOMPARE(BudgetPeriods::daysElapsed(november, d(2026, 11, 24)), 31);
    QCOMPARE(BudgetPeriods::daysElapsed(november, d(2027, 5, 1)), 31);
}

QTEST_GUILESS_MAIN(TestBudgetPeriod)
#include "tst_budgetperiod.moc"
