// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "budgetperiod.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class DatabaseManager;

// A limit on what one category may spend in each period.
struct Budget
{
    QString category;
    double amount = 0;
    BudgetPeriod period = BudgetPeriod::Month;
};

// Where a budget stands in one period: what its category spent there.
struct BudgetStanding
{
    Budget budget;
    DateSpan span;
    double spent = 0;

    double left() const { return budget.amount - spent; }
    // The spent share in whole percent, halves rounded up.
    int usedPercent() const;
    // The share of the budget that the days up to `today` allow, less what
    // was spent: above 0 the category is ahead of its pace, below it behind.
    double paceMargin(const QDate &today) const;
};

// How far a category has gone into its budget.
enum class BudgetLevel {
    Below, // under 80 %
    Nearing, // from 80 % to 100 %
    Over, // above 100 %
};

// The budgets kept in the file, one per category name, in a table of their
// own. Spent is the sum, in double precision, of the prices of the
// category's entries whose day lies in the period.
class Budgets
{
public:
    // `store` outlives this object.
    explicit Budgets(DatabaseManager &store);

    // Finite, above 0 and at most 9,999,999.99, as every amount.
    static bool isAcceptableAmount(double amount);
    static BudgetLevel level(double spent, double amount);
    // The level an entry of `price` reached when it took its category from
    // `spentBefore` to `spentBefore + price`, when it reached a higher one.
    static std::optional<BudgetLevel> crossing(double spentBefore, double spentAfter, double amount);
    // Two decimals and a point, no thousands separators: 1000001.00, -12.50.
    static QString money(double value);
    // Where a budget stands, as the warnings tell it: "Food: 412.50 of
    // 400.00 this month (103 %)".
    static QString told(const BudgetStanding &standing);
    // The standings of `after` whose category went past 80 % or past its
    // budget since `before` (the same day's standings, taken earlier), each
    // told once; those without a budget in `before` count from nothing.
    static QStringList crossed(const QList<BudgetStanding> &before, const QList<BudgetStanding> &after);

    // Sets the category's budget, replacing the one it had. False for an
    // amount that is not acceptable or a file that takes no writes.
    bool set(const Budget &budget);
    bool remove(const QString &category);
    // Sets `kept` and removes the budgets of `removed`, all in one
    // transaction; on failure nothing changed and *failure says why.
    bool apply(const QList<Budget> &kept, const QStringList &removed, QString *failure = nullptr);

    // Every budget, by category name.
    QList<Budget> all();
    std::optional<Budget> of(const QString &category);

    double spent(const QString &category, const DateSpan &span);
    // Every budget, by category name, in its period holding `day`.
    QList<BudgetStanding> standings(const QDate &day, int monthStart);
    // The category's standing in the period holding `day`, when it has a
    // budget.
    std::optional<BudgetStanding> standingOf(const QString &category, const QDate &day, int monthStart);

private:
    bool write(const Budget &budget);
    bool erase(const QString &category);

    DatabaseManager &store;
};
