// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "rules.h"

#include "databasemanager.h"
#include "rulematcher.h"
#include "statements.h"

#include <QCoreApplication>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Rules", text);
}

struct Recategorised
{
    qint64 sno;
    QString category;
};

} // namespace

bool Rule::operator==(const Rule &other) const
{
    return text == other.text && in == other.in && how == other.how && category == other.category;
}

QString Rule::fieldName(Field field)
{
    switch (field) {
    case Field::Item:
        return QStringLiteral("item");
    case Field::Place:
        return QStringLiteral("place");
    case Field::Both:
        break;
    }
    return QStringLiteral("both");
}

std::optional<Rule::Field> Rule::fieldFromName(const QString &name)
{
    for (Field field : { Field::Item, Field::Place, Field::Both }) {
        if (fieldName(field) == name)
            return field;
    }
    return std::nullopt;
}

QString Rule::howName(How how)
{
    return how == How::Regex ? QStringLiteral("regex") : QStringLiteral("contains");
}

std::optional<Rule::How> Rule::howFromName(const QString &name)
{
    for (How how : { How::Contains, How::Regex }) {
        if (howName(how) == name)
            return how;
    }
    return std::nullopt;
}

Rules::Rules(DatabaseManager &store) : store(store) { }

QString Rules::fallbackCategory()
{
    return QStringLiteral("Others");
}

QList<Rule> Rules::all()
{
    QList<Rule> rules;
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(
            query, QStringLiteral("SELECT Text, SearchIn, How, CategoryName FROM CategoryRule ORDER BY Position")))
        return rules;
    while (query->next()) {
        const std::optional<Rule::Field> in = Rule::fieldFromName(query->value(1).toString());
        const std::optional<Rule::How> how = Rule::howFromName(query->value(2).toString());
        if (in && how)
            rules.append({ query->value(0).toString(), *in, *how, query->value(3).toString() });
    }
    return rules;
}

int Rules::count()
{
    return int(all().size());
}

bool Rules::writeAll(const QList<Rule> &rules)
{
    Statements &statements = store.statementRunner();
    if (!statements.execute(QStringLiteral("DELETE FROM CategoryRule"), {}))
        return false;
    for (qsizetype i = 0; i < rules.size(); ++i) {
        const Rule &rule = rules.at(i);
        if (!statements.execute(QStringLiteral("INSERT INTO CategoryRule (Position, Text, SearchIn, How, "
                                               "CategoryName) VALUES (:position, :text, :in, :how, :category)"),
                                { { QStringLiteral(":position"), int(i + 1) },
                                  { QStringLiteral(":text"), rule.text },
                                  { QStringLiteral(":in"), Rule::fieldName(rule.in) },
                                  { QStringLiteral(":how"), Rule::howName(rule.how) },
                                  { QStringLiteral(":category"), rule.category } }))
            return false;
    }
    return true;
}

bool Rules::addCategoryIfMissing(const QString &category, QString *failure)
{
    if (store.GetCategoryID(category) != 0)
        return true;
    if (store.AddCategory(category))
        return true;
    if (failure)
        *failure = tr("the category \"%1\" could not be added to the database").arg(category);
    return false;
}

bool Rules::rewrite(const std::function<bool(QList<Rule> &, QString *)> &change, QString *failure)
{
    QString reason;
    bool refused = false;
    const bool done = store.runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            QList<Rule> rules = all();
            if (!change(rules, &reason)) {
                refused = true;
                return false;
            }
            return writeAll(rules);
        },
        &reason);
    if (!done && failure)
        *failure = reason.isEmpty() && !refused ? tr("the rules could not be written to the database") : reason;
    return done;
}

int Rules::add(const Rule &rule, QString *failure)
{
    int position = 0;
    const bool done = rewrite(
        [&](QList<Rule> &rules, QString *reason) {
            *reason = RuleMatcher::problemOf(rule);
            if (!reason->isEmpty() || !addCategoryIfMissing(rule.category, reason))
                return false;
            rules.append(rule);
            position = int(rules.size());
            return true;
        },
        failure);
    return done ? position : 0;
}

namespace {

bool refuseUnknownPosition(const QList<Rule> &rules, int position, QString *reason)
{
    if (position >= 1 && position <= rules.size())
        return true;
    *reason = rules.isEmpty() ? tr("there is no rule %1: there are no rules").arg(position)
                              : tr("there is no rule %1: the rules are numbered 1 to %2")
                                    .arg(QString::number(position), QString::number(rules.size()));
    return false;
}

} // namespace

bool Rules::replace(int position, const Rule &rule, QString *failure)
{
    return rewrite(
        [&](QList<Rule> &rules, QString *reason) {
            if (!refuseUnknownPosition(rules, position, reason))
                return false;
            *reason = RuleMatcher::problemOf(rule);
            if (!reason->isEmpty() || !addCategoryIfMissing(rule.category, reason))
                return false;
            rules[position - 1] = rule;
            return true;
        },
        failure);
}

bool Rules::remove(int position, QString *failure)
{
    return rewrite(
        [&](QList<Rule> &rules, QString *reason) {
            if (!refuseUnknownPosition(rules, position, reason))
                return false;
            rules.removeAt(position - 1);
            return true;
        },
        failure);
}

bool Rules::move(int position, int to, QString *failure)
{
    return rewrite(
        [&](QList<Rule> &rules, QString *reason) {
            if (!refuseUnknownPosition(rules, position, reason) || !refuseUnknownPosition(rules, to, reason))
                return false;
            rules.move(position - 1, to - 1);
            return true;
        },
        failure);
}

std::optional<int> Rules::apply(bool dryRun, QString *failure)
{
    Statements &statements = store.statementRunner();
    const Bindings others = { { QStringLiteral(":others"), fallbackCategory() } };
    // What the rules make of the entries of "Others" as they stand; inside
    // the write's transaction when there is one, so that nothing changes
    // in between.
    const auto plan = [&](QList<Recategorised> *changes) {
        RuleMatcher matcher(all());
        if (matcher.isEmpty())
            return true;
        std::optional<QSqlQuery> query;
        if (!statements.run(
                query, QStringLiteral("SELECT SNo, ItemName, LocationText FROM Entry WHERE CategoryName = :others"),
                others))
            return false;
        while (query->next()) {
            const std::optional<QString> category =
                matcher.categoryOf(query->value(1).toString(), query->value(2).toString());
            if (category && *category != fallbackCategory())
                changes->append({ query->value(0).toLongLong(), *category });
        }
        return !query->lastError().isValid();
    };

    QList<Recategorised> changes;
    if (dryRun) {
        if (plan(&changes))
            return int(changes.size());
        if (failure)
            *failure = tr("the entries could not be read");
        return std::nullopt;
    }
    QString reason;
    const bool done = store.runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            if (!plan(&changes)) {
                reason = tr("the entries could not be read");
                return false;
            }
            QHash<QString, int> ids;
            for (const Recategorised &change : std::as_const(changes)) {
                auto id = ids.constFind(change.category);
                if (id == ids.constEnd()) {
                    if (!addCategoryIfMissing(change.category, &reason))
                        return false;
                    id = ids.insert(change.category, store.GetCategoryID(change.category));
                }
                // CategoryID follows the name, as AddEntry sets it.
                if (!statements.execute(QStringLiteral("UPDATE Entry SET CategoryName = :category, CategoryID = :id "
                                                       "WHERE SNo = :sno AND CategoryName = :others"),
                                        { { QStringLiteral(":category"), change.category },
                                          { QStringLiteral(":id"), *id },
                                          { QStringLiteral(":sno"), change.sno },
                                          others.constFirst() }))
                    return false;
            }
            return true;
        },
        &reason);
    if (!done) {
        if (failure)
            *failure = reason.isEmpty() ? tr("the entries could not be written to the database") : reason;
        return std::nullopt;
    }
    return int(changes.size());
}
