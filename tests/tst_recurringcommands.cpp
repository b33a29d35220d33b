// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The recurring expenses on the command line, run as a user or a cron job
// runs them: the real binary, without a display, on a home of its own.
#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <memory>

namespace {

using Run = ProgramRun;

Run runLedgerly(const QStringList &arguments, const QString &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : { "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY" })
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
    return runProgram(QStringLiteral(LEDGERLY_PROGRAM), arguments, environment);
}

QString describe(const Run &run)
{
    return QStringLiteral("exit %1\n--- stdout\n%2--- stderr\n%3").arg(run.exitCode).arg(run.out, run.err);
}

const QString tryHelp = QStringLiteral("Try \"ledgerly --help\" for more information.\n");

} // namespace

class TestRecurringCommands : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void addPrintsTheExpenseWithItsStepSingularOrPlural_data();
    void addPrintsTheExpenseWithItsStepSingularOrPlural();
    void addStoresEveryOptionAndAddsAnUnknownCategory();
    void recurringListsOneALineByNextDateWithTheFinishedLast();
    void removeTakesTheExpenseAwayAndItsEntriesStay();
    void anUnknownExpenseCannotBeRemoved();
    void postDuePostsWhatIsDueUpToTodayAndSaysHowMany();
    void postDueTwicePostsNothingTheSecondTime();
    void postDueUntilADayAndWithAllPostsThoseThatAskFirst();
    void threeTimesPostsThreeAndIsListedAsFinished();
    void postedEntriesCountInTheBudgets();
    void refusedValuesExitWith1AndWriteNothing_data();
    void refusedValuesExitWith1AndWriteNothing();
    void valuesThatDoNotReadExitWith2AndWriteNothing_data();
    void valuesThatDoNotReadExitWith2AndWriteNothing();
    void otherCommandsRefuseTheRecurringOptions_data();
    void otherCommandsRefuseTheRecurringOptions();
    void helpNamesTheCommandsAndTheirOptions();

private:
    // Adds through the program; the new ID.
    int add(const QStringList &arguments);

    std::unique_ptr<TempHome> home;
};

void TestRecurringCommands::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
}

void TestRecurringCommands::cleanup()
{
    home.reset();
}

int TestRecurringCommands::add(const QStringList &arguments)
{
    const Run run = runLedgerly(QStringList { "recurring", "add" } + arguments, home->path());
    if (run.exitCode != 0) {
        qInfo("%s", qPrintable(describe(run)));
        return 0;
    }
    return run.out.section(QLatin1Char(':'), 0, 0).section(QLatin1Char(' '), 2).toInt();
}

void TestRecurringCommands::addPrintsTheExpenseWithItsStepSingularOrPlural_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("printed");
    QTest::newRow("a month") << QStringList { "Rent", "950", "Housing", "--every", "1m", "--from", "2026-01-31" }
                             << "Recurring expense 1: Rent 950.00 every 1 month from 2026-01-31\n";
    QTest::newRow("two weeks") << QStringList { "Cleaner", "60.5", "Home", "--every=2w", "--from=2026-03-02" }
                               << "Recurring expense 1: Cleaner 60.50 every 2 weeks from 2026-03-02\n";
    QTest::newRow("ten days") << QStringList { "--every", "10d", "Water", "3.25", "Drinks", "--from", "2026-12-25" }
                              << "Recurring expense 1: Water 3.25 every 10 days from 2026-12-25\n";
    QTest::newRow("a year") << QStringList { "Insurance", "1200.00", "Car", "--from", "2024-02-29", "--every", "1y" }
                            << "Recurring expense 1: Insurance 1200.00 every 1 year from 2024-02-29\n";
    QTest::newRow("one day") << QStringList { "Paper", "2", "News", "--every", "1d", "--from", "2026-01-01" }
                             << "Recurring expense 1: Paper 2.00 every 1 day from 2026-01-01\n";
    QTest::newRow("the largest amount") << QStringList { "House", "9999999.99", "Housing",   "--every",
                                                         "99y",   "--from",     "2026-01-01" }
                                        << "Recurring expense 1: House 9999999.99 every 99 years from 2026-01-01\n";
}

void TestRecurringCommands::addPrintsTheExpenseWithItsStepSingularOrPlural()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, printed);
    const Run run = runLedgerly(QStringList { "recurring", "add" } + arguments, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, printed);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM RecurringExpense")).toInt(), 1);
    // Adding posts nothing, even what is long due.
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry")).toInt(), 0);
}

void TestRecurringCommands::addStoresEveryOptionAndAddsAnUnknownCategory()
{
    const Run run = runLedgerly({ "recurring", "add", "Electricity", "80", "Utilities", "--every", "1m", "--from",
                                  "2026-01-20", "--until", "2026-12-20", "--place", "Power Co", "--confirm" },
                                home->path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(add({ "Gym", "30", "Sport", "--every", "1m", "--from", "2026-01-01", "--times", "12" }), 2);

    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows =
        raw.rows(QStringLiteral("SELECT ItemName, Price, CategoryName, LocationText, EveryCount, EveryUnit, FirstDate, "
                                "LastDate, Times, Mode, NextDate FROM RecurringExpense ORDER BY SNo"));
    QCOMPARE(rows.size(), 2);
    QStringList first;
    for (const QVariant &value : rows.at(0))
        first << (value.isNull() ? QStringLiteral("NULL") : value.toString());
    QCOMPARE(first,
             QStringList({ "Electricity", "80", "Utilities", "Power Co", "1", "m", "2026-01-20", "2026-12-20", "NULL",
                           "confirm", "2026-01-20" }));
    QCOMPARE(rows.at(1).at(8).toInt(), 12);
    QCOMPARE(rows.at(1).at(9).toString(), QStringLiteral("auto"));
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Utilities'")).toInt(), 1);
}

void TestRecurringCommands::recurringListsOneALineByNextDateWithTheFinishedLast()
{
    QCOMPARE(add({ "Rent", "950", "Housing", "--every", "1m", "--from", "2026-01-31" }), 1);
    QCOMPARE(add({ "Phone", "25.5", "Bills", "--every", "2w", "--from", "2026-02-01", "--until", "2026-03-31",
                   "--confirm" }),
             2);
    QCOMPARE(add({ "Course", "100", "Education", "--every", "1w", "--from", "2026-01-05", "--times", "2" }), 3);
    QCOMPARE(add({ "Water", "3", "Drinks", "--every", "10d", "--from", "2026-01-10", "--times", "5" }), 4);
    Run run = runLedgerly({ "post-due", "--until", "2026-02-10", "--all" }, home->path());
    QCOMPARE(run.exitCode, 0);
    // Rent 31 Jan; phone 1 Feb; course 5 and 12 Jan, finished; water 10,
    // 20, 30 Jan and 9 Feb.
    QCOMPARE(run.out, QStringLiteral("Posted 8 entries\n"));

    run = runLedgerly({ "recurring" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    // The phone's last is 29 Mar: 15 Feb, 1, 15 and 29 Mar are left.
    QCOMPARE(run.out,
             QStringLiteral("2\tPhone\t25.50\tBills\t2w\t2026-02-15\tconfirm\t4\n"
                            "4\tWater\t3.00\tDrinks\t10d\t2026-02-19\tauto\t1\n"
                            "1\tRent\t950.00\tHousing\t1m\t2026-02-28\tauto\t-\n"
                            "3\tCourse\t100.00\tEducation\t1w\t-\tauto\t0\n"));
}

void TestRecurringCommands::removeTakesTheExpenseAwayAndItsEntriesStay()
{
    QCOMPARE(add({ "Gym", "30", "Sport", "--every", "1m", "--from", "2026-01-01" }), 1);
    QCOMPARE(add({ "Rent", "950", "Housing", "--every", "1m", "--from", "2026-01-01" }), 2);
    QCOMPARE(runLedgerly({ "post-due", "--until", "2026-02-01" }, home->path()).out,
             QStringLiteral("Posted 4 entries\n"));
    const Run run = runLedgerly({ "recurring", "remove", "1" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Removed recurring expense 1 (Gym); the entries it posted stay.\n"));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(ItemName) FROM RecurringExpense")).toString(),
             QStringLiteral("Rent"));
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry WHERE ItemName = 'Gym'")).toInt(), 2);
    QCOMPARE(runLedgerly({ "recurring" }, home->path()).out.count(QLatin1Char('\n')), 1);
}

void TestRecurringCommands::anUnknownExpenseCannotBeRemoved()
{
    QCOMPARE(add({ "Gym", "30", "Sport", "--every", "1m", "--from", "2026-01-01" }), 1);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    const Run run = runLedgerly({ "recurring", "remove", "7" }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("There is no recurring expense 7; \"recurring\" lists them.\n"));
    QCOMPARE(raw.dumpTables(), before);
}

void TestRecurringCommands::postDuePostsWhatIsDueUpToTodayAndSaysHowMany()
{
    const QDate today = QDate::currentDate();
    // Two days ago, yesterday and today are due; tomorrow is not.
    QCOMPARE(add({ "Paper", "2.40", "News", "--every", "1d", "--from", today.addDays(-2).toString(Qt::ISODate) }), 1);
    const Run run = runLedgerly({ "post-due" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Posted 3 entries\n"));

    RawDatabase raw(home->databasePath());
    QStringList stored;
    for (const QVariantList &row : raw.rows(QStringLiteral("SELECT TransactDateTime, ItemName, CategoryName, Price, "
                                                           "EnableGeoLoc FROM Entry ORDER BY SNo")))
        stored << QStringLiteral("%1 %2 %3 %4 %5")
                      .arg(row.at(0).toString(), row.at(1).toString(), row.at(2).toString(),
                           QString::number(row.at(3).toDouble(), 'f', 2), row.at(4).toString());
    QStringList expected;
    for (int back = 2; back >= 0; --back)
        expected << today.addDays(-back).toString(Qt::ISODate) + QStringLiteral("T00:00:00 Paper News 2.40 false");
    QCOMPARE(stored, expected);
    // The catalogue knows the item from its three uses.
    QCOMPARE(raw.scalar(QStringLiteral("SELECT UseFrequency FROM Items WHERE ItemName = 'Paper'")).toInt(), 3);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT NextDate FROM RecurringExpense")).toString(),
             today.addDays(1).toString(Qt::ISODate));
}

void TestRecurringCommands::postDueTwicePostsNothingTheSecondTime()
{
    QCOMPARE(add({ "Rent", "950", "Housing", "--every", "1m", "--from", "2026-01-31" }), 1);
    QCOMPARE(runLedgerly({ "post-due", "--until", "2026-03-01" }, home->path()).out,
             QStringLiteral("Posted 2 entries\n"));
    RawDatabase raw(home->databasePath());
    const QStringList after = raw.dumpTables();
    const Run again = runLedgerly({ "post-due", "--until", "2026-03-01" }, home->path());
    QCOMPARE(again.exitCode, 0);
    QCOMPARE(again.out, QStringLiteral("Posted 0 entries\n"));
    QCOMPARE(raw.dumpTables(), after);
    QCOMPARE(runLedgerly({ "post-due", "--until=2026-03-31" }, home->path()).out, QStringLiteral("Posted 1 entry\n"));
}

void TestRecurringCommands::postDueUntilADayAndWithAllPostsThoseThatAskFirst()
{
    QCOMPARE(add({ "Electricity", "80", "Bills", "--every", "1m", "--from", "2026-01-20", "--confirm" }), 1);
    QCOMPARE(add({ "Rent", "950", "Housing", "--every", "1m", "--from", "2026-01-01" }), 2);
    QCOMPARE(runLedgerly({ "post-due", "--until", "2026-02-25" }, home->path()).out,
             QStringLiteral("Posted 2 entries\n"));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry WHERE ItemName = 'Electricity'")).toInt(), 0);
    QCOMPARE(runLedgerly({ "post-due", "--all", "--until", "2026-02-25" }, home->path()).out,
             QStringLiteral("Posted 2 entries\n"));
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(substr(TransactDateTime, 1, 10)) FROM Entry WHERE "
                                       "ItemName = 'Electricity'"))
                 .toString(),
             QStringLiteral("2026-01-20,2026-02-20"));
}

void TestRecurringCommands::threeTimesPostsThreeAndIsListedAsFinished()
{
    QCOMPARE(add({ "Course", "100", "Education", "--every", "1m", "--from", "2026-01-31", "--times", "3" }), 1);
    QCOMPARE(runLedgerly({ "post-due", "--until", "2027-01-01" }, home->path()).out,
             QStringLiteral("Posted 3 entries\n"));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(substr(TransactDateTime, 1, 10)) FROM Entry")).toString(),
             QStringLiteral("2026-01-31,2026-02-28,2026-03-31"));
    QCOMPARE(runLedgerly({ "recurring" }, home->path()).out,
             QStringLiteral("1\tCourse\t100.00\tEducation\t1m\t-\tauto\t0\n"));
}

void TestRecurringCommands::postedEntriesCountInTheBudgets()
{
    QCOMPARE(add({ "Netflix", "12.99", "Streaming", "--every", "1m", "--from", "2026-01-05" }), 1);
    QCOMPARE(runLedgerly({ "budget", "set", "Streaming", "20" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "post-due", "--until", "2026-03-10" }, home->path()).exitCode, 0);
    const Run run = runLedgerly({ "budget", "--date", "2026-03-10" }, home->path());
    QCOMPARE(run.out, QStringLiteral("Streaming\tmonth\t2026-03-01\t2026-03-31\t20.00\t12.99\t7.01\t65%\n"));
}

void TestRecurringCommands::refusedValuesExitWith1AndWriteNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const QStringList rent = { "recurring", "add", "Rent" };
    const QStringList monthly = { "--every", "1m", "--from", "2026-01-01" };
    QTest::newRow("an interval of 0")
        << QStringList(rent + QStringList { "950", "Housing", "--every", "0m", "--from", "2026-01-01" })
        << "A recurring expense repeats every 1 to 99 days, weeks, months or years, not every 0.";
    QTest::newRow("an interval of 100")
        << QStringList(rent + QStringList { "950", "Housing", "--every", "100d", "--from", "2026-01-01" })
        << "A recurring expense repeats every 1 to 99 days, weeks, months or years, not every 100.";
    QTest::newRow("an amount of 0") << QStringList(rent + QStringList { "0", "Housing" } + monthly)
                                    << "0.00 is no amount: an amount is above 0 and at most 9999999.99.";
    QTest::newRow("a negative amount") << QStringList(rent + QStringList { "-5", "Housing" } + monthly)
                                       << "-5.00 is no amount: an amount is above 0 and at most 9999999.99.";
    QTest::newRow("a cent too much") << QStringList(rent + QStringList { "10000000", "Housing" } + monthly)
                                     << "10000000.00 is no amount: an amount is above 0 and at most 9999999.99.";
    QTest::newRow("three decimals") << QStringList(rent + QStringList { "9.999", "Housing" } + monthly)
                                    << "9.999 is no amount: an amount has at most two decimals.";
    QTest::newRow("no times") << QStringList(rent + QStringList { "950", "Housing", "--times", "0" } + monthly)
                              << "A recurring expense happens at least once, not 0 times.";
    QTest::newRow("no item") << QStringList(QStringList { "recurring", "add", "", "950", "Housing" } + monthly)
                             << "A recurring expense needs an item.";
    QTest::newRow("no category") << QStringList(rent + QStringList { "950", " " } + monthly)
                                 << "A recurring expense needs a category.";
}

void TestRecurringCommands::refusedValuesExitWith1AndWriteNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QCOMPARE(add({ "Gym", "30", "Sport", "--every", "1m", "--from", "2026-01-01" }), 1);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, message + QLatin1Char('\n'));
    QCOMPARE(raw.dumpTables(), before);
}

void TestRecurringCommands::valuesThatDoNotReadExitWith2AndWriteNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const QStringList rent = { "recurring", "add", "Rent", "950", "Housing" };
    const QStringList monthly = { "--every", "1m" };
    const QStringList from = { "--from", "2026-01-31" };
    QTest::newRow("an interval in another unit")
        << QStringList(rent + QStringList { "--every", "3x" } + from)
        << "--every is a count and d, w, m or y (days, weeks, months, years), such as 1m or 2w, not \"3x\".";
    QTest::newRow("an amount in words") << QStringList(QStringList { "recurring", "add", "Rent", "ten", "Housing" } +
                                                       monthly + from)
                                        << "AMOUNT is a number such as 950.00, not \"ten\".";
    QTest::newRow("an amount with a comma")
        << QStringList(QStringList { "recurring", "add", "Rent", "950,00", "Housing" } + monthly + from)
        << "AMOUNT is a number such as 950.00, not \"950,00\".";
    QTest::newRow("a day with slashes") << QStringList(rent + monthly + QStringList { "--from", "2026/01/01" })
                                        << "--from takes a day as yyyy-MM-dd, not \"2026/01/01\".";
    QTest::newRow("a day that is no day") << QStringList(rent + monthly + QStringList { "--from", "2026-02-30" })
                                          << "--from takes a day as yyyy-MM-dd, not \"2026-02-30\".";
    QTest::newRow("a last day that is no day")
        << QStringList(rent + monthly + from + QStringList { "--until", "2026-13-01" })
        << "--until takes a day as yyyy-MM-dd, not \"2026-13-01\".";
    QTest::newRow("both ends") << QStringList(rent + monthly + from +
                                              QStringList { "--until", "2026-12-31", "--times", "3" })
                               << "--until and --times do not go together: an expense ends one way.";
    QTest::newRow("an end before the start")
        << QStringList(rent + monthly + from + QStringList { "--until", "2026-01-30" }) << "--until is before --from.";
    QTest::newRow("times in words") << QStringList(rent + monthly + from + QStringList { "--times", "twelve" })
                                    << "--times takes a number of times, such as 12, not \"twelve\".";
    QTest::newRow("no interval") << QStringList(rent + from) << "recurring add needs --every, such as --every 1m.";
    QTest::newRow("no first day") << QStringList(rent + monthly)
                                  << "recurring add needs --from, the first day as yyyy-MM-dd.";
    QTest::newRow("no category") << QStringList(QStringList { "recurring", "add", "Rent", "950" } + monthly + from)
                                 << "recurring add takes ITEM AMOUNT CATEGORY.";
    QTest::newRow("an unknown option") << QStringList(rent + monthly + from + QStringList { "--weekly" })
                                       << "Unknown option 'weekly'.";
    QTest::newRow("a missing value") << QStringList(rent + from + QStringList { "--every" })
                                     << "Missing value after '--every'.";
    QTest::newRow("all with add") << QStringList(rent + monthly + from + QStringList { "--all" })
                                  << "--all goes with post-due only.";
    QTest::newRow("an unknown recurring command")
        << QStringList { "recurring", "edit", "1" } << "Unknown recurring command \"edit\".";
    QTest::newRow("remove without an ID")
        << QStringList { "recurring", "remove" } << "recurring remove takes the ID of a recurring expense.";
    QTest::newRow("remove with a name") << QStringList { "recurring", "remove", "Rent" }
                                        << "recurring remove takes the ID of a recurring expense.";
    QTest::newRow("a list with an option")
        << QStringList { "recurring", "--confirm" } << "--confirm goes with recurring add only.";
    QTest::newRow("post-due on a day with slashes") << QStringList { "post-due", "--until", "2026/01/01" }
                                                    << "--until takes a day as yyyy-MM-dd, not \"2026/01/01\".";
    QTest::newRow("post-due with a word")
        << QStringList { "post-due", "now" } << "post-due takes no words, only --until and --all.";
    QTest::newRow("post-due with an interval")
        << QStringList { "post-due", "--every", "1m" } << "--every goes with recurring add only.";
}

void TestRecurringCommands::valuesThatDoNotReadExitWith2AndWriteNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, message + QLatin1Char('\n') + tryHelp);
    // Not even the database was made.
    QCOMPARE(QDir(home->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList());
}

void TestRecurringCommands::otherCommandsRefuseTheRecurringOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("an interval on export")
        << QStringList { "export", "x.csv", "--every", "1m" } << "--every goes with recurring or post-due only.";
    QTest::newRow("all on find") << QStringList { "find", "tea", "--all" }
                                 << "--all goes with recurring or post-due only.";
}

void TestRecurringCommands::otherCommandsRefuseTheRecurringOptions()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.err, message + QLatin1Char('\n') + tryHelp);
    QVERIFY(!QFile::exists(home->databasePath()));
}

void TestRecurringCommands::helpNamesTheCommandsAndTheirOptions()
{
    const Run run = runLedgerly({ "--help" }, home->path());
    QCOMPARE(run.exitCode, 0);
    for (const char *line : { "\n  recurring     Lists the recurring expenses",
                              "\n  recurring add ITEM AMOUNT CATEGORY --every N(d|w|m|y)", "\n  recurring remove ID\n",
                              "\n  post-due [--until yyyy-MM-dd] [--all]\n", "\n  --every <interval> ",
                              "\n  --until <yyyy-MM-dd> ", "\n  --times <N> ", "\n  --confirm ", "\n  --all " })
        QVERIFY2(run.out.contains(QLatin1String(line)), line);
}

QTEST_GUILESS_MAIN(TestRecurringCommands)
#include "tst_recurringcommands.moc"
