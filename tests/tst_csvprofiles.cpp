// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The saved profiles of banks' CSV files, in their own table.
#include "csvprofiles.h"
#include "databasemanager.h"

#include "rawdatabase.h"
#include "temphome.h"

#include <QTest>

#include <memory>

class TestCsvProfiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aProfileIsKeptInItsOwnTableAndSavingItAgainReplacesIt();
    void profilesAreListedByName();
    void removingAProfileDeletesOnlyItsRow();
    void anEmptyNameIsRefused();

private:
    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void TestCsvProfiles::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void TestCsvProfiles::cleanup()
{
    store.reset();
    home.reset();
}

void TestCsvProfiles::aProfileIsKeptInItsOwnTableAndSavingItAgainReplacesIt()
{
    CsvProfiles profiles(*store);
    QVERIFY(profiles.save(QStringLiteral("Sparkasse"), QStringLiteral("--map date=1,item=2,amount=3")));
    QVERIFY(profiles.save(QStringLiteral("Sparkasse"), QStringLiteral("--map date=Buchungstag,item=2,amount=3")));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("SELECT Name, Mapping FROM CsvProfile")),
             QList<QVariantList>(
                 { { QStringLiteral("Sparkasse"), QStringLiteral("--map date=Buchungstag,item=2,amount=3") } }));
    QCOMPARE(profiles.mapping(QStringLiteral("Sparkasse")), QStringLiteral("--map date=Buchungstag,item=2,amount=3"));
    // Names are compared exactly.
    QVERIFY(!profiles.mapping(QStringLiteral("sparkasse")));
}

void TestCsvProfiles::profilesAreListedByName()
{
    CsvProfiles profiles(*store);
    QVERIFY(profiles.save(QStringLiteral("Visa"), QStringLiteral("--map date=1,item=2,amount=3 --invert")));
    QVERIFY(profiles.save(QStringLiteral("Bank"), QStringLiteral("--map date=1,item=2,amount=4")));
    const QList<CsvProfiles::Profile> all = profiles.all();
    QCOMPARE(all.size(), 2);
    QCOMPARE(all.at(0).name, QStringLiteral("Bank"));
    QCOMPARE(all.at(0).mapping, QStringLiteral("--map date=1,item=2,amount=4"));
    QCOMPARE(all.at(1).name, QStringLiteral("Visa"));
    QCOMPARE(all.at(1).mapping, QStringLiteral("--map date=1,item=2,amount=3 --invert"));
}

void TestCsvProfiles::removingAProfileDeletesOnlyItsRow()
{
    CsvProfiles profiles(*store);
    QVERIFY(profiles.save(QStringLiteral("Visa"), QStringLiteral("--map date=1,item=2,amount=3")));
    QVERIFY(profiles.save(QStringLiteral("Bank"), QStringLiteral("--map date=1,item=2,amount=4")));
    QVERIFY(profiles.remove(QStringLiteral("Visa")));
    QVERIFY(!profiles.remove(QStringLiteral("Visa")));
    // A name that holds SQL is a name, nothing more.
    QVERIFY(!profiles.remove(QStringLiteral("x' OR '1'='1")));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(Name) FROM CsvProfile")).toString(),
             QStringLiteral("Bank"));
}

void TestCsvProfiles::anEmptyNameIsRefused()
{
    CsvProfiles profiles(*store);
    QVERIFY(!profiles.save(QStringLiteral(" "), QStringLiteral("--map date=1,item=2,amount=3")));
    QVERIFY(profiles.all().isEmpty());
}

QTEST_GUILESS_MAIN(TestCsvProfiles)
#include "tst_csvprofiles.moc"
