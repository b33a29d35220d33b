// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "sqlitebackup.h"

#include "rawdatabase.h"
#include "sampleentries.h"
#include "temphome.h"
#include "testsupport.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

class TestSqliteBackup : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        home = std::make_unique<TempHome>();
        // A store makes the file; the copies below read it on their own.
        DatabaseManager store(nullptr);
        for (int day = 1; day <= 28; ++day) {
            Entry entry = makeEntry(at(2026, 2, day), QStringLiteral("Bread"), QStringLiteral("Food"), 2.5f);
            QVERIFY(store.AddEntry(&entry));
        }
    }
    void cleanup() { home.reset(); }

    void aCopyOfTheFileOnItsOwnConnectionEqualsTheFile();
    void aMissingFileIsAFailureAndNoDatabase();
    void aFileHeldByAnotherProgramIsGivenUpAfterTheLimitWithSqlitesReason();
    void cancelIsHeardWhileTheFileIsHeld();
    void aCopyWaitsForAFileThatIsReleasedInTime();

private:
    QString copyPath() const { return home->filePath(QStringLiteral("copy.db")); }
    std::unique_ptr<TempHome> home;
};

void TestSqliteBackup::aCopyOfTheFileOnItsOwnConnectionEqualsTheFile()
{
    QList<QPair<qint64, qint64>> heard;
    QString failure;
    QVERIFY(SqliteBackup(home->databasePath(), copyPath()).run(
        [&](qint64 done, qint64 total) {
            heard.append({ done, total });
            return true;
        },
        &failure));
    QCOMPARE(failure, QString());
    QCOMPARE(RawDatabase(copyPath()).dumpTables(), RawDatabase(home->databasePath()).dumpTables());
    // The last word is every page of the file.
    QVERIFY(!heard.isEmpty());
    QCOMPARE(heard.constLast().first, heard.constLast().second);
    QCOMPARE(heard.constLast().second, QFileInfo(home->databasePath()).size() / 4096);
}

void TestSqliteBackup::aMissingFileIsAFailureAndNoDatabase()
{
    const QString missing = home->filePath(QStringLiteral("missing.db"));
    QString failure;
    QVERIFY(!SqliteBackup(missing, copyPath()).run({}, &failure));
    QVERIFY(!failure.isEmpty());
    // Read-only: the missing file is not made.
    QVERIFY(!QFile::exists(missing));
}

void TestSqliteBackup::aFileHeldByAnotherProgramIsGivenUpAfterTheLimitWithSqlitesReason()
{
    RawDatabase holder(home->databasePath());
    QVERIFY(holder.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    int heard = 0;
    QElapsedTimer timer;
    timer.start();
    QString failure;
    QVERIFY(!SqliteBackup(home->databasePath(), copyPath())
                 .run(
                     [&](qint64, qint64) {
                         ++heard;
                         return true;
                     },
                     &failure));
    const qint64 waited = timer.elapsed();
    QCOMPARE(failure, QStringLiteral("database is locked"));
    // It waited its limit, and not much longer.
    QVERIFY2(waited >= SqliteBackup::busyLimit && waited < SqliteBackup::busyLimit + 3000,
             qPrintable(QString::number(waited)));
    // Every retry (one each 20 ms) was told, so that Cancel is heard.
    QVERIFY2(heard > 100, qPrintable(QString::number(heard)));
    QVERIFY(holder.exec(QStringLiteral("ROLLBACK")));
}

void TestSqliteBackup::cancelIsHeardWhileTheFileIsHeld()
{
    RawDatabase holder(home->databasePath());
    QVERIFY(holder.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    QElapsedTimer timer;
    timer.start();
    int heard = 0;
    QString failure;
    QVERIFY(!SqliteBackup(home->databasePath(), copyPath()).run([&](qint64, qint64) { return ++heard < 5; },
                                                               &failure));
    QCOMPARE(failure, QStringLiteral("The backup was cancelled."));
    QCOMPARE(heard, 5);
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(holder.exec(QStringLiteral("ROLLBACK")));
}

void TestSqliteBackup::aCopyWaitsForAFileThatIsReleasedInTime()
{
    RawDatabase holder(home->databasePath());
    QVERIFY(holder.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    int heard = 0;
    QString failure;
    // The holder lets go after the copy has waited a few times.
    QVERIFY(SqliteBackup(home->databasePath(), copyPath())
                .run(
                    [&](qint64, qint64) {
                        if (++heard == 10)
                            holder.exec(QStringLiteral("ROLLBACK"));
                        return true;
                    },
                    &failure));
    QVERIFY(heard > 10);
    QCOMPARE(RawDatabase(copyPath()).dumpTables(), RawDatabase(home->databasePath()).dumpTables());
}

QTEST_GUILESS_MAIN(TestSqliteBackup)

#include "tst_sqlitebackup.moc"
