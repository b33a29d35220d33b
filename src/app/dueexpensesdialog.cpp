// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "dueexpensesdialog.h"

#include "budgets.h"
#include "databasemanager.h"
#include "notice.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QTableWidget>
#include <QVBoxLayout>

#include <optional>

namespace {

enum Column { TickColumn, DateColumn, ItemColumn, CategoryColumn, AmountColumn };

} // namespace

DueExpensesDialog::DueExpensesDialog(DatabaseManager &store, const QList<Occurrence> &due)
    : QDialog(nullptr), store(store), occurrences(due)
{
    setObjectName(QStringLiteral("DueExpensesDialog"));
    setWindowTitle(tr("Due Expenses"));
    setWindowModality(Qt::ApplicationModal);

    auto *layout = new QVBoxLayout(this);
    auto *label =
        new QLabel(tr("These recurring expenses are due. Correct an amount where the bill says another."), this);
    label->setObjectName(QStringLiteral("labelDueExpenses"));
    layout->addWidget(label);
    tableWidgetDueExpenses = new QTableWidget(0, 5, this);
    tableWidgetDueExpenses->setObjectName(QStringLiteral("tableWidgetDueExpenses"));
    tableWidgetDueExpenses->setHorizontalHeaderLabels(
        { tr("Post"), tr("Date"), tr("Item"), tr("Category"), tr("Amount") });
    tableWidgetDueExpenses->setAccessibleName(tr("Due Expenses"));
    tableWidgetDueExpenses->verticalHeader()->hide();
    tableWidgetDueExpenses->horizontalHeader()->setSectionResizeMode(ItemColumn, QHeaderView::Stretch);
    tableWidgetDueExpenses->setMinimumSize(640, 240);
    layout->addWidget(tableWidgetDueExpenses);

    auto *buttonBox = new QDialogButtonBox(this);
    buttonBox->setObjectName(QStringLiteral("buttonBox"));
    QPushButton *post = buttonBox->addButton(tr("Post Ticked"), QDialogButtonBox::ActionRole);
    post->setObjectName(QStringLiteral("pushButtonPostTicked"));
    QPushButton *skip = buttonBox->addButton(tr("Skip Ticked"), QDialogButtonBox::ActionRole);
    skip->setObjectName(QStringLiteral("pushButtonSkipTicked"));
    QPushButton *later = buttonBox->addButton(tr("Later"), QDialogButtonBox::RejectRole);
    later->setObjectName(QStringLiteral("pushButtonLater"));
    layout->addWidget(buttonBox);

    connect(post, &QPushButton::clicked, this, [this] { handleTicked(Step::Post); });
    connect(skip, &QPushButton::clicked, this, [this] { handleTicked(Step::Skip); });
    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    showOccurrences();
}

void DueExpensesDialog::showOccurrences()
{
    tableWidgetDueExpenses->setRowCount(int(occurrences.size()));
    for (int row = 0; row < occurrences.size(); ++row) {
        const Occurrence &occurrence = occurrences.at(row);
        auto *tick = new QTableWidgetItem();
        tick->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        tick->setCheckState(Qt::Checked);
        tableWidgetDueExpenses->setItem(row, TickColumn, tick);
        const QList<QPair<int, QString>> fixed = { { DateColumn, occurrence.date.toString(Qt::TextDate) },
                                                   { ItemColumn, occurrence.item },
                                                   { CategoryColumn, occurrence.category } };
        for (const auto &[column, text] : fixed) {
            auto *item = new QTableWidgetItem(text);
            item->setFlags(item->flags() & ~Qt::ItemIsEditable);
            tableWidgetDueExpenses->setItem(row, column, item);
        }
        tableWidgetDueExpenses->setItem(row, AmountColumn, new QTableWidgetItem(Budgets::money(occurrence.amount)));
    }
    tableWidgetDueExpenses->resizeColumnToContents(TickColumn);
    tableWidgetDueExpenses->resizeColumnToContents(DateColumn);
}

void DueExpensesDialog::handleTicked(Step step)
{
    // Every ticked amount is checked before anything is written.
    QList<std::optional<double>> amounts;
    for (int row = 0; row < occurrences.size(); ++row) {
        if (tableWidgetDueExpenses->item(row, TickColumn)->checkState() != Qt::Checked) {
            amounts.append(std::nullopt);
            continue;
        }
        const QString text = tableWidgetDueExpenses->item(row, AmountColumn)->text().trimmed();
        bool isNumber = false;
        const double amount = text.toDouble(&isNumber);
        if (step == Step::Post && (!isNumber || !Budgets::isAcceptableAmount(amount))) {
            Notice::warn(tr("The amount of %1 on %2 must be above 0 and at most 9999999.99, not \"%3\". "
                            "Nothing was posted.")
                             .arg(occurrences.at(row).item, occurrences.at(row).date.toString(Qt::TextDate), text));
            return;
        }
        amounts.append(amount);
    }

    // An expense moves on one occurrence at a time: a ticked occurrence
    // after an unticked one of the same expense waits for that one.
    RecurringExpenses recurring(store);
    QSet<int> waiting;
    QList<int> leftRows;
    QString failure;
    for (int row = 0; row < occurrences.size(); ++row) {
        const Occurrence &occurrence = occurrences.at(row);
        if (!failure.isEmpty() || !amounts.at(row) || waiting.contains(occurrence.expenseId)) {
            waiting.insert(occurrence.expenseId);
            leftRows.append(row);
            continue;
        }
        QString reason;
        const bool done = step == Step::Post ? recurring.post(occurrence, *amounts.at(row), &reason)
                                             : recurring.skip(occurrence, &reason);
        if (done && step == Step::Post)
            ++posted;
        // One that another program has taken care of meanwhile (no reason
        // given) is gone from the list as well.
        if (!done && !reason.isEmpty()) {
            failure = reason;
            waiting.insert(occurrence.expenseId);
            leftRows.append(row);
        }
    }
    // The rows left keep what was typed and ticked in them.
    QList<Occurrence> left;
    QList<QPair<Qt::CheckState, QString>> kept;
    for (const int row : std::as_const(leftRows)) {
        left.append(occurrences.at(row));
        kept.append({ tableWidgetDueExpenses->item(row, TickColumn)->checkState(),
                      tableWidgetDueExpenses->item(row, AmountColumn)->text() });
    }
    occurrences = left;
    showOccurrences();
    for (int row = 0; row < kept.size(); ++row) {
        tableWidgetDueExpenses->item(row, TickColumn)->setCheckState(kept.at(row).first);
        tableWidgetDueExpenses->item(row, AmountColumn)->setText(kept.at(row).second);
    }
    if (!failure.isEmpty())
        Notice::warn(tr("Not every expense could be handled: %1").arg(failure));
    else if (occurrences.isEmpty())
        accept();
}
