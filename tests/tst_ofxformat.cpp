// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Bank and card statements in OFX, as banks write them: OFX 1's SGML, OFX
// 2's XML and the mixtures of both. Pure: no database, no files.
#include "ofxformat.h"

#include "filecontentsfields.h"

#include <QTest>

namespace {

const QByteArray sgmlHeader = "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\nENCODING:USASCII\r\n"
                              "CHARSET:1252\r\nCOMPRESSION:NONE\r\nOLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n";

// A bank statement, a card statement and an investment statement in one
// OFX 1 file, with leaf elements left open as SGML allows (line numbers in
// the comments).
const QByteArray sgmlFile = sgmlHeader + // lines 1-10
    "<OFX>\r\n" // 11
    "<SIGNONMSGSRSV1><SONRS><STATUS><CODE>0<SEVERITY>INFO</STATUS><DTSERVER>20240131120000</SONRS>"
    "</SIGNONMSGSRSV1>\r\n" // 12
    "<BANKMSGSRSV1><STMTTRNRS><TRNUID>1<STMTRS><CURDEF>EUR\r\n" // 13
    "<BANKACCTFROM><BANKID>123<ACCTID>111-222<ACCTTYPE>CHECKING</BANKACCTFROM>\r\n" // 14
    "<BANKTRANLIST><DTSTART>20240101<DTEND>20240131\r\n" // 15
    "<STMTTRN><TRNTYPE>POS<DTPOSTED>20240105<TRNAMT>-12.50<FITID>A1<NAME>Caf\xE9 \x80 Bar</STMTTRN>\r\n" // 16
    "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20240106093000.000[-5:EST]<TRNAMT>-7,25<FITID>A2<NAME>M&amp;S"
    "<MEMO>Socks &amp; shoes</STMTTRN>\r\n" // 17
    "<STMTTRN><TRNTYPE>CREDIT<DTPOSTED>20240107<TRNAMT>1500.00<FITID>A3<NAME>Salary</STMTTRN>\r\n" // 18
    "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20240108235959[+9:JST]<TRNAMT>-0<FITID>A4<NAME>Void</STMTTRN>\r\n" // 19
    "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20240109<TRNAMT>-3<FITID>A5<PAYEE><NAME>Bakery Ltd<ADDR1>1 Main St"
    "</PAYEE></STMTTRN>\r\n" // 20
    "</BANKTRANLIST><LEDGERBAL><BALAMT>100<DTASOF>20240131</LEDGERBAL></STMTRS></STMTTRNRS></BANKMSGSRSV1>\r\n" // 21
    "<CREDITCARDMSGSRSV1><CCSTMTTRNRS><TRNUID>2<CCSTMTRS><CURDEF>EUR\r\n" // 22
    "<CCACCTFROM><ACCTID>4000-9999</CCACCTFROM>\r\n" // 23
    "<BANKTRANLIST>\r\n" // 24
    "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20240110120000<TRNAMT>-40.00<FITID>A1<NAME>Tank\x99 Fuel\r\n" // 25
    "<STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20240111<TRNAMT>-2.00<NAME>No id<MEMO>\r\n" // 26
    "</BANKTRANLIST></CCSTMTRS></CCSTMTTRNRS></CREDITCARDMSGSRSV1>\r\n" // 27
    "<INVSTMTMSGSRSV1><INVSTMTTRNRS><INVSTMTRS><INVACCTFROM><BROKERID>b<ACCTID>9</INVACCTFROM>\r\n" // 28
    "<INVTRANLIST><INVBANKTRAN><STMTTRN><TRNTYPE>DEBIT<DTPOSTED>20240112<TRNAMT>-99<FITID>I1</STMTTRN>"
    "<SUBACCTFUND>CASH</INVBANKTRAN>\r\n" // 29
    "<BUYSTOCK><INVBUY><INVTRAN><FITID>I2<DTTRADE>20240113</INVTRAN><TOTAL>-500</INVBUY></BUYSTOCK>\r\n" // 30
    "</INVTRANLIST></INVSTMTRS></INVSTMTTRNRS></INVSTMTMSGSRSV1>\r\n" // 31
    "</OFX>\r\n";

} // namespace

class TestOfxFormat : public QObject
{
    Q_OBJECT

private slots:
    void anSgmlFileWithABankACardAndAnInvestmentStatement();
    void eachEntryNamesItsAccountAndFitId();
    void anXmlFileInUtf8();
    void aFileWithoutEndTagsOrHeader();
    void anOfx2HeaderInFrontOfAnSgmlBody();
    void blankLinesBeforeTheHeaderAndBytesAfterTheEndAreIgnored();
    void aFileCutInsideATransactionIsRefusedWithItsLine();
    void aTransactionWhoseDateOrAmountDoesNotReadIsRefused_data();
    void aTransactionWhoseDateOrAmountDoesNotReadIsRefused();
    void aFileWithoutAnOfxElementIsNoOfx_data();
    void aFileWithoutAnOfxElementIsNoOfx();
    void theHeaderDecidesTheEncodingUnlessOneIsAsked();
    void theSuffixDecidesWhetherAFileIsOfx();
};

void TestOfxFormat::anSgmlFileWithABankACardAndAnInvestmentStatement()
{
    const EntryFileContents contents = OfxFormat::read(sgmlFile);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents),
             QStringList({ QStringLiteral("16 2024-01-05T00:00:00|Café € Bar|Others|12.5|Café € Bar"),
                           QStringLiteral("17 2024-01-06T00:00:00|Socks & shoes|Others|7.25|M&S"),
                           QStringLiteral("20 2024-01-09T00:00:00|Bakery Ltd|Others|3|Bakery Ltd"),
                           QStringLiteral("25 2024-01-10T00:00:00|Tank™ Fuel|Others|40|Tank™ Fuel"),
                           QStringLiteral("26 2024-01-11T00:00:00|No id|Others|2|No id") }));
    QCOMPARE(contents.skippedIncome, 1);
    QCOMPARE(contents.skippedZeroAmounts, 1);
    // The investment statement's cash transaction and its purchase.
    QCOMPARE(contents.skippedOtherSections, 2);
    QCOMPARE(contents.encoding, QStringLiteral("Windows-1252"));
    QVERIFY(contents.dateOrder.isEmpty());
}

void TestOfxFormat::eachEntryNamesItsAccountAndFitId()
{
    const EntryFileContents contents = OfxFormat::read(sgmlFile);
    QStringList ids;
    for (const EntryFileContents::LineEntry &read : contents.entries)
        ids.append(read.sourceId);
    // The same FITID in two accounts names two transactions; none names none.
    QCOMPARE(ids, QStringList({ QStringLiteral("OFX\x1f"
                                               "111-222\x1f"
                                               "A1"),
                                QStringLiteral("OFX\x1f"
                                               "111-222\x1f"
                                               "A2"),
                                QStringLiteral("OFX\x1f"
                                               "111-222\x1f"
                                               "A5"),
                                QStringLiteral("OFX\x1f"
                                               "4000-9999\x1f"
                                               "A1"),
                                QString() }));
}

void TestOfxFormat::anXmlFileInUtf8()
{
    const QString name = QStringLiteral("Ζαχαροπλαστείο Ōsaka");
    const QByteArray file = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
                            "<?OFX OFXHEADER=\"200\" VERSION=\"211\" SECURITY=\"NONE\" OLDFILEUID=\"NONE\" "
                            "NEWFILEUID=\"NONE\"?>\n"
                            "<OFX>\n" // 3
                            "  <BANKMSGSRSV1>\n"
                            "    <STMTTRNRS>\n" // 5
                            "      <STMTRS>\n"
                            "        <BANKACCTFROM><BANKID>1</BANKID><ACCTID>77</ACCTID></BANKACCTFROM>\n"
                            "        <BANKTRANLIST>\n"
                            "          <STMTTRN>\n" // 9
                            "            <TRNTYPE>DEBIT</TRNTYPE>\n"
                            "            <DTPOSTED>20231231</DTPOSTED>\n"
                            "            <TRNAMT>-19.99</TRNAMT>\n"
                            "            <FITID>X-1</FITID>\n"
                            "            <NAME>" +
        name.toUtf8() +
        "</NAME>\n"
        "            <MEMO></MEMO>\n"
        "          </STMTTRN>\n"
        "          <STMTTRN><TRNTYPE>DEBIT</TRNTYPE><DTPOSTED>20240101000000.000[0:GMT]</DTPOSTED>"
        "<TRNAMT>-1.00</TRNAMT><FITID>X-2</FITID><NAME/><MEMO>&lt;fee&gt; &#233;&#x20AC;</MEMO></STMTTRN>\n" // 17
        "        </BANKTRANLIST>\n"
        "      </STMTRS>\n"
        "    </STMTTRNRS>\n"
        "  </BANKMSGSRSV1>\n"
        "</OFX>\n";
    const EntryFileContents contents = OfxFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("9 2023-12-31T00:00:00|%1|Others|19.9899998|%1").arg(name),
                                                QStringLiteral("17 2024-01-01T00:00:00|<fee> é€|Others|1|") }));
    QCOMPARE(contents.encoding, QStringLiteral("UTF-8"));
}

void TestOfxFormat::aFileWithoutEndTagsOrHeader()
{
    // No header, no end tag anywhere, not even </OFX>.
    const QByteArray file = "<OFX><BANKMSGSRSV1><STMTTRNRS><STMTRS><BANKACCTFROM><ACCTID>5<BANKTRANLIST>\n"
                            "<STMTTRN><DTPOSTED>20240201<TRNAMT>-1.5<FITID>1<NAME>One\n"
                            "<STMTTRN><DTPOSTED>20240202<TRNAMT>-2.5<FITID>2<NAME>Two\n"
                            "<LEDGERBAL><BALAMT>10<DTASOF>20240301\n";
    const EntryFileContents contents = OfxFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList({ QStringLiteral("2 2024-02-01T00:00:00|One|Others|1.5|One"),
                                                QStringLiteral("3 2024-02-02T00:00:00|Two|Others|2.5|Two") }));
}

void TestOfxFormat::anOfx2HeaderInFrontOfAnSgmlBody()
{
    const QByteArray file = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?OFX OFXHEADER=\"200\"\n VERSION=\"203\"?>\n"
                            "<OFX><CREDITCARDMSGSRSV1><CCSTMTTRNRS><CCSTMTRS><CCACCTFROM><ACCTID>c</CCACCTFROM>\n"
                            "<BANKTRANLIST><STMTTRN><DTPOSTED>20170508<TRNAMT>-9.00<FITID>f<MEMO>Coffee Caf\xC3\xA9\n"
                            "</BANKTRANLIST></CCSTMTRS></CCSTMTTRNRS></CREDITCARDMSGSRSV1></OFX>\n";
    const EntryFileContents contents = OfxFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList { QStringLiteral("5 2017-05-08T00:00:00|Coffee Café|Others|9|") });
}

void TestOfxFormat::blankLinesBeforeTheHeaderAndBytesAfterTheEndAreIgnored()
{
    QByteArray file = "\n\n   \n" + sgmlHeader +
        "<OFX><BANKMSGSRSV1><STMTTRNRS><STMTRS><BANKACCTFROM><ACCTID>1</BANKACCTFROM><BANKTRANLIST>"
        "<STMTTRN><DTPOSTED>20240201<TRNAMT>-1<FITID>1<NAME>One</STMTTRN></BANKTRANLIST></STMTRS></STMTTRNRS>"
        "</BANKMSGSRSV1></OFX>\n";
    file += '\0';
    file += "<STMTTRN><TRNAMT>oops";
    const EntryFileContents contents = OfxFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList());
    QCOMPARE(allFields(contents), QStringList { QStringLiteral("14 2024-02-01T00:00:00|One|Others|1|One") });
}

void TestOfxFormat::aFileCutInsideATransactionIsRefusedWithItsLine()
{
    const QByteArray whole = sgmlFile;
    // Cut in the middle of line 20's transaction, before its amount.
    const QByteArray cut = whole.left(whole.indexOf("<TRNAMT>-3<FITID>A5"));
    const EntryFileContents contents = OfxFormat::read(cut);
    QCOMPARE(contents.problemLines(),
             QStringList { QStringLiteral("line 20: the transaction that starts here has no amount (TRNAMT): the file "
                                          "may be cut short") });
    QVERIFY(!contents.isAcceptable());
}

void TestOfxFormat::aTransactionWhoseDateOrAmountDoesNotReadIsRefused_data()
{
    QTest::addColumn<QByteArray>("transaction");
    QTest::addColumn<QString>("problem");
    QTest::newRow("no date") << QByteArray("<TRNAMT>-1")
                             << QStringLiteral("line 2: the transaction that starts here has no date (DTPOSTED): the "
                                               "file may be cut short");
    QTest::newRow("a date cut short") << QByteArray("<DTPOSTED>202401<TRNAMT>-1")
                                      << QStringLiteral("line 2: the date \"202401\" is not a date Ledgerly can read");
    QTest::newRow("no such day") << QByteArray("<DTPOSTED>20240230<TRNAMT>-1")
                                 << QStringLiteral("line 2: the date \"20240230\" is not a date Ledgerly can read");
    QTest::newRow("an amount with letters") << QByteArray("<DTPOSTED>20240201<TRNAMT>-1.00CR")
                                            << QStringLiteral("line 2: the amount \"-1.00CR\" is not a number");
}

void TestOfxFormat::aTransactionWhoseDateOrAmountDoesNotReadIsRefused()
{
    QFETCH(QByteArray, transaction);
    QFETCH(QString, problem);
    const QByteArray file = "<OFX><BANKMSGSRSV1><STMTTRNRS><STMTRS><BANKTRANLIST>\n<STMTTRN>" + transaction +
        "</STMTTRN></BANKTRANLIST></STMTRS></STMTTRNRS></BANKMSGSRSV1></OFX>";
    const EntryFileContents contents = OfxFormat::read(file);
    QCOMPARE(contents.problemLines(), QStringList { problem });
}

void TestOfxFormat::aFileWithoutAnOfxElementIsNoOfx_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a header only") << sgmlHeader;
    QTest::newRow("QIF") << QByteArray("!Type:Bank\nD01/02/2024\nT-1\n^\n");
    QTest::newRow("binary") << QByteArray(300, '\x01');
}

void TestOfxFormat::aFileWithoutAnOfxElementIsNoOfx()
{
    QFETCH(QByteArray, file);
    const EntryFileContents contents = OfxFormat::read(file);
    QCOMPARE(contents.problemLines(),
             QStringList { QStringLiteral("line 1: this is not an OFX file: it has no <OFX> element") });
}

void TestOfxFormat::theHeaderDecidesTheEncodingUnlessOneIsAsked()
{
    const QByteArray body = "<OFX><STMTRS><BANKTRANLIST><STMTTRN><DTPOSTED>20240201<TRNAMT>-1<NAME>Caf\xC3\xA9</OFX>";
    // Valid UTF-8 under a header that says 1252 is read as 1252.
    const EntryFileContents declared = OfxFormat::read(sgmlHeader + body);
    QCOMPARE(declared.entries.constFirst().entry.LocationText, QStringLiteral("CafÃ©"));
    QCOMPARE(declared.encoding, QStringLiteral("Windows-1252"));
    const EntryFileContents asked = OfxFormat::read(sgmlHeader + body, TextEncoding::Utf8);
    QCOMPARE(asked.entries.constFirst().entry.LocationText, QStringLiteral("Café"));
    QByteArray utf8Header = sgmlHeader;
    utf8Header.replace("ENCODING:USASCII", "ENCODING:UTF-8");
    QCOMPARE(OfxFormat::read(utf8Header + body).entries.constFirst().entry.LocationText, QStringLiteral("Café"));
    // A header that says UTF-8 over bytes that are not is not believed.
    QByteArray latin1Body = body;
    latin1Body.replace("Caf\xC3\xA9", "Caf\xE9");
    QCOMPARE(OfxFormat::read(utf8Header + latin1Body).entries.constFirst().entry.LocationText, QStringLiteral("Café"));
    QByteArray latin1Header = sgmlHeader;
    latin1Header.replace("CHARSET:1252", "CHARSET:8859-1");
    const EntryFileContents latin1 = OfxFormat::read(latin1Header + latin1Body);
    QCOMPARE(latin1.entries.constFirst().entry.LocationText, QStringLiteral("Café"));
    QCOMPARE(latin1.encoding, QStringLiteral("ISO-8859-1"));
}

void TestOfxFormat::theSuffixDecidesWhetherAFileIsOfx()
{
    for (const char *name : { "bank.ofx", "BANK.OFX", "card.qfx", "books.QBO" })
        QVERIFY2(OfxFormat::matches(QLatin1String(name)), name);
    for (const char *name : { "bank.qif", "bank.ofx.txt", "ofx" })
        QVERIFY2(!OfxFormat::matches(QLatin1String(name)), name);
}

QTEST_GUILESS_MAIN(TestOfxFormat)
#include "tst_ofxformat.moc"
