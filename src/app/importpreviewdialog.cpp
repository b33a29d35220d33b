// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "importpreviewdialog.h"

#include "databasemanager.h"
#include "entryimport.h"
#include "format.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const QList<QifFormat::DateOrder> orders = { QifFormat::DateOrder::MonthFirst, QifFormat::DateOrder::DayFirst,
                                             QifFormat::DateOrder::YearFirst };

} // namespace

ImportPreviewDialog::ImportPreviewDialog(DatabaseManager &store, const QString &fileName,
                                         const EntryFileContents &contents, const std::optional<CsvMapping> &mapping)
    : QDialog(nullptr), store(store), fileName(fileName), mapping(mapping), read(contents)
{
    setObjectName(QStringLiteral("ImportPreviewDialog"));
    setWindowTitle(tr("Import Preview"));
    setWindowModality(Qt::ApplicationModal);
    buildWidgets();
    showChoices();
    recogniseAgain();
}

void ImportPreviewDialog::buildWidgets()
{
    auto *layout = new QVBoxLayout(this);
    labelFile = new QLabel(tr("Importing from %1").arg(fileName), this);
    labelFile->setObjectName(QStringLiteral("labelFile"));
    labelFile->setWordWrap(true);
    layout->addWidget(labelFile);

    labelAdded = new QLabel(this);
    labelAdded->setObjectName(QStringLiteral("labelAdded"));
    layout->addWidget(labelAdded);
    labelSkipped = new QLabel(this);
    labelSkipped->setObjectName(QStringLiteral("labelSkipped"));
    labelSkipped->setWordWrap(true);
    layout->addWidget(labelSkipped);
    labelCategorised = new QLabel(this);
    labelCategorised->setObjectName(QStringLiteral("labelCategorised"));
    labelCategorised->setWordWrap(true);
    layout->addWidget(labelCategorised);
    labelProblems = new QLabel(this);
    labelProblems->setObjectName(QStringLiteral("labelProblems"));
    labelProblems->setWordWrap(true);
    labelProblems->setTextFormat(Qt::PlainText);
    layout->addWidget(labelProblems);

    auto *choices = new QFormLayout;
    comboBoxEncoding = new QComboBox(this);
    comboBoxEncoding->setObjectName(QStringLiteral("comboBoxEncoding"));
    comboBoxEncoding->addItems(TextEncoding::names());
    choices->addRow(tr("Encoding:"), comboBoxEncoding);
    comboBoxDateOrder = new QComboBox(this);
    comboBoxDateOrder->setObjectName(QStringLiteral("comboBoxDateOrder"));
    comboBoxDateOrder->addItems({ tr("Month first (mdy)"), tr("Day first (dmy)"), tr("Year first (ymd)") });
    choices->addRow(tr("Date order:"), comboBoxDateOrder);
    layout->addLayout(choices);

    labelOpenDate = new QLabel(this);
    labelOpenDate->setObjectName(QStringLiteral("labelOpenDate"));
    labelOpenDate->setWordWrap(true);
    layout->addWidget(labelOpenDate);

    checkBoxAllowDuplicates = new QCheckBox(tr("Allow duplicates"), this);
    checkBoxAllowDuplicates->setObjectName(QStringLiteral("checkBoxAllowDuplicates"));
    checkBoxAllowDuplicates->setToolTip(tr("Imports the records that an earlier import already brought in"));
    layout->addWidget(checkBoxAllowDuplicates);

    labelShown = new QLabel(this);
    labelShown->setObjectName(QStringLiteral("labelShown"));
    layout->addWidget(labelShown);
    tableWidgetEntries = new QTableWidget(0, 5, this);
    tableWidgetEntries->setObjectName(QStringLiteral("tableWidgetEntries"));
    tableWidgetEntries->setHorizontalHeaderLabels(
        { tr("Date"), tr("Item"), tr("Category"), tr("Amount"), tr("Place") });
    tableWidgetEntries->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tableWidgetEntries->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableWidgetEntries->verticalHeader()->hide();
    tableWidgetEntries->horizontalHeader()->setStretchLastSection(true);
    tableWidgetEntries->setMinimumSize(640, 300);
    layout->addWidget(tableWidgetEntries);

    buttonBox = new QDialogButtonBox(this);
    buttonBox->setObjectName(QStringLiteral("buttonBox"));
    pushButtonImport = buttonBox->addButton(tr("Import"), QDialogButtonBox::AcceptRole);
    pushButtonImport->setObjectName(QStringLiteral("pushButtonImport"));
    pushButtonImport->setDefault(true);
    QPushButton *cancel = buttonBox->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("pushButtonCancel"));
    layout->addWidget(buttonBox);

    connect(buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(comboBoxEncoding, &QComboBox::activated, this, [this](int index) {
        TextEncoding::Kind kind;
        if (TextEncoding::fromName(comboBoxEncoding->itemText(index), &kind)) {
            chosenEncoding = kind;
            readAgain();
        }
    });
    connect(comboBoxDateOrder, &QComboBox::activated, this, [this](int index) {
        chosenOrder = orders.value(index);
        readAgain();
    });
    connect(checkBoxAllowDuplicates, &QCheckBox::toggled, this, &ImportPreviewDialog::recogniseAgain);

    // A file that leaves the order open is read month first (dotted dates
    // day first) until the user says otherwise here.
    if (!read.openDate.isEmpty())
        labelOpenDate->setText(tr("The dates can be read two ways: %1 (line %2) is %3 with the month first, or %4 "
                                  "with the day first. Choose the date order that this file is written in.")
                                   .arg(read.openDate, QString::number(read.openDateLine),
                                        Format::date(read.openDateMonthFirst), Format::date(read.openDateDayFirst)));
    labelOpenDate->setVisible(!read.openDate.isEmpty());
}

void ImportPreviewDialog::showChoices()
{
    // CSV is always UTF-8 and its dates ISO; OFX dates have one order.
    comboBoxEncoding->setEnabled(!read.encoding.isEmpty());
    if (!read.encoding.isEmpty())
        comboBoxEncoding->setCurrentIndex(TextEncoding::names().indexOf(read.encoding));
    comboBoxDateOrder->setEnabled(!read.dateOrder.isEmpty());
    for (qsizetype i = 0; i < orders.size(); ++i) {
        if (QifFormat::orderName(orders.at(i)) == read.dateOrder)
            comboBoxDateOrder->setCurrentIndex(int(i));
    }
    if (read.dateOrder.isEmpty())
        comboBoxDateOrder->setCurrentIndex(-1);
}

void ImportPreviewDialog::readAgain()
{
    const QString encodingShown = comboBoxEncoding->currentText();
    const int orderShown = comboBoxDateOrder->currentIndex();
    read = EntryImport::read(fileName, chosenOrder, chosenEncoding, mapping);
    // What the user picked stays picked, also when the file now fails to read.
    if (read.encoding.isEmpty() && chosenEncoding)
        read.encoding = encodingShown;
    if (read.dateOrder.isEmpty() && orderShown >= 0 && chosenOrder)
        read.dateOrder = QifFormat::orderName(*chosenOrder);
    showChoices();
    recogniseAgain();
}

void ImportPreviewDialog::recogniseAgain()
{
    recognised = read;
    if (recognised.isAcceptable()) {
        EntryImport::recognise(store, recognised, checkBoxAllowDuplicates->isChecked());
        // The preview shows the categories the rules give, as they will be
        // stored.
        EntryImport::categorise(store, recognised);
    }
    showContents();
}

void ImportPreviewDialog::showContents()
{
    const bool acceptable = recognised.isAcceptable();
    const int added = acceptable ? int(recognised.entries.size()) : 0;
    labelAdded->setText(added == 1 ? tr("Adds 1 entry.") : tr("Adds %1 entries.").arg(added));
    const QStringList reasons = recognised.skippedReasons();
    labelSkipped->setText(
        reasons.isEmpty()
            ? tr("Skips nothing.")
            : tr("Skips %1: %2.").arg(QString::number(recognised.skipped()), reasons.join(QStringLiteral(", "))));
    labelProblems->setText(
        acceptable
            ? QString()
            : tr("The file cannot be read this way:\n%1").arg(recognised.problemLines().join(QLatin1Char('\n'))));
    labelProblems->setVisible(!acceptable);
    labelSkipped->setVisible(acceptable);
    const int categorised = acceptable ? recognised.categorisedByRules : 0;
    labelCategorised->setText(categorised == 1 ? tr("The rules give 1 of them its category.")
                                               : tr("The rules give %1 of them their category.").arg(categorised));
    labelCategorised->setVisible(categorised > 0);
    pushButtonImport->setEnabled(acceptable);

    const int rows = qMin(added, shownEntries);
    labelShown->setText(added > shownEntries ? tr("The first %1 entries:").arg(shownEntries) : tr("The entries:"));
    tableWidgetEntries->clearContents();
    tableWidgetEntries->setRowCount(rows);
    for (int row = 0; row < rows; ++row) {
        const Entry &entry = recognised.entries.at(row).entry;
        const QStringList cells = { Format::date(entry.TransactDateTime.date()), entry.ItemName, entry.CategoryName,
                                    Format::number(double(entry.Price)), entry.LocationText };
        for (int column = 0; column < cells.size(); ++column) {
            auto *item = new QTableWidgetItem(cells.at(column));
            if (column == 3)
                item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            tableWidgetEntries->setItem(row, column, item);
        }
    }
    tableWidgetEntries->resizeColumnsToContents();
}
