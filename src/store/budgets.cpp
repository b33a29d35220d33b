// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "budgets.h"

#include <QCoreApplication>

#include "amount.h"
#include "databasemanager.h"
#include "statements.h"

#include <QHash>
#include <QSqlQuery>

#include <algorithm>
#include <cmath>

namespace {

QString dayText(const QDate &day)
{
    return day.toString(Qt::ISODate);
}

// The entries of a span, by the date part of their stored date-time: the
// stored text of a day sorts at or after the day and before the next one.
const char spanCondition[] = "TransactDateTime >= :first AND TransactDateTime < :after";

Bindings spanBindings(const DateSpan &span)
{
    return { { QStringLiteral(":first"), dayText(span.first) },
             { QStringLiteral(":after"), dayText(span.last.addDays(1)) } };
}

Budget readBudget(const QSqlQuery &query)
{
    Budget budget;
    budget.category = query.value(0).toString();
    budget.amount = query.value(1).toDouble();
    budget.period = BudgetPeriods::fromName(query.value(2).toString()).value_or(BudgetPeriod::Month);
    return budget;
}

} // namespace

int BudgetStanding::usedPercent() const
{
    if (budget.amount <= 0)
        return 0;
    return int(std::floor(spent * 100.0 / budget.amount + 0.5));
}

double BudgetStanding::paceMargin(const QDate &today) const
{
    const double allowed = budget.amount * double(BudgetPeriods::daysElapsed(span, today)) / double(span.days());
    return allowed - spent;
}

Budgets::Budgets(DatabaseManager &store) : store(store) { }

bool Budgets::isAcceptableAmount(double amount)
{
    return std::isfinite(amount) && amount > 0 && amount <= Amount::largest;
}

BudgetLevel Budgets::level(double spent, double amount)
{
    if (spent > amount)
        return BudgetLevel::Over;
    if (spent * 100.0 >= amount * 80.0)
        return BudgetLevel::Nearing;
    return BudgetLevel::Below;
}

std::optional<BudgetLevel> Budgets::crossing(double spentBefore, double spentAfter, double amount)
{
    const BudgetLevel before = level(spentBefore, amount);
    const BudgetLevel after = level(spentAfter, amount);
    if (int(after) > int(before))
        return after;
    return std::nullopt;
}

QString Budgets::money(double value)
{
    // A sum a hair below zero would read -0.00.
    if (std::abs(value) < 0.005)
        value = 0;
    return QString::number(value, 'f', 2);
}

bool Budgets::set(const Budget &budget)
{
    return isAcceptableAmount(budget.amount) && write(budget);
}

bool Budgets::remove(const QString &category)
{
    return erase(category);
}

bool Budgets::apply(const QList<Budget> &kept, const QStringList &removed, QString *failure)
{
    for (const Budget &budget : kept) {
        if (!isAcceptableAmount(budget.amount)) {
            if (failure)
                *failure = QStringLiteral("%1 is no amount for a budget.").arg(budget.amount);
            return false;
        }
    }
    return store.runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            for (const QString &category : removed)
                if (!erase(category))
                    return false;
            for (const Budget &budget : kept)
                if (!write(budget))
                    return false;
            return true;
        },
        failure);
}

QList<Budget> Budgets::all()
{
    QList<Budget> budgets;
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(
            query, QStringLiteral("SELECT CategoryName, Amount, Period FROM Budget ORDER BY CategoryName")))
        return budgets;
    while (query->next())
        budgets.append(readBudget(*query));
    return budgets;
}

std::optional<Budget> Budgets::of(const QString &category)
{
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(query,
                                     QStringLiteral("SELECT CategoryName, Amount, Period FROM Budget "
                                                    "WHERE CategoryName = :name"),
                                     { { QStringLiteral(":name"), category } })
        || !query->next())
        return std::nullopt;
    return readBudget(*query);
}

double Budgets::spent(const QString &category, const DateSpan &span)
{
    Bindings bindings = spanBindings(span);
    bindings.append({ QStringLiteral(":name"), category });
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(query,
                                     QStringLiteral("SELECT TOTAL(Price) FROM EntrySpending WHERE CategoryName = "
                                                    ":name AND ")
                                         + QLatin1String(spanCondition),
                                     bindings)
        || !query->next())
        return 0;
    return query->value(0).toDouble();
}

QList<BudgetStanding> Budgets::standings(const QDate &day, int monthStart)
{
    QList<BudgetStanding> list;
    for (const Budget &budget : all())
        list.append({ budget, BudgetPeriods::holding(budget.period, day, monthStart), 0 });
    if (list.isEmpty())
        return list;

    // One pass over the days every period covers, summed per category and
    // day; each budget then takes the days of its own period.
    DateSpan covered = list.first().span;
    for (const BudgetStanding &standing : list) {
        covered.first = std::min(covered.first, standing.span.first);
        covered.last = std::max(covered.last, standing.span.last);
    }
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(
            query,
            QStringLiteral("SELECT CategoryName, substr(TransactDateTime, 1, 10), TOTAL(Price) FROM EntrySpending "
                           "WHERE ")
                + QLatin1String(spanCondition)
                + QStringLiteral(" AND CategoryName IN (SELECT CategoryName FROM Budget) "
                                 "GROUP BY CategoryName, substr(TransactDateTime, 1, 10)"),
            spanBindings(covered)))
        return list;
    QHash<QString, int> indexOf;
    for (int i = 0; i < list.size(); ++i)
        indexOf.insert(list.at(i).budget.category, i);
    while (query->next()) {
        const auto found = indexOf.constFind(query->value(0).toString());
        if (found == indexOf.cend())
            continue;
        BudgetStanding &standing = list[*found];
        if (standing.span.contains(QDate::fromString(query->value(1).toString(), Qt::ISODate)))
            standing.spent += query->value(2).toDouble();
    }
    return list;
}

std::optional<BudgetStanding> Budgets::standingOf(const QString &category, const QDate &day, int monthStart)
{
    const std::optional<Budget> budget = of(category);
    if (!budget)
        return std::nullopt;
    const DateSpan span = BudgetPeriods::holding(budget->period, day, monthStart);
    return BudgetStanding { *budget, span, spent(category, span) };
}

bool Budgets::write(const Budget &budget)
{
    return store.statementRunner().execute(
        QStringLiteral("INSERT OR REPLACE INTO Budget (CategoryName, Amount, Period) VALUES (:name, :amount, :period)"),
        { { QStringLiteral(":name"), budget.category },
          { QStringLiteral(":amount"), budget.amount },
          { QStringLiteral(":period"), BudgetPeriods::name(budget.period) } });
}

bool Budgets::erase(const QString &category)
{
    return store.statementRunner().execute(QStringLiteral("DELETE FROM Budget WHERE CategoryName = :name"),
                                           { { QStringLiteral(":name"), category } });
}

QString Budgets::told(const BudgetStanding &standing)
{
    QString text;
    switch (standing.budget.period) {
    case BudgetPeriod::Week:
        text = QCoreApplication::translate("Budgets", "%1: %2 of %3 this week (%4 %)");
        break;
    case BudgetPeriod::Year:
        text = QCoreApplication::translate("Budgets", "%1: %2 of %3 this year (%4 %)");
        break;
    case BudgetPeriod::Month:
        text = QCoreApplication::translate("Budgets", "%1: %2 of %3 this month (%4 %)");
        break;
    }
    return text.arg(standing.budget.category, money(standing.spent), money(standing.budget.amount),
                    QString::number(standing.usedPercent()));
}

QStringList Budgets::crossed(const QList<BudgetStanding> &before, const QList<BudgetStanding> &after)
{
    QStringList told;
    for (const BudgetStanding &now : after) {
        double spentBefore = 0;
        for (const BudgetStanding &then : before) {
            if (then.budget.category == now.budget.category)
                spentBefore = then.spent;
        }
        if (crossing(spentBefore, now.spent, now.budget.amount))
            told << Budgets::told(now);
    }
    return told;
}
