// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The program's command line, run as a user runs it: the real binary, in a
// terminal without any display, on a home of its own.
#include "csvprofiles.h"
#include "databasemanager.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

namespace {

using Run = ProgramRun;

// Without QT_QPA_PLATFORM and without DISPLAY or WAYLAND_DISPLAY, a program
// that started its GUI would abort at once (Qt would try X11 and find no
// display): every answer here proves that none was started.
Run runLedgerly(const QStringList &arguments, const QString &home = QString())
{
    return runWithoutDisplay(QStringLiteral(LEDGERLY_PROGRAM), arguments, home);
}

const QString tryHelp = QStringLiteral("Try \"ledgerly --help\" for more information.\n");
// Two identical coffees on one day stay two entries; and a sandwich.
const QByteArray twoCoffees = "!Type:Cash\r\nD03/14/2026\r\nT-2.50\r\nMCoffee\r\nPKiosk\r\n^\r\n"
                              "D03/14/2026\r\nT-2.50\r\nMCoffee\r\nPKiosk\r\n^\r\n"
                              "D03/14/2026\r\nT-4.00\r\nMSandwich\r\nPKiosk\r\n^\r\n";

QByteArray statement(const QList<int> &fitIds)
{
    QByteArray ofx = "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\n\r\n<OFX><BANKMSGSRSV1><STMTTRNRS><STMTRS>"
                     "<BANKACCTFROM><ACCTID>12345</BANKACCTFROM><BANKTRANLIST>\r\n";
    for (const int id : fitIds)
        ofx += QStringLiteral("<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>202603%1<TRNAMT>-%2.00<FITID>T%3<NAME>Shop %3\r\n")
                   .arg(id, 2, 10, QLatin1Char('0'))
                   .arg(id)
                   .arg(id)
                   .toLatin1();
    return ofx + "</BANKTRANLIST></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>\r\n";
}

const QByteArray csvHeader = "Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n";

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void versionPrintsTheNameAndTheProjectVersion_data();
    void versionPrintsTheNameAndTheProjectVersion();
    void helpListsTheCommandsAndOptions_data();
    void helpListsTheCommandsAndOptions();
    void usageErrorsExitWith2AndTouchNothing_data();
    void usageErrorsExitWith2AndTouchNothing();

    void exportWritesEveryEntryAsCsvAndSaysHowMany();
    void exportWritesQifByTheFileName();
    void exportOnANewHomeMakesTheDatabaseAndExportsNothing();
    void anExportThatCannotBeWrittenExitsWith1();

    void importAddsTheEntriesAndSaysWhatItSkipped();
    void aBadDateOnLine7Of1000ImportsNothingAndNamesLine7();
    void aFileThatIsRefusedImportsNothing_data();
    void aFileThatIsRefusedImportsNothing();
    void dateOrderDecidesDatesTheFileLeavesOpen_data();
    void dateOrderDecidesDatesTheFileLeavesOpen();
    void anEncodingAskedForReadsTheTextInIt();
    void theSameFileTwiceAddsNothingTheSecondTime();
    void anOverlappingStatementAddsOnlyWhatIsNew();
    void allowDuplicatesImportsThemAnyway();
    void importsAreListedNewestFirst();
    void undoingAnImportRemovesExactlyItsEntriesAndForgetsThem();
    void anUnknownImportCannotBeUndone();
    void aBankCsvReadsThroughAMappingAndItsProfileIsSavedListedReusedAndRemoved();
    void aBankCsvWithoutAMappingIsRefusedNamingItsColumns();
    void anUnknownProfileIsRefused();
    void anEncodingOnlyQtKnowsReadsABankCsv();
    void anEncodingGivenWithAProfileWinsOverItsOwn();

    void backupWritesACopyThatOpensWithTheSameRows();
    void backupKeepsAnExistingFileUnlessForced();

    void anUnusableDatabaseIsReportedWithExitStatus1();

    void budgetSetListRemoveAndMonthStartSayWhatTheyDid();
    void anImportTellsEachBudgetItTakesPastAThresholdOnce();
    void budgetListsEachBudgetInItsPeriodSortedByCategory();
    void budgetWithoutBudgetsPrintsNothing();
    void budgetMoneyHasNoThousandsSeparators();
    void budgetRefusalsExitWith1AndChangeNothing_data();
    void budgetRefusalsExitWith1AndChangeNothing();
    void budgetUsageErrorsExitWith2_data();
    void budgetUsageErrorsExitWith2();
    void findPrintsTheMatchesNewestFirstAndTheirCountAndTotal_data();
    void findPrintsTheMatchesNewestFirstAndTheirCountAndTotal();
    void findFindsAnAmountToTheCent();
    void findAsCsvWritesWhatExportWritesAndTheSummaryOnStandardError();

private:
    // The home's database with two entries and a category of its own.
    void setUpDatabase();

    std::unique_ptr<TempHome> home;
};

void TestCommandLine::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
}

void TestCommandLine::cleanup()
{
    home.reset();
}

namespace {

// The month start kept in the home's settings file, as a second reader sees it.
QString keptMonthStart(const QString &home)
{
    QFile file(home + QStringLiteral("/.config/Ledgerly/Ledgerly.conf"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    for (const QByteArray &line : file.readAll().split('\n'))
        if (line.startsWith("monthStart="))
            return QString::fromLatin1(line.mid(int(qstrlen("monthStart="))));
    return QString();
}

} // namespace

void TestCommandLine::setUpDatabase()
{
    {
        DatabaseManager store(nullptr);
        QVERIFY(store.AddCategory(QStringLiteral("Pets")));
        Entry first;
        first.TransactDateTime = QDateTime(QDate(2026, 3, 1), QTime(9, 30));
        first.ItemName = QStringLiteral("Kibble, large");
        first.CategoryName = QStringLiteral("Pets");
        first.Price = 12.75f;
        first.LocationText = QStringLiteral("Pet Shop");
        first.EnableGeoLoc = true;
        first.GeoLocLongit = -3.5f;
        first.GeoLocLatit = 40.25f;
        Entry second;
        second.TransactDateTime = QDateTime(QDate(2026, 3, 2), QTime(18, 0));
        second.ItemName = QStringLiteral("Bread");
        second.CategoryName = QStringLiteral("Food");
        second.Price = 0.1f;
        second.LocationText = QStringLiteral("Bakery");
        second.GeoLocLongit = 103.0f;
        second.GeoLocLatit = 1.3f;
        QVERIFY(store.AddEntry(&first));
        QVERIFY(store.AddEntry(&second));
    }
}

void TestCommandLine::versionPrintsTheNameAndTheProjectVersion_data()
{
    QTest::addColumn<QString>("option");
    QTest::newRow("long") << QStringLiteral("--version");
    QTest::newRow("short") << QStringLiteral("-v");
}

void TestCommandLine::versionPrintsTheNameAndTheProjectVersion()
{
    QFETCH(QString, option);
    const Run run = runLedgerly({ option }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Ledgerly " LEDGERLY_PROJECT_VERSION "\n"));
    // Answering needs no database.
    QVERIFY(!QFile::exists(home->databasePath()));
}

void TestCommandLine::helpListsTheCommandsAndOptions_data()
{
    QTest::addColumn<QString>("option");
    QTest::newRow("long") << QStringLiteral("--help");
    QTest::newRow("short") << QStringLiteral("-h");
    QTest::newRow("all") << QStringLiteral("--help-all");
}

void TestCommandLine::helpListsTheCommandsAndOptions()
{
    QFETCH(QString, option);
    const Run run = runLedgerly({ option }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.startsWith(QStringLiteral("Usage: " LEDGERLY_PROGRAM " [options] [command FILE]\n")),
             qPrintable(run.out));
    QVERIFY2(run.out.contains(QLatin1String("Started without arguments, it opens its window.")), qPrintable(run.out));
    for (const QString &line :
         { QStringLiteral("Commands, on the database %1/ledgerlydatabase.db:").arg(home->path()),
           QStringLiteral("  export FILE   Writes every entry into FILE, as CSV or QIF by its name (.csv, .qif)."),
           QStringLiteral("  import FILE   Adds the entries of a CSV, QIF or OFX (.ofx, .qfx, .qbo) file; a file with any"),
           QStringLiteral("                problem adds none."),
           QStringLiteral("  backup FILE   Writes a copy of the database into FILE."),
           QStringLiteral("  import FILE --profile NAME"),
           QStringLiteral("  profiles      Lists the saved profiles of bank CSVs: the name, a tab, the mapping as given."),
           QStringLiteral("  profiles remove NAME"),
           QStringLiteral("Exit status: 0 when done, 1 when the data or a file is refused, 2 for a usage error.") })
        QVERIFY2(run.out.contains(QLatin1Char('\n') + line + QLatin1Char('\n')), qPrintable(line));
    for (const char *option :
         { "\n  -h, --help ", "\n  -v, --version ", "\n  --date-order <mdy|dmy|ymd> ", "\n  --encoding <NAME> ",
           "\n  --force ", "\n  --map <FIELD=COLUMN,...> ", "\n  --profile <NAME> ", "\n  --save-profile <NAME> ",
           "\n  --skip-lines <N> ", "\n  --date-format <FORMAT> ", "\n  --decimal <comma|point> " })
        QVERIFY2(run.out.contains(QLatin1String(option)), option);
    QVERIFY(!QFile::exists(home->databasePath()));
}

void TestCommandLine::usageErrorsExitWith2AndTouchNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown option") << QStringList { "--frobnicate" } << QStringLiteral("Unknown option 'frobnicate'.");
    QTest::newRow("unknown command") << QStringList { "frobnicate", "now" }
                                     << QStringLiteral("Unknown command \"frobnicate\".");
    QTest::newRow("a budget period on another command")
        << QStringList { "export", "x.csv", "--period", "week" } << QStringLiteral("--period goes with budget only.");
    QTest::newRow("a budget day on find")
        << QStringList { "find", "tea", "--date", "2026-11-01" } << QStringLiteral("--date goes with budget only.");
    QTest::newRow("an option alone") << QStringList { "--force" } << QStringLiteral("Nothing to do.");
    QTest::newRow("export without a file") << QStringList { "export" } << QStringLiteral("export takes one FILE.");
    QTest::newRow("import with two files")
        << QStringList { "import", "a.csv", "b.csv" } << QStringLiteral("import takes one FILE.");
    QTest::newRow("export to another format")
        << QStringList { "export", "out.xlsx" } << QStringLiteral("out.xlsx names no .csv or .qif file.");
    QTest::newRow("import of another format")
        << QStringList { "import", "bank.xlsx" }
        << QStringLiteral("bank.xlsx names no .csv, .qif, .ofx, .qfx or .qbo file.");
    QTest::newRow("date order of another kind") << QStringList { "import", "bank.qif", "--date-order", "dym" }
                                                << QStringLiteral("--date-order is mdy, dmy or ymd, not \"dym\".");
    QTest::newRow("encoding of another kind")
        << QStringList { "import", "bank.qif", "--encoding", "EBCDIC" }
        << QStringLiteral("--encoding is one of UTF-8, UTF-16LE, UTF-16BE, Windows-1252, ISO-8859-1, not \"EBCDIC\".");
    QTest::newRow("encoding with backup") << QStringList { "backup", "copy.db", "--encoding", "UTF-8" }
                                          << QStringLiteral("--encoding goes with import only.");
    QTest::newRow("date order without a value") << QStringList { "import", "bank.qif", "--date-order" }
                                                << QStringLiteral("Missing value after '--date-order'.");
    QTest::newRow("date order with export") << QStringList { "export", "out.qif", "--date-order", "dmy" }
                                            << QStringLiteral("--date-order goes with import only.");
    QTest::newRow("force with import") << QStringList { "import", "in.csv", "--force" }
                                       << QStringLiteral("--force goes with backup only.");
    QTest::newRow("find with two texts") << QStringList { "find", "tea", "coffee" }
                                         << QStringLiteral("find takes at most one TEXT.");
    QTest::newRow("find with force") << QStringList { "find", "tea", "--force" }
                                     << QStringLiteral("--force goes with backup only.");
    QTest::newRow("csv with export") << QStringList { "export", "out.csv", "--csv" }
                                     << QStringLiteral("--csv goes with find only.");
    QTest::newRow("a day without its zeros") << QStringList { "find", "--from", "2026-3-1" }
                                             << QStringLiteral("--from takes a day as yyyy-MM-dd, not \"2026-3-1\".");
    QTest::newRow("a day that is no day") << QStringList { "find", "--to", "2026-02-30" }
                                          << QStringLiteral("--to takes a day as yyyy-MM-dd, not \"2026-02-30\".");
    QTest::newRow("a day the other way round")
        << QStringList { "find", "--from", "01.03.2026" }
        << QStringLiteral("--from takes a day as yyyy-MM-dd, not \"01.03.2026\".");
    QTest::newRow("an amount that is no number")
        << QStringList { "find", "--min", "ten" } << QStringLiteral("--min takes an amount such as 49.90, not \"ten\".");
    QTest::newRow("an amount with a comma")
        << QStringList { "find", "--max", "49,90" } << QStringLiteral("--max takes an amount such as 49.90, not \"49,90\".");
    QTest::newRow("min above max") << QStringList { "find", "--min", "20", "--max", "19.99" }
                                   << QStringLiteral("--min is above --max.");
    QTest::newRow("from after to") << QStringList { "find", "--from", "2026-03-02", "--to", "2026-03-01" }
                                   << QStringLiteral("--from is after --to.");
    QTest::newRow("a mapping without a date")
        << QStringList { "import", "bank.csv", "--map", "item=Payee,amount=Amount" }
        << QStringLiteral("--map needs a date column: date=NAME or date=NUMBER.");
    QTest::newRow("a mapping of an unknown field")
        << QStringList { "import", "bank.csv", "--map", "date=1,payee=2" }
        << QStringLiteral("--map knows the fields date, item, place, category, amount, debit, credit and direction, "
                          "not \"payee\".");
    QTest::newRow("a delimiter without a mapping") << QStringList { "import", "bank.csv", "--delimiter", ";" }
                                                   << QStringLiteral("--delimiter goes with import --map only.");
    QTest::newRow("a delimiter of another kind")
        << QStringList { "import", "bank.csv", "--map", "date=1,item=2,amount=3", "--delimiter", ":" }
        << QStringLiteral("--delimiter is ',', ';', tab or '|', not \":\".");
    QTest::newRow("a mapping and a profile")
        << QStringList { "import", "bank.csv", "--map", "date=1,item=2,amount=3", "--profile", "Giro" }
        << QStringLiteral("--map and --profile exclude each other.");
    QTest::newRow("a decimal with a profile") << QStringList { "import", "bank.csv", "--profile", "Giro", "--decimal", "comma" }
                                              << QStringLiteral("--decimal goes with --map, not --profile.");
    QTest::newRow("a mapping with export") << QStringList { "export", "out.csv", "--map", "date=1" }
                                           << QStringLiteral("--map goes with import only.");
    QTest::newRow("a profile name with a tab")
        << QStringList { "import", "bank.csv", "--map", "date=1,item=2,amount=3", "--save-profile", "a\tb" }
        << QStringLiteral("--save-profile takes a NAME without tabs or line breaks.");
    QTest::newRow("profiles with a file") << QStringList { "profiles", "bank.csv" }
                                          << QStringLiteral("profiles takes nothing, or remove and the NAME of a profile.");
    QTest::newRow("an encoding Qt does not know for a mapping")
        << QStringList { "import", "bank.csv", "--map", "date=1,item=2,amount=3", "--encoding", "EBCDIC" }
        << QStringLiteral("--encoding names no encoding Qt knows: \"EBCDIC\".");
}

void TestCommandLine::usageErrorsExitWith2AndTouchNothing()
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

void TestCommandLine::exportWritesEveryEntryAsCsvAndSaysHowMany()
{
    setUpDatabase();
    const QString file = home->filePath(QStringLiteral("out.csv"));
    const Run run = runLedgerly({ QStringLiteral("export"), file }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Exported 2 entries to %1\n").arg(file));
    QCOMPARE(readFile(file),
             csvHeader +
                 "2026-03-02T18:00:00,Bread,Food,0.1,Bakery,false,103,1.3\r\n"
                 "2026-03-01T09:30:00,\"Kibble, large\",Pets,12.75,Pet Shop,true,-3.5,40.25\r\n");
}

void TestCommandLine::exportWritesQifByTheFileName()
{
    setUpDatabase();
    // A name relative to the current directory is reported as given.
    const QString previous = QDir::currentPath();
    QDir::setCurrent(home->path());
    const Run run = runLedgerly({ QStringLiteral("export"), QStringLiteral("Out.QIF") }, home->path());
    QDir::setCurrent(previous);
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Exported 2 entries to Out.QIF\n"));
    QCOMPARE(readFile(home->filePath(QStringLiteral("Out.QIF"))),
             QByteArray("!Type:Cash\r\n"
                        "D03/02/2026\r\nT-0.1\r\nPBakery\r\nMBread\r\nLFood\r\n^\r\n"
                        "D03/01/2026\r\nT-12.75\r\nPPet Shop\r\nMKibble, large\r\nLPets\r\n^\r\n"));
}

void TestCommandLine::exportOnANewHomeMakesTheDatabaseAndExportsNothing()
{
    const QString file = home->filePath(QStringLiteral("out.csv"));
    const Run run = runLedgerly({ QStringLiteral("export"), file }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Exported 0 entries to %1\n").arg(file));
    QCOMPARE(readFile(file), csvHeader);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Category")).toInt(), 37);
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Mode")).toInt(), 3);
}

void TestCommandLine::anExportThatCannotBeWrittenExitsWith1()
{
    setUpDatabase();
    const QString file = home->filePath(QStringLiteral("missing/out.csv"));
    const Run run = runLedgerly({ QStringLiteral("export"), file }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QVERIFY2(run.err.startsWith(QStringLiteral("Nothing was exported: %1 cannot be written: ").arg(file)),
             qPrintable(run.err));
    QVERIFY(run.err.endsWith(QLatin1Char('\n')));
    QCOMPARE(run.err.count(QLatin1Char('\n')), 1);
}

void TestCommandLine::importAddsTheEntriesAndSaysWhatItSkipped()
{
    setUpDatabase();
    const QString file = home->filePath(QStringLiteral("bank.qif"));
    QVERIFY(writeFile(file,
                      "!Type:Bank\r\nD03/15/2026\r\nT-1,250.00\r\nPGarage\r\nMTyres\r\nLAuto:Tyres\r\n^\r\n"
                      "D03/16/2026\r\nT2,000.00\r\nPEmployer\r\n^\r\n"
                      "D03/17/2026\r\nT-300\r\nL[Savings]\r\n^\r\n"
                      "D03/18/2026\r\nT-4.5\r\nPCafe\r\nLFood\r\n^\r\n"));
    const Run run = runLedgerly({ QStringLiteral("import"), file }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Imported 2 entries from %1; skipped 2 (income 1, transfers 1)\n").arg(file));

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("select ItemName, CategoryName, TransactDateTime, Price, LocationText from Entry "
                                     "where SNo > 2 order by SNo")),
             QList<QVariantList>({ { QStringLiteral("Tyres"), QStringLiteral("Auto:Tyres"),
                                     QStringLiteral("2026-03-15T00:00:00"), 1250.0, QStringLiteral("Garage") },
                                   { QStringLiteral("Cafe"), QStringLiteral("Food"),
                                     QStringLiteral("2026-03-18T00:00:00"), 4.5, QStringLiteral("Cafe") } }));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Category where CategoryName = 'Auto:Tyres'")).toInt(), 1);
}

void TestCommandLine::aBadDateOnLine7Of1000ImportsNothingAndNamesLine7()
{
    setUpDatabase();
    QByteArray bytes = csvHeader;
    for (int line = 2; line <= 1000; ++line) {
        const QByteArray date =
            line == 7 ? QByteArray("2026-02-30") : QDate(2024, 1, 1).addDays(line).toString(Qt::ISODate).toLatin1();
        bytes += date + ",Item " + QByteArray::number(line % 10) + ",Food,1.5,Shop,false,0,0\r\n";
    }
    const QString file = home->filePath(QStringLiteral("thousand.csv"));
    QVERIFY(writeFile(file, bytes));
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();

    const Run run = runLedgerly({ QStringLiteral("import"), file }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err,
             QStringLiteral("%1:7: the date \"2026-02-30\" is not of the form yyyy-MM-ddTHH:mm:ss\n"
                            "Nothing was imported from %1.\n")
                 .arg(file));
    QCOMPARE(raw.dumpTables(), before);
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 2);
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Items")).toInt(), 2);
}

void TestCommandLine::aFileThatIsRefusedImportsNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("problems");
    QTest::newRow("empty CSV") << QStringLiteral("empty.csv") << QByteArray()
                               << QStringLiteral("%1:1: the file is empty; its first line must name the columns\n");
    QTest::newRow("empty QIF") << QStringLiteral("empty.qif") << QByteArray()
                               << QStringLiteral("%1:1: the file is empty\n");
    QTest::newRow("truncated CSV") << QStringLiteral("cut.csv")
                                   << QByteArray(csvHeader + "2026-01-01,A,Food,1,,false,0,0\r\n2026-01-02,\"B")
                                   << QStringLiteral("%1:3: a field in double quotes starts here and never ends\n");
    QTest::newRow("truncated QIF") << QStringLiteral("cut.qif")
                                   << QByteArray("!Type:Bank\r\nD01/02/2026\r\nT-1\r\n^\r\nD01/03/2026\r\nT-")
                                   << QStringLiteral("%1:6: the amount \"-\" is not a number\n");
    QByteArray binary(3000, '\0');
    for (int i = 1; i < binary.size(); ++i)
        binary[i] = char((i * 37 + 11) % 256);
    QTest::newRow("binary") << QStringLiteral("photo.csv") << binary
                            << QStringLiteral("%1:1: a NUL byte: this is not a text file\n");
    QTest::newRow("CSV without Amount") << QStringLiteral("noamount.csv")
                                        << QByteArray("Date,Item,Category,Place\r\n2026-01-01,A,Food,Shop\r\n")
                                        << QStringLiteral("%1:1: the first line names no Amount column\n");
    QByteArray many = csvHeader;
    for (int line = 2; line <= 31; ++line)
        many += "2026-01-01,A,Food,x,,false,0,0\r\n";
    QString manyProblems;
    for (int line = 2; line <= 21; ++line)
        manyProblems += QStringLiteral("%1:") + QString::number(line) +
            QStringLiteral(": the amount \"x\" is not a number Ledgerly can keep\n");
    manyProblems += QStringLiteral("and 10 more problems\n");
    QTest::newRow("thirty bad lines") << QStringLiteral("many.csv") << many << manyProblems;
}

void TestCommandLine::aFileThatIsRefusedImportsNothing()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, problems);
    setUpDatabase();
    const QString file = home->filePath(name);
    QVERIFY(writeFile(file, bytes));
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();

    const Run run = runLedgerly({ QStringLiteral("import"), file }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err,
             QString(problems).replace(QLatin1String("%1"), file) +
                 QStringLiteral("Nothing was imported from %1.\n").arg(file));
    QCOMPARE(raw.dumpTables(), before);
}

void TestCommandLine::dateOrderDecidesDatesTheFileLeavesOpen_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("stored");
    QTest::newRow("month first by default") << QStringList() << QStringLiteral("2026-03-04T00:00:00");
    QTest::newRow("mdy") << QStringList { "--date-order", "mdy" } << QStringLiteral("2026-03-04T00:00:00");
    QTest::newRow("dmy") << QStringList { "--date-order", "dmy" } << QStringLiteral("2026-04-03T00:00:00");
    QTest::newRow("dmy, written with =") << QStringList { "--date-order=dmy" } << QStringLiteral("2026-04-03T00:00:00");
    QTest::newRow("ymd") << QStringList { "--date-order", "ymd" } << QStringLiteral("2026-03-04T00:00:00");
}

void TestCommandLine::dateOrderDecidesDatesTheFileLeavesOpen()
{
    QFETCH(QStringList, options);
    QFETCH(QString, stored);
    const QString file = home->filePath(QStringLiteral("open.qif"));
    // Year first, 26/03/04 is the same day as 03/04/2026 month first.
    const QByteArray date = options.contains(QLatin1String("ymd")) ? "26/03/04" : "03/04/2026";
    QVERIFY(writeFile(file, "!Type:Cash\r\nD" + date + "\r\nT-2\r\nMTea\r\nLDrinks\r\n^\r\n"));
    const Run run = runLedgerly(QStringList { QStringLiteral("import"), file } + options, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Imported 1 entry from %1; skipped 0\n").arg(file));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select TransactDateTime from Entry")).toString(), stored);
}

void TestCommandLine::anEncodingAskedForReadsTheTextInIt()
{
    const QString file = home->filePath(QStringLiteral("bank.qif"));
    QVERIFY(writeFile(file, "!Type:Bank\r\nD03/04/2026\r\nT-2\r\nPCaf\xC3\xA9\r\n^\r\n"));
    const Run run = runLedgerly({ QStringLiteral("import"), file, QStringLiteral("--encoding"), QStringLiteral("cp1252") },
                                home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select LocationText from Entry")).toString(), QStringLiteral("CafÃ©"));
}

void TestCommandLine::theSameFileTwiceAddsNothingTheSecondTime()
{
    const QString file = home->filePath(QStringLiteral("cash.qif"));
    QVERIFY(writeFile(file, twoCoffees));
    const Run first = runLedgerly({ QStringLiteral("import"), file }, home->path());
    QCOMPARE(first.err, QString());
    QCOMPARE(first.out, QStringLiteral("Imported 3 entries from %1; skipped 0\n").arg(file));
    const Run second = runLedgerly({ QStringLiteral("import"), file }, home->path());
    QCOMPARE(second.err, QString());
    QCOMPARE(second.exitCode, 0);
    QCOMPARE(second.out, QStringLiteral("Imported 0 entries from %1; skipped 3 (already imported 3)\n").arg(file));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry where ItemName = 'Coffee'")).toInt(), 2);
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 3);
    // Only the import that wrote entries is on record.
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from ImportLog")).toInt(), 1);
}

void TestCommandLine::anOverlappingStatementAddsOnlyWhatIsNew()
{
    const QString march = home->filePath(QStringLiteral("march.ofx"));
    const QString april = home->filePath(QStringLiteral("april.qfx"));
    QVERIFY(writeFile(march, statement({ 1, 2, 3 })));
    QVERIFY(writeFile(april, statement({ 3, 4 })));
    QCOMPARE(runLedgerly({ QStringLiteral("import"), march }, home->path()).out,
             QStringLiteral("Imported 3 entries from %1; skipped 0\n").arg(march));
    const Run run = runLedgerly({ QStringLiteral("import"), april }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QStringLiteral("Imported 1 entry from %1; skipped 1 (already imported 1)\n").arg(april));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(QStringLiteral("select LocationText, Price from Entry order by SNo")),
             QList<QVariantList>({ { QStringLiteral("Shop 1"), 1.0 },
                                   { QStringLiteral("Shop 2"), 2.0 },
                                   { QStringLiteral("Shop 3"), 3.0 },
                                   { QStringLiteral("Shop 4"), 4.0 } }));
}

void TestCommandLine::allowDuplicatesImportsThemAnyway()
{
    const QString file = home->filePath(QStringLiteral("cash.qif"));
    QVERIFY(writeFile(file, twoCoffees));
    QCOMPARE(runLedgerly({ QStringLiteral("import"), file }, home->path()).exitCode, 0);
    const Run run = runLedgerly({ QStringLiteral("import"), file, QStringLiteral("--allow-duplicates") }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QStringLiteral("Imported 3 entries from %1; skipped 0\n").arg(file));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 6);
}

void TestCommandLine::importsAreListedNewestFirst()
{
    const QString cash = home->filePath(QStringLiteral("cash.qif"));
    const QString bank = home->filePath(QStringLiteral("bank.ofx"));
    QVERIFY(writeFile(cash, twoCoffees));
    QVERIFY(writeFile(bank, statement({ 7 })));
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    QCOMPARE(runLedgerly({ QStringLiteral("import"), cash }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ QStringLiteral("import"), bank }, home->path()).exitCode, 0);
    const QDateTime after = QDateTime::currentDateTime().addSecs(1);
    const Run run = runLedgerly({ QStringLiteral("imports") }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2);
    const QStringList newest = lines.at(0).split(QLatin1Char('\t'));
    const QStringList oldest = lines.at(1).split(QLatin1Char('\t'));
    QCOMPARE(newest.size(), 4);
    QCOMPARE(newest.at(0), QStringLiteral("2"));
    QCOMPARE(newest.at(2), QStringLiteral("1 entry"));
    QCOMPARE(newest.at(3), QFileInfo(bank).absoluteFilePath());
    QCOMPARE(oldest.at(0), QStringLiteral("1"));
    QCOMPARE(oldest.at(2), QStringLiteral("3 entries"));
    QCOMPARE(oldest.at(3), cash);
    for (const QStringList &line : { newest, oldest }) {
        const QDateTime when = QDateTime::fromString(line.at(1), QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
        QVERIFY2(when >= before.addMSecs(-before.time().msec()) && when <= after, qPrintable(line.at(1)));
    }
}

void TestCommandLine::undoingAnImportRemovesExactlyItsEntriesAndForgetsThem()
{
    setUpDatabase();
    const QString cash = home->filePath(QStringLiteral("cash.qif"));
    const QString bank = home->filePath(QStringLiteral("bank.ofx"));
    QVERIFY(writeFile(cash, twoCoffees));
    QVERIFY(writeFile(bank, statement({ 7 })));
    QCOMPARE(runLedgerly({ QStringLiteral("import"), cash }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ QStringLiteral("import"), bank }, home->path()).exitCode, 0);
    QStringList entriesBefore;
    QStringList catalogueBefore;
    {
        RawDatabase raw(home->databasePath());
        for (const QVariantList &row : raw.rows(QStringLiteral("select ItemName from Entry order by SNo")))
            entriesBefore.append(row.at(0).toString());
        for (const QVariantList &row :
             raw.rows(QStringLiteral("select ItemName, UseFrequency from Items order by SNo")))
            catalogueBefore.append(row.at(0).toString() + QLatin1Char('=') + row.at(1).toString());
    }

    const Run run = runLedgerly({ QStringLiteral("imports"), QStringLiteral("undo"), QStringLiteral("1") },
                                home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Removed 3 entries of import 1\n"));
    {
        RawDatabase raw(home->databasePath());
        QStringList entriesAfter;
        for (const QVariantList &row : raw.rows(QStringLiteral("select ItemName from Entry order by SNo")))
            entriesAfter.append(row.at(0).toString());
        QStringList expected = entriesBefore;
        expected.removeAll(QStringLiteral("Coffee"));
        expected.removeAll(QStringLiteral("Sandwich"));
        QCOMPARE(entriesAfter, expected);
        QCOMPARE(entriesAfter.size(), entriesBefore.size() - 3);
        // The catalogue keeps its counts, as deleting on the options page does.
        QStringList catalogueAfter;
        for (const QVariantList &row :
             raw.rows(QStringLiteral("select ItemName, UseFrequency from Items order by SNo")))
            catalogueAfter.append(row.at(0).toString() + QLatin1Char('=') + row.at(1).toString());
        QCOMPARE(catalogueAfter, catalogueBefore);
        QCOMPARE(raw.scalar(QStringLiteral("select count(*) from ImportedEntry where ImportSNo = 1")).toInt(), 0);
        QCOMPARE(raw.scalar(QStringLiteral("select count(*) from ImportedEntry where ImportSNo = 2")).toInt(), 1);
    }
    const Run listed = runLedgerly({ QStringLiteral("imports") }, home->path());
    QVERIFY2(listed.out.startsWith(QLatin1String("2\t")) && listed.out.count(QLatin1Char('\n')) == 1,
             qPrintable(listed.out));
    // Forgotten: the file imports again, whole.
    QCOMPARE(runLedgerly({ QStringLiteral("import"), cash }, home->path()).out,
             QStringLiteral("Imported 3 entries from %1; skipped 0\n").arg(cash));
    const Run single = runLedgerly({ QStringLiteral("imports"), QStringLiteral("undo"), QStringLiteral("2") },
                                   home->path());
    QCOMPARE(single.out, QStringLiteral("Removed 1 entry of import 2\n"));
}

void TestCommandLine::anUnknownImportCannotBeUndone()
{
    setUpDatabase();
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    const Run run = runLedgerly({ QStringLiteral("imports"), QStringLiteral("undo"), QStringLiteral("42") },
                                home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("There is no import 42; \"imports\" lists them.\n"));
    QCOMPARE(raw.dumpTables(), before);
    const Run usage = runLedgerly({ QStringLiteral("imports"), QStringLiteral("undo"), QStringLiteral("x") },
                                  home->path());
    QCOMPARE(usage.exitCode, 2);
}

void TestCommandLine::aBankCsvReadsThroughAMappingAndItsProfileIsSavedListedReusedAndRemoved()
{
    // A German bank's export: a title line, ';', a decimal comma, day-first
    // dotted dates, a closing balance.
    const QByteArray march = "Umsätze Girokonto;;;\n"
                             "Buchungstag;Verwendungszweck;Beguenstigter/Zahlungspflichtiger;Betrag\n"
                             "02.03.26;Miete März;Hausverwaltung;-850,00\n"
                             "03.03.26;Lohn;Arbeitgeber GmbH;2.500,00\n"
                             "05.03.26;REWE SAGT DANKE 4711;REWE;-23,45\n"
                             "Kontostand;;;1.626,55\n";
    const QString file = home->filePath(QStringLiteral("umsatz-maerz.csv"));
    QVERIFY(writeFile(file, march));
    const QString map = QStringLiteral("date=Buchungstag,item=Verwendungszweck,place=Beguenstigter/Zahlungspflichtiger,"
                                       "amount=Betrag");
    const Run first = runLedgerly({ QStringLiteral("import"), file, QStringLiteral("--map"), map,
                                    QStringLiteral("--delimiter"), QStringLiteral(";"), QStringLiteral("--decimal"),
                                    QStringLiteral("comma"), QStringLiteral("--save-profile"), QStringLiteral("Giro") },
                                  home->path());
    QCOMPARE(first.err, QString());
    QCOMPARE(first.exitCode, 0);
    QCOMPARE(first.out, QStringLiteral("Imported 2 entries from %1; skipped 2 (income 1, not transactions 1)\n"
                                       "Saved the mapping as the profile Giro\n")
                            .arg(file));
    {
        RawDatabase raw(home->databasePath());
        QCOMPARE(raw.rows(QStringLiteral("select ItemName, CategoryName, TransactDateTime, Price, LocationText from "
                                         "Entry order by SNo")),
                 QList<QVariantList>({ { QStringLiteral("Miete März"), QStringLiteral("Others"),
                                         QStringLiteral("2026-03-02T00:00:00"), 850.0, QStringLiteral("Hausverwaltung") },
                                       { QStringLiteral("REWE SAGT DANKE 4711"), QStringLiteral("Others"),
                                         QStringLiteral("2026-03-05T00:00:00"), double(23.45f), QStringLiteral("REWE") } }));
    }

    const QString mappingText =
        QStringLiteral("--map date=Buchungstag,item=Verwendungszweck,place=Beguenstigter/Zahlungspflichtiger,"
                       "amount=Betrag --delimiter ';' --decimal comma");
    const Run listed = runLedgerly({ QStringLiteral("profiles") }, home->path());
    QCOMPARE(listed.err, QString());
    QCOMPARE(listed.exitCode, 0);
    QCOMPARE(listed.out, QStringLiteral("Giro\t") + mappingText + QLatin1Char('\n'));

    // Next month, by the profile.
    const QString april = home->filePath(QStringLiteral("umsatz-april.csv"));
    QVERIFY(writeFile(april, "Buchungstag;Verwendungszweck;Beguenstigter/Zahlungspflichtiger;Betrag\n"
                             "01.04.26;Miete April;Hausverwaltung;-850,00\n"));
    const Run reused = runLedgerly({ QStringLiteral("import"), april, QStringLiteral("--profile"), QStringLiteral("Giro") },
                                   home->path());
    QCOMPARE(reused.err, QString());
    QCOMPARE(reused.exitCode, 0);
    QCOMPARE(reused.out, QStringLiteral("Imported 1 entry from %1; skipped 0\n").arg(april));
    {
        RawDatabase raw(home->databasePath());
        QCOMPARE(raw.scalar(QStringLiteral("select group_concat(ItemName, '|') from Entry")).toString(),
                 QStringLiteral("Miete März|REWE SAGT DANKE 4711|Miete April"));
    }

    const Run removed = runLedgerly({ QStringLiteral("profiles"), QStringLiteral("remove"), QStringLiteral("Giro") },
                                    home->path());
    QCOMPARE(removed.err, QString());
    QCOMPARE(removed.exitCode, 0);
    QCOMPARE(removed.out, QStringLiteral("Removed the profile Giro\n"));
    QCOMPARE(runLedgerly({ QStringLiteral("profiles") }, home->path()).out, QString());
    const Run again = runLedgerly({ QStringLiteral("profiles"), QStringLiteral("remove"), QStringLiteral("Giro") },
                                  home->path());
    QCOMPARE(again.exitCode, 1);
    QCOMPARE(again.err, QStringLiteral("There is no profile Giro; \"profiles\" lists them.\n"));
}

void TestCommandLine::aBankCsvWithoutAMappingIsRefusedNamingItsColumns()
{
    const QString file = home->filePath(QStringLiteral("bank.csv"));
    QVERIFY(writeFile(file, "Date,Payee,Amount\n2026-03-01,Shop,-1.00\n"));
    const Run run = runLedgerly({ QStringLiteral("import"), file }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("%1: the columns are not Ledgerly's; map them with --map (columns: Date, Payee, "
                                     "Amount)\nNothing was imported from %1.\n")
                          .arg(file));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 0);
}

void TestCommandLine::anUnknownProfileIsRefused()
{
    const QString file = home->filePath(QStringLiteral("bank.csv"));
    QVERIFY(writeFile(file, "Date,Payee,Amount\n2026-03-01,Shop,-1.00\n"));
    const Run run = runLedgerly({ QStringLiteral("import"), file, QStringLiteral("--profile"), QStringLiteral("Visa") },
                                home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("There is no profile Visa; \"profiles\" lists them.\n"));
}

void TestCommandLine::anEncodingOnlyQtKnowsReadsABankCsv()
{
    // "č" is 0xE8 in Windows-1250, which Windows-1252 would read as "è".
    const QString file = home->filePath(QStringLiteral("pohyby.csv"));
    QVERIFY(writeFile(file, "Datum;Protistrana;Castka\n27.05.2018;\x8akoda \xe8" "erpadlo;-1,00\n"));
    const Run run = runLedgerly({ QStringLiteral("import"), file, QStringLiteral("--map"),
                                  QStringLiteral("date=Datum,item=Protistrana,amount=Castka"), QStringLiteral("--encoding"),
                                  QStringLiteral("windows-1250") },
                                home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select ItemName from Entry")).toString(), QStringLiteral("Škoda čerpadlo"));
}

void TestCommandLine::anEncodingGivenWithAProfileWinsOverItsOwn()
{
    const QString file = home->filePath(QStringLiteral("pohyby.csv"));
    QVERIFY(writeFile(file, "Datum;Protistrana;Castka\n27.05.2018;\xe8" "aj;-1,00\n"));
    {
        DatabaseManager store(nullptr);
        QVERIFY(CsvProfiles(store).save(QStringLiteral("Banka"),
                                        QStringLiteral("--map date=Datum,item=Protistrana,amount=Castka")));
    }
    const Run run = runLedgerly({ QStringLiteral("import"), file, QStringLiteral("--profile"), QStringLiteral("Banka"),
                                  QStringLiteral("--encoding"), QStringLiteral("windows-1250") },
                                home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select ItemName from Entry")).toString(), QStringLiteral("čaj"));
    // The profile itself is as it was.
    QCOMPARE(raw.scalar(QStringLiteral("select Mapping from CsvProfile")).toString(),
             QStringLiteral("--map date=Datum,item=Protistrana,amount=Castka"));
}

void TestCommandLine::backupWritesACopyThatOpensWithTheSameRows()
{
    setUpDatabase();
    const QString file = home->filePath(QStringLiteral("copy.db"));
    const Run run = runLedgerly({ QStringLiteral("backup"), file }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Backed up %1 to %2\n").arg(home->databasePath(), file));
    RawDatabase copy(file);
    QCOMPARE(copy.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
    QCOMPARE(copy.dumpTables(), RawDatabase(home->databasePath()).dumpTables());
    QCOMPARE(copy.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 2);
}

void TestCommandLine::backupKeepsAnExistingFileUnlessForced()
{
    setUpDatabase();
    const QString file = home->filePath(QStringLiteral("copy.db"));
    QVERIFY(writeFile(file, "last week's copy"));
    Run run = runLedgerly({ QStringLiteral("backup"), file }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("%1 already exists; add --force to replace it.\n").arg(file));
    QCOMPARE(readFile(file), QByteArray("last week's copy"));

    run = runLedgerly({ QStringLiteral("backup"), QStringLiteral("--force"), file }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Backed up %1 to %2\n").arg(home->databasePath(), file));
    QCOMPARE(RawDatabase(file).dumpTables(), RawDatabase(home->databasePath()).dumpTables());

    // The database itself is no place for a copy, --force or not.
    const QByteArray database = readFile(home->databasePath());
    run = runLedgerly({ QStringLiteral("backup"), QStringLiteral("--force"), home->databasePath() }, home->path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.err, QStringLiteral("No backup was written: %1 is the database itself\n").arg(home->databasePath()));
    QCOMPARE(readFile(home->databasePath()), database);
}

void TestCommandLine::anUnusableDatabaseIsReportedWithExitStatus1()
{
    QByteArray noise(8192, '\0');
    for (int i = 0; i < noise.size(); ++i)
        noise[i] = char((i * 7919 + 13) % 251);
    QVERIFY(writeFile(home->databasePath(), noise));
    const QString file = home->filePath(QStringLiteral("out.csv"));
    for (const QString &command : { QStringLiteral("export"), QStringLiteral("import"), QStringLiteral("backup") }) {
        const Run run = runLedgerly({ command, file }, home->path());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out, QString());
        QVERIFY2(run.err.startsWith(QStringLiteral("The database %1 cannot be opened: ").arg(home->databasePath())),
                 qPrintable(run.err));
        QVERIFY2(run.err.contains(QStringLiteral("file is not a database")), qPrintable(run.err));
        QCOMPARE(run.err.count(QLatin1Char('\n')), 1);
        QCOMPARE(readFile(home->databasePath()), noise);
        QVERIFY(!QFile::exists(file));
    }
}

void TestCommandLine::anImportTellsEachBudgetItTakesPastAThresholdOnce()
{
    setUpDatabase();
    QCOMPARE(runLedgerly({ "budget", "set", "Groceries", "100" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "budget", "set", "Phone", "50", "--period", "week" }, home->path()).exitCode, 0);
    // Entries of today, so in the periods that hold today.
    const QByteArray today = QDate::currentDate().toString(Qt::ISODate).toLatin1();
    const auto record = [&today](const char *amount, const char *payee, const char *category) {
        return "D" + today + "\nT" + amount + "\nP" + payee + "\nL" + category + "\n^\n";
    };

    // 30 + 50 of 100 is 80 %: amber, told once; the phone's 10 of 50 is not.
    const QString first = home->filePath(QStringLiteral("first.qif"));
    QVERIFY(writeFile(first, "!Type:Bank\n" + record("-30.00", "Market", "Groceries") +
                                 record("-50.00", "Bakery", "Groceries") + record("-10.00", "Carrier", "Phone")));
    Run run = runLedgerly({ QStringLiteral("import"), first }, home->path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Imported 3 entries from %1; skipped 0\n"
                                     "Budget: Groceries: 80.00 of 100.00 this month (80 %)\n")
                          .arg(first));

    // Groceries stay amber (85 %): nothing more; the phone goes from 20 %
    // to 110 % of its week: red, told.
    const QString second = home->filePath(QStringLiteral("second.qif"));
    QVERIFY(writeFile(second, "!Type:Bank\n" + record("-5.00", "Market", "Groceries") +
                                  record("-45.00", "Shop", "Phone")));
    run = runLedgerly({ QStringLiteral("import"), second }, home->path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Imported 2 entries from %1; skipped 0\n"
                                     "Budget: Phone: 55.00 of 50.00 this week (110 %)\n")
                          .arg(second));
}

void TestCommandLine::budgetSetListRemoveAndMonthStartSayWhatTheyDid()
{
    setUpDatabase();
    Run run = runLedgerly({ "budget", "set", "Food", "400" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QStringLiteral("Food: 400.00 a month\n"));
    QCOMPARE(run.exitCode, 0);
    run = runLedgerly({ "budget", "set", "Pets", "20.5", "--period", "week" }, home->path());
    QCOMPARE(run.out, QStringLiteral("Pets: 20.50 a week\n"));
    QCOMPARE(run.exitCode, 0);
    run = runLedgerly({ "budget", "set", "Food", "1200", "--period=year" }, home->path());
    QCOMPARE(run.out, QStringLiteral("Food: 1200.00 a year\n"));
    {
        RawDatabase raw(home->databasePath());
        QCOMPARE(raw.rows(QStringLiteral("SELECT CategoryName, Amount, Period FROM Budget ORDER BY CategoryName")),
                 QList<QVariantList>({ { QStringLiteral("Food"), 1200.0, QStringLiteral("year") },
                                       { QStringLiteral("Pets"), 20.5, QStringLiteral("week") } }));
    }

    run = runLedgerly({ "budget", "month-start", "25" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QStringLiteral("Budget months start on day 25.\n"));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(keptMonthStart(home->path()), QStringLiteral("25"));

    run = runLedgerly({ "budget", "remove", "Food" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QStringLiteral("Food has no budget now.\n"));
    QCOMPARE(run.exitCode, 0);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(CategoryName) FROM Budget")).toString(),
             QStringLiteral("Pets"));
}

void TestCommandLine::budgetListsEachBudgetInItsPeriodSortedByCategory()
{
    {
        DatabaseManager store(nullptr);
        QVERIFY(store.AddCategory(QStringLiteral("Pets")));
    }
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry("Groceries", "Food", QDateTime(QDate(2026, 10, 25), QTime(0, 0)), 400));
        QVERIFY(raw.insertEntry("Bread", "Food", QDateTime(QDate(2026, 11, 24), QTime(23, 59, 59)), 12.5));
        QVERIFY(raw.insertEntry("Old", "Food", QDateTime(QDate(2026, 10, 24), QTime(12, 0)), 999));
        QVERIFY(raw.insertEntry("Kibble", "Pets", QDateTime(QDate(2026, 11, 23), QTime(12, 0)), 7.25));
        QVERIFY(raw.insertEntry("Toy", "Pets", QDateTime(QDate(2026, 11, 22), QTime(12, 0)), 50));
    }
    QCOMPARE(runLedgerly({ "budget", "month-start", "25" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "budget", "set", "Pets", "20", "--period", "week" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "budget", "set", "Food", "400" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "budget", "set", "Drinks", "30" }, home->path()).exitCode, 0);

    // Tuesday 24 November 2026: Food's month runs from 25 October, Pets'
    // week from Monday 23 November.
    const Run run = runLedgerly({ "budget", "--date", "2026-11-24" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Drinks\tmonth\t2026-10-25\t2026-11-24\t30.00\t0.00\t30.00\t0%\n"
                                     "Food\tmonth\t2026-10-25\t2026-11-24\t400.00\t412.50\t-12.50\t103%\n"
                                     "Pets\tweek\t2026-11-23\t2026-11-29\t20.00\t7.25\t12.75\t36%\n"));
    // The next day opens Food's next month.
    const Run next = runLedgerly({ "budget", "--date=2026-11-25" }, home->path());
    QVERIFY2(next.out.contains(QStringLiteral("Food\tmonth\t2026-11-25\t2026-12-24\t400.00\t0.00\t400.00\t0%\n")),
             qPrintable(next.out));
}

void TestCommandLine::budgetWithoutBudgetsPrintsNothing()
{
    setUpDatabase();
    const Run run = runLedgerly({ "budget" }, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.out, QString());
    QCOMPARE(run.exitCode, 0);
}

void TestCommandLine::budgetMoneyHasNoThousandsSeparators()
{
    {
        DatabaseManager store(nullptr);
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry("Flat", "Food", QDateTime(QDate(2026, 3, 10), QTime(12, 0)), 500000.5));
    }
    QCOMPARE(runLedgerly({ "budget", "set", "Food", "1000001" }, home->path()).exitCode, 0);
    const Run run = runLedgerly({ "budget", "--date", "2026-03-31" }, home->path());
    QCOMPARE(run.out, QStringLiteral("Food\tmonth\t2026-03-01\t2026-03-31\t1000001.00\t500000.50\t500000.50\t50%\n"));
}

void TestCommandLine::budgetRefusalsExitWith1AndChangeNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown category") << QStringList { "budget", "set", "Yachts", "400" }
                                      << QStringLiteral("no category Yachts");
    const QString noAmount = QStringLiteral("%1 is no budget: an amount is a number above 0 and at most 9999999.99.");
    QTest::newRow("amount 0") << QStringList { "budget", "set", "Food", "0" } << noAmount.arg("0");
    QTest::newRow("negative amount") << QStringList { "budget", "set", "Food", "-5" } << noAmount.arg("-5");
    QTest::newRow("infinite amount") << QStringList { "budget", "set", "Food", "inf" } << noAmount.arg("inf");
    QTest::newRow("amount not a number") << QStringList { "budget", "set", "Food", "nan" } << noAmount.arg("nan");
    QTest::newRow("amount of words") << QStringList { "budget", "set", "Food", "lots" } << noAmount.arg("lots");
    QTest::newRow("amount too large") << QStringList { "budget", "set", "Food", "10000000" }
                                      << noAmount.arg("10000000");
    QTest::newRow("amount of 400 digits") << QStringList { "budget", "set", "Food", QString(400, QLatin1Char('9')) }
                                          << noAmount.arg(QString(400, QLatin1Char('9')));
    QTest::newRow("month start 0") << QStringList { "budget", "month-start", "0" }
                                   << QStringLiteral("0 is no month start: it is a day from 1 to 28.");
    QTest::newRow("month start 29") << QStringList { "budget", "month-start", "29" }
                                    << QStringLiteral("29 is no month start: it is a day from 1 to 28.");
    QTest::newRow("removing what is not there") << QStringList { "budget", "remove", "Drinks" }
                                                << QStringLiteral("Drinks has no budget.");
}

void TestCommandLine::budgetRefusalsExitWith1AndChangeNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    setUpDatabase();
    QCOMPARE(runLedgerly({ "budget", "set", "Food", "400" }, home->path()).exitCode, 0);
    QCOMPARE(runLedgerly({ "budget", "month-start", "25" }, home->path()).exitCode, 0);
    QStringList before;
    {
        RawDatabase raw(home->databasePath());
        before = raw.dumpTables();
    }

    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, message + QLatin1Char('\n'));
    QCOMPARE(run.exitCode, 1);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.dumpTables(), before);
    QCOMPARE(keptMonthStart(home->path()), QStringLiteral("25"));
}

void TestCommandLine::budgetUsageErrorsExitWith2_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown budget command") << QStringList { "budget", "raise", "Food" }
                                            << QStringLiteral("Unknown budget command \"raise\".");
    QTest::newRow("set without an amount") << QStringList { "budget", "set", "Food" }
                                           << QStringLiteral("budget set takes CATEGORY AMOUNT.");
    QTest::newRow("remove without a category") << QStringList { "budget", "remove" }
                                               << QStringLiteral("budget remove takes CATEGORY.");
    QTest::newRow("month start without a day") << QStringList { "budget", "month-start" }
                                               << QStringLiteral("budget month-start takes N.");
    QTest::newRow("another period") << QStringList { "budget", "set", "Food", "4", "--period", "day" }
                                    << QStringLiteral("--period is month, week or year, not \"day\".");
    QTest::newRow("period without a value") << QStringList { "budget", "set", "Food", "4", "--period" }
                                            << QStringLiteral("Missing value after '--period'.");
    QTest::newRow("period with the list") << QStringList { "budget", "--period", "week" }
                                          << QStringLiteral("--period goes with budget set only.");
    QTest::newRow("date with set") << QStringList { "budget", "set", "Food", "4", "--date", "2026-01-01" }
                                   << QStringLiteral("--date goes with budget alone only.");
    QTest::newRow("a date of another form") << QStringList { "budget", "--date", "24/11/2026" }
                                            << QStringLiteral("--date is a day written yyyy-MM-dd, not \"24/11/2026\".");
    QTest::newRow("no such day") << QStringList { "budget", "--date", "2026-02-30" }
                                 << QStringLiteral("--date is a day written yyyy-MM-dd, not \"2026-02-30\".");
    QTest::newRow("unknown option") << QStringList { "budget", "--all" } << QStringLiteral("Unknown option 'all'.");
}

void TestCommandLine::budgetUsageErrorsExitWith2()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, message + QLatin1Char('\n') + tryHelp);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(QDir(home->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList());
}

void TestCommandLine::findPrintsTheMatchesNewestFirstAndTheirCountAndTotal_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("out");
    const QString bread = QStringLiteral("2026-03-02\tBread\tFood\t0.10\tBakery\n");
    const QString kibble = QStringLiteral("2026-03-01\tKibble, large\tPets\t12.75\tPet Shop\n");
    // 12.75 and the float nearest 0.1, added: 12.850000001490116.
    QTest::newRow("everything") << QStringList { "find" } << bread + kibble + QStringLiteral("2 entries, total 12.85\n");
    QTest::newRow("a text in any case") << QStringList { "find", "KIBBLE" }
                                        << kibble + QStringLiteral("1 entry, total 12.75\n");
    QTest::newRow("a text of the place") << QStringList { "find", "baker" }
                                         << bread + QStringLiteral("1 entry, total 0.10\n");
    QTest::newRow("a category") << QStringList { "find", "--category", "Pets" }
                                << kibble + QStringLiteral("1 entry, total 12.75\n");
    QTest::newRow("a place") << QStringList { "find", "--place", "SHOP" }
                             << kibble + QStringLiteral("1 entry, total 12.75\n");
    QTest::newRow("one day") << QStringList { "find", "--from", "2026-03-02", "--to", "2026-03-02" }
                             << bread + QStringLiteral("1 entry, total 0.10\n");
    QTest::newRow("amounts") << QStringList { "find", "--min", "1", "--max", "12.75" }
                             << kibble + QStringLiteral("1 entry, total 12.75\n");
    QTest::newRow("nothing") << QStringList { "find", "caviar" } << QStringLiteral("0 entries, total 0.00\n");
    QTest::newRow("a category that does not exist") << QStringList { "find", "--category", "Caviar" }
                                                    << QStringLiteral("0 entries, total 0.00\n");
}

void TestCommandLine::findPrintsTheMatchesNewestFirstAndTheirCountAndTotal()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, out);
    setUpDatabase();
    const Run run = runLedgerly(arguments, home->path());
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, out);
}

void TestCommandLine::findFindsAnAmountToTheCent()
{
    {
        DatabaseManager store(nullptr);
        for (const float price : { 49.89f, 49.90f, 49.91f }) {
            Entry entry;
            entry.TransactDateTime = QDateTime(QDate(2026, 3, 15), QTime(12, 0));
            entry.ItemName = QStringLiteral("Shoes");
            entry.CategoryName = QStringLiteral("Clothing");
            entry.Price = price;
            entry.LocationText = QStringLiteral("Mall");
            QVERIFY(store.AddEntry(&entry));
        }
    }
    const Run run = runLedgerly({ "find", "--min", "49.90", "--max", "49.90" }, home->path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("2026-03-15\tShoes\tClothing\t49.90\tMall\n1 entry, total 49.90\n"));
}

void TestCommandLine::findAsCsvWritesWhatExportWritesAndTheSummaryOnStandardError()
{
    setUpDatabase();
    const QString file = home->filePath(QStringLiteral("all.csv"));
    QCOMPARE(runLedgerly({ QStringLiteral("export"), file }, home->path()).exitCode, 0);

    const Run everything = runLedgerly({ "find", "--csv" }, home->path());
    QCOMPARE(everything.exitCode, 0);
    QCOMPARE(everything.out.toUtf8(), readFile(file));
    QCOMPARE(everything.err, QStringLiteral("2 entries, total 12.85\n"));

    const Run one = runLedgerly({ "find", "kibble", "--csv" }, home->path());
    QCOMPARE(one.exitCode, 0);
    QCOMPARE(one.out.toUtf8(),
             csvHeader + "2026-03-01T09:30:00,\"Kibble, large\",Pets,12.75,Pet Shop,true,-3.5,40.25\r\n");
    QCOMPARE(one.err, QStringLiteral("1 entry, total 12.75\n"));
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
