// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>

class DatabaseManager;

// One rule: where an entry holding `text` belongs.
struct Rule
{
    // The texts of an entry that a rule looks at.
    enum class Field { Item, Place, Both };
    // Contains: the text anywhere, in any case, with or without accents.
    // Regex: a regular expression found anywhere, in any case.
    enum class How { Contains, Regex };

    QString text;
    Field in = Field::Both;
    How how = How::Contains;
    QString category;

    bool operator==(const Rule &other) const;
    bool operator!=(const Rule &other) const { return !(*this == other); }

    // "item", "place", "both"; "contains", "regex": the words of the
    // command line and of the file.
    static QString fieldName(Field field);
    static std::optional<Field> fieldFromName(const QString &name);
    static QString howName(How how);
    static std::optional<How> howFromName(const QString &name);
};

// The rules kept in the file (table CategoryRule), in the order they are
// tried: position 1 first. Every change renumbers them from 1 without gaps.
class Rules
{
public:
    // `store` outlives this object.
    explicit Rules(DatabaseManager &store);

    // Every rule, position 1 first; a rule the file holds in a form this
    // Ledgerly does not know is left out.
    QList<Rule> all();
    int count();

    // The category "Others": where entries go that nothing else claims,
    // and the only one the rules take entries out of.
    static QString fallbackCategory();

    // Adds `rule` last, and its category to table Category when that lacks
    // it, in one transaction. Its position, or 0 when nothing was added
    // (*failure then says why: a rule that cannot be used, see
    // RuleMatcher::problemOf(), or the file's reason).
    int add(const Rule &rule, QString *failure = nullptr);
    // Puts `rule` in the place of the rule at `position`, as add() does.
    bool replace(int position, const Rule &rule, QString *failure = nullptr);
    bool remove(int position, QString *failure = nullptr);
    // Takes the rule at `position` out and puts it back at `to`, the rules
    // between moving one place up or down.
    bool move(int position, int to, QString *failure = nullptr);

    // Gives every stored entry of "Others" the category of the first rule
    // that matches it, in one transaction, the categories table Category
    // lacks added first. With `dryRun` nothing is written. How many entries
    // were (or would be) given a category; nothing on a failure (*failure
    // then says why).
    std::optional<int> apply(bool dryRun, QString *failure = nullptr);

private:
    // Writes `rules` as the whole table, positions from 1, inside the
    // caller's transaction.
    bool writeAll(const QList<Rule> &rules);
    bool addCategoryIfMissing(const QString &category, QString *failure);
    // Runs `change` on the stored list and writes the result, in one
    // transaction; `change` says why it refuses.
    bool rewrite(const std::function<bool(QList<Rule> &, QString *)> &change, QString *failure);

    DatabaseManager &store;
};
