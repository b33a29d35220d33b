// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The rules command, run as a user types it: the real program in a
// temporary home, without a display.
#include "databasemanager.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"

#include <QTest>

#include <memory>

namespace {

using Run = ProgramRun;

Run runLedgerly(const QStringList &arguments, const QString &home)
{
    return runWithoutDisplay(QStringLiteral(LEDGERLY_PROGRAM), arguments, home);
}

const QString tryHelp = QStringLiteral("Try \"ledgerly --help\" for more information.\n");

} // namespace

class TestRuleCommands : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void helpNamesTheRulesCommandsAndTheirOptions();
    void addListMoveAndRemoveSayWhatTheyDid();
    void addingARuleAddsACategoryTableCategoryLacks();
    void aTextThatBeginsWithAMinusIsAText();
    void anInvalidRegularExpressionIsRefusedWithQtsReason();
    void refusalsExitWith1AndChangeNothing_data();
    void refusalsExitWith1AndChangeNothing();
    void usageErrorsExitWith2AndChangeNothing_data();
    void usageErrorsExitWith2AndChangeNothing();
    void applyRecategorisesTheEntriesOfOthersAndADryRunOnlyCounts();
    void anImportSaysHowManyEntriesTheRulesCategorised();

private:
    void insertEntry(const QString &item, const QString &category, const QString &place = QString());

    std::unique_ptr<TempHome> home;
};

void TestRuleCommands::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
    // The file with its tables, as the program makes it.
    DatabaseManager store(nullptr);
    QVERIFY(store.isUsable());
}

void TestRuleCommands::cleanup()
{
    home.reset();
}

void TestRuleCommands::insertEntry(const QString &item, const QString &category, const QString &place)
{
    RawDatabase raw(home->databasePath());
    QVERIFY(raw.insertEntry(item, category, QDateTime(QDate(2026, 3, 1), QTime(12, 0)), 10, place) > 0);
}

void TestRuleCommands::helpNamesTheRulesCommandsAndTheirOptions()
{
    const Run run = runLedgerly({ "--help" }, home->path());
    QCOMPARE(run.exitCode, 0);
    for (const char *line :
         { "\n  rules         Lists the rules that categorise entries, in the order they are tried:\n",
           "\n  rules add TEXT CATEGORY [--in item|place|both] [--regex]\n", "\n  rules remove N\n",
           "\n  rules move N POSITION\n", "\n  rules apply [--dry-run]\n", "\n  --in <item|place|both> ",
           "\n  --regex ", "\n  --dry-run " })
        QVERIFY2(run.out.contains(QLatin1String(line)), line);
}

void TestRuleCommands::addListMoveAndRemoveSayWhatTheyDid()
{
    Run run = runLedgerly({ "rules", "add", "REWE", "Groceries" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Rule 1: item or place containing \"REWE\" gives Groceries\n"));
    run = runLedgerly({ "rules", "add", "shell", "Car", "--in", "place" }, home->path());
    QCOMPARE(run.out, QStringLiteral("Rule 2: place containing \"shell\" gives Car\n"));
    run = runLedgerly({ "rules", "add", "^db\\b", "Travel", "--in=item", "--regex" }, home->path());
    QCOMPARE(run.out, QStringLiteral("Rule 3: item matching \"^db\\b\" gives Travel\n"));

    run = runLedgerly({ "rules" }, home->path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out,
             QStringLiteral("1\tREWE\tboth\tcontains\tGroceries\n"
                            "2\tshell\tplace\tcontains\tCar\n"
                            "3\t^db\\b\titem\tregex\tTravel\n"));

    run = runLedgerly({ "rules", "move", "3", "1" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Rule 1: item matching \"^db\\b\" gives Travel\n"));
    run = runLedgerly({ "rules", "remove", "2" }, home->path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Removed rule 2: item or place containing \"REWE\" gives Groceries\n"));

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("SELECT Position, Text, SearchIn, How, CategoryName FROM CategoryRule ORDER BY "
                                     "Position")),
             QList<QVariantList>(
                 { { 1, "^db\\b", "item", "regex", "Travel" }, { 2, "shell", "place", "contains", "Car" } }));
}

void TestRuleCommands::addingARuleAddsACategoryTableCategoryLacks()
{
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Bakeries'")).toInt(), 0);
    QCOMPARE(runLedgerly({ "rules", "add", "Bäckerei", "Bakeries" }, home->path()).exitCode, 0);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Bakeries'")).toInt(), 1);
}

void TestRuleCommands::aTextThatBeginsWithAMinusIsAText()
{
    Run run = runLedgerly({ "rules", "add", "-50%", "Sales" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QStringLiteral("Rule 1: item or place containing \"-50%\" gives Sales\n"));
    // After "--" even a double minus is a text.
    run = runLedgerly({ "rules", "add", "--in", "item", "--", "--x--", "Odd" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QStringLiteral("Rule 2: item containing \"--x--\" gives Odd\n"));
}

void TestRuleCommands::anInvalidRegularExpressionIsRefusedWithQtsReason()
{
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    const Run run = runLedgerly({ "rules", "add", "(rewe", "Groceries", "--regex" }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err,
             QStringLiteral("The rule was not added: the regular expression \"(rewe\" is not valid: missing "
                            "closing parenthesis at offset 5\n"));
    QCOMPARE(raw.dumpTables(), before);
}

void TestRuleCommands::refusalsExitWith1AndChangeNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("removing a rule beyond the last")
        << QStringList { "rules", "remove", "3" }
        << QStringLiteral("No rule was removed: there is no rule 3: the rules are numbered 1 to 2\n");
    QTest::newRow("moving a rule beyond the last")
        << QStringList { "rules", "move", "1", "5" }
        << QStringLiteral("No rule was moved: there is no rule 5: the rules are numbered 1 to 2\n");
    QTest::newRow("moving an unknown rule")
        << QStringList { "rules", "move", "4", "1" }
        << QStringLiteral("No rule was moved: there is no rule 4: the rules are numbered 1 to 2\n");
}

void TestRuleCommands::refusalsExitWith1AndChangeNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QCOMPARE(runLedgerly({ "rules", "add", "a", "Food" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "rules", "add", "b", "Food" }, home->path()).exitCode, 0);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.err, message);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(raw.dumpTables(), before);
}

void TestRuleCommands::usageErrorsExitWith2AndChangeNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("an unknown rules command")
        << QStringList { "rules", "frob" } << QStringLiteral("Unknown rules command \"frob\".");
    QTest::newRow("add without a category")
        << QStringList { "rules", "add", "REWE" } << QStringLiteral("rules add takes TEXT CATEGORY.");
    QTest::newRow("add with three words")
        << QStringList { "rules", "add", "REWE", "Food", "more" } << QStringLiteral("rules add takes TEXT CATEGORY.");
    QTest::newRow("an unknown place to look") << QStringList { "rules", "add", "a", "Food", "--in", "memo" }
                                              << QStringLiteral("--in is item, place or both, not \"memo\".");
    QTest::newRow("--in without its value")
        << QStringList { "rules", "add", "a", "Food", "--in" } << QStringLiteral("Missing value after '--in'.");
    QTest::newRow("an unknown option") << QStringList { "rules", "add", "a", "Food", "--frob" }
                                       << QStringLiteral("Unknown option 'frob'.");
    QTest::newRow("remove without N") << QStringList { "rules", "remove" }
                                      << QStringLiteral("rules remove takes the number N of a rule.");
    QTest::newRow("remove 0") << QStringList { "rules", "remove", "0" }
                              << QStringLiteral("rules remove takes the number N of a rule.");
    QTest::newRow("remove a word") << QStringList { "rules", "remove", "first" }
                                   << QStringLiteral("rules remove takes the number N of a rule.");
    QTest::newRow("move without a position")
        << QStringList { "rules", "move", "1" }
        << QStringLiteral("rules move takes the number N of a rule and its new POSITION.");
    QTest::newRow("apply with a word") << QStringList { "rules", "apply", "now" }
                                       << QStringLiteral("rules apply takes nothing but --dry-run.");
    QTest::newRow("--dry-run on add") << QStringList { "rules", "add", "a", "Food", "--dry-run" }
                                      << QStringLiteral("--dry-run goes with rules apply only.");
    QTest::newRow("--regex on apply") << QStringList { "rules", "apply", "--regex" }
                                      << QStringLiteral("--regex goes with rules add only.");
    QTest::newRow("--in on the list") << QStringList { "rules", "--in", "item" }
                                      << QStringLiteral("--in goes with rules add only.");
    QTest::newRow("--regex on export") << QStringList { "export", "x.csv", "--regex" }
                                       << QStringLiteral("--regex goes with rules only.");
    QTest::newRow("--dry-run on import") << QStringList { "import", "x.csv", "--dry-run" }
                                         << QStringLiteral("--dry-run goes with rules only.");
    QTest::newRow("--in on find") << QStringList { "find", "tea", "--in", "item" }
                                  << QStringLiteral("--in goes with rules only.");
}

void TestRuleCommands::usageErrorsExitWith2AndChangeNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.err, message + QLatin1Char('\n') + tryHelp);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(raw.dumpTables(), before);
}

void TestRuleCommands::applyRecategorisesTheEntriesOfOthersAndADryRunOnlyCounts()
{
    insertEntry(QStringLiteral("REWE SAGT DANKE 4711"), QStringLiteral("Others"));
    insertEntry(QStringLiteral("Card 0815"), QStringLiteral("Others"), QStringLiteral("Café Süß"));
    insertEntry(QStringLiteral("REWE Markt"), QStringLiteral("Food"));
    insertEntry(QStringLiteral("Aldi"), QStringLiteral("Others"));
    QCOMPARE(runLedgerly({ "rules", "add", "rewe", "Groceries" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "rules", "add", "cafe", "Coffee", "--in", "place" }, home->path()).exitCode, 0);

    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    Run run = runLedgerly({ "rules", "apply", "--dry-run" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Would recategorise 2 entries\n"));
    QCOMPARE(raw.dumpTables(), before);

    run = runLedgerly({ "rules", "apply" }, home->path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Recategorised 2 entries\n"));
    QCOMPARE(raw.rows(QStringLiteral("SELECT ItemName, CategoryName FROM Entry ORDER BY SNo")),
             QList<QVariantList>({ { "REWE SAGT DANKE 4711", "Groceries" },
                                   { "Card 0815", "Coffee" },
                                   { "REWE Markt", "Food" },
                                   { "Aldi", "Others" } }));

    insertEntry(QStringLiteral("rewe to go"), QStringLiteral("Others"));
    QCOMPARE(runLedgerly({ "rules", "apply", "--dry-run" }, home->path()).out,
             QStringLiteral("Would recategorise 1 entry\n"));
    QCOMPARE(runLedgerly({ "rules", "apply" }, home->path()).out, QStringLiteral("Recategorised 1 entry\n"));
    QCOMPARE(runLedgerly({ "rules", "apply" }, home->path()).out, QStringLiteral("Recategorised 0 entries\n"));
}

void TestRuleCommands::anImportSaysHowManyEntriesTheRulesCategorised()
{
    const QString file = home->filePath(QStringLiteral("bank.qif"));
    QVERIFY(writeFile(file,
                      "!Type:Bank\r\nD03/01/2026\r\nT-23.50\r\nPREWE SAGT DANKE\r\n^\r\n"
                      "D03/02/2026\r\nT-9.00\r\nPREWE Kaufhof\r\nLClothes\r\n^\r\n"
                      "D03/03/2026\r\nT-4.00\r\nPAldi\r\n^\r\n"
                      "D03/04/2026\r\nT-5.00\r\nPRewe City\r\n^\r\n"
                      "D03/05/2026\r\nT100.00\r\nPSalary\r\n^\r\n"));
    QCOMPARE(runLedgerly({ "rules", "add", "rewe", "Groceries" }, home->path()).exitCode, 0);
    const Run run = runLedgerly({ "import", file }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out,
             QStringLiteral("Imported 4 entries from %1; skipped 1 (income 1); categorised by rules 2\n").arg(file));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("SELECT CategoryName FROM Entry ORDER BY TransactDateTime")),
             QList<QVariantList>({ { "Groceries" }, { "Clothes" }, { "Others" }, { "Groceries" } }));

    // Without a rule that matches, the line is the import's as ever.
    const QString other = home->filePath(QStringLiteral("other.qif"));
    QVERIFY(writeFile(other, "!Type:Bank\r\nD03/06/2026\r\nT-4.00\r\nPLidl\r\n^\r\n"));
    QCOMPARE(runLedgerly({ "import", other }, home->path()).out,
             QStringLiteral("Imported 1 entry from %1; skipped 0\n").arg(other));
}

QTEST_GUILESS_MAIN(TestRuleCommands)
#include "tst_rulecommands.moc"
