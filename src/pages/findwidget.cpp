// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "findwidget.h"
#include "ui_findwidget.h"

#include "databasemanager.h"
#include "entrydetailswidget.h"
#include "entryexport.h"
#include "filechooser.h"
#include "findresultsmodel.h"
#include "notice.h"
#include "settings.h"

#include <QDir>
#include <QHeaderView>
#include <QRegularExpressionValidator>
#include <QSortFilterProxyModel>

namespace {

// An empty date field shows no date: it stands at its earliest date, which
// shows as a blank.
const QDate noDate(1900, 1, 1);

QDate dateOf(const QDateEdit *edit)
{
    return edit->date() == edit->minimumDate() ? QDate() : edit->date();
}

std::optional<double> amountOf(const QLineEdit *edit)
{
    bool ok = false;
    const double value = edit->text().toDouble(&ok);
    return ok ? std::optional<double>(value) : std::nullopt;
}

QString amountText(const std::optional<double> &amount)
{
    return amount ? QString::number(*amount, 'f', 2) : QString();
}

} // namespace

FindWidget::FindWidget(QPointer<DatabaseManager> dbManager, QWidget *parent)
    : QWidget(parent),
      ui(new Ui::FindWidget),
      dbManager(dbManager),
      results(new FindResultsModel(this)),
      sorted(new QSortFilterProxyModel(this))
{
    ui->setupUi(this);

    ui->comboBoxCategory->addItem(tr("All categories"));
    if (this->dbManager) {
        const auto categories = owned(this->dbManager->GetAllCategories());
        for (const Category *category : categories.list())
            ui->comboBoxCategory->addItem(category->CategoryName);
    }
    for (QDateEdit *edit : { ui->dateEditFrom, ui->dateEditTo }) {
        edit->setMinimumDate(noDate);
        edit->setSpecialValueText(QStringLiteral(" "));
        edit->setDate(noDate);
    }
    // Amounts as the other pages take them: digits and up to two decimals.
    const QRegularExpression amount(QStringLiteral("[0-9]{0,7}(\\.[0-9]{0,2})?"));
    for (QLineEdit *edit : { ui->lineEditMinimum, ui->lineEditMaximum })
        edit->setValidator(new QRegularExpressionValidator(amount, edit));

    sorted->setSourceModel(results);
    sorted->setSortRole(FindResultsModel::SortRole);
    ui->tableViewResults->setModel(sorted);
    // The store's order (newest first) until the user sorts by a column.
    ui->tableViewResults->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    ui->tableViewResults->horizontalHeader()->setStretchLastSection(true);
    ui->tableViewResults->verticalHeader()->hide();
    connect(ui->tableViewResults, &QAbstractItemView::activated, this, &FindWidget::showEntry);
    connect(ui->tableViewResults->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, [this](int section) {
        if (section >= 0)
            results->fetchAll();
    });

    searchTimer.setSingleShot(true);
    searchTimer.setInterval(40);
    connect(&searchTimer, &QTimer::timeout, this, &FindWidget::search);

    showFilter(Settings().findFilter());
    for (QLineEdit *edit : { ui->lineEditText, ui->lineEditPlace, ui->lineEditMinimum, ui->lineEditMaximum })
        connect(edit, &QLineEdit::textChanged, this, &FindWidget::searchSoon);
    for (QDateEdit *edit : { ui->dateEditFrom, ui->dateEditTo })
        connect(edit, &QDateEdit::dateChanged, this, &FindWidget::searchSoon);
    connect(ui->comboBoxCategory, &QComboBox::currentIndexChanged, this, &FindWidget::searchSoon);
    search();
}

FindWidget::~FindWidget()
{
    delete ui;
}

SearchFilter FindWidget::filter() const
{
    SearchFilter filter;
    filter.text = ui->lineEditText->text();
    if (ui->comboBoxCategory->currentIndex() > 0)
        filter.category = ui->comboBoxCategory->currentText();
    filter.place = ui->lineEditPlace->text();
    filter.from = dateOf(ui->dateEditFrom);
    filter.to = dateOf(ui->dateEditTo);
    filter.minimum = amountOf(ui->lineEditMinimum);
    filter.maximum = amountOf(ui->lineEditMaximum);
    return filter;
}

void FindWidget::showFilter(const SearchFilter &filter)
{
    ui->lineEditText->setText(filter.text);
    // A category that is no longer there is added, so that the filter comes
    // back as it was: it then finds nothing, as it would have.
    int category = 0;
    if (filter.category) {
        category = ui->comboBoxCategory->findText(*filter.category, Qt::MatchFixedString | Qt::MatchCaseSensitive);
        if (category < 0) {
            ui->comboBoxCategory->addItem(*filter.category);
            category = ui->comboBoxCategory->count() - 1;
        }
    }
    ui->comboBoxCategory->setCurrentIndex(category);
    ui->lineEditPlace->setText(filter.place);
    ui->dateEditFrom->setDate(filter.from.isValid() ? filter.from : noDate);
    ui->dateEditTo->setDate(filter.to.isValid() ? filter.to : noDate);
    ui->lineEditMinimum->setText(amountText(filter.minimum));
    ui->lineEditMaximum->setText(amountText(filter.maximum));
}

void FindWidget::searchSoon()
{
    searchTimer.start();
}

void FindWidget::search()
{
    searchTimer.stop();
    if (!dbManager)
        return;
    const SearchFilter current = filter();
    // The number and total first, then the entries a page at a time as the
    // table shows them: the first page at once, the rest as it scrolls.
    const EntrySearch::Totals totals = EntrySearch(*dbManager).totals(current);
    ui->labelSummary->setText(EntrySearch::summary(totals));
    searched = current;
    results->setResults(totals.count, [store = dbManager, current](int offset, int limit) {
        return store ? EntrySearch(*store).page(current, offset, limit) : owned(QList<Entry *>());
    });
    // Sorted by a column, the table needs every entry to put the right ones
    // first.
    if (ui->tableViewResults->horizontalHeader()->sortIndicatorSection() >= 0)
        results->fetchAll();
    Settings().setFindFilter(current);
}

void FindWidget::showEntry(const QModelIndex &index)
{
    if (!dbManager || !index.isValid())
        return;
    // The details view takes a position in the store's list of all entries,
    // which other writers may have changed since the search: the entry is
    // looked up there by its SNo.
    const int sno = index.data(FindResultsModel::SNoRole).toInt();
    const auto all = owned(dbManager->GetAllEntries());
    const auto found = std::find_if(all.list().cbegin(), all.list().cend(),
                                    [sno](const Entry *entry) { return entry->SNo == sno; });
    if (found == all.list().cend()) {
        Notice::warn(tr("This entry is no longer stored."));
        return;
    }
    auto *details = new EntryDetailsWidget(int(found - all.list().cbegin()), dbManager, this);
    ui->scrollAreaEntryDetails->setWidget(details);
}

void FindWidget::on_pushButtonClear_clicked()
{
    showFilter(SearchFilter());
    search();
}

void FindWidget::on_pushButtonExport_clicked()
{
    const QString fileName =
        FileChooser::choose(QFileDialog::AcceptSave, tr("Export Results"),
                            { tr("CSV files (*.csv)"), tr("QIF files (*.qif)") },
                            QDir::home().filePath(QStringLiteral("ledgerly-results.csv")));
    if (fileName.isEmpty())
        return;
    // Every entry the search finds, also those the table has not read yet.
    if (!dbManager)
        return;
    const EntrySearch::Result found = EntrySearch(*dbManager).find(searched);
    const EntryExport::Outcome outcome = EntryExport::write(found.entries.list(), fileName);
    if (!outcome.written) {
        Notice::warn(tr("Nothing was exported: %1.").arg(outcome.failure));
        return;
    }
    Notice::inform(EntryExport::summary(fileName, outcome.exported) + QLatin1Char('.'));
}
