// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Reading banks' CSV files through a mapping: every detection on files
// written here, and the real exports of banks and money apps kept beside
// the repository.
#include "mappedcsvreader.h"

#include <QFile>
#include <QStringDecoder>
#include <QStringEncoder>
#include <QTest>

#include <cmath>

namespace {

CsvMapping mapping(const QString &text)
{
    QString error;
    const std::optional<CsvMapping> read = CsvMapping::fromText(text, &error);
    if (!read)
        qFatal("the test's mapping %s is refused: %s", qPrintable(text), qPrintable(error));
    return *read;
}

EntryFileContents readText(const QString &text, const QString &options)
{
    return MappedCsvReader::read(text.toUtf8(), mapping(options));
}

// Each entry as "yyyy-MM-dd|item|place|category|price".
QStringList entryLines(const EntryFileContents &contents)
{
    QStringList lines;
    for (const EntryFileContents::LineEntry &read : contents.entries)
        lines.append(QStringLiteral("%1|%2|%3|%4|%5")
                         .arg(read.entry.TransactDateTime.date().toString(Qt::ISODate), read.entry.ItemName,
                              read.entry.LocationText, read.entry.CategoryName)
                         .arg(double(read.entry.Price), 0, 'f', 2));
    return lines;
}

QString problems(const EntryFileContents &contents)
{
    return contents.problemLines().join(QLatin1Char('\n'));
}

QString realFile(const QString &name)
{
    return QStringLiteral(LEDGERLY_REAL_FILES "/csv/%1").arg(name);
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

} // namespace

class TestMappedCsvReader : public QObject
{
    Q_OBJECT

private slots:
    void eachDelimiterIsDetected_data();
    void eachDelimiterIsDetected();
    void aTieBetweenDelimitersGoesToTheSemicolon();
    void aGivenDelimiterIsTheOnlyOneTried();
    void eachDateFormIsDetected_data();
    void eachDateFormIsDetected();
    void slashedDatesAreDayOrMonthFirstAsTheWholeColumnDecides_data();
    void slashedDatesAreDayOrMonthFirstAsTheWholeColumnDecides();
    void twoDigitYearsFollowTheWindowOfQifFiles();
    void aTimeAfterTheDateIsIgnored();
    void aDateFormatGivenReadsTheDatesAlone();
    void datesOfTwoFormsInOneColumnAreRefused();
    void aFileWhoseDatesMostlyDoNotReadIsRefusedWithTheHint();
    void eachAmountFormReads_data();
    void eachAmountFormReads();
    void theDecimalSeparatorCanBeForced();
    void aSignedAmountIsAnExpenseWhenNegativeOrInvertedWhenPositive();
    void debitAndCreditColumnsSayWhichWayTheMoneyWent();
    void aDirectionColumnSaysWhichWayWithOutOrInMarks();
    void titleLinesAboveTheHeaderAreSkippedWhateverTheyHold();
    void footerAndPendingRowsAreNotTransactions();
    void aRowOnLine9WhoseAmountDoesNotReadRefusesTheFile();
    void rowsWithMoreOrFewerFieldsAreReadByPosition();
    void columnsByNumberSkipTheLinesGiven();
    void oneColumnMayServeTwoFieldsAndEmptyTextsFillEachOther();
    void eachEncodingIsDetectedOrTakenByName_data();
    void eachEncodingIsDetectedOrTakenByName();
    void nulCharactersAreRemovedBeforeReading();
    void quotingIsRfc4180AndAMalformedFieldNamesItsLine();
    void ledgerlysOwnHeaderIsRecognisedAndOtherColumnsAreNamed();
    void theLayoutTellsWhatWasDetected();
    void realExportsReadWithTheirMapping_data();
    void realExportsReadWithTheirMapping();
    void damagedRealExportsAreRefusedWithTheirLine_data();
    void damagedRealExportsAreRefusedWithTheirLine();
};

void TestMappedCsvReader::eachDelimiterIsDetected_data()
{
    QTest::addColumn<QString>("delimiter");
    QTest::newRow("comma") << QStringLiteral(",");
    QTest::newRow("semicolon") << QStringLiteral(";");
    QTest::newRow("tab") << QStringLiteral("\t");
    QTest::newRow("bar") << QStringLiteral("|");
}

void TestMappedCsvReader::eachDelimiterIsDetected()
{
    QFETCH(QString, delimiter);
    // Payees that hold the other delimiters do not mislead the count.
    QString text = QStringLiteral("Date,Payee,Amount\n2026-03-01,\"A, B; C|D\",-1.50\n2026-03-02,Shop,-2.25\n");
    if (delimiter != QLatin1String(",")) {
        text = QStringLiteral("Date,Payee,Amount\n2026-03-01,A b,-1.50\n2026-03-02,Shop,-2.25\n");
        text.replace(QLatin1Char(','), delimiter);
    }
    MappedCsvReader::Layout layout;
    const EntryFileContents contents = MappedCsvReader::read(
        text.toUtf8(), mapping(QStringLiteral("--map date=Date,item=Payee,amount=Amount")), &layout);
    QCOMPARE(problems(contents), QString());
    QCOMPARE(layout.delimiter, delimiter.front());
    QCOMPARE(entryLines(contents).size(), 2);
    QCOMPARE(contents.entries.at(1).entry.ItemName, QStringLiteral("Shop"));
}

void TestMappedCsvReader::aTieBetweenDelimitersGoesToTheSemicolon()
{
    // Two fields a line either way: ';' comes first.
    QCOMPARE(MappedCsvReader::detectDelimiter(u"a,b;c\nd,e;f\n"), QLatin1Char(';'));
    // Tab before comma, comma before bar.
    QCOMPARE(MappedCsvReader::detectDelimiter(u"a,b\tc\nd,e\tf\n"), QLatin1Char('\t'));
    QCOMPARE(MappedCsvReader::detectDelimiter(u"a,b|c\nd,e|f\n"), QLatin1Char(','));
    // More lines share the comma's count than the semicolon's.
    QCOMPARE(MappedCsvReader::detectDelimiter(u"a;b,c\nd,e\nf,g\n"), QLatin1Char(','));
}

void TestMappedCsvReader::aGivenDelimiterIsTheOnlyOneTried()
{
    const QString text = QStringLiteral("Date|Payee|Amount\n2026-03-01|A;B;C;D|-1.50\n");
    const EntryFileContents contents =
        readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount --delimiter '|'"));
    QCOMPARE(entryLines(contents), QStringList { QStringLiteral("2026-03-01|A;B;C;D|A;B;C;D|Others|1.50") });
}

void TestMappedCsvReader::eachDateFormIsDetected_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("form");
    QTest::addColumn<QDate>("firstDate");
    QTest::addColumn<QDate>("secondDate");
    QTest::newRow("yyyy-MM-dd") << "2026-03-01"
                                << "2026-12-31"
                                << "yyyy-MM-dd" << QDate(2026, 3, 1) << QDate(2026, 12, 31);
    QTest::newRow("yyyy/M/d") << "2012/3/22"
                              << "2012/10/5"
                              << "yyyy/M/d" << QDate(2012, 3, 22) << QDate(2012, 10, 5);
    QTest::newRow("yyyy.M.d") << "2019.4.17"
                              << "2019.04.19"
                              << "yyyy.M.d" << QDate(2019, 4, 17) << QDate(2019, 4, 19);
    QTest::newRow("d.M.yyyy") << "31.03.2019"
                              << "1.4.2019"
                              << "d.M.yyyy" << QDate(2019, 3, 31) << QDate(2019, 4, 1);
    QTest::newRow("d.M.yy") << "31.03.19"
                            << "1.4.19"
                            << "d.M.yy" << QDate(2019, 3, 31) << QDate(2019, 4, 1);
    QTest::newRow("d/M/yyyy") << "31/03/2019"
                              << "1/4/2019"
                              << "d/M/yyyy" << QDate(2019, 3, 31) << QDate(2019, 4, 1);
    QTest::newRow("M/d/yyyy") << "3/31/2019"
                              << "4/1/2019"
                              << "M/d/yyyy" << QDate(2019, 3, 31) << QDate(2019, 4, 1);
    QTest::newRow("d/M/yy") << "31/03/19"
                            << "1/4/19"
                            << "d/M/yy" << QDate(2019, 3, 31) << QDate(2019, 4, 1);
    QTest::newRow("M/d/yy") << "6/12/15"
                            << "6/14/15"
                            << "M/d/yy" << QDate(2015, 6, 12) << QDate(2015, 6, 14);
    QTest::newRow("yyyyMMdd") << "20191213"
                              << "20200213"
                              << "yyyyMMdd" << QDate(2019, 12, 13) << QDate(2020, 2, 13);
}

void TestMappedCsvReader::eachDateFormIsDetected()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, form);
    QFETCH(QDate, firstDate);
    QFETCH(QDate, secondDate);
    const QString text = QStringLiteral("Date;Payee;Amount\n%1;A;-1\n%2;B;-2\n").arg(first, second);
    MappedCsvReader::Layout layout;
    const EntryFileContents contents = MappedCsvReader::read(
        text.toUtf8(), mapping(QStringLiteral("--map date=Date,item=Payee,amount=Amount")), &layout);
    QCOMPARE(problems(contents), QString());
    QCOMPARE(layout.dateForm, form);
    QCOMPARE(contents.entries.size(), 2);
    QCOMPARE(contents.entries.at(0).entry.TransactDateTime, firstDate.startOfDay());
    QCOMPARE(contents.entries.at(1).entry.TransactDateTime, secondDate.startOfDay());
}

void TestMappedCsvReader::slashedDatesAreDayOrMonthFirstAsTheWholeColumnDecides_data()
{
    QTest::addColumn<QString>("dates");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QDate>("firstDate");
    QTest::addColumn<QString>("order");
    QTest::addColumn<bool>("open");
    // 03/04 alone could be either; 13/04 further down decides the day.
    QTest::newRow("decided day first by a later date")
        << "03/04/2026,13/04/2026" << QString() << QDate(2026, 4, 3) << "dmy" << false;
    QTest::newRow("decided month first by a later date")
        << "03/04/2026,04/13/2026" << QString() << QDate(2026, 3, 4) << "mdy" << false;
    QTest::newRow("undecided: month first")
        << "03/04/2026,05/06/2026" << QString() << QDate(2026, 3, 4) << "mdy" << true;
    QTest::newRow("undecided, dmy asked") << "03/04/2026,05/06/2026"
                                          << "--date-order dmy" << QDate(2026, 4, 3) << "dmy" << true;
    QTest::newRow("decided, dmy asked in vain") << "03/04/2026,04/13/2026"
                                                << "--date-order dmy" << QDate(2026, 3, 4) << "mdy" << false;
}

void TestMappedCsvReader::slashedDatesAreDayOrMonthFirstAsTheWholeColumnDecides()
{
    QFETCH(QString, dates);
    QFETCH(QString, options);
    QFETCH(QDate, firstDate);
    QFETCH(QString, order);
    QFETCH(bool, open);
    QString text = QStringLiteral("Date,Payee,Amount\n");
    for (const QString &date : dates.split(QLatin1Char(',')))
        text += date + QStringLiteral(",Shop,-1\n");
    const EntryFileContents contents =
        readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount ") + options);
    QCOMPARE(problems(contents), QString());
    QCOMPARE(contents.entries.constFirst().entry.TransactDateTime.date(), firstDate);
    QCOMPARE(contents.dateOrder, order);
    // The preview names the first date that could be read the other way.
    QCOMPARE(!contents.openDate.isEmpty(), open);
    if (open) {
        QCOMPARE(contents.openDate, QStringLiteral("03/04/2026"));
        QCOMPARE(contents.openDateLine, 2);
    }
}

void TestMappedCsvReader::twoDigitYearsFollowTheWindowOfQifFiles()
{
    // From 80 years back to 19 ahead of this year.
    const int thisYear = QDate::currentDate().year();
    const int ahead = (thisYear + 19) % 100;
    const int behind = (thisYear + 20) % 100;
    const QString text = QStringLiteral("Date;Payee;Amount\n01.02.%1;A;-1\n01.02.%2;B;-1\n")
                             .arg(ahead, 2, 10, QLatin1Char('0'))
                             .arg(behind, 2, 10, QLatin1Char('0'));
    const EntryFileContents contents = readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(contents), QString());
    QCOMPARE(contents.entries.at(0).entry.TransactDateTime.date().year(), thisYear + 19);
    QCOMPARE(contents.entries.at(1).entry.TransactDateTime.date().year(), thisYear + 20 - 100);
}

void TestMappedCsvReader::aTimeAfterTheDateIsIgnored()
{
    const QString text = QStringLiteral("Date,Payee,Amount\n2021-09-06 6:11:59,A,-1\n2020-01-01T13:00:00,B,-2\n");
    const EntryFileContents contents = readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(
        entryLines(contents),
        QStringList({ QStringLiteral("2021-09-06|A|A|Others|1.00"), QStringLiteral("2020-01-01|B|B|Others|2.00") }));
}

void TestMappedCsvReader::aDateFormatGivenReadsTheDatesAlone()
{
    // English month names, colons, and two-digit years in the window.
    const EntryFileContents months = readText(QStringLiteral("Date,Payee,Amount\n12-Dec-2019,A,-1\n02-Mar-2019,B,-1\n"),
                                              QStringLiteral("--map date=Date,item=Payee,amount=Amount "
                                                             "--date-format dd-MMM-yyyy"));
    QCOMPARE(problems(months), QString());
    QCOMPARE(months.entries.at(0).entry.TransactDateTime.date(), QDate(2019, 12, 12));
    QCOMPARE(months.entries.at(1).entry.TransactDateTime.date(), QDate(2019, 3, 2));
    const EntryFileContents colons = readText(QStringLiteral("Date,Payee,Amount\n2012:03:01,A,-1\n"),
                                              QStringLiteral("--map date=Date,item=Payee,amount=Amount "
                                                             "--date-format yyyy:MM:dd"));
    QCOMPARE(colons.entries.at(0).entry.TransactDateTime.date(), QDate(2012, 3, 1));
    const EntryFileContents shortYears = readText(QStringLiteral("Date,Payee,Amount\n31.12.05,A,-1\n"),
                                                  QStringLiteral("--map date=Date,item=Payee,amount=Amount "
                                                                 "--date-format dd.MM.yy"));
    QCOMPARE(shortYears.entries.at(0).entry.TransactDateTime.date(), QDate(2005, 12, 31));
    // The format alone: a date in a detectable form that the format does
    // not read is no transaction.
    const EntryFileContents alone =
        readText(QStringLiteral("Date,Payee,Amount\n31.12.2005,A,-1\n2005-12-30,B,-1\n"),
                 QStringLiteral("--map date=Date,item=Payee,amount=Amount --date-format dd.MM.yyyy"));
    QCOMPARE(problems(alone), QString());
    QCOMPARE(alone.entries.size(), 1);
    QCOMPARE(alone.skippedNotTransactions, 1);
}

void TestMappedCsvReader::datesOfTwoFormsInOneColumnAreRefused()
{
    const EntryFileContents contents =
        readText(QStringLiteral("Date,Payee,Amount\n2026-03-01,A,-1\n2026-03-02,B,-1\n03.03.2026,C,-1\n"),
                 QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(contents),
             QStringLiteral("line 4: the date \"03.03.2026\" is not written as the file's other dates (yyyy-MM-dd); "
                            "choose the date form with --date-format"));
    QVERIFY(contents.entries.isEmpty());
}

void TestMappedCsvReader::aFileWhoseDatesMostlyDoNotReadIsRefusedWithTheHint()
{
    // Two dates no form reads, one that reads: refused at the first.
    const EntryFileContents contents =
        readText(QStringLiteral("Date,Payee,Amount\n2026-03-01,A,-1\nMar 2 2026,B,-1\nMar 3 2026,C,-1\n"),
                 QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(contents),
             QStringLiteral("line 3: the dates of most rows cannot be read; choose the date form with --date-format"));
    // As many that read as not: the others are no transactions.
    const EntryFileContents even = readText(QStringLiteral("Date,Payee,Amount\n2026-03-01,A,-1\nPending,B,-1\n"),
                                            QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(even), QString());
    QCOMPARE(even.entries.size(), 1);
    QCOMPARE(even.skippedNotTransactions, 1);
}

void TestMappedCsvReader::eachAmountFormReads_data()
{
    QTest::addColumn<QString>("cell");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("mark");
    QTest::newRow("plain") << "-12.34" << -12.34 << int(MappedCsvReader::Amount::None);
    QTest::newRow("leading plus") << "+12.34" << 12.34 << int(MappedCsvReader::Amount::None);
    QTest::newRow("euro after") << "-12,34 €" << -12.34 << int(MappedCsvReader::Amount::None);
    QTest::newRow("dollar before") << "$1,133.94" << 1133.94 << int(MappedCsvReader::Amount::None);
    QTest::newRow("sign before the currency") << "- $12.01" << -12.01 << int(MappedCsvReader::Amount::None);
    QTest::newRow("plus before the currency") << "+ £1,100.00" << 1100.0 << int(MappedCsvReader::Amount::None);
    QTest::newRow("code before") << "CHF 240.00" << 240.0 << int(MappedCsvReader::Amount::None);
    QTest::newRow("code after") << "-9.50 EUR" << -9.5 << int(MappedCsvReader::Amount::None);
    QTest::newRow("another script") << QString::fromUtf8("د.ا.\u200F4.75") << 4.75
                                    << int(MappedCsvReader::Amount::None);
    QTest::newRow("parentheses") << "(12.34)" << -12.34 << int(MappedCsvReader::Amount::None);
    QTest::newRow("parentheses around a sign") << "($12.34)" << -12.34 << int(MappedCsvReader::Amount::None);
    QTest::newRow("trailing minus") << "12.34-" << -12.34 << int(MappedCsvReader::Amount::None);
    QTest::newRow("no leading zero") << "-.46" << -0.46 << int(MappedCsvReader::Amount::None);
    QTest::newRow("thousands with points") << "-1.001,00" << -1001.0 << int(MappedCsvReader::Amount::None);
    QTest::newRow("thousands with commas") << "1,234.56" << 1234.56 << int(MappedCsvReader::Amount::None);
    QTest::newRow("thousands with a blank") << "1 234,56" << 1234.56 << int(MappedCsvReader::Amount::None);
    QTest::newRow("thousands with a no-break space")
        << QString::fromUtf8("1\u00A0234,56") << 1234.56 << int(MappedCsvReader::Amount::None);
    QTest::newRow("thousands with an apostrophe") << "11'373.94" << 11373.94 << int(MappedCsvReader::Amount::None);
    QTest::newRow("no decimals") << "2500" << 2500.0 << int(MappedCsvReader::Amount::None);
    QTest::newRow("credit mark") << "12.34 CR" << 12.34 << int(MappedCsvReader::Amount::In);
    QTest::newRow("debit mark") << "12.34DR" << 12.34 << int(MappedCsvReader::Amount::Out);
}

void TestMappedCsvReader::eachAmountFormReads()
{
    QFETCH(QString, cell);
    QFETCH(double, value);
    QFETCH(int, mark);
    const std::optional<MappedCsvReader::Amount> read = MappedCsvReader::readAmount(cell);
    QVERIFY2(read, qPrintable(cell));
    QCOMPARE(read->value, value);
    QCOMPARE(int(read->mark), mark);
}

void TestMappedCsvReader::theDecimalSeparatorCanBeForced()
{
    // Three decimals read as thousands unless the file's separator is given.
    QCOMPARE(MappedCsvReader::readAmount(u"4.750")->value, 4750.0);
    QCOMPARE(MappedCsvReader::readAmount(u"4.750", QLatin1Char('.'))->value, 4.75);
    QCOMPARE(MappedCsvReader::readAmount(u"1.234", QLatin1Char(','))->value, 1234.0);
    QCOMPARE(MappedCsvReader::readAmount(u"1.234,5", QLatin1Char(','))->value, 1234.5);
    QVERIFY(!MappedCsvReader::readAmount(u"1,2,3", QLatin1Char(',')));
    QVERIFY(!MappedCsvReader::readAmount(u"Pending"));
    QVERIFY(!MappedCsvReader::readAmount(u""));
}

void TestMappedCsvReader::aSignedAmountIsAnExpenseWhenNegativeOrInvertedWhenPositive()
{
    const QString text = QStringLiteral("Date,Payee,Amount\n2026-03-01,Out,-5\n2026-03-02,In,7\n2026-03-03,Zero,0.00\n"
                                        "2026-03-04,Card credit,3 CR\n2026-03-05,Card debit,4 DR\n");
    const EntryFileContents bank = readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(entryLines(bank),
             QStringList({ QStringLiteral("2026-03-01|Out|Out|Others|5.00"),
                           QStringLiteral("2026-03-05|Card debit|Card debit|Others|4.00") }));
    QCOMPARE(bank.skippedIncome, 2);
    QCOMPARE(bank.skippedZeroAmounts, 1);
    // A card statement: positive is spent; CR and DR say it themselves.
    const EntryFileContents card = readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount --invert"));
    QCOMPARE(entryLines(card),
             QStringList({ QStringLiteral("2026-03-02|In|In|Others|7.00"),
                           QStringLiteral("2026-03-05|Card debit|Card debit|Others|4.00") }));
    QCOMPARE(card.skippedIncome, 2);
}

void TestMappedCsvReader::debitAndCreditColumnsSayWhichWayTheMoneyWent()
{
    const QString text = QStringLiteral("Date;Text;Soll;Haben\n"
                                        "01.03.2026;Minus written;-10,50;\n"
                                        "02.03.2026;Plain;4,00;0,00\n"
                                        "03.03.2026;Salary;0,00;1.200,00\n"
                                        "04.03.2026;Nothing;;\n");
    const EntryFileContents contents =
        readText(text, QStringLiteral("--map date=Date,item=Text,debit=Soll,credit=Haben"));
    QCOMPARE(problems(contents), QString());
    QCOMPARE(entryLines(contents),
             QStringList({ QStringLiteral("2026-03-01|Minus written|Minus written|Others|10.50"),
                           QStringLiteral("2026-03-02|Plain|Plain|Others|4.00") }));
    QCOMPARE(contents.skippedIncome, 1);
    QCOMPARE(contents.skippedZeroAmounts, 1);
    QCOMPARE(contents.skippedSummary(), QStringLiteral("skipped 2 (income 1, zero amounts 1)"));
    // A debit column alone does as well.
    const EntryFileContents debitOnly = readText(text, QStringLiteral("--map date=Date,item=Text,debit=Soll"));
    QCOMPARE(debitOnly.entries.size(), 2);
}

void TestMappedCsvReader::aDirectionColumnSaysWhichWayWithOutOrInMarks()
{
    const QString text =
        QStringLiteral("Date,Name,Af Bij,Amount\n20260301,Shop,Af,\"1,50\"\n20260302,Boss,Bij,\"100,00\"\n"
                       "20260303,Card,dr,2\n20260304,Blank,,3\n");
    // The default marks, in any case: Af and DR are out, the rest in.
    const EntryFileContents byDefault =
        readText(text, QStringLiteral("--map date=Date,item=Name,amount=Amount,direction='Af Bij'"));
    QCOMPARE(entryLines(byDefault),
             QStringList({ QStringLiteral("2026-03-01|Shop|Shop|Others|1.50"),
                           QStringLiteral("2026-03-03|Card|Card|Others|2.00") }));
    QCOMPARE(byDefault.skippedIncome, 2);
    const EntryFileContents outMarks =
        readText(text, QStringLiteral("--map date=Date,item=Name,amount=Amount,direction='Af Bij' --out-marks Bij"));
    QCOMPARE(entryLines(outMarks), QStringList { QStringLiteral("2026-03-02|Boss|Boss|Others|100.00") });
    // In marks: any other value, an empty one too, is an expense.
    const EntryFileContents inMarks =
        readText(text, QStringLiteral("--map date=Date,item=Name,amount=Amount,direction='Af Bij' --in-marks Bij,CR"));
    QCOMPARE(entryLines(inMarks),
             QStringList({ QStringLiteral("2026-03-01|Shop|Shop|Others|1.50"),
                           QStringLiteral("2026-03-03|Card|Card|Others|2.00"),
                           QStringLiteral("2026-03-04|Blank|Blank|Others|3.00") }));
}

void TestMappedCsvReader::titleLinesAboveTheHeaderAreSkippedWhateverTheyHold()
{
    // A stray quote, an account number and a comment above the header.
    const QString text = QStringLiteral("Account \"main;\n# IBAN;DE12 3456\nSaldo;1.234,00;EUR\n\n"
                                        "Buchung;Auftraggeber/Empfänger;Betrag\n"
                                        "09.12.2018;REWE SAGT DANKE 4711;-23,45\n");
    MappedCsvReader::Layout layout;
    const EntryFileContents contents = MappedCsvReader::read(
        text.toUtf8(), mapping(QStringLiteral("--map 'date=Buchung,item=Auftraggeber/Empfänger,amount=Betrag'")),
        &layout);
    QCOMPARE(problems(contents), QString());
    QCOMPARE(layout.headerLine, 5);
    QCOMPARE(entryLines(contents),
             QStringList { QStringLiteral("2018-12-09|REWE SAGT DANKE 4711|REWE SAGT DANKE 4711|Others|23.45") });
    QCOMPARE(contents.entries.constFirst().line, 6);
    QCOMPARE(contents.skipped(), 0);
}

void TestMappedCsvReader::footerAndPendingRowsAreNotTransactions()
{
    const QString text = QStringLiteral("Date,Description,Amount\nPending,Coffee,-3.00\n2026-03-01,Bread,-2.00\n\n"
                                        ",,\n2026-03-02,Milk,-1.00\n2026-03-03,Tea,-1.50\nTotal,,-6.00\n"
                                        "Balance,,100.00\n");
    const EntryFileContents contents = readText(text, QStringLiteral("--map date=Date,item=Description,amount=Amount"));
    QCOMPARE(problems(contents), QString());
    QCOMPARE(entryLines(contents),
             QStringList({ QStringLiteral("2026-03-01|Bread|Bread|Others|2.00"),
                           QStringLiteral("2026-03-02|Milk|Milk|Others|1.00"),
                           QStringLiteral("2026-03-03|Tea|Tea|Others|1.50") }));
    // Pending, the empty line, the empty row, Total and Balance.
    QCOMPARE(contents.skippedNotTransactions, 5);
    QCOMPARE(contents.skippedSummary(), QStringLiteral("skipped 5 (not transactions 5)"));
}

void TestMappedCsvReader::aRowOnLine9WhoseAmountDoesNotReadRefusesTheFile()
{
    QString text = QStringLiteral("Date;Payee;Amount\n");
    for (int day = 1; day <= 7; ++day)
        text += QStringLiteral("0%1.03.2026;Shop;-1,00\n").arg(day);
    text += QStringLiteral("08.03.2026;Shop;n/a\n09.03.2026;Shop;-1,00\n");
    const EntryFileContents contents = readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(contents), QStringLiteral("line 9: the amount \"n/a\" is not a number"));
    QVERIFY(!contents.isAcceptable());
    const EntryFileContents empty = readText(QStringLiteral("Date;Payee;Amount\n01.03.2026;Shop;\n"),
                                             QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(empty), QStringLiteral("line 2: the amount is empty"));
}

void TestMappedCsvReader::rowsWithMoreOrFewerFieldsAreReadByPosition()
{
    const QString text =
        QStringLiteral("Date,Payee,Amount,Balance,\n2026-03-01,Shop,-1,9,extra,more\n2026-03-02,Kiosk,-2\n"
                       "2026-03-03,Short\n");
    const EntryFileContents contents = readText(text, QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    // The third row's amount is missing, and so the file is refused there.
    QCOMPARE(problems(contents), QStringLiteral("line 4: the amount is empty"));
    const EntryFileContents two = readText(text.left(text.lastIndexOf(QLatin1String("2026-03-03"))),
                                           QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(entryLines(two),
             QStringList({ QStringLiteral("2026-03-01|Shop|Shop|Others|1.00"),
                           QStringLiteral("2026-03-02|Kiosk|Kiosk|Others|2.00") }));
}

void TestMappedCsvReader::columnsByNumberSkipTheLinesGiven()
{
    const QString noHeader = QStringLiteral("01.03.2026;Shop;x;x;-1,00\n02.03.2026;Kiosk;x;x;-2,00\n");
    const EntryFileContents none = readText(noHeader, QStringLiteral("--map date=1,item=2,amount=5 --skip-lines 0"));
    QCOMPARE(entryLines(none),
             QStringList({ QStringLiteral("2026-03-01|Shop|Shop|Others|1.00"),
                           QStringLiteral("2026-03-02|Kiosk|Kiosk|Others|2.00") }));
    // By default one line, the header, comes first.
    const EntryFileContents header = readText(noHeader, QStringLiteral("--map date=1,item=2,amount=5"));
    QCOMPARE(entryLines(header), QStringList { QStringLiteral("2026-03-02|Kiosk|Kiosk|Others|2.00") });
    const EntryFileContents three = readText(QStringLiteral("Export\nfrom\nbank\n") + noHeader,
                                             QStringLiteral("--map date=1,item=2,amount=5 --skip-lines 3"));
    QCOMPARE(three.entries.size(), 2);
    QCOMPARE(three.entries.constFirst().line, 4);
}

void TestMappedCsvReader::oneColumnMayServeTwoFieldsAndEmptyTextsFillEachOther()
{
    const QString text = QStringLiteral("Date,Payee,Memo,Category,Amount\n2026-03-01,REWE,Food week,Groceries,-20\n"
                                        "2026-03-02,Kiosk,,,-1\n2026-03-03,,Parking,,-2\n2026-03-04,,,,-3\n");
    const EntryFileContents both =
        readText(text, QStringLiteral("--map date=Date,item=Payee,place=Payee,category=Category,amount=Amount"));
    QCOMPARE(entryLines(both).constFirst(), QStringLiteral("2026-03-01|REWE|REWE|Groceries|20.00"));
    const EntryFileContents split =
        readText(text, QStringLiteral("--map date=Date,item=Memo,place=Payee,category=Category,amount=Amount"));
    QCOMPARE(entryLines(split),
             QStringList({ QStringLiteral("2026-03-01|Food week|REWE|Groceries|20.00"),
                           QStringLiteral("2026-03-02|Kiosk|Kiosk|Others|1.00"),
                           QStringLiteral("2026-03-03|Parking|Parking|Others|2.00"),
                           QStringLiteral("2026-03-04|Imported|Imported|Others|3.00") }));
}

void TestMappedCsvReader::eachEncodingIsDetectedOrTakenByName_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("encoding");
    QTest::addColumn<QString>("payee");
    const QString payee = QStringLiteral("Café Zürich €");
    const QString text = QStringLiteral("Datum;Empfänger;Betrag\n01.03.2026;%1;-1,00\n").arg(payee);
    const QString byName = QStringLiteral("--map date=Datum,item=Empfänger,amount=Betrag");
    QTest::newRow("UTF-8") << text.toUtf8() << byName << "UTF-8" << payee;
    QTest::newRow("UTF-8 with a mark") << QByteArray("\xEF\xBB\xBF") + text.toUtf8() << byName << "UTF-8" << payee;
    QStringEncoder utf16(QStringEncoder::Utf16LE);
    QTest::newRow("UTF-16LE without a mark") << QByteArray(utf16.encode(text)) << byName << "UTF-16LE" << payee;
    QStringEncoder utf16be(QStringEncoder::Utf16BE, QStringEncoder::Flag::WriteBom);
    QTest::newRow("UTF-16BE with a mark") << QByteArray(utf16be.encode(text)) << byName << "UTF-16BE" << payee;
    QStringEncoder cp1252("windows-1252");
    QTest::newRow("Windows-1252") << QByteArray(cp1252.encode(text)) << byName << "Windows-1252" << payee;
    // Windows-1250's š and č are Windows-1252's š and è: only the name tells.
    const QString czech = QStringLiteral("Datum;Název protiúčtu;Částka\n27.05.2018;Škoda Čačák;-1,00\n");
    QStringEncoder cp1250("windows-1250");
    QTest::newRow("windows-1250 by name")
        << QByteArray(cp1250.encode(czech))
        << QStringLiteral("--map 'date=Datum,item=Název protiúčtu,amount=Částka' --encoding windows-1250")
        << "windows-1250" << QStringLiteral("Škoda Čačák");
    QStringEncoder cp1257("windows-1257");
    QTest::newRow("windows-1257 by name")
        << QByteArray(cp1257.encode(QStringLiteral("Data,Gavėjas,Suma\n2012-01-02,Mokestis už lėšų,-1\n")))
        << QStringLiteral("--map date=Data,item=Gavėjas,amount=Suma --encoding cp1257") << "windows-1257"
        << QStringLiteral("Mokestis už lėšų");
}

void TestMappedCsvReader::eachEncodingIsDetectedOrTakenByName()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    QFETCH(QString, encoding);
    QFETCH(QString, payee);
    const EntryFileContents contents = MappedCsvReader::read(bytes, mapping(options));
    QCOMPARE(problems(contents), QString());
    QCOMPARE(contents.encoding, encoding);
    QCOMPARE(contents.entries.size(), 1);
    QCOMPARE(contents.entries.constFirst().entry.ItemName, payee);
}

void TestMappedCsvReader::nulCharactersAreRemovedBeforeReading()
{
    const QByteArray bytes("Date;Payee;Amount\0\n2026-03-01;Sh\0op;-1.00\n", 43);
    const EntryFileContents contents =
        MappedCsvReader::read(bytes, mapping(QStringLiteral("--map date=Date,item=Payee,amount=Amount")));
    QCOMPARE(problems(contents), QString());
    QCOMPARE(entryLines(contents), QStringList { QStringLiteral("2026-03-01|Shop|Shop|Others|1.00") });
}

void TestMappedCsvReader::quotingIsRfc4180AndAMalformedFieldNamesItsLine()
{
    const QString quoted =
        QStringLiteral("Date,Payee,Amount\n\"2026-03-01\",\"Line\nbreak, \"\"quoted\"\"\",\"-1,50\"\n"
                       "2026-03-02,Shop,-2\n");
    const EntryFileContents contents = readText(quoted, QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(contents), QString());
    QCOMPARE(contents.entries.at(0).entry.ItemName, QStringLiteral("Line\nbreak, \"quoted\""));
    QCOMPARE(contents.entries.at(0).entry.Price, 1.5f);
    QCOMPARE(contents.entries.at(1).line, 4);
    const EntryFileContents unclosed =
        readText(QStringLiteral("Date,Payee,Amount\n2026-03-01,Shop,-1\n2026-03-02,\"Shop,-2\n"),
                 QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(unclosed), QStringLiteral("line 3: a field in double quotes starts here and never ends"));
    const EntryFileContents stray = readText(QStringLiteral("Date,Payee,Amount\n2026-03-01,Sh\"op,-1\n"),
                                             QStringLiteral("--map date=Date,item=Payee,amount=Amount"));
    QCOMPARE(problems(stray), QStringLiteral("line 2: a double quote inside a field that is not in double quotes"));
}

void TestMappedCsvReader::ledgerlysOwnHeaderIsRecognisedAndOtherColumnsAreNamed()
{
    QVERIFY(MappedCsvReader::isLedgerlyCsv("Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n"));
    QVERIFY(MappedCsvReader::isLedgerlyCsv("\xEF\xBB\xBF"
                                           "amount,category,item,date\n"));
    QVERIFY(MappedCsvReader::isLedgerlyCsv(""));
    // Ledgerly's names with one missing, or with another beside them.
    QVERIFY(MappedCsvReader::isLedgerlyCsv("Date,Item,Category,Place\n"));
    QVERIFY(MappedCsvReader::isLedgerlyCsv("Date,Item,Category,Amount,Notes\n"));
    // No text at all.
    QVERIFY(MappedCsvReader::isLedgerlyCsv(QByteArrayView("\x89PNG\0\0\x1a", 7)));
    QVERIFY(!MappedCsvReader::isLedgerlyCsv("Date,Item,Notes\n"));
    QVERIFY(!MappedCsvReader::isLedgerlyCsv("Date,Payee,Amount\n"));
    QVERIFY(!MappedCsvReader::isLedgerlyCsv("Date;Item;Category;Amount\n"));
    QCOMPARE(MappedCsvReader::columnNames("Konto;DE12\n\nBuchung; Auftraggeber ;Betrag\n01.03.2026;A;-1\n"
                                          "02.03.2026;B;-2\n"),
             QStringList({ QStringLiteral("Buchung"), QStringLiteral("Auftraggeber"), QStringLiteral("Betrag") }));
}

void TestMappedCsvReader::theLayoutTellsWhatWasDetected()
{
    QStringEncoder cp1252("windows-1252");
    const QByteArray bytes = cp1252.encode(
        QStringLiteral("Kontoauszug\nBuchung;Empfänger;Betrag\n31.03.2026;Bäcker;-1,50\n01.04.2026;B;-2,00\n"));
    MappedCsvReader::Layout layout;
    MappedCsvReader::read(bytes, mapping(QStringLiteral("--map date=Buchung,item=Empfänger,amount=Betrag")), &layout,
                          1);
    QCOMPARE(layout.delimiter, QLatin1Char(';'));
    QCOMPARE(layout.encoding, QStringLiteral("Windows-1252"));
    QCOMPARE(layout.dateForm, QStringLiteral("d.M.yyyy"));
    QCOMPARE(layout.decimal, QLatin1Char(','));
    QCOMPARE(layout.headerLine, 2);
    QCOMPARE(layout.columns,
             QStringList({ QStringLiteral("Buchung"), QStringLiteral("Empfänger"), QStringLiteral("Betrag") }));
    QCOMPARE(layout.rows.size(), 1);
    QCOMPARE(layout.rows.constFirst(),
             QStringList({ QStringLiteral("31.03.2026"), QStringLiteral("Bäcker"), QStringLiteral("-1,50") }));
}

void TestMappedCsvReader::realExportsReadWithTheirMapping_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("expenses");
    QTest::addColumn<double>("total");
    QTest::addColumn<int>("income");
    QTest::addColumn<int>("zero");
    QTest::addColumn<int>("notTransactions");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");

    // The expected numbers were counted once from each file with a small
    // script of our own (Python's csv module, the file's encoding, date
    // form and decimal separator as SOURCES.md states them, amounts as
    // cents): the rows whose date reads, of those the expenses (negative,
    // marked out, or in the debit column) and the sum of their amounts, the
    // income and zero rows, and the rows after the header whose date does
    // not read, and the first and last day of the expenses.
    QTest::newRow("N26") << "bank2ynab_bank2ynab_20171001-20171106.csv"
                         << "--map 'date=Datum,item=Empfänger,category=Kategorie,amount=Betrag (EUR)'" << 1 << 59.99
                         << 0 << 0 << 0 << QDate(2017, 10, 1) << QDate(2017, 10, 1);
    QTest::newRow("Ostseesparkasse checking")
        << "bank2ynab_bank2ynab_20180226-1000594757-umsatz.CSV"
        << "--map date=Buchungstag,item=Verwendungszweck,place=Beguenstigter/Zahlungspflichtiger,amount=Betrag" << 1
        << 36.99 << 0 << 0 << 0 << QDate(2018, 2, 22) << QDate(2018, 2, 22);
    QTest::newRow("bunq") << "bank2ynab_bank2ynab_2019-03-02_11-50-46_bunq-statement.csv"
                          << "--map date=Date,item=Name,amount=Amount" << 5 << 39.68 << 2 << 0 << 0
                          << QDate(2018, 12, 6) << QDate(2018, 12, 17);
    QTest::newRow("KBC") << "bank2ynab_bank2ynab_export_BE11123456789012_20180304_1422.csv"
                         << "--map date=Datum,item=Omschrijving,amount=Bedrag" << 1 << 3.40 << 0 << 0 << 0
                         << QDate(2018, 2, 28) << QDate(2018, 2, 28);
    QTest::newRow("Raiffeisenbank CZ")
        << "bank2ynab_bank2ynab_Movements_1234512345_201805271848.csv"
        << "--map 'date=Datum provedení,item=Název protiúčtu,amount=Zaúčtovaná částka' --encoding windows-1250" << 1
        << 1.00 << 0 << 0 << 0 << QDate(2018, 5, 27) << QDate(2018, 5, 27);
    QTest::newRow("John Lewis card")
        << "bank2ynab_bank2ynab_MS_JANE_SMITH_01-12-2019_14-12-2019.csv"
        << "--map 'date=Date Processed,item=Description,amount=Amount,direction=4' --in-marks CR "
           "--date-format dd-MMM-yyyy"
        << 9 << 1385.80 << 1 << 0 << 3 << QDate(2019, 12, 2) << QDate(2019, 12, 12);
    QTest::newRow("Bank of Ireland") << "bank2ynab_bank2ynab_test_BOI_TransactionExport.csv"
                                     << "--map date=Date,item=Details,debit=Debit,credit=Credit" << 21 << 4260.83 << 6
                                     << 0 << 0 << QDate(2017, 9, 1) << QDate(2017, 9, 28);
    QTest::newRow("Raiffeisen AT, tabs") << "bank2ynab_bank2ynab_test_delimiter_tab.csv"
                                         << "--map date=1,item=2,debit=5,credit=4 --skip-lines 0" << 64 << 6458.90 << 9
                                         << 0 << 1 << QDate(2017, 9, 18) << QDate(2017, 10, 19);
    QTest::newRow("OCBC") << "bank2ynab_bank2ynab_TransactionHistory_20180418043121.csv"
                          << "--map 'date=Transaction date,item=Description,debit=Withdrawals (SGD),"
                             "credit=Deposits (SGD)'"
                          << 8 << 173.28 << 0 << 0 << 9 << QDate(2018, 4, 13) << QDate(2018, 4, 18);
    QTest::newRow("Ostseesparkasse card") << "bank2ynab_bank2ynab_umsatz-1234________1234-20180227.CSV"
                                          << "--map date=Belegdatum,item=Transaktionsbeschreibung,amount=Buchungsbetrag"
                                          << 1 << 5.00 << 0 << 0 << 0 << QDate(2018, 2, 20) << QDate(2018, 2, 20);
    QTest::newRow("Erste HU") << "bank2ynab_bank2ynab_W80844_EBH_201945.202122.csv"
                              << "--map date=1,item=14,amount=7 --date-format yyyy.MM.dd." << 1 << 350.00 << 1 << 0 << 0
                              << QDate(2019, 4, 19) << QDate(2019, 4, 19);
    QTest::newRow("Chase") << "beancount_beangulp_statement.csv"
                           << "--map 'date=Posting Date,item=Description,amount=Amount'" << 4 << 4190.89 << 2 << 0 << 0
                           << QDate(2016, 3, 4) << QDate(2016, 3, 18);
    QTest::newRow("Venmo") << "egh_ledger-autosync_venmo.csv"
                           << "--map 'date=Datetime,item=Note,place=To,amount=Amount (total)'" << 2 << 47.03 << 2 << 0
                           << 5 << QDate(2020, 1, 3) << QDate(2020, 1, 4);
    QTest::newRow("ING-DiBa DE") << "fabolhak_ofxstatement-de-ing_test_with_saldo_1.csv"
                                 << "--map 'date=Buchung,item=Verwendungszweck,place=Auftraggeber/Empfänger,"
                                    "amount=Betrag'"
                                 << 8 << 228.60 << 1 << 0 << 0 << QDate(2018, 12, 9) << QDate(2018, 12, 28);
    QTest::newRow("ING NL") << "gpaulissen_ofxstatement-dutch_ing_ok.csv"
                            << "--map 'date=Datum,item=Naam / Omschrijving,amount=Bedrag (EUR),direction=Af Bij'" << 3
                            << 1.87 << 2 << 1 << 0 << QDate(2019, 12, 13) << QDate(2020, 2, 13);
    QTest::newRow("Knab") << "gpaulissen_ofxstatement-dutch_Knab_transactieoverzicht_ok.csv"
                          << "--map date=Transactiedatum,item=Tegenrekeninghouder,amount=Bedrag,direction=CreditDebet "
                             "--date-format dd-MM-yyyy"
                          << 15 << 20827.76 << 13 << 0 << 0 << QDate(2019, 1, 7) << QDate(2019, 6, 21);
    QTest::newRow("Fortis") << "hsoft_moneyguru_fortis.csv"
                            << "--map \"date=DATE DE L'EXECUTION,item=CONTREPARTIE DE L'OPERATION,amount=MONTANT\""
                            << 18 << 1670.27 << 0 << 0 << 1 << QDate(2008, 12, 1) << QDate(2009, 1, 7);
    QTest::newRow("Fortis, CR line ends") << "hsoft_moneyguru_fortis_with_r_linesep.csv"
                                          << "--map \"date=DATE DE L'EXECUTION,item=CONTREPARTIE DE L'OPERATION,"
                                             "amount=MONTANT\""
                                          << 18 << 1670.27 << 0 << 0 << 1 << QDate(2008, 12, 1) << QDate(2009, 1, 7);
    QTest::newRow("German bank, noise") << "hsoft_moneyguru_lots_of_noise.csv"
                                        << "--map date=Buchungstag,item=Verwendungszweck,debit=Soll,credit=Haben" << 2
                                        << 999.99 << 0 << 0 << 1 << QDate(2009, 1, 14) << QDate(2009, 1, 15);
    QTest::newRow("mixed line ends") << "hsoft_moneyguru_mixed_linesep.csv"
                                     << "--map date=date,item=desc,amount=amount --date-order dmy" << 1 << 10.00 << 2
                                     << 0 << 0 << QDate(2009, 9, 10) << QDate(2009, 9, 10);
    QTest::newRow("UTF-16 without a mark") << "hsoft_moneyguru_utf16_encoded.csv"
                                           << "--map date=Date,item=Description,amount=Amount" << 1 << 42.00 << 1 << 0
                                           << 0 << QDate(2010, 1, 28) << QDate(2010, 1, 28);
    QTest::newRow("Schwab") << "jbms_beancount-import_EAC_Checking_Transactions_20201223-160009.CSV"
                            << "--map 'date=Date,item=Description,debit=Withdrawal (-),credit=Deposit (+)'" << 5
                            << 11758.04 << 7 << 0 << 2 << QDate(2019, 11, 22) << QDate(2020, 11, 13);
    QTest::newRow("Danske LT") << "kedder_ofxstatement-lithuanian_danske.csv"
                               << "--map date=1,item=5,amount=9 --date-format yyyy:MM:dd --encoding windows-1257" << 3
                               << 889.81 << 1 << 0 << 0 << QDate(2012, 3, 1) << QDate(2012, 3, 7);
    QTest::newRow("Wise") << "kedder_ofxstatement-transferwise_sample-statement.csv"
                          << "--map date=Date,item=Description,amount=Amount --date-format dd-MM-yyyy" << 3 << 368.90
                          << 2 << 0 << 0 << QDate(2020, 8, 20) << QDate(2020, 8, 24);
    QTest::newRow("Lloyds") << "Metasaura_ofxstatement-lloyds_sample-statement.csv"
                            << "--map 'date=Transaction Date,item=Transaction Description,debit=Debit Amount,"
                               "credit=Credit Amount'"
                            << 10 << 6381.99 << 2 << 0 << 0 << QDate(2023, 12, 1) << QDate(2024, 1, 15);
    QTest::newRow("Revolut October") << "mlaitinen_ofxstatement-revolut_2021-october.csv"
                                     << "--map 'date=Completed Date,item=Description,amount=Amount'" << 6 << 334.69 << 1
                                     << 0 << 0 << QDate(2021, 9, 5) << QDate(2021, 9, 8);
    QTest::newRow("Revolut January") << "mlaitinen_ofxstatement-revolut_2022-january.csv"
                                     << "--map 'date=Started Date,item=Description,amount=Amount'" << 7 << 531.59 << 1
                                     << 1 << 0 << QDate(2022, 1, 2) << QDate(2022, 1, 15);
    QTest::newRow("easybank") << "nblock_ofxstatement-austrian_easybank-giro.csv"
                              << "--map date=3,item=2,amount=5 --skip-lines 0" << 7 << 1586.17 << 3 << 0 << 0
                              << QDate(2014, 1, 1) << QDate(2014, 2, 21);
    QTest::newRow("ING-DiBa AT") << "nblock_ofxstatement-austrian_ing-diba.csv"
                                 << "--map date=Datum,item=Text,debit=Soll,credit=Haben" << 2 << 1534.56 << 4 << 0 << 0
                                 << QDate(2013, 8, 27) << QDate(2013, 12, 31);
    QTest::newRow("livebank") << "nblock_ofxstatement-austrian_livebank.csv"
                              << "--map date=Buchungsdatum,item=Umsatztext,amount=Betrag" << 1 << 100.00 << 2 << 3 << 0
                              << QDate(2013, 6, 10) << QDate(2013, 6, 10);
    QTest::newRow("French bank, OCA") << "OCA_bank-statement-import_meta_data_separated_credit_debit.csv"
                                      << "--map date=Date,item=Label,debit=Debit,credit=Credit --date-order dmy" << 3
                                      << 230.68 << 1 << 0 << 1 << QDate(2020, 4, 1) << QDate(2020, 4, 2);
    QTest::newRow("Capital One") << "reubano_csv2ofx_capitalone.csv"
                                 << "--map 'date=Transaction Date,item=Description,debit=Debit,credit=Credit'" << 1
                                 << 1000.00 << 1 << 0 << 0 << QDate(2015, 12, 31) << QDate(2015, 12, 31);
    QTest::newRow("GLS") << "reubano_csv2ofx_gls.csv"
                         << "--map date=Buchungstag,item=Auftraggeber/Empfänger,amount=Betrag" << 1 << 98.76 << 0 << 0
                         << 0 << QDate(2017, 10, 10) << QDate(2017, 10, 10);
    QTest::newRow("Mint") << "reubano_csv2ofx_mint.csv"
                          << "--map 'date=Date,item=Description,category=Category,amount=Amount,"
                             "direction=Transaction Type'"
                          << 3 << 5000.00 << 1 << 0 << 0 << QDate(2015, 6, 12) << QDate(2015, 6, 14);
    QTest::newRow("Outbank") << "reubano_csv2ofx_outbank.csv"
                             << "--map date=Date,item=Name,amount=Amount" << 3 << 135.89 << 1 << 0 << 0
                             << QDate(2019, 1, 5) << QDate(2019, 2, 8);
    QTest::newRow("UBS") << "reubano_csv2ofx_ubs-ch-fr_trimmed.csv"
                         << "--map 'date=Date de valeur,item=Description 2,place=Description 1,debit=Débit,"
                            "credit=Crédit'"
                         << 2 << 210.00 << 1 << 0 << 0 << QDate(2019, 3, 31) << QDate(2019, 4, 27);
    QTest::newRow("Monefy") << "simonmichael_hledger_monefy.csv"
                            << "--map date=date,item=description,category=category,amount=amount --date-order dmy" << 5
                            << 472.00 << 3 << 0 << 0 << QDate(2021, 12, 6) << QDate(2021, 12, 6);
    QTest::newRow("PayPal") << "simonmichael_hledger_paypal-custom.csv"
                            << "--map date=Date,item=Name,amount=Gross" << 3 << 15.99 << 4 << 0 << 0
                            << QDate(2019, 10, 1) << QDate(2019, 10, 19);
    QTest::newRow("hledger, French, Windows-1252") << "simonmichael_hledger_sample.fr.cp1252.csv"
                                                   << "--map date=Date,item=Remarque,amount=Montant" << 2 << 30.00 << 1
                                                   << 0 << 0 << QDate(2012, 3, 23) << QDate(2012, 3, 24);
    // Bytes that are not UTF-8 read as Windows-1252, as for QIF; no header.
    QTest::newRow("not UTF-8, no header") << "hsoft_moneyguru_invalid_utf8_char.csv"
                                          << "--map date=1,item=2,place=3,amount=6 --skip-lines 0 --date-order dmy"
                                          << 0 << 0.0 << 1 << 0 << 0 << QDate() << QDate();
    QTest::newRow("YNAB 4, Jordanian dinar") << "simonmichael_hledger_ynab4-rtl.csv"
                                             << "--map date=Date,item=Payee,debit=Outflow,credit=Inflow --decimal point"
                                             << 2 << 97.96 << 0 << 0 << 0 << QDate(2022, 11, 7) << QDate(2022, 12, 11);
}

void TestMappedCsvReader::realExportsReadWithTheirMapping()
{
    QFETCH(QString, file);
    QFETCH(QString, options);
    QFETCH(int, expenses);
    QFETCH(double, total);
    QFETCH(int, income);
    QFETCH(int, zero);
    QFETCH(int, notTransactions);
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    const QByteArray bytes = bytesOf(realFile(file));
    QVERIFY2(!bytes.isEmpty(), qPrintable(realFile(file)));
    const EntryFileContents contents = MappedCsvReader::read(bytes, mapping(options));
    QCOMPARE(problems(contents), QString());
    QCOMPARE(int(contents.entries.size()), expenses);
    double sum = 0;
    QDate earliest;
    QDate latest;
    for (const EntryFileContents::LineEntry &read : contents.entries) {
        sum += double(read.entry.Price);
        const QDate day = read.entry.TransactDateTime.date();
        earliest = earliest.isValid() ? qMin(earliest, day) : day;
        latest = latest.isValid() ? qMax(latest, day) : day;
        QVERIFY(!read.entry.ItemName.isEmpty());
        QVERIFY(!read.entry.LocationText.isEmpty());
    }
    QCOMPARE(std::llround(sum * 100), std::llround(total * 100));
    QCOMPARE(contents.skippedIncome, income);
    QCOMPARE(contents.skippedZeroAmounts, zero);
    QCOMPARE(contents.skippedNotTransactions, notTransactions);
    QCOMPARE(earliest, first);
    QCOMPARE(latest, last);
}

void TestMappedCsvReader::damagedRealExportsAreRefusedWithTheirLine_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("problem");
    // The third record lacks its opening quote; CR CR LF line ends put it
    // on line 5.
    QTest::newRow("Rabobank, a quote missing") << "bank2ynab_bank2ynab_CSV_A_20180414_112204.csv"
                                               << "--map 'date=Datum,item=Naam tegenpartij,amount=Bedrag'"
                                               << "line 5: a double quote inside a field that is not in double quotes";
    // 'UAB "Naktida"' inside a quoted field, its quotes not doubled.
    QTest::newRow("Swedbank, quotes not doubled") << "kedder_ofxstatement-lithuanian_swedbank.csv"
                                                  << "--map date=Data,item=Gavėjas,amount=Suma,direction=D/K"
                                                  << "line 5: text follows the closing double quote of a field";
}

void TestMappedCsvReader::damagedRealExportsAreRefusedWithTheirLine()
{
    QFETCH(QString, file);
    QFETCH(QString, options);
    QFETCH(QString, problem);
    const EntryFileContents contents = MappedCsvReader::read(bytesOf(realFile(file)), mapping(options));
    QCOMPARE(problems(contents), problem);
    QVERIFY(contents.entries.isEmpty());
}

QTEST_GUILESS_MAIN(TestMappedCsvReader)
#include "tst_mappedcsvreader.moc"
