// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "recurringexpenses.h"

#include "budgets.h"
#include "databasemanager.h"
#include "records.h"
#include "statements.h"

#include <QCoreApplication>
#include <QSqlQuery>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("RecurringExpenses", text);
}

const QString columns =
    QStringLiteral("SELECT SNo, ItemName, Price, CategoryName, LocationText, EveryCount, EveryUnit, FirstDate, "
                   "LastDate, Times, Mode, NextIndex, NextDate FROM RecurringExpense");

QVariant dayValue(const QDate &day)
{
    // A null day binds as NULL, which sorts and compares as no day at all.
    return day.isValid() ? QVariant(day.toString(Qt::ISODate)) : QVariant(QMetaType::fromType<QString>());
}

QDate readDay(const QVariant &value)
{
    return value.isNull() ? QDate() : QDate::fromString(value.toString(), Qt::ISODate);
}

RecurringExpense readExpense(const QSqlQuery &query)
{
    RecurringExpense expense;
    expense.id = query.value(0).toInt();
    expense.item = query.value(1).toString();
    expense.amount = query.value(2).toDouble();
    expense.category = query.value(3).toString();
    expense.place = query.value(4).toString();
    expense.every.count = query.value(5).toInt();
    expense.every = RecurrenceDates::fromText(QString::number(expense.every.count) + query.value(6).toString())
                        .value_or(expense.every);
    expense.first = readDay(query.value(7));
    expense.end.until = readDay(query.value(8));
    expense.end.times = query.value(9).isNull() ? 0 : query.value(9).toInt();
    expense.mode = RecurringExpenses::modeFromName(query.value(10).toString()).value_or(PostingMode::Auto);
    expense.done = query.value(11).toLongLong();
    expense.next = readDay(query.value(12));
    return expense;
}

// The day of occurrence `index`, or null when the expense has none left.
QDate nextDay(const RecurringExpense &expense, qint64 index)
{
    return RecurrenceDates::exists(expense.first, expense.every, expense.end, index)
        ? RecurrenceDates::occurrence(expense.first, expense.every, index)
        : QDate();
}

Bindings expenseBindings(const RecurringExpense &expense)
{
    const QString unit = RecurrenceDates::text(expense.every).right(1);
    return { { QStringLiteral(":item"), expense.item },
             { QStringLiteral(":price"), expense.amount },
             { QStringLiteral(":category"), expense.category },
             { QStringLiteral(":place"), expense.place.isNull() ? QStringLiteral("") : expense.place },
             { QStringLiteral(":count"), expense.every.count },
             { QStringLiteral(":unit"), unit },
             { QStringLiteral(":first"), dayValue(expense.first) },
             { QStringLiteral(":last"), dayValue(expense.end.until) },
             { QStringLiteral(":times"), expense.end.times > 0 ? QVariant(expense.end.times) : QVariant() },
             { QStringLiteral(":mode"), RecurringExpenses::modeName(expense.mode) },
             { QStringLiteral(":done"), expense.done },
             { QStringLiteral(":next"), dayValue(expense.next) } };
}

Occurrence occurrenceOf(const RecurringExpense &expense, qint64 index)
{
    return { expense.id,    index,          RecurrenceDates::occurrence(expense.first, expense.every, index),
             expense.item,  expense.amount, expense.category,
             expense.place, expense.mode };
}

} // namespace

RecurringExpenses::RecurringExpenses(DatabaseManager &store) : store(store) { }

QString RecurringExpenses::modeName(PostingMode mode)
{
    return mode == PostingMode::Confirm ? QStringLiteral("confirm") : QStringLiteral("auto");
}

std::optional<PostingMode> RecurringExpenses::modeFromName(const QString &name)
{
    if (name == QLatin1String("auto"))
        return PostingMode::Auto;
    if (name == QLatin1String("confirm"))
        return PostingMode::Confirm;
    return std::nullopt;
}

QString RecurringExpenses::problem(const RecurringExpense &expense)
{
    if (expense.item.trimmed().isEmpty())
        return tr("A recurring expense needs an item.");
    if (expense.category.trimmed().isEmpty())
        return tr("A recurring expense needs a category.");
    if (!Budgets::isAcceptableAmount(expense.amount))
        return tr("%1 is no amount: an amount is above 0 and at most 9999999.99.").arg(Budgets::money(expense.amount));
    if (!RecurrenceDates::isAcceptable(expense.every))
        return tr("A recurring expense repeats every 1 to 99 days, weeks, months or years, not every %1.")
            .arg(expense.every.count);
    if (!expense.first.isValid())
        return tr("A recurring expense needs a first day.");
    if (expense.end.until.isValid() && expense.end.times > 0)
        return tr("A recurring expense ends on a last day or after a number of times, not both.");
    if (expense.end.until.isValid() && expense.end.until < expense.first)
        return tr("The last day %1 is before the first day %2.")
            .arg(expense.end.until.toString(Qt::ISODate), expense.first.toString(Qt::ISODate));
    if (expense.end.times < 0)
        return tr("A recurring expense happens at least once.");
    return QString();
}

int RecurringExpenses::add(const RecurringExpense &expense, QString *failure)
{
    const QString refused = problem(expense);
    if (!refused.isEmpty()) {
        if (failure)
            *failure = refused;
        return 0;
    }
    RecurringExpense added = expense;
    added.done = 0;
    added.next = nextDay(added, 0);
    int id = 0;
    Statements &statements = store.statementRunner();
    const bool done = store.runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            // A category the program does not know yet joins the list, as
            // one typed on the new-entry page does.
            if (!store.AddCategory(added.category))
                return false;
            if (!statements.execute(
                    QStringLiteral("INSERT INTO RecurringExpense (ItemName, Price, CategoryName, LocationText, "
                                   "EveryCount, EveryUnit, FirstDate, LastDate, Times, Mode, NextIndex, NextDate) "
                                   "VALUES (:item, :price, :category, :place, :count, :unit, :first, :last, :times, "
                                   ":mode, :done, :next)"),
                    expenseBindings(added)))
                return false;
            id = statements.count(QStringLiteral("SELECT last_insert_rowid()"));
            return id > 0;
        },
        failure);
    return done ? id : 0;
}

bool RecurringExpenses::update(const RecurringExpense &expense, QString *failure)
{
    const QString refused = problem(expense);
    if (!refused.isEmpty()) {
        if (failure)
            *failure = refused;
        return false;
    }
    Statements &statements = store.statementRunner();
    return store.runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            const std::optional<RecurringExpense> old = of(expense.id);
            if (!old)
                return false;
            RecurringExpense changed = expense;
            changed.done = 0;
            if (old->done > 0) {
                const QDate lastDone = RecurrenceDates::occurrence(old->first, old->every, old->done - 1);
                changed.done = RecurrenceDates::firstIndexAfter(changed.first, changed.every, lastDone);
            }
            changed.next = nextDay(changed, changed.done);
            Bindings bindings = expenseBindings(changed);
            bindings.append({ QStringLiteral(":id"), expense.id });
            return store.AddCategory(changed.category) &&
                statements.execute(
                    QStringLiteral("UPDATE RecurringExpense SET ItemName = :item, Price = :price, CategoryName = "
                                   ":category, LocationText = :place, EveryCount = :count, EveryUnit = :unit, "
                                   "FirstDate = :first, LastDate = :last, Times = :times, Mode = :mode, NextIndex = "
                                   ":done, NextDate = :next WHERE SNo = :id"),
                    bindings);
        },
        failure);
}

bool RecurringExpenses::remove(int id)
{
    Statements &statements = store.statementRunner();
    const Bindings key = { { QStringLiteral(":id"), id } };
    return statements.count(QStringLiteral("SELECT COUNT(*) FROM RecurringExpense WHERE SNo = :id"), key) == 1 &&
        statements.execute(QStringLiteral("DELETE FROM RecurringExpense WHERE SNo = :id"), key);
}

std::optional<RecurringExpense> RecurringExpenses::of(int id)
{
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(query, columns + QStringLiteral(" WHERE SNo = :id"),
                                     { { QStringLiteral(":id"), id } }) ||
        !query->next())
        return std::nullopt;
    return readExpense(*query);
}

QList<RecurringExpense> RecurringExpenses::all()
{
    QList<RecurringExpense> list;
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(query, columns + QStringLiteral(" ORDER BY NextDate IS NULL, NextDate, SNo")))
        return list;
    while (query->next())
        list.append(readExpense(*query));
    return list;
}

QList<Occurrence> RecurringExpenses::occurrences(const QDate &from, const QDate &to, bool withConfirm)
{
    QList<Occurrence> list;
    std::optional<QSqlQuery> query;
    Bindings bindings = { { QStringLiteral(":to"), dayValue(to) } };
    if (!withConfirm)
        bindings.append({ QStringLiteral(":mode"), modeName(PostingMode::Auto) });
    if (!store.statementRunner().run(query,
                                     columns + QStringLiteral(" WHERE NextDate <= :to") +
                                         (withConfirm ? QString() : QStringLiteral(" AND Mode = :mode")),
                                     bindings))
        return list;
    while (query->next()) {
        const RecurringExpense expense = readExpense(*query);
        qint64 index = expense.done;
        if (from.isValid())
            index = std::max(index, RecurrenceDates::firstIndexAfter(expense.first, expense.every, from.addDays(-1)));
        for (; RecurrenceDates::exists(expense.first, expense.every, expense.end, index); ++index) {
            const Occurrence occurrence = occurrenceOf(expense, index);
            if (occurrence.date > to)
                break;
            list.append(occurrence);
        }
    }
    std::stable_sort(list.begin(), list.end(), [](const Occurrence &a, const Occurrence &b) {
        if (a.date != b.date)
            return a.date < b.date;
        if (a.expenseId != b.expenseId)
            return a.expenseId < b.expenseId;
        return a.index < b.index;
    });
    return list;
}

QList<Occurrence> RecurringExpenses::due(const QDate &day, bool withConfirm)
{
    return occurrences(QDate(), day, withConfirm);
}

QList<Occurrence> RecurringExpenses::between(const QDate &from, const QDate &to)
{
    return occurrences(from, to, true);
}

bool RecurringExpenses::post(const Occurrence &occurrence, double amount, QString *failure)
{
    return advance(occurrence, Step::Post, amount, failure);
}

bool RecurringExpenses::skip(const Occurrence &occurrence, QString *failure)
{
    return advance(occurrence, Step::Skip, 0, failure);
}

bool RecurringExpenses::advance(const Occurrence &occurrence, Step step, double amount, QString *failure)
{
    if (step == Step::Post && !Budgets::isAcceptableAmount(amount)) {
        if (failure)
            *failure = tr("%1 is no amount: an amount is above 0 and at most 9999999.99.").arg(Budgets::money(amount));
        return false;
    }
    QString reason;
    Outcome outcome = Outcome::Failed;
    const bool done = store.runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            outcome = advanceInTransaction(occurrence, step, amount);
            return outcome == Outcome::Done;
        },
        &reason);
    if (failure)
        *failure = done || outcome == Outcome::Stale ? QString()
            : reason.isEmpty()                       ? tr("the file took no writes")
                                                     : reason;
    return done;
}

RecurringExpenses::Outcome RecurringExpenses::advanceInTransaction(const Occurrence &occurrence, Step step,
                                                                   double amount)
{
    // Read again under the write lock: another program may have posted this
    // occurrence since it was listed.
    const std::optional<RecurringExpense> expense = of(occurrence.expenseId);
    if (!expense || expense->done != occurrence.index || expense->isFinished())
        return Outcome::Stale;
    if (step == Step::Post) {
        Entry entry;
        entry.ItemName = expense->item;
        entry.CategoryName = expense->category;
        entry.Price = float(amount);
        entry.LocationText = expense->place;
        entry.TransactDateTime = expense->next.startOfDay();
        entry.EnableGeoLoc = false;
        if (!store.AddEntry(&entry))
            return Outcome::Failed;
    }
    const qint64 following = occurrence.index + 1;
    const bool advanced = store.statementRunner().execute(
        QStringLiteral("UPDATE RecurringExpense SET NextIndex = :done, NextDate = :next WHERE SNo = :id"),
        { { QStringLiteral(":done"), following },
          { QStringLiteral(":next"), dayValue(nextDay(*expense, following)) },
          { QStringLiteral(":id"), occurrence.expenseId } });
    return advanced ? Outcome::Done : Outcome::Failed;
}

RecurringExpenses::Posting RecurringExpenses::postDue(const QDate &day, bool withConfirm,
                                                      const std::function<void(const Occurrence &)> &posted, int batch)
{
    Posting posting;
    const QList<Occurrence> due = this->due(day, withConfirm);
    for (qsizetype start = 0; start < due.size(); start += std::max(1, batch)) {
        const QList<Occurrence> chunk = due.mid(start, std::max(1, batch));
        QList<Occurrence> stored;
        QString reason;
        // The catalogue lookups of many AddEntry calls at once, as an
        // import makes them; a failure takes the whole batch back.
        const bool done = store.runInTransaction(
            DatabaseManager::WriteKind::Import,
            [&] {
                stored.clear();
                for (const Occurrence &occurrence : chunk) {
                    const Outcome outcome = advanceInTransaction(occurrence, Step::Post, occurrence.amount);
                    if (outcome == Outcome::Failed)
                        return false;
                    if (outcome == Outcome::Done)
                        stored.append(occurrence);
                }
                return true;
            },
            &reason);
        if (!done) {
            posting.failure = reason.isEmpty() ? tr("the file took no writes") : reason;
            break;
        }
        for (const Occurrence &occurrence : std::as_const(stored)) {
            posting.posted.append(occurrence);
            if (posted)
                posted(occurrence);
        }
    }
    return posting;
}
