// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times the recurring expenses at 50,000 entries (ten years) and 200
// recurring expenses: what the window's start adds when nothing is due (the
// one look for due occurrences), the same look when all 200 are due, posting
// 1,000 due occurrences (each in its own transaction, as post-due does), and
// `ledgerly post-due` with nothing due as a cron job runs it, process start
// included.

#include "databasemanager.h"
#include "localtimezone.h"
#include "recurringexpenses.h"
#include "tenyears.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

int main(int argc, char *argv[])
{
    LocalTimeZone::readOnce();
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTemporaryDir home;
    const int count = 50000;
    const std::unique_ptr<DatabaseManager> made = storeWithTenYears(home, count, out);
    if (!made)
        return 1;
    DatabaseManager &store = *made;
    RecurringExpenses recurring(store);
    const QDate today = QDate::currentDate();
    // 200 expenses, none due: they start from tomorrow on.
    QList<int> ids;
    for (int number = 0; number < 200; ++number) {
        RecurringExpense expense;
        expense.item = QStringLiteral("Subscription %1").arg(number);
        expense.amount = 5 + number;
        expense.category = QStringLiteral("Bills");
        expense.every = { 1 + number % 3, RecurrenceUnit(number % 4) };
        expense.first = today.addDays(1 + number % 60);
        ids << recurring.add(expense);
    }
    out << "Recurring expenses, " << count << " entries over ten years, " << ids.size()
        << " recurring expenses; medians of 9 runs" << Qt::endl;

    int due = -1;
    const double nothing = medianMs(9, [&] { due = int(recurring.due(today, true).size()); });
    out << QStringLiteral("  the start's look, nothing due ............ %1 ms (%2 due)")
               .arg(nothing, 0, 'f', 3)
               .arg(due)
        << Qt::endl;

    // 100 of them daily from ten days back: 10 occurrences each are due.
    for (int number = 0; number < 100; ++number) {
        RecurringExpense expense = *recurring.of(ids.at(number));
        expense.every = { 1, RecurrenceUnit::Day };
        expense.first = today.addDays(-9);
        recurring.update(expense);
    }
    const double some = medianMs(9, [&] { due = int(recurring.due(today, true).size()); });
    out << QStringLiteral("  the start's look, 1,000 due ............. %1 ms (%2 due)").arg(some, 0, 'f', 3).arg(due)
        << Qt::endl;

    QElapsedTimer timer;
    timer.start();
    const RecurringExpenses::Posting posting = recurring.postDue(today, true);
    const double posted = double(timer.nsecsElapsed()) / 1e6;
    out << QStringLiteral("  posting them ............................ %1 ms (%2 posted%3)")
               .arg(posted, 0, 'f', 1)
               .arg(posting.posted.size())
               .arg(posting.failure.isEmpty() ? QString() : QStringLiteral(", ") + posting.failure)
        << Qt::endl;

#ifdef LEDGERLY_PROGRAM
    QString said;
    const double command = medianMs(9, [&] {
        QProcess postDue;
        postDue.start(QStringLiteral(LEDGERLY_PROGRAM), { QStringLiteral("post-due") });
        postDue.waitForFinished(60000);
        said = QString::fromUtf8(postDue.readAllStandardOutput()).trimmed();
    });
    const double version = medianMs(9, [&] {
        QProcess program;
        program.start(QStringLiteral(LEDGERLY_PROGRAM), { QStringLiteral("--version") });
        program.waitForFinished(60000);
    });
    out << QStringLiteral("  ledgerly post-due, nothing due (wall) ... %1 ms (\"%2\"; --version takes %3 ms)")
               .arg(command, 0, 'f', 1)
               .arg(said)
               .arg(version, 0, 'f', 1)
        << Qt::endl;
#endif
    out << QStringLiteral("  peak resident memory .................... %1 MB").arg(peakResidentKb() / 1024) << Qt::endl;
    return 0;
}
