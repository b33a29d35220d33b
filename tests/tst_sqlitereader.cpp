// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "sqlitereader.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

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
    void storedValuesCompareAsSqliteDoes_data();
    void storedValuesCompareAsSqliteDoes();
    void storedValuesSortAsSqliteSorts();

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

void TestSqliteReader::storedValuesCompareAsSqliteDoes_data()
{
    // Two literals, and whether SQLite takes them for one value (as
    // DISTINCT and GROUP BY do).
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<bool>("same");

    QTest::newRow("equal texts") << QByteArray("'2026-11-15T10:00:00'") << QByteArray("'2026-11-15T10:00:00'")
                                 << true;
    QTest::newRow("one moment, two forms") << QByteArray("'2026-11-14T24:00:00'")
                                           << QByteArray("'2026-11-15T00:00:00'") << false;
    QTest::newRow("case") << QByteArray("'Food'") << QByteArray("'food'") << false;
    QTest::newRow("accents") << QByteArray("'Café'") << QByteArray("'Cafe'") << false;
    QTest::newRow("integer and real") << QByteArray("1") << QByteArray("1.0") << true;
    QTest::newRow("different numbers") << QByteArray("1") << QByteArray("1.5") << false;
    QTest::newRow("number and its text") << QByteArray("1") << QByteArray("'1'") << false;
    QTest::newRow("text and its blob") << QByteArray("'A'") << QByteArray("x'41'") << false;
    QTest::newRow("equal blobs") << QByteArray("x'0041'") << QByteArray("x'0041'") << true;
    QTest::newRow("two NULLs") << QByteArray("NULL") << QByteArray("NULL") << true;
    QTest::newRow("NULL and empty text") << QByteArray("NULL") << QByteArray("''") << false;
    QTest::newRow("empty texts") << QByteArray("''") << QByteArray("''") << true;
}

void TestSqliteReader::storedValuesCompareAsSqliteDoes()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(bool, same);

    // SQLite's own verdict first, so that the expectation above is its.
    sqlite3_stmt *statement = nullptr;
    QCOMPARE(sqlite3_prepare_v2(db, ("select count(distinct Value) from (select " + first + " as Value union all select " +
                                     second + ")")
                                        .constData(),
                                -1, &statement, nullptr),
             SQLITE_OK);
    QCOMPARE(sqlite3_step(statement), SQLITE_ROW);
    // NULLs are left out of a count: two NULLs count none.
    const int distinct = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    if (first != "NULL" && second != "NULL")
        QCOMPARE(distinct == 1, same);

    QCOMPARE(sqlite3_prepare_v2(db, ("select " + first + ", " + second).constData(), -1, &statement, nullptr),
             SQLITE_OK);
    QCOMPARE(sqlite3_step(statement), SQLITE_ROW);
    const SqliteRow row(statement);
    const StoredValue kept = row.stored(0);
    QCOMPARE(kept == row.stored(1), same);
    QCOMPARE(row.holds(1, kept), same);
    QCOMPARE(row.holds(0, kept), true);
    // Kept from the variants Qt's driver makes, the same.
    QCOMPARE(StoredValue(row.value(0)) == StoredValue(row.value(1)), same);
    QCOMPARE(StoredValue(row.value(0)) == kept, true);
    QCOMPARE(row.holds(1, StoredValue(row.value(0))), same);
    sqlite3_finalize(statement);
}

void TestSqliteReader::storedValuesSortAsSqliteSorts()
{
    // Values of every storage class, given out of order; SQLite's ORDER BY
    // says where each belongs.
    const QList<QByteArray> literals = { "'b'", "x'41'", "2.5", "NULL", "'a'", "-1", "'2026-11-15T00:00:00'",
                                         "9007199254740993", "9007199254740992.0", "'ab'", "''", "x'00'",
                                         "'A'", "'é'", "'2026-11-14T24:00:00'", "0", "'z'", "-0.5", "x''" };
    QCOMPARE(sqlite3_exec(db, "delete from V", nullptr, nullptr, nullptr), SQLITE_OK);
    for (const QByteArray &literal : literals)
        QCOMPARE(sqlite3_exec(db, ("insert into V values (" + literal + ")").constData(), nullptr, nullptr, nullptr),
                 SQLITE_OK);

    const auto read = [this](const char *sql) {
        QList<StoredValue> values;
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) != SQLITE_OK)
            return values;
        const SqliteRow row(statement);
        while (sqlite3_step(statement) == SQLITE_ROW)
            values.append(row.stored(0));
        sqlite3_finalize(statement);
        return values;
    };
    const QList<StoredValue> bySqlite = read("select Value from V order by Value, rowid");
    QList<StoredValue> sorted = read("select Value from V order by rowid");
    QCOMPARE(sorted.size(), literals.size());
    QCOMPARE(bySqlite.size(), literals.size());
    std::stable_sort(sorted.begin(), sorted.end());
    for (qsizetype i = 0; i < sorted.size(); ++i) {
        QVERIFY2(sorted.at(i) == bySqlite.at(i), qPrintable(QString::number(i)));
        if (i > 0)
            QVERIFY(!(sorted.at(i) < sorted.at(i - 1)));
    }
    // The integer one past 2^53 is above the real 2^53 and not equal to
    // it, though a double cannot tell them apart: SQLite compares exactly.
    sqlite3_stmt *statement = nullptr;
    QCOMPARE(sqlite3_prepare_v2(db, "select 9007199254740993, 9007199254740992.0", -1, &statement, nullptr),
             SQLITE_OK);
    QCOMPARE(sqlite3_step(statement), SQLITE_ROW);
    const SqliteRow row(statement);
    QVERIFY(row.stored(1) < row.stored(0));
    QVERIFY(!(row.stored(0) < row.stored(1)));
    QVERIFY(row.stored(0) != row.stored(1));
    QVERIFY(!row.holds(1, row.stored(0)));
    sqlite3_finalize(statement);
}

QTEST_GUILESS_MAIN(TestSqliteReader)
#include "tst_sqlitereader.moc"
