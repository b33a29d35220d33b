// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

#include "textnumbers.h"

class CategorySpending;
class Entry;

// A labelled amount on the history page: a day, a week, a month or a
// category with what was spent in it. Sums are single precision, as shown.
struct LabelledTotal
{
    QString label;
    float total = 0;

    bool operator==(const LabelledTotal &other) const { return label == other.label && total == other.total; }
};

// What was spent on one calendar day.
struct DayTotal
{
    QDate day;
    float total = 0;

    bool operator==(const DayTotal &other) const { return day == other.day && total == other.total; }
};

// A closed range of entry date-times, both ends included.
struct DateTimeRange
{
    QDateTime from;
    QDateTime to;
};

// What the Category Wise tab says about one category.
struct CategoryStatistics
{
    float total = 0;
    int daysInUse = 0;
    qint64 calendarDays = 0;
    float dailyAverage = 0;
    float calendarDailyAverage = 0;
    float percentOfTotal = 0;
};

// The grouping rules behind the history page's figures, kept apart from the
// widgets so that they can be checked without painting. Entry lists come in
// the store's order, newest first; nothing here takes ownership of them.
namespace HistoryBuckets {

// All prices added in list order.
float sumOfPrices(const QList<Entry *> &entries);

// For each name, in order: appends the number of distinct entry date-times
// and the total of the name's figures in `spending` (0 for a name it lacks)
// and adds the total to *globalTotal.
void appendCategoryFigures(const QList<QString> &names, const QList<CategorySpending *> &spending,
                           QList<int> *numberOfDateTimes, QList<float> *totals, float *globalTotal);

// One total per run of entries on the same calendar day, in list order.
// Runs, not distinct days: the grouping relies on the store's date order.
QList<DayTotal> dayTotals(const QList<Entry *> &entries);

// One total per category, in the order the categories are first met.
QList<LabelledTotal> categoryTotals(const QList<Entry *> &entries);

// The three figures above taken one entry at a time, as a list is read,
// for callers that do not keep the list: the very same sums, added in the
// same order.
class PeriodTotals
{
public:
    void add(const Entry &entry);
    // An entry of `category` on `day` (its local date-time's date).
    void add(const QDate &day, const QString &category, float price);

    float sumOfPrices() const { return sum; }
    QList<DayTotal> dayTotals() const;
    const QList<LabelledTotal> &categoryTotals() const { return categories; }

private:
    float sum = 0;
    QList<DayTotal> closedDays;
    DayTotal openDay {};
    bool anyEntry = false;
    QList<LabelledTotal> categories;
    // The number of each category is its place in `categories`.
    TextNumbers categoryNumbers;
};

// Graph buckets from start to end, both included. A day's value is the
// first day total of that day, or 0; a daily bucket is labelled with the
// day's text date.
QList<LabelledTotal> dailyBuckets(const QDate &start, const QDate &end, const QList<DayTotal> &days);
// Weeks begin on the start date's weekday, whatever the calendar's week.
QList<LabelledTotal> weeklyBuckets(const QDate &start, const QDate &end, const QList<DayTotal> &days);
// Labelled by month name alone: a range longer than a year repeats names.
QList<LabelledTotal> monthlyBuckets(const QDate &start, const QDate &end, const QList<DayTotal> &days);

// The Total tab lists the first ten days counted from the oldest entry when
// the entries span more than ten days, otherwise everything.
DateTimeRange totalTabWindow(const QDateTime &first, const QDateTime &last);

// The Category Wise tab lists all of a category's entries when it was used
// at ten date-times or fewer (distinct date-times, newest first) ...
bool categoryListsAllEntries(const QList<QDateTime> &distinctDateTimes);
// ... otherwise those from the tenth newest date-time up to the newest.
DateTimeRange categoryRecentWindow(const QList<QDateTime> &distinctDateTimes);

// The six figures of the Category Wise tab. The calendar span counts whole
// days from the oldest to the newest date-time, without the first day.
CategoryStatistics categoryStatistics(float categoryTotal, const QList<QDateTime> &distinctDateTimes,
                                      float globalTotal);

// A part in per cent of a whole, in single precision, division first.
float percentOf(float part, float whole);
// A pie slice holds the total truncated toward zero, or the largest (least)
// int for a total beyond the range of an int, and 0 for one that is NaN.
int sliceValue(float total);
// "Food - 42.8571 % ": the Total tab's slice label.
QString totalSliceLabel(const QString &category, float categoryTotal, float globalTotal);

} // namespace HistoryBuckets
