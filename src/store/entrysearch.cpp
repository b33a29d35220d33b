// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entrysearch.h"

#include "databasemanager.h"
#include "entryquery.h"
#include "statements.h"

#include <QCoreApplication>
#include <QHash>
#include <QSqlQuery>

#include <cmath>

bool SearchFilter::operator==(const SearchFilter &other) const
{
    return text == other.text && category == other.category && place == other.place && from == other.from &&
        to == other.to && minimum == other.minimum && maximum == other.maximum;
}

EntrySearch::EntrySearch(DatabaseManager &store) : store(store) { }

QString EntrySearch::fold(const QString &text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString kept;
    kept.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        switch (c.category()) {
        case QChar::Mark_NonSpacing:
        case QChar::Mark_SpacingCombining:
        case QChar::Mark_Enclosing:
            break;
        default:
            kept.append(c);
        }
    }
    return kept.toCaseFolded();
}

QString EntrySearch::summary(const Result &result)
{
    return summary(Totals{ result.count, result.total });
}

QString EntrySearch::summary(const Totals &totals)
{
    const QString total = QString::number(totals.total, 'f', 2);
    return totals.count == 1
        ? QCoreApplication::translate("EntrySearch", "1 entry, total %1").arg(total)
        : QCoreApplication::translate("EntrySearch", "%1 entries, total %2").arg(QString::number(totals.count), total);
}

qint64 EntrySearch::cents(double amount)
{
    return qint64(std::llround(amount * 100));
}

bool EntrySearch::bringTextsUpToDate()
{
    Statements &statements = store.statementRunner();
    // Entries repeat a few hundred names: each distinct text of the pending
    // rows is folded once.
    QHash<QString, QString> folded;
    {
        std::optional<QSqlQuery> query;
        if (!statements.run(query, QStringLiteral("select e.ItemName, e.CategoryName, e.LocationText from "
                                                  "EntrySearch s join Entry e on e.SNo = s.SNo where s.Item is null")))
            return false;
        while (query->next()) {
            for (int column = 0; column < 3; ++column) {
                const QString text = query->value(column).toString();
                if (!folded.contains(text))
                    folded.insert(text, fold(text));
            }
        }
    }
    if (folded.isEmpty())
        return true;

    // The pending rows take their folded texts in one statement, from a
    // table of this connection's own: the index's triggers then run within
    // that one statement, and the full-text index gathers every row before
    // it writes, where a statement per row would make it write a segment
    // for each.
    return store.runInTransaction(DatabaseManager::WriteKind::Edits, [&] {
        if (!statements.execute(QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS SearchFolding (Text text PRIMARY KEY "
                                               "NOT NULL, Folded text NOT NULL)"))
            || !statements.execute(QStringLiteral("DELETE FROM temp.SearchFolding")))
            return false;
        for (auto text = folded.cbegin(); text != folded.cend(); ++text) {
            if (!statements.execute(QStringLiteral("INSERT INTO temp.SearchFolding (Text, Folded) VALUES (:text, "
                                                   ":folded)"),
                                    { { QStringLiteral(":text"), text.key() },
                                      { QStringLiteral(":folded"), text.value() } }))
                return false;
        }
        // A missing text (NULL) folds as the empty one, as it reads.
        return statements.execute(QStringLiteral(
                   "UPDATE EntrySearch SET Item = i.Folded, Category = c.Folded, Place = p.Folded FROM Entry e, "
                   "temp.SearchFolding i, temp.SearchFolding c, temp.SearchFolding p WHERE EntrySearch.Item IS NULL "
                   "AND e.SNo = EntrySearch.SNo AND i.Text = coalesce(e.ItemName, '') AND c.Text = "
                   "coalesce(e.CategoryName, '') AND p.Text = coalesce(e.LocationText, '')"))
            && statements.execute(QStringLiteral("DELETE FROM temp.SearchFolding"));
    });
}

EntryFilter EntrySearch::query(const SearchFilter &filter)
{
    EntryFilter query;
    query.order = EntryFilter::Order::NewestFirstLastAddedFirst;
    query.category = filter.category;
    query.foldedText = fold(filter.text);
    query.foldedPlace = fold(filter.place);
    query.firstDay = filter.from;
    query.lastDay = filter.to;
    if (filter.minimum)
        query.minimumCents = cents(*filter.minimum);
    if (filter.maximum)
        query.maximumCents = cents(*filter.maximum);
    if (!query.foldedText.isEmpty() || !query.foldedPlace.isEmpty())
        bringTextsUpToDate();
    return query;
}

EntrySearch::Result EntrySearch::find(const SearchFilter &filter)
{
    Result result{ owned(store.entryList(query(filter))), 0, 0 };
    result.count = int(result.entries.list().size());
    for (const Entry *entry : result.entries.list())
        result.total += double(entry->Price);
    return result;
}

EntrySearch::Totals EntrySearch::totals(const SearchFilter &filter)
{
    Totals totals;
    if (!store.entryTotals(query(filter), &totals.count, &totals.total))
        return Totals();
    return totals;
}

OwnedList<Entry> EntrySearch::page(const SearchFilter &filter, int offset, int limit)
{
    EntryFilter window = query(filter);
    window.offset = offset;
    window.limit = limit;
    return owned(limit > 0 ? store.entryList(window) : QList<Entry *>());
}
