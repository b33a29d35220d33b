// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "historybuckets.h"

#include "records.h"
#include "format.h"

#include <QHash>

#include <cmath>
#include <limits>

namespace {

// A day's value. The hash keeps the first total of each day, as a search
// from the front of the list would find.
class DayValues
{
public:
    explicit DayValues(const QList<DayTotal> &days)
    {
        byDay.reserve(days.size());
        for (const DayTotal &day : days) {
            if (!byDay.contains(day.day))
                byDay.insert(day.day, day.total);
        }
    }

    float valueOf(const QDate &day) const { return byDay.value(day, 0.0f); }

private:
    QHash<QDate, float> byDay;
};

} // namespace

namespace HistoryBuckets {

namespace {

PeriodTotals totalsOf(const QList<Entry *> &entries)
{
    PeriodTotals totals;
    for (const Entry *entry : entries)
        totals.add(*entry);
    return totals;
}

} // namespace

float sumOfPrices(const QList<Entry *> &entries)
{
    return totalsOf(entries).sumOfPrices();
}

void appendCategoryFigures(const QList<QString> &names, const QList<CategorySpending *> &spending,
                           QList<int> *numberOfDateTimes, QList<float> *totals, float *globalTotal)
{
    QHash<QString, const CategorySpending *> byName;
    byName.reserve(spending.size());
    for (const CategorySpending *category : spending)
        byName.insert(category->CategoryName, category);
    for (const QString &name : names) {
        const CategorySpending *category = byName.value(name);
        const float total = category ? category->Total : 0.0f;
        numberOfDateTimes->append(category ? category->NumberOfDateTimes : 0);
        totals->append(total);
        *globalTotal += total;
    }
}

QList<DayTotal> dayTotals(const QList<Entry *> &entries)
{
    return totalsOf(entries).dayTotals();
}

QList<LabelledTotal> categoryTotals(const QList<Entry *> &entries)
{
    return totalsOf(entries).categoryTotals();
}

void PeriodTotals::add(const Entry &entry)
{
    add(entry.TransactDateTime.date(), entry.CategoryName, entry.Price);
}

void PeriodTotals::add(const QDate &day, const QString &category, float price)
{
    sum += price;

    if (!anyEntry) {
        openDay = { day, 0 };
        anyEntry = true;
    } else if (day != openDay.day) {
        closedDays.append(openDay);
        openDay = { day, 0 };
    }
    openDay.total += price;

    const int number = categoryNumbers.numberOf(category);
    if (number == categories.size())
        categories.append({ category, 0 });
    categories[number].total += price;
}

QList<DayTotal> PeriodTotals::dayTotals() const
{
    QList<DayTotal> days = closedDays;
    if (anyEntry)
        days.append(openDay);
    return days;
}

QList<LabelledTotal> dailyBuckets(const QDate &start, const QDate &end, const QList<DayTotal> &days)
{
    const DayValues values(days);
    const qint64 n = start.daysTo(end);
    QList<LabelledTotal> buckets;
    if (n >= 0)
        buckets.reserve(n + 1);
    for (qint64 i = 0; i <= n; ++i) {
        const QDate day = start.addDays(i);
        buckets.append({ Format::date(day), values.valueOf(day) });
    }
    return buckets;
}

QList<LabelledTotal> weeklyBuckets(const QDate &start, const QDate &end, const QList<DayTotal> &days)
{
    const DayValues values(days);
    const qint64 n = start.daysTo(end);
    const auto weekLabel = [](int week) { return QStringLiteral("Week %1").arg(week); };

    // Comparing weekday numbers is comparing full weekday names.
    const int firstWeekday = start.dayOfWeek();
    QList<LabelledTotal> buckets;
    int week = 1;
    float weekSum = values.valueOf(start);
    for (qint64 i = 1; i <= n; ++i) {
        const QDate day = start.addDays(i);
        if (day.dayOfWeek() == firstWeekday) {
            buckets.append({ weekLabel(week), weekSum });
            ++week;
            weekSum = 0;
        }
        weekSum += values.valueOf(day);
    }
    buckets.append({ weekLabel(week), weekSum });
    return buckets;
}

QList<LabelledTotal> monthlyBuckets(const QDate &start, const QDate &end, const QList<DayTotal> &days)
{
    const DayValues values(days);
    const qint64 n = start.daysTo(end);
    const QString monthFormat = QStringLiteral("MMMM");

    QList<LabelledTotal> buckets;
    QString month = start.toString(monthFormat);
    int monthNumber = start.month();
    float monthSum = 0;
    for (qint64 i = 0; i <= n; ++i) {
        const QDate day = start.addDays(i);
        // Day by day, the month's name changes exactly when its number does.
        if (day.month() != monthNumber) {
            buckets.append({ month, monthSum });
            monthSum = 0;
            month = day.toString(monthFormat);
            monthNumber = day.month();
        }
        monthSum += values.valueOf(day);
    }
    buckets.append({ month, monthSum });
    return buckets;
}

DateTimeRange totalTabWindow(const QDateTime &first, const QDateTime &last)
{
    if (first.daysTo(last) > 10)
        return { first, first.addDays(10) };
    return { first, last };
}

bool categoryListsAllEntries(const QList<QDateTime> &distinctDateTimes)
{
    return distinctDateTimes.size() <= 10;
}

DateTimeRange categoryRecentWindow(const QList<QDateTime> &distinctDateTimes)
{
    return { distinctDateTimes.at(9), distinctDateTimes.at(0) };
}

CategoryStatistics categoryStatistics(float categoryTotal, const QList<QDateTime> &distinctDateTimes, float globalTotal)
{
    CategoryStatistics statistics;
    statistics.total = categoryTotal;
    statistics.daysInUse = int(distinctDateTimes.size());
    if (!distinctDateTimes.isEmpty())
        statistics.calendarDays = distinctDateTimes.last().daysTo(distinctDateTimes.first());
    // Float divisions throughout: a single day of use gives an infinite
    // calendar average, which the page shows as it comes.
    statistics.dailyAverage = categoryTotal / float(statistics.daysInUse);
    statistics.calendarDailyAverage = categoryTotal / float(statistics.calendarDays);
    statistics.percentOfTotal = percentOf(categoryTotal, globalTotal);
    return statistics;
}

float percentOf(float part, float whole)
{
    const float ratio = part / whole;
    return ratio * 100.0f;
}

int sliceValue(float total)
{
    // A total beyond the range of an int takes the nearest int; one that is
    // no number at all (an infinite sum less another) takes none.
    if (std::isnan(total))
        return 0;
    if (total >= float(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (total <= float(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return static_cast<int>(total);
}

QString totalSliceLabel(const QString &category, float categoryTotal, float globalTotal)
{
    return category + QStringLiteral(" - %1 % ").arg(Format::number(double(percentOf(categoryTotal, globalTotal))));
}

} // namespace HistoryBuckets
