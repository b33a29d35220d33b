// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "amount.h"

#include <QTest>

class TestAmount : public QObject
{
    Q_OBJECT

private slots:
    void aTypedAmountMatchesWholeAsEachFieldTakesIt_data();
    void aTypedAmountMatchesWholeAsEachFieldTakesIt();
    void amountsAboveTheLargestOrBeyondADoubleAreTooLarge_data();
    void amountsAboveTheLargestOrBeyondADoubleAreTooLarge();
    void theRefusalSaysWhatToDo();
};

void TestAmount::aTypedAmountMatchesWholeAsEachFieldTakesIt_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("withPoint");
    QTest::addColumn<bool>("withoutPoint");

    QTest::newRow("two decimals") << "12.50" << true << true;
    QTest::newRow("a point and no decimals") << "12." << true << true;
    QTest::newRow("a whole number") << "12" << false << true;
    QTest::newRow("three decimals") << "12.555" << false << false;
    QTest::newRow("negative") << "-1.00" << false << false;
    QTest::newRow("a comma") << "12,50" << false << false;
    QTest::newRow("a point first") << ".50" << false << false;
    QTest::newRow("empty") << "" << false << false;
}

void TestAmount::aTypedAmountMatchesWholeAsEachFieldTakesIt()
{
    QFETCH(QString, text);
    QFETCH(bool, withPoint);
    QFETCH(bool, withoutPoint);
    const auto matchesWhole = [&text](Amount::Point point) {
        const QRegularExpression whole(QRegularExpression::anchoredPattern(Amount::pattern(point).pattern()));
        return whole.match(text).hasMatch();
    };
    QCOMPARE(matchesWhole(Amount::Point::Required), withPoint);
    QCOMPARE(matchesWhole(Amount::Point::Optional), withoutPoint);
}

void TestAmount::amountsAboveTheLargestOrBeyondADoubleAreTooLarge_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("tooLarge");

    QTest::newRow("the largest") << "9999999.99" << false;
    QTest::newRow("a cent more") << "10000000.00" << true;
    QTest::newRow("small") << "0.01" << false;
    QTest::newRow("forty nines") << QString(40, QLatin1Char('9')) << true;
    QTest::newRow("beyond a double") << QString(400, QLatin1Char('9')) << true;
    QTest::newRow("no number") << "abc" << false;
}

void TestAmount::amountsAboveTheLargestOrBeyondADoubleAreTooLarge()
{
    QFETCH(QString, text);
    QFETCH(bool, tooLarge);
    QCOMPARE(Amount::isTooLarge(text), tooLarge);
}

void TestAmount::theRefusalSaysWhatToDo()
{
    QCOMPARE(Amount::tooLargeMessage(), QStringLiteral("Amount is too large. Enter a smaller amount"));
}

QTEST_GUILESS_MAIN(TestAmount)

#include "tst_amount.moc"
