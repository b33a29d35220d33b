// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Bringing a file's entries into the store: all or nothing, oldest first,
// through AddEntry, with the categories the file needs.
#include "databasemanager.h"
#include "entryexport.h"
#include "entryimport.h"
#include "rules.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "sampleentries.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

// The fields a CSV file carries, one line per entry in GetAllEntries order.
QStringList storedFields(DatabaseManager &store)
{
    QStringList lines;
    for (const Entry *entry : owned(store.GetAllEntries()))
        lines.append(
            QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
                .arg(entry->TransactDateTime.toString(Qt::ISODate), entry->ItemName, entry->CategoryName)
                .arg(double(entry->Price), 0, 'g', 9)
                .arg(entry->LocationText, entry->EnableGeoLoc ? QStringLiteral("true") : QStringLiteral("false"))
                .arg(double(entry->GeoLocLongit), 0, 'g', 9)
                .arg(double(entry->GeoLocLatit), 0, 'g', 9));
    return lines;
}

QString realFile(const QString &folder, const QString &name)
{
    return QStringLiteral(LEDGERLY_REAL_FILES "/%1/%2").arg(folder, name);
}

// What a file's entries come to: how many, their sum in cents, the earliest
// and the latest day.
struct Totals
{
    int count = 0;
    qint64 cents = 0;
    QDate first;
    QDate last;
};

Totals totalsOf(const QList<EntryFileContents::LineEntry> &entries)
{
    Totals totals;
    double sum = 0;
    for (const EntryFileContents::LineEntry &read : entries) {
        const QDate day = read.entry.TransactDateTime.date();
        ++totals.count;
        sum += double(read.entry.Price);
        if (!totals.first.isValid() || day < totals.first)
            totals.first = day;
        if (!totals.last.isValid() || day > totals.last)
            totals.last = day;
    }
    totals.cents = qRound64(sum * 100);
    return totals;
}

const QByteArray header = "Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n";

} // namespace

class TestEntryImport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aCsvExportImportedIntoAnEmptyHomeGivesTheSameEntries();
    void entriesAreAddedOldestFirstSoEachItemKeepsItsNewestPrice();
    void entriesOfTheSameMomentKeepTheFileOrder();
    void categoriesTheStoreLacksAreAddedOnceBeforeTheEntries();
    void geolocatedEntriesRememberTheirPlacesAsTheNewEntryPageDoes();
    void importingTheSameFileTwiceAddsItsEntriesTwice();
    void anEntryRefusedHalfWayUndoesTheWholeImport();
    void aCancelledImportWritesNothing();
    void progressIsToldInStepsUpToTheTotal();
    void aQifFileIsReadByItsSuffixWithTheDateOrderAsked();
    void realQifFilesGiveWhatACarefulReaderGets_data();
    void realQifFilesGiveWhatACarefulReaderGets();
    void realQifFilesThatNoRuleReadsAreRefusedWithTheirLine_data();
    void realQifFilesThatNoRuleReadsAreRefusedWithTheirLine();
    void realOfxFilesGiveWhatACarefulReaderGets_data();
    void realOfxFilesGiveWhatACarefulReaderGets();
    void realOfxFilesKeepTheirNamesCharacterForCharacter_data();
    void realOfxFilesKeepTheirNamesCharacterForCharacter();
    void aBadLineAmongAThousandIsFoundBeforeAnythingIsWritten();
    void aFileThatCannotBeReadIsAProblemOfTheWholeFile_data();
    void aFileThatCannotBeReadIsAProblemOfTheWholeFile();
    void theSummaryCountsTheAddedAndTheSkipped();
    void aCsvOfLedgerlysOwnIsReadAsAlwaysEvenWithAMapping();
    void aBankCsvIsReadThroughItsMappingAndRefusedWithoutOne();
    void theEncodingAndDateOrderAskedForWinOverTheMappings();
    void rulesCategoriseTheEntriesOfEveryFormatThatComeWithoutACategory_data();
    void rulesCategoriseTheEntriesOfEveryFormatThatComeWithoutACategory();
    void withoutRulesTheFilesCategoriesStay();
    void theSummaryTellsHowManyEntriesTheRulesCategorised();

private:
    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void TestEntryImport::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void TestEntryImport::cleanup()
{
    store.reset();
    home.reset();
}

void TestEntryImport::aCsvExportImportedIntoAnEmptyHomeGivesTheSameEntries()
{
    const QList<Entry> entries = {
        makeEntry(at(2026, 1, 2, 3, 4, 5), QStringLiteral("Comma, inside"), QStringLiteral("Food"), 0.1f,
                  QStringLiteral("Say \"cheese\""), true, -122.4194f, -37.8136f),
        makeEntry(at(2026, 1, 3), QStringLiteral("=SUM(A1:A9)"), QStringLiteral("-Refunds"), 12.75f,
                  QStringLiteral("Two\r\nlines\nhere"), false, 103.0f, 1.3f),
        makeEntry(at(2026, 1, 4, 23, 59, 59), QStringLiteral("'quoted"), QStringLiteral("'Apostrophe"), 1234567.0f,
                  QStringLiteral("@home"), true, -0.5f, 51.4779f),
        makeEntry(at(2026, 1, 5, 12), QStringLiteral("Хлеб 面包 خبز"), QStringLiteral("Nourriture élémentaire"), 2.5f,
                  QStringLiteral("Café Zürich"), false, 103.0f, 1.3f),
        makeEntry(at(2026, 1, 6, 7, 30), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 3.2f, QStringLiteral(""),
                  true, 0.0f, 0.0f),
    };
    for (Entry entry : entries)
        QVERIFY(store->AddEntry(&entry));
    const QStringList before = storedFields(*store);
    QCOMPARE(before.size(), entries.size());

    // A file outside both homes.
    QTemporaryDir exchange;
    const QString file = exchange.filePath(QStringLiteral("entries.csv"));
    QVERIFY(EntryExport::write(*store, file).written);

    // Another user, another home.
    store.reset();
    home.reset();
    home = std::make_unique<TempHome>();
    store = std::make_unique<DatabaseManager>(nullptr);
    const EntryFileContents contents = EntryImport::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    const EntryImport::Outcome outcome = EntryImport::write(*store, contents.entries);
    QVERIFY2(outcome.written, qPrintable(outcome.failure));
    QCOMPARE(outcome.added, 5);
    QCOMPARE(storedFields(*store), before);

    // The categories the new home lacked, in the order of their first entry.
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("select CategoryName from Category where SNo > 37 order by SNo")),
             QList<QVariantList>({ { QStringLiteral("-Refunds") },
                                   { QStringLiteral("'Apostrophe") },
                                   { QStringLiteral("Nourriture élémentaire") } }));
}

void TestEntryImport::entriesAreAddedOldestFirstSoEachItemKeepsItsNewestPrice()
{
    // Newest first, as the program exports.
    const QString file = home->filePath(QStringLiteral("prices.csv"));
    QVERIFY(writeFile(file,
                      header +
                          "2026-03-03T09:00:00,Coffee,Drinks,3.5,,false,0,0\r\n"
                          "2026-03-02T09:00:00,Tea,Drinks,1.5,,false,0,0\r\n"
                          "2026-03-01T09:00:00,Coffee,Drinks,2.5,,false,0,0\r\n"));
    const EntryFileContents contents = EntryImport::read(file);
    QVERIFY(EntryImport::write(*store, contents.entries).written);

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("select SNo, ItemName, Price from Entry order by SNo")),
             QList<QVariantList>({ { 1, QStringLiteral("Coffee"), 2.5 },
                                   { 2, QStringLiteral("Tea"), 1.5 },
                                   { 3, QStringLiteral("Coffee"), 3.5 } }));
    QCOMPARE(raw.rows(QStringLiteral("select ItemName, LastPrice, UseFrequency from Items order by SNo")),
             QList<QVariantList>({ { QStringLiteral("Coffee"), 3.5, 2 }, { QStringLiteral("Tea"), 1.5, 1 } }));
}

void TestEntryImport::entriesOfTheSameMomentKeepTheFileOrder()
{
    const QString file = home->filePath(QStringLiteral("ties.csv"));
    QVERIFY(writeFile(file,
                      header +
                          "2026-03-01,B,Food,2,,false,0,0\r\n"
                          "2026-03-02,Later,Food,9,,false,0,0\r\n"
                          "2026-03-01,A,Food,1,,false,0,0\r\n"
                          "2026-03-01,C,Food,3,,false,0,0\r\n"));
    QVERIFY(EntryImport::write(*store, EntryImport::read(file).entries).written);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("select ItemName from Entry order by SNo")),
             QList<QVariantList>({ { QStringLiteral("B") },
                                   { QStringLiteral("A") },
                                   { QStringLiteral("C") },
                                   { QStringLiteral("Later") } }));
}

void TestEntryImport::categoriesTheStoreLacksAreAddedOnceBeforeTheEntries()
{
    const QString file = home->filePath(QStringLiteral("pets.csv"));
    QVERIFY(writeFile(file,
                      header +
                          "2026-03-02,Kibble,Pets,20,,false,0,0\r\n"
                          "2026-03-01,Toy,Pets,5,,false,0,0\r\n"
                          "2026-03-03,Bread,Food,2,,false,0,0\r\n"
                          "2026-03-04,Seeds,Garden,4,,false,0,0\r\n"));
    QVERIFY(EntryImport::write(*store, EntryImport::read(file).entries).written);
    RawDatabase raw(home->databasePath());
    // Added in the order their first entry is written, after the 37 defaults.
    QCOMPARE(raw.rows(QStringLiteral("select SNo, CategoryName from Category where SNo > 37 order by SNo")),
             QList<QVariantList>({ { 38, QStringLiteral("Pets") }, { 39, QStringLiteral("Garden") } }));
    // So every entry and catalogue row carries its category's number.
    QCOMPARE(raw.rows(QStringLiteral("select ItemName, CategoryID from Entry order by SNo")),
             QList<QVariantList>({ { QStringLiteral("Toy"), 38 },
                                   { QStringLiteral("Kibble"), 38 },
                                   { QStringLiteral("Bread"), 1 },
                                   { QStringLiteral("Seeds"), 39 } }));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Items where CategoryID = 0")).toInt(), 0);
}

void TestEntryImport::geolocatedEntriesRememberTheirPlacesAsTheNewEntryPageDoes()
{
    const QString file = home->filePath(QStringLiteral("places.csv"));
    QVERIFY(writeFile(file,
                      header +
                          "2026-03-02,Tea,Drinks,2,Harbour,true,-3.5,40.25\r\n"
                          "2026-03-01,Cake,Food,4,Harbour,true,-3.5,40.25\r\n"
                          "2026-03-03,Bread,Food,1,Market,false,103,1.3\r\n"));
    QVERIFY(EntryImport::write(*store, EntryImport::read(file).entries).written);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("select SNo, LocationName, LocationLongitude, LocationLatitude, CoordinateText "
                                     "from HistoricLocation")),
             QList<QVariantList>({ { 1, QStringLiteral("Harbour"), -3.5, 40.25, QStringLiteral("-3.5-40.25") } }));
    QCOMPARE(raw.rows(QStringLiteral("select ItemName, GeoLocID, GeoLocLongit, GeoLocLatit from Entry order by SNo")),
             QList<QVariantList>({ { QStringLiteral("Cake"), 1, -3.5, 40.25 },
                                   { QStringLiteral("Tea"), 1, -3.5, 40.25 },
                                   { QStringLiteral("Bread"), 0, 103.0, double(1.3f) } }));
}

void TestEntryImport::importingTheSameFileTwiceAddsItsEntriesTwice()
{
    const QString file = home->filePath(QStringLiteral("twice.csv"));
    QVERIFY(writeFile(file, header + "2026-03-01,Tea,Drinks,2,,false,0,0\r\n"));
    for (int round = 0; round < 2; ++round) {
        const EntryImport::Outcome outcome = EntryImport::write(*store, EntryImport::read(file).entries);
        QVERIFY(outcome.written);
        QCOMPARE(outcome.added, 1);
    }
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry where ItemName = 'Tea'")).toInt(), 2);
    QCOMPARE(raw.scalar(QStringLiteral("select UseFrequency from Items where ItemName = 'Tea'")).toInt(), 2);
}

void TestEntryImport::anEntryRefusedHalfWayUndoesTheWholeImport()
{
    Entry existing = makeEntry(at(2026, 1, 1), QStringLiteral("Bread"), QStringLiteral("Food"), 2.0f,
                               QStringLiteral("Market"), true, 5.0f, 6.0f);
    QVERIFY(store->AddEntry(&existing));
    RawDatabase raw(home->databasePath());
    // The file refuses one entry row, as a full disk or a damaged file would
    // refuse some write in the middle.
    QVERIFY(raw.exec(QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON Entry WHEN NEW.ItemName = 'Poison' "
                                    "BEGIN SELECT RAISE(ABORT, 'refused'); END")));
    const QStringList before = raw.dumpTables();

    const QString file = home->filePath(QStringLiteral("poison.csv"));
    QVERIFY(writeFile(file,
                      header +
                          "2026-03-05,Late,Pets,5,Zoo,true,1,2\r\n"
                          "2026-03-03,Poison,Garden,3,,false,0,0\r\n"
                          "2026-03-01,Bread,Food,1,Market,true,5,6\r\n"
                          "2026-03-02,Early,Pets,2,Farm,true,3,4\r\n"));
    const EntryFileContents contents = EntryImport::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    const EntryImport::Outcome outcome = EntryImport::write(*store, contents.entries);
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.added, 0);
    QCOMPARE(outcome.failure, QStringLiteral("the entry of line 3 could not be added to the database"));
    // Neither the entries written before it, nor their catalogue rows,
    // places or categories stay.
    QCOMPARE(raw.dumpTables(), before);
    QCOMPARE(store->GetTotalNumberOfEntries(), 1);
}

void TestEntryImport::aCancelledImportWritesNothing()
{
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    QList<EntryFileContents::LineEntry> entries;
    for (int i = 0; i < 700; ++i)
        entries.append({ i + 2,
                         makeEntry(at(2026, 1, 1).addSecs(i * 60), QStringLiteral("Item %1").arg(i % 9),
                                   QStringLiteral("New %1").arg(i % 3), 1.0f + i),
                         QString(), QString() });
    QList<qint64> told;
    const EntryImport::Outcome outcome = EntryImport::write(*store, entries, [&](qint64 done, qint64 total) {
        told.append(total);
        return done < 512;
    });
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.failure, QStringLiteral("the import was cancelled"));
    QCOMPARE(told, QList<qint64>({ 700, 700 }));
    QCOMPARE(raw.dumpTables(), before);
}

void TestEntryImport::progressIsToldInStepsUpToTheTotal()
{
    QList<EntryFileContents::LineEntry> entries;
    for (int i = 0; i < 600; ++i)
        entries.append(
            { i + 2, makeEntry(at(2026, 1, 1).addSecs(i), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f),
              QString(), QString() });
    QList<QPair<qint64, qint64>> told;
    const EntryImport::Outcome outcome = EntryImport::write(*store, entries, [&](qint64 done, qint64 total) {
        told.append({ done, total });
        return true;
    });
    QVERIFY(outcome.written);
    QCOMPARE(outcome.added, 600);
    QCOMPARE(told, (QList<QPair<qint64, qint64>>({ { 256, 600 }, { 512, 600 }, { 600, 600 } })));
    QCOMPARE(store->GetTotalNumberOfEntries(), 600);
}

void TestEntryImport::aQifFileIsReadByItsSuffixWithTheDateOrderAsked()
{
    const QString file = home->filePath(QStringLiteral("BANK.QIF"));
    QVERIFY(writeFile(file, "!Type:Bank\r\nD03/04/2024\r\nT-1,234.50\r\nPShop\r\nMRadio\r\nLElectronics\r\n^\r\n"));
    const EntryFileContents monthFirst = EntryImport::read(file);
    QCOMPARE(monthFirst.problemLines(), QStringList());
    QCOMPARE(monthFirst.openDate, QStringLiteral("03/04/2024"));
    QCOMPARE(monthFirst.entries.constFirst().entry.TransactDateTime.date(), QDate(2024, 3, 4));
    const EntryFileContents dayFirst = EntryImport::read(file, QifFormat::DateOrder::DayFirst);
    QCOMPARE(dayFirst.entries.constFirst().entry.TransactDateTime.date(), QDate(2024, 4, 3));

    QVERIFY(EntryImport::write(*store, dayFirst.entries).written);
    QCOMPARE(storedFields(*store),
             QStringList { QStringLiteral("2024-04-03T00:00:00|Radio|Electronics|1234.5|Shop|"
                                          "false|0|0") });
}

void TestEntryImport::aBadLineAmongAThousandIsFoundBeforeAnythingIsWritten()
{
    QByteArray bytes = header;
    for (int line = 2; line <= 1000; ++line) {
        const QByteArray date =
            line == 7 ? "2026-02-30" : QDate(2025, 1, 1).addDays(line).toString(Qt::ISODate).toLatin1();
        bytes += date + ",Item,Food,1.5,,false,0,0\r\n";
    }
    const QString file = home->filePath(QStringLiteral("thousand.csv"));
    QVERIFY(writeFile(file, bytes));
    const EntryFileContents contents = EntryImport::read(file);
    QCOMPARE(contents.problemLines(),
             QStringList { QStringLiteral("line 7: the date \"2026-02-30\" is not of the form yyyy-MM-ddTHH:mm:ss") });
    QCOMPARE(contents.entries.size(), 998);
}

void TestEntryImport::aFileThatCannotBeReadIsAProblemOfTheWholeFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("problem");
    QTest::newRow("missing") << QStringLiteral("missing.csv")
                             << QStringLiteral("%1 cannot be read: No such file or directory");
    QTest::newRow("a directory") << QStringLiteral("folder.qif") << QStringLiteral("%1 cannot be read: ");
    QTest::newRow("another suffix") << QStringLiteral("entries.txt")
                                    << QStringLiteral("%1 is not a .csv, .qif, .ofx, .qfx or .qbo file");
}

void TestEntryImport::aFileThatCannotBeReadIsAProblemOfTheWholeFile()
{
    QFETCH(QString, name);
    QFETCH(QString, problem);
    QVERIFY(QDir(home->path()).mkdir(QStringLiteral("folder.qif")));
    QVERIFY(writeFile(home->filePath(QStringLiteral("entries.txt")), header));
    const QString path = home->filePath(name);
    const QStringList problems = EntryImport::read(path).problemLines();
    QCOMPARE(problems.size(), 1);
    QVERIFY2(problems.constFirst().startsWith(problem.arg(path)), qPrintable(problems.constFirst()));
}

void TestEntryImport::theSummaryCountsTheAddedAndTheSkipped()
{
    EntryFileContents contents;
    contents.skippedIncome = 30;
    contents.skippedTransfers = 4;
    QCOMPARE(EntryImport::summary(QStringLiteral("/x/bank.qif"), contents, 1200),
             QStringLiteral("Imported 1200 entries from /x/bank.qif; skipped 34 (income 30, transfers 4)"));
    QCOMPARE(EntryImport::summary(QStringLiteral("one.csv"), EntryFileContents(), 1),
             QStringLiteral("Imported 1 entry from one.csv; skipped 0"));
}

void TestEntryImport::aCsvOfLedgerlysOwnIsReadAsAlwaysEvenWithAMapping()
{
    const QString file = home->filePath(QStringLiteral("own.csv"));
    QVERIFY(writeFile(file, "Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n"
                            "2026-03-01T09:30:00,Bread,Food,2.5,Bakery,false,0,0\r\n"));
    const std::optional<CsvMapping> mapping = CsvMapping::fromText(QStringLiteral("--map date=1,item=2,amount=3"));
    QVERIFY(mapping);
    const EntryFileContents contents = EntryImport::read(file, std::nullopt, std::nullopt, mapping);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.size(), 1);
    // Ledgerly's reader: the time and the category as written.
    QCOMPARE(contents.entries.constFirst().entry.TransactDateTime, QDateTime(QDate(2026, 3, 1), QTime(9, 30)));
    QCOMPARE(contents.entries.constFirst().entry.CategoryName, QStringLiteral("Food"));
}

void TestEntryImport::aBankCsvIsReadThroughItsMappingAndRefusedWithoutOne()
{
    const QString file = home->filePath(QStringLiteral("Bank.CSV"));
    QVERIFY(writeFile(file, "Datum;Empfaenger;Betrag\n01.03.2026;Kiosk;-2,50\n"));
    const EntryFileContents unmapped = EntryImport::read(file);
    QCOMPARE(unmapped.problemLines(),
             QStringList { QStringLiteral("%1: the columns are not Ledgerly's; map them with --map (columns: Datum, "
                                          "Empfaenger, Betrag)")
                               .arg(file) });
    const EntryFileContents mapped = EntryImport::read(
        file, std::nullopt, std::nullopt,
        CsvMapping::fromText(QStringLiteral("--map date=Datum,item=Empfaenger,amount=Betrag")));
    QCOMPARE(mapped.problemLines(), QStringList());
    QCOMPARE(mapped.entries.size(), 1);
    QCOMPARE(mapped.entries.constFirst().entry.Price, 2.5f);
    QVERIFY(EntryImport::write(*store, mapped.entries).written);
    QCOMPARE(storedFields(*store).constFirst(),
             QStringLiteral("2026-03-01T00:00:00|Kiosk|Others|2.5|Kiosk|false|0|0"));
}

void TestEntryImport::theEncodingAndDateOrderAskedForWinOverTheMappings()
{
    const QString file = home->filePath(QStringLiteral("bank.csv"));
    // "Café" in Windows-1252; a date either order reads.
    QVERIFY(writeFile(file, "Date,Payee,Amount\n03/04/2026,Caf\xe9,-1\n"));
    const std::optional<CsvMapping> mapping =
        CsvMapping::fromText(QStringLiteral("--map date=Date,item=Payee,amount=Amount --encoding UTF-8"));
    const EntryFileContents asked =
        EntryImport::read(file, QifFormat::DateOrder::DayFirst, TextEncoding::Windows1252, mapping);
    QCOMPARE(asked.problemLines(), QStringList());
    QCOMPARE(asked.encoding, QStringLiteral("Windows-1252"));
    QCOMPARE(asked.entries.constFirst().entry.ItemName, QStringLiteral("Café"));
    QCOMPARE(asked.entries.constFirst().entry.TransactDateTime.date(), QDate(2026, 4, 3));
    const EntryFileContents asMapped = EntryImport::read(file, std::nullopt, std::nullopt, mapping);
    QCOMPARE(asMapped.encoding, QStringLiteral("UTF-8"));
    QCOMPARE(asMapped.entries.constFirst().entry.TransactDateTime.date(), QDate(2026, 3, 4));
}

void TestEntryImport::rulesCategoriseTheEntriesOfEveryFormatThatComeWithoutACategory_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<int>("categorised");
    QTest::newRow("CSV") << "bank.csv"
                         << header + "2024-01-05,REWE SAGT DANKE,Others,23.5,,false,0,0\r\n"
                                     "2024-01-06,REWE Kaufhof,Clothes,9,,false,0,0\r\n"
                                     "2024-01-07,Aldi,Others,4,,false,0,0\r\n"
                         << QStringList { "REWE SAGT DANKE|Groceries", "REWE Kaufhof|Clothes", "Aldi|Others" } << 1;
    QTest::newRow("QIF") << "bank.qif"
                         << QByteArray("!Type:Bank\r\nD01/05/2024\r\nT-23.50\r\nPREWE SAGT DANKE\r\n^\r\n"
                                       "D01/06/2024\r\nT-9.00\r\nPREWE Kaufhof\r\nLClothes\r\n^\r\n"
                                       "D01/07/2024\r\nT-4.00\r\nPAldi\r\n^\r\n")
                         << QStringList { "REWE SAGT DANKE|Groceries", "REWE Kaufhof|Clothes", "Aldi|Others" } << 1;
    QTest::newRow("OFX") << "bank.ofx"
                         << QByteArray("OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n<OFX><BANKMSGSRSV1>"
                                       "<STMTTRNRS><STMTRS><BANKACCTFROM><ACCTID>1</BANKACCTFROM><BANKTRANLIST>\r\n"
                                       "<STMTTRN><TRNTYPE>POS<DTPOSTED>20240105<TRNAMT>-23.50<FITID>A1"
                                       "<NAME>REWE SAGT DANKE</STMTTRN>\r\n"
                                       "<STMTTRN><TRNTYPE>POS<DTPOSTED>20240107<TRNAMT>-4.00<FITID>A2"
                                       "<NAME>Aldi</STMTTRN>\r\n"
                                       "</BANKTRANLIST></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>\r\n")
                         << QStringList { "REWE SAGT DANKE|Groceries", "Aldi|Others" } << 1;
}

void TestEntryImport::rulesCategoriseTheEntriesOfEveryFormatThatComeWithoutACategory()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, stored);
    QFETCH(int, categorised);
    Rules rules(*store);
    QVERIFY(rules.add({ QStringLiteral("rewe"), Rule::Field::Both, Rule::How::Contains, QStringLiteral("Groceries") }));
    const QString file = home->filePath(name);
    QVERIFY(writeFile(file, bytes));

    EntryFileContents contents = EntryImport::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    EntryImport::recognise(*store, contents);
    EntryImport::categorise(*store, contents);
    QCOMPARE(contents.categorisedByRules, categorised);
    QVERIFY(EntryImport::write(*store, contents.entries, {}, file).written);

    RawDatabase raw(home->databasePath());
    QStringList found;
    for (const QVariantList &row :
         raw.rows(QStringLiteral("SELECT ItemName, CategoryName FROM Entry ORDER BY TransactDateTime")))
        found << row.at(0).toString() + QLatin1Char('|') + row.at(1).toString();
    QCOMPARE(found, stored);
}

void TestEntryImport::withoutRulesTheFilesCategoriesStay()
{
    const QString file = home->filePath(QStringLiteral("plain.csv"));
    QVERIFY(writeFile(file, header + "2024-01-05,REWE,Others,23.5,,false,0,0\r\n"));
    EntryFileContents contents = EntryImport::read(file);
    EntryImport::categorise(*store, contents);
    QCOMPARE(contents.categorisedByRules, 0);
    QCOMPARE(contents.entries.constFirst().entry.CategoryName, QStringLiteral("Others"));
    QCOMPARE(EntryImport::summary(file, contents, 1), QStringLiteral("Imported 1 entry from %1; skipped 0").arg(file));
}

void TestEntryImport::theSummaryTellsHowManyEntriesTheRulesCategorised()
{
    EntryFileContents contents;
    contents.skippedIncome = 30;
    contents.skippedTransfers = 4;
    contents.categorisedByRules = 812;
    QCOMPARE(EntryImport::summary(QStringLiteral("/x/bank.qif"), contents, 1200),
             QStringLiteral("Imported 1200 entries from /x/bank.qif; skipped 34 (income 30, transfers 4); "
                            "categorised by rules 812"));
    contents = EntryFileContents();
    contents.categorisedByRules = 1;
    QCOMPARE(EntryImport::summary(QStringLiteral("one.csv"), contents, 1),
             QStringLiteral("Imported 1 entry from one.csv; skipped 0; categorised by rules 1"));
}

QTEST_GUILESS_MAIN(TestEntryImport)
#include "tst_entryimport.moc"

void TestEntryImport::realQifFilesGiveWhatACarefulReaderGets_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("order");
    QTest::addColumn<int>("count");
    QTest::addColumn<qint64>("cents");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<QString>("skipped");
    const int none = -1;
    const int ymd = int(QifFormat::DateOrder::YearFirst);
    const auto row = [](const char *name, int order, int count, qint64 cents, QDate first, QDate last,
                        const char *skipped) {
        QTest::newRow(name) << QString::fromLatin1(name) << order << count << cents << first << last
                            << QString::fromLatin1(skipped);
    };
    // Counted by hand from each file: every expense split is an entry, and
    // a record's entries add up to its amount.
    row("AArnott_Nerdbank.Qif_sample.qif", none, 12, 240100, QDate(2008, 1, 20), QDate(2008, 12, 10),
        "skipped 21 (income 17, other sections 4)");
    row("OCA_bank-statement-import_test_qif.qif", none, 5, 189609, QDate(2013, 3, 3), QDate(2013, 8, 15), "skipped 0");
    row("OCA_bank-statement-import_test_qif_dmy.qif", none, 5, 189609, QDate(2013, 3, 3), QDate(2013, 8, 15),
        "skipped 0");
    // Nothing in the file tells 13/08/12 from day first: only ymd reads it right.
    row("OCA_bank-statement-import_test_qif_ymd.qif", ymd, 5, 189609, QDate(2013, 3, 3), QDate(2013, 8, 15),
        "skipped 0");
    row("OCA_bank-statement-import_test_qif_ymd.qif", none, 5, 189609, QDate(2003, 3, 13), QDate(2015, 8, 13),
        "skipped 0");
    row("ccavanaugh_jgnash_bank1.qif", none, 4, 19874, QDate(2011, 3, 3), QDate(2011, 3, 15), "skipped 2 (income 2)");
    // 6.50 for lunch, and of a split 48.00 the 17.00 that is not a transfer.
    row("giacomos_qifparse_file.qif", none, 2, 2350, QDate(2013, 10, 11), QDate(2013, 10, 23),
        "skipped 11 (transfers 2, other sections 9)");
    row("hsoft_moneyguru_accountless_with_splits.qif", none, 1, 100000, QDate(2008, 8, 28), QDate(2008, 8, 28),
        "skipped 2 (income 1, zero amounts 1)");
    // 34 expense records, 14 of them split into 48 parts, all adding up.
    row("hsoft_moneyguru_autoswitch.qif", none, 68, 185269, QDate(2008, 12, 1), QDate(2008, 12, 22),
        "skipped 54 (income 1, zero amounts 2, other sections 51)");
    row("hsoft_moneyguru_checkbook.qif", none, 3, 19712, QDate(2007, 1, 2), QDate(2007, 2, 4),
        "skipped 7 (income 5, other sections 2)");
    row("hsoft_moneyguru_chr13_line_sep.qif", none, 0, 0, QDate(), QDate(), "skipped 2 (transfers 1, other sections 1)");
    row("hsoft_moneyguru_ddmmyyyy_with_dots.qif", none, 0, 0, QDate(), QDate(),
        "skipped 2 (income 1, other sections 1)");
    row("hsoft_moneyguru_other_sections.qif", none, 3, 72331, QDate(2007, 3, 5), QDate(2007, 3, 6),
        "skipped 4 (other sections 4)");
    row("hsoft_moneyguru_quicken_split_duplicate.qif", none, 1, 50000, QDate(2011, 1, 1), QDate(2011, 1, 1),
        "skipped 7 (transfers 1, other sections 6)");
    row("hsoft_moneyguru_transfer_splits.qif", none, 0, 0, QDate(), QDate(), "skipped 9 (transfers 3, other sections 6)");
    row("hsoft_moneyguru_yyyymmdd_without_sep.qif", none, 0, 0, QDate(), QDate(),
        "skipped 2 (income 1, other sections 1)");
    row("isaacharrisholt_quiffen_test.qif", none, 7, 13500, QDate(2020, 2, 10), QDate(2020, 2, 12),
        "skipped 12 (income 2, transfers 1, other sections 9)");
    row("isaacharrisholt_quiffen_test_category_override.qif", none, 2, 2256, QDate(2018, 1, 2), QDate(2018, 1, 2),
        "skipped 2 (income 2)");
    row("isaacharrisholt_quiffen_test_circular_reference.qif", none, 2, 1459, QDate(2021, 8, 27), QDate(2021, 8, 27),
        "skipped 0");
    row("isaacharrisholt_quiffen_test_split.qif", none, 1, 100, QDate(2000, 1, 1), QDate(2000, 1, 1),
        "skipped 1 (transfers 1)");
    row("isaacharrisholt_quiffen_test_transaction_before_account_definition_2.qif", none, 2, 19796, QDate(2022, 9, 8),
        QDate(2022, 9, 23), "skipped 0");
    row("jemmyw_Qif_3_records_mmddyy.qif", none, 2, 3000, QDate(2010, 1, 1), QDate(2010, 6, 1), "skipped 1 (income 1)");
    row("jemmyw_Qif_3_records_separator.qif", none, 2, 3103000, QDate(2010, 1, 1), QDate(2010, 6, 1),
        "skipped 1 (income 1)");
    row("jemmyw_Qif_3_records_spaced.qif", none, 2, 3000, QDate(2010, 1, 1), QDate(2010, 6, 1), "skipped 1 (income 1)");
    row("jemmyw_Qif_quicken_non_investement_account.qif", none, 1, 1000, QDate(1994, 6, 3), QDate(1994, 6, 3),
        "skipped 2 (income 1, transfers 1)");
    row("reubano_csv2ofx_creditunion.qif", none, 0, 0, QDate(), QDate(), "skipped 9 (income 8, other sections 1)");
    row("reubano_csv2ofx_ubs-ch-fr.qif", none, 2, 21000, QDate(2019, 3, 31), QDate(2019, 4, 27),
        "skipped 2 (income 1, other sections 1)");
    row("spmason_qif2json_normalTransactions.qif", none, 1, 1000, QDate(1994, 6, 3), QDate(1994, 6, 3),
        "skipped 2 (income 1, transfers 1)");
    row("spmason_qif2json_utf8.qif", none, 1, 37900, QDate(2010, 3, 3), QDate(2010, 3, 3), "skipped 0");
    row("spmason_qif2json_windows-1252.qif", none, 1, 37900, QDate(2010, 3, 3), QDate(2010, 3, 3), "skipped 0");
}

void TestEntryImport::realQifFilesGiveWhatACarefulReaderGets()
{
    QFETCH(QString, name);
    QFETCH(int, order);
    QFETCH(int, count);
    QFETCH(qint64, cents);
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    QFETCH(QString, skipped);
    const QString file = realFile(QStringLiteral("qif"), name);
    QVERIFY2(QFile::exists(file), qPrintable(file));
    const EntryFileContents contents =
        order < 0 ? EntryImport::read(file) : EntryImport::read(file, QifFormat::DateOrder(order));
    QCOMPARE(contents.problemLines(), QStringList());
    const Totals totals = totalsOf(contents.entries);
    QCOMPARE(totals.count, count);
    QCOMPARE(totals.cents, cents);
    QCOMPARE(totals.first, first);
    QCOMPARE(totals.last, last);
    QCOMPARE(contents.skippedSummary(), skipped);
    for (const EntryFileContents::LineEntry &read : contents.entries)
        QVERIFY(!read.entry.LocationText.contains(QChar::ReplacementCharacter));

    // And into the store, whole.
    QVERIFY(EntryImport::write(*store, contents.entries).written);
    QCOMPARE(store->GetTotalNumberOfEntries(), count);
    if (name.contains(QLatin1String("1252")) || name.contains(QLatin1String("utf8")))
        QCOMPARE(owned(store->GetAllEntries()).at(0)->LocationText, QStringLiteral("SOME £$™€ CHARACTERS"));
}

void TestEntryImport::realQifFilesThatNoRuleReadsAreRefusedWithTheirLine_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("problems");
    QTest::newRow("an amount with letters stuck to it")
        << QStringLiteral("hsoft_moneyguru_missing_line_sep.qif")
        << QStringList { QStringLiteral("line 8: the amount \"42.32CX\" is not a number") };
    QTest::newRow("no header at all") << QStringLiteral("hsoft_moneyguru_extra_dline.qif")
                                      << QStringList { QStringLiteral(
                                             "line 1: a QIF file starts with a header such as !Type:Bank") };
}

void TestEntryImport::realQifFilesThatNoRuleReadsAreRefusedWithTheirLine()
{
    QFETCH(QString, name);
    QFETCH(QStringList, problems);
    const EntryFileContents contents = EntryImport::read(realFile(QStringLiteral("qif"), name));
    QCOMPARE(contents.problemLines(), problems);
    QVERIFY(!contents.isAcceptable());
}

void TestEntryImport::realOfxFilesGiveWhatACarefulReaderGets_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("count");
    QTest::addColumn<qint64>("cents");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<QString>("skipped");
    const auto row = [](const char *name, int count, qint64 cents, QDate first, QDate last, const char *skipped) {
        QTest::newRow(name) << QString::fromLatin1(name) << count << cents << first << last
                            << QString::fromLatin1(skipped);
    };
    // Worked out from each file's STMTTRN elements: the negative TRNAMTs,
    // their sum, and the days of their DTPOSTED; transactions of investment
    // statements are other sections.
    row("Govcraft_ofx-rs_mercury-checking.ofx", 559, 4292292, QDate(2024, 3, 16), QDate(2026, 3, 18), "skipped 115 (income 115)");
    row("OCA_bank-statement-import_test_ofx.ofx", 4, 36000, QDate(2013, 8, 24), QDate(2013, 8, 24), "skipped 0");
    row("asgrim_ofxparser_ofx-multiple-accounts-xml.ofx", 1, 398, QDate(2014, 7, 17), QDate(2014, 7, 17), "skipped 2 (income 2)");
    row("asgrim_ofxparser_ofxdata-bb-two-stmtrs.ofx", 4, 7843253, QDate(2017, 3, 6), QDate(2017, 3, 27), "skipped 32 (income 32)");
    row("asgrim_ofxparser_ofxdata-cmfr.ofx", 32, 2119957, QDate(2016, 6, 1), QDate(2016, 6, 27), "skipped 10 (income 10)");
    row("asgrim_ofxparser_ofxdata-emptyDateTime.ofx", 0, 0, QDate(), QDate(), "skipped 2 (income 2)");
    row("asgrim_ofxparser_ofxdata-memoWithAmpersand.ofx", 13, 73405, QDate(2018, 9, 13), QDate(2018, 10, 5), "skipped 3 (income 3)");
    row("asgrim_ofxparser_ofxdata-oneline.ofx", 7, 217710, QDate(2016, 2, 16), QDate(2016, 7, 19), "skipped 1 (income 1)");
    row("asgrim_ofxparser_ofxdata-selfclose.ofx", 3, 11500, QDate(2019, 9, 18), QDate(2019, 9, 23), "skipped 2 (income 2)");
    row("beancount_beangulp_2013-12-03.bofa.ofx", 27, 98926, QDate(2013, 10, 26), QDate(2013, 12, 2), "skipped 0");
    row("beancount_beangulp_example.ofx", 17, 57732, QDate(2013, 12, 6), QDate(2013, 12, 16), "skipped 0");
    row("beancount_beangulp_example.qbo", 17, 147248, QDate(2013, 7, 2), QDate(2013, 9, 3), "skipped 6 (income 6)");
    row("ccavanaugh_jgnash_File_with_Accents.ofx", 3, 13500, QDate(2009, 12, 1), QDate(2009, 12, 3), "skipped 0");
    row("ccavanaugh_jgnash_Sample.ofx", 4, 6300000, QDate(2003, 9, 5), QDate(2003, 9, 28), "skipped 1 (income 1)");
    row("ccavanaugh_jgnash_activity.ofx", 9, 21892, QDate(2008, 10, 21), QDate(2008, 11, 23), "skipped 2 (income 2)");
    row("ccavanaugh_jgnash_uglyFormat.ofx", 1, 123456, QDate(2017, 3, 24), QDate(2017, 3, 24), "skipped 4 (income 4)");
    row("chilts_node-ofx_example-xml.qfx", 0, 0, QDate(), QDate(), "skipped 1 (income 1)");
    row("csingley_ofxtools_br_nubank_cc.ofx", 6, 128091, QDate(2024, 3, 22), QDate(2024, 3, 23), "skipped 0");
    row("csingley_ofxtools_stmtrs_euro.ofx", 2, 50000, QDate(2005, 10, 4), QDate(2005, 10, 20), "skipped 0");
    row("egh_ledger-autosync_accented_characters_latin1.ofx", 1, 5873, QDate(2014, 9, 20), QDate(2014, 9, 20), "skipped 0");
    row("egh_ledger-autosync_comments.ofx", 0, 0, QDate(), QDate(), "skipped 2 (income 1, zero amounts 1)");
    row("euforic_banking.js_sample.ofx", 7, 385053, QDate(2012, 1, 3), QDate(2012, 1, 25), "skipped 4 (income 4)");
    row("gpaulissen_ofxstatement-french_46297554894_02092025_04102025.ofx", 0, 0, QDate(), QDate(), "skipped 0");
    row("gpaulissen_ofxstatement-french_BPACA_OP_20220828.ofx", 59, 544284, QDate(2022, 8, 2), QDate(2022, 8, 26), "skipped 10 (income 10)");
    row("hsoft_moneyguru_blank_first_line.ofx", 4, 23925, QDate(2008, 8, 27), QDate(2008, 8, 28), "skipped 1 (income 1)");
    row("hsoft_moneyguru_ccstmtrs.ofx", 5, 31323, QDate(2013, 6, 22), QDate(2013, 8, 9), "skipped 0");
    row("hsoft_moneyguru_desjardins.ofx", 14, 700859, QDate(2008, 1, 14), QDate(2008, 2, 11), "skipped 6 (income 6)");
    row("hsoft_moneyguru_desjardins.qfx", 14, 700859, QDate(2008, 1, 14), QDate(2008, 2, 11), "skipped 6 (income 6)");
    row("hsoft_moneyguru_fortis.ofx", 1, 260, QDate(2008, 9, 5), QDate(2008, 9, 5), "skipped 0");
    row("hsoft_moneyguru_ing.qfx", 0, 0, QDate(), QDate(), "skipped 1 (income 1)");
    row("jbms_beancount-import_amex.ofx", 3, 19075, QDate(2013, 11, 24), QDate(2013, 11, 26), "skipped 0");
    row("jbms_beancount-import_checking2.ofx", 0, 0, QDate(), QDate(), "skipped 13 (other sections 13)");
    row("jseutter_ofxparse_anzcc.ofx", 1, 550, QDate(2017, 5, 8), QDate(2017, 5, 8), "skipped 0");
    row("jseutter_ofxparse_ofx-v102-empty-tags.ofx", 0, 0, QDate(), QDate(), "skipped 1 (income 1)");
    row("jseutter_ofxparse_suncorp.ofx", 1, 1685, QDate(2013, 12, 15), QDate(2013, 12, 15), "skipped 0");
}

void TestEntryImport::realOfxFilesGiveWhatACarefulReaderGets()
{
    QFETCH(QString, name);
    QFETCH(int, count);
    QFETCH(qint64, cents);
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    QFETCH(QString, skipped);
    const QString file = realFile(QStringLiteral("ofx"), name);
    QVERIFY2(QFile::exists(file), qPrintable(file));
    const EntryFileContents contents = EntryImport::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    const Totals totals = totalsOf(contents.entries);
    QCOMPARE(totals.count, count);
    QCOMPARE(totals.cents, cents);
    QCOMPARE(totals.first, first);
    QCOMPARE(totals.last, last);
    QCOMPARE(contents.skippedSummary(), skipped);
    for (const EntryFileContents::LineEntry &read : contents.entries) {
        QVERIFY(!read.entry.LocationText.contains(QChar::ReplacementCharacter));
        QVERIFY(!read.entry.ItemName.contains(QChar::ReplacementCharacter));
    }
    QVERIFY(EntryImport::write(*store, contents.entries).written);
    QCOMPARE(store->GetTotalNumberOfEntries(), count);
}

void TestEntryImport::realOfxFilesKeepTheirNamesCharacterForCharacter_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("place");
    QTest::newRow("ISO-8859-1 declared") << QStringLiteral("ccavanaugh_jgnash_File_with_Accents.ofx")
                                         << QStringLiteral("Second Transaction (ÀàÉéÈèÊêËëÏïÙù)");
    QTest::newRow("UTF-8 with a mark") << QStringLiteral("ccavanaugh_jgnash_Sample.ofx") << QStringLiteral("電話料");
    QTest::newRow("Latin-1 under 1252") << QStringLiteral("egh_ledger-autosync_accented_characters_latin1.ofx")
                                        << QStringLiteral("Virement Interac à: Jean");
    QTest::newRow("an entity") << QStringLiteral("beancount_beangulp_2013-12-03.bofa.ofx")
                               << QStringLiteral("BARNES & NOBLE 2675 NEW YORK");
}

void TestEntryImport::realOfxFilesKeepTheirNamesCharacterForCharacter()
{
    QFETCH(QString, name);
    QFETCH(QString, place);
    const EntryFileContents contents = EntryImport::read(realFile(QStringLiteral("ofx"), name));
    QStringList places;
    for (const EntryFileContents::LineEntry &read : contents.entries)
        places.append(read.entry.LocationText);
    QVERIFY2(places.contains(place), qPrintable(places.join(QLatin1String(" | "))));
}
