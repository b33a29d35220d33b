// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "entrysearch.h"
#include "rules.h"

#include "rawdatabase.h"
#include "temphome.h"

#include <QTest>

#include <memory>

namespace {

Rule rule(const QString &text, const QString &category, Rule::Field in = Rule::Field::Both,
          Rule::How how = Rule::How::Contains)
{
    return { text, in, how, category };
}

const QString ruleRows = QStringLiteral("SELECT Position, Text, SearchIn, How, CategoryName FROM CategoryRule "
                                        "ORDER BY Position");

QVariantList row(int position, const QString &text, const QString &in, const QString &how, const QString &category)
{
    return { position, text, in, how, category };
}

} // namespace

class TestRules : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rulesAreKeptInTheirOwnTableInTheOrderTheyWereAdded();
    void addingARuleAddsItsCategoryWhenTableCategoryLacksIt();
    void aRuleThatCannotBeUsedIsRefusedAndChangesNothing_data();
    void aRuleThatCannotBeUsedIsRefusedAndChangesNothing();
    void removingARuleNumbersTheRestFromOne();
    void movingARuleShiftsTheRulesBetween_data();
    void movingARuleShiftsTheRulesBetween();
    void replacingARuleKeepsItsPlace();
    void anUnknownPositionIsRefusedAndChangesNothing();
    void applyingGivesOnlyEntriesOfOthersTheFirstMatchingRulesCategory();
    void aDryRunCountsTheSameEntriesAndWritesNothing();
    void applyingAddsARuleCategoryThatTableCategoryNoLongerHas();
    void recategorisedEntriesAreFoundByTheirNewCategory();
    void applyingWithoutRulesChangesNothing();
    void anApplyOnAFileHeldByAnotherProgramChangesNothing();

private:
    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void TestRules::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void TestRules::cleanup()
{
    store.reset();
    home.reset();
}

void TestRules::rulesAreKeptInTheirOwnTableInTheOrderTheyWereAdded()
{
    Rules rules(*store);
    QCOMPARE(rules.add(rule(QStringLiteral("REWE"), QStringLiteral("Groceries"))), 1);
    QCOMPARE(rules.add(rule(QStringLiteral("shell"), QStringLiteral("Car"), Rule::Field::Place)), 2);
    QCOMPARE(rules.add(rule(QStringLiteral("^db\\b"), QStringLiteral("Travel"), Rule::Field::Item, Rule::How::Regex)),
             3);

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(ruleRows),
             QList<QVariantList>({ row(1, "REWE", "both", "contains", "Groceries"),
                                   row(2, "shell", "place", "contains", "Car"),
                                   row(3, "^db\\b", "item", "regex", "Travel") }));
    // A second store on the file reads them back the same.
    QCOMPARE(
        rules.all(),
        QList<Rule>({ rule(QStringLiteral("REWE"), QStringLiteral("Groceries")),
                      rule(QStringLiteral("shell"), QStringLiteral("Car"), Rule::Field::Place),
                      rule(QStringLiteral("^db\\b"), QStringLiteral("Travel"), Rule::Field::Item, Rule::How::Regex) }));
    QCOMPARE(rules.count(), 3);
}

void TestRules::addingARuleAddsItsCategoryWhenTableCategoryLacksIt()
{
    RawDatabase raw(home->databasePath());
    const int categories = raw.scalar(QStringLiteral("SELECT count(*) FROM Category")).toInt();
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Bakeries'")).toInt(), 0);

    Rules rules(*store);
    QVERIFY(rules.add(rule(QStringLiteral("Bäckerei"), QStringLiteral("Bakeries"))) > 0);
    QVERIFY(rules.add(rule(QStringLiteral("Bakery"), QStringLiteral("Bakeries"))) > 0);
    // "Food" is one of the default categories: not added twice.
    QVERIFY(rules.add(rule(QStringLiteral("Pizza"), QStringLiteral("Food"))) > 0);

    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category")).toInt(), categories + 1);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Bakeries'")).toInt(), 1);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Food'")).toInt(), 1);
}

void TestRules::aRuleThatCannotBeUsedIsRefusedAndChangesNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("how");
    QTest::addColumn<QString>("category");
    QTest::addColumn<QString>("failure");
    QTest::newRow("an invalid regular expression")
        << "[rewe" << int(Rule::How::Regex) << "Groceries"
        << "the regular expression \"[rewe\" is not valid: missing terminating ] for character class at offset 5";
    QTest::newRow("an empty text") << "" << int(Rule::How::Contains) << "Groceries"
                                   << "the text to look for is empty";
    QTest::newRow("an empty category") << "rewe" << int(Rule::How::Contains) << ""
                                       << "the category is empty";
}

void TestRules::aRuleThatCannotBeUsedIsRefusedAndChangesNothing()
{
    QFETCH(QString, text);
    QFETCH(int, how);
    QFETCH(QString, category);
    QFETCH(QString, failure);
    Rules rules(*store);
    QCOMPARE(rules.add(rule(QStringLiteral("Aldi"), QStringLiteral("Food"))), 1);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();

    QString told;
    QCOMPARE(rules.add(rule(text, category, Rule::Field::Both, Rule::How(how)), &told), 0);
    QCOMPARE(told, failure);
    told.clear();
    QVERIFY(!rules.replace(1, rule(text, category, Rule::Field::Both, Rule::How(how)), &told));
    QCOMPARE(told, failure);
    QCOMPARE(raw.dumpTables(), before);
}

void TestRules::removingARuleNumbersTheRestFromOne()
{
    Rules rules(*store);
    for (const char *text : { "one", "two", "three" })
        QVERIFY(rules.add(rule(QLatin1String(text), QStringLiteral("Food"))) > 0);
    QVERIFY(rules.remove(1));
    QVERIFY(rules.remove(2));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(ruleRows), QList<QVariantList>({ row(1, "two", "both", "contains", "Food") }));
}

void TestRules::movingARuleShiftsTheRulesBetween_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("order");
    QTest::newRow("last to first") << 4 << 1 << "d a b c";
    QTest::newRow("first to last") << 1 << 4 << "b c d a";
    QTest::newRow("one down") << 2 << 3 << "a c b d";
    QTest::newRow("one up") << 3 << 2 << "a c b d";
    QTest::newRow("onto itself") << 2 << 2 << "a b c d";
}

void TestRules::movingARuleShiftsTheRulesBetween()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QString, order);
    Rules rules(*store);
    for (const char *text : { "a", "b", "c", "d" })
        QVERIFY(rules.add(rule(QLatin1String(text), QStringLiteral("Food"))) > 0);
    QVERIFY(rules.move(from, to));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(Text, ' ') FROM (SELECT Text FROM CategoryRule ORDER BY "
                                       "Position)"))
                 .toString(),
             order);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT group_concat(Position, ' ') FROM (SELECT Position FROM CategoryRule "
                                       "ORDER BY Position)"))
                 .toString(),
             QStringLiteral("1 2 3 4"));
}

void TestRules::replacingARuleKeepsItsPlace()
{
    Rules rules(*store);
    for (const char *text : { "a", "b", "c" })
        QVERIFY(rules.add(rule(QLatin1String(text), QStringLiteral("Food"))) > 0);
    QVERIFY(
        rules.replace(2, rule(QStringLiteral("^b+$"), QStringLiteral("Bees"), Rule::Field::Item, Rule::How::Regex)));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.rows(ruleRows),
             QList<QVariantList>({ row(1, "a", "both", "contains", "Food"), row(2, "^b+$", "item", "regex", "Bees"),
                                   row(3, "c", "both", "contains", "Food") }));
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Bees'")).toInt(), 1);
}

void TestRules::anUnknownPositionIsRefusedAndChangesNothing()
{
    Rules rules(*store);
    QString failure;
    QVERIFY(!rules.remove(1, &failure));
    QCOMPARE(failure, QStringLiteral("there is no rule 1: there are no rules"));
    QVERIFY(rules.add(rule(QStringLiteral("a"), QStringLiteral("Food"))) > 0);
    QVERIFY(rules.add(rule(QStringLiteral("b"), QStringLiteral("Food"))) > 0);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    QVERIFY(!rules.remove(3, &failure));
    QCOMPARE(failure, QStringLiteral("there is no rule 3: the rules are numbered 1 to 2"));
    QVERIFY(!rules.move(1, 3, &failure));
    QCOMPARE(failure, QStringLiteral("there is no rule 3: the rules are numbered 1 to 2"));
    QVERIFY(!rules.move(0, 1, &failure));
    QCOMPARE(failure, QStringLiteral("there is no rule 0: the rules are numbered 1 to 2"));
    QVERIFY(!rules.replace(5, rule(QStringLiteral("c"), QStringLiteral("Food")), &failure));
    QCOMPARE(failure, QStringLiteral("there is no rule 5: the rules are numbered 1 to 2"));
    QCOMPARE(raw.dumpTables(), before);
}

void TestRules::applyingGivesOnlyEntriesOfOthersTheFirstMatchingRulesCategory()
{
    RawDatabase raw(home->databasePath());
    const QDateTime when(QDate(2026, 3, 2), QTime(12, 0));
    const int rewe = raw.insertEntry(QStringLiteral("REWE SAGT DANKE 4711"), QStringLiteral("Others"), when, 23.5);
    const int cafe =
        raw.insertEntry(QStringLiteral("Card 0815"), QStringLiteral("Others"), when, 3.2, QStringLiteral("Café Süß"));
    const int kept = raw.insertEntry(QStringLiteral("REWE Markt"), QStringLiteral("Food"), when, 9);
    const int unmatched = raw.insertEntry(QStringLiteral("Aldi"), QStringLiteral("Others"), when, 4);

    Rules rules(*store);
    QVERIFY(rules.add(rule(QStringLiteral("rewe"), QStringLiteral("Groceries"))) > 0);
    QVERIFY(rules.add(rule(QStringLiteral("sagt danke"), QStringLiteral("Thanks"))) > 0);
    QVERIFY(rules.add(rule(QStringLiteral("cafe"), QStringLiteral("Coffee"), Rule::Field::Place)) > 0);

    QString failure;
    QCOMPARE(rules.apply(false, &failure), std::optional<int>(2));
    QCOMPARE(failure, QString());
    const auto categoryOf = [&raw](int sno) {
        return raw.scalar(QStringLiteral("SELECT CategoryName FROM Entry WHERE SNo = %1").arg(sno)).toString();
    };
    QCOMPARE(categoryOf(rewe), QStringLiteral("Groceries"));
    QCOMPARE(categoryOf(cafe), QStringLiteral("Coffee"));
    QCOMPARE(categoryOf(kept), QStringLiteral("Food"));
    QCOMPARE(categoryOf(unmatched), QStringLiteral("Others"));
    // The category's number follows its name, as AddEntry gives it.
    QCOMPARE(raw.scalar(QStringLiteral("SELECT CategoryID FROM Entry WHERE SNo = %1").arg(rewe)).toInt(),
             raw.scalar(QStringLiteral("SELECT SNo FROM Category WHERE CategoryName = 'Groceries'")).toInt());
    // Nothing is left for a second run.
    QCOMPARE(rules.apply(false), std::optional<int>(0));
}

void TestRules::aDryRunCountsTheSameEntriesAndWritesNothing()
{
    RawDatabase raw(home->databasePath());
    const QDateTime when(QDate(2026, 3, 2), QTime(12, 0));
    for (int i = 0; i < 5; ++i)
        raw.insertEntry(QStringLiteral("Shell %1").arg(i), QStringLiteral("Others"), when.addDays(i), 40);
    raw.insertEntry(QStringLiteral("Bakery"), QStringLiteral("Others"), when, 2);
    Rules rules(*store);
    QVERIFY(rules.add(rule(QStringLiteral("shell"), QStringLiteral("Car"))) > 0);
    const QStringList before = raw.dumpTables();

    QCOMPARE(rules.apply(true), std::optional<int>(5));
    QCOMPARE(raw.dumpTables(), before);
    QCOMPARE(rules.apply(false), std::optional<int>(5));
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry WHERE CategoryName = 'Car'")).toInt(), 5);
}

void TestRules::applyingAddsARuleCategoryThatTableCategoryNoLongerHas()
{
    Rules rules(*store);
    QVERIFY(rules.add(rule(QStringLiteral("vet"), QStringLiteral("Pets"))) > 0);
    // Renaming a category leaves the rules (and entries) with the old name.
    QVERIFY(store->EditCategory(QStringLiteral("Pets"), QStringLiteral("Animals")));
    RawDatabase raw(home->databasePath());
    raw.insertEntry(QStringLiteral("Vet bill"), QStringLiteral("Others"), QDateTime(QDate(2026, 1, 5), QTime()), 80);

    QCOMPARE(rules.apply(false), std::optional<int>(1));
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Pets'")).toInt(), 1);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT CategoryName FROM Entry")).toString(), QStringLiteral("Pets"));
}

void TestRules::recategorisedEntriesAreFoundByTheirNewCategory()
{
    RawDatabase raw(home->databasePath());
    raw.insertEntry(QStringLiteral("Stadtwerke"), QStringLiteral("Others"), QDateTime(QDate(2026, 2, 1), QTime()), 61);
    EntrySearch search(*store);
    // The search's texts are folded once before the change.
    QCOMPARE(search.find({ QStringLiteral("others"), {}, {}, {}, {}, {}, {} }).count, 1);

    Rules rules(*store);
    QVERIFY(rules.add(rule(QStringLiteral("stadtwerke"), QStringLiteral("Utilities"))) > 0);
    QCOMPARE(rules.apply(false), std::optional<int>(1));
    QCOMPARE(search.find({ QStringLiteral("utilities"), {}, {}, {}, {}, {}, {} }).count, 1);
    QCOMPARE(search.find({ QStringLiteral("others"), {}, {}, {}, {}, {}, {} }).count, 0);
}

void TestRules::applyingWithoutRulesChangesNothing()
{
    RawDatabase raw(home->databasePath());
    raw.insertEntry(QStringLiteral("Thing"), QStringLiteral("Others"), QDateTime(QDate(2026, 2, 1), QTime()), 1);
    const QStringList before = raw.dumpTables();
    QCOMPARE(Rules(*store).apply(true), std::optional<int>(0));
    QCOMPARE(Rules(*store).apply(false), std::optional<int>(0));
    QCOMPARE(raw.dumpTables(), before);
}

void TestRules::anApplyOnAFileHeldByAnotherProgramChangesNothing()
{
    RawDatabase raw(home->databasePath());
    raw.insertEntry(QStringLiteral("Shell"), QStringLiteral("Others"), QDateTime(QDate(2026, 2, 1), QTime()), 1);
    Rules rules(*store);
    QVERIFY(rules.add(rule(QStringLiteral("shell"), QStringLiteral("Car"))) > 0);
    const QStringList before = raw.dumpTables();

    RawDatabase holder(home->databasePath());
    QVERIFY(holder.exec(QStringLiteral("BEGIN IMMEDIATE")));
    QString failure;
    QCOMPARE(rules.apply(false, &failure), std::nullopt);
    QVERIFY(!failure.isEmpty());
    QCOMPARE(rules.add(rule(QStringLiteral("aral"), QStringLiteral("Car")), &failure), 0);
    QVERIFY(!failure.isEmpty());
    QVERIFY(holder.exec(QStringLiteral("ROLLBACK")));
    QCOMPARE(raw.dumpTables(), before);
}

QTEST_GUILESS_MAIN(TestRules)
#include "tst_rules.moc"
