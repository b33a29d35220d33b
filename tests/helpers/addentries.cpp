// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// A child process for the tests: adds 1,000 entries to the store in the home
// directory given by HOME, each named after the first argument and its
// number ("run3 417"), and prints each name on a line of its own as soon as
// the store has confirmed it. Tests kill it at a moment of their choosing
// and then check what the file holds.

#include "databasemanager.h"

#include <QCoreApplication>
#include <QDate>
#include <QTime>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QString label = application.arguments().value(1, QStringLiteral("entry"));

    DatabaseManager store(nullptr);
    if (!store.isUsable()) {
        std::fprintf(stderr, "%s\n", qPrintable(store.openError()));
        return 1;
    }
    for (int number = 0; number < 1000; ++number) {
        Entry entry;
        entry.ItemName = QStringLiteral("%1 %2").arg(label).arg(number);
        entry.CategoryName = QStringLiteral("Food");
        entry.TransactDateTime = QDateTime(QDate(2026, 1, 1).addDays(number % 365), QTime(12, 0));
        entry.Price = 1.5f + float(number % 100);
        entry.LocationText = QStringLiteral("Market");
        // Every fourth entry also remembers a place, so that all three
        // tables are written.
        entry.EnableGeoLoc = number % 4 == 0;
        entry.GeoLocLongit = 103.0f;
        entry.GeoLocLatit = 1.3f;
        if (!store.AddEntry(&entry)) {
            std::fprintf(stderr, "not added: %s\n", qPrintable(entry.ItemName));
            return 1;
        }
        std::printf("%s\n", qPrintable(entry.ItemName));
        std::fflush(stdout);
    }
    return 0;
}
