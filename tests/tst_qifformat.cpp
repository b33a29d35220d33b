// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The QIF form of entries: what Ledgerly writes, and what it reads from the
// files other finance programs write. Pure: no database, no files.
#include "databasemanager.h"
#include "qifformat.h"

#include <QTest>

#include <cmath>

namespace {

// What an imported entry carries, as one comparable line.
QString fields(const EntryFileContents::LineEntry &read)
{
    const Entry &entry = read.entry;
    return QStringLiteral("%1 %2|%3|%4|%5|%6")
        .arg(read.line)
        .arg(entry.TransactDateTime.toString(Qt::ISODate), entry.ItemName, entry.CategoryName)
        .arg(double(entry.Price), 0, 'g', 9)
        .arg(entry.LocationText);
}

QStringList allFields(const EntryFileContents &contents)
{
    QStringList lines;
    for (const EntryFileContents::LineEntry &read : contents.entries)
        lines.append(fields(read));
    return lines;
}

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
