// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The CSV form of entries: exact bytes out, and every form it promises to
// read back in. Pure: no database, no files.
#include "csvformat.h"
#include "databasemanager.h"

#include "sampleentries.h"
#include "testsupport.h"

#include <QTest>

#include <cfloat>
#include <cmath>

namespace {

const QByteArray header = "Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n";

// What the CSV carries of an entry, as one comparable line.
QString fields(const Entry &entry)
{
    return QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
        .arg(entry.TransactDateTime.toString(Qt::ISODate), entry.ItemName, entry.CategoryName)
        .arg(double(entry.Price), 0, 'g', 9)
        .arg(entry.LocationText, entry.EnableGeoLoc ? QStringLiteral("true") : QStringLiteral("false"))
        .arg(double(entry.GeoLocLongit), 0, 'g', 9)
        .arg(double(entry.GeoLocLatit), 0, 'g', 9);
}

QStringList problems(const EntryFileContents &contents)
{
    return contents.problemLines();
}

} // namespace

class TestCsvFormat : public QObject
{
    Q_OBJECT

private slots:
    void theFirstLineNamesTheColumns();
    void aFixedSetOfEntriesIsWrittenToTheByte();
    void numbersTakeTheFewestDigitsThatReadBack_data();
    void numbersTakeTheFewestDigitsThatReadBack();
    void minusZeroReadsAsZero();
    void everyFloatReadsBackAsItself();
    void fieldsAreQuotedAndGuardedOnlyWhenNeeded_data();
    void fieldsAreQuotedAndGuardedOnlyWhenNeeded();
    void readingRemovesExactlyOneGuardingApostrophe_data();
    void readingRemovesExactlyOneGuardingApostrophe();
    void whatIsWrittenReadsBackFieldForField();

    void otherDateFormsLineEndsAndEmptyCoordinatesAreRead();
    void columnsAreFoundByNameInAnyOrderAndCase();
    void aByteOrderMarkAndBlankLinesAreSkipped();
    void aFieldMaySpanLinesAndLaterLinesKeepTheirNumbers();
    void aFileWithOnlyTheFirstLineHoldsNoEntries();

    void aMissingRequiredColumnRefusesTheFile_data();
    void aMissingRequiredColumnRefusesTheFile();
    void aColumnNamedTwiceRefusesTheFile();
    void eachBadLineIsReportedWithItsNumber_data();
    void eachBadLineIsReportedWithItsNumber();
    void aFileThatIsNoCsvIsRefusedAtItsFirstBadLine_data();
    void aFileThatIsNoCsvIsRefusedAtItsFirstBadLine();
    void numbersOutsideTheGeneralFormAreRefused_data();
    void numbersOutsideTheGeneralFormAreRefused();
    void theSuffixDecidesWhetherAFileIsCsv();
};

void TestCsvFormat::theFirstLineNamesTheColumns()
{
    QCOMPARE(CsvFormat::header(), header);
    QCOMPARE(CsvFormat::write({}), header);
}

void TestCsvFormat::aFixedSetOfEntriesIsWrittenToTheByte()
{
    Entry plain = makeEntry(at(2026, 11, 15, 13, 8, 59), QStringLiteral("Bread"), QStringLiteral("Food"), 2.5f,
                            QStringLiteral("Corner Shop"), false, 103.0f, 1.3f);
    Entry quoted = makeEntry(at(2026, 11, 14, 8, 0), QStringLiteral("Milk, whole"), QStringLiteral("Drinks"), 0.1f,
                             QStringLiteral("Say \"hi\""), true, -3.5f, 40.25f);
    Entry formula = makeEntry(at(2026, 11, 13), QStringLiteral("=SUM(A1)"), QStringLiteral("-Other"), 1234567.0f,
                              QStringLiteral("line\nbreak"), false, 0.0f, 0.0f);
    Entry guarded = makeEntry(at(2026, 11, 12, 23, 59, 59), QStringLiteral("'quoted"), QStringLiteral("@home"), 20.0f,
                              QStringLiteral("+1, east"), true, 103.8488f, 1.3f);
    Entry foreign = makeEntry(at(2026, 11, 11, 7, 5, 3), QStringLiteral("Чай"), QStringLiteral("飲み物"), 12.75f,
                              QStringLiteral("Café\r\nBar"), false, 103.0f, 1.3f);

    const QByteArray expected = header +
        "2026-11-15T13:08:59,Bread,Food,2.5,Corner Shop,false,103,1.3\r\n"
        "2026-11-14T08:00:00,\"Milk, whole\",Drinks,0.1,\"Say \"\"hi\"\"\",true,-3.5,40.25\r\n"
        "2026-11-13T00:00:00,'=SUM(A1),'-Other,1234567,\"line\nbreak\",false,0,0\r\n"
        "2026-11-12T23:59:59,''quoted,'@home,20,\"'+1, east\",true,103.8488,1.3\r\n"
        "2026-11-11T07:05:03,\xd0\xa7\xd0\xb0\xd0\xb9,\xe9\xa3\xb2\xe3\x81\xbf\xe7\x89\xa9,12.75,"
        "\"Caf\xc3\xa9\r\nBar\",false,103,1.3\r\n";
    QCOMPARE(CsvFormat::write({ &plain, &quoted, &formula, &guarded, &foreign }), expected);

    QByteArray appended = "before";
    CsvFormat::appendLine(appended, plain);
    QCOMPARE(appended, QByteArray("before2026-11-15T13:08:59,Bread,Food,2.5,Corner Shop,false,103,1.3\r\n"));
}

void TestCsvFormat::numbersTakeTheFewestDigitsThatReadBack_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("a tenth, not its widened double") << 0.1f << QByteArray("0.1");
    QTest::newRow("whole") << 20.0f << QByteArray("20");
    QTest::newRow("seven digits") << 1234567.0f << QByteArray("1234567");
    QTest::newRow("seven significant digits") << 103.8488f << QByteArray("103.8488");
    QTest::newRow("cents") << 12.75f << QByteArray("12.75");
    QTest::newRow("negative") << -3.5f << QByteArray("-3.5");
    QTest::newRow("zero") << 0.0f << QByteArray("0");
    QTest::newRow("eight digits") << 16777216.0f << QByteArray("16777216");
    QTest::newRow("eight digits after the point") << 0.333333343f << QByteArray("0.33333334");
    QTest::newRow("nine digits") << 10.3291855f << QByteArray("10.3291855");
    QTest::newRow("small") << 1e-7f << QByteArray("1e-07");
    QTest::newRow("the largest float") << FLT_MAX << QByteArray("3.4028235e+38");
}

void TestCsvFormat::numbersTakeTheFewestDigitsThatReadBack()
{
    QFETCH(float, value);
    QFETCH(QByteArray, text);
    QCOMPARE(CsvFormat::number(value), text);
    float back = 0.0f;
    QVERIFY(CsvFormat::readNumber(text, &back));
    QCOMPARE(back, value);
}

void TestCsvFormat::minusZeroReadsAsZero()
{
    // Written as "0", so read as what it is written as.
    QCOMPARE(CsvFormat::number(-0.0f), QByteArray("0"));
    float value = 1.0f;
    QVERIFY(CsvFormat::readNumber("-0", &value));
    QCOMPARE(value, 0.0f);
    QVERIFY(!std::signbit(value));
}

void TestCsvFormat::everyFloatReadsBackAsItself()
{
    // A spread of floats across the whole range, each a neighbour of the
    // last by a prime step of bit patterns.
    int checked = 0;
    for (quint32 bits = 0; bits < 0x7f800000u; bits += 1000003u) {
        float value = 0.0f;
        memcpy(&value, &bits, sizeof value);
        for (const float signed_ : { value, -value }) {
            float back = 1.0f;
            const QByteArray text = CsvFormat::number(signed_);
            QVERIFY2(CsvFormat::readNumber(text, &back), text.constData());
            QVERIFY2(back == signed_, text.constData());
            QVERIFY2(text.size() <= 15, text.constData());
            ++checked;
        }
    }
    QVERIFY(checked > 4000);
}

void TestCsvFormat::fieldsAreQuotedAndGuardedOnlyWhenNeeded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("plain") << QStringLiteral("Bread and butter") << QByteArray("Bread and butter");
    QTest::newRow("empty") << QString() << QByteArray("");
    QTest::newRow("comma") << QStringLiteral("a,b") << QByteArray("\"a,b\"");
    QTest::newRow("quote") << QStringLiteral("5\" pipe") << QByteArray("\"5\"\" pipe\"");
    QTest::newRow("CR") << QStringLiteral("a\rb") << QByteArray("\"a\rb\"");
    QTest::newRow("LF") << QStringLiteral("a\nb") << QByteArray("\"a\nb\"");
    QTest::newRow("equals") << QStringLiteral("=1+1") << QByteArray("'=1+1");
    QTest::newRow("plus") << QStringLiteral("+49 shop") << QByteArray("'+49 shop");
    QTest::newRow("minus") << QStringLiteral("-5") << QByteArray("'-5");
    QTest::newRow("at") << QStringLiteral("@cell") << QByteArray("'@cell");
    QTest::newRow("apostrophe") << QStringLiteral("'tis") << QByteArray("''tis");
    QTest::newRow("only an apostrophe") << QStringLiteral("'") << QByteArray("''");
    QTest::newRow("guarded and quoted") << QStringLiteral("=A1,B1") << QByteArray("\"'=A1,B1\"");
    QTest::newRow("formula sign later") << QStringLiteral("a=b") << QByteArray("a=b");
    QTest::newRow("leading blank") << QStringLiteral(" =x") << QByteArray(" =x");
}

void TestCsvFormat::fieldsAreQuotedAndGuardedOnlyWhenNeeded()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, field);
    QCOMPARE(CsvFormat::field(text), field);
}

void TestCsvFormat::readingRemovesExactlyOneGuardingApostrophe_data()
{
    QTest::addColumn<QString>("unquoted");
    QTest::addColumn<QString>("text");
    QTest::newRow("equals") << QStringLiteral("'=1") << QStringLiteral("=1");
    QTest::newRow("plus") << QStringLiteral("'+1") << QStringLiteral("+1");
    QTest::newRow("minus") << QStringLiteral("'-1") << QStringLiteral("-1");
    QTest::newRow("at") << QStringLiteral("'@a") << QStringLiteral("@a");
    QTest::newRow("two apostrophes") << QStringLiteral("''a") << QStringLiteral("'a");
    QTest::newRow("three apostrophes") << QStringLiteral("'''") << QStringLiteral("''");
    QTest::newRow("apostrophe before a letter") << QStringLiteral("'tis") << QStringLiteral("'tis");
    QTest::newRow("a lone apostrophe") << QStringLiteral("'") << QStringLiteral("'");
    QTest::newRow("no apostrophe") << QStringLiteral("=x") << QStringLiteral("=x");
}

void TestCsvFormat::readingRemovesExactlyOneGuardingApostrophe()
{
    QFETCH(QString, unquoted);
    QFETCH(QString, text);
    QCOMPARE(CsvFormat::fieldText(unquoted), text);
}

void TestCsvFormat::whatIsWrittenReadsBackFieldForField()
{
    const QList<Entry> written = {
        makeEntry(at(2026, 1, 2, 3, 4, 5), QStringLiteral("Comma, inside"), QStringLiteral("Food"), 0.1f,
                  QStringLiteral("Quote \" inside"), true, -122.4194f, -37.8136f),
        makeEntry(at(2025, 12, 31, 23, 59, 59), QStringLiteral("=cmd|' /C calc'!A0"), QStringLiteral("-Minus"), 12.75f,
                  QStringLiteral("Line\r\nbreaks\nand\rmore"), false, 103.0f, 1.3f),
        makeEntry(at(2024, 2, 29), QStringLiteral("'already guarded"), QStringLiteral("'="), 1234567.0f,
                  QStringLiteral("@at"), true, 0.0f, 0.0f),
        makeEntry(at(2000, 1, 1), QStringLiteral("Ελληνικά 中文 עברית 🍞"), QStringLiteral("Über"), 1e-7f, QString(),
                  false, 103.8488f, 1.3f),
    };
    QList<Entry *> pointers;
    for (const Entry &entry : written)
        pointers.append(const_cast<Entry *>(&entry));
    const EntryFileContents contents = CsvFormat::read(CsvFormat::write(pointers));
    QCOMPARE(problems(contents), QStringList());
    QCOMPARE(contents.entries.size(), written.size());
    for (qsizetype i = 0; i < written.size(); ++i) {
        Entry expected = written.at(i);
        if (expected.LocationText.isNull())
            expected.LocationText = QLatin1String("");
        QCOMPARE(fields(contents.entries.at(i).entry), fields(expected));
        QVERIFY(!contents.entries.at(i).entry.LocationText.isNull());
    }
    // Each entry's line is where its record starts: the second entry's
    // place spans three lines.
    QCOMPARE(contents.entries.at(0).line, 2);
    QCOMPARE(contents.entries.at(1).line, 3);
    QCOMPARE(contents.entries.at(2).line, 7);
    QCOMPARE(contents.entries.at(3).line, 8);
}

void TestCsvFormat::otherDateFormsLineEndsAndEmptyCoordinatesAreRead()
{
    const QByteArray file = "Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\n"
                            "2026-03-01,Bread,Food,2.5,Shop,false,,\n"
                            "2026-03-02 14:30:15,Tea,Drinks,1,Shop,TRUE,5.5,\r\n"
                            "2026-03-03T08:00:00,Cake,Food,3.25,,,,-1.5";
    const EntryFileContents contents = CsvFormat::read(file);
    QCOMPARE(problems(contents), QStringList());
    QCOMPARE(contents.entries.size(), 3);
    QCOMPARE(fields(contents.entries.at(0).entry), QStringLiteral("2026-03-01T00:00:00|Bread|Food|2.5|Shop|false|0|0"));
    QCOMPARE(fields(contents.entries.at(1).entry), QStringLiteral("2026-03-02T14:30:15|Tea|Drinks|1|Shop|true|5.5|0"));
    QCOMPARE(fields(contents.entries.at(2).entry), QStringLiteral("2026-03-03T08:00:00|Cake|Food|3.25||false|0|-1.5"));
}

void TestCsvFormat::columnsAreFoundByNameInAnyOrderAndCase()
{
    const QByteArray file = "Note,amount, CATEGORY ,Latitude,item,date,Extra\r\n"
                            "anything,4.5,Food,1.25,Rice,2026-05-06T07:08:09,more\r\n";
    const EntryFileContents contents = CsvFormat::read(file);
    QCOMPARE(problems(contents), QStringList());
    QCOMPARE(contents.entries.size(), 1);
    // Without Place, GeoLocation or Longitude: an empty place, no
    // geolocation, longitude 0.
    QCOMPARE(fields(contents.entries.at(0).entry), QStringLiteral("2026-05-06T07:08:09|Rice|Food|4.5||false|0|1.25"));
}

void TestCsvFormat::aByteOrderMarkAndBlankLinesAreSkipped()
{
    const QByteArray file = "\xEF\xBB\xBF" + header + "\r\n2026-01-01,A,Food,1,,false,0,0\r\n\r\n\r\n";
    const EntryFileContents contents = CsvFormat::read(file);
    QCOMPARE(problems(contents), QStringList());
    QCOMPARE(contents.entries.size(), 1);
    QCOMPARE(contents.entries.at(0).line, 3);
}

void TestCsvFormat::aFieldMaySpanLinesAndLaterLinesKeepTheirNumbers()
{
    const QByteArray file = header +
        "2026-01-01,\"Two\r\nlines\",Food,1,,false,0,0\r\n"
        "2026-01-02,Bad,Food,x,,false,0,0\r\n";
    const EntryFileContents contents = CsvFormat::read(file);
    QCOMPARE(problems(contents),
             QStringList { QStringLiteral("line 4: the amount \"x\" is not a number Ledgerly can keep") });
    // The good record is read all the same, its line break kept.
    QCOMPARE(contents.entries.size(), 1);
    QCOMPARE(contents.entries.constFirst().entry.ItemName, QStringLiteral("Two\r\nlines"));
}

void TestCsvFormat::aFileWithOnlyTheFirstLineHoldsNoEntries()
{
    const EntryFileContents contents = CsvFormat::read(header);
    QVERIFY(contents.isAcceptable());
    QVERIFY(contents.entries.isEmpty());
    QCOMPARE(contents.skipped(), 0);
}

void TestCsvFormat::aMissingRequiredColumnRefusesTheFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("problem");
    QTest::newRow("Date") << QByteArray("Item,Category,Amount\r\nA,Food,1\r\n")
                          << QStringLiteral("line 1: the first line names no Date column");
    QTest::newRow("Item") << QByteArray("Date,Category,Amount\r\n2026-01-01,Food,1\r\n")
                          << QStringLiteral("line 1: the first line names no Item column");
    QTest::newRow("Category") << QByteArray("Date,Item,Amount\r\n2026-01-01,A,1\r\n")
                              << QStringLiteral("line 1: the first line names no Category column");
    QTest::newRow("Amount") << QByteArray("Date,Item,Category,Place\r\n2026-01-01,A,Food,Shop\r\n")
                            << QStringLiteral("line 1: the first line names no Amount column");
    QTest::newRow("two of them") << QByteArray("Date,Item\r\n2026-01-01,A\r\n")
                                 << QStringLiteral("line 1: the first line names no Category column, no Amount column");
}

void TestCsvFormat::aMissingRequiredColumnRefusesTheFile()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, problem);
    const EntryFileContents contents = CsvFormat::read(file);
    QCOMPARE(problems(contents), QStringList { problem });
    QVERIFY(contents.entries.isEmpty());
}

void TestCsvFormat::aColumnNamedTwiceRefusesTheFile()
{
    const EntryFileContents contents = CsvFormat::read("Date,Item,Category,Amount,item\r\n2026-01-01,A,Food,1,B\r\n");
    QCOMPARE(problems(contents), QStringList { QStringLiteral("line 1: the column Item is named twice") });
}

void TestCsvFormat::eachBadLineIsReportedWithItsNumber_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("problem");
    QTest::newRow("date") << QByteArray("2026-13-01T00:00:00,A,Food,1,,false,0,0")
                          << QStringLiteral("line 3: the date \"2026-13-01T00:00:00\" is not of the form "
                                            "yyyy-MM-ddTHH:mm:ss");
    QTest::newRow("day-first date") << QByteArray("01/02/2026,A,Food,1,,false,0,0")
                                    << QStringLiteral("line 3: the date \"01/02/2026\" is not of the form "
                                                      "yyyy-MM-ddTHH:mm:ss");
    QTest::newRow("a year with a sign in it")
        << QByteArray("202=-05-06,A,Food,1,,false,0,0")
        << QStringLiteral("line 3: the date \"202=-05-06\" is not of the form yyyy-MM-ddTHH:mm:ss");
    QTest::newRow("time of day") << QByteArray("2026-01-01T25:00:00,A,Food,1,,false,0,0")
                                 << QStringLiteral("line 3: the date \"2026-01-01T25:00:00\" is not of the form "
                                                   "yyyy-MM-ddTHH:mm:ss");
    QTest::newRow("amount") << QByteArray("2026-01-01,A,Food,1;5,,false,0,0")
                            << QStringLiteral("line 3: the amount \"1;5\" is not a number Ledgerly can keep");
    QTest::newRow("empty amount") << QByteArray("2026-01-01,A,Food,,,false,0,0")
                                  << QStringLiteral("line 3: the amount \"\" is not a number Ledgerly can keep");
    QTest::newRow("amount too large") << QByteArray("2026-01-01,A,Food,1e39,,false,0,0")
                                      << QStringLiteral("line 3: the amount \"1e39\" is not a number Ledgerly can "
                                                        "keep");
    QTest::newRow("above the largest amount")
        << QByteArray("2026-01-01,A,Food,10000000,,false,0,0")
        << QStringLiteral("line 3: the amount \"10000000\" is above 9999999.99, the largest amount Ledgerly takes");
    QTest::newRow("a refund above the largest amount")
        << QByteArray("2026-01-01,A,Food,-1e7,,false,0,0")
        << QStringLiteral("line 3: the amount \"-1e7\" is above 9999999.99, the largest amount Ledgerly takes");
    QTest::newRow("empty item") << QByteArray("2026-01-01,,Food,1,,false,0,0")
                                << QStringLiteral("line 3: the item is empty");
    QTest::newRow("empty category") << QByteArray("2026-01-01,A,,1,,false,0,0")
                                    << QStringLiteral("line 3: the category is empty");
    QTest::newRow("geolocation") << QByteArray("2026-01-01,A,Food,1,,yes,0,0")
                                 << QStringLiteral("line 3: the geolocation \"yes\" is neither true nor false");
    QTest::newRow("longitude") << QByteArray("2026-01-01,A,Food,1,,true,east,0")
                               << QStringLiteral("line 3: the longitude \"east\" is not a number");
    QTest::newRow("too few fields") << QByteArray("2026-01-01,A,Food,1")
                                    << QStringLiteral("line 3: 4 fields where the first line names 8");
    QTest::newRow("too many fields") << QByteArray("2026-01-01,A,Food,1,,false,0,0,")
                                     << QStringLiteral("line 3: 9 fields where the first line names 8");
}

void TestCsvFormat::eachBadLineIsReportedWithItsNumber()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, problem);
    const QByteArray file =
        header + "2026-01-01,Good,Food,1,,false,0,0\r\n" + line + "\r\n2026-01-02,Good,Food,2,,false,0,0\r\n";
    const EntryFileContents contents = CsvFormat::read(file);
    QCOMPARE(problems(contents), QStringList { problem });
    QVERIFY(!contents.isAcceptable());
}

void TestCsvFormat::aFileThatIsNoCsvIsRefusedAtItsFirstBadLine_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("problem");
    QTest::newRow("empty") << QByteArray()
                           << QStringLiteral("line 1: the file is empty; its first line must name the columns");
    QTest::newRow("blank") << QByteArray(" \r\n\r\n")
                           << QStringLiteral("line 1: the file is empty; its first line must name the columns");
    QTest::newRow("cut inside a quoted field")
        << QByteArray(header + "2026-01-01,A,Food,1,,false,0,0\r\n2026-01-02,\"Half a na")
        << QStringLiteral("line 3: a field in double quotes starts here and never ends");
    QTest::newRow("cut inside a line") << QByteArray(header + "2026-01-01,A,Food,1,,false,0,0\r\n2026-01-02,B,Fo")
                                       << QStringLiteral("line 3: 3 fields where the first line names 8");
    QTest::newRow("text after a closing quote")
        << QByteArray(header + "2026-01-01,\"A\"B,Food,1,,false,0,0\r\n")
        << QStringLiteral("line 2: text follows the closing double quote of a field");
    QTest::newRow("quote inside a plain field") << QByteArray(header + "2026-01-01,A\"B,Food,1,,false,0,0\r\n")
                                                << QStringLiteral("line 2: a double quote inside a field that is not "
                                                                  "in double quotes");
    QTest::newRow("not UTF-8")
        << QByteArray(header + "2026-01-01,A,Food,1,,false,0,0\r\n2026-01-02,Caf\xe9,Food,1,,false,0,0\r\n")
        << QStringLiteral("line 3: the text is not UTF-8");
    QByteArray binary = "\x89PNG\r\n\x1a\n";
    binary.append('\0');
    binary.append("\x0d\x49\x48\x44\x52");
    QTest::newRow("binary") << binary << QStringLiteral("line 3: a NUL byte: this is not a text file");
    QTest::newRow("a QIF file") << QByteArray("!Type:Cash\r\nD01/02/2026\r\nT-1\r\n^\r\n")
                                << QStringLiteral("line 1: the first line names no Date column, no Item column, no "
                                                  "Category column, no Amount column");
}

void TestCsvFormat::aFileThatIsNoCsvIsRefusedAtItsFirstBadLine()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, problem);
    const EntryFileContents contents = CsvFormat::read(file);
    QCOMPARE(problems(contents), QStringList { problem });
}

void TestCsvFormat::numbersOutsideTheGeneralFormAreRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : { "", " 1", "1 ", "inf", "-inf", "nan", "1,5", "0x10", "1e", "e5", ".", "-", "+", "1.2.3",
                              "1e39", "-1e39", "١" })
        QTest::newRow(text) << QByteArray(text);
}

void TestCsvFormat::numbersOutsideTheGeneralFormAreRefused()
{
    QFETCH(QByteArray, text);
    float value = 42.0f;
    QVERIFY(!CsvFormat::readNumber(text, &value));
    QCOMPARE(value, 42.0f);
}

void TestCsvFormat::theSuffixDecidesWhetherAFileIsCsv()
{
    QVERIFY(CsvFormat::matches(QStringLiteral("/tmp/entries.csv")));
    QVERIFY(CsvFormat::matches(QStringLiteral("ENTRIES.CSV")));
    QVERIFY(!CsvFormat::matches(QStringLiteral("entries.qif")));
    QVERIFY(!CsvFormat::matches(QStringLiteral("entries.csv.txt")));
    QVERIFY(!CsvFormat::matches(QStringLiteral("csv")));
}

QTEST_GUILESS_MAIN(TestCsvFormat)
#include "tst_csvformat.moc"
