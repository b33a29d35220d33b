// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// A bank CSV's mapping: read from the command line's options, checked, and
// written back as the text a profile keeps.
#include "csvmapping.h"

#include <QTest>

class TestCsvMapping : public QObject
{
    Q_OBJECT

private slots:
    void mapNamesColumnsByHeaderTextOrNumber();
    void mapRefusesUnknownFieldsFieldsTwiceAndMissingColumns_data();
    void mapRefusesUnknownFieldsFieldsTwiceAndMissingColumns();
    void optionsTakeOnlyTheirValues_data();
    void optionsTakeOnlyTheirValues();
    void anIncompleteOrContradictoryMappingIsNamed_data();
    void anIncompleteOrContradictoryMappingIsNamed();
    void theTextIsTheOptionsAsGivenAndReadsBackTheSame();
    void directionMarksAreComparedInAnyCase();
};

void TestCsvMapping::mapNamesColumnsByHeaderTextOrNumber()
{
    CsvMapping mapping;
    QString error;
    QVERIFY(mapping.readMap(QStringLiteral("date=Buchungstag, item = Verwendungszweck ,place=7,AMOUNT=Betrag (EUR)"),
                            &error));
    QCOMPARE(error, QString());
    QCOMPARE(mapping.columns[CsvMapping::Date].name, QStringLiteral("Buchungstag"));
    QCOMPARE(mapping.columns[CsvMapping::Item].name, QStringLiteral("Verwendungszweck"));
    QCOMPARE(mapping.columns[CsvMapping::Place].number, 7);
    QVERIFY(mapping.columns[CsvMapping::Place].name.isEmpty());
    QCOMPARE(mapping.columns[CsvMapping::Amount].name, QStringLiteral("Betrag (EUR)"));
    QVERIFY(!mapping.columns[CsvMapping::Debit].isSet());
    QVERIFY(mapping.hasNamedColumns());
    QCOMPARE(mapping.mapText(), QStringLiteral("date=Buchungstag,item=Verwendungszweck,place=7,amount=Betrag (EUR)"));
    QCOMPARE(mapping.problem(), QString());
}

void TestCsvMapping::mapRefusesUnknownFieldsFieldsTwiceAndMissingColumns_data()
{
    QTest::addColumn<QString>("map");
    QTest::addColumn<QString>("error");
    QTest::newRow("unknown field") << "date=1,payee=2"
                                   << "--map knows the fields date, item, place, category, amount, debit, credit and "
                                      "direction, not \"payee\".";
    QTest::newRow("a field twice") << "date=1,date=2"
                                   << "--map gives date twice.";
    QTest::newRow("no column") << "date=1,item="
                               << "--map gives item no column: write item=NAME or item=NUMBER.";
    QTest::newRow("no equals sign") << "date"
                                    << "--map gives date no column: write date=NAME or date=NUMBER.";
    QTest::newRow("column 0") << "date=0"
                              << "--map numbers columns from 1, not 0.";
}

void TestCsvMapping::mapRefusesUnknownFieldsFieldsTwiceAndMissingColumns()
{
    QFETCH(QString, map);
    QFETCH(QString, error);
    CsvMapping mapping;
    QString told;
    QVERIFY(!mapping.readMap(map, &told));
    QCOMPARE(told, error);
    // Nothing was taken from it.
    QVERIFY(!mapping.columns[CsvMapping::Date].isSet());
}

void TestCsvMapping::optionsTakeOnlyTheirValues_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("error");
    QTest::newRow("delimiter") << "delimiter"
                               << "::"
                               << "--delimiter is ',', ';', tab or '|', not \"::\".";
    QTest::newRow("decimal") << "decimal"
                             << "dot"
                             << "--decimal is comma or point, not \"dot\".";
    QTest::newRow("skip lines") << "skip-lines"
                                << "-1"
                                << "--skip-lines takes a number of lines, 0 or more, not \"-1\".";
    QTest::newRow("date order") << "date-order"
                                << "ydm"
                                << "--date-order is mdy, dmy or ymd, not \"ydm\".";
    QTest::newRow("encoding") << "encoding"
                              << "EBCDIC"
                              << "--encoding names no encoding Qt knows: \"EBCDIC\".";
    QTest::newRow("marks") << "out-marks"
                           << " , "
                           << "--out-marks takes values such as D,DR.";
}

void TestCsvMapping::optionsTakeOnlyTheirValues()
{
    QFETCH(QString, option);
    QFETCH(QString, value);
    QFETCH(QString, error);
    CsvMapping mapping;
    QString told;
    QVERIFY(!mapping.readOption(option, value, &told));
    QCOMPARE(told, error);
    QVERIFY(mapping == CsvMapping());
}

void TestCsvMapping::anIncompleteOrContradictoryMappingIsNamed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("problem");
    QTest::newRow("no date") << "--map item=1,amount=2"
                             << "--map needs a date column: date=NAME or date=NUMBER.";
    QTest::newRow("no item or place") << "--map date=1,amount=2"
                                      << "--map needs an item or a place column (or both).";
    QTest::newRow("no money") << "--map date=1,item=2"
                              << "--map needs the money: an amount column, or debit and credit columns.";
    QTest::newRow("amount and debit") << "--map date=1,item=2,amount=3,debit=4"
                                      << "--map takes an amount column or debit and credit columns, not both.";
    QTest::newRow("direction without amount") << "--map date=1,item=2,debit=3,direction=4"
                                              << "--map takes a direction column only with an amount column.";
    QTest::newRow("both marks") << "--map date=1,item=2,amount=3,direction=4 --out-marks D --in-marks C"
                                << "--out-marks and --in-marks exclude each other.";
    QTest::newRow("marks without direction") << "--map date=1,item=2,amount=3 --in-marks C"
                                             << "--in-marks goes with a direction column only.";
    QTest::newRow("invert with debit") << "--map date=1,item=2,debit=3 --invert"
                                       << "--invert goes with an amount column only.";
    QTest::newRow("invert with direction") << "--map date=1,item=2,amount=3,direction=4 --invert"
                                           << "--invert goes with an amount column without a direction column only.";
    QTest::newRow("skip lines with names")
        << "--map date=Date,item=2,amount=3 --skip-lines 2"
        << "--skip-lines goes with columns given by number only; named columns find their header line.";
    QTest::newRow("not an option") << "date=1"
                                   << "\"date=1\" is no option";
    QTest::newRow("an open quote") << "--map 'date=1"
                                   << "a quote never closes";
    QTest::newRow("a value missing") << "--map date=1,item=2,amount=3 --decimal"
                                     << "--decimal has no value";
}

void TestCsvMapping::anIncompleteOrContradictoryMappingIsNamed()
{
    QFETCH(QString, text);
    QFETCH(QString, problem);
    QString error;
    QVERIFY(!CsvMapping::fromText(text, &error));
    QCOMPARE(error, problem);
}

void TestCsvMapping::theTextIsTheOptionsAsGivenAndReadsBackTheSame()
{
    CsvMapping mapping;
    QString error;
    QVERIFY(
        mapping.readMap(QStringLiteral("date=Date de valeur,item=Description 2,debit=Débit,credit=Crédit"), &error));
    QVERIFY(mapping.readOption(QStringLiteral("delimiter"), QStringLiteral(";"), &error));
    QVERIFY(mapping.readOption(QStringLiteral("encoding"), QStringLiteral("cp1250"), &error));
    QVERIFY(mapping.readOption(QStringLiteral("date-format"), QStringLiteral("dd.MM.yyyy"), &error));
    QVERIFY(mapping.readOption(QStringLiteral("decimal"), QStringLiteral("comma"), &error));
    QCOMPARE(mapping.text(),
             QStringLiteral("--map 'date=Date de valeur,item=Description 2,debit=Débit,credit=Crédit' --delimiter ';' "
                            "--encoding windows-1250 --date-format dd.MM.yyyy --decimal comma"));
    const std::optional<CsvMapping> back = CsvMapping::fromText(mapping.text(), &error);
    QVERIFY2(back, qPrintable(error));
    QVERIFY(*back == mapping);

    CsvMapping numbers;
    QVERIFY(numbers.readMap(QStringLiteral("date=1,item=2,amount=5,direction=4"), &error));
    QVERIFY(numbers.readOption(QStringLiteral("delimiter"), QStringLiteral("tab"), &error));
    QVERIFY(numbers.readOption(QStringLiteral("skip-lines"), QStringLiteral("0"), &error));
    QVERIFY(numbers.readOption(QStringLiteral("in-marks"), QStringLiteral("CR, K"), &error));
    QVERIFY(numbers.readOption(QStringLiteral("date-order"), QStringLiteral("dmy"), &error));
    QCOMPARE(numbers.text(),
             QStringLiteral("--map date=1,item=2,amount=5,direction=4 --delimiter tab --date-order dmy "
                            "--skip-lines 0 --in-marks CR,K"));
    QVERIFY(*CsvMapping::fromText(numbers.text()) == numbers);
    // A name with an apostrophe, and --option=value as a shell passes it.
    const std::optional<CsvMapping> apostrophe =
        CsvMapping::fromText(QStringLiteral("--map=\"date=DATE DE L'EXECUTION,item=2,amount=3\" --invert"), &error);
    QVERIFY2(apostrophe, qPrintable(error));
    QCOMPARE(apostrophe->columns[CsvMapping::Date].name, QStringLiteral("DATE DE L'EXECUTION"));
    QVERIFY(apostrophe->invert);
    QCOMPARE(apostrophe->text(), QStringLiteral("--map 'date=DATE DE L'\\''EXECUTION,item=2,amount=3' --invert"));
    QVERIFY(*CsvMapping::fromText(apostrophe->text()) == *apostrophe);
}

void TestCsvMapping::directionMarksAreComparedInAnyCase()
{
    CsvMapping mapping;
    for (const char *out : { "D", "dr", "DEBIT", "Debet", "af", "S", "soll", "-", " D " })
        QVERIFY2(mapping.isOutMark(QLatin1String(out)), out);
    for (const char *in : { "C", "CR", "Bij", "K", "", "credit" })
        QVERIFY2(!mapping.isOutMark(QLatin1String(in)), in);
    mapping.outMarks = { QStringLiteral("Withdrawal") };
    QVERIFY(mapping.isOutMark(QStringLiteral("withdrawal")));
    QVERIFY(!mapping.isOutMark(QStringLiteral("D")));
    mapping.outMarks.clear();
    mapping.inMarks = { QStringLiteral("CR") };
    QVERIFY(!mapping.isOutMark(QStringLiteral("cr")));
    QVERIFY(mapping.isOutMark(QString()));
    QVERIFY(mapping.isOutMark(QStringLiteral("D")));
}

QTEST_GUILESS_MAIN(TestCsvMapping)
#include "tst_csvmapping.moc"
