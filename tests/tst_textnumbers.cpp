// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "textnumbers.h"

#include <QTest>

#include <memory>

class TestTextNumbers : public QObject
{
    Q_OBJECT

private slots:
    void textsAreNumberedInTheOrderTheyFirstCome();
    void aNullTextAndAnEmptyOneShareTheFirstOnesNumber();
    void textsStayFoundWhileTheListGrowsToThousands();
    void aCopyFindsItsTextsAfterTheOriginalIsGone();
    void aMovedListKeepsItsNumbers();
    void forgettingTheLookupsKeepsTheTexts();
    void clearingStartsTheNumbersAgain();
};

void TestTextNumbers::textsAreNumberedInTheOrderTheyFirstCome()
{
    TextNumbers numbers;
    QCOMPARE(numbers.numberOf(QStringLiteral("Food")), 0);
    QCOMPARE(numbers.numberOf(QStringLiteral("Travel")), 1);
    QCOMPARE(numbers.numberOf(QStringLiteral("Food")), 0);
    // Case and accents make other texts.
    QCOMPARE(numbers.numberOf(QStringLiteral("food")), 2);
    QCOMPARE(numbers.numberOf(QStringLiteral("Café")), 3);
    QCOMPARE(numbers.numberOf(QStringLiteral("Cafe")), 4);
    QCOMPARE(numbers.numberOf(QStringLiteral("Café")), 3);
    QCOMPARE(numbers.size(), 5);
    QCOMPARE(numbers.text(1), QStringLiteral("Travel"));
    QCOMPARE(numbers.all(), (QStringList { "Food", "Travel", "food", "Café", "Cafe" }));
}

void TestTextNumbers::aNullTextAndAnEmptyOneShareTheFirstOnesNumber()
{
    // As QString compares them: equal.
    TextNumbers numbers;
    QCOMPARE(numbers.numberOf(QString()), 0);
    QCOMPARE(numbers.numberOf(QStringLiteral("")), 0);
    QCOMPARE(numbers.size(), 1);
    QVERIFY(numbers.text(0).isNull());
}

void TestTextNumbers::textsStayFoundWhileTheListGrowsToThousands()
{
    // The list reallocates many times over; every text must still be found
    // under its number, each time in a string made anew.
    TextNumbers numbers;
    for (int i = 0; i < 20000; ++i)
        QCOMPARE(numbers.numberOf(QStringLiteral("Place %1").arg(i)), i);
    for (int i = 19999; i >= 0; i -= 7)
        QCOMPARE(numbers.numberOf(QStringLiteral("Place %1").arg(i)), i);
    QCOMPARE(numbers.size(), 20000);
    QCOMPARE(numbers.text(12345), QStringLiteral("Place 12345"));
}

void TestTextNumbers::aCopyFindsItsTextsAfterTheOriginalIsGone()
{
    auto original = std::make_unique<TextNumbers>();
    original->numberOf(QStringLiteral("Bakery"));
    original->numberOf(QStringLiteral("Station"));
    TextNumbers copy(*original);
    TextNumbers assigned;
    assigned.numberOf(QStringLiteral("Other"));
    assigned = *original;
    original.reset();

    for (TextNumbers *numbers : { &copy, &assigned }) {
        QCOMPARE(numbers->numberOf(QStringLiteral("Station")), 1);
        QCOMPARE(numbers->numberOf(QStringLiteral("Bakery")), 0);
        QCOMPARE(numbers->numberOf(QStringLiteral("Cafe")), 2);
        QCOMPARE(numbers->size(), 3);
    }
}

void TestTextNumbers::aMovedListKeepsItsNumbers()
{
    TextNumbers numbers;
    numbers.numberOf(QStringLiteral("Bread"));
    numbers.numberOf(QStringLiteral("Taxi"));
    TextNumbers moved(std::move(numbers));
    QCOMPARE(moved.numberOf(QStringLiteral("Taxi")), 1);
    QCOMPARE(moved.numberOf(QStringLiteral("Flowers")), 2);
}

void TestTextNumbers::forgettingTheLookupsKeepsTheTexts()
{
    TextNumbers numbers;
    numbers.numberOf(QStringLiteral("Bread"));
    numbers.numberOf(QStringLiteral("Taxi"));
    numbers.forgetLookups();
    QCOMPARE(numbers.size(), 2);
    QCOMPARE(numbers.text(0), QStringLiteral("Bread"));
    QCOMPARE(numbers.text(1), QStringLiteral("Taxi"));
    // A copy of a list that no longer looks up does not either, but keeps
    // the texts.
    const TextNumbers copy(numbers);
    QCOMPARE(copy.all(), (QStringList { "Bread", "Taxi" }));
}

void TestTextNumbers::clearingStartsTheNumbersAgain()
{
    TextNumbers numbers;
    numbers.numberOf(QStringLiteral("Bread"));
    numbers.numberOf(QStringLiteral("Taxi"));
    numbers.clear();
    QCOMPARE(numbers.size(), 0);
    QCOMPARE(numbers.numberOf(QStringLiteral("Taxi")), 0);
    QCOMPARE(numbers.text(0), QStringLiteral("Taxi"));
}

QTEST_GUILESS_MAIN(TestTextNumbers)
#include "tst_textnumbers.moc"
