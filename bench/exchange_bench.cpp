// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times export (CSV and QIF), import of CSV lines, of QIF records with
// splits, of OFX transactions and of a bank's CSV read through a column
// mapping (into an empty file, and again into one that holds them all),
// and backups at 50,000 entries (ten years across all
// 37 categories), each against a floor made with the plain SQLite C API (and
// a plain file copy for the backup), and reports the peak resident memory.
// Medians of three runs.

#include "backup.h"
#include "csvformat.h"
#include "csvmapping.h"
#include "databasemanager.h"
#include "entryexport.h"
#include "entryimport.h"
#include "tenyears.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QTextStream>

#include <memory>

#ifdef LEDGERLY_HAVE_SQLITE3
#include <sqlite3.h>
#endif

namespace {

QTextStream out(stdout);

const int entryCount = 50000;

struct Row
{
    QString operation;
    double storeMs = -1;
    double plainMs = -1;
    QString floor = QString();
};

void printRow(const Row &row)
{
    const bool hasPlain = row.plainMs >= 0;
    out << QStringLiteral("%1 %2 %3 %4  %5")
               .arg(row.operation, -44)
               .arg(row.storeMs, 10, 'f', 1)
               .arg(hasPlain ? QString::number(row.plainMs, 'f', 1) : QStringLiteral("n/a"), 10)
               .arg(hasPlain && row.plainMs > 0 ? QString::number(row.storeMs / row.plainMs, 'f', 1) + QLatin1Char('x')
                                                : QStringLiteral("n/a"),
                    7)
               .arg(row.floor)
        << Qt::endl;
}

#ifdef LEDGERLY_HAVE_SQLITE3
// Every entry read with the C API and written as CSV text with the same
// columns, printf-formatted: what an export costs without the store.
double plainExportMs(const QString &databaseFile, const QString &target)
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(databaseFile.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    const double ms = medianMs(3, [&] {
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(db,
                           "select TransactDateTime,ItemName,CategoryName,Price,LocationText,EnableGeoLoc,"
                           "GeoLocLongit,GeoLocLatit from Entry order by TransactDateTime desc",
                           -1, &statement, nullptr);
        QByteArray text;
        char line[1024];
        while (sqlite3_step(statement) == SQLITE_ROW) {
            const int length = snprintf(line, sizeof line, "%s,%s,%s,%g,%s,%s,%g,%g\r\n",
                                        reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)),
                                        reinterpret_cast<const char *>(sqlite3_column_text(statement, 1)),
                                        reinterpret_cast<const char *>(sqlite3_column_text(statement, 2)),
                                        sqlite3_column_double(statement, 3),
                                        reinterpret_cast<const char *>(sqlite3_column_text(statement, 4)),
                                        reinterpret_cast<const char *>(sqlite3_column_text(statement, 5)),
                                        sqlite3_column_double(statement, 6), sqlite3_column_double(statement, 7));
            text.append(line, length);
        }
        sqlite3_finalize(statement);
        QFile file(target);
        file.open(QIODevice::WriteOnly);
        file.write(text);
    });
    sqlite3_close(db);
    return ms;
}

// The entries inserted with one prepared statement in one transaction,
// without the catalogue and places that AddEntry keeps.
double plainInsertMs(const QString &databaseFile, const QList<EntryFileContents::LineEntry> &entries)
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(databaseFile.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr);
    const double ms = medianMs(3, [&] {
        sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(db,
                           "INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,LocationText,"
                           "EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES (?,?,0,?,?,?,?,0,?,?,0)",
                           -1, &statement, nullptr);
        for (const EntryFileContents::LineEntry &read : entries) {
            const Entry &entry = read.entry;
            const QByteArray item = entry.ItemName.toUtf8();
            const QByteArray category = entry.CategoryName.toUtf8();
            const QByteArray when = StorageForm::dateTime(entry.TransactDateTime).toUtf8();
            const QByteArray place = entry.LocationText.toUtf8();
            sqlite3_bind_text(statement, 1, item.constData(), int(item.size()), SQLITE_TRANSIENT);
            sqlite3_bind_text(statement, 2, category.constData(), int(category.size()), SQLITE_TRANSIENT);
            sqlite3_bind_text(statement, 3, when.constData(), int(when.size()), SQLITE_TRANSIENT);
            sqlite3_bind_double(statement, 4, entry.Price);
            sqlite3_bind_text(statement, 5, place.constData(), int(place.size()), SQLITE_TRANSIENT);
            sqlite3_bind_text(statement, 6, entry.EnableGeoLoc ? "true" : "false", -1, SQLITE_STATIC);
            sqlite3_bind_double(statement, 7, entry.GeoLocLongit);
            sqlite3_bind_double(statement, 8, entry.GeoLocLatit);
            sqlite3_step(statement);
            sqlite3_reset(statement);
        }
        sqlite3_finalize(statement);
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
    });
    sqlite3_close(db);
    return ms;
}

// SQLite's own online backup between two plain connections.
double plainBackupMs(const QString &databaseFile, const QString &target)
{
    return medianMs(
        3,
        [&] {
            sqlite3 *source = nullptr;
            sqlite3 *copy = nullptr;
            sqlite3_open_v2(databaseFile.toUtf8().constData(), &source, SQLITE_OPEN_READONLY, nullptr);
            sqlite3_open_v2(target.toUtf8().constData(), &copy, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
            sqlite3_backup *backup = sqlite3_backup_init(copy, "main", source, "main");
            sqlite3_backup_step(backup, -1);
            sqlite3_backup_finish(backup);
            sqlite3_close(copy);
            sqlite3_close(source);
        },
        [&] { QFile::remove(target); });
}
#endif

// A CSV file of `count` lines whose items each keep one category, as a
// person's purchases do.
QByteArray steadyCatalogue(int count)
{
    QByteArray bytes = CsvFormat::header();
    const QDateTime first(QDate(2016, 1, 1), QTime(8, 0));
    for (int i = 0; i < count; ++i) {
        Entry entry;
        entry.TransactDateTime = first.addSecs(qint64(i) * 6300);
        const int item = (i * 7919) % 300;
        entry.ItemName = QStringLiteral("Item %1").arg(item);
        entry.CategoryName = QStringLiteral("Category %1").arg(item % 37);
        entry.Price = float((i * 37) % 10000) / 100.0f;
        entry.LocationText = QStringLiteral("Shop %1").arg(i % 50);
        entry.EnableGeoLoc = i % 2 == 0;
        entry.GeoLocLongit = 103.8f + float(i % 50) / 1000.0f;
        entry.GeoLocLatit = 1.3f;
        CsvFormat::appendLine(bytes, entry);
    }
    return bytes;
}

// Imports `file` into a new home three times; the median of reading,
// checking and writing all of it.
double importMs(QTemporaryDir &work, const QString &file, int *added)
{
    int run = 0;
    std::unique_ptr<DatabaseManager> store;
    return medianMs(
        3,
        [&] {
            const EntryFileContents contents = EntryImport::read(file);
            *added = EntryImport::write(*store, contents.entries).added;
        },
        [&] {
            store.reset();
            const QString home = work.filePath(QStringLiteral("import-%1").arg(run++));
            QDir().mkpath(home);
            qputenv("HOME", home.toLocal8Bit());
            store = std::make_unique<DatabaseManager>(nullptr);
        });
}

// A bank's QIF of `count` records over ten years: every fourth a receipt
// split in two categories.
QByteArray qifWithSplits(int count)
{
    QByteArray bytes = "!Type:Bank\r\n";
    const QDate first(2016, 1, 1);
    for (int i = 0; i < count; ++i) {
        const QDate day = first.addDays(i * 3650 / count);
        const int cents = 100 + (i * 37) % 10000;
        bytes += "D" + day.toString(QStringLiteral("MM/dd/yyyy")).toLatin1() + "\r\n";
        bytes += "T-" + QByteArray::number(cents / 100) + '.' + QByteArray::number(cents % 100).rightJustified(2, '0');
        bytes += "\r\nPShop " + QByteArray::number(i % 50) + "\r\nMItem " + QByteArray::number((i * 7919) % 300);
        bytes += "\r\nLCategory " + QByteArray::number(i % 37) + "\r\n";
        if (i % 4 == 0)
            bytes += "SGroceries\r\nEFood\r\n$-0.60\r\nSHousehold\r\n$-0.40\r\n";
        bytes += "^\r\n";
    }
    return bytes;
}

// A bank's OFX statement of `count` transactions, every tenth a credit.
QByteArray ofxStatement(int count)
{
    QByteArray bytes = "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nENCODING:USASCII\r\nCHARSET:1252\r\n\r\n"
                       "<OFX><BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STMTRS><CURDEF>EUR<BANKACCTFROM><BANKID>1"
                       "<ACCTID>123456<ACCTTYPE>CHECKING</BANKACCTFROM><BANKTRANLIST>\r\n";
    const QDate first(2016, 1, 1);
    for (int i = 0; i < count; ++i) {
        const QDate day = first.addDays(i * 3650 / count);
        const int cents = 100 + (i * 37) % 10000;
        bytes += "<STMTTRN><TRNTYPE>POS<DTPOSTED>" + day.toString(QStringLiteral("yyyyMMdd")).toLatin1() +
            "120000.000[-5:EST]<TRNAMT>" + (i % 10 == 9 ? "" : "-") + QByteArray::number(cents / 100) + '.' +
            QByteArray::number(cents % 100).rightJustified(2, '0') + "<FITID>" + QByteArray::number(1000000 + i) +
            "<NAME>Shop " + QByteArray::number(i % 50) + "<MEMO>Item " + QByteArray::number((i * 7919) % 300) +
            "</STMTTRN>\r\n";
    }
    return bytes + "</BANKTRANLIST><LEDGERBAL><BALAMT>0<DTASOF>20260101</LEDGERBAL></STMTRS></STMTTRNRS>"
                   "</BANKMSGSRSV1></OFX>\r\n";
}

// A German bank's CSV export of `count` rows over ten years: title lines,
// ';', a decimal comma with thousands points, day-first dates with
// two-digit years, a memo and a payee column, every tenth row income, and
// a closing balance.
QByteArray bankCsv(int count)
{
    QByteArray bytes = "Umsatzanzeige;Girokonto;;\r\nKontonummer;1234567890;;\r\n;;;\r\n"
                       "Buchungstag;Verwendungszweck;Beguenstigter/Zahlungspflichtiger;Betrag;Waehrung\r\n";
    const QDate first(2016, 1, 1);
    for (int i = 0; i < count; ++i) {
        const QDate day = first.addDays(i * 3650 / count);
        const int cents = 100 + (i * 37) % 250000;
        const QByteArray euros = QByteArray::number(cents / 100);
        bytes += day.toString(QStringLiteral("dd.MM.yy")).toLatin1() + ";\"Kartenzahlung " +
            QByteArray::number((i * 7919) % 300) + "\";\"Shop " + QByteArray::number(i % 50) + "\";" +
            (i % 10 == 9 ? "" : "-") + (euros.size() > 3 ? euros.chopped(3) + '.' + euros.right(3) : euros) + ',' +
            QByteArray::number(cents % 100).rightJustified(2, '0') + ";EUR\r\n";
    }
    return bytes + "Kontostand;;;1.234,56;EUR\r\n";
}

// Imports `file` as the command line does (read, recognise, write and
// record) into a new home, and again into a home that holds it already;
// a bank's CSV through `mapping`.
void recordedImportMs(QTemporaryDir &work, const QString &file, double *intoEmpty, double *again, int *added,
                      int *skipped, const std::optional<CsvMapping> &mapping = std::nullopt)
{
    int run = 0;
    std::unique_ptr<DatabaseManager> store;
    const auto freshHome = [&] {
        store.reset();
        const QString home = work.filePath(QStringLiteral("recorded-%1").arg(run++));
        QDir().mkpath(home);
        qputenv("HOME", home.toLocal8Bit());
        store = std::make_unique<DatabaseManager>(nullptr);
    };
    const auto import = [&] {
        EntryFileContents contents = EntryImport::read(file, std::nullopt, std::nullopt, mapping);
        EntryImport::recognise(*store, contents);
        *skipped = contents.skippedDuplicates;
        return EntryImport::write(*store, contents.entries, {}, file).added;
    };
    *intoEmpty = medianMs(3, [&] { *added = import(); }, freshHome);
    int addedAgain = 0;
    *again = medianMs(
        3, [&] { addedAgain = import(); },
        [&] {
            freshHome();
            import();
        });
    if (addedAgain != 0)
        *added = -1;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QByteArray previousHome = qgetenv("HOME");
    QTemporaryDir work;
    const QString sourceHome = work.filePath(QStringLiteral("source"));
    QDir().mkpath(sourceHome);
    qputenv("HOME", sourceHome.toLocal8Bit());

    QList<Row> table;
    QString csvFile = work.filePath(QStringLiteral("entries.csv"));
    int pairs = 0;
    {
        auto store = std::make_unique<DatabaseManager>(nullptr);
        QString error;
        if (!fillTenYearsOfEntries(store->databaseFileName(), entryCount, &error)) {
            out << "cannot fill the database: " << error << Qt::endl;
            return 1;
        }

        Row exportCsv { QStringLiteral("export CSV (EntryExport)") };
        exportCsv.storeMs = medianMs(3, [&] { EntryExport::write(*store, csvFile); });
        Row exportQif { QStringLiteral("export QIF (EntryExport)") };
        exportQif.storeMs =
            medianMs(3, [&] { EntryExport::write(*store, work.filePath(QStringLiteral("entries.qif"))); });
        Row backup { QStringLiteral("backup (Backup, SQLite online backup)") };
        const QString copy = work.filePath(QStringLiteral("copy.db"));
        backup.storeMs = medianMs(3, [&] { Backup::write(*store, copy, Backup::Existing::Replace); });
#ifdef LEDGERLY_HAVE_SQLITE3
        exportCsv.plainMs = plainExportMs(store->databaseFileName(), work.filePath(QStringLiteral("plain.csv")));
        exportCsv.floor = QStringLiteral("C API select + printf");
        exportQif.plainMs = exportCsv.plainMs;
        exportQif.floor = exportCsv.floor;
        backup.plainMs = plainBackupMs(store->databaseFileName(), work.filePath(QStringLiteral("plain.db")));
        backup.floor = QStringLiteral("C API backup, two plain connections");
#endif
        table << exportCsv << exportQif << backup;

        Row fileCopy { QStringLiteral("  (copying the closed file with QFile::copy)") };
        fileCopy.storeMs = medianMs(
            3, [&] { QFile::copy(store->databaseFileName(), work.filePath(QStringLiteral("raw.db"))); },
            [&] { QFile::remove(work.filePath(QStringLiteral("raw.db"))); });
        table << fileCopy;

        QSet<QString> distinct;
        for (const Entry *entry : owned(store->GetAllEntries()))
            distinct.insert(entry->ItemName + QLatin1Char('\n') + entry->CategoryName);
        pairs = int(distinct.size());
    }

    const QString steadyFile = work.filePath(QStringLiteral("steady.csv"));
    {
        QFile file(steadyFile);
        file.open(QIODevice::WriteOnly);
        file.write(steadyCatalogue(entryCount));
    }
    Row readOnly { QStringLiteral("  of which reading and checking the CSV") };
    readOnly.storeMs = medianMs(3, [&] { EntryImport::read(csvFile); });

    int added = 0;
    Row importTenYears { QStringLiteral("import CSV, %1 item/category pairs").arg(pairs) };
    importTenYears.storeMs = importMs(work, csvFile, &added);
    const int addedTenYears = added;
    Row importSteady { QStringLiteral("import CSV, 300 items in one category each") };
    importSteady.storeMs = importMs(work, steadyFile, &added);
#ifdef LEDGERLY_HAVE_SQLITE3
    {
        const EntryFileContents contents = EntryImport::read(csvFile);
        importTenYears.plainMs = plainInsertMs(DatabaseManager::defaultFileName(), contents.entries);
        importTenYears.floor = QStringLiteral("C API insert of the entry rows alone");
        importSteady.plainMs = importTenYears.plainMs;
        importSteady.floor = importTenYears.floor;
    }
#endif
    table << importTenYears << readOnly << importSteady;

    // QIF with splits and OFX, as a user brings them, recorded; and the same
    // file a second time, every record recognised.
    const QString qifFile = work.filePath(QStringLiteral("bank.qif"));
    const QString ofxFile = work.filePath(QStringLiteral("bank.ofx"));
    const QString bankFile = work.filePath(QStringLiteral("umsatz.csv"));
    {
        QFile qif(qifFile);
        qif.open(QIODevice::WriteOnly);
        qif.write(qifWithSplits(entryCount));
        QFile ofx(ofxFile);
        ofx.open(QIODevice::WriteOnly);
        ofx.write(ofxStatement(entryCount));
        QFile bank(bankFile);
        bank.open(QIODevice::WriteOnly);
        bank.write(bankCsv(entryCount));
    }
    const std::optional<CsvMapping> bankMapping = CsvMapping::fromText(
        QStringLiteral("--map date=Buchungstag,item=Verwendungszweck,place=Beguenstigter/Zahlungspflichtiger,"
                       "amount=Betrag"));
    QStringList counts;
    for (const QString &file : { qifFile, ofxFile, bankFile }) {
        const bool isQif = file == qifFile;
        const std::optional<CsvMapping> mapping = file == bankFile ? bankMapping : std::nullopt;
        Row first { isQif              ? QStringLiteral("import QIF, %1 records with splits").arg(entryCount)
                        : file == ofxFile ? QStringLiteral("import OFX, %1 transactions").arg(entryCount)
                                          : QStringLiteral("import bank CSV, %1 rows, mapped").arg(entryCount) };
        Row second { QStringLiteral("  the same again, all already imported") };
        int recordedAdded = 0;
        int duplicates = 0;
        recordedImportMs(work, file, &first.storeMs, &second.storeMs, &recordedAdded, &duplicates, mapping);
        counts << QStringLiteral("%1: %2 entries, then %3 already imported")
                      .arg(QFileInfo(file).fileName())
                      .arg(recordedAdded)
                      .arg(duplicates);
#ifdef LEDGERLY_HAVE_SQLITE3
        const EntryFileContents contents = EntryImport::read(file, std::nullopt, std::nullopt, mapping);
        first.plainMs = plainInsertMs(DatabaseManager::defaultFileName(), contents.entries);
        first.floor = QStringLiteral("C API insert of the same entry rows");
        second.plainMs = first.plainMs;
        second.floor = first.floor;
#endif
        table << first << second;
    }
    Row bankRead { QStringLiteral("  of which reading the bank CSV (mapped)") };
    bankRead.storeMs = medianMs(3, [&] { EntryImport::read(bankFile, std::nullopt, std::nullopt, bankMapping); });
    table << bankRead;

    out << "N = " << entryCount << " entries (imports added " << addedTenYears << " and " << added << ")" << Qt::endl;
    out << QStringLiteral("%1 %2 %3 %4  %5")
               .arg(QStringLiteral("operation"), -44)
               .arg(QStringLiteral("ms"), 10)
               .arg(QStringLiteral("floor ms"), 10)
               .arg(QStringLiteral("ratio"), 7)
               .arg(QStringLiteral("floor"))
        << Qt::endl;
    for (const Row &row : table)
        printRow(row);
    for (const QString &line : counts)
        out << line << Qt::endl;
    out << "CSV file: " << QFileInfo(csvFile).size() / 1024
        << " KB; database: " << QFileInfo(work.filePath(QStringLiteral("copy.db"))).size() / 1024 << " KB" << Qt::endl;
    out << "peak resident memory: " << peakResidentKb() / 1024 << " MB" << Qt::endl;
    qputenv("HOME", previousHome);
    return 0;
}
