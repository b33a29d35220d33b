// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "rulematcher.h"

#include <QTest>

namespace {

Rule rule(const QString &text, const QString &category, Rule::Field in = Rule::Field::Both,
          Rule::How how = Rule::How::Contains)
{
    return { text, in, how, category };
}

} // namespace

class TestRuleMatcher : public QObject
{
    Q_OBJECT

private slots:
    void theFirstRuleThatMatchesWinsWhateverTheOthersSay();
    void withoutAMatchingRuleThereIsNoCategory();
    void containsFindsTheTextAnywhereInAnyCaseWithOrWithoutAccents_data();
    void containsFindsTheTextAnywhereInAnyCaseWithOrWithoutAccents();
    void aRuleLooksOnlyAtTheTextsItIsGiven_data();
    void aRuleLooksOnlyAtTheTextsItIsGiven();
    void aRegularExpressionMatchesAnywhereInAnyCase_data();
    void aRegularExpressionMatchesAnywhereInAnyCase();
    void aRegularExpressionIsNotAPlainText();
    void aRuleThatCannotBeUsedIsToldWhyAndNeverMatches_data();
    void aRuleThatCannotBeUsedIsToldWhyAndNeverMatches();
    void onlyEntriesWithoutACategoryOrInOthersTakeARulesCategory_data();
    void onlyEntriesWithoutACategoryOrInOthersTakeARulesCategory();
    void askingAgainGivesTheSameAnswer();
};

void TestRuleMatcher::theFirstRuleThatMatchesWinsWhateverTheOthersSay()
{
    RuleMatcher groceriesFirst({ rule(QStringLiteral("rewe"), QStringLiteral("Groceries")),
                                 rule(QStringLiteral("sagt danke"), QStringLiteral("Thanks")) });
    QCOMPARE(groceriesFirst.categoryOf(QStringLiteral("REWE SAGT DANKE 4711"), QString()),
             std::optional<QString>(QStringLiteral("Groceries")));
    RuleMatcher thanksFirst({ rule(QStringLiteral("sagt danke"), QStringLiteral("Thanks")),
                              rule(QStringLiteral("rewe"), QStringLiteral("Groceries")) });
    QCOMPARE(thanksFirst.categoryOf(QStringLiteral("REWE SAGT DANKE 4711"), QString()),
             std::optional<QString>(QStringLiteral("Thanks")));
    // A later rule still answers for what the first does not match.
    QCOMPARE(thanksFirst.categoryOf(QStringLiteral("REWE Markt"), QString()),
             std::optional<QString>(QStringLiteral("Groceries")));
}

void TestRuleMatcher::withoutAMatchingRuleThereIsNoCategory()
{
    RuleMatcher matcher({ rule(QStringLiteral("rewe"), QStringLiteral("Groceries")) });
    QCOMPARE(matcher.categoryOf(QStringLiteral("Aldi"), QStringLiteral("Berlin")), std::nullopt);
    RuleMatcher none({});
    QVERIFY(none.isEmpty());
    QCOMPARE(none.categoryOf(QStringLiteral("REWE"), QString()), std::nullopt);
}

void TestRuleMatcher::containsFindsTheTextAnywhereInAnyCaseWithOrWithoutAccents_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("item");
    QTest::addColumn<bool>("matches");
    QTest::newRow("plain text, accented item") << "cafe"
                                               << "Café de Flore" << true;
    QTest::newRow("accented text, plain item") << "Café"
                                               << "CAFE NOIR" << true;
    QTest::newRow("upper case accent") << "cafe"
                                       << "LE CAFÉ" << true;
    QTest::newRow("in the middle") << "sagt"
                                   << "REWE SAGT DANKE" << true;
    QTest::newRow("German umlaut") << "muller"
                                   << "Drogerie Müller" << true;
    QTest::newRow("Greek in any case") << "ΚΑΦΕ"
                                       << "καφε" << true;
    QTest::newRow("a part that is not there") << "cafes"
                                              << "Café" << false;
    QTest::newRow("blanks count") << "re we"
                                  << "REWE" << false;
}

void TestRuleMatcher::containsFindsTheTextAnywhereInAnyCaseWithOrWithoutAccents()
{
    QFETCH(QString, text);
    QFETCH(QString, item);
    QFETCH(bool, matches);
    RuleMatcher matcher({ rule(text, QStringLiteral("Coffee")) });
    QCOMPARE(matcher.categoryOf(item, QString()).has_value(), matches);
}

void TestRuleMatcher::aRuleLooksOnlyAtTheTextsItIsGiven_data()
{
    QTest::addColumn<int>("in");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("place");
    QTest::addColumn<bool>("matches");
    QTest::newRow("item rule, text in the item") << int(Rule::Field::Item) << "Shell 42"
                                                 << "Hamburg" << true;
    QTest::newRow("item rule, text in the place") << int(Rule::Field::Item) << "Fuel"
                                                  << "Shell Hamburg" << false;
    QTest::newRow("place rule, text in the place") << int(Rule::Field::Place) << "Fuel"
                                                   << "Shell Hamburg" << true;
    QTest::newRow("place rule, text in the item") << int(Rule::Field::Place) << "Shell 42"
                                                  << "Hamburg" << false;
    QTest::newRow("both, text in the item") << int(Rule::Field::Both) << "Shell 42"
                                            << "Hamburg" << true;
    QTest::newRow("both, text in the place") << int(Rule::Field::Both) << "Fuel"
                                             << "Shell Hamburg" << true;
    QTest::newRow("both, text in neither") << int(Rule::Field::Both) << "Fuel"
                                           << "Hamburg" << false;
    // The two texts are not read as one: "Shell" is not found across them.
    QTest::newRow("both, text across the two") << int(Rule::Field::Both) << "She"
                                               << "ll" << false;
}

void TestRuleMatcher::aRuleLooksOnlyAtTheTextsItIsGiven()
{
    QFETCH(int, in);
    QFETCH(QString, item);
    QFETCH(QString, place);
    QFETCH(bool, matches);
    RuleMatcher matcher({ rule(QStringLiteral("shell"), QStringLiteral("Car"), Rule::Field(in)) });
    QCOMPARE(matcher.categoryOf(item, place), matches ? std::optional<QString>(QStringLiteral("Car")) : std::nullopt);
}

void TestRuleMatcher::aRegularExpressionMatchesAnywhereInAnyCase_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("item");
    QTest::addColumn<bool>("matches");
    QTest::newRow("anchored at the start") << "^rewe\\b"
                                           << "REWE SAGT DANKE" << true;
    QTest::newRow("anchored, not at the start") << "^rewe"
                                                << "Kauf bei REWE" << false;
    QTest::newRow("anywhere") << "sagt\\s+danke"
                              << "REWE SAGT   DANKE" << true;
    QTest::newRow("alternatives") << "aldi|lidl|netto"
                                  << "LIDL DIENSTL" << true;
    QTest::newRow("digits") << "\\d{4}$"
                            << "Card payment 4711" << true;
    QTest::newRow("non-ASCII in any case") << "ÉPICERIE"
                                           << "épicerie du coin" << true;
    QTest::newRow("no match") << "^lidl$"
                              << "LIDL DIENSTL" << false;
}

void TestRuleMatcher::aRegularExpressionMatchesAnywhereInAnyCase()
{
    QFETCH(QString, expression);
    QFETCH(QString, item);
    QFETCH(bool, matches);
    RuleMatcher matcher({ rule(expression, QStringLiteral("Groceries"), Rule::Field::Both, Rule::How::Regex) });
    QCOMPARE(matcher.categoryOf(item, QString()).has_value(), matches);
}

void TestRuleMatcher::aRegularExpressionIsNotAPlainText()
{
    // "a.c" as text needs the point; as an expression any character does.
    RuleMatcher text({ rule(QStringLiteral("a.c"), QStringLiteral("Text")) });
    RuleMatcher expression(
        { rule(QStringLiteral("a.c"), QStringLiteral("Expression"), Rule::Field::Both, Rule::How::Regex) });
    QCOMPARE(text.categoryOf(QStringLiteral("abc"), QString()), std::nullopt);
    QCOMPARE(text.categoryOf(QStringLiteral("A.C. Milan"), QString()), std::optional<QString>(QStringLiteral("Text")));
    QCOMPARE(expression.categoryOf(QStringLiteral("abc"), QString()),
             std::optional<QString>(QStringLiteral("Expression")));
}

void TestRuleMatcher::aRuleThatCannotBeUsedIsToldWhyAndNeverMatches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("how");
    QTest::addColumn<QString>("category");
    QTest::addColumn<QString>("problem");
    QTest::newRow("an unclosed group")
        << "(rewe" << int(Rule::How::Regex) << "Groceries"
        << "the regular expression \"(rewe\" is not valid: missing closing parenthesis at offset 5";
    QTest::newRow("nothing to repeat")
        << "*rewe" << int(Rule::How::Regex) << "Groceries"
        << "the regular expression \"*rewe\" is not valid: quantifier does not follow a repeatable item at offset 0";
    QTest::newRow("an empty text") << "" << int(Rule::How::Contains) << "Groceries"
                                   << "the text to look for is empty";
    QTest::newRow("an empty category") << "rewe" << int(Rule::How::Contains) << " "
                                       << "the category is empty";
}

void TestRuleMatcher::aRuleThatCannotBeUsedIsToldWhyAndNeverMatches()
{
    QFETCH(QString, text);
    QFETCH(int, how);
    QFETCH(QString, category);
    QFETCH(QString, problem);
    const Rule bad = rule(text, category, Rule::Field::Both, Rule::How(how));
    QCOMPARE(RuleMatcher::problemOf(bad), problem);
    // Skipped, so the rule after it answers.
    RuleMatcher matcher({ bad, rule(QStringLiteral("e"), QStringLiteral("Later")) });
    QCOMPARE(matcher.categoryOf(QStringLiteral("(rewe *rewe"), QString()),
             std::optional<QString>(QStringLiteral("Later")));
    QCOMPARE(RuleMatcher::problemOf(
                 rule(QStringLiteral("(rewe)"), QStringLiteral("Groceries"), Rule::Field::Both, Rule::How::Regex)),
             QString());
}

void TestRuleMatcher::onlyEntriesWithoutACategoryOrInOthersTakeARulesCategory_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<bool>("takes");
    QTest::newRow("none") << "" << true;
    QTest::newRow("Others") << "Others" << true;
    QTest::newRow("another") << "Food" << false;
    QTest::newRow("others in lower case is a category of its own") << "others" << false;
}

void TestRuleMatcher::onlyEntriesWithoutACategoryOrInOthersTakeARulesCategory()
{
    QFETCH(QString, category);
    QFETCH(bool, takes);
    QCOMPARE(RuleMatcher::takesRuleCategory(category), takes);
}

void TestRuleMatcher::askingAgainGivesTheSameAnswer()
{
    RuleMatcher matcher({ rule(QStringLiteral("rewe"), QStringLiteral("Groceries"), Rule::Field::Item),
                          rule(QStringLiteral("rewe"), QStringLiteral("Place"), Rule::Field::Place) });
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(matcher.categoryOf(QStringLiteral("REWE"), QString()),
                 std::optional<QString>(QStringLiteral("Groceries")));
        QCOMPARE(matcher.categoryOf(QString(), QStringLiteral("REWE")),
                 std::optional<QString>(QStringLiteral("Place")));
        QCOMPARE(matcher.categoryOf(QStringLiteral("Aldi"), QString()), std::nullopt);
    }
}

QTEST_GUILESS_MAIN(TestRuleMatcher)
#include "tst_rulematcher.moc"
