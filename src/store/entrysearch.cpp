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
    const QString total = QString::number(result.total, 'f', 2);
    return result.count == 1
        ? QCoreApplication::translate("EntrySearch", "1 entry, total %1").arg(total)
        : QCoreApplication::translate("EntrySearch", "%1 entries, total %2").arg(QString::number(result.count), total);
}

qint64 EntrySearch::cents(double amount)
{
    return qint64(std::llround(amount * 100));
}

bool EntrySearch::bringTextsUpToDate()
{
    Statements &statements = store.statementRunner();
    struct Pending
    {
        qint64 sno;
        QString item;
        QString category;
        QString place;
    };
    QList<Pending> pending;
    {
        std::optional<QSqlQuery> query;
        if (!statements.run(query, QStringLiteral("select s.SNo, e.ItemName, e.CategoryName, e.LocationText from "
                                                  "EntrySearch s join Entry e on e.SNo = s.SNo where s.Item is null")))
            return false;
        while (query->next())
            pending.append({ query->value(0).toLongLong(), query->value(1).toString(), query->value(2).toString(),
                             query->value(3).toString() });
    }
    if (pending.isEmpty())
        return true;

    // Entries repeat a few hundred names: each is folded once.
    QHash<QString, QString> folded;
    const auto foldOnce = [&folded](const QString &text) {
        auto found = folded.constFind(text);
        if (found == folded.constEnd())
            found = folded.insert(text, fold(text));
        return *found;
    };
    return store.runInTransaction(DatabaseManager::WriteKind::Edits, [&] {
        bool written = true;
        for (const Pending &row : pending) {
            written = statements.execute(
                QStringLiteral("UPDATE EntrySearch SET Item = :item, Category = :category, Place = :place WHERE "
                               "SNo = :sno"),
                { { QStringLiteral(":item"), foldOnce(row.item) },
                  { QStringLiteral(":category"), foldOnce(row.category) },
                  { QStringLiteral(":place"), foldOnce(row.place) },
                  { QStringLiteral(":sno"), row.sno } });
            if (!written)
                break;
        }
        return written;
    });
}

EntrySearch::Result EntrySearch::find(const SearchFilter &filter)
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

    Result result{ owned(store.entryList(query)), 0, 0 };
    result.count = int(result.entries.list().size());
    for (const Entry *entry : result.entries.list())
        result.total += double(entry->Price);
    return result;
}
