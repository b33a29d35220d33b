// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "recurrencedates.h"

#include <QTest>

namespace {

QList<QDate> firstOccurrences(const QDate &first, const Recurrence &every, int count)
{
    QList<QDate> days;
    for (int index = 0; index < count; ++index)
        days << RecurrenceDates::occurrence(first, every, index);
    return days;
}

QDate day(int year, int month, int dayOfMonth)
{
    return QDate(year, month, dayOfMonth);
}

const Recurrence monthly { 1, RecurrenceUnit::Month };

} // namespace

class TestRecurrenceDates : public QObject
{
    Q_OBJECT

private slots:
    void monthlyFromTheLastDayOfJanuaryKeepsToTheMonthsEnd();
    void monthlyAnchoringCrossesALeapFebruary();
    void yearlyFromTheTwentyNinthOfFebruaryFallsOnTheTwentyEighthInOtherYears();
    void weeklyAndEveryTenDaysCrossTheYearsEnd();
    void everySecondMonthCountsFromTheFirstDayNotFromTheLastOccurrence();
    void aLastDayIsTheLastOccurrenceAndNoneComesAfter();
    void aNumberOfTimesIsTheNumberOfOccurrencesInAll();
    void occurrencesLeftCountWhatIsStillToCome();
    void theFirstOccurrenceAfterADayIsFoundFromTheCalendar_data();
    void theFirstOccurrenceAfterADayIsFoundFromTheCalendar();
    void stepsReadAsACountAndAUnitLetter_data();
    void stepsReadAsACountAndAUnitLetter();
    void onlyOneToNinetyNineStepsAreAcceptable();
    void aStepIsToldSingularForOneAndPluralOtherwise();
};

void TestRecurrenceDates::monthlyFromTheLastDayOfJanuaryKeepsToTheMonthsEnd()
{
    // 2027 is no leap year.
    QCOMPARE(firstOccurrences(day(2027, 1, 31), monthly, 6),
             QList<QDate>({ day(2027, 1, 31), day(2027, 2, 28), day(2027, 3, 31), day(2027, 4, 30), day(2027, 5, 31),
                            day(2027, 6, 30) }));
}

void TestRecurrenceDates::monthlyAnchoringCrossesALeapFebruary()
{
    // From 31 Jan 2027: the thirteenth month is February 2028, a leap one.
    const QList<QDate> days = firstOccurrences(day(2027, 1, 31), monthly, 15);
    QCOMPARE(days.at(1), day(2027, 2, 28));
    QCOMPARE(days.at(12), day(2028, 1, 31));
    QCOMPARE(days.at(13), day(2028, 2, 29));
    QCOMPARE(days.at(14), day(2028, 3, 31));
    // From the 30th, February takes its own last day and March the 30th.
    QCOMPARE(firstOccurrences(day(2028, 1, 30), monthly, 3),
             QList<QDate>({ day(2028, 1, 30), day(2028, 2, 29), day(2028, 3, 30) }));
}

void TestRecurrenceDates::yearlyFromTheTwentyNinthOfFebruaryFallsOnTheTwentyEighthInOtherYears()
{
    QCOMPARE(
        firstOccurrences(day(2024, 2, 29), { 1, RecurrenceUnit::Year }, 5),
        QList<QDate>({ day(2024, 2, 29), day(2025, 2, 28), day(2026, 2, 28), day(2027, 2, 28), day(2028, 2, 29) }));
    // Every second year from a leap day meets leap years only in 2028, 2032.
    QCOMPARE(firstOccurrences(day(2024, 2, 29), { 2, RecurrenceUnit::Year }, 3),
             QList<QDate>({ day(2024, 2, 29), day(2026, 2, 28), day(2028, 2, 29) }));
}

void TestRecurrenceDates::weeklyAndEveryTenDaysCrossTheYearsEnd()
{
    QCOMPARE(firstOccurrences(day(2026, 12, 17), { 1, RecurrenceUnit::Week }, 4),
             QList<QDate>({ day(2026, 12, 17), day(2026, 12, 24), day(2026, 12, 31), day(2027, 1, 7) }));
    QCOMPARE(firstOccurrences(day(2026, 12, 15), { 10, RecurrenceUnit::Day }, 4),
             QList<QDate>({ day(2026, 12, 15), day(2026, 12, 25), day(2027, 1, 4), day(2027, 1, 14) }));
    QCOMPARE(firstOccurrences(day(2026, 12, 20), { 2, RecurrenceUnit::Week }, 3),
             QList<QDate>({ day(2026, 12, 20), day(2027, 1, 3), day(2027, 1, 17) }));
}

void TestRecurrenceDates::everySecondMonthCountsFromTheFirstDayNotFromTheLastOccurrence()
{
    // 31 Aug, then 31 Oct, 31 Dec, 28 Feb (2027), 30 Apr, 30 Jun, 31 Aug.
    QCOMPARE(firstOccurrences(day(2026, 8, 31), { 2, RecurrenceUnit::Month }, 7),
             QList<QDate>({ day(2026, 8, 31), day(2026, 10, 31), day(2026, 12, 31), day(2027, 2, 28), day(2027, 4, 30),
                            day(2027, 6, 30), day(2027, 8, 31) }));
}

void TestRecurrenceDates::aLastDayIsTheLastOccurrenceAndNoneComesAfter()
{
    const QDate first = day(2026, 1, 31);
    RecurrenceEnd end;
    end.until = day(2026, 4, 30);
    // 31 Jan, 28 Feb, 31 Mar, 30 Apr: the last day itself is one.
    for (int index = 0; index < 4; ++index)
        QVERIFY2(RecurrenceDates::exists(first, monthly, end, index), qPrintable(QString::number(index)));
    QVERIFY(!RecurrenceDates::exists(first, monthly, end, 4));
    QVERIFY(!RecurrenceDates::exists(first, monthly, end, 40));
    // A day before the occurrence ends the run one earlier.
    end.until = day(2026, 4, 29);
    QVERIFY(RecurrenceDates::exists(first, monthly, end, 2));
    QVERIFY(!RecurrenceDates::exists(first, monthly, end, 3));
    QVERIFY(!RecurrenceDates::exists(first, monthly, end, -1));
}

void TestRecurrenceDates::aNumberOfTimesIsTheNumberOfOccurrencesInAll()
{
    RecurrenceEnd end;
    end.times = 3;
    const QDate first = day(2026, 12, 29);
    const Recurrence weekly { 1, RecurrenceUnit::Week };
    QVERIFY(RecurrenceDates::exists(first, weekly, end, 0));
    QVERIFY(RecurrenceDates::exists(first, weekly, end, 2));
    QVERIFY(!RecurrenceDates::exists(first, weekly, end, 3));
    // Without an end it goes on.
    QVERIFY(RecurrenceDates::exists(first, weekly, RecurrenceEnd(), 5000));
}

void TestRecurrenceDates::occurrencesLeftCountWhatIsStillToCome()
{
    RecurrenceEnd times;
    times.times = 3;
    QCOMPARE(RecurrenceDates::left(day(2026, 1, 1), monthly, times, 0), std::optional<qint64>(3));
    QCOMPARE(RecurrenceDates::left(day(2026, 1, 1), monthly, times, 2), std::optional<qint64>(1));
    QCOMPARE(RecurrenceDates::left(day(2026, 1, 1), monthly, times, 3), std::optional<qint64>(0));
    RecurrenceEnd until;
    until.until = day(2026, 12, 31);
    // Twelve month ends in 2026, one of them done.
    QCOMPARE(RecurrenceDates::left(day(2026, 1, 31), monthly, until, 1), std::optional<qint64>(11));
    QCOMPARE(RecurrenceDates::left(day(2026, 1, 31), monthly, RecurrenceEnd(), 1), std::nullopt);
}

void TestRecurrenceDates::theFirstOccurrenceAfterADayIsFoundFromTheCalendar_data()
{
    QTest::addColumn<QDate>("first");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QDate>("after");
    QTest::addColumn<qint64>("index");
    QTest::newRow("before the first day")
        << day(2026, 5, 1) << 1 << int(RecurrenceUnit::Month) << day(2026, 1, 1) << qint64(0);
    QTest::newRow("on the first day") << day(2026, 5, 1) << 1 << int(RecurrenceUnit::Month) << day(2026, 5, 1)
                                      << qint64(1);
    // 31 Jan, 28 Feb, 31 Mar: the day after 28 Feb is no occurrence.
    QTest::newRow("a clamped month end") << day(2026, 1, 31) << 1 << int(RecurrenceUnit::Month) << day(2026, 3, 1)
                                         << qint64(2);
    QTest::newRow("every ten days") << day(2026, 1, 1) << 10 << int(RecurrenceUnit::Day) << day(2026, 12, 31)
                                    << qint64(37);
    QTest::newRow("ten years of weeks") << day(2026, 1, 5) << 1 << int(RecurrenceUnit::Week) << day(2036, 1, 4)
                                        << qint64(522);
    QTest::newRow("leap days") << day(2024, 2, 29) << 1 << int(RecurrenceUnit::Year) << day(2028, 2, 28) << qint64(4);
}

void TestRecurrenceDates::theFirstOccurrenceAfterADayIsFoundFromTheCalendar()
{
    QFETCH(QDate, first);
    QFETCH(int, count);
    QFETCH(int, unit);
    QFETCH(QDate, after);
    QFETCH(qint64, index);
    const Recurrence every { count, RecurrenceUnit(unit) };
    QCOMPARE(RecurrenceDates::firstIndexAfter(first, every, after), index);
    QVERIFY(RecurrenceDates::occurrence(first, every, index) > after);
    if (index > 0)
        QVERIFY(RecurrenceDates::occurrence(first, every, index - 1) <= after);
}

void TestRecurrenceDates::stepsReadAsACountAndAUnitLetter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("reads");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("unit");
    QTest::newRow("a month") << "1m" << true << 1 << int(RecurrenceUnit::Month);
    QTest::newRow("two weeks") << "2w" << true << 2 << int(RecurrenceUnit::Week);
    QTest::newRow("ten days") << "10d" << true << 10 << int(RecurrenceUnit::Day);
    QTest::newRow("a year") << "1y" << true << 1 << int(RecurrenceUnit::Year);
    QTest::newRow("no step at all, but it reads") << "0d" << true << 0 << int(RecurrenceUnit::Day);
    QTest::newRow("too many, but it reads") << "100m" << true << 100 << int(RecurrenceUnit::Month);
    QTest::newRow("an unknown unit") << "3x" << false << 0 << 0;
    QTest::newRow("no count") << "m" << false << 0 << 0;
    QTest::newRow("no unit") << "3" << false << 0 << 0;
    QTest::newRow("a fraction") << "1.5m" << false << 0 << 0;
    QTest::newRow("a capital unit") << "1M" << false << 0 << 0;
    QTest::newRow("negative") << "-1m" << false << 0 << 0;
    QTest::newRow("empty") << "" << false << 0 << 0;
}

void TestRecurrenceDates::stepsReadAsACountAndAUnitLetter()
{
    QFETCH(QString, text);
    QFETCH(bool, reads);
    QFETCH(int, count);
    QFETCH(int, unit);
    const std::optional<Recurrence> read = RecurrenceDates::fromText(text);
    QCOMPARE(read.has_value(), reads);
    if (!reads)
        return;
    QCOMPARE(read->count, count);
    QCOMPARE(int(read->unit), unit);
    QCOMPARE(RecurrenceDates::text(*read), text);
}

void TestRecurrenceDates::onlyOneToNinetyNineStepsAreAcceptable()
{
    QVERIFY(!RecurrenceDates::isAcceptable({ 0, RecurrenceUnit::Day }));
    QVERIFY(RecurrenceDates::isAcceptable({ 1, RecurrenceUnit::Day }));
    QVERIFY(RecurrenceDates::isAcceptable({ 99, RecurrenceUnit::Year }));
    QVERIFY(!RecurrenceDates::isAcceptable({ 100, RecurrenceUnit::Week }));
}

void TestRecurrenceDates::aStepIsToldSingularForOneAndPluralOtherwise()
{
    QCOMPARE(RecurrenceDates::told({ 1, RecurrenceUnit::Month }), QStringLiteral("1 month"));
    QCOMPARE(RecurrenceDates::told({ 2, RecurrenceUnit::Week }), QStringLiteral("2 weeks"));
    QCOMPARE(RecurrenceDates::told({ 1, RecurrenceUnit::Day }), QStringLiteral("1 day"));
    QCOMPARE(RecurrenceDates::told({ 10, RecurrenceUnit::Day }), QStringLiteral("10 days"));
    QCOMPARE(RecurrenceDates::told({ 1, RecurrenceUnit::Year }), QStringLiteral("1 year"));
    QCOMPARE(RecurrenceDates::told({ 3, RecurrenceUnit::Year }), QStringLiteral("3 years"));
}

QTEST_GUILESS_MAIN(TestRecurrenceDates)
#include "tst_recurrencedates.moc"
