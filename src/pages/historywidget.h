// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "databasemanager.h"

#include <QList>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include "budgets.h"
#include "entrytablerows.h"
#include "historybuckets.h"

struct EntryFilter;
class PlacesMap;
class QDate;
class QTableWidget;

namespace Ui {
class HistoryWidget;
}

// The report page: spending by category, by period, in total, the list of
// every entry with the details of a tapped one, and spending by place, in a
// table and on a map. The store is shared, not owned.
class HistoryWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(HistoryWidget)

public:
    HistoryWidget(QPointer<DatabaseManager> dbManager, QWidget *parent);
    ~HistoryWidget() override;

signals:
    // The user asked for the Find page (the Find button of the Entries tab).
    void findRequested();

private slots:
    void on_tableWidgetAllEntries_cellClicked(int row, int column);
    void on_dateEditDateWiseStartDate_dateChanged(const QDate &date);
    void on_comboBoxDateWiseTimePeriod_currentIndexChanged(int index);
    void on_dateEditDateWiseEndDate_dateChanged(const QDate &date);
    void on_tableWidgetCategoryRecentEntries_cellClicked(int row, int column);
    void on_comboBoxCategory_currentIndexChanged(int index);
    void on_tabWidgetHistoryContainer_currentChanged(int index);
    void on_pushButtonFind_clicked();

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // When an entry table fits its columns to their contents: after the
    // header labels are set, or once before the rows are replaced, from what
    // the table showed until then.
    enum class ColumnFit { AfterHeaders, BeforeRefill };

    void AddCategoriesToComboBoxInCategoryTab(QList<QString> names);
    void ShowCategoryWiseDetails();
    void ShowDateWiseDetails();
    void ShowTotalDetails();
    void CalculateGlobalEntryData();
    void ShowAllEntryDetails();
    void ShowPlacesDetails();
    // The "Budgets" tab: every budget in its period holding today.
    void ShowBudgetsDetails();
    // Lists below the budgets the entries of a row's category and period.
    void showBudgetEntries(int row);
    // Centres the places map on the place of a row of the places table.
    void showPlaceOnMap(int row);

    static void fillPlacesTable(QTableWidget *table, const QList<PlaceSpending *> &places);
    // The rows of an entry table, read from the store without keeping its
    // records; each entry also goes into *totals when given. No rows, and
    // no totals, when reading fails.
    EntryTableRows::Rows readRows(const EntryFilter &filter, HistoryBuckets::PeriodTotals *totals = nullptr) const;
    // Fills an entry table with rows, in their order.
    static void fillEntryTable(QTableWidget *table, EntryTableRows::Rows rows, ColumnFit fit = ColumnFit::AfterHeaders);

    // What a tab was last computed from: the store's contents and the tab's
    // own inputs. A tab whose key is unchanged would show again exactly what
    // it shows, so it is not computed again. An empty key matches nothing.
    QString tabKey(const QString &inputs) const;
    // Whether `key` is what `shownFor` holds and the tab's graph file (if it
    // has one) is still on disk; if not, `shownFor` is cleared (the tab is
    // about to change) and the caller records the key once the tab is
    // computed.
    static bool isShowing(QString *shownFor, const QString &key, bool graphOnDisk = true);
    // Writes the graphs shown again at the size of their areas, once the
    // page has grown or shrunk: a saved graph has the size it is shown at.
    void saveShownGraphsAgain();

    Ui::HistoryWidget *ui;
    QPointer<DatabaseManager> dbManager;
    QList<QString> usedCategories;
    QList<float> usedCategoriesTotals;
    QList<int> usedCategoriesCorrespondingNumberOfDays;
    bool allowDatewiseDropDowns;
    float globalTotal;
    PlacesMap *placesMap;
    QString categoryTabShownFor;
    QString dateWiseTabShownFor;
    QString totalTabShownFor;
    QString entriesTabShownFor;
    QString placesTabShownFor;
    QTimer graphsResized;
    QList<BudgetStanding> shownBudgets;
};
