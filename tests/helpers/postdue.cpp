// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// A child process for the tests: posts every occurrence of every recurring
// expense of the store in the home given by HOME that is due on or before
// the day of the first argument (yyyy-MM-dd), as many in each transaction
// as the second argument says, and prints each on a line of its own ("7 41":
// the expense and the occurrence's index) as soon as the store has
// confirmed it. Tests kill it at a moment of their choosing and then check
// what the file holds.

#include "databasemanager.h"
#include "recurringexpenses.h"

#include <QCoreApplication>
#include <QDate>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QDate day = QDate::fromString(application.arguments().value(1), Qt::ISODate);
    const int batch = application.arguments().value(2, QStringLiteral("1")).toInt();

    DatabaseManager store(nullptr);
    if (!store.isUsable() || !day.isValid()) {
        std::fprintf(stderr, "%s\n", qPrintable(store.openError()));
        return 1;
    }
    const RecurringExpenses::Posting posting = RecurringExpenses(store).postDue(
        day, true,
        [](const Occurrence &occurrence) {
            std::printf("%d %lld\n", occurrence.expenseId, occurrence.index);
            std::fflush(stdout);
        },
        batch);
    if (!posting.failure.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(posting.failure));
        return 1;
    }
    return 0;
}
