// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "recurrencedates.h"

#include <QDate>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

class DatabaseManager;

// Whether an occurrence is posted without a word or asked about first (a
// bill whose amount varies).
enum class PostingMode { Auto, Confirm };

// An expense that repeats: rent, a bill, a subscription.
struct RecurringExpense
{
    int id = 0;
    QString item;
    double amount = 0;
    QString category;
    QString place;
    Recurrence every;
    QDate first;
    RecurrenceEnd end;
    PostingMode mode = PostingMode::Auto;
    // The occurrences posted or skipped so far, and the day of the next
    // one: null once none is left.
    qint64 done = 0;
    QDate next;

    bool isFinished() const { return !next.isValid(); }
    // The occurrences still to come; nothing for an open end.
    std::optional<qint64> left() const { return RecurrenceDates::left(first, every, end, done); }
};

// One occurrence of a recurring expense, as it would be posted.
struct Occurrence
{
    int expenseId = 0;
    qint64 index = 0;
    QDate date;
    QString item;
    double amount = 0;
    QString category;
    QString place;
    PostingMode mode = PostingMode::Auto;
};

// The recurring expenses kept in the file, in a table of their own, and the
// posting of their occurrences. Posting one adds its entry through AddEntry
// (so the item catalogue and the budgets count it) and moves the expense on
// to its next occurrence in one transaction: an occurrence is posted once,
// whatever stops the program, and one that another program posted
// meanwhile is not posted again.
class RecurringExpenses
{
public:
    // `store` outlives this object.
    explicit RecurringExpenses(DatabaseManager &store);

    static QString modeName(PostingMode mode);
    static std::optional<PostingMode> modeFromName(const QString &name);
    // Why an expense cannot be kept as it is (no item, an amount that is no
    // amount, a step out of range, an end before the first day); empty when
    // it can.
    static QString problem(const RecurringExpense &expense);

    // Adds an expense (its id and progress are ignored); its id, or 0 with
    // the reason in *failure.
    int add(const RecurringExpense &expense, QString *failure = nullptr);
    // Stores a changed expense. Occurrences already posted or skipped stay
    // done: the next one is the first of the new schedule after the last
    // one done.
    bool update(const RecurringExpense &expense, QString *failure = nullptr);
    // Removes an expense; the entries it posted stay.
    bool remove(int id);

    std::optional<RecurringExpense> of(int id);
    // Every expense, the soonest next occurrence first, finished ones last.
    QList<RecurringExpense> all();

    // Every occurrence due on or before `day`, oldest first (and by
    // expense); those that ask first only when `withConfirm` is true.
    QList<Occurrence> due(const QDate &day, bool withConfirm);
    // Every occurrence from `from` to `to`, both included, oldest first.
    QList<Occurrence> between(const QDate &from, const QDate &to);

    // Posts `occurrence` at `amount`; skip() moves on without posting.
    // False, with the reason in *failure, when nothing was written: also
    // when the occurrence is no longer the expense's next one (*failure is
    // then empty).
    bool post(const Occurrence &occurrence, double amount, QString *failure = nullptr);
    bool skip(const Occurrence &occurrence, QString *failure = nullptr);

    struct Posting
    {
        QList<Occurrence> posted;
        // Empty unless the file refused a posting; those before it stay.
        QString failure;
    };
    // Posts every occurrence due on or before `day`, oldest first, at most
    // `batch` in each transaction (every commit waits for the disk, which
    // would make a thousand of them take seconds); `posted` hears of each
    // once its transaction is stored. A failure takes back only the batch
    // it happened in.
    static constexpr int defaultBatch = 100;
    Posting postDue(const QDate &day, bool withConfirm, const std::function<void(const Occurrence &)> &posted = {},
                    int batch = defaultBatch);

private:
    enum class Step { Post, Skip };
    enum class Outcome { Done, Stale, Failed };
    bool advance(const Occurrence &occurrence, Step step, double amount, QString *failure);
    // Inside the caller's transaction.
    Outcome advanceInTransaction(const Occurrence &occurrence, Step step, double amount);
    QList<Occurrence> occurrences(const QDate &from, const QDate &to, bool withConfirm);

    DatabaseManager &store;
};
