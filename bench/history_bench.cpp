// Times the history page on homes of 1,000, 10,000 and 50,000 entries spread
// over ten years across all categories: building the page (category, total
// and entries tabs), the date-wise tab over the whole ten years by day, and
// every later tab switch, each followed by the repaint the user waits for;
// then the peak resident memory. Each size runs in a child process of its
// own so that the peaks do not mix.

#include "databasemanager.h"
#include "historywidget.h"
#include "tenyears.h"

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextStream>
#include <QVariant>

#include <sys/resource.h>

namespace {

QTextStream out(stdout);

double msSince(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

// Work, then the events and repaint it caused, as the user waits for them.
template<typename Work> double timedWithRepaint(QWidget *page, Work work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    page->repaint();
    QCoreApplication::processEvents();
    return msSince(timer);
}

int runOne(int count)
{
    QTemporaryDir home;
    if (!home.isValid()) {
        out << "cannot make a temporary home\n";
        return 1;
    }
    qputenv("HOME", home.path().toLocal8Bit());
    QDir::setCurrent(home.path()); // where the page writes its graphs

    DatabaseManager store(nullptr);
    QString error;
    if (!fillTenYearsOfEntries(DatabaseManager::defaultFileName(), count, &error)) {
        out << "cannot fill the database: " << error << "\n";
        return 1;
    }
    const long baseKb = peakResidentKb();

    QElapsedTimer timer;
    timer.start();
    auto page = std::make_unique<HistoryWidget>(QPointer<DatabaseManager>(&store), nullptr);
    page->show();
    page->repaint();
    QCoreApplication::processEvents();
    const double constructMs = msSince(timer);

    auto *tabs = page->findChild<QTabWidget *>(QStringLiteral("tabWidgetHistoryContainer"));
    auto *start = page->findChild<QDateEdit *>(QStringLiteral("dateEditDateWiseStartDate"));
    auto *period = page->findChild<QComboBox *>(QStringLiteral("comboBoxDateWiseTimePeriod"));
    auto *datewise = page->findChild<QTableWidget *>(QStringLiteral("tableWidgetDattewiseTabEntries"));
    auto *all = page->findChild<QTableWidget *>(QStringLiteral("tableWidgetAllEntries"));

    // The date-wise tab opens on the newest day at midnight, which holds no
    // entry here (that would be a message box); the user first widens the
    // range to the first day of the ten years, then picks the tab.
    const double tenYearsDailyMs = timedWithRepaint(page.get(), [&] { start->setDate(QDate(2016, 1, 1)); });
    const double firstDateWiseMs = timedWithRepaint(page.get(), [&] { tabs->setCurrentIndex(1); });
    const int datewiseRows = datewise->rowCount();
    const double weeklyMs = timedWithRepaint(page.get(), [&] { period->setCurrentIndex(1); });
    const double monthlyMs = timedWithRepaint(page.get(), [&] { period->setCurrentIndex(2); });
    timedWithRepaint(page.get(), [&] { period->setCurrentIndex(0); });

    // Later switches: every visit recomputes its tab from the store.
    double worstSwitchMs = 0;
    QString worstSwitch;
    QStringList switches;
    const int order[] = { 2, 3, 0, 1, 3, 2, 1, 0 };
    const char *const names[] = { "Category Wise", "Date Wise", "Total", "Entries" };
    for (int index : order) {
        const double ms = timedWithRepaint(page.get(), [&] { tabs->setCurrentIndex(index); });
        switches.append(QStringLiteral("%1 %2").arg(QLatin1String(names[index])).arg(ms, 0, 'f', 0));
        if (ms > worstSwitchMs) {
            worstSwitchMs = ms;
            worstSwitch = QLatin1String(names[index]);
        }
    }
    const int allRows = all->rowCount();
    page.reset();
    const long peakKb = peakResidentKb();

    out << QStringLiteral("entries %1 (listed %2, date-wise %3)\n").arg(count).arg(allRows).arg(datewiseRows);
    out << QStringLiteral("  build page (category, total, entries) ... %1 ms\n").arg(constructMs, 0, 'f', 0);
    out << QStringLiteral("  date-wise tab selected (ten years) ...... %1 ms\n").arg(firstDateWiseMs, 0, 'f', 0);
    out << QStringLiteral("  date-wise, ten years, Daily ............. %1 ms\n").arg(tenYearsDailyMs, 0, 'f', 0);
    out << QStringLiteral("  date-wise, ten years, Weekly / Monthly .. %1 / %2 ms\n")
               .arg(weeklyMs, 0, 'f', 0)
               .arg(monthlyMs, 0, 'f', 0);
    out << QStringLiteral("  later tab switches (ms) ................. %1\n").arg(switches.join(QStringLiteral(", ")));
    out << QStringLiteral("  worst later tab switch .................. %1 ms (%2)\n")
               .arg(worstSwitchMs, 0, 'f', 0)
               .arg(worstSwitch);
    out << QStringLiteral("  peak resident memory .................... %1 MB (%2 MB before the page)\n")
               .arg(double(peakKb) / 1024.0, 0, 'f', 0)
               .arg(double(baseKb) / 1024.0, 0, 'f', 0);
    out.flush();
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);

    const QStringList arguments = QCoreApplication::arguments();
    const int at = int(arguments.indexOf(QStringLiteral("--entries")));
    if (at > 0 && at + 1 < arguments.size())
        return runOne(arguments.at(at + 1).toInt());

    out << "History page, ten years of entries, offscreen; times include the repaint.\n";
    out.flush();
    int result = 0;
    for (int count : { 1000, 10000, 50000 }) {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--entries"), QString::number(count) });
        if (!child.waitForFinished(-1) || child.exitCode() != 0)
            result = 1;
    }
    return result;
}
