// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "importsdialog.h"

#include "databasemanager.h"
#include "format.h"
#include "importlog.h"
#include "notice.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

QString entriesText(int count)
{
    return count == 1 ? QCoreApplication::translate("ImportsDialog", "1 entry")
                      : QCoreApplication::translate("ImportsDialog", "%1 entries").arg(count);
}

} // namespace

ImportsDialog::ImportsDialog(DatabaseManager &store) : QDialog(nullptr), store(store)
{
    setObjectName(QStringLiteral("ImportsDialog"));
    setWindowTitle(tr("Imports"));
    setWindowModality(Qt::ApplicationModal);

    auto *layout = new QVBoxLayout(this);
    auto *label = new QLabel(tr("Removing an import removes the entries it added."), this);
    label->setObjectName(QStringLiteral("labelImports"));
    layout->addWidget(label);
    tableWidgetImports = new QTableWidget(0, 3, this);
    tableWidgetImports->setObjectName(QStringLiteral("tableWidgetImports"));
    tableWidgetImports->setHorizontalHeaderLabels({ tr("When"), tr("File"), tr("Entries") });
    tableWidgetImports->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tableWidgetImports->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableWidgetImports->setSelectionMode(QAbstractItemView::SingleSelection);
    tableWidgetImports->verticalHeader()->hide();
    tableWidgetImports->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    tableWidgetImports->setMinimumSize(640, 240);
    layout->addWidget(tableWidgetImports);

    auto *buttonBox = new QDialogButtonBox(this);
    buttonBox->setObjectName(QStringLiteral("buttonBox"));
    pushButtonRemove = buttonBox->addButton(tr("Remove"), QDialogButtonBox::ActionRole);
    pushButtonRemove->setObjectName(QStringLiteral("pushButtonRemove"));
    QPushButton *close = buttonBox->addButton(QDialogButtonBox::Close);
    close->setObjectName(QStringLiteral("pushButtonClose"));
    layout->addWidget(buttonBox);

    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pushButtonRemove, &QPushButton::clicked, this, &ImportsDialog::removeSelected);
    connect(tableWidgetImports, &QTableWidget::itemSelectionChanged, this,
            [this] { pushButtonRemove->setEnabled(!tableWidgetImports->selectedItems().isEmpty()); });
    showImports();
}

void ImportsDialog::showImports()
{
    const QList<ImportLog::Import> imports = ImportLog(store).imports();
    tableWidgetImports->clearContents();
    tableWidgetImports->setRowCount(int(imports.size()));
    for (int row = 0; row < imports.size(); ++row) {
        const ImportLog::Import &import = imports.at(row);
        const QStringList cells = { Format::dateTime(import.importedAt), import.fileName, entriesText(import.entries) };
        for (int column = 0; column < cells.size(); ++column) {
            auto *item = new QTableWidgetItem(cells.at(column));
            item->setData(Qt::UserRole, import.id);
            tableWidgetImports->setItem(row, column, item);
        }
    }
    tableWidgetImports->resizeColumnToContents(0);
    tableWidgetImports->resizeColumnToContents(2);
    if (!imports.isEmpty())
        tableWidgetImports->selectRow(0);
    pushButtonRemove->setEnabled(!imports.isEmpty());
}

void ImportsDialog::removeSelected()
{
    const QList<QTableWidgetItem *> selected = tableWidgetImports->selectedItems();
    if (selected.isEmpty())
        return;
    const int row = selected.constFirst()->row();
    const int id = tableWidgetImports->item(row, 0)->data(Qt::UserRole).toInt();
    if (!Notice::confirmDestructive(tr("Remove the %1 that the import of %2 on %3 added?")
                                        .arg(tableWidgetImports->item(row, 2)->text(),
                                             tableWidgetImports->item(row, 1)->text(),
                                             tableWidgetImports->item(row, 0)->text()),
                                    tr("Remove")))
        return;
    QString failure;
    const std::optional<int> count = ImportLog(store).undo(id, &failure);
    if (!count) {
        Notice::warn(
            tr("Nothing was removed: %1.").arg(failure.isEmpty() ? tr("the import is no longer recorded") : failure));
    } else {
        removed = true;
    }
    showImports();
}
