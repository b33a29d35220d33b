// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entrysearch.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class DatabaseManager;
class FindResultsModel;
class QModelIndex;
class QSortFilterProxyModel;

namespace Ui {
class FindWidget;
}

// Finds entries as the user types: a text, a category, a place, a range of
// days and of amounts, with the number and total of what was found. The
// last filter is kept in the settings and comes back when the page opens
// again. A found entry opens in the details view below the results, and
// the results can be exported as CSV or QIF. The store is only borrowed
// through its guard.
class FindWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(FindWidget)

public:
    FindWidget(QPointer<DatabaseManager> dbManager, QWidget *parent);
    ~FindWidget() override;

    // The filter the fields say.
    SearchFilter filter() const;

private slots:
    void on_pushButtonClear_clicked();
    void on_pushButtonExport_clicked();

private:
    void showFilter(const SearchFilter &filter);
    void searchSoon();
    void search();
    void showEntry(const QModelIndex &index);

    Ui::FindWidget *ui;
    QPointer<DatabaseManager> dbManager;
    FindResultsModel *results;
    QSortFilterProxyModel *sorted;
    // The filter of the results shown.
    SearchFilter searched;
    // Keys typed in a burst make one search, shortly after the last.
    QTimer searchTimer;
};
