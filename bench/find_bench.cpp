// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times finding entries at 100,000 entries (ten years): the store's search
// for a text, for a text with a range of days and of amounts, and for
// everything with the Find page's table filled, each beside the same
// statement read with the plain SQLite C API; the first search after the
// entries came in (which folds every entry's texts); and `ledgerly find`
// as a script runs it, process start included.

#include "databasemanager.h"
#include "entryquery.h"
#include "entrysearch.h"
#include "findwidget.h"
#include "localtimezone.h"
#include "tenyears.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#ifdef LEDGERLY_HAVE_SQLITE3
#include <sqlite3.h>
#endif

namespace {

QTextStream out(stdout);

#ifdef LEDGERLY_HAVE_SQLITE3
// The rows of `sql` read whole with the C API on a connection of its own,
// texts bound in order.
double plainMs(const QString &fileName, const QString &sql, const QStringList &texts, int runs)
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(QFile::encodeName(fileName).constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    const double ms = medianMs(runs, [&] {
        sqlite3_stmt *statement = nullptr;
        const QByteArray text = sql.toUtf8();
        sqlite3_prepare_v2(db, text.constData(), int(text.size()), &statement, nullptr);
        for (int i = 0; i < texts.size(); ++i) {
            const QByteArray value = texts.at(i).toUtf8();
            sqlite3_bind_text(statement, i + 1, value.constData(), int(value.size()), SQLITE_TRANSIENT);
        }
        long long sum = 0;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int c = 0; c < sqlite3_column_count(statement); ++c)
                sum += sqlite3_column_bytes(statement, c);
        }
        sqlite3_finalize(statement);
    });
    sqlite3_close(db);
    return ms;
}
#endif

const QString columns = QStringLiteral("select SNo,ItemName,CategoryName,CategoryID,TransactDateTime,Price,"
                                       "LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID "
                                       "from Entry");

void row(const QString &name, double ms, double plain, int found)
{
    out << QStringLiteral("  %1 %2 ms   plain SQLite %3 ms   (%4 entries)\n")
               .arg(name, -42)
               .arg(ms, 7, 'f', 1)
               .arg(plain < 0 ? QStringLiteral("-") : QString::number(plain, 'f', 1))
               .arg(found);
    out.flush();
}

} // namespace

int main(int argc, char *argv[])
{
    LocalTimeZone::readOnce();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + QStringLiteral("/.config")));
    QApplication app(argc, argv);
    const int count = 100000;
    const int runs = 9;

    DatabaseManager store(nullptr);
    QString error;
    if (!store.isUsable() || !fillTenYearsOfEntries(DatabaseManager::defaultFileName(), count, &error)) {
        out << "cannot fill the database: " << error << "\n";
        return 1;
    }
    out << "Finding entries among " << count << " (ten years), medians of " << runs << " runs\n";
    EntrySearch search(store);
    QElapsedTimer first;
    first.start();
    search.bringTextsUpToDate();
    row(QStringLiteral("first search: folding every entry's texts"), double(first.nsecsElapsed()) / 1e6, -1, count);

    const auto timeFind = [&](const QString &name, const SearchFilter &filter, const QString &plainSql,
                              const QStringList &texts) {
        int found = 0;
        const double ms = medianMs(runs, [&] { found = search.find(filter).count; });
        double plain = -1;
#ifdef LEDGERLY_HAVE_SQLITE3
        plain = plainMs(DatabaseManager::defaultFileName(), plainSql, texts, runs);
#else
        Q_UNUSED(plainSql)
        Q_UNUSED(texts)
#endif
        row(name, ms, plain, found);
    };
    SearchFilter text;
    text.text = QStringLiteral("item 12");
    // The statement the store runs: the trigram index narrows, instr()
    // decides.
    const QString textCondition = QStringLiteral(
        " where SNo in (select SNo from EntrySearch where SNo in (select rowid from EntrySearchIndex where "
        "EntrySearchIndex match ?2) and (instr(Item, ?1) > 0 or instr(Category, ?1) > 0 or instr(Place, ?1) > 0))");
    const QString order = QStringLiteral(" order by TransactDateTime desc, SNo desc");
    const QStringList texts = { text.text, EntryQuery::trigramQuery({ text.text }) };
    timeFind(QStringLiteral("text \"item 12\""), text, columns + textCondition + order, texts);

    SearchFilter combined = text;
    combined.from = QDate(2024, 1, 1);
    combined.to = QDate(2024, 12, 31);
    combined.minimum = 20;
    combined.maximum = 80;
    timeFind(QStringLiteral("text + a year + 20 to 80"), combined,
             columns + textCondition +
                 QStringLiteral(" and TransactDateTime >= '2024-01-01' and TransactDateTime < '2025-01-01' and "
                                "cast(round(Price * 100) as integer) between 2000 and 8000") +
                 order,
             texts);
    timeFind(QStringLiteral("everything (store only)"), SearchFilter(), columns + order, {});

    // The Find page: built with an empty filter (the number and total of
    // every entry shown, and the table filled with its first page, as the
    // user sees it), then one key typed until its results are shown.
    {
        int found = 0;
        const double ms = medianMs(5, [&] {
            FindWidget page(&store, nullptr);
            found = page.findChild<QLabel *>(QStringLiteral("labelSummary"))->text().section(u' ', 0, 0).toInt();
        });
        row(QStringLiteral("Find page: everything, table shown"), ms, -1, found);
        FindWidget page(&store, nullptr);
        page.show();
        auto *field = page.findChild<QLineEdit *>(QStringLiteral("lineEditText"));
        auto *summary = page.findChild<QLabel *>(QStringLiteral("labelSummary"));
        const double typed = medianMs(5, [&] {
            const QString before = summary->text();
            field->setText(field->text() == QLatin1String("item 12") ? QStringLiteral("item 13")
                                                                      : QStringLiteral("item 12"));
            while (summary->text() == before)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        });
        row(QStringLiteral("Find page: a key to its results shown"), typed, -1,
            summary->text().section(u' ', 0, 0).toInt());
    }

#ifdef LEDGERLY_PROGRAM
    {
        int found = 0;
        const double ms = medianMs(5, [&] {
            QProcess find;
            find.start(QStringLiteral(LEDGERLY_PROGRAM), { QStringLiteral("find"), QStringLiteral("item 12") });
            find.waitForFinished(60000);
            found = int(find.readAllStandardOutput().count('\n')) - 1;
        });
        row(QStringLiteral("ledgerly find \"item 12\" (wall time)"), ms, -1, found);
    }
#endif
    return 0;
}
