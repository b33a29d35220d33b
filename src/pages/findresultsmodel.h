// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "records.h"

#include <QAbstractTableModel>

#include <functional>

// The entries a search found, as the Find page's table shows them: columns
// "Date", "Item", "Category", "Amount" and "Place". The display role gives
// the texts, SortRole the values to sort by (the amount as a number) and
// SNoRole the entry's SNo. The model owns the entries it holds.
//
// A search may find a hundred thousand entries, and reading them all
// would keep the table empty for most of a second: the model reads a page
// of them at a time through the `Fetch` it is given, the first at once and
// the next whenever the view shows the end of what it has (Qt's
// canFetchMore() and fetchMore()).
class FindResultsModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY(FindResultsModel)

public:
    enum Role { SortRole = Qt::UserRole, SNoRole };
    enum Column { DateColumn, ItemColumn, CategoryColumn, AmountColumn, PlaceColumn, ColumnCount };
    // Entries read per page.
    static constexpr int pageSize = 500;

    // `limit` found entries after the first `offset`, in the search's order.
    using Fetch = std::function<OwnedList<Entry>(int offset, int limit)>;

    explicit FindResultsModel(QObject *parent);
    ~FindResultsModel() override;

    // A new search's results: `count` entries in all, read through `fetch`.
    void setResults(int count, Fetch fetch);
    // Reads every entry not read yet (to sort them all by a column).
    void fetchAll();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

private:
    // Appends up to `limit` more entries; stops the fetching when the store
    // gives fewer than it said it had (another writer removed some).
    void read(int limit);

    QList<Entry *> results;
    int found = 0;
    Fetch fetch;
};
