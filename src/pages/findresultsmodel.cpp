// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "findresultsmodel.h"

#include "format.h"

#include <algorithm>

FindResultsModel::FindResultsModel(QObject *parent) : QAbstractTableModel(parent) { }

FindResultsModel::~FindResultsModel()
{
    qDeleteAll(results);
}

void FindResultsModel::setResults(int count, Fetch fetchPage)
{
    beginResetModel();
    qDeleteAll(results);
    results.clear();
    found = std::max(count, 0);
    fetch = std::move(fetchPage);
    endResetModel();
    read(pageSize);
}

void FindResultsModel::read(int limit)
{
    const int wanted = std::min(limit, found - int(results.size()));
    if (wanted <= 0 || !fetch)
        return;
    QList<Entry *> page = fetch(int(results.size()), wanted).release();
    if (page.size() < wanted)
        found = int(results.size() + page.size());
    if (page.isEmpty())
        return;
    beginInsertRows(QModelIndex(), int(results.size()), int(results.size() + page.size()) - 1);
    results.append(page);
    endInsertRows();
}

void FindResultsModel::fetchAll()
{
    read(found - int(results.size()));
}

bool FindResultsModel::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && results.size() < found;
}

void FindResultsModel::fetchMore(const QModelIndex &parent)
{
    if (!parent.isValid())
        read(pageSize);
}

int FindResultsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(results.size());
}

int FindResultsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FindResultsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= results.size())
        return QVariant();
    const Entry &entry = *results.at(index.row());
    if (role == SNoRole)
        return entry.SNo;
    if (role != Qt::DisplayRole && role != SortRole)
        return QVariant();
    const bool sorting = role == SortRole;
    switch (index.column()) {
    case DateColumn:
        // The store's order is newest first, and among entries of the same
        // date-time the last added first: a later row is an older entry.
        return sorting ? QVariant(-index.row()) : QVariant(Format::date(entry.TransactDateTime.date()));
    case ItemColumn:
        return entry.ItemName;
    case CategoryColumn:
        return entry.CategoryName;
    case AmountColumn:
        return sorting ? QVariant(double(entry.Price)) : QVariant(Format::number(double(entry.Price)));
    case PlaceColumn:
        return entry.LocationText;
    default:
        return QVariant();
    }
}

QVariant FindResultsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case DateColumn:
        return tr("Date");
    case ItemColumn:
        return tr("Item");
    case CategoryColumn:
        return tr("Category");
    case AmountColumn:
        return tr("Amount");
    case PlaceColumn:
        return tr("Place");
    default:
        return QVariant();
    }
}
