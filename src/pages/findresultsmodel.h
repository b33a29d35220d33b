// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "records.h"

#include <QAbstractTableModel>

// The entries a search found, as the Find page's table shows them: columns
// "Date", "Item", "Category", "Amount" and "Place". The display role gives
// the texts, SortRole the values to sort by (the amount as a number) and
// SNoRole the entry's SNo. The model owns the entries it holds.
class FindResultsModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY(FindResultsModel)

public:
    enum Role { SortRole = Qt::UserRole, SNoRole };
    enum Column { DateColumn, ItemColumn, CategoryColumn, AmountColumn, PlaceColumn, ColumnCount };

    explicit FindResultsModel(QObject *parent);

    void setEntries(OwnedList<Entry> entries);
    const QList<Entry *> &entries() const { return results.list(); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    OwnedList<Entry> results;
};
