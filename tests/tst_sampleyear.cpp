// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The year of invented entries that the screenshots are taken on: the
// program is run as scripts/screenshots.sh runs it, on a home of its own,
// and the store of that home is read back.
#include "databasemanager.h"

#include "temphome.h"
#include "testsupport.h"

#include <QDate>
#include <QSet>
#include <QTest>

#include <memory>

namespace {

ProgramRun runSampleYear(const QString &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home);
    return runProgram(QStringLiteral(LEDGERLY_SAMPLE_YEAR_PROGRAM), QStringList(), environment);
}

// What an entry shows on the pages, as one comparable text.
QStringList entryTexts(DatabaseManager &store)
{
    QStringList texts;
    for (const Entry *entry : owned(store.GetAllEntries())) {
        texts.append(QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
                         .arg(entry->ItemName, entry->CategoryName, entry->TransactDateTime.toString(Qt::ISODate),
                              QString::number(double(entry->Price), 'f', 2), entry->LocationText)
                         .arg(entry->EnableGeoLoc)
                         .arg(double(entry->GeoLocLatit), 0, 'f', 5)
                         .arg(double(entry->GeoLocLongit), 0, 'f', 5));
    }
    return texts;
}

// The year ends on Friday 30 October 2026 and starts 364 days before, on
// Friday 31 October 2025.
const QDate firstDay(2025, 10, 31);
const QDate lastDay(2026, 10, 30);

int countDays(int dayOfWeekWanted)
{
    int days = 0;
    for (QDate day = firstDay; day <= lastDay; day = day.addDays(1))
        days += day.dayOfWeek() == dayOfWeekWanted ? 1 : 0;
    return days;
}

} // namespace

class TestSampleYear : public QObject
{
    Q_OBJECT

private slots:
    void writesAYearOfEntriesFromItsFirstToItsLastDay();
    void usesOnlyTheStoresOwnCategoriesAndRemembersPlaces();
    void theSameYearComesOutEveryTime();
    void aStoreWithEntriesIsLeftAlone();
};

void TestSampleYear::writesAYearOfEntriesFromItsFirstToItsLastDay()
{
    TempHome home;
    QVERIFY(home.isValid());
    const ProgramRun run = runSampleYear(home.path());
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.err.isEmpty(), qPrintable(run.err));

    DatabaseManager store(nullptr);
    QVERIFY(store.isUsable());
    const int total = store.GetTotalNumberOfEntries();
    QVERIFY2(run.out.startsWith(QString::number(total) + QStringLiteral(" entries from 2025-10-31 to 2026-10-30")),
             qPrintable(run.out));

    QCOMPARE(store.GetDateOfFirstEntry().date(), firstDay);
    QCOMPARE(store.GetDateOfLastEntry().date(), lastDay);
    QCOMPARE(firstDay.daysTo(lastDay), 364);

    // A coffee every working day, the big shop every Saturday and the
    // insurance on the first of every month, at the least.
    const int workdays = 5 * 52 + 1;
    int weekdays = 0;
    for (int dayOfWeek = 1; dayOfWeek <= 5; ++dayOfWeek)
        weekdays += countDays(dayOfWeek);
    QCOMPARE(weekdays, workdays);
    const int saturdays = countDays(6);
    QCOMPARE(saturdays, 52);
    QVERIFY2(total >= workdays + saturdays + 12, qPrintable(QString::number(total)));
    // And no more than a handful a day.
    QVERIFY2(total <= 6 * 365, qPrintable(QString::number(total)));

    const auto entries = owned(store.GetAllEntries());
    int weeklyShops = 0;
    int insurance = 0;
    QSet<QDate> daysWithCoffee;
    QSet<int> months;
    for (const Entry *entry : entries) {
        const QDate day = entry->TransactDateTime.date();
        QVERIFY(day >= firstDay && day <= lastDay);
        QVERIFY(entry->Price > 0);
        QVERIFY(!entry->ItemName.isEmpty());
        QVERIFY(!entry->LocationText.isEmpty());
        months.insert(day.year() * 12 + day.month());
        if (entry->ItemName == QLatin1String("Weekly groceries")) {
            QCOMPARE(day.dayOfWeek(), 6);
            ++weeklyShops;
        }
        if (entry->CategoryName == QLatin1String("Insurance - Health")) {
            QCOMPARE(day.day(), 1);
            QCOMPARE(entry->Price, 86.50f);
            ++insurance;
        }
        if (entry->CategoryName == QLatin1String("Drinks"))
            daysWithCoffee.insert(day);
    }
    QCOMPARE(weeklyShops, saturdays);
    // 1 November 2025 to 1 October 2026.
    QCOMPARE(insurance, 12);
    for (QDate day = firstDay; day <= lastDay; day = day.addDays(1)) {
        if (day.dayOfWeek() <= 5)
            QVERIFY2(daysWithCoffee.contains(day), qPrintable(day.toString(Qt::ISODate)));
    }
    // October 2025 to October 2026: thirteen calendar months, none empty.
    QCOMPARE(months.size(), 13);
}

void TestSampleYear::usesOnlyTheStoresOwnCategoriesAndRemembersPlaces()
{
    TempHome home;
    QVERIFY(home.isValid());
    QCOMPARE(runSampleYear(home.path()).exitCode, 0);

    DatabaseManager store(nullptr);
    QSet<QString> known;
    for (const Category *category : owned(store.GetAllCategories()))
        known.insert(category->CategoryName);
    const QList<QString> used = store.GetListOfAllDistinctCategoriesOfAllEntries();
    // Enough categories for a pie chart worth looking at.
    QVERIFY2(used.size() >= 8, qPrintable(QStringList(used).join(QLatin1Char(','))));
    for (const QString &category : used)
        QVERIFY2(known.contains(category), qPrintable(category));
    // The options page offers every category; the sample adds none.
    QCOMPARE(store.GetNumberOfCategories(), int(known.size()));

    int perCategory = 0;
    for (const QString &category : used) {
        const int entries = store.GetNumberOfEntriesOfCategory(category);
        QVERIFY2(entries > 0, qPrintable(category));
        perCategory += entries;
    }
    QCOMPARE(perCategory, store.GetTotalNumberOfEntries());

    // The places map has several places to show, each with its spending.
    const auto places = owned(store.GetSpendingPerRememberedPlace());
    QVERIFY2(places.size() >= 3, qPrintable(QString::number(places.size())));
    for (const RememberedPlaceSpending *place : places) {
        QVERIFY(place->NumberOfEntries > 0);
        QVERIFY(place->Total > 0);
        QVERIFY(qAbs(place->LocationLatitude) > 0.5f && qAbs(place->LocationLongitude) > 0.5f);
    }
}

void TestSampleYear::theSameYearComesOutEveryTime()
{
    QStringList first;
    {
        TempHome home;
        QVERIFY(home.isValid());
        QCOMPARE(runSampleYear(home.path()).exitCode, 0);
        DatabaseManager store(nullptr);
        first = entryTexts(store);
    }
    QVERIFY(!first.isEmpty());
    TempHome home;
    QVERIFY(home.isValid());
    QCOMPARE(runSampleYear(home.path()).exitCode, 0);
    DatabaseManager store(nullptr);
    QCOMPARE(entryTexts(store), first);
}

void TestSampleYear::aStoreWithEntriesIsLeftAlone()
{
    TempHome home;
    QVERIFY(home.isValid());
    QCOMPARE(runSampleYear(home.path()).exitCode, 0);
    QStringList before;
    {
        DatabaseManager store(nullptr);
        before = entryTexts(store);
    }

    const ProgramRun again = runSampleYear(home.path());
    QCOMPARE(again.exitCode, 1);
    QVERIFY2(again.err.contains(QLatin1String("already holds entries")), qPrintable(again.err));
    DatabaseManager store(nullptr);
    QCOMPARE(entryTexts(store), before);
}

QTEST_GUILESS_MAIN(TestSampleYear)
#include "tst_sampleyear.moc"
