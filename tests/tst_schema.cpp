// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "migrations.h"
#include "schema.h"
#include "statements.h"

#include "describedfile.h"
#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"

#include <QDir>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QTest>

#include <memory>

namespace {

// The schema of a file as SQLite keeps it: every object's type, name and
// statement, in name order (SQLite's own objects left out).
QStringList schemaOf(const QString &fileName)
{
    RawDatabase raw(fileName);
    QStringList objects;
    for (const QVariantList &row : raw.rows(QStringLiteral(
             "select type, name, sql from sqlite_master where name not like 'sqlite_%' order by name")))
        objects << row.at(0).toString() + QLatin1Char(' ') + row.at(1).toString() + QLatin1String(": ") +
                row.at(2).toString();
    return objects;
}

int versionOf(const QString &fileName)
{
    return RawDatabase(fileName).scalar(QStringLiteral("PRAGMA user_version")).toInt();
}

// Three steps of a test's own making, each adding a table and an index.
QList<Migration> threeSteps()
{
    return {
        { 1, QStringLiteral("notes"),
          { QStringLiteral("CREATE TABLE Notes (Id integer PRIMARY KEY, Text text NOT NULL)") } },
        { 2, QStringLiteral("tags"),
          { QStringLiteral("CREATE TABLE Tags (Id integer PRIMARY KEY, Name text NOT NULL UNIQUE)"),
            QStringLiteral("CREATE INDEX TagsByName ON Tags (Name)") } },
        { 3, QStringLiteral("links"),
          { QStringLiteral("CREATE TABLE Links (Note integer NOT NULL, Tag integer NOT NULL)") } },
    };
}

// A connection of the test's own on a file, with the store's statements on
// it, for the schema's functions that take them.
class Fixture
{
public:
    explicit Fixture(const QString &fileName)
    {
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("schema-fixture"));
        db.setDatabaseName(fileName);
        db.open();
        statements = std::make_unique<Statements>(db);
    }
    ~Fixture()
    {
        statements.reset();
        db.close();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("schema-fixture"));
    }
    Fixture(const Fixture &) = delete;
    Fixture &operator=(const Fixture &) = delete;

    QSqlDatabase db;
    std::unique_ptr<Statements> statements;
};

} // namespace

class TestSchema : public QObject
{
    Q_OBJECT

private slots:
    void init() { home = std::make_unique<TempHome>(); }
    void cleanup() { home.reset(); }

    void aDescribedFileOpensAndReachesTheLatestVersionWithItsRowsKept();
    void theKnownStepsAreNumberedFromOneWithoutGaps();
    void aFileAtEveryVersionReachesTheLatest();
    void everyVersionOfATestsOwnStepsReachesTheSameSchema();
    void aFileFromTheFutureIsRefusedAndLeftByteForByte();
    void aStepThatFailsHalfWayLeavesTheFileByteForByte();
    void theStepsBeforeAFailingOneStay();
    void aStepTheFileRefusesIsToldAtStartUpAndTheFileStaysAsItWas();
    void aFileThatTakesNoWritesIsToldAndStillReads();
    void aWritableFileHasNoWriteProblemAndIsLeftUnchangedByTheCheck();

private:
    std::unique_ptr<TempHome> home;
};

void TestSchema::aDescribedFileOpensAndReachesTheLatestVersionWithItsRowsKept()
{
    QVERIFY(makeDescribedFile(home->databasePath()));
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"), QDateTime(QDate(2026, 3, 1), {}),
                                2.5) > 0);
    }
    QCOMPARE(versionOf(home->databasePath()), 0);

    DatabaseManager store(nullptr);
    QVERIFY(store.isUsable());
    QCOMPARE(store.writeProblem(), QString());
    QCOMPARE(versionOf(home->databasePath()), Migrations::latestVersion());
    const auto entries = owned(store.GetAllEntries());
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.at(0)->ItemName, QStringLiteral("Bread"));
    // The six tables stand exactly as they were written.
    RawDatabase raw(home->databasePath());
    for (const auto &table : describedCreateStatements())
        QCOMPARE(raw.scalar(QStringLiteral("select sql from sqlite_master where name = '%1'").arg(table.first))
                     .toString(),
                 table.second);
}

void TestSchema::theKnownStepsAreNumberedFromOneWithoutGaps()
{
    const QList<Migration> &steps = Migrations::all();
    for (qsizetype i = 0; i < steps.size(); ++i) {
        QCOMPARE(steps.at(i).version, int(i + 1));
        QVERIFY(!steps.at(i).purpose.isEmpty());
        QVERIFY(!steps.at(i).statements.isEmpty());
        // A step adds; it never alters or drops what is there. Besides
        // creating, it may fill a table that it created itself.
        QStringList created;
        for (const QString &statement : steps.at(i).statements) {
            const QStringList words = statement.split(QLatin1Char(' '));
            if (statement.startsWith(QLatin1String("CREATE TABLE "), Qt::CaseInsensitive))
                created << words.at(2);
            if (statement.startsWith(QLatin1String("CREATE VIRTUAL TABLE "), Qt::CaseInsensitive))
                created << words.at(3);
            const bool fillsItsOwn = statement.startsWith(QLatin1String("INSERT INTO "), Qt::CaseInsensitive) &&
                created.contains(words.at(2));
            QVERIFY2(statement.startsWith(QLatin1String("CREATE "), Qt::CaseInsensitive) || fillsItsOwn,
                     qPrintable(statement));
            for (const auto &table : describedCreateStatements())
                QVERIFY2(!statement.contains(QStringLiteral("TABLE %1 ").arg(table.first)), qPrintable(statement));
        }
    }
    QCOMPARE(Migrations::latestVersion(), int(steps.size()));
}

void TestSchema::aFileAtEveryVersionReachesTheLatest()
{
    // The file a described file becomes, step by step from version 0.
    const QString straight = home->filePath(QStringLiteral("straight.db"));
    QVERIFY(makeDescribedFile(straight));
    {
        Fixture fixture(straight);
        QString failure;
        QVERIFY2(Schema::upgrade(*fixture.statements, Migrations::all(), &failure), qPrintable(failure));
    }
    QCOMPARE(versionOf(straight), Migrations::latestVersion());

    for (int version = 0; version <= Migrations::latestVersion(); ++version) {
        QVERIFY(QFile::remove(home->databasePath()) || !QFile::exists(home->databasePath()));
        QVERIFY(makeDescribedFile(home->databasePath()));
        {
            Fixture fixture(home->databasePath());
            QString failure;
            QVERIFY(Schema::upgrade(*fixture.statements, Migrations::all().mid(0, version), &failure));
        }
        QCOMPARE(versionOf(home->databasePath()), version);
        {
            DatabaseManager store(nullptr);
            QVERIFY(store.isUsable());
            QCOMPARE(store.writeProblem(), QString());
        }
        QCOMPARE(versionOf(home->databasePath()), Migrations::latestVersion());
        QCOMPARE(schemaOf(home->databasePath()), schemaOf(straight));
    }
}

void TestSchema::everyVersionOfATestsOwnStepsReachesTheSameSchema()
{
    const QList<Migration> steps = threeSteps();
    const QString straight = home->filePath(QStringLiteral("straight.db"));
    QVERIFY(makeDescribedFile(straight));
    {
        Fixture fixture(straight);
        QString failure;
        QVERIFY(Schema::upgrade(*fixture.statements, steps, &failure));
    }
    QCOMPARE(versionOf(straight), 3);
    const QStringList expected = schemaOf(straight);
    QVERIFY(expected.contains(QStringLiteral("index TagsByName: CREATE INDEX TagsByName ON Tags (Name)")));
    QCOMPARE(expected.size(), 6 + 4);

    for (int version = 0; version <= 3; ++version) {
        const QString file = home->filePath(QStringLiteral("at-%1.db").arg(version));
        QVERIFY(makeDescribedFile(file));
        Fixture fixture(file);
        QString failure;
        QVERIFY(Schema::upgrade(*fixture.statements, steps.mid(0, version), &failure));
        QCOMPARE(Schema::version(*fixture.statements), version);
        QVERIFY(Schema::upgrade(*fixture.statements, steps, &failure));
        QCOMPARE(Schema::version(*fixture.statements), 3);
        QCOMPARE(schemaOf(file), expected);
    }
}

void TestSchema::aFileFromTheFutureIsRefusedAndLeftByteForByte()
{
    QVERIFY(makeDescribedFile(home->databasePath()));
    const int future = Migrations::latestVersion() + 1;
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.exec(QStringLiteral("PRAGMA user_version = %1").arg(future)));
        QVERIFY(raw.insertEntry(QStringLiteral("Tea"), QStringLiteral("Drinks"), QDateTime(QDate(2031, 1, 2), {}), 3) >
                0);
    }
    const QByteArray before = readFile(home->databasePath());

    {
        DatabaseManager store(nullptr);
        QVERIFY(!store.isUsable());
        QVERIFY2(store.openError().contains(QStringLiteral("was written by a newer version of Ledgerly")),
                 qPrintable(store.openError()));
        QVERIFY(store.openError().contains(home->databasePath()));
        // Nothing reads or writes through a refused store.
        QVERIFY(!store.AddCategory(QStringLiteral("Pets")));
        QCOMPARE(owned(store.GetAllEntries()).size(), 0);
    }
    QCOMPARE(readFile(home->databasePath()), before);
    QVERIFY(!QFile::exists(home->databasePath() + QStringLiteral("-journal")));
}

void TestSchema::aStepThatFailsHalfWayLeavesTheFileByteForByte()
{
    QVERIFY(makeDescribedFile(home->databasePath()));
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Soap"), QStringLiteral("Household"), QDateTime(QDate(2026, 2, 3), {}),
                                4) > 0);
    }
    const QByteArray before = readFile(home->databasePath());
    // The second statement fails: the file has a table of that name.
    const QList<Migration> steps = {
        { 1, QStringLiteral("budgets"),
          { QStringLiteral("CREATE TABLE Budgets (Category text NOT NULL)"),
            QStringLiteral("CREATE TABLE Entry (Anything text)") } },
    };
    QString failure;
    {
        Fixture fixture(home->databasePath());
        QVERIFY(!Schema::upgrade(*fixture.statements, steps, &failure));
        QCOMPARE(Schema::version(*fixture.statements), 0);
    }
    QVERIFY2(failure.contains(QStringLiteral("already exists")), qPrintable(failure));
    QVERIFY2(failure.contains(QStringLiteral("budgets")), qPrintable(failure));
    QCOMPARE(readFile(home->databasePath()), before);
}

void TestSchema::theStepsBeforeAFailingOneStay()
{
    QVERIFY(makeDescribedFile(home->databasePath()));
    QList<Migration> steps = threeSteps().mid(0, 1);
    steps.append({ 2, QStringLiteral("broken"),
                   { QStringLiteral("CREATE TABLE Half (x)"), QStringLiteral("CREATE TABLE Notes (y)") } });
    const QString onlyFirst = home->filePath(QStringLiteral("first.db"));
    QVERIFY(makeDescribedFile(onlyFirst));
    QString failure;
    {
        Fixture fixture(onlyFirst);
        QVERIFY(Schema::upgrade(*fixture.statements, steps.mid(0, 1), &failure));
    }
    {
        Fixture fixture(home->databasePath());
        QVERIFY(!Schema::upgrade(*fixture.statements, steps, &failure));
        QCOMPARE(Schema::version(*fixture.statements), 1);
    }
    QCOMPARE(schemaOf(home->databasePath()), schemaOf(onlyFirst));
}

void TestSchema::aStepTheFileRefusesIsToldAtStartUpAndTheFileStaysAsItWas()
{
    // A version-0 file that already holds a table of the name the first
    // step creates: the step cannot be applied.
    QVERIFY(!Migrations::all().isEmpty());
    const QRegularExpression created(QStringLiteral("^CREATE TABLE (\\w+)"));
    const QString taken = created.match(Migrations::all().constFirst().statements.constFirst()).captured(1);
    QVERIFY(!taken.isEmpty());
    {
        // The file an older Ledgerly left: its default rows, an entry, and
        // none of the steps' objects.
        DatabaseManager older(nullptr);
    }
    {
        RawDatabase raw(home->databasePath());
        for (const QString &trigger : migrationObjectNames(QStringLiteral("trigger")))
            QVERIFY(raw.exec(QStringLiteral("DROP TRIGGER %1").arg(trigger)));
        // A full-text table takes the tables of its index with it, so
        // those may be gone by their turn.
        for (const QString &table : migrationObjectNames(QStringLiteral("table")))
            QVERIFY(raw.exec(QStringLiteral("DROP TABLE IF EXISTS %1").arg(table)));
        QVERIFY(raw.exec(QStringLiteral("PRAGMA user_version = 0")));
        QVERIFY(raw.exec(QStringLiteral("CREATE TABLE %1 (Something text)").arg(taken)));
        QVERIFY(raw.insertEntry(QStringLiteral("Tea"), QStringLiteral("Drinks"), QDateTime(QDate(2026, 4, 1), {}), 2) >
                0);
    }
    const QByteArray before = readFile(home->databasePath());
    {
        DatabaseManager store(nullptr);
        // Told at start-up, with SQLite's reason and what the step adds; what
        // the file holds still reads.
        QVERIFY(store.isUsable());
        QVERIFY2(store.writeProblem().startsWith(
                     QStringLiteral("Ledgerly could not bring %1 up to date: ").arg(home->databasePath())),
                 qPrintable(store.writeProblem()));
        QVERIFY2(store.writeProblem().contains(QStringLiteral("already exists")), qPrintable(store.writeProblem()));
        QVERIFY2(store.writeProblem().contains(Migrations::all().constFirst().purpose),
                 qPrintable(store.writeProblem()));
        QCOMPARE(owned(store.GetAllEntries()).size(), 1);
    }
    QCOMPARE(readFile(home->databasePath()), before);
    QCOMPARE(versionOf(home->databasePath()), 0);
}

void TestSchema::aFileThatTakesNoWritesIsToldAndStillReads()
{
    {
        DatabaseManager store(nullptr);
        Entry entry;
        entry.ItemName = QStringLiteral("Milk");
        entry.CategoryName = QStringLiteral("Groceries");
        entry.TransactDateTime = QDateTime(QDate(2026, 5, 6), {});
        entry.Price = 1.25f;
        QVERIFY(store.AddEntry(&entry));
    }
    // A file format whose writing version SQLite does not know (byte 18 of
    // the header above 2) opens read-only: it reads, and every write is
    // refused, whoever runs the test (file permissions would not stop the
    // root user that tests may run as).
    QByteArray bytes = readFile(home->databasePath());
    QCOMPARE(int(bytes.at(18)), 1);
    bytes[18] = 3;
    QVERIFY(writeFile(home->databasePath(), bytes));
    const QByteArray before = readFile(home->databasePath());

    {
        DatabaseManager store(nullptr);
        QVERIFY(store.isUsable());
        QVERIFY2(!store.writeProblem().isEmpty(), "a file that takes no writes passed as writable");
        QVERIFY2(store.writeProblem().contains(QStringLiteral("readonly database")), qPrintable(store.writeProblem()));
        const auto entries = owned(store.GetAllEntries());
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries.at(0)->ItemName, QStringLiteral("Milk"));
        Entry another = *entries.at(0);
        QVERIFY(!store.AddEntry(&another));
    }
    QCOMPARE(readFile(home->databasePath()), before);
}

void TestSchema::aWritableFileHasNoWriteProblemAndIsLeftUnchangedByTheCheck()
{
    {
        DatabaseManager store(nullptr);
        QCOMPARE(store.writeProblem(), QString());
    }
    const QByteArray before = readFile(home->databasePath());
    {
        DatabaseManager store(nullptr);
        QVERIFY(store.isUsable());
        QCOMPARE(store.writeProblem(), QString());
    }
    QCOMPARE(readFile(home->databasePath()), before);
    QVERIFY(!QFile::exists(home->databasePath() + QStringLiteral("-journal")));
}

QTEST_GUILESS_MAIN(TestSchema)

#include "tst_schema.moc"
