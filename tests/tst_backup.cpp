// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Copies of the database while the program has it open: by hand, never
// over a file without being told to, and once a day automatically, the
// newest seven kept.
#include "backup.h"
#include "databasemanager.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "sampleentries.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QSqlTableModel>
#include <QStandardPaths>
#include <QTest>

#include <memory>

class TestBackup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aBackupWhileAPageReadsTheFileEqualsItRowForRow();
    void aBackupOpensAsALedgerlyDatabase();
    void anExistingFileIsKeptUnlessItIsToBeReplaced();
    void theDatabaseItselfIsNeverOverwritten();
    void aFailedOrCancelledBackupLeavesNoFileBehind();

    void automaticBackupsGoToBackupsInTheApplicationsDataDirectory();
    void automaticBackupsAreNamedByTheMomentTheyAreWritten();
    void theFirstStartWritesAnAutomaticBackup();
    void anAutomaticBackupIsWrittenOnceADay();
    void onlyTheNewestSevenAutomaticBackupsAreKept();
    void aBackupFromTheFutureDoesNotHoldTheNextOneOff();
    void aDirectoryThatCannotBeMadeIsReported();

private:
    void addEntries(int count);

    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void TestBackup::init()
{
    home = std::make_unique<TempHome>();
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void TestBackup::cleanup()
{
    store.reset();
    home.reset();
}

void TestBackup::addEntries(int count)
{
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        for (int i = 0; i < count; ++i) {
            Entry entry;
            entry.TransactDateTime = at(2026, 1, 1).addSecs(i * 3600);
            entry.ItemName = QStringLiteral("Item %1").arg(i % 13);
            entry.CategoryName = i % 2 ? QStringLiteral("Food") : QStringLiteral("Pets");
            entry.Price = 0.25f * i;
            entry.LocationText = QStringLiteral("Place %1").arg(i % 5);
            entry.EnableGeoLoc = i % 3 == 0;
            entry.GeoLocLongit = 10.0f + i % 5;
            entry.GeoLocLatit = 20.0f;
            if (!store->AddEntry(&entry))
                return false;
        }
        return store->AddCategory(QStringLiteral("Pets"));
    }));
}

void TestBackup::aBackupWhileAPageReadsTheFileEqualsItRowForRow()
{
    addEntries(1000);
    // The options page's table has read its first rows and holds its
    // statement open on the store's connection.
    std::unique_ptr<QSqlTableModel> page(store->createTableModel(QStringLiteral("Entry"), nullptr));
    QVERIFY(page->canFetchMore());

    const QString copy = home->filePath(QStringLiteral("backup.db"));
    const Backup::Outcome outcome = Backup::write(*store, copy, Backup::Existing::Keep);
    QVERIFY2(outcome.written, qPrintable(outcome.failure));
    QCOMPARE(outcome.fileName, copy);

    RawDatabase source(home->databasePath());
    RawDatabase backup(copy);
    QCOMPARE(backup.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
    const QStringList rows = source.dumpTables();
    QCOMPARE(backup.dumpTables(), rows);
    QVERIFY(rows.size() > 1000);
    // The page reads on as before.
    while (page->canFetchMore())
        page->fetchMore();
    QCOMPARE(page->rowCount(), 1000);
    // Nothing but the copy is left beside it.
    QCOMPARE(QDir(home->path()).entryList({ QStringLiteral("*backup*") }, QDir::Files | QDir::Hidden),
             QStringList { QStringLiteral("backup.db") });
}

void TestBackup::aBackupOpensAsALedgerlyDatabase()
{
    addEntries(20);
    QTemporaryDir other;
    QVERIFY(
        Backup::write(*store, other.filePath(QStringLiteral("ledgerlydatabase.db")), Backup::Existing::Keep).written);
    const QStringList rows = RawDatabase(home->databasePath()).dumpTables();

    // Restoring is putting the copy where the program looks for its file.
    store.reset();
    const QByteArray oldHome = qgetenv("HOME");
    qputenv("HOME", other.path().toLocal8Bit());
    {
        DatabaseManager restored(nullptr);
        QVERIFY(restored.isUsable());
        QCOMPARE(restored.GetTotalNumberOfEntries(), 20);
        QCOMPARE(owned(restored.GetAllEntries()).at(0)->ItemName, QStringLiteral("Item 6"));
    }
    qputenv("HOME", oldHome);
    QCOMPARE(RawDatabase(other.filePath(QStringLiteral("ledgerlydatabase.db"))).dumpTables(), rows);
}

void TestBackup::anExistingFileIsKeptUnlessItIsToBeReplaced()
{
    addEntries(10);
    const QString copy = home->filePath(QStringLiteral("precious.db"));
    QVERIFY(writeFile(copy, "a file the user keeps"));

    Backup::Outcome outcome = Backup::write(*store, copy, Backup::Existing::Keep);
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.failure, copy + QStringLiteral(" already exists"));
    QCOMPARE(readFile(copy), QByteArray("a file the user keeps"));

    outcome = Backup::write(*store, copy, Backup::Existing::Replace);
    QVERIFY2(outcome.written, qPrintable(outcome.failure));
    QCOMPARE(RawDatabase(copy).dumpTables(), RawDatabase(home->databasePath()).dumpTables());
}

void TestBackup::theDatabaseItselfIsNeverOverwritten()
{
    addEntries(10);
    const QByteArray before = readFile(home->databasePath());
    // Also under another spelling of the same path.
    const QString samePath = home->path() + QStringLiteral("/./ledgerlydatabase.db");
    const Backup::Outcome outcome = Backup::write(*store, samePath, Backup::Existing::Replace);
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.failure, samePath + QStringLiteral(" is the database itself"));
    QCOMPARE(readFile(home->databasePath()), before);
    QCOMPARE(store->GetTotalNumberOfEntries(), 10);
}

void TestBackup::aFailedOrCancelledBackupLeavesNoFileBehind()
{
    addEntries(300);
    const QString missing = home->filePath(QStringLiteral("no/such/dir/backup.db"));
    Backup::Outcome outcome = Backup::write(*store, missing, Backup::Existing::Keep);
    QVERIFY(!outcome.written);
    QVERIFY2(outcome.failure.startsWith(missing + QStringLiteral(" cannot be written: ")), qPrintable(outcome.failure));

    QDir backups(home->filePath(QStringLiteral("backups")));
    QVERIFY(backups.mkpath(QStringLiteral(".")));
    const QString copy = backups.filePath(QStringLiteral("backup.db"));
    outcome = Backup::write(*store, copy, Backup::Existing::Keep, [](qint64, qint64) { return false; });
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.failure, copy + QStringLiteral(" cannot be written: The backup was cancelled."));
    QCOMPARE(backups.entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestBackup::automaticBackupsGoToBackupsInTheApplicationsDataDirectory()
{
    QCOMPARE(Backup::automaticDirectory(),
             QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/backups"));
    QVERIFY(Backup::automaticDirectory().startsWith(home->path()));
}

void TestBackup::automaticBackupsAreNamedByTheMomentTheyAreWritten()
{
    QCOMPARE(Backup::automaticFileName(at(2026, 11, 5, 13, 8, 9)),
             QStringLiteral("ledgerlydatabase-2026-11-05-130809.db"));
}

void TestBackup::theFirstStartWritesAnAutomaticBackup()
{
    addEntries(5);
    const QString directory = home->filePath(QStringLiteral("data/backups"));
    const Backup::Outcome outcome = Backup::writeAutomatic(*store, directory, at(2026, 11, 5, 13, 8, 9));
    QVERIFY2(outcome.written, qPrintable(outcome.failure));
    const QString expected = directory + QStringLiteral("/ledgerlydatabase-2026-11-05-130809.db");
    QCOMPARE(outcome.fileName, expected);
    QCOMPARE(QDir(directory).entryList(QDir::Files | QDir::Hidden),
             QStringList { QStringLiteral("ledgerlydatabase-2026-11-05-130809.db") });
    QCOMPARE(RawDatabase(expected).dumpTables(), RawDatabase(home->databasePath()).dumpTables());
}

void TestBackup::anAutomaticBackupIsWrittenOnceADay()
{
    const QString directory = home->filePath(QStringLiteral("backups"));
    const QDateTime first = at(2026, 11, 5, 9, 0);
    QVERIFY(Backup::writeAutomatic(*store, directory, first).written);

    // Later the same day, and the next morning before a day has passed.
    for (const QDateTime &later : { first.addSecs(60), first.addSecs(23 * 3600 + 59 * 60) }) {
        const Backup::Outcome outcome = Backup::writeAutomatic(*store, directory, later);
        QVERIFY(!outcome.written);
        QVERIFY(outcome.failure.isEmpty());
    }
    QCOMPARE(QDir(directory).entryList(QDir::Files).size(), 1);

    // A day on, the next one.
    const Backup::Outcome nextDay = Backup::writeAutomatic(*store, directory, first.addDays(1));
    QVERIFY(nextDay.written);
    QCOMPARE(QDir(directory).entryList(QDir::Files, QDir::Name),
             QStringList({ QStringLiteral("ledgerlydatabase-2026-11-05-090000.db"),
                           QStringLiteral("ledgerlydatabase-2026-11-06-090000.db") }));
}

void TestBackup::onlyTheNewestSevenAutomaticBackupsAreKept()
{
    const QString directory = home->filePath(QStringLiteral("backups"));
    QVERIFY(QDir().mkpath(directory));
    // Nine earlier backups (one on each of nine days), and files that are
    // not automatic backups at all.
    for (int day = 1; day <= 9; ++day)
        QVERIFY(writeFile(QDir(directory).filePath(Backup::automaticFileName(at(2026, 10, day, 8, 30))), "old"));
    const QStringList others = { QStringLiteral("notes.txt"), QStringLiteral("ledgerlydatabase-mine.db"),
                                 QStringLiteral("ledgerlydatabase-2020-01-01.db") };
    for (const QString &other : others)
        QVERIFY(writeFile(QDir(directory).filePath(other), "keep me"));

    const Backup::Outcome outcome = Backup::writeAutomatic(*store, directory, at(2026, 10, 12, 7, 0));
    QVERIFY(outcome.written);
    QStringList expected = others;
    for (int day = 4; day <= 9; ++day)
        expected.append(Backup::automaticFileName(at(2026, 10, day, 8, 30)));
    expected.append(QStringLiteral("ledgerlydatabase-2026-10-12-070000.db"));
    expected.sort();
    QStringList left = QDir(directory).entryList(QDir::Files | QDir::Hidden);
    left.sort();
    QCOMPARE(left, expected);
    for (const QString &other : others)
        QCOMPARE(readFile(QDir(directory).filePath(other)), QByteArray("keep me"));
}

void TestBackup::aBackupFromTheFutureDoesNotHoldTheNextOneOff()
{
    const QString directory = home->filePath(QStringLiteral("backups"));
    QVERIFY(QDir().mkpath(directory));
    // Written while the clock was a year ahead.
    QVERIFY(writeFile(QDir(directory).filePath(Backup::automaticFileName(at(2027, 11, 5, 9, 0))), "ahead"));
    QVERIFY(Backup::writeAutomatic(*store, directory, at(2026, 11, 5, 9, 0)).written);
    QCOMPARE(QDir(directory).entryList(QDir::Files).size(), 2);
}

void TestBackup::aDirectoryThatCannotBeMadeIsReported()
{
    // A file stands where a directory would have to be made.
    QVERIFY(writeFile(home->filePath(QStringLiteral("data")), "a file"));
    const QString directory = home->filePath(QStringLiteral("data/backups"));
    const Backup::Outcome outcome = Backup::writeAutomatic(*store, directory, at(2026, 11, 5));
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.failure, QStringLiteral("The directory %1 cannot be made.").arg(directory));
    QCOMPARE(readFile(home->filePath(QStringLiteral("data"))), QByteArray("a file"));
}

QTEST_GUILESS_MAIN(TestBackup)
#include "tst_backup.moc"
