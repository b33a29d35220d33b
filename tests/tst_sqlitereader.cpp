// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "sqlitereader.h"

#include <QTemporaryDir>
#include <QTest>

#include <cmath>

#include <sqlite3.h>

// A row read on the SQLite handle must convert its columns exactly as the
// variant Qt's driver makes of them would: the lists of entries read one way
// or the other must be the same lists.
class TestSqliteReader : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void typedReadsAgreeWithTheVariants_data();
    void typedReadsAgreeWithTheVariants();

private:
    QTemporaryDir home;
    sqlite3 *db = nullptr;
};

void TestSqliteReader::initTestCase()
{
    QVERIFY(home.isValid());
    QCOMPARE(sqlite3_open(QFile::encodeName(home.filePath(QStringLiteral("values.db"))).constData(), &db), SQLITE_OK);
    // Columns without affinity keep each value in the storage class given.
    QCOMPARE(sqlite3_exec(db, "create table V (Value)", nullptr, nullptr, nullptr), SQLITE_OK);
}

void TestSqliteReader::cleanupTestCase()
{
    sqlite3_close(db);
}

void TestSqliteReader::typedReadsAgreeWithTheVariants_data()
{
    // The literal as SQL gives it, then what each typed read must give.
    QTest::addColumn<QByteArray>("literal");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("integer");
    QTest::addColumn<float>("real");
    QTest::addColumn<bool>("truth");
    QTest::addColumn<bool>("isText");

    QTest::newRow("integer") << QByteArray("42") << "42" << 42 << 42.0f << true << false;
    QTest::newRow("zero") << QByteArray("0") << "0" << 0 << 0.0f << false << false;
    QTest::newRow("negative") << QByteArray("-7") << "-7" << -7 << -7.0f << true << false;
    // Past an int: cut to its low 32 bits, as a C++ conversion does.
    QTest::newRow("beyond an int") << QByteArray("4294967298") << "4294967298" << 2 << 4294967298.0f << true << false;
    QTest::newRow("real") << QByteArray("12.5") << "12.5" << 13 << 12.5f << true << false;
    // A real is true or false as the integer it rounds to: a quarter is
    // false, as the variant has it.
    QTest::newRow("real below one") << QByteArray("0.25") << "0.25" << 0 << 0.25f << false << false;
    QTest::newRow("real above a half") << QByteArray("0.75") << "0.75" << 1 << 0.75f << true << false;
    QTest::newRow("text") << QByteArray("'Café'") << QStringLiteral("Café") << 0 << 0.0f << true << true;
    QTest::newRow("number as text") << QByteArray("'12.5'") << "12.5" << 0 << 12.5f << true << true;
    QTest::newRow("false as text") << QByteArray("'false'") << "false" << 0 << 0.0f << false << true;
    QTest::newRow("zero as text") << QByteArray("'0'") << "0" << 0 << 0.0f << false << true;
    QTest::newRow("empty text") << QByteArray("''") << "" << 0 << 0.0f << false << true;
    QTest::newRow("null") << QByteArray("NULL") << QString() << 0 << 0.0f << false << false;
}

void TestSqliteReader::typedReadsAgreeWithTheVariants()
{
    QFETCH(QByteArray, literal);
    QFETCH(QString, text);
    QFETCH(int, integer);
    QFETCH(float, real);
    QFETCH(bool, truth);
    QFETCH(bool, isText);

    QCOMPARE(sqlite3_exec(db, "delete from V", nullptr, nullptr, nullptr), SQLITE_OK);
    QCOMPARE(sqlite3_exec(db, ("insert into V values (" + literal + ")").constData(), nullptr, nullptr, nullptr),
             SQLITE_OK);
    sqlite3_stmt *statement = nullptr;
    QCOMPARE(sqlite3_prepare_v2(db, "select Value from V", -1, &statement, nullptr), SQLITE_OK);
    QCOMPARE(sqlite3_step(statement), SQLITE_ROW);
    const SqliteRow row(statement);

    QCOMPARE(row.toString(0), text);
    QCOMPARE(row.toString(0).isNull(), text.isNull());
    QCOMPARE(row.toInt(0), integer);
    QCOMPARE(row.toFloat(0), real);
    QCOMPARE(row.toBool(0), truth);
    QCOMPARE(row.isText(0), isText);

    // And the same as the variant, read after the typed reads (a read may
    // convert the value SQLite holds for the row).
    const QVariant variant = row.value(0);
    QCOMPARE(row.toString(0), variant.toString());
    QCOMPARE(row.toInt(0), variant.toInt());
    QCOMPARE(row.toFloat(0), variant.toFloat());
    QCOMPARE(row.toBool(0), variant.toBool());
    sqlite3_finalize(statement);
}

QTEST_GUILESS_MAIN(TestSqliteReader)
#include "tst_sqlitereader.moc"
