// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "historywidget.h"
#include "ui_historywidget.h"

#include "budgetlevelcolours.h"
#include "databasemanager.h"
#include "entrydetailswidget.h"
#include "entryquery.h"
#include "entrytablerows.h"
#include "format.h"
#include "fulltexttooltipdelegate.h"
#include "historybuckets.h"
#include "linegraph.h"
#include "look.h"
#include "notice.h"
#include "piewidget.h"
#include "placesmap.h"
#include "settings.h"

#include <QBrush>
#include <QFile>
#include <QHeaderView>
#include <QImageReader>
#include <QScrollArea>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QSignalBlocker>
#include <QStyle>
#include <QTableWidget>
#include <QTableWidgetItem>

#include <algorithm>
#include <cmath>

namespace {

// The columns share the table's width equally, as designed; a column whose
// heading would not fit in its share keeps the heading's width, and the
// others share what is left. A heading is never cut; a cell may be (its tool
// tip tells the whole text).
void keepHeadingsWhole(QTableWidget *table)
{
    QHeaderView *header = table->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Stretch);
    // The room the columns have once the table shows, with a vertical
    // scroll bar, whether or not it comes.
    int available = table->width() - 2 * table->frameWidth() -
        table->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, table);
    if (table->verticalHeader()->isVisibleTo(table))
        available -= table->verticalHeader()->sizeHint().width();
    QList<int> shared;
    for (int column = 0; column < header->count(); ++column)
        shared.append(column);
    for (bool changed = true; changed && !shared.isEmpty();) {
        changed = false;
        const int share = available / int(shared.size());
        for (int i = 0; i < shared.size(); ++i) {
            const int column = shared.at(i);
            const int heading = header->sectionSizeHint(column);
            if (heading > share) {
                header->setSectionResizeMode(column, QHeaderView::Fixed);
                header->resizeSection(column, heading);
                available -= heading;
                shared.removeAt(i);
                changed = true;
                break;
            }
        }
    }
}

// The periods of the date-wise tab, in the order of the period box.
enum Period { Daily = 0, Weekly = 1, Monthly = 2 };

// The columns of the places table.
enum PlaceColumn { PlaceName = 0, PlaceEntries = 1, PlaceTotal = 2, PlaceAverage = 3, PlaceLastVisit = 4 };

// A cell of the places table: red text like the entry tables, sorted by the
// value it shows (a number, a date-time, a place text), not by that text.
class PlaceCell final : public QTableWidgetItem
{
public:
    static constexpr int SortKeyRole = Qt::UserRole;

    PlaceCell(const QString &text, const QVariant &sortKey) : QTableWidgetItem(text)
    {
        setData(SortKeyRole, sortKey);
        setFlags(flags() & ~Qt::ItemIsEditable);
        setForeground(QBrush(QColor(0xff, 0x00, 0x00)));
    }

    QTableWidgetItem *clone() const override { return new PlaceCell(*this); }

    bool operator<(const QTableWidgetItem &other) const override
    {
        const QVariant key = data(SortKeyRole);
        const QVariant otherKey = other.data(SortKeyRole);
        if (key.typeId() == QMetaType::QString)
            return QString::localeAwareCompare(key.toString(), otherKey.toString()) < 0;
        return QVariant::compare(key, otherKey) == QPartialOrdering::Less;
    }

private:
    PlaceCell(const PlaceCell &) = default;
};

// Gives the graph the colours of the look that shows.
void colourGraph(ZRLineGraph *graph)
{
    const Look::GraphColours colours = Look::graphColours();
    graph->setBackground(colours.background);
    graph->setBorder(colours.border);
    graph->setGraphBackground(colours.plot);
    graph->setGraphBorder(colours.grid);
    graph->setTextColor(colours.text);
    graph->setGraphLine(colours.line);
}

// The file a graph shown on the page was written to.
const char savedAsProperty[] = "_ledgerly_savedAs";

ZRLineGraph *newGraph()
{
    auto *graph = new ZRLineGraph;
    colourGraph(graph);
    return graph;
}

// The columns of the budgets table.
enum BudgetColumn {
    BudgetCategory,
    BudgetPeriodName,
    BudgetAmount,
    BudgetSpent,
    BudgetLeft,
    BudgetUsed,
    BudgetPace,
    BudgetColumnCount
};

constexpr int UsedShareRole = Qt::UserRole;
constexpr int UsedLevelRole = Qt::UserRole + 1;

// The "Used" cell: a bar as long as the spent share (full from 100 %), in
// the colour of the budget's level, with the percentage across it. Where the
// bar lies the text takes the colour that reads on the bar, elsewhere the
// table's own.
class UsedBarDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const auto level = BudgetLevel(index.data(UsedLevelRole).toInt());
        const double share = std::clamp(index.data(UsedShareRole).toDouble(), 0.0, 1.0);
        const QRect cell = option.rect.adjusted(2, 2, -2, -2);
        QRect bar = cell;
        bar.setWidth(int(std::lround(cell.width() * share)));
        const QString text = index.data(Qt::DisplayRole).toString();

        painter->save();
        painter->fillRect(bar, BudgetLevelColours::background(level));
        painter->setFont(option.font);
        painter->setPen(option.palette.color(QPalette::Text));
        painter->setClipRect(QRect(bar.right() + 1, cell.top(), cell.right() - bar.right(), cell.height()));
        painter->drawText(cell, Qt::AlignCenter, text);
        painter->setPen(BudgetLevelColours::text(level));
        painter->setClipRect(bar);
        painter->drawText(cell, Qt::AlignCenter, text);
        painter->restore();
    }
};

QTableWidgetItem *budgetCell(const QString &text)
{
    auto *item = new QTableWidgetItem(text);
    item->setFlags(item->flags() & ~Qt::ItemIsEditable);
    return item;
}

} // namespace

HistoryWidget::HistoryWidget(QPointer<DatabaseManager> dbManager, QWidget *parent)
    : QWidget(parent), ui(new Ui::HistoryWidget), dbManager(dbManager), allowDatewiseDropDowns(false), globalTotal(0),
      placesMap(nullptr)
{
    ui->setupUi(this);
    // The columns are too narrow for most dates, categories and places.
    for (QTableWidget *table : { ui->tableWidgetCategoryRecentEntries, ui->tableWidgetDattewiseTabEntries,
                                 ui->tableWidgetTotalTabEntries, ui->tableWidgetAllEntries, ui->tableWidgetPlaces })
        table->setItemDelegate(new FullTextToolTipDelegate(table));

    // The places tab is filled when it is first shown, the map page loaded
    // with it: until then it costs the page nothing.
    placesMap = new PlacesMap(ui->webViewPlaces, this);
    connect(ui->tableWidgetPlaces, &QTableWidget::cellClicked, this, [this](int row) { showPlaceOnMap(row); });
    ui->tableWidgetBudgets->setItemDelegateForColumn(BudgetUsed, new UsedBarDelegate(ui->tableWidgetBudgets));
    connect(ui->tableWidgetBudgets, &QTableWidget::cellClicked, this, [this](int row) { showBudgetEntries(row); });

    ui->comboBoxDateWiseTimePeriod->insertItem(Daily, tr("Daily"));
    ui->comboBoxDateWiseTimePeriod->insertItem(Weekly, tr("Weekly"));
    ui->comboBoxDateWiseTimePeriod->insertItem(Monthly, tr("Monthly"));

    // The date-wise tab opens on the single day of the newest entry.
    const QDate newestDay = this->dbManager->GetDateOfLastEntry().date();
    ui->dateEditDateWiseEndDate->setDate(newestDay);
    ui->dateEditDateWiseStartDate->setDate(newestDay);

    usedCategories = this->dbManager->GetListOfAllDistinctCategoriesOfAllEntries();
    CalculateGlobalEntryData();

    // Adding the first category already computes the tab through the combo's
    // slot; it is computed once more here so the tab never depends on that.
    AddCategoriesToComboBoxInCategoryTab(usedCategories);
    ShowCategoryWiseDetails();

    ui->tabWidgetHistoryContainer->setCurrentIndex(0);
    allowDatewiseDropDowns = true;

    ShowTotalDetails();
    ShowAllEntryDetails();

    // A page that grows with the window draws its graphs larger; the files
    // follow once the resizing has settled.
    graphsResized.setSingleShot(true);
    graphsResized.setInterval(100);
    connect(&graphsResized, &QTimer::timeout, this, &HistoryWidget::saveShownGraphsAgain);
    ui->scrollAreaCategoryLineChart->installEventFilter(this);
    ui->scrollAreaDateWiseLineChart->installEventFilter(this);
}

HistoryWidget::~HistoryWidget()
{
    delete ui;
}

void HistoryWidget::CalculateGlobalEntryData()
{
    // One read of the entries gives every category's figures, the same
    // numbers and the very same sums as a count of each category's distinct
    // date-times and a sum over its entry list, two reads of the whole table
    // per category.
    HistoryBuckets::appendCategoryFigures(usedCategories, owned(dbManager->GetSpendingPerCategory()).list(),
                                          &usedCategoriesCorrespondingNumberOfDays, &usedCategoriesTotals,
                                          &globalTotal);
}

QString HistoryWidget::tabKey(const QString &inputs) const
{
    const std::optional<DatabaseManager::ContentVersion> version = dbManager->contentVersion();
    if (!version)
        return QString();
    return QStringLiteral("%1/%2/").arg(version->first).arg(version->second) + inputs;
}

bool HistoryWidget::isShowing(QString *shownFor, const QString &key, bool graphOnDisk)
{
    if (graphOnDisk && !key.isEmpty() && key == *shownFor)
        return true;
    shownFor->clear();
    return false;
}

void HistoryWidget::AddCategoriesToComboBoxInCategoryTab(QList<QString> names)
{
    for (const QString &name : std::as_const(names))
        ui->comboBoxCategory->addItem(name);
}

void HistoryWidget::changeEvent(QEvent *event)
{
    // A new look restyles the application, and the graphs shown take its
    // colours at once; the files written keep those of the look they were
    // written in until the tab is shown again.
    if (event->type() == QEvent::StyleChange) {
        const QList<ZRLineGraph *> graphs = findChildren<ZRLineGraph *>();
        for (ZRLineGraph *graph : graphs) {
            colourGraph(graph);
            graph->update();
        }
    }
    QWidget::changeEvent(event);
}

bool HistoryWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        graphsResized.start();
    return QWidget::eventFilter(watched, event);
}

void HistoryWidget::saveShownGraphsAgain()
{
    for (QScrollArea *area : { ui->scrollAreaCategoryLineChart, ui->scrollAreaDateWiseLineChart }) {
        auto *graph = qobject_cast<ZRLineGraph *>(area->widget());
        const QString file = graph ? graph->property(savedAsProperty).toString() : QString();
        if (!file.isEmpty() && QImageReader(file).size() != area->size())
            graph->save(file, area->size());
    }
}

void HistoryWidget::ShowCategoryWiseDetails()
{
    const QString name = ui->comboBoxCategory->currentText();
    // The graph's file is part of what the tab shows: gone, it is written
    // again.
    const QString graphFile = QStringLiteral("QtCategoriesLineGraph.png");
    const QSize graphSize = ui->scrollAreaCategoryLineChart->size();
    const QString key = tabKey(QStringLiteral("%1x%2/").arg(graphSize.width()).arg(graphSize.height()) + name);
    if (isShowing(&categoryTabShownFor, key, QFile::exists(graphFile)))
        return;
    auto *graph = newGraph();

    const QList<QDateTime> dates = dbManager->GetAllDistinctDatesOfEntriesOfCategory(name);
    // The combo only ever holds names of usedCategories; an empty store
    // leaves it empty, and the figures then read as divisions of zero.
    const float total = usedCategoriesTotals.value(usedCategories.indexOf(name), 0.0f);
    const CategoryStatistics statistics = HistoryBuckets::categoryStatistics(total, dates, globalTotal);

    ui->labelCategoryTabCategoryTotal->setText(
        tr("<font color=#ff7637> Category Total: %1 </font>").arg(Format::number(statistics.total)));
    ui->labelCategoryTabDaysUse->setText(tr("<font color=#ff7637> Days in use: %1 </font>").arg(statistics.daysInUse));
    ui->labelCategoryTabCalanderDaysUse->setText(
        tr("<font color=#ff7637> Calander days in use: %1 </font>").arg(statistics.calendarDays));
    ui->labelCategoryTabAvgDaysUse->setText(
        tr("<font color=#ff7637> Daily Average: %1 </font>").arg(Format::number(statistics.dailyAverage)));
    ui->labelCategoryTabAvgCalanderDaysUse->setText(tr("<font color=#ff7637> Daily Calander Average: %1 </font>")
                                                        .arg(Format::number(statistics.calendarDailyAverage)));
    ui->labelCategoryTabCategoryPercent->setText(
        tr("<font color=#ff7637> % Contribution in Total: %1 </font>").arg(Format::number(statistics.percentOfTotal)));

    const bool listsAll = HistoryBuckets::categoryListsAllEntries(dates);
    const DateTimeRange window = listsAll ? DateTimeRange() : HistoryBuckets::categoryRecentWindow(dates);
    HistoryBuckets::PeriodTotals totals;
    EntryTableRows::Rows rows = readRows(listsAll ? EntryFilter::ofCategory(name)
                                                  : EntryFilter::ofCategory(name).between(window.from, window.to),
                                         &totals);

    const QList<DayTotal> days = totals.dayTotals();
    for (const DayTotal &day : days)
        graph->append(ZRLineGraphData(Format::date(day.day), Format::number(day.total)));
    graph->setSortY(true);
    graph->save(graphFile, graphSize);
    graph->setProperty(savedAsProperty, graphFile);
    ui->scrollAreaCategoryLineChart->setWidget(graph);

    fillEntryTable(ui->tableWidgetCategoryRecentEntries, std::move(rows),
                   listsAll ? ColumnFit::BeforeRefill : ColumnFit::AfterHeaders);
    categoryTabShownFor = key;
}

void HistoryWidget::ShowDateWiseDetails()
{
    const QDateTime start = ui->dateEditDateWiseStartDate->dateTime();
    const QDateTime end = ui->dateEditDateWiseEndDate->dateTime();
    const int period = ui->comboBoxDateWiseTimePeriod->currentIndex();
    const QString graphFile = period == Daily ? QStringLiteral("QtDateWiseDailyLineGraph.png")
        : period == Weekly                    ? QStringLiteral("QtDateWiseWeeklyLineGraph.png")
        : period == Monthly                   ? QStringLiteral("QtDateWiseMonthlyLineGraph.png")
                                              : QString();
    const QSize graphSize = ui->scrollAreaDateWiseLineChart->size();
    // A range without entries is never kept: each run tells the user so.
    const QString key = tabKey(QStringLiteral("%1/%2/%3/%4x%5")
                                   .arg(start.toString(Qt::ISODateWithMs), end.toString(Qt::ISODateWithMs))
                                   .arg(period)
                                   .arg(graphSize.width())
                                   .arg(graphSize.height()));
    if (isShowing(&dateWiseTabShownFor, key, graphFile.isEmpty() || QFile::exists(graphFile)))
        return;
    // A table of years of entries holds tens of megabytes, and the list that
    // replaces it as much again: counted first, a range without entries
    // leaves the tab as it was, and any other empties the table before its
    // new rows are read rather than after.
    if (dbManager->GetNumberOfEntriesBetweenDates(start, end) == 0) {
        // The tab keeps what it showed before.
        Notice::inform(tr("No Entries between the given dates"));
        return;
    }
    ui->tableWidgetDattewiseTabEntries->setRowCount(0);
    EntryTableRows::of(ui->tableWidgetDattewiseTabEntries)->clear();
    // The table and the graphs take their figures from one reading, as it
    // goes: the entries themselves are not kept.
    HistoryBuckets::PeriodTotals totals;
    EntryTableRows::Rows rows = readRows(EntryFilter().between(start, end), &totals);
    if (rows.isEmpty()) {
        // Only if another program took the rows away (or the file failed)
        // in between; the table is then already empty.
        Notice::inform(tr("No Entries between the given dates"));
        return;
    }

    const QList<DayTotal> days = totals.dayTotals();
    const float periodTotal = totals.sumOfPrices();
    ui->labelDatewiseTabTotal->setText(
        tr("<font color=#ff2411> Total Spending in the period= %1 </font>").arg(Format::number(periodTotal)));
    const QList<LabelledTotal> &categories = totals.categoryTotals();

    QList<LabelledTotal> buckets;
    switch (period) {
    case Daily:
        buckets = HistoryBuckets::dailyBuckets(start.date(), end.date(), days);
        break;
    case Weekly:
        buckets = HistoryBuckets::weeklyBuckets(start.date(), end.date(), days);
        break;
    case Monthly:
        buckets = HistoryBuckets::monthlyBuckets(start.date(), end.date(), days);
        break;
    default:
        break;
    }

    if (!graphFile.isEmpty()) {
        auto *graph = newGraph();
        for (const LabelledTotal &bucket : std::as_const(buckets))
            graph->append(ZRLineGraphData(bucket.label, Format::number(bucket.total)));
        graph->setSortY(true);
        graph->save(graphFile, graphSize);
        graph->setProperty(savedAsProperty, graphFile);
        ui->scrollAreaDateWiseLineChart->setWidget(graph);

        auto *pie = new PieWidget;
        for (const LabelledTotal &category : categories)
            pie->addEntry(category.label, HistoryBuckets::sliceValue(category.total));
        ui->scrollAreaDateWisePieChart->setWidget(pie);
    }

    fillEntryTable(ui->tableWidgetDattewiseTabEntries, std::move(rows));
    dateWiseTabShownFor = key;
}

void HistoryWidget::ShowTotalDetails()
{
    // The figures are the page's own, taken when it was built; the table's
    // rows are the store's.
    const QString key = tabKey(QString());
    if (isShowing(&totalTabShownFor, key))
        return;
    auto *pie = new PieWidget;
    for (qsizetype i = 0; i < usedCategories.size(); ++i) {
        pie->addEntry(HistoryBuckets::totalSliceLabel(usedCategories.at(i), usedCategoriesTotals.at(i), globalTotal),
                      HistoryBuckets::sliceValue(usedCategoriesTotals.at(i)));
    }
    ui->scrollAreaTotalPieChartCategories->setWidget(pie);

    const QDateTime last = dbManager->GetDateOfLastEntry();
    const QDateTime first = dbManager->GetDateOfFirstEntry();
    ui->labelTotalTabGlobalTotal->setText(
        tr("<font color=#ff0202> Global Total: %1 </font>").arg(Format::number(globalTotal)));

    // Anchored at the oldest entry, under the caption "Recent Entries": that
    // is the page's long-standing choice.
    const DateTimeRange window = HistoryBuckets::totalTabWindow(first, last);
    fillEntryTable(ui->tableWidgetTotalTabEntries, readRows(EntryFilter().between(window.from, window.to)));
    totalTabShownFor = key;
}

void HistoryWidget::ShowAllEntryDetails()
{
    const QString key = tabKey(QString());
    if (isShowing(&entriesTabShownFor, key))
        return;
    fillEntryTable(ui->tableWidgetAllEntries, readRows(EntryFilter()));
    entriesTabShownFor = key;
}

void HistoryWidget::ShowPlacesDetails()
{
    // On the first visit the map page starts loading, in the web engine's
    // own processes, while the figures are read here.
    placesMap->load();
    // Like the entry tabs, read again only once something was written; the
    // map keeps where the user moved it meanwhile.
    const QString key = tabKey(QString());
    if (isShowing(&placesTabShownFor, key))
        return;
    fillPlacesTable(ui->tableWidgetPlaces, owned(dbManager->GetSpendingPerPlace()).list());
    placesMap->showPlaces(owned(dbManager->GetSpendingPerRememberedPlace()).list());
    placesTabShownFor = key;
}

void HistoryWidget::fillPlacesTable(QTableWidget *table, const QList<PlaceSpending *> &places)
{
    // Filled unsorted, then sorted once: a sorted table would move every row
    // into place as it is set.
    table->setSortingEnabled(false);
    const bool firstFill = table->columnCount() == 0;
    // The look of the other tables. Given here, not by the form: a style
    // sheet costs a page that never shows the tab a twentieth of its
    // construction.
    if (firstFill)
        table->setStyleSheet(QStringLiteral("border-style: outset;\nborder-width: 2px;\nborder-color: beige;\n"
                                            "font: 75 14pt \"MS Shell Dlg 2\";\nselection-background-color: "
                                            "rgb(58, 176, 86);\nbackground-color: rgb(254, 255, 189);"));
    table->setColumnCount(5);
    table->setRowCount(int(places.size()));
    table->setHorizontalHeaderLabels({ tr("Place"), tr("Entries"), tr("Total"), tr("Average"), tr("Last Visit") });
    // The largest total first; a later visit keeps the order the user chose.
    if (firstFill)
        table->horizontalHeader()->setSortIndicator(PlaceTotal, Qt::DescendingOrder);

    // Quiet while sorting is off, as the entry tables are filled (see
    // fillEntryTable()); sorted once it is on again.
    Q_ASSERT(!table->isSortingEnabled());
    QAbstractItemModel *model = table->model();
    {
        const QSignalBlocker quiet(model);
        for (int row = 0; row < places.size(); ++row) {
            const PlaceSpending *place = places.at(row);
            table->setItem(row, PlaceName, new PlaceCell(place->LocationText, place->LocationText));
            table->setItem(row, PlaceEntries,
                           new PlaceCell(QString::number(place->NumberOfEntries), place->NumberOfEntries));
            table->setItem(row, PlaceTotal, new PlaceCell(Format::number(place->Total), place->Total));
            table->setItem(row, PlaceAverage, new PlaceCell(Format::number(place->Average), place->Average));
            table->setItem(row, PlaceLastVisit, new PlaceCell(Format::dateTime(place->LastVisit), place->LastVisit));
        }
    }
    if (!places.isEmpty())
        emit model->dataChanged(model->index(0, 0), model->index(int(places.size()) - 1, 4));
    table->setSortingEnabled(true);

    // The place takes the room the figures leave.
    QHeaderView *header = table->horizontalHeader();
    header->setSectionResizeMode(PlaceName, QHeaderView::Stretch);
    // Measured on the rows on screen and a few more: the widest figures
    // stand at the top of the first order, and a cell cut off still tells
    // its text as a tool tip.
    header->setResizeContentsPrecision(50);
    for (int column = PlaceEntries; column <= PlaceLastVisit; ++column)
        table->resizeColumnToContents(column);
}

void HistoryWidget::showPlaceOnMap(int row)
{
    const QTableWidgetItem *place = ui->tableWidgetPlaces->item(row, PlaceName);
    if (place)
        placesMap->centreOn(place->text());
}

EntryTableRows::Rows HistoryWidget::readRows(const EntryFilter &filter, HistoryBuckets::PeriodTotals *totals) const
{
    EntryTableRows::Rows rows;
    const bool read = dbManager->visitEntryLines(filter, [&](const EntryLine &line) {
        rows.append(line);
        if (totals)
            totals->add(line.day(), line.CategoryName, line.Price);
    });
    // A list that failed part way is no list, as the store's lists are.
    if (!read) {
        rows.clear();
        if (totals)
            *totals = HistoryBuckets::PeriodTotals();
    }
    return rows;
}

void HistoryWidget::fillEntryTable(QTableWidget *table, EntryTableRows::Rows rows, ColumnFit fit)
{
    // The sections are stretched right after every fit, which sets their
    // widths anew; the fit only needs to measure what is on screen, not a
    // thousand rows of a long table. A table out of sight (a tab not shown,
    // a page not yet shown) would be measured row for row, every cell's
    // text made for it, and no width would come of it: it is not fitted.
    table->horizontalHeader()->setResizeContentsPrecision(0);
    const bool fitColumns = table->isVisible();
    if (fitColumns && fit == ColumnFit::BeforeRefill)
        table->resizeColumnsToContents();

    table->setColumnCount(6);
    table->setRowCount(rows.size());
    table->setHorizontalHeaderLabels(
        { tr("No."), tr("Item Name"), tr("Category"), tr("Price"), tr("Date"), tr("Location Text") });
    if (fitColumns && fit == ColumnFit::AfterHeaders)
        table->resizeColumnsToContents();
    keepHeadingsWhole(table);

    // Items, not a label per cell: label cells cost a widget each and do not
    // survive years of entries.
    EntryTableRows::of(table)->show(std::move(rows));
}

void HistoryWidget::on_tableWidgetAllEntries_cellClicked(int row, int column)
{
    Q_UNUSED(column)
    // The row is the entry's position in the store's newest-first list, the
    // order this table was filled in. The scroll area drops the details
    // shown before.
    auto *details = new EntryDetailsWidget(row, dbManager, this);
    ui->scrollAreaAllEntriesEntryDetails->setWidget(details);
}

void HistoryWidget::on_dateEditDateWiseStartDate_dateChanged(const QDate &date)
{
    Q_UNUSED(date)
    if (allowDatewiseDropDowns)
        ShowDateWiseDetails();
}

void HistoryWidget::on_comboBoxDateWiseTimePeriod_currentIndexChanged(int index)
{
    Q_UNUSED(index)
    // Checked even while the page is being built; only the period box
    // corrects a start after the end.
    if (ui->dateEditDateWiseStartDate->dateTime() > ui->dateEditDateWiseEndDate->dateTime()) {
        Notice::inform(tr("Start date cannot be after end date"));
        ui->dateEditDateWiseEndDate->setDateTime(ui->dateEditDateWiseStartDate->dateTime());
    }
    if (allowDatewiseDropDowns)
        ShowDateWiseDetails();
}

void HistoryWidget::on_dateEditDateWiseEndDate_dateChanged(const QDate &date)
{
    Q_UNUSED(date)
    if (allowDatewiseDropDowns)
        ShowDateWiseDetails();
}

void HistoryWidget::on_tableWidgetCategoryRecentEntries_cellClicked(int row, int column)
{
    // Deliberately nothing: the category tab opens no details.
    Q_UNUSED(row)
    Q_UNUSED(column)
}

void HistoryWidget::on_comboBoxCategory_currentIndexChanged(int index)
{
    Q_UNUSED(index)
    ShowCategoryWiseDetails();
}

void HistoryWidget::on_tabWidgetHistoryContainer_currentChanged(int index)
{
    switch (index) {
    case 0:
        ShowCategoryWiseDetails();
        break;
    case 1:
        ShowDateWiseDetails();
        break;
    case 2:
        ShowTotalDetails();
        break;
    case 3:
        ShowAllEntryDetails();
        break;
    case 4:
        ShowPlacesDetails();
        break;
    case 5:
        ShowBudgetsDetails();
        break;
    default:
        break;
    }
}

void HistoryWidget::ShowBudgetsDetails()
{
    const QDate today = QDate::currentDate();
    shownBudgets =
        dbManager ? Budgets(*dbManager).standings(today, Settings().budgetMonthStart()) : QList<BudgetStanding>();
    QTableWidget *table = ui->tableWidgetBudgets;
    ui->tableWidgetBudgetEntries->clear();
    ui->tableWidgetBudgetEntries->setRowCount(0);
    ui->tableWidgetBudgetEntries->setColumnCount(0);
    const bool empty = shownBudgets.isEmpty();
    table->setVisible(!empty);
    ui->tableWidgetBudgetEntries->setVisible(!empty);
    ui->labelBudgetsEmpty->setVisible(empty);
    ui->labelBudgetsEmpty->setText(
        empty ? tr("No budgets yet. Set a limit for a category on the \"Budgets\" tab of the options page, "
                   "or with \"ledgerly budget set CATEGORY AMOUNT\".")
              : QString());

    table->clear();
    table->setColumnCount(BudgetColumnCount);
    table->setHorizontalHeaderLabels(
        { tr("Category"), tr("Period"), tr("Budget"), tr("Spent"), tr("Left"), tr("Used"), tr("Pace") });
    table->setRowCount(int(shownBudgets.size()));
    for (int row = 0; row < shownBudgets.size(); ++row) {
        const BudgetStanding &standing = shownBudgets.at(row);
        table->setItem(row, BudgetCategory, budgetCell(standing.budget.category));
        table->setItem(row, BudgetPeriodName, budgetCell(BudgetPeriods::name(standing.budget.period)));
        table->setItem(row, BudgetAmount, budgetCell(Budgets::money(standing.budget.amount)));
        table->setItem(row, BudgetSpent, budgetCell(Budgets::money(standing.spent)));
        table->setItem(row, BudgetLeft, budgetCell(Budgets::money(standing.left())));
        QTableWidgetItem *used = budgetCell(tr("%1 %").arg(standing.usedPercent()));
        used->setData(UsedShareRole, standing.spent / standing.budget.amount);
        used->setData(UsedLevelRole, int(Budgets::level(standing.spent, standing.budget.amount)));
        table->setItem(row, BudgetUsed, used);
        const double margin = standing.paceMargin(today);
        table->setItem(row, BudgetPace,
                       budgetCell(margin >= 0 ? tr("ahead by %1").arg(Budgets::money(margin))
                                              : tr("behind by %1").arg(Budgets::money(-margin))));
    }
}

void HistoryWidget::showBudgetEntries(int row)
{
    if (row < 0 || row >= shownBudgets.size() || !dbManager)
        return;
    const BudgetStanding &standing = shownBudgets.at(row);
    const OwnedList<Entry> entries = owned(dbManager->GetAllEntriesOfCategoryBetweenDates(
        standing.budget.category, standing.span.first.startOfDay(), QDateTime(standing.span.last, QTime(23, 59, 59))));
    QTableWidget *table = ui->tableWidgetBudgetEntries;
    table->clear();
    table->setColumnCount(4);
    table->setHorizontalHeaderLabels({ tr("Date"), tr("Item"), tr("Amount"), tr("Place") });
    table->setRowCount(int(entries.size()));
    int at = 0;
    for (const Entry *entry : entries) {
        table->setItem(at, 0, budgetCell(Format::date(entry->TransactDateTime.date())));
        table->setItem(at, 1, budgetCell(entry->ItemName));
        table->setItem(at, 2, budgetCell(Budgets::money(double(entry->Price))));
        table->setItem(at, 3, budgetCell(entry->LocationText));
        ++at;
    }
}

void HistoryWidget::on_pushButtonFind_clicked()
{
    emit findRequested();
}
