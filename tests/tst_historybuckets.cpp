// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "historybuckets.h"

#include "sampleentries.h"
#include "temphome.h"
#include "testsupport.h"
#include "tiedentries.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

Q_DECLARE_METATYPE(QList<LabelledTotal>)
Q_DECLARE_METATYPE(QList<DayTotal>)

namespace {

// Entries built by hand, newest first as the store gives them.
class EntryFixture
{
public:
    Entry *add(const QString &category, const QDateTime &when, float price)
    {
        auto entry = std::make_unique<Entry>();
        entry->ItemName = QStringLiteral("Item %1").arg(owned.size() + 1);
        entry->CategoryName = category;
        entry->TransactDateTime = when;
        entry->Price = price;
        list.append(entry.get());
        owned.push_back(std::move(entry));
        return list.last();
    }
    const QList<Entry *> &entries() const { return list; }

private:
    std::vector<std::unique_ptr<Entry>> owned;
    QList<Entry *> list;
};

QString day(int year, int month, int dayOfMonth)
{
    return QDate(year, month, dayOfMonth).toString(Qt::TextDate);
}

} // namespace

class TestHistoryBuckets : public QObject
{
    Q_OBJECT

private slots:
    void pricesAreSummedInSinglePrecision();
    void categoryFiguresAreAppendedInTheOrderOfTheNames();
    void categoryFiguresFromOneReadEqualThoseOfEachCategorysOwnLists();
    void dayTotalsSumEachRunOfOneCalendarDay();
    void dayTotalsFollowRunsSoARepeatedDayStartsANewTotal();
    void noEntriesGiveNoDayTotals();
    void categoryTotalsKeepTheOrderInWhichCategoriesAreFirstMet();
    void totalsTakenOneEntryAtATimeAreThoseOfTheWholeList();
    void totalsOfNoEntryAreEmpty();

    void dailyBucketsCoverEveryDayOfTheRange_data();
    void dailyBucketsCoverEveryDayOfTheRange();
    void aDayLooksUpItsFirstTotal();
    void weeklyBucketsStartOnTheStartDatesWeekday_data();
    void weeklyBucketsStartOnTheStartDatesWeekday();
    void theBucketsRunWithoutTheWebEngine();
    void monthlyBucketsAreNamedByMonthAlone_data();
    void monthlyBucketsAreNamedByMonthAlone();

    void totalTabWindowSpansTenDaysFromTheOldestEntry_data();
    void totalTabWindowSpansTenDaysFromTheOldestEntry();
    void categoryWithTenDateTimesListsAllItsEntriesAndWithElevenOnlyTheRecent();

    void categoryStatisticsCountDaysSpanAndAverages();
    void categoryUsedOnceHasAnInfiniteCalendarAverage();
    void contributionIsThePartInPerCentOfTheWhole();
    void slicesHoldTotalsTruncatedTowardZero_data();
    void slicesHoldTotalsTruncatedTowardZero();
    void totalSliceLabelsShowTheShareWithATrailingBlank_data();
    void totalSliceLabelsShowTheShareWithATrailingBlank();
};

void TestHistoryBuckets::pricesAreSummedInSinglePrecision()
{
    EntryFixture fixture;
    fixture.add("Food", at(2024, 3, 2), 0.1f);
    fixture.add("Food", at(2024, 3, 1), 0.2f);
    fixture.add("Fuel", at(2024, 3, 1), 16777216.0f);
    fixture.add("Fuel", at(2024, 3, 1), 1.0f);

    float expected = 0;
    expected += 0.1f;
    expected += 0.2f;
    expected += 16777216.0f;
    expected += 1.0f;
    QCOMPARE(HistoryBuckets::sumOfPrices(fixture.entries()), expected);
    // In single precision 2^24 + 1 is lost; a double sum would keep it.
    QCOMPARE(HistoryBuckets::sumOfPrices(fixture.entries()), 16777216.0f);
}

void TestHistoryBuckets::categoryFiguresAreAppendedInTheOrderOfTheNames()
{
    CategorySpending food;
    food.CategoryName = QStringLiteral("Food");
    food.NumberOfDateTimes = 3;
    food.Total = 16777216.0f;
    CategorySpending fuel;
    fuel.CategoryName = QStringLiteral("Fuel");
    fuel.NumberOfDateTimes = 1;
    fuel.Total = 1.0f;

    // Appended after what the lists hold, onto the running total.
    QList<int> days = { 7 };
    QList<float> totals = { 2.0f };
    float globalTotal = 1.0f;
    HistoryBuckets::appendCategoryFigures({ QStringLiteral("Fuel"), QStringLiteral("Food"), QStringLiteral("Gifts") },
                                          { &food, &fuel }, &days, &totals, &globalTotal);
    QCOMPARE(days, (QList<int> { 7, 1, 3, 0 }));
    QCOMPARE(totals, (QList<float> { 2.0f, 1.0f, 16777216.0f, 0.0f }));
    // 1 + 1 = 2, and 2 + 2^24 is exact: in the other order the 1s were lost.
    QCOMPARE(globalTotal, 16777218.0f);
}

void TestHistoryBuckets::categoryFiguresFromOneReadEqualThoseOfEachCategorysOwnLists()
{
    TempHome home;
    QVERIFY(home.isValid());
    DatabaseManager store(nullptr);
    QVERIFY(writeEntriesWithTiedDateTimes(home.databasePath()));
    const QList<QString> usedCategories = store.GetListOfAllDistinctCategoriesOfAllEntries();
    QCOMPARE(usedCategories.size(), 16);

    // Category by category, as the page once computed them: the count of
    // the category's distinct date-times, the sum of its list in list order,
    // and that sum added to the grand total, name after name.
    QList<int> daysEach;
    QList<float> totalsEach;
    float globalTotalEach = 0;
    for (const QString &name : usedCategories) {
        daysEach.append(int(store.GetAllDistinctDatesOfEntriesOfCategory(name).size()));
        float sum = 0;
        for (const Entry *entry : owned(store.GetAllEntriesOfCategory(name)))
            sum += entry->Price;
        totalsEach.append(sum);
        globalTotalEach += sum;
    }

    QList<int> days;
    QList<float> totals;
    float globalTotal = 0;
    HistoryBuckets::appendCategoryFigures(usedCategories, owned(store.GetSpendingPerCategory()).list(), &days, &totals,
                                          &globalTotal);

    QCOMPARE(days, daysEach);
    QCOMPARE(totals.size(), totalsEach.size());
    for (qsizetype i = 0; i < totals.size(); ++i)
        QCOMPARE(bitsOf(totals.at(i)), bitsOf(totalsEach.at(i)));
    QCOMPARE(bitsOf(globalTotal), bitsOf(globalTotalEach));
}

void TestHistoryBuckets::dayTotalsSumEachRunOfOneCalendarDay()
{
    EntryFixture fixture;
    fixture.add("Food", at(2024, 3, 5, 18, 30), 4.5f);
    fixture.add("Fuel", at(2024, 3, 5, 8, 0), 10.0f);
    fixture.add("Food", at(2024, 3, 3, 12, 0), 7.0f);
    fixture.add("Food", at(2024, 3, 1), 2.25f);

    const QList<DayTotal> expected = { { QDate(2024, 3, 5), 14.5f },
                                       { QDate(2024, 3, 3), 7.0f },
                                       { QDate(2024, 3, 1), 2.25f } };
    QCOMPARE(HistoryBuckets::dayTotals(fixture.entries()), expected);
}

void TestHistoryBuckets::dayTotalsFollowRunsSoARepeatedDayStartsANewTotal()
{
    EntryFixture fixture;
    fixture.add("Food", at(2024, 3, 5), 1.0f);
    fixture.add("Food", at(2024, 3, 4), 2.0f);
    fixture.add("Food", at(2024, 3, 5), 3.0f);

    const QList<DayTotal> expected = { { QDate(2024, 3, 5), 1.0f },
                                       { QDate(2024, 3, 4), 2.0f },
                                       { QDate(2024, 3, 5), 3.0f } };
    QCOMPARE(HistoryBuckets::dayTotals(fixture.entries()), expected);
}

void TestHistoryBuckets::noEntriesGiveNoDayTotals()
{
    QVERIFY(HistoryBuckets::dayTotals({}).isEmpty());
    QVERIFY(HistoryBuckets::categoryTotals({}).isEmpty());
    QCOMPARE(HistoryBuckets::sumOfPrices({}), 0.0f);
}

void TestHistoryBuckets::totalsTakenOneEntryAtATimeAreThoseOfTheWholeList()
{
    EntryFixture fixture;
    fixture.add("Travel", at(2024, 3, 9, 18), 100.0f);
    fixture.add("Food", at(2024, 3, 9, 8), 0.1f);
    fixture.add("Fuel", at(2024, 3, 8), 16777216.0f);
    fixture.add("Food", at(2024, 3, 8), 0.2f);
    fixture.add("Fuel", at(2024, 3, 9), 1.0f);

    HistoryBuckets::PeriodTotals totals;
    for (const Entry *entry : fixture.entries())
        totals.add(*entry);

    // Added in list order, in single precision: 2^24 + 0.2 + 1 stays 2^24.
    float sum = 0;
    for (float price : { 100.0f, 0.1f, 16777216.0f, 0.2f, 1.0f })
        sum += price;
    QCOMPARE(totals.sumOfPrices(), sum);
    // Runs of one day, a day met again starting a run of its own.
    const QList<DayTotal> days = { { QDate(2024, 3, 9), 100.0f + 0.1f },
                                   { QDate(2024, 3, 8), 16777216.0f + 0.2f },
                                   { QDate(2024, 3, 9), 1.0f } };
    QCOMPARE(totals.dayTotals(), days);
    const QList<LabelledTotal> categories = { { "Travel", 100.0f },
                                              { "Food", 0.1f + 0.2f },
                                              { "Fuel", 16777216.0f + 1.0f } };
    QCOMPARE(totals.categoryTotals(), categories);
    // The list's own figures are these very numbers.
    QCOMPARE(HistoryBuckets::sumOfPrices(fixture.entries()), totals.sumOfPrices());
    QCOMPARE(HistoryBuckets::dayTotals(fixture.entries()), totals.dayTotals());
    QCOMPARE(HistoryBuckets::categoryTotals(fixture.entries()), totals.categoryTotals());
}

void TestHistoryBuckets::totalsOfNoEntryAreEmpty()
{
    const HistoryBuckets::PeriodTotals totals;
    QCOMPARE(totals.sumOfPrices(), 0.0f);
    QVERIFY(totals.dayTotals().isEmpty());
    QVERIFY(totals.categoryTotals().isEmpty());
}

void TestHistoryBuckets::categoryTotalsKeepTheOrderInWhichCategoriesAreFirstMet()
{
    EntryFixture fixture;
    fixture.add("Travel", at(2024, 3, 9), 100.0f);
    fixture.add("Food", at(2024, 3, 8), 5.0f);
    fixture.add("Travel", at(2024, 3, 7), 20.5f);
    fixture.add("Books", at(2024, 3, 6), 12.0f);
    fixture.add("Food", at(2024, 3, 5), 7.25f);

    const QList<LabelledTotal> expected = { { "Travel", 120.5f }, { "Food", 12.25f }, { "Books", 12.0f } };
    QCOMPARE(HistoryBuckets::categoryTotals(fixture.entries()), expected);
}

void TestHistoryBuckets::dailyBucketsCoverEveryDayOfTheRange_data()
{
    QTest::addColumn<QDate>("start");
    QTest::addColumn<QDate>("end");
    QTest::addColumn<QList<DayTotal>>("days");
    QTest::addColumn<QList<LabelledTotal>>("expected");

    QTest::newRow("three days, entries on the first and last")
        << QDate(2024, 3, 1) << QDate(2024, 3, 3)
        << QList<DayTotal> { { QDate(2024, 3, 3), 9.0f }, { QDate(2024, 3, 1), 4.5f } }
        << QList<LabelledTotal> { { day(2024, 3, 1), 4.5f }, { day(2024, 3, 2), 0.0f }, { day(2024, 3, 3), 9.0f } };
    QTest::newRow("start equals end") << QDate(2024, 3, 2) << QDate(2024, 3, 2)
                                      << QList<DayTotal> { { QDate(2024, 3, 2), 6.0f } }
                                      << QList<LabelledTotal> { { day(2024, 3, 2), 6.0f } };
    QTest::newRow("days outside the range are ignored")
        << QDate(2024, 2, 28) << QDate(2024, 3, 1) << QList<DayTotal> { { QDate(2024, 3, 9), 1.0f } }
        << QList<LabelledTotal> { { day(2024, 2, 28), 0.0f }, { day(2024, 2, 29), 0.0f }, { day(2024, 3, 1), 0.0f } };
    QTest::newRow("start after end gives nothing")
        << QDate(2024, 3, 2) << QDate(2024, 3, 1) << QList<DayTotal> { { QDate(2024, 3, 2), 6.0f } }
        << QList<LabelledTotal> {};
}

void TestHistoryBuckets::dailyBucketsCoverEveryDayOfTheRange()
{
    QFETCH(QDate, start);
    QFETCH(QDate, end);
    QFETCH(QList<DayTotal>, days);
    QFETCH(QList<LabelledTotal>, expected);
    QCOMPARE(HistoryBuckets::dailyBuckets(start, end, days), expected);
}

void TestHistoryBuckets::aDayLooksUpItsFirstTotal()
{
    const QList<DayTotal> days = { { QDate(2024, 3, 2), 1.0f },
                                   { QDate(2024, 3, 1), 2.0f },
                                   { QDate(2024, 3, 2), 3.0f } };
    const QList<LabelledTotal> expected = { { day(2024, 3, 1), 2.0f }, { day(2024, 3, 2), 1.0f } };
    QCOMPARE(HistoryBuckets::dailyBuckets(QDate(2024, 3, 1), QDate(2024, 3, 2), days), expected);
    QCOMPARE(HistoryBuckets::weeklyBuckets(QDate(2024, 3, 1), QDate(2024, 3, 2), days),
             (QList<LabelledTotal> { { "Week 1", 3.0f } }));
}

void TestHistoryBuckets::weeklyBucketsStartOnTheStartDatesWeekday_data()
{
    QTest::addColumn<QDate>("start");
    QTest::addColumn<QDate>("end");
    QTest::addColumn<QList<DayTotal>>("days");
    QTest::addColumn<QList<LabelledTotal>>("expected");

    // 6 March 2024 is a Wednesday.
    const QList<DayTotal> spread = { { QDate(2024, 3, 20), 8.0f },
                                     { QDate(2024, 3, 19), 4.0f },
                                     { QDate(2024, 3, 13), 2.0f },
                                     { QDate(2024, 3, 12), 1.0f },
                                     { QDate(2024, 3, 6), 0.5f } };
    QTest::newRow("fifteen days from a Wednesday")
        << QDate(2024, 3, 6) << QDate(2024, 3, 20) << spread
        << QList<LabelledTotal> { { "Week 1", 1.5f }, { "Week 2", 6.0f }, { "Week 3", 8.0f } };
    QTest::newRow("start equals end") << QDate(2024, 3, 6) << QDate(2024, 3, 6) << spread
                                      << QList<LabelledTotal> { { "Week 1", 0.5f } };
    QTest::newRow("seven days are one week")
        << QDate(2024, 3, 6) << QDate(2024, 3, 12) << spread << QList<LabelledTotal> { { "Week 1", 1.5f } };
    QTest::newRow("eight days are two weeks") << QDate(2024, 3, 6) << QDate(2024, 3, 13) << spread
                                              << QList<LabelledTotal> { { "Week 1", 1.5f }, { "Week 2", 2.0f } };
    QTest::newRow("a Monday start ignores the calendar week")
        << QDate(2024, 3, 11) << QDate(2024, 3, 18) << spread
        << QList<LabelledTotal> { { "Week 1", 3.0f }, { "Week 2", 0.0f } };
}

void TestHistoryBuckets::weeklyBucketsStartOnTheStartDatesWeekday()
{
    QFETCH(QDate, start);
    QFETCH(QDate, end);
    QFETCH(QList<DayTotal>, days);
    QFETCH(QList<LabelledTotal>, expected);
    QCOMPARE(HistoryBuckets::weeklyBuckets(start, end, days), expected);
}

void TestHistoryBuckets::monthlyBucketsAreNamedByMonthAlone_data()
{
    QTest::addColumn<QDate>("start");
    QTest::addColumn<QDate>("end");
    QTest::addColumn<QList<DayTotal>>("days");
    QTest::addColumn<QList<LabelledTotal>>("expected");

    QTest::newRow("30 January to 2 March")
        << QDate(2024, 1, 30) << QDate(2024, 3, 2)
        << QList<DayTotal> { { QDate(2024, 3, 2), 5.0f },
                             { QDate(2024, 2, 14), 3.0f },
                             { QDate(2024, 2, 1), 2.0f },
                             { QDate(2024, 1, 31), 1.5f },
                             { QDate(2024, 1, 30), 1.0f } }
        << QList<LabelledTotal> { { "January", 2.5f }, { "February", 5.0f }, { "March", 5.0f } };
    QTest::newRow("start equals end") << QDate(2024, 2, 14) << QDate(2024, 2, 14)
                                      << QList<DayTotal> { { QDate(2024, 2, 14), 3.0f } }
                                      << QList<LabelledTotal> { { "February", 3.0f } };
    QTest::newRow("more than a year repeats a name")
        << QDate(2023, 12, 31) << QDate(2025, 1, 1)
        << QList<DayTotal> { { QDate(2025, 1, 1), 7.0f }, { QDate(2023, 12, 31), 1.0f } } << [] {
               QList<LabelledTotal> months = { { "December", 1.0f } };
               for (int month = 1; month <= 12; ++month)
                   months.append({ QDate(2024, month, 1).toString(QStringLiteral("MMMM")), 0.0f });
               months.append({ "January", 7.0f });
               return months;
           }();
}

void TestHistoryBuckets::monthlyBucketsAreNamedByMonthAlone()
{
    QFETCH(QDate, start);
    QFETCH(QDate, end);
    QFETCH(QList<DayTotal>, days);
    QFETCH(QList<LabelledTotal>, expected);
    QCOMPARE(HistoryBuckets::monthlyBuckets(start, end, days), expected);
}

void TestHistoryBuckets::totalTabWindowSpansTenDaysFromTheOldestEntry_data()
{
    QTest::addColumn<QDateTime>("first");
    QTest::addColumn<QDateTime>("last");
    QTest::addColumn<QDateTime>("from");
    QTest::addColumn<QDateTime>("to");

    QTest::newRow("exactly ten days: everything")
        << at(2024, 3, 1, 9) << at(2024, 3, 11, 9) << at(2024, 3, 1, 9) << at(2024, 3, 11, 9);
    QTest::newRow("eleven days: the first ten")
        << at(2024, 3, 1, 9) << at(2024, 3, 12, 9) << at(2024, 3, 1, 9) << at(2024, 3, 11, 9);
    QTest::newRow("a year: the first ten")
        << at(2023, 3, 1, 9, 30) << at(2024, 3, 1) << at(2023, 3, 1, 9, 30) << at(2023, 3, 11, 9, 30);
    QTest::newRow("one entry") << at(2024, 3, 1, 9) << at(2024, 3, 1, 9) << at(2024, 3, 1, 9) << at(2024, 3, 1, 9);
}

void TestHistoryBuckets::totalTabWindowSpansTenDaysFromTheOldestEntry()
{
    QFETCH(QDateTime, first);
    QFETCH(QDateTime, last);
    QFETCH(QDateTime, from);
    QFETCH(QDateTime, to);
    const DateTimeRange window = HistoryBuckets::totalTabWindow(first, last);
    QCOMPARE(window.from, from);
    QCOMPARE(window.to, to);
}

void TestHistoryBuckets::categoryWithTenDateTimesListsAllItsEntriesAndWithElevenOnlyTheRecent()
{
    QList<QDateTime> dates;
    for (int i = 0; i < 10; ++i)
        dates.append(at(2024, 3, 20 - i, 12));
    QVERIFY(HistoryBuckets::categoryListsAllEntries(dates));

    dates.append(at(2024, 3, 1, 12));
    QVERIFY(!HistoryBuckets::categoryListsAllEntries(dates));
    const DateTimeRange window = HistoryBuckets::categoryRecentWindow(dates);
    QCOMPARE(window.from, at(2024, 3, 11, 12));
    QCOMPARE(window.to, at(2024, 3, 20, 12));
}

void TestHistoryBuckets::categoryStatisticsCountDaysSpanAndAverages()
{
    const QList<QDateTime> dates = { at(2024, 3, 6, 10), at(2024, 3, 3, 10), at(2024, 3, 1, 10) };
    const CategoryStatistics statistics = HistoryBuckets::categoryStatistics(30.0f, dates, 120.0f);
    QCOMPARE(statistics.total, 30.0f);
    QCOMPARE(statistics.daysInUse, 3);
    QCOMPARE(statistics.calendarDays, qint64(5));
    QCOMPARE(statistics.dailyAverage, 10.0f);
    QCOMPARE(statistics.calendarDailyAverage, 6.0f);
    QCOMPARE(statistics.percentOfTotal, 25.0f);
}

void TestHistoryBuckets::categoryUsedOnceHasAnInfiniteCalendarAverage()
{
    const CategoryStatistics statistics = HistoryBuckets::categoryStatistics(7.0f, { at(2024, 3, 6, 10) }, 7.0f);
    QCOMPARE(statistics.daysInUse, 1);
    QCOMPARE(statistics.calendarDays, qint64(0));
    QCOMPARE(statistics.dailyAverage, 7.0f);
    QVERIFY(std::isinf(statistics.calendarDailyAverage));
    QCOMPARE(statistics.percentOfTotal, 100.0f);
}

void TestHistoryBuckets::contributionIsThePartInPerCentOfTheWhole()
{
    QCOMPARE(HistoryBuckets::percentOf(25.0f, 200.0f), 12.5f);
    const float ratio = 3.0f / 7.0f;
    QCOMPARE(HistoryBuckets::percentOf(3.0f, 7.0f), ratio * 100.0f);
    QVERIFY(std::isnan(HistoryBuckets::percentOf(0.0f, 0.0f)));
}

void TestHistoryBuckets::slicesHoldTotalsTruncatedTowardZero_data()
{
    QTest::addColumn<float>("total");
    QTest::addColumn<int>("slice");
    QTest::newRow("12.75") << 12.75f << 12;
    QTest::newRow("99.9") << 99.9f << 99;
    QTest::newRow("below one") << 0.5f << 0;
    QTest::newRow("whole") << 70.0f << 70;
    QTest::newRow("negative") << -2.5f << -2;
    QTest::newRow("the largest float below 2^31") << 2147483520.0f << 2147483520;
    QTest::newRow("beyond the largest int") << 3.0e9f << std::numeric_limits<int>::max();
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << std::numeric_limits<int>::max();
    QTest::newRow("below the least int") << -3.0e9f << std::numeric_limits<int>::min();
    QTest::newRow("minus infinity") << -std::numeric_limits<float>::infinity() << std::numeric_limits<int>::min();
    QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN() << 0;
}

void TestHistoryBuckets::slicesHoldTotalsTruncatedTowardZero()
{
    QFETCH(float, total);
    QFETCH(int, slice);
    QCOMPARE(HistoryBuckets::sliceValue(total), slice);
}

void TestHistoryBuckets::totalSliceLabelsShowTheShareWithATrailingBlank_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<float>("total");
    QTest::addColumn<float>("global");
    QTest::addColumn<QString>("label");
    QTest::newRow("three sevenths") << "Food" << 3.0f << 7.0f << "Food - 42.8571 % ";
    QTest::newRow("thirty") << "Food" << 30.0f << 100.0f << "Food - 30 % ";
    QTest::newRow("seventy") << "Travel" << 70.0f << 100.0f << "Travel - 70 % ";
    QTest::newRow("share from the untruncated total") << "Books" << 12.75f << 100.0f << "Books - 12.75 % ";
}

void TestHistoryBuckets::totalSliceLabelsShowTheShareWithATrailingBlank()
{
    QFETCH(QString, category);
    QFETCH(float, total);
    QFETCH(float, global);
    QFETCH(QString, label);
    QCOMPARE(HistoryBuckets::totalSliceLabel(category, total, global), label);
}

void TestHistoryBuckets::theBucketsRunWithoutTheWebEngine()
{
    // The buckets come from a real store; neither needs the web engine,
    // which only the maps link.
    QCOMPARE(loadedWebEngineLibraries(), QStringList());
}

QTEST_GUILESS_MAIN(TestHistoryBuckets)

#include "tst_historybuckets.moc"
