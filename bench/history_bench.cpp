// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times the history page on homes of 1,000, 10,000, 50,000 and 100,000
// entries spread over ten years across all categories: building the page
// (category, total and entries tabs), the date-wise tab over the whole ten
// years by day, and every later tab switch, each followed by the repaint the
// user waits for; and the peak resident memory once the page is built and
// after each tab's first visit, each with the heap in use at that moment
// (what the allocator has handed out and not yet been given back: the peak
// less what the allocator keeps). Each size runs three times, each run in a
// child process of its own so that the peaks do not mix, and the median of
// each figure is printed. Each run also reads every entry with the plain
// SQLite C API, the floor the page's build and the ten-year Daily are
// compared with: a ratio measured in the same process is steadier than a
// time on a busy machine, and the processor time of the GUI thread, printed
// beside each, steadier still.
//
//   --sizes 10000,50000   only these sizes
//   --runs N              N runs per size instead of three
//   --no-places           leave out the places tab
//
// Then the places tab, in a child process of its own: 50,000 entries over
// 2,000 place texts, 500 of them remembered places, from the tab's selection
// until its table is filled and every place is drawn on its map, the first
// time (the web engine starts), at later visits with nothing written since
// and at later visits after a write. Map tiles are refused:
// they come at the network's pace, not the program's.

#include "databasemanager.h"
#include "historywidget.h"
#include "localtimezone.h"
#include "tenyears.h"

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMap>
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
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineView>

#include <algorithm>
#include <iterator>
#include <memory>

#include <malloc.h>
#include <time.h>
#include <sys/resource.h>
#include <unistd.h>

#ifdef LEDGERLY_HAVE_SQLITE3
#include <sqlite3.h>
#endif

namespace {

QTextStream out(stdout);

double msSince(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

// The processor time the calling thread has used, in milliseconds: unlike
// the time on the clock, it hardly moves with what else the machine runs.
double threadCpuMs()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// The processor time of the page's (the GUI thread's) last timed work.
double lastCpuMs = 0;

// Work, then the events and repaint it caused, as the user waits for them.
template<typename Work> double timedWithRepaint(QWidget *page, Work work)
{
    QElapsedTimer timer;
    timer.start();
    const double cpuStart = threadCpuMs();
    work();
    page->repaint();
    QCoreApplication::processEvents();
    lastCpuMs = threadCpuMs() - cpuStart;
    return msSince(timer);
}

// Builds the page on the store and shows it, as the History button does;
// the time until it is painted.
double buildShownPage(DatabaseManager &store, std::unique_ptr<HistoryWidget> *page)
{
    QElapsedTimer timer;
    timer.start();
    const double cpuStart = threadCpuMs();
    *page = std::make_unique<HistoryWidget>(QPointer<DatabaseManager>(&store), nullptr);
    (*page)->show();
    (*page)->repaint();
    QCoreApplication::processEvents();
    lastCpuMs = threadCpuMs() - cpuStart;
    return msSince(timer);
}

// One figure of a run, as the child process reports it to the parent: a
// line "key value".
void report(const QString &key, double value)
{
    out << key << ' ' << QString::number(value, 'f', 1) << '\n';
}

double peakMb()
{
    return double(peakResidentKb()) / 1024.0;
}

// The heap in use now: the allocator's blocks in use, its own arena and the
// large blocks it maps one by one.
double heapInUseMb()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
}

// A peak and the heap in use at the same moment, under `key` and
// "heap-" `key`.
void reportPeak(const QString &key)
{
    report(key, peakMb());
    report(QStringLiteral("heap-") + key, heapInUseMb());
}

// The time to read every column of every entry, newest first, with the
// plain SQLite C API (the median of three reads); 0 without SQLite's own
// headers.
double plainReadMs(const QString &fileName)
{
#ifdef LEDGERLY_HAVE_SQLITE3
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(fileName).constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return 0;
    }
    // Every value is looked at, so that the read cannot be skipped.
    long long checksum = 0;
    std::vector<double> cpu;
    const double ms = medianMs(3, [db, &checksum, &cpu] {
        const double cpuStart = threadCpuMs();
        sqlite3_stmt *statement = nullptr;
        const char sql[] = "select SNo,ItemName,CategoryName,CategoryID,TransactDateTime,Price,LocationText,"
                           "EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID from Entry order by "
                           "TransactDateTime desc";
        if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) != SQLITE_OK)
            return;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int c = 0; c < sqlite3_column_count(statement); ++c) {
                if (sqlite3_column_type(statement, c) == SQLITE_TEXT)
                    checksum += sqlite3_column_bytes(statement, c);
                else
                    checksum += sqlite3_column_int64(statement, c);
            }
        }
        sqlite3_finalize(statement);
        cpu.push_back(threadCpuMs() - cpuStart);
    });
    sqlite3_close(db);
    std::sort(cpu.begin(), cpu.end());
    lastCpuMs = cpu.at(cpu.size() / 2);
    return checksum == -1 ? 0 : ms;
#else
    Q_UNUSED(fileName)
    return 0;
#endif
}

const char *const tabNames[] = { "Category Wise", "Date Wise", "Total", "Entries" };

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
    report(QStringLiteral("plain-read"), plainReadMs(DatabaseManager::defaultFileName()));
    report(QStringLiteral("cpu-plain-read"), lastCpuMs);
    reportPeak(QStringLiteral("peak-before"));

    std::unique_ptr<HistoryWidget> page;
    report(QStringLiteral("build"), buildShownPage(store, &page));
    report(QStringLiteral("cpu-build"), lastCpuMs);
    reportPeak(QStringLiteral("peak-build"));

    auto *tabs = page->findChild<QTabWidget *>(QStringLiteral("tabWidgetHistoryContainer"));
    auto *start = page->findChild<QDateEdit *>(QStringLiteral("dateEditDateWiseStartDate"));
    auto *period = page->findChild<QComboBox *>(QStringLiteral("comboBoxDateWiseTimePeriod"));
    auto *datewise = page->findChild<QTableWidget *>(QStringLiteral("tableWidgetDattewiseTabEntries"));
    auto *all = page->findChild<QTableWidget *>(QStringLiteral("tableWidgetAllEntries"));

    // The date-wise tab opens on the newest day at midnight, which holds no
    // entry here (that would be a message box); the user first widens the
    // range to the first day of the ten years, then picks the tab.
    report(QStringLiteral("daily"), timedWithRepaint(page.get(), [&] { start->setDate(QDate(2016, 1, 1)); }));
    report(QStringLiteral("cpu-daily"), lastCpuMs);
    report(QStringLiteral("datewise-selected"), timedWithRepaint(page.get(), [&] { tabs->setCurrentIndex(1); }));
    reportPeak(QStringLiteral("peak-tab1"));
    report(QStringLiteral("rows-datewise"), datewise->rowCount());
    report(QStringLiteral("weekly"), timedWithRepaint(page.get(), [&] { period->setCurrentIndex(1); }));
    report(QStringLiteral("monthly"), timedWithRepaint(page.get(), [&] { period->setCurrentIndex(2); }));
    report(QStringLiteral("daily-again"), timedWithRepaint(page.get(), [&] { period->setCurrentIndex(0); }));

    // Later switches, each tab's peak memory after its first visit here.
    const int order[] = { 2, 3, 0, 1, 3, 2, 1, 0 };
    bool visited[4] = { false, false, false, false };
    for (int step = 0; step < int(std::size(order)); ++step) {
        const int index = order[step];
        report(QStringLiteral("switch%1-%2").arg(step).arg(index),
               timedWithRepaint(page.get(), [&] { tabs->setCurrentIndex(index); }));
        if (!visited[index]) {
            visited[index] = true;
            reportPeak(QStringLiteral("peak-tab%1").arg(index));
        }
    }
    report(QStringLiteral("rows-all"), all->rowCount());
    page.reset();
    reportPeak(QStringLiteral("peak"));
    out.flush();
    return 0;
}

// Runs one size `runs` times, each in a child process of its own so that
// the peaks do not mix, and prints the median of every figure.
bool runSize(int count, int runs)
{
    QMap<QString, QList<double>> figures;
    QStringList order;
    for (int run = 0; run < runs; ++run) {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--entries"), QString::number(count) });
        if (!child.waitForFinished(-1) || child.exitCode() != 0) {
            out << "entries " << count << ": the run failed\n" << child.readAllStandardOutput();
            out.flush();
            return false;
        }
        const QStringList lines = QString::fromUtf8(child.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        for (const QString &line : lines) {
            const QStringList parts = line.split(u' ');
            if (parts.size() != 2)
                continue;
            if (!figures.contains(parts.at(0)))
                order.append(parts.at(0));
            figures[parts.at(0)].append(parts.at(1).toDouble());
        }
    }
    const auto median = [&](const QString &key) {
        QList<double> values = figures.value(key);
        if (values.isEmpty())
            return 0.0;
        std::sort(values.begin(), values.end());
        return values.at(values.size() / 2);
    };
    const auto ms = [&](const QString &key) { return QString::number(median(key), 'f', 0); };

    out << QStringLiteral("entries %1 (listed %2, date-wise %3), median of %4 runs\n")
               .arg(count)
               .arg(ms(QStringLiteral("rows-all")))
               .arg(ms(QStringLiteral("rows-datewise")))
               .arg(runs);
    const double plain = median(QStringLiteral("plain-read"));
    const double plainCpu = median(QStringLiteral("cpu-plain-read"));
    // A figure and its ratio to the plain read of every entry, on the clock
    // and in the GUI thread's processor time.
    const auto timesPlain = [&](const QString &key) {
        if (plain <= 0)
            return ms(key) + QStringLiteral(" ms");
        const QString cpuKey = QStringLiteral("cpu-") + key;
        return QStringLiteral("%1 ms (%2 x the plain read; processor %3 ms, %4 x)")
            .arg(ms(key))
            .arg(median(key) / plain, 0, 'f', 1)
            .arg(ms(cpuKey))
            .arg(plainCpu > 0 ? median(cpuKey) / plainCpu : 0.0, 0, 'f', 1);
    };
    out << "  plain SQLite read of every entry ........ "
        << (plain > 0 ? QStringLiteral("%1 ms (processor %2 ms)")
                            .arg(ms(QStringLiteral("plain-read")), ms(QStringLiteral("cpu-plain-read")))
                      : QStringLiteral("n/a"))
        << "\n";
    out << "  build page (category, total, entries) ... " << timesPlain(QStringLiteral("build")) << "\n";
    out << "  date-wise tab selected (ten years) ...... " << ms(QStringLiteral("datewise-selected")) << " ms\n";
    out << "  date-wise, ten years, Daily ............. " << timesPlain(QStringLiteral("daily")) << " (again "
        << ms(QStringLiteral("daily-again")) << " ms)\n";
    out << "  date-wise, ten years, Weekly / Monthly .. " << ms(QStringLiteral("weekly")) << " / "
        << ms(QStringLiteral("monthly")) << " ms\n";
    QStringList switches;
    double worst = 0;
    QString worstName;
    for (const QString &key : std::as_const(order)) {
        if (!key.startsWith(QLatin1String("switch")))
            continue;
        const int index = key.section(u'-', 1).toInt();
        const double value = median(key);
        switches.append(QStringLiteral("%1 %2").arg(QLatin1String(tabNames[index]), ms(key)));
        if (value > worst) {
            worst = value;
            worstName = QLatin1String(tabNames[index]);
        }
    }
    out << "  later tab switches (ms) ................. " << switches.join(QStringLiteral(", ")) << "\n";
    out << "  worst later tab switch .................. " << QString::number(worst, 'f', 0) << " ms (" << worstName
        << ")\n";
    // Each peak with the heap in use at the same moment, in parentheses.
    const auto peak = [&](const QString &key) {
        return QStringLiteral("%1 (heap %2)").arg(ms(key), ms(QStringLiteral("heap-") + key));
    };
    out << "  peak resident memory (MB) ............... before the page " << peak(QStringLiteral("peak-before"))
        << ", built " << peak(QStringLiteral("peak-build"));
    for (int index : { 1, 2, 3, 0 })
        out << ", " << tabNames[index] << " " << peak(QStringLiteral("peak-tab%1").arg(index));
    out << ", end " << peak(QStringLiteral("peak")) << "\n";
    out.flush();
    return true;
}

// The places of the places benchmark: `placeTexts` texts, the first
// `remembered` of them remembered places near Singapore, and `count` entries
// over ten years at random ones among them, geolocated at a remembered
// place half of the time, as the new-entry page would have stored them.
bool fillPlaces(const QString &fileName, int count, int placeTexts, int remembered, QString *error)
{
    return writeInOneTransaction(
        fileName,
        [=](QSqlDatabase &db) {
            QRandomGenerator random(1303);
            QSqlQuery place(db);
            place.prepare(
                QStringLiteral("INSERT INTO HistoricLocation (LocationName,LocationLongitude,"
                               "LocationLatitude,ReverseGeoLocation,CoordinateText) VALUES (?, ?, ?, '', ?)"));
            for (int i = 0; i < remembered; ++i) {
                const double longitude = 103.6 + random.bounded(4000) / 10000.0;
                const double latitude = 1.25 + random.bounded(2000) / 10000.0;
                place.addBindValue(QStringLiteral("Place %1").arg(i));
                place.addBindValue(longitude);
                place.addBindValue(latitude);
                place.addBindValue(QStringLiteral("%1-%2").arg(longitude).arg(latitude));
                if (!place.exec())
                    return place.lastError().text();
            }
            QSqlQuery entry(db);
            entry.prepare(QStringLiteral(
                "INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,LocationText,"
                "EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES (?, 'Food', 1, ?, ?, ?, ?, ?, ?, ?, "
                "?)"));
            const QDateTime first(QDate(2016, 1, 1), QTime(0, 0));
            const qint64 tenYears = qint64(3652) * 24 * 3600;
            for (int i = 0; i < count; ++i) {
                const int at = random.bounded(placeTexts);
                const bool geo = at < remembered && random.bounded(2) == 0;
                const int item = random.bounded(300);
                entry.addBindValue(QStringLiteral("Item %1").arg(item));
                entry.addBindValue(StorageForm::dateTime(first.addSecs(random.bounded(tenYears / 60) * 60)));
                entry.addBindValue(double(float(random.bounded(10000)) / 100.0f));
                entry.addBindValue(QStringLiteral("Place %1").arg(at));
                entry.addBindValue(StorageForm::boolean(geo));
                entry.addBindValue(geo ? at + 1 : 0);
                entry.addBindValue(geo ? 103.8 : 103.0);
                entry.addBindValue(1.3);
                entry.addBindValue(item + 1);
                if (!entry.exec())
                    return entry.lastError().text();
            }
            return QString();
        },
        error);
}

// Map tiles come from the network, at its speed: they are refused, so that
// the figures are the program's own.
class TileBlocker : public QWebEngineUrlRequestInterceptor
{
public:
    void interceptRequest(QWebEngineUrlRequestInfo &info) override
    {
        if (info.requestUrl().scheme() != QLatin1String("data"))
            info.block(true);
    }
};

// The number of places the map page has drawn, or -1 before it can tell.
int drawnPlaces(QWebEngineView *view)
{
    if (view->url().isEmpty())
        return -1;
    bool answered = false;
    int drawn = -1;
    view->page()->runJavaScript(QStringLiteral("typeof window.places === 'object' ? "
                                               "document.querySelectorAll('svg path.leaflet-interactive').length : -1"),
                                [&](const QVariant &result) {
                                    drawn = result.toInt();
                                    answered = true;
                                });
    while (!answered)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return drawn;
}

// One visit of the places tab, from its selection: when its table is filled
// and shown, and when the map shows every remembered place.
struct PlacesVisit
{
    double tableMs = 0;
    double mapMs = 0;
};

PlacesVisit visitPlacesTab(HistoryWidget *page, QTabWidget *tabs, QWebEngineView *map, int remembered)
{
    PlacesVisit visit;
    QElapsedTimer timer;
    timer.start();
    tabs->setCurrentIndex(4);
    page->repaint();
    visit.tableMs = msSince(timer);
    while (drawnPlaces(map) != remembered && timer.elapsed() < 60000)
        QCoreApplication::processEvents();
    visit.mapMs = msSince(timer);
    return visit;
}

int runPlaces()
{
    const int count = 50000;
    const int placeTexts = 2000;
    const int remembered = 500;
    QTemporaryDir home;
    if (!home.isValid()) {
        out << "cannot make a temporary home\n";
        return 1;
    }
    qputenv("HOME", home.path().toLocal8Bit());
    QDir::setCurrent(home.path());

    TileBlocker tiles;
    QWebEngineProfile::defaultProfile()->setUrlRequestInterceptor(&tiles);
    DatabaseManager store(nullptr);
    QString error;
    if (!fillPlaces(DatabaseManager::defaultFileName(), count, placeTexts, remembered, &error)) {
        out << "cannot fill the database: " << error << "\n";
        return 1;
    }

    std::unique_ptr<HistoryWidget> page;
    const double constructMs = buildShownPage(store, &page);

    auto *tabs = page->findChild<QTabWidget *>(QStringLiteral("tabWidgetHistoryContainer"));
    auto *table = page->findChild<QTableWidget *>(QStringLiteral("tableWidgetPlaces"));
    auto *map = page->findChild<QWebEngineView *>(QStringLiteral("webViewPlaces"));
    const PlacesVisit first = visitPlacesTab(page.get(), tabs, map, remembered);
    const int rows = table->rowCount();
    const int drawn = drawnPlaces(map);
    // A later visit with nothing written since shows what the tab showed:
    // the switch and its repaint.
    QStringList unchanged;
    for (int visit = 0; visit < 3; ++visit) {
        tabs->setCurrentIndex(3);
        QCoreApplication::processEvents();
        const PlacesVisit again = visitPlacesTab(page.get(), tabs, map, remembered);
        unchanged.append(QStringLiteral("%1 (table %2)").arg(again.mapMs, 0, 'f', 0).arg(again.tableMs, 0, 'f', 0));
    }
    // A later visit after a write reads and draws the places anew: one more
    // entry at a place already listed, and the places taken off the map
    // first, so that the wait sees the new ones.
    QStringList later;
    for (int visit = 0; visit < 3; ++visit) {
        tabs->setCurrentIndex(3);
        QCoreApplication::processEvents();
        Entry entry;
        entry.ItemName = QStringLiteral("Coffee");
        entry.CategoryName = QStringLiteral("Food");
        entry.TransactDateTime = QDateTime(QDate(2026, 1, 1), QTime(8, visit));
        entry.Price = 2.5f;
        entry.LocationText = QStringLiteral("Place 1");
        if (!store.AddEntry(&entry)) {
            out << "cannot add an entry between the visits\n";
            return 1;
        }
        map->page()->runJavaScript(QStringLiteral("showPlaces([]);"));
        while (drawnPlaces(map) != 0)
            QCoreApplication::processEvents();
        const PlacesVisit again = visitPlacesTab(page.get(), tabs, map, remembered);
        later.append(QStringLiteral("%1 (table %2)").arg(again.mapMs, 0, 'f', 0).arg(again.tableMs, 0, 'f', 0));
    }
    page.reset();
    QWebEngineProfile::defaultProfile()->setUrlRequestInterceptor(nullptr);

    out << QStringLiteral("places tab: %1 entries, %2 place texts (listed %3), %4 remembered places (drawn %5)\n")
               .arg(count)
               .arg(placeTexts)
               .arg(rows)
               .arg(remembered)
               .arg(drawn);
    out << QStringLiteral("  build page (places tab not filled) ...... %1 ms\n").arg(constructMs, 0, 'f', 0);
    out << QStringLiteral("  places tab, first visit (engine starts) . %1 ms (table %2 ms)\n")
               .arg(first.mapMs, 0, 'f', 0)
               .arg(first.tableMs, 0, 'f', 0);
    out << QStringLiteral("  places tab, later visits, nothing written (ms) %1\n")
               .arg(unchanged.join(QStringLiteral(", ")));
    out << QStringLiteral("  places tab, later visits after a write (ms)  %1\n").arg(later.join(QStringLiteral(", ")));
    out.flush();
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    // As the program's own main() does.
    LocalTimeZone::readOnce();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The places map's web engine will not start its sandbox for root, as
    // under the test runner.
    if (getuid() == 0 && qEnvironmentVariableIsEmpty("QTWEBENGINE_CHROMIUM_FLAGS"))
        qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox");
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);

    const QStringList arguments = QCoreApplication::arguments();
    const int at = int(arguments.indexOf(QStringLiteral("--entries")));
    if (at > 0 && at + 1 < arguments.size())
        return runOne(arguments.at(at + 1).toInt());
    if (arguments.contains(QStringLiteral("--places")))
        return runPlaces();

    out << "History page, ten years of entries, offscreen; times include the repaint.\n";
    out.flush();
    QList<int> sizes = { 1000, 10000, 50000, 100000 };
    const int sizesAt = int(arguments.indexOf(QStringLiteral("--sizes")));
    if (sizesAt > 0 && sizesAt + 1 < arguments.size()) {
        sizes.clear();
        for (const QString &size : arguments.at(sizesAt + 1).split(u','))
            sizes.append(size.toInt());
    }
    const int runsAt = int(arguments.indexOf(QStringLiteral("--runs")));
    const int runs = runsAt > 0 && runsAt + 1 < arguments.size() ? arguments.at(runsAt + 1).toInt() : 3;
    int result = 0;
    for (int count : std::as_const(sizes)) {
        if (!runSize(count, runs))
            result = 1;
    }
    if (arguments.contains(QStringLiteral("--no-places")))
        return result;
    QProcess places;
    places.setProcessChannelMode(QProcess::ForwardedChannels);
    places.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--places") });
    if (!places.waitForFinished(-1) || places.exitCode() != 0)
        result = 1;
    return result;
}
