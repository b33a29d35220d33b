// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Writing every entry into a file: the store's entries, newest first, in the
// format of the file's name; a file appears whole or not at all.
#include "databasemanager.h"
#include "entryexport.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "sampleentries.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileDevice>
#include <QTest>

#include <memory>
#include <unistd.h>

class TestEntryExport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyEntryIsWrittenNewestFirstAsCsv();
    void aQifNameGivesAQifFile();
    void anEmptyStoreGivesTheFirstLineAlone();
    void anExistingFileIsReplacedWhole();
    void aCancelledExportLeavesTheOldFileAndNoOther();
    void progressIsToldInStepsUpToTheTotal();
    void aFileThatCannotBeWrittenIsReportedAndNothingIsLeft();
    void aNameWithAnotherSuffixIsRefused();
    void theSummaryCountsTheEntries();

private:
    void addEntries();

    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void TestEntryExport::init()
{
    home = std::make_unique<TempHome>();
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void TestEntryExport::cleanup()
{
    store.reset();
    home.reset();
}

void TestEntryExport::addEntries()
{
    // Added out of date order: the file lists them newest first all the same.
    for (Entry entry : { makeEntry(QDateTime(QDate(2026, 2, 1), QTime(9, 30)), QStringLiteral("Tea, green"),
                                   QStringLiteral("Drinks"), 0.1f, QStringLiteral("Kiosk"), true, -0.1276f, 51.5072f),
                         makeEntry(QDateTime(QDate(2026, 3, 1), QTime(12, 0)), QStringLiteral("Bread"),
                                   QStringLiteral("Food"), 2.5f, QStringLiteral("Bakery"), false, 103.0f, 1.3f),
                         makeEntry(QDateTime(QDate(2026, 1, 1), QTime()), QStringLiteral("=Fee"),
                                   QStringLiteral("Taxes"), 1234567.0f, QStringLiteral(""), false, 103.0f, 1.3f) })
        QVERIFY(store->AddEntry(&entry));
}

void TestEntryExport::everyEntryIsWrittenNewestFirstAsCsv()
{
    addEntries();
    const QString file = home->filePath(QStringLiteral("out.csv"));
    const EntryExport::Outcome outcome = EntryExport::write(*store, file);
    QVERIFY2(outcome.written, qPrintable(outcome.failure));
    QCOMPARE(outcome.exported, 3);
    QCOMPARE(readFile(file),
             QByteArray("Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n"
                        "2026-03-01T12:00:00,Bread,Food,2.5,Bakery,false,103,1.3\r\n"
                        "2026-02-01T09:30:00,\"Tea, green\",Drinks,0.1,Kiosk,true,-0.1276,51.5072\r\n"
                        "2026-01-01T00:00:00,'=Fee,Taxes,1234567,,false,103,1.3\r\n"));
}

void TestEntryExport::aQifNameGivesAQifFile()
{
    addEntries();
    const QString file = home->filePath(QStringLiteral("OUT.QIF"));
    QVERIFY(EntryExport::write(*store, file).written);
    QCOMPARE(readFile(file),
             QByteArray("!Type:Cash\r\n"
                        "D03/01/2026\r\nT-2.5\r\nPBakery\r\nMBread\r\nLFood\r\n^\r\n"
                        "D02/01/2026\r\nT-0.1\r\nPKiosk\r\nMTea, green\r\nLDrinks\r\n^\r\n"
                        "D01/01/2026\r\nT-1234567\r\nP\r\nM=Fee\r\nLTaxes\r\n^\r\n"));
}

void TestEntryExport::anEmptyStoreGivesTheFirstLineAlone()
{
    const QString file = home->filePath(QStringLiteral("empty.csv"));
    const EntryExport::Outcome outcome = EntryExport::write(*store, file);
    QVERIFY(outcome.written);
    QCOMPARE(outcome.exported, 0);
    QCOMPARE(readFile(file), QByteArray("Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n"));
}

void TestEntryExport::anExistingFileIsReplacedWhole()
{
    addEntries();
    const QString file = home->filePath(QStringLiteral("out.csv"));
    QVERIFY(writeFile(file, QByteArray(100000, 'x')));
    QVERIFY(EntryExport::write(*store, file).written);
    const QByteArray written = readFile(file);
    QVERIFY(written.startsWith("Date,Item,"));
    QVERIFY(!written.contains('x' + QByteArray("xx")));
    QCOMPARE(written.count("\r\n"), 4);
}

void TestEntryExport::aCancelledExportLeavesTheOldFileAndNoOther()
{
    Entry entry = makeEntry(QDateTime(QDate(2026, 1, 1), QTime()), QStringLiteral("Tea"), QStringLiteral("Drinks"),
                            1.0f, QStringLiteral("Kiosk"), false, 0.0f, 0.0f);
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        for (int i = 0; i < 2500; ++i) {
            if (!store->AddEntry(&entry))
                return false;
        }
        return true;
    }));
    QDir exports(home->filePath(QStringLiteral("exports")));
    QVERIFY(exports.mkpath(QStringLiteral(".")));
    const QString file = exports.filePath(QStringLiteral("out.csv"));
    QVERIFY(writeFile(file, "the old export"));

    const EntryExport::Outcome outcome =
        EntryExport::write(*store, file, [](qint64 done, qint64) { return done < 2048; });
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.failure, QStringLiteral("the export was cancelled"));
    QCOMPARE(readFile(file), QByteArray("the old export"));
    QCOMPARE(exports.entryList(QDir::Files | QDir::Hidden), QStringList { QStringLiteral("out.csv") });
}

void TestEntryExport::progressIsToldInStepsUpToTheTotal()
{
    Entry entry = makeEntry(QDateTime(QDate(2026, 1, 1), QTime()), QStringLiteral("Tea"), QStringLiteral("Drinks"),
                            1.0f, QStringLiteral("Kiosk"), false, 0.0f, 0.0f);
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        for (int i = 0; i < 2100; ++i) {
            if (!store->AddEntry(&entry))
                return false;
        }
        return true;
    }));
    QList<QPair<qint64, qint64>> told;
    const EntryExport::Outcome outcome =
        EntryExport::write(*store, home->filePath(QStringLiteral("out.qif")), [&](qint64 done, qint64 total) {
            told.append({ done, total });
            return true;
        });
    QVERIFY(outcome.written);
    QCOMPARE(outcome.exported, 2100);
    QCOMPARE(told, (QList<QPair<qint64, qint64>>({ { 1024, 2100 }, { 2048, 2100 }, { 2100, 2100 } })));
}

void TestEntryExport::aFileThatCannotBeWrittenIsReportedAndNothingIsLeft()
{
    addEntries();
    const QString missingDirectory = home->filePath(QStringLiteral("no/such/dir/out.csv"));
    EntryExport::Outcome outcome = EntryExport::write(*store, missingDirectory);
    QVERIFY(!outcome.written);
    QVERIFY2(outcome.failure.startsWith(missingDirectory + QStringLiteral(" cannot be written: ")),
             qPrintable(outcome.failure));

    // A directory that cannot take new files (root ignores permissions, so
    // /proc stands in for it there).
    QString locked = home->filePath(QStringLiteral("locked"));
    QVERIFY(QDir().mkpath(locked));
    QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    if (geteuid() == 0)
        locked = QStringLiteral("/proc");
    outcome = EntryExport::write(*store, locked + QStringLiteral("/out.csv"));
    QVERIFY(!outcome.written);
    QVERIFY(!QFile::exists(locked + QStringLiteral("/out.csv")));
    QFile::setPermissions(home->filePath(QStringLiteral("locked")),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

void TestEntryExport::aNameWithAnotherSuffixIsRefused()
{
    addEntries();
    const QString file = home->filePath(QStringLiteral("out.txt"));
    const EntryExport::Outcome outcome = EntryExport::write(*store, file);
    QVERIFY(!outcome.written);
    QCOMPARE(outcome.failure, file + QStringLiteral(" is neither a .csv nor a .qif file"));
    QVERIFY(!QFile::exists(file));
}

void TestEntryExport::theSummaryCountsTheEntries()
{
    QCOMPARE(EntryExport::summary(QStringLiteral("out.csv"), 1234), QStringLiteral("Exported 1234 entries to out.csv"));
    QCOMPARE(EntryExport::summary(QStringLiteral("out.csv"), 1), QStringLiteral("Exported 1 entry to out.csv"));
    QCOMPARE(EntryExport::summary(QStringLiteral("out.csv"), 0), QStringLiteral("Exported 0 entries to out.csv"));
}

QTEST_GUILESS_MAIN(TestEntryExport)
#include "tst_entryexport.moc"
