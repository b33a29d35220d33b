// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The QIF form of entries: what Ledgerly writes, and what it reads from the
// files other finance programs write. Pure: no database, no files.
#include "databasemanager.h"
#include "qifformat.h"

#include "filecontentsfields.h"

#include <QTest>

#include <cmath>

namespace {

QByteArray lines(const QStringList &list, const char *end = "\r\n")
{
    return list.join(QLatin1String(end)).toUtf8() + end;
}

// A checking account as Quicken files come to GnuCash: an account list
// under AutoSwitch, then the account's transactions with Quicken's dates
// (an apostrophe before a year of this century, blank-padded day and
// month), US thousands separators, cheque numbers, cleared marks, a
// transfer, a split, U beside T, and a category list at the end.
const QStringList gnuCashStyle = {
    QStringLiteral("!Option:AutoSwitch"), // 1
    QStringLiteral("!Account"),
    QStringLiteral("NChecking"),
    QStringLiteral("TBank"),
    QStringLiteral("DEveryday account"), // 5
    QStringLiteral("^"),
    QStringLiteral("NSavings"),
    QStringLiteral("TBank"),
    QStringLiteral("^"),
    QStringLiteral("!Clear:AutoSwitch"), // 10
    QStringLiteral("!Account"),
    QStringLiteral("NChecking"),
    QStringLiteral("TBank"),
    QStringLiteral("^"),
    QStringLiteral("!Type:Bank"), // 15
    QStringLiteral("D1/ 2'21"),
    QStringLiteral("T-1,234.56"),
    QStringLiteral("CX"),
    QStringLiteral("N1001"),
    QStringLiteral("PLandlord Ltd"), // 20
    QStringLiteral("MJanuary rent"),
    QStringLiteral("LHousing:Rent"),
    QStringLiteral("^"),
    QStringLiteral("D1/ 5'21"),
    QStringLiteral("T2,500.00"), // 25
    QStringLiteral("PEmployer Inc"),
    QStringLiteral("LIncome:Salary"),
    QStringLiteral("^"),
    QStringLiteral("D1/14'21"),
    QStringLiteral("T-45.10"), // 30
    QStringLiteral("C*"),
    QStringLiteral("PCorner Shop"),
    QStringLiteral("LGroceries"),
    QStringLiteral("^"),
    QStringLiteral("D1/20'21"), // 35
    QStringLiteral("T-500.00"),
    QStringLiteral("PMove to savings"),
    QStringLiteral("L[Savings]"),
    QStringLiteral("^"),
    QStringLiteral("D1/21'21"), // 40
    QStringLiteral("U-60.25"),
    QStringLiteral("T-60.25"),
    QStringLiteral("PFuel Station"),
    QStringLiteral("MPetrol"),
    QStringLiteral("LAuto:Fuel"), // 45
    QStringLiteral("SAuto:Fuel"),
    QStringLiteral("EPetrol"),
    QStringLiteral("$-60.25"),
    QStringLiteral("^"),
    QStringLiteral("!Type:Cat"), // 50
    QStringLiteral("NGroceries"),
    QStringLiteral("DFood and household"),
    QStringLiteral("E"),
    QStringLiteral("^"),
    QStringLiteral("NIncome:Salary"), // 55
    QStringLiteral("I"),
    QStringLiteral("^"),
};

// An account as HomeBank writes one: its header, then dates day first with
// four-digit years, amounts with two decimals, cleared marks, categories
// with subcategories, an empty memo and a transfer to another account.
const QStringList homeBankStyle = {
    QStringLiteral("!Account"), // 1
    QStringLiteral("NCurrent account"),
    QStringLiteral("TBank"),
    QStringLiteral("^"),
    QStringLiteral("!Type:Bank"), // 5
    QStringLiteral("D02/01/2022"),
    QStringLiteral("T-12.50"),
    QStringLiteral("C"),
    QStringLiteral("PBakery"),
    QStringLiteral("MCroissants"), // 10
    QStringLiteral("LFood:Bakery"),
    QStringLiteral("^"),
    QStringLiteral("D15/01/2022"),
    QStringLiteral("T-1234.00"),
    QStringLiteral("C*"), // 15
    QStringLiteral("PGarage Müller"),
    QStringLiteral("MService"),
    QStringLiteral("LAuto:Maintenance"),
    QStringLiteral("^"),
    QStringLiteral("D28/01/2022"), // 20
    QStringLiteral("T1800.00"),
    QStringLiteral("PCompany"),
    QStringLiteral("MSalary"),
    QStringLiteral("LSalary"),
    QStringLiteral("^"), // 25
    QStringLiteral("D31/01/2022"),
    QStringLiteral("T-200.00"),
    QStringLiteral("PMe"),
    QStringLiteral("M"),
    QStringLiteral("L[Savings account]"), // 30
    QStringLiteral("^"),
};

QByteArray cashFile(const QStringList &records)
{
    return lines(QStringList { QStringLiteral("!Type:Cash") } + records);
}

} // namespace

class TestQifFormat : public QObject
{
    Q_OBJECT

private slots:
    void entriesAreWrittenAsACashSectionToTheByte();
    void whatIsWrittenReadsBackAtMidnightOfItsDay();
    void anAmountIsWrittenSoThatItReadsBack();

    void aFileInGnuCashsStyleGivesItsExpenses();
    void aFileInHomeBanksStyleGivesItsExpenses();
    void aDayAbove12DecidesTheOrderForTheWholeFile_data();
    void aDayAbove12DecidesTheOrderForTheWholeFile();
    void aFileThatNeverDecidesReadsInTheOrderAskedAndNamesItsFirstOpenDate();
    void aFileWhoseDatesContradictEachOtherIsRefused();
    void dateFormsAndCenturies_data();
    void dateFormsAndCenturies();
    void amountsWithThousandsSeparators_data();
    void amountsWithThousandsSeparators();
    void incomeTransfersAndOtherSectionsAreSkippedAndCounted();
    void theItemIsTheMemoElseThePayeeElseImported();
    void aCategoryKeepsItsWholeTextAndAMissingOneIsOthers();
    void uIsReadWhenThereIsNoT();
    void sectionHeadersAreReadInAnyCaseAndLineEndsOfAnyKind();
    void aFileThatIsNotUtf8IsReadAsLatin1();

    void badRecordsAreReportedWithTheirLines_data();
    void badRecordsAreReportedWithTheirLines();
    void aFileThatIsNoQifIsRefused_data();
    void aFileThatIsNoQifIsRefused();
    void theSuffixDecidesWhetherAFileIsQif();

    void moreDateFormsWithBlanksAnywhere_data();
    void moreDateFormsWithBlanksAnywhere();
    void aTwoDigitYearLiesFrom80YearsBackTo19Ahead_data();
    void aTwoDigitYearLiesFrom80YearsBackTo19Ahead();
    void theOrderAskedForWinsOverTheFile_data();
    void theOrderAskedForWinsOverTheFile();
    void anUndecidedFileReadsSlashesMonthFirstAndDotsDayFirst();
    void aDottedDateAbove12DecidesForTheWholeFile();
    void yearFirstReadsATwoDigitFirstNumberAsTheYear();
    void titleAndCommentLinesBeforeTheFirstHeaderAreIgnored();
    void blankLinesPaddedHeadersAndDoubleCaretsAreRead();
    void recordsAfterAnAccountWithoutTypeAreOtherSections();
    void aSecondDateInARecordIsIgnored();
    void theLastRecordMayEndWithTheFile();
    void aRecordCutInsideALineIsRefusedWithItsLine();
    void aFileWithoutAnyHeaderIsRefused();
    void splitsThatAddUpBecomeOneEntryEach();
    void whatTheSplitsLeaveOverIsAnEntryUnderTheRecordsCategory();
    void transferPositiveAndZeroSplitsAreSkippedAndCounted();
    void splitsUnderSplitLeaveTheirRestToOthers();
    void aTransferRecordIsSkippedWholeWithItsSplits();
    void textEncodings_data();
    void textEncodings();
    void anEncodingAskedForWinsOverTheBytes();
};

void TestQifFormat::entriesAreWrittenAsACashSectionToTheByte()
{
    Entry bread;
    bread.TransactDateTime = QDateTime(QDate(2024, 3, 15), QTime(13, 8, 59));
    bread.ItemName = QStringLiteral("Bread");
    bread.CategoryName = QStringLiteral("Food");
    bread.Price = 2.5f;
    bread.LocationText = QStringLiteral("Corner Shop");
    Entry odd;
    odd.TransactDateTime = QDateTime(QDate(2023, 12, 1), QTime());
    odd.ItemName = QStringLiteral("Two\nlines");
    odd.CategoryName = QStringLiteral("Auto:Fuel");
    odd.Price = 0.1f;
    odd.LocationText = QStringLiteral("");
    Entry large;
    large.TransactDateTime = QDateTime(QDate(2001, 1, 9), QTime(23, 0));
    large.ItemName = QStringLiteral("Car");
    large.CategoryName = QStringLiteral("Automobile - Other");
    large.Price = 1234567.0f;
    large.LocationText = QStringLiteral("Café\r\nRoad");

    QCOMPARE(QifFormat::write({ &bread, &odd, &large }),
             QByteArray("!Type:Cash\r\n"
                        "D03/15/2024\r\nT-2.5\r\nPCorner Shop\r\nMBread\r\nLFood\r\n^\r\n"
                        "D12/01/2023\r\nT-0.1\r\nP\r\nMTwo lines\r\nLAuto:Fuel\r\n^\r\n"
                        "D01/09/2001\r\nT-1234567\r\nPCaf\xc3\xa9 Road\r\nMCar\r\nLAutomobile - Other\r\n^\r\n"));
    QCOMPARE(QifFormat::header(), QByteArray("!Type:Cash\r\n"));
}

void TestQifFormat::whatIsWrittenReadsBackAtMidnightOfItsDay()
{
    Entry first;
    first.TransactDateTime = QDateTime(QDate(2024, 3, 15), QTime(13, 8, 59));
    first.ItemName = QStringLiteral("Bread");
    first.CategoryName = QStringLiteral("Food");
    first.Price = 103.8488f;
    first.LocationText = QStringLiteral("Shop");
    Entry second = first;
    second.TransactDateTime = QDateTime(QDate(2024, 3, 4), QTime(8, 0));
    second.ItemName = QStringLiteral("Чай");
    second.Price = 0.0f;
    const EntryFileContents contents = QifFormat::read(QifFormat::write({ &first, &second }));
    QCOMPARE(contents.problemLines(), QStringList());
    // An entry of amount 0 is written, and read back as a zero amount,
    // which adds nothing.
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("2 2024-03-15T00:00:00|Bread|Food|103.848801|Shop") }));
    QCOMPARE(contents.skippedZeroAmounts, 1);
    QCOMPARE(contents.entries.at(0).entry.Price, 103.8488f);
    // 03/15 decides: the month comes first.
    QVERIFY(contents.openDate.isEmpty());
}

void TestQifFormat::anAmountIsWrittenSoThatItReadsBack()
{
    Entry entry;
    entry.TransactDateTime = QDateTime(QDate(2024, 3, 15), QTime());
    entry.ItemName = QStringLiteral("Stamp");
    entry.CategoryName = QStringLiteral("Others");
    entry.LocationText = QStringLiteral("Post");
    QByteArray written;
    for (const float price : { 1.125f, 1234.5f, 0.875f, 12.0f, 1e-7f }) {
        entry.Price = price;
        QifFormat::appendRecord(written, entry);
    }
    QCOMPARE(written.count("\r\nT"), 5);
    QVERIFY(written.contains("\r\nT-1.1250\r\n"));
    QVERIFY(written.contains("\r\nT-1234.5\r\n"));
    QVERIFY(written.contains("\r\nT-0.8750\r\n"));
    QVERIFY(written.contains("\r\nT-12\r\n"));
    // QIF has no exponents.
    QVERIFY(written.contains("\r\nT-0.0000001\r\n"));
    const EntryFileContents contents = QifFormat::read(QifFormat::header() + written);
    QCOMPARE(contents.problemLines(), QStringList());
    QList<float> prices;
    for (const EntryFileContents::LineEntry &read : contents.entries)
        prices.append(read.entry.Price);
    QCOMPARE(prices, QList<float>({ 1.125f, 1234.5f, 0.875f, 12.0f, 1e-7f }));
}

void TestQifFormat::aFileInGnuCashsStyleGivesItsExpenses()
{
    const EntryFileContents contents = QifFormat::read(lines(gnuCashStyle));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents),
             QStringList({ QStringLiteral("16 2021-01-02T00:00:00|January rent|Housing:Rent|1234.56006|Landlord Ltd"),
                           QStringLiteral("29 2021-01-14T00:00:00|Corner Shop|Groceries|45.0999985|Corner Shop"),
                           QStringLiteral("40 2021-01-21T00:00:00|Petrol|Auto:Fuel|60.25|Fuel Station") }));
    QCOMPARE(contents.skippedIncome, 1);
    QCOMPARE(contents.skippedTransfers, 1);
    // Three account records and two category records.
    QCOMPARE(contents.skippedOtherSections, 5);
    QCOMPARE(contents.skippedSummary(), QStringLiteral("skipped 7 (income 1, transfers 1, other sections 5)"));
    QVERIFY(contents.openDate.isEmpty());
}

void TestQifFormat::aFileInHomeBanksStyleGivesItsExpenses()
{
    // Written with LF alone, as on Linux.
    const EntryFileContents contents = QifFormat::read(lines(homeBankStyle, "\n"));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents),
             QStringList({ QStringLiteral("6 2022-01-02T00:00:00|Croissants|Food:Bakery|12.5|Bakery"),
                           QStringLiteral("13 2022-01-15T00:00:00|Service|Auto:Maintenance|1234|Garage Müller") }));
    QCOMPARE(contents.skippedIncome, 1);
    QCOMPARE(contents.skippedTransfers, 1);
    QCOMPARE(contents.skippedOtherSections, 1);
}

void TestQifFormat::aDayAbove12DecidesTheOrderForTheWholeFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("asked");
    QTest::addColumn<QStringList>("dates");
    // The deciding date comes last: the earlier ones are read its way.
    const QByteArray monthFirst =
        cashFile({ "D03/04/2024", "T-1", "^", "D05/06/2024", "T-1", "^", "D07/25/2024", "T-1", "^" });
    const QByteArray dayFirst =
        cashFile({ "D03/04/2024", "T-1", "^", "D05/06/2024", "T-1", "^", "D25/07/2024", "T-1", "^" });
    const QStringList monthFirstDates = { "2024-03-04", "2024-05-06", "2024-07-25" };
    const QStringList dayFirstDates = { "2024-04-03", "2024-06-05", "2024-07-25" };
    QTest::newRow("month first, asked for month first")
        << monthFirst << int(QifFormat::DateOrder::MonthFirst) << monthFirstDates;
    QTest::newRow("month first, nothing asked") << monthFirst << -1 << monthFirstDates;
    QTest::newRow("day first, asked for day first") << dayFirst << int(QifFormat::DateOrder::DayFirst) << dayFirstDates;
    QTest::newRow("day first, nothing asked") << dayFirst << -1 << dayFirstDates;
}

void TestQifFormat::aDayAbove12DecidesTheOrderForTheWholeFile()
{
    QFETCH(QByteArray, file);
    QFETCH(int, asked);
    QFETCH(QStringList, dates);
    const EntryFileContents contents = asked < 0 ? QifFormat::read(file)
                                                 : QifFormat::read(file, QifFormat::DateOrder(asked));
    QCOMPARE(contents.problemLines(), QStringList());
    QStringList read;
    for (const EntryFileContents::LineEntry &entry : contents.entries)
        read.append(entry.entry.TransactDateTime.date().toString(Qt::ISODate));
    QCOMPARE(read, dates);
    QVERIFY(contents.openDate.isEmpty());
}

void TestQifFormat::aFileThatNeverDecidesReadsInTheOrderAskedAndNamesItsFirstOpenDate()
{
    // 05/05 reads the same either way; 03/04 does not.
    const QByteArray file = cashFile(
        { "D05/05/2024", "T-1", "^", "D03/04/2024", "T-2", "^", "D2024-12-31", "T-3", "^", "D20241230", "T-4", "^" });
    const EntryFileContents monthFirst = QifFormat::read(file);
    QCOMPARE(monthFirst.problemLines(), QStringList());
    QCOMPARE(monthFirst.openDate, QStringLiteral("03/04/2024"));
    QCOMPARE(monthFirst.openDateLine, 5);
    QCOMPARE(monthFirst.openDateMonthFirst, QDate(2024, 3, 4));
    QCOMPARE(monthFirst.openDateDayFirst, QDate(2024, 4, 3));
    QCOMPARE(monthFirst.entries.at(1).entry.TransactDateTime.date(), QDate(2024, 3, 4));

    // The order asked for is the user's answer: nothing is left open.
    const EntryFileContents dayFirst = QifFormat::read(file, QifFormat::DateOrder::DayFirst);
    QCOMPARE(dayFirst.problemLines(), QStringList());
    QVERIFY(dayFirst.openDate.isEmpty());
    QCOMPARE(dayFirst.entries.at(1).entry.TransactDateTime.date(), QDate(2024, 4, 3));
    // Year-first dates have one reading only.
    for (const EntryFileContents &contents : { monthFirst, dayFirst }) {
        QCOMPARE(contents.entries.at(2).entry.TransactDateTime.date(), QDate(2024, 12, 31));
        QCOMPARE(contents.entries.at(3).entry.TransactDateTime.date(), QDate(2024, 12, 30));
    }
}

void TestQifFormat::aFileWhoseDatesContradictEachOtherIsRefused()
{
    const EntryFileContents contents =
        QifFormat::read(cashFile({ "D13/01/2024", "T-1", "^", "D01/01/2024", "T-1", "^", "D01/13/2024", "T-1", "^" }));
    QCOMPARE(
        contents.problemLines(),
        QStringList { QStringLiteral("line 8: this date has the month first, but the one on line 2 the day first") });
    QVERIFY(contents.entries.isEmpty());
}

void TestQifFormat::dateFormsAndCenturies_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QDate>("date");
    QTest::newRow("four-digit year") << QStringLiteral("12/31/2020") << QDate(2020, 12, 31);
    QTest::newRow("apostrophe, two digits") << QStringLiteral("12/31'05") << QDate(2005, 12, 31);
    QTest::newRow("apostrophe, blank-padded") << QStringLiteral("1/ 2' 5") << QDate(2005, 1, 2);
    QTest::newRow("apostrophe, four digits") << QStringLiteral("12/31'2010") << QDate(2010, 12, 31);
    QTest::newRow("slash, two digits") << QStringLiteral("12/31/98") << QDate(1998, 12, 31);
    QTest::newRow("slash, blank-padded") << QStringLiteral(" 1/ 2/99") << QDate(1999, 1, 2);
    QTest::newRow("year first") << QStringLiteral("2021-07-04") << QDate(2021, 7, 4);
    QTest::newRow("year first, one-digit parts") << QStringLiteral("2021-7-4") << QDate(2021, 7, 4);
    QTest::newRow("dots") << QStringLiteral("04.07.2021") << QDate(2021, 7, 4);
    QTest::newRow("dots with blanks") << QStringLiteral(" 4. 7.2021") << QDate(2021, 7, 4);
}

void TestQifFormat::dateFormsAndCenturies()
{
    QFETCH(QString, written);
    QFETCH(QDate, date);
    const EntryFileContents contents =
        QifFormat::read(cashFile({ QStringLiteral("D") + written, QStringLiteral("T-1"), QStringLiteral("^") }));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.size(), 1);
    QCOMPARE(contents.entries.constFirst().entry.TransactDateTime, date.startOfDay());
}

void TestQifFormat::amountsWithThousandsSeparators_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<double>("amount");
    QTest::newRow("US") << QStringLiteral("1,234.56") << 1234.56;
    QTest::newRow("European") << QStringLiteral("1.234,56") << 1234.56;
    QTest::newRow("Swiss") << QStringLiteral("1'234.5") << 1234.5;
    QTest::newRow("thousands only") << QStringLiteral("1.234") << 1234.0;
    QTest::newRow("thousands only, comma") << QStringLiteral("1,234") << 1234.0;
    QTest::newRow("two groups") << QStringLiteral("1.234.567") << 1234567.0;
    QTest::newRow("four decimals") << QStringLiteral("103.8488") << 103.8488;
    QTest::newRow("thousands and four decimals") << QStringLiteral("1,234.5678") << 1234.5678;
    QTest::newRow("one decimal with a comma") << QStringLiteral("12,5") << 12.5;
    QTest::newRow("blanks") << QStringLiteral("1 234 567,89") << 1234567.89;
    QTest::newRow("millions") << QStringLiteral("-12,345,678.90") << -12345678.9;
    QTest::newRow("negative") << QStringLiteral("-2.5") << -2.5;
    QTest::newRow("plus") << QStringLiteral("+7") << 7.0;
    QTest::newRow("leading point") << QStringLiteral(".5") << 0.5;
    QTest::newRow("trailing point") << QStringLiteral("12.") << 12.0;
    QTest::newRow("blanks around") << QStringLiteral("  -3.25 ") << -3.25;
}

void TestQifFormat::amountsWithThousandsSeparators()
{
    QFETCH(QString, written);
    QFETCH(double, amount);
    const std::optional<double> read = QifFormat::readAmount(written);
    QVERIFY(read.has_value());
    QCOMPARE(*read, amount);
}

void TestQifFormat::incomeTransfersAndOtherSectionsAreSkippedAndCounted()
{
    const QByteArray file =
        lines({ "!Type:Cat", "NFood",   "E",          "^",         "!Type:Invst", "D1/2/2024",    "NBuy",
                "YACME",     "I10",     "Q2",         "T-20",      "^",           "!Type:CCard",  "D1/3/2024",
                "T50.00",    "PRefund", "^",          "D1/4/2024", "T-80",        "L[Checking]",  "^",
                "D1/4/2024", "T80",     "L[Visa]",    "^",         "D1/5/2024",   "T-9.99",       "MBook",
                "LBooks",    "^",       "!Type:Cash", "D1/6/2024", "T0",          "MFree sample", "LFood",
                "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("26 2024-01-05T00:00:00|Book|Books|9.98999977|") }));
    QCOMPARE(contents.skippedIncome, 1);
    QCOMPARE(contents.skippedTransfers, 2);
    QCOMPARE(contents.skippedZeroAmounts, 1);
    QCOMPARE(contents.skippedOtherSections, 2);
    QCOMPARE(contents.skipped(), 6);
    QCOMPARE(contents.skippedSummary(), QStringLiteral("skipped 6 (income 1, transfers 2, zero amounts 1, other sections 2)"));
    // A void cheque of -0 is a zero amount as well.
    const EntryFileContents minusZero = QifFormat::read(cashFile({ "D01/02/2024", "T-0.", "^" }));
    QCOMPARE(minusZero.entries.size(), 0);
    QCOMPARE(minusZero.skippedZeroAmounts, 1);
}

void TestQifFormat::theItemIsTheMemoElseThePayeeElseImported()
{
    const EntryFileContents contents =
        QifFormat::read(cashFile({ "D01/02/2024", "T-1", "PShop", "MMilk", "LFood", "^", "D01/02/2024", "T-2", "PShop",
                                   "LFood", "^", "D01/02/2024", "T-3", "M", "LFood", "^" }));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents),
             QStringList({ QStringLiteral("2 2024-01-02T00:00:00|Milk|Food|1|Shop"),
                           QStringLiteral("8 2024-01-02T00:00:00|Shop|Food|2|Shop"),
                           QStringLiteral("13 2024-01-02T00:00:00|Imported|Food|3|") }));
    QVERIFY(!contents.entries.at(2).entry.LocationText.isNull());
}

void TestQifFormat::aCategoryKeepsItsWholeTextAndAMissingOneIsOthers()
{
    const EntryFileContents contents = QifFormat::read(
        cashFile({ "D01/02/2024", "T-1", "MA", "LAuto:Fuel", "^", "D01/02/2024", "T-2", "MB", "^", "D01/02/2024", "T-3",
                   "MC", "L", "^", "D01/02/2024", "T-4", "MD", "LHome:Garden:Tools/Spring", "^" }));
    QCOMPARE(contents.problemLines(), QStringList());
    QStringList categories;
    for (const EntryFileContents::LineEntry &read : contents.entries)
        categories.append(read.entry.CategoryName);
    QCOMPARE(categories,
             QStringList({ QStringLiteral("Auto:Fuel"), QStringLiteral("Others"), QStringLiteral("Others"),
                           QStringLiteral("Home:Garden:Tools/Spring") }));
}

void TestQifFormat::uIsReadWhenThereIsNoT()
{
    const EntryFileContents contents =
        QifFormat::read(cashFile({ "D01/02/2024", "U-1,000.25", "MA", "^", "D01/02/2024", "U-5", "T-4", "MB", "^" }));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.at(0).entry.Price, 1000.25f);
    QCOMPARE(contents.entries.at(1).entry.Price, 4.0f);
}

void TestQifFormat::sectionHeadersAreReadInAnyCaseAndLineEndsOfAnyKind()
{
    const QByteArray file =
        "!type:bank  \r!TYPE:CCARD\nD01/02/2024\r\nT-1\rMA\n^\n\n!Type:Cash\r\nD01/03/2024\rT-2\r\n^";
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents),
             QStringList({ QStringLiteral("3 2024-01-02T00:00:00|A|Others|1|"),
                           QStringLiteral("9 2024-01-03T00:00:00|Imported|Others|2|") }));
}

void TestQifFormat::aFileThatIsNotUtf8IsReadAsLatin1()
{
    const QByteArray file = "!Type:Bank\r\nD01/02/2024\r\nT-1\r\nPCaf\xe9\r\nMCr\xe8me\r\nL\xc9picerie\r\n^\r\n";
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList { QStringLiteral("2 2024-01-02T00:00:00|Crème|Épicerie|1|Café") });
}

void TestQifFormat::badRecordsAreReportedWithTheirLines_data()
{
    QTest::addColumn<QStringList>("records");
    QTest::addColumn<QStringList>("problems");
    QTest::newRow("no date") << QStringList { "MA", "T-1", "^" }
                             << QStringList { "line 2: the record that starts here has no date (D)" };
    QTest::newRow("no amount") << QStringList { "D01/02/2024", "MA", "^" }
                               << QStringList { "line 2: the record that starts here has no amount (T)" };
    QTest::newRow("no such day") << QStringList { "D02/30/2024", "T-1", "^" }
                                 << QStringList { "line 2: the date \"02/30/2024\" is not a date Ledgerly can read" };
    QTest::newRow("words") << QStringList { "DMarch 4th", "T-1", "^" }
                           << QStringList { "line 2: the date \"March 4th\" is not a date Ledgerly can read" };
    QTest::newRow("no thirteenth month") << QStringList { "D2024-13-04", "T-1", "^" }
                                         << QStringList { "line 2: the date \"2024-13-04\" is not a date Ledgerly "
                                                          "can read" };
    QTest::newRow("amount") << QStringList { "D01/02/2024", "T12 EUR", "^" }
                            << QStringList { "line 3: the amount \"12 EUR\" is not a number" };
    QTest::newRow("empty amount") << QStringList { "D01/02/2024", "T", "^" }
                                  << QStringList { "line 3: the amount \"\" is not a number" };
    const QString huge = QStringLiteral("-1") + QString(40, QLatin1Char('0'));
    QTest::newRow("amount too large") << QStringList { "D01/02/2024", "T" + huge, "^" }
                                      << QStringList { "line 3: the amount \"" + huge +
                                                       "\" is above 9999999.99, the largest amount Ledgerly takes" };
    QTest::newRow("just above the largest amount")
        << QStringList { "D01/02/2024", "T-10,000,000.00", "^" }
        << QStringList { "line 3: the amount \"-10,000,000.00\" is above 9999999.99, the largest amount Ledgerly "
                         "takes" };
    QTest::newRow("several") << QStringList { "D01/02/2024", "Tx", "^", "D01/02/2024", "T-1", "^", "Dy", "T-1", "^" }
                             << QStringList { "line 3: the amount \"x\" is not a number",
                                              "line 8: the date \"y\" is not a date Ledgerly can read" };
    QTest::newRow("cut short") << QStringList { "D01/02/2024", "T-1", "^", "D01/03/2024", "PShop" }
                               << QStringList { "line 5: the record that starts here does not end with ^: the file "
                                                "may be cut short" };
    QTest::newRow("a header inside a record")
        << QStringList { "D01/02/2024", "T-1", "!Type:Bank", "D01/03/2024", "T-2", "^" }
        << QStringList { "line 2: the record that starts here does not end "
                         "with ^ before the next header" };
}

void TestQifFormat::badRecordsAreReportedWithTheirLines()
{
    QFETCH(QStringList, records);
    QFETCH(QStringList, problems);
    const EntryFileContents contents = QifFormat::read(cashFile(records));
    QCOMPARE(contents.problemLines(), problems);
    QVERIFY(!contents.isAcceptable());
}

void TestQifFormat::aFileThatIsNoQifIsRefused_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("problem");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("line 1: the file is empty");
    QTest::newRow("blank") << QByteArray("\r\n  \r\n") << QStringLiteral("line 1: the file is empty");
    QTest::newRow("a CSV file") << QByteArray("Date,Item,Category,Amount\r\n2024-01-01,A,Food,1\r\n")
                                << QStringLiteral("line 1: a QIF file starts with a header such as !Type:Bank");
    QTest::newRow("records before any header") << QByteArray("\r\nD01/02/2024\r\nT-1\r\n^\r\n")
                                               << QStringLiteral("line 2: a QIF file starts with a header such as "
                                                                 "!Type:Bank");
    QByteArray binary = "!Type:Bank\r\nD01/02/2024\r\n";
    binary.append('\0');
    binary.append("\xff\xfe\r\n^\r\n");
    QTest::newRow("binary") << binary << QStringLiteral("line 3: a NUL byte: this is not a text file");
    QTest::newRow("an account section cut short") << QByteArray("!Account\r\nNChecking\r\nTBank\r\n")
                                                  << QStringLiteral("line 2: the record that starts here does not end "
                                                                    "with ^: the file may be cut short");
}

void TestQifFormat::aFileThatIsNoQifIsRefused()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, problem);
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList { problem });
    QVERIFY(contents.entries.isEmpty());
}

void TestQifFormat::theSuffixDecidesWhetherAFileIsQif()
{
    QVERIFY(QifFormat::matches(QStringLiteral("/home/me/export.qif")));
    QVERIFY(QifFormat::matches(QStringLiteral("EXPORT.QIF")));
    QVERIFY(!QifFormat::matches(QStringLiteral("export.csv")));
    QVERIFY(!QifFormat::matches(QStringLiteral("export.qif.bak")));
}

QTEST_GUILESS_MAIN(TestQifFormat)
#include "tst_qifformat.moc"

void TestQifFormat::moreDateFormsWithBlanksAnywhere_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QDate>("date");
    QTest::newRow("Quicken's padded slashes") << QStringLiteral("6/ 1/94") << QDate(1994, 6, 1);
    QTest::newRow("apostrophe, one digit") << QStringLiteral("8/31' 0") << QDate(2000, 8, 31);
    QTest::newRow("apostrophe, two digits") << QStringLiteral("1/ 1'05") << QDate(2005, 1, 1);
    QTest::newRow("apostrophe, four digits") << QStringLiteral("2/10'2020") << QDate(2020, 2, 10);
    QTest::newRow("dots, two-digit year") << QStringLiteral("1.12.08") << QDate(2008, 12, 1);
    QTest::newRow("eight digits") << QStringLiteral("20070122") << QDate(2007, 1, 22);
    QTest::newRow("year first with slashes") << QStringLiteral("2021/7/4") << QDate(2021, 7, 4);
    QTest::newRow("year first with dots") << QStringLiteral("2021.07.04") << QDate(2021, 7, 4);
    QTest::newRow("dashes, month first") << QStringLiteral("12-31-2020") << QDate(2020, 12, 31);
    QTest::newRow("blanks everywhere") << QStringLiteral(" 2 0 2 1 - 0 7 - 0 4 ") << QDate(2021, 7, 4);
    QTest::newRow("blank inside the year") << QStringLiteral("12/31/20 20") << QDate(2020, 12, 31);
}

void TestQifFormat::moreDateFormsWithBlanksAnywhere()
{
    QFETCH(QString, written);
    QFETCH(QDate, date);
    const EntryFileContents contents =
        QifFormat::read(cashFile({ QStringLiteral("D") + written, QStringLiteral("T-1"), QStringLiteral("^") }));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.size(), 1);
    QCOMPARE(contents.entries.constFirst().entry.TransactDateTime, date.startOfDay());
}

void TestQifFormat::aTwoDigitYearLiesFrom80YearsBackTo19Ahead_data()
{
    QTest::addColumn<int>("year");
    const int now = QDate::currentDate().year();
    QTest::newRow("80 years back") << now - 80;
    QTest::newRow("79 years back") << now - 79;
    QTest::newRow("this year") << now;
    QTest::newRow("19 years ahead") << now + 19;
    QTest::newRow("18 years ahead") << now + 18;
}

void TestQifFormat::aTwoDigitYearLiesFrom80YearsBackTo19Ahead()
{
    QFETCH(int, year);
    const QString yy = QStringLiteral("%1").arg(year % 100, 2, 10, QLatin1Char('0'));
    for (const QString &written : { QStringLiteral("12/31/") + yy, QStringLiteral("31.12.") + yy }) {
        const EntryFileContents contents = QifFormat::read(cashFile({ "D" + written, "T-1", "^" }));
        QCOMPARE(contents.problemLines(), QStringList());
        QCOMPARE(contents.entries.constFirst().entry.TransactDateTime.date(), QDate(year, 12, 31));
    }
    // The years either side of the window's edges wrap to its other end:
    // 81 years back is 19 ahead, 20 ahead is 80 back.
    const int now = QDate::currentDate().year();
    QCOMPARE(QifFormat::twoDigitYear((now - 81) % 100), now + 19);
    QCOMPARE(QifFormat::twoDigitYear((now + 20) % 100), now - 80);
    QCOMPARE(QifFormat::twoDigitYear(46, 2026), 1946);
    QCOMPARE(QifFormat::twoDigitYear(45, 2026), 2045);
}

void TestQifFormat::theOrderAskedForWinsOverTheFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("asked");
    QTest::addColumn<QStringList>("dates");
    QTest::addColumn<QString>("dateOrder");
    const QByteArray undecided = cashFile({ "D03/04/12", "T-1", "^", "D05/06/12", "T-1", "^" });
    const QByteArray dayFirst = cashFile({ "D03/04/2012", "T-1", "^", "D25/06/2012", "T-1", "^" });
    QTest::newRow("undecided, mdy") << undecided << int(QifFormat::DateOrder::MonthFirst)
                                    << QStringList { "2012-03-04", "2012-05-06" } << "mdy";
    QTest::newRow("undecided, dmy") << undecided << int(QifFormat::DateOrder::DayFirst)
                                    << QStringList { "2012-04-03", "2012-06-05" } << "dmy";
    QTest::newRow("undecided, ymd") << undecided << int(QifFormat::DateOrder::YearFirst)
                                    << QStringList { "2003-04-12", "2005-06-12" } << "ymd";
    QTest::newRow("day first, dmy") << dayFirst << int(QifFormat::DateOrder::DayFirst)
                                    << QStringList { "2012-04-03", "2012-06-25" } << "dmy";
}

void TestQifFormat::theOrderAskedForWinsOverTheFile()
{
    QFETCH(QByteArray, file);
    QFETCH(int, asked);
    QFETCH(QStringList, dates);
    QFETCH(QString, dateOrder);
    const EntryFileContents contents = QifFormat::read(file, QifFormat::DateOrder(asked));
    QCOMPARE(contents.problemLines(), QStringList());
    QStringList read;
    for (const EntryFileContents::LineEntry &entry : contents.entries)
        read.append(entry.entry.TransactDateTime.date().toString(Qt::ISODate));
    QCOMPARE(read, dates);
    QCOMPARE(contents.dateOrder, dateOrder);
    QVERIFY(contents.openDate.isEmpty());
}

void TestQifFormat::anUndecidedFileReadsSlashesMonthFirstAndDotsDayFirst()
{
    const EntryFileContents contents = QifFormat::read(cashFile({ "D03/04/2012", "T-1", "^", "D03.04.2012", "T-2", "^" }));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.at(0).entry.TransactDateTime.date(), QDate(2012, 3, 4));
    QCOMPARE(contents.entries.at(1).entry.TransactDateTime.date(), QDate(2012, 4, 3));
    QCOMPARE(contents.openDate, QStringLiteral("03/04/2012"));
    QCOMPARE(contents.openDateLine, 2);
}

void TestQifFormat::aDottedDateAbove12DecidesForTheWholeFile()
{
    // The first dotted date above 12 makes the slashed one day first too.
    const EntryFileContents contents = QifFormat::read(cashFile({ "D03/04/2012", "T-1", "^", "D13.04.2012", "T-2", "^" }));
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.at(0).entry.TransactDateTime.date(), QDate(2012, 4, 3));
    QCOMPARE(contents.dateOrder, QStringLiteral("dmy"));
    QVERIFY(contents.openDate.isEmpty());
}

void TestQifFormat::yearFirstReadsATwoDigitFirstNumberAsTheYear()
{
    // 13/08/12 reads as 13 August 2012 by itself: only ymd tells it apart.
    const QByteArray file = cashFile({ "D13/08/12", "T-1", "^", "D13/3/3", "T-2", "^", "D2/10'2020", "T-3", "^" });
    const EntryFileContents asWritten = QifFormat::read(file);
    QCOMPARE(asWritten.entries.at(0).entry.TransactDateTime.date(), QDate(2012, 8, 13));
    const EntryFileContents contents = QifFormat::read(file, QifFormat::DateOrder::YearFirst);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.at(0).entry.TransactDateTime.date(), QDate(2013, 8, 12));
    QCOMPARE(contents.entries.at(1).entry.TransactDateTime.date(), QDate(2013, 3, 3));
    // A one-digit first number and a year after an apostrophe stay as they are.
    QCOMPARE(contents.entries.at(2).entry.TransactDateTime.date(), QDate(2020, 2, 10));
}

void TestQifFormat::titleAndCommentLinesBeforeTheFirstHeaderAreIgnored()
{
    const QByteArray file = lines({ "Statement of account 1234 - printed 2024-01-05", "### exported by a script ###", "",
                                    "!Type:Bank", "D01/02/2024", "T-5", "MTea", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList { QStringLiteral("5 2024-01-02T00:00:00|Tea|Others|5|") });
}

void TestQifFormat::blankLinesPaddedHeadersAndDoubleCaretsAreRead()
{
    const QByteArray file = lines({ "", "!Type:Bank   ", "", "D01/02/2024", "", "T-5", "MTea", "^^", "", "D01/03/2024",
                                    "T-6", "MCoffee", "^", "" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("4 2024-01-02T00:00:00|Tea|Others|5|"),
                                                QStringLiteral("10 2024-01-03T00:00:00|Coffee|Others|6|") }));
}

void TestQifFormat::recordsAfterAnAccountWithoutTypeAreOtherSections()
{
    const QByteArray file = lines({ "!Type:Bank", "D01/02/2024", "T-5", "^", "!Account", "NLoan", "TOth L", "^",
                                    "D01/03/2024", "T-500", "L[Checking]", "^", "D01/04/2024", "T-7", "^",
                                    "!Type:Bank", "D01/05/2024", "T-8", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.size(), 2);
    QCOMPARE(contents.entries.at(1).entry.Price, 8.0f);
    QCOMPARE(contents.skippedOtherSections, 3);
    QCOMPARE(contents.skippedTransfers, 0);
}

void TestQifFormat::aSecondDateInARecordIsIgnored()
{
    const QByteArray file = cashFile({ "D08/07/2010", "MDescription", "DSome Rubbish That ain't a date at all", "T-42.42", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList { QStringLiteral("2 2010-08-07T00:00:00|Description|Others|42.4199982|") });
}

void TestQifFormat::theLastRecordMayEndWithTheFile()
{
    for (const QByteArray &file :
         { QByteArray("!Type:Bank\r\nD03/03/10\r\nT-379.00\r\nPShop"), QByteArray("!Type:Bank\nD03/03/10\nPShop\nU-379.00\n") }) {
        const EntryFileContents contents = QifFormat::read(file);
        QCOMPARE(contents.problemLines(), QStringList());
        QCOMPARE(allFields(contents), QStringList { QStringLiteral("2 2010-03-03T00:00:00|Shop|Others|379|Shop") });
    }
}

void TestQifFormat::aRecordCutInsideALineIsRefusedWithItsLine()
{
    const EntryFileContents cutInAmount = QifFormat::read(QByteArray("!Type:Bank\nD01/02/2024\nT-1\n^\nD01/03/2024\nT-"));
    QCOMPARE(cutInAmount.problemLines(), QStringList { QStringLiteral("line 6: the amount \"-\" is not a number") });
    QVERIFY(cutInAmount.entries.size() <= 1);
    const EntryFileContents cutInDate = QifFormat::read(QByteArray("!Type:Bank\nD01/02/2024\nT-1\n^\nD01/0"));
    QCOMPARE(cutInDate.problemLines(),
             QStringList { QStringLiteral("line 5: the record that starts here does not end with ^: the file may be cut "
                                          "short") });
}

void TestQifFormat::aFileWithoutAnyHeaderIsRefused()
{
    const EntryFileContents contents = QifFormat::read(QByteArray("D08/07/2010\nMDescription\nT42.42\n^\n"));
    QCOMPARE(contents.problemLines(),
             QStringList { QStringLiteral("line 1: a QIF file starts with a header such as !Type:Bank") });
}

void TestQifFormat::splitsThatAddUpBecomeOneEntryEach()
{
    // A receipt split into groceries and household, one split without a memo.
    const QByteArray file = cashFile({ "D01/02/2024", "T-30.00", "PSupermarket", "MWeekly shop", "LGroceries",
                                       "SGroceries", "EFruit", "$-20.50", "SHousehold", "$-9.50", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("2 2024-01-02T00:00:00|Fruit|Groceries|20.5|Supermarket"),
                                                QStringLiteral("2 2024-01-02T00:00:00|Weekly shop|Household|9.5|Supermarket") }));
    QCOMPARE(contents.skipped(), 0);
}

void TestQifFormat::whatTheSplitsLeaveOverIsAnEntryUnderTheRecordsCategory()
{
    // 30.00 - 20.00 leaves 10.00 under the record's own category.
    const QByteArray file = cashFile({ "D01/02/2024", "T-30.00", "PSupermarket", "LGroceries", "SHousehold",
                                       "ESoap", "$-20.00", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("2 2024-01-02T00:00:00|Soap|Household|20|Supermarket"),
                                                QStringLiteral("2 2024-01-02T00:00:00|Supermarket|Groceries|10|Supermarket") }));
    // Splits beyond the amount leave a positive rest: income, not an entry.
    const EntryFileContents beyond = QifFormat::read(
        cashFile({ "D01/02/2024", "T-10.00", "LGroceries", "SHousehold", "$-12.00", "^" }));
    QCOMPARE(beyond.entries.size(), 1);
    QCOMPARE(beyond.entries.constFirst().entry.Price, 12.0f);
    QCOMPARE(beyond.skippedIncome, 1);
}

void TestQifFormat::transferPositiveAndZeroSplitsAreSkippedAndCounted()
{
    const QByteArray file = cashFile({ "D01/02/2024", "T-100.00", "MMortgage", "LHousing", "S[Savings]", "$-60.00",
                                       "SInterest", "$-45.00", "SRefund", "$5.00", "SFee", "$0.00", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList { QStringLiteral("2 2024-01-02T00:00:00|Mortgage|Interest|45|") });
    QCOMPARE(contents.skippedTransfers, 1);
    QCOMPARE(contents.skippedIncome, 1);
    QCOMPARE(contents.skippedZeroAmounts, 1);
}

void TestQifFormat::splitsUnderSplitLeaveTheirRestToOthers()
{
    const QByteArray file = cashFile({ "D1/ 1'00", "U-10.00", "T-10.00", "PA Payee", "L--Split--", "S[An Account]",
                                       "$-4.00", "SA Category", "$-1.00", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("2 2000-01-01T00:00:00|A Payee|A Category|1|A Payee"),
                                                QStringLiteral("2 2000-01-01T00:00:00|A Payee|Others|5|A Payee") }));
    QCOMPARE(contents.skippedTransfers, 1);
}

void TestQifFormat::aTransferRecordIsSkippedWholeWithItsSplits()
{
    const QByteArray file = cashFile({ "D6/1/94", "T-1,000.00", "L[linda]", "S[linda]", "ECash", "$-253.64",
                                       "SMort Int", "$=746.36", "^", "D6/2/94", "T75.00", "SSalary", "$75.00", "^",
                                       "D6/3/94", "T0.00", "SA", "$-5.00", "SB", "$5.00", "^" });
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QVERIFY(contents.entries.isEmpty());
    QCOMPARE(contents.skippedTransfers, 1);
    QCOMPARE(contents.skippedIncome, 1);
    QCOMPARE(contents.skippedZeroAmounts, 1);
    QCOMPARE(contents.skipped(), 3);
}

void TestQifFormat::textEncodings_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("encoding");
    const QByteArray start = "!Type:Bank\r\nD03/03/10\r\nT-379.00\r\nP";
    const QByteArray end = "\r\n^\r\n";
    QTest::newRow("Windows-1252 0x80 and 0x99")
        << start + "SOME \xA3$\x99\x80 CHARACTERS" + end << QStringLiteral("SOME £$™€ CHARACTERS")
        << QStringLiteral("Windows-1252");
    QTest::newRow("Latin-1") << start + "Caf\xE9 cr\xE8me \xD7 2" + end << QStringLiteral("Café crème × 2")
                             << QStringLiteral("Windows-1252");
    const QString utf8Text = QStringLiteral("SOME £$™€ CHARACTERS Ằdøłƥh");
    QTest::newRow("UTF-8") << start + utf8Text.toUtf8() + end << utf8Text << QStringLiteral("UTF-8");
    QTest::newRow("UTF-8 with BOM") << "\xEF\xBB\xBF" + start + utf8Text.toUtf8() + end << utf8Text
                                    << QStringLiteral("UTF-8");
    const QString whole = QString::fromLatin1(start) + utf8Text + QString::fromLatin1(end);
    QByteArray le;
    QByteArray be;
    for (const QChar c : whole) {
        le += char(c.unicode() & 0xFF);
        le += char(c.unicode() >> 8);
        be += char(c.unicode() >> 8);
        be += char(c.unicode() & 0xFF);
    }
    QTest::newRow("UTF-16 LE with BOM") << "\xFF\xFE" + le << utf8Text << QStringLiteral("UTF-16LE");
    QTest::newRow("UTF-16 LE without BOM") << le << utf8Text << QStringLiteral("UTF-16LE");
    QTest::newRow("UTF-16 BE with BOM") << "\xFE\xFF" + be << utf8Text << QStringLiteral("UTF-16BE");
}

void TestQifFormat::textEncodings()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, place);
    QFETCH(QString, encoding);
    const EntryFileContents contents = QifFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(contents.entries.size(), 1);
    QCOMPARE(contents.entries.constFirst().entry.LocationText, place);
    QCOMPARE(contents.entries.constFirst().entry.Price, 379.0f);
    QCOMPARE(contents.encoding, encoding);
    QVERIFY(!contents.entries.constFirst().entry.LocationText.contains(QChar::ReplacementCharacter));
}

void TestQifFormat::anEncodingAskedForWinsOverTheBytes()
{
    // Valid UTF-8 that was meant as Windows-1252: "Ã©" in the bank's eyes.
    const QByteArray file = "!Type:Bank\r\nD03/03/10\r\nT-1\r\nPCaf\xC3\xA9\r\n^\r\n";
    QCOMPARE(QifFormat::read(file).entries.constFirst().entry.LocationText, QStringLiteral("Café"));
    const EntryFileContents asked = QifFormat::read(file, std::nullopt, TextEncoding::Windows1252);
    QCOMPARE(asked.entries.constFirst().entry.LocationText, QStringLiteral("CafÃ©"));
    QCOMPARE(asked.encoding, QStringLiteral("Windows-1252"));
    TextEncoding::Kind kind = TextEncoding::Utf8;
    QVERIFY(TextEncoding::fromName(QStringLiteral("cp1252"), &kind));
    QCOMPARE(kind, TextEncoding::Windows1252);
    QVERIFY(TextEncoding::fromName(QStringLiteral("latin1"), &kind));
    QCOMPARE(kind, TextEncoding::Latin1);
    QVERIFY(!TextEncoding::fromName(QStringLiteral("ebcdic"), &kind));
}
