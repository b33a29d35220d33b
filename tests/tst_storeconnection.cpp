// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "storeconnection.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

class TestStoreConnection : public QObject
{
    Q_OBJECT

private slots:
    void init() { home = std::make_unique<TempHome>(); }
    void cleanup() { home.reset(); }

    void aFileHeldByAnotherProgramIsToldApartAndNotWaitedForLong();
    void aFileThatIsNoDatabaseIsNotHeldButRefused();
    void aSecondConnectionOnAnotherFileIsRefusedAndTheFirstKeepsItsFile();

private:
    std::unique_ptr<TempHome> home;
};

void TestStoreConnection::aFileHeldByAnotherProgramIsToldApartAndNotWaitedForLong()
{
    {
        RawDatabase maker(home->databasePath());
        QVERIFY(maker.exec(QStringLiteral("CREATE TABLE Notes (Text text)")));
    }
    RawDatabase holder(home->databasePath());
    QVERIFY(holder.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    QElapsedTimer timer;
    timer.start();
    StoreConnection connection;
    QVERIFY(!connection.open(home->databasePath()));
    const qint64 waited = timer.elapsed();
    QVERIFY(connection.lockedByAnotherProgram());
    QVERIFY2(connection.error().contains(QStringLiteral("database is locked")), qPrintable(connection.error()));
    // The start-up wait, not the five seconds every later statement waits.
    QVERIFY2(waited >= StoreConnection::startUpBusyTimeout - 50 && waited < StoreConnection::busyTimeout,
             qPrintable(QString::number(waited)));
    QVERIFY(holder.exec(QStringLiteral("ROLLBACK")));
}

void TestStoreConnection::aFileThatIsNoDatabaseIsNotHeldButRefused()
{
    QVERIFY(writeFile(home->databasePath(), QByteArray(4096, 'x')));
    StoreConnection connection;
    QVERIFY(!connection.open(home->databasePath()));
    QVERIFY(!connection.lockedByAnotherProgram());
    QVERIFY2(connection.error().contains(QStringLiteral("not a database")), qPrintable(connection.error()));
    QCOMPARE(readFile(home->databasePath()), QByteArray(4096, 'x'));
}

void TestStoreConnection::aSecondConnectionOnAnotherFileIsRefusedAndTheFirstKeepsItsFile()
{
    StoreConnection first;
    QVERIFY(first.open(home->databasePath()));
    const QString other = home->filePath(QStringLiteral("other.db"));
    StoreConnection second;
    QVERIFY(!second.open(other));
    QVERIFY(second.error().contains(home->databasePath()));
    QVERIFY(first.isOpen());
    QCOMPARE(first.database().databaseName(), home->databasePath());
    QVERIFY(!QFile::exists(other));
}

QTEST_GUILESS_MAIN(TestStoreConnection)

#include "tst_storeconnection.moc"
