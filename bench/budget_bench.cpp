// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times the budgets at 50,000 entries (ten years) with a budget for each of
// the 37 default categories: where every budget stands (what the history
// page's Budgets tab shows), one category's standing (the check after each
// entry the new-entry page stores), and `ledgerly budget` as a script runs
// it, process start included.

#include "budgets.h"
#include "databasemanager.h"
#include "localtimezone.h"
#include "tenyears.h"

#include <QCoreApplication>
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
    Budgets budgets(store);
    int budgeted = 0;
    for (const Category *category : owned(store.GetAllCategories())) {
        if (budgets.set({ category->CategoryName, 400.0, BudgetPeriod::Month }))
            ++budgeted;
    }
    const QDate today = QDate::currentDate();
    out << "Budgets, " << count << " entries over ten years, " << budgeted << " budgets; medians of 9 runs" << Qt::endl;

    int rows = 0;
    const double tab = medianMs(9, [&] { rows = int(budgets.standings(today, 25).size()); });
    out << QStringLiteral("  every standing (the Budgets tab) ......... %1 ms (%2 rows)").arg(tab, 0, 'f', 2).arg(rows)
        << Qt::endl;

    const double check = medianMs(9, [&] { budgets.standingOf(QStringLiteral("Food"), today, 25); });
    out << QStringLiteral("  one standing (the check after an Add) .... %1 ms").arg(check, 0, 'f', 2) << Qt::endl;

#ifdef LEDGERLY_PROGRAM
    int lines = 0;
    const double command = medianMs(9, [&] {
        QProcess budget;
        budget.start(QStringLiteral(LEDGERLY_PROGRAM), { QStringLiteral("budget") });
        budget.waitForFinished(60000);
        lines = int(budget.readAllStandardOutput().count('\n'));
    });
    out << QStringLiteral("  ledgerly budget (wall time) .............. %1 ms (%2 lines)").arg(command, 0, 'f', 1).arg(lines)
        << Qt::endl;
#endif
    out << QStringLiteral("  peak resident memory ..................... %1 MB").arg(peakResidentKb() / 1024) << Qt::endl;
    return 0;
}
