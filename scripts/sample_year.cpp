// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Writes a year of invented, everyday spending into the database of $HOME,
// for the screenshots and for trying the pages out on something that looks
// like real use. Nothing in it belongs to anyone: the shops, the items and
// the prices are made up.
//
// The year is always the same: the same seed and the same last day, so that
// the pictures made from it change only when a page changes. A database
// that already holds entries is left alone.
//
//   HOME=/tmp/sample ledgerly_sample_year

#include "databasemanager.h"

#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QTextStream>
#include <QTime>

#include <cmath>
#include <cstdint>
#include <random>

namespace {

// The last day of the year, a Friday; the first is 364 days before it.
const QDate lastDay(2026, 10, 30);
const QDate firstDay = lastDay.addDays(-364);

struct Place
{
    const char *name;
    // Remembered places carry coordinates and show on the places map; the
    // others are a place text only. They lie around the map's default
    // centre, so that the map opens on them.
    bool remembered;
    double latitude;
    double longitude;
};

const Place stationCafe{ "Station Café", true, 1.27930, 103.84950 };
const Place greenwayMarket{ "Greenway Market", true, 1.28410, 103.84310 };
const Place cornerGrocer{ "Corner Grocer", true, 1.27480, 103.84380 };
const Place riversidePetrol{ "Riverside Petrol", true, 1.28900, 103.85350 };
const Place harbourBistro{ "Harbour Bistro", true, 1.27170, 103.85420 };
const Place foodCourt{ "Market Street Food Court", true, 1.28150, 103.85080 };
const Place cinema{ "Plaza Cinema", false, 0, 0 };
const Place outfitters{ "Northside Outfitters", false, 0, 0 };
const Place hardware{ "Hardware & Home", false, 0, 0 };
const Place online{ "Online", false, 0, 0 };
const Place sportsCentre{ "Sports Centre", false, 0, 0 };

class SampleYear
{
public:
    explicit SampleYear(DatabaseManager &store) : store(store), random(20261030u) { }

    bool writeAll()
    {
        for (QDate day = firstDay; day <= lastDay; day = day.addDays(1)) {
            if (!writeDay(day))
                return false;
        }
        return true;
    }

    int written = 0;

private:
    // A number in [0, n), the same on every machine for the same seed: the
    // standard distributions may differ between libraries, the engine may not.
    int below(int n) { return int(random() % std::uint32_t(n)); }
    bool chance(int percent) { return below(100) < percent; }
    // A price between `low` and `high`, in whole cents.
    float price(double low, double high)
    {
        const int cents = int(std::lround(low * 100)) + below(int(std::lround((high - low) * 100)) + 1);
        return float(cents / 100.0);
    }
    QTime around(int hour, int spreadMinutes) { return QTime(hour, 0).addSecs(below(spreadMinutes) * 60); }

    bool add(const QDate &day, const QTime &time, const char *item, const char *category, float amount,
             const Place &place)
    {
        Entry entry;
        entry.ItemName = QString::fromUtf8(item);
        entry.CategoryName = QString::fromUtf8(category);
        entry.TransactDateTime = QDateTime(day, time);
        entry.Price = amount;
        entry.LocationText = QString::fromUtf8(place.name);
        entry.EnableGeoLoc = place.remembered;
        entry.GeoLocLatit = float(place.latitude);
        entry.GeoLocLongit = float(place.longitude);
        if (!store.AddEntry(&entry))
            return false;
        ++written;
        return true;
    }

    // Each draw is its own statement: the order in which the arguments of
    // one call are worked out is the compiler's to choose.
    bool writeDay(const QDate &day)
    {
        const int weekday = day.dayOfWeek();
        const bool workday = weekday <= 5;
        bool ok = true;

        if (day.day() == 1)
            ok = ok && add(day, QTime(9, 0), "Health insurance", "Insurance - Health", 86.50f, online);

        // Coffee on the way to work, and now and then at the weekend.
        if (workday || chance(30)) {
            const char *coffee = chance(70) ? "Flat white" : "Cappuccino";
            const QTime time = workday ? around(8, 40) : around(10, 90);
            const float amount = price(3.40, 4.20);
            ok = ok && add(day, time, coffee, "Drinks", amount, stationCafe);
        }
        if (workday && chance(55)) {
            static const char *const lunches[] = { "Chicken rice", "Noodle soup", "Vegetable curry", "Sandwich" };
            const char *lunch = lunches[below(4)];
            const QTime time = around(12, 60);
            const float amount = price(4.50, 9.80);
            ok = ok && add(day, time, lunch, "Food", amount, foodCourt);
        }
        if (weekday == 6) {
            const QTime time = around(10, 120);
            const float amount = price(48.0, 96.0);
            ok = ok && add(day, time, "Weekly groceries", "Groceries", amount, greenwayMarket);
        } else if (chance(18)) {
            static const char *const topUps[] = { "Milk and bread", "Fruit and vegetables", "Eggs and cheese" };
            const char *topUp = topUps[below(3)];
            const QTime time = around(18, 90);
            const float amount = price(4.80, 16.50);
            ok = ok && add(day, time, topUp, "Groceries", amount, cornerGrocer);
        }
        if (day.day() % 11 == 3) {
            const QTime time = around(17, 120);
            const float amount = price(52.0, 71.0);
            ok = ok && add(day, time, "Fuel", "Automobile - Fuel", amount, riversidePetrol);
        }
        if ((weekday == 5 || weekday == 6) && chance(30)) {
            const QTime time = around(19, 90);
            const float amount = price(42.0, 88.0);
            ok = ok && add(day, time, "Dinner for two", "Entertainment - Dining", amount, harbourBistro);
        }
        if (weekday == 7 && chance(25))
            ok = ok && add(day, around(15, 180), "Cinema tickets", "Entertainment - Movies", 26.00f, cinema);
        if (weekday == 3 && chance(40))
            ok = ok && add(day, around(19, 30), "Badminton court", "Entertainment - Sports", 12.00f, sportsCentre);
        if (day.day() == 20 && day.month() % 2 == 0) {
            static const char *const clothes[] = { "Shirt", "Running shoes", "Jeans", "Rain jacket" };
            const char *garment = clothes[below(4)];
            const QTime time = around(14, 180);
            const float amount = price(24.0, 95.0);
            ok = ok && add(day, time, garment, "Clothing", amount, outfitters);
        }
        if (day.day() == 14) {
            static const char *const things[] = { "Cleaning supplies", "Light bulbs", "Kitchen towels", "Batteries" };
            const char *thing = things[below(4)];
            const QTime time = around(11, 240);
            const float amount = price(6.0, 32.0);
            ok = ok && add(day, time, thing, "Household", amount, hardware);
        }
        if ((day.month() == 12 && day.day() == 18) || (day.month() == 3 && day.day() == 9) ||
            (day.month() == 7 && day.day() == 25)) {
            const QTime time = around(16, 120);
            const float amount = price(30.0, 70.0);
            ok = ok && add(day, time, "Birthday present", "Gifts", amount, online);
        }
        if (day.month() == 4 && day.day() == 22)
            ok = ok && add(day, around(10, 60), "Car service", "Automobile - Maintainence", 248.00f, riversidePetrol);
        return ok;
    }

    DatabaseManager &store;
    std::mt19937 random;
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);

    DatabaseManager store(nullptr);
    if (!store.isUsable()) {
        err << "Cannot open " << store.databaseFileName() << ": " << store.openError() << Qt::endl;
        return 1;
    }
    if (store.GetTotalNumberOfEntries() > 0) {
        err << store.databaseFileName() << " already holds entries; nothing was written." << Qt::endl;
        return 1;
    }

    SampleYear year(store);
    QString failure;
    // One transaction: a year is written whole or not at all, and quickly.
    if (!store.runInTransaction(DatabaseManager::WriteKind::Import, [&year] { return year.writeAll(); }, &failure)) {
        err << "Writing the sample year failed" << (failure.isEmpty() ? QString() : QStringLiteral(": ") + failure)
            << Qt::endl;
        return 1;
    }
    out << year.written << " entries from " << firstDay.toString(Qt::ISODate) << " to "
        << lastDay.toString(Qt::ISODate) << " written to " << store.databaseFileName() << Qt::endl;
    return 0;
}
