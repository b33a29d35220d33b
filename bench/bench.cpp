// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times the store's read paths on homes of 1,000, 10,000 and 50,000 entries
// (ten years across all 37 categories) against the same rows read with the
// plain SQLite C API, and reports the peak resident memory.

#include "databasemanager.h"
#include "tenyears.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <QVariant>

#include <algorithm>
#include <functional>
#include <vector>

#include <sys/resource.h>

#ifdef LEDGERLY_HAVE_SQLITE3
#include <sqlite3.h>
#endif

namespace {

QTextStream out(stdout);

const QString entryColumns = QStringLiteral("select SNo,ItemName,CategoryName,CategoryID,TransactDateTime,Price,"
                                            "LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID "
                                            "from Entry");

#ifdef LEDGERLY_HAVE_SQLITE3
// Reads every column of every row, as a caller of the C API would, and
// returns the row count.
int plainRows(sqlite3 *db, const QString &sql, const std::function<void(sqlite3_stmt *)> &bind)
{
    sqlite3_stmt *statement = nullptr;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(db, text.constData(), int(text.size()), &statement, nullptr) != SQLITE_OK)
        return -1;
    if (bind)
        bind(statement);
    int rows = 0;
    long long checksum = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        const int columns = sqlite3_column_count(statement);
        for (int c = 0; c < columns; ++c) {
            switch (sqlite3_column_type(statement, c)) {
            case SQLITE_INTEGER:
                checksum += sqlite3_column_int(statement, c);
                break;
            case SQLITE_FLOAT:
                checksum += static_cast<long long>(sqlite3_column_double(statement, c));
                break;
            default:
                checksum += sqlite3_column_bytes(statement, c) + (sqlite3_column_text(statement, c) ? 1 : 0);
                break;
            }
        }
        ++rows;
    }
    sqlite3_finalize(statement);
    return checksum == -1 ? -1 : rows;
}

void bindText(sqlite3_stmt *statement, int index, const QString &value)
{
    const QByteArray text = value.toUtf8();
    sqlite3_bind_text(statement, index, text.constData(), int(text.size()), SQLITE_TRANSIENT);
}
#endif

struct Row
{
    QString operation;
    double storeMs;
    double plainMs; // negative: no plain figure
    int rows;
};

void runFor(int count)
{
    QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    const QString fileName = DatabaseManager::defaultFileName();

    QList<Row> table;
    {
        DatabaseManager store(nullptr);
        if (!store.isUsable()) {
            out << "store unusable: " << store.openError() << Qt::endl;
            return;
        }
        QString error;
        if (!fillTenYearsOfEntries(fileName, count, &error)) {
            out << "filling failed: " << error << Qt::endl;
            return;
        }

        const QString largest = QStringLiteral("Food");
        const QDateTime monthStart(QDate(2020, 3, 1), QTime(0, 0));
        const QDateTime monthEnd(QDate(2020, 3, 31), QTime(23, 59, 59));
        const int runs = count >= 50000 ? 5 : 9;

        auto timeList = [&](const QString &name, const std::function<QList<Entry *>()> &call) {
            int rows = 0;
            const double ms = medianMs(runs, [&] { rows = int(owned(call()).size()); });
            table.append({ name, ms, -1, rows });
        };
        timeList(QStringLiteral("GetAllEntries"), [&] { return store.GetAllEntries(); });
        timeList(QStringLiteral("GetAllEntriesOfCategory (largest)"),
                 [&] { return store.GetAllEntriesOfCategory(largest); });
        timeList(QStringLiteral("GetAllEntriesBetweenDates (a month)"),
                 [&] { return store.GetAllEntriesBetweenDates(monthStart, monthEnd); });
        {
            int rows = 0;
            const double ms =
                medianMs(runs, [&] { rows = int(store.GetAllDistinctDatesOfEntriesOfCategory(largest).size()); });
            table.append({ QStringLiteral("GetAllDistinctDatesOfEntriesOfCategory"), ms, -1, rows });
        }
        {
            int total = 0;
            const double ms = medianMs(runs, [&] {
                total = store.GetTotalNumberOfEntries();
                store.GetNumberOfEntriesOfCategory(largest);
                store.GetNumberOfEntriesBetweenDates(monthStart, monthEnd);
            });
            table.append({ QStringLiteral("counts (all, category, month)"), ms, -1, total });
        }
        {
            int added = 0;
            const double ms = medianMs(5, [&] {
                Entry entry;
                entry.ItemName = QStringLiteral("Item 7");
                entry.CategoryName = largest;
                entry.TransactDateTime = QDateTime(QDate(2026, 1, 1), QTime(12, 0));
                entry.Price = 4.5f;
                entry.LocationText = QStringLiteral("Shop 1");
                entry.GeoLocLongit = 103.0f;
                entry.GeoLocLatit = 1.3f;
                added += store.AddEntry(&entry) ? 1 : 0;
            });
            table.append({ QStringLiteral("AddEntry (one)"), ms, -1, added });
        }
    }

#ifdef LEDGERLY_HAVE_SQLITE3
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(fileName).constData(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
        const int runs = count >= 50000 ? 5 : 9;
        const QString monthStart = QStringLiteral("2020-03-01T00:00:00");
        const QString monthEnd = QStringLiteral("2020-03-31T23:59:59");
        auto plain = [&](int index, const QString &sql, const std::function<void(sqlite3_stmt *)> &bind) {
            table[index].plainMs = medianMs(runs, [&] { plainRows(db, sql, bind); });
        };
        plain(0, entryColumns + QStringLiteral(" order by TransactDateTime desc"), nullptr);
        plain(1, entryColumns + QStringLiteral(" where CategoryName = ? order by TransactDateTime desc "),
              [](sqlite3_stmt *s) { bindText(s, 1, QStringLiteral("Food")); });
        plain(2,
              entryColumns +
                  QStringLiteral(" where TransactDateTime >= ? and TransactDateTime <= ? order by TransactDateTime "
                                 "desc"),
              [&](sqlite3_stmt *s) {
                  bindText(s, 1, monthStart);
                  bindText(s, 2, monthEnd);
              });
        plain(3,
              QStringLiteral("select distinct TransactDateTime,CategoryName from Entry where CategoryName = ? order by "
                             "TransactDateTime desc "),
              [](sqlite3_stmt *s) { bindText(s, 1, QStringLiteral("Food")); });
        table[4].plainMs = medianMs(runs, [&] {
            plainRows(db, QStringLiteral("SELECT COUNT(ItemName) FROM Entry;"), nullptr);
            plainRows(db, QStringLiteral("SELECT COUNT(ItemName) FROM Entry where CategoryName=?;"),
                      [](sqlite3_stmt *s) { bindText(s, 1, QStringLiteral("Food")); });
            plainRows(db,
                      QStringLiteral("SELECT COUNT(ItemName) FROM Entry where TransactDateTime >= ? and "
                                     "TransactDateTime <= ?;"),
                      [&](sqlite3_stmt *s) {
                          bindText(s, 1, monthStart);
                          bindText(s, 2, monthEnd);
                      });
        });
        // The floor for AddEntry is its final insert alone, without the
        // catalogue upkeep that comes before it.
        table[5].plainMs = medianMs(5, [&] {
            plainRows(db,
                      QStringLiteral("INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,"
                                     "LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES "
                                     "('Item 7','Food',1,'2026-01-01T12:00:00',4.5,'Shop 1','false',0,103,1.3,8)"),
                      nullptr);
        });
    }
    sqlite3_close(db);
#endif

    out << Qt::endl << "N = " << count << " entries" << Qt::endl;
    out << QStringLiteral("%1 %2 %3 %4 %5")
               .arg(QStringLiteral("operation"), -42)
               .arg(QStringLiteral("rows"), 7)
               .arg(QStringLiteral("store ms"), 10)
               .arg(QStringLiteral("sqlite ms"), 10)
               .arg(QStringLiteral("ratio"), 7)
        << Qt::endl;
    for (const Row &row : table) {
        const bool hasPlain = row.plainMs >= 0;
        out << QStringLiteral("%1 %2 %3 %4 %5")
                   .arg(row.operation, -42)
                   .arg(row.rows, 7)
                   .arg(row.storeMs, 10, 'f', 3)
                   .arg(hasPlain ? QString::number(row.plainMs, 'f', 3) : QStringLiteral("n/a"), 10)
                   .arg(hasPlain && row.plainMs > 0
                            ? QString::number(row.storeMs / row.plainMs, 'f', 1) + QLatin1Char('x')
                            : QStringLiteral("n/a"),
                        7)
            << Qt::endl;
    }
    out << "peak resident memory: " << peakResidentKb() / 1024 << " MB" << Qt::endl;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QByteArray previousHome = qgetenv("HOME");
    for (int count : { 1000, 10000, 50000 })
        runFor(count);
    qputenv("HOME", previousHome);
    return 0;
}
