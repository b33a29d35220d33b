// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "recurringexpenses.h"

#include <QHash>
#include <QList>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <optional>

class DatabaseManager;
class QPushButton;
class QLabel;
class QSpinBox;
class QSqlTableModel;
class QTableWidget;

namespace Ui {
class OptionsWidget;
}

// The options page: adds and renames categories, switches the spending mode
// of this page, and edits the stored entries in a table saved or reverted as
// a batch; rows marked for deletion (Delete key, "Delete Entry") are hidden
// until Save removes them or Cancel brings them back. Its tabs of its own
// edit the budgets and the rules that categorise entries. The store is
// borrowed, never owned.
class OptionsWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(OptionsWidget)

public:
    explicit OptionsWidget(QPointer<DatabaseManager> dbManager, QWidget *parent = nullptr);
    ~OptionsWidget() override;

    // Whether the entries table holds edits or deletions not yet saved.
    bool hasUnsavedEntryChanges() const;
    // Lists the recurring expenses and what comes in the next 30 days again
    // (after something was posted).
    void ShowRecurringDetails();

signals:
    // "Post Due Now": the window posts what is due, as it does at its start.
    void postDueRequested();

private slots:
    void on_pushButtonChangeMode_clicked();
    void on_tabWidgetOptionsContainer_currentChanged(int index);
    void on_pushButtonEditCategory_clicked();
    void on_pushButtonAddNewCategory_clicked();

private:
    void AddEmptyCategoriesToComboBox();
    void ShowSwitchModeDetails();
    void ShowEditEntriesDetails();
    void saveEntryEdits();
    void cancelEntryEdits();
    void markSelectedEntriesForDeletion();
    QList<QSqlTableModel *> entryModels() const;
    void hideMarkedRows();
    // The "Budgets" tab: every category with its budget, and the month
    // start, edited in place and saved or dropped as a batch.
    void setUpBudgetsTab();
    void ShowBudgetsDetails();
    void saveBudgetEdits();
    // The "Rules" tab: the rules in the order they are tried, each change
    // stored as it is made.
    void setUpRulesTab();
    void ShowRulesDetails();
    void addRule();
    void editRule();
    void removeRule();
    void moveRule(int by);
    void applyRules();
    // The selected rule's position (from 1), 0 without a selection.
    int selectedRule() const;
    void selectRule(int position);
    void enableRuleButtons();
    QStringList categoryNames();
    // The "Recurring" tab: every recurring expense with Add, Edit, Remove
    // and "Post Due Now", and below it the next 30 days' occurrences.
    void setUpRecurringTab();
    void addRecurringExpense();
    void editRecurringExpense();
    void removeRecurringExpense();
    // Adds (an expense without an id) or changes an expense through the
    // dialog.
    void storeFromDialog(const RecurringExpense &expense);
    // The expense of the selected row, as stored.
    std::optional<RecurringExpense> selectedRecurringExpense() const;

    Ui::OptionsWidget *ui;
    QPointer<DatabaseManager> dbManager;
    QString currentMode;
    // The entries each table model has marked for deletion, by SNo.
    QHash<QSqlTableModel *, QSet<int>> markedEntries;
    // The entry table's one model, made on the first visit of its tab.
    QSqlTableModel *entryModel = nullptr;
    QTableWidget *tableWidgetBudgetsEdit;
    QSpinBox *spinBoxMonthStart;
    // The categories that had a budget when the tab was last filled.
    QStringList budgetedCategories;
    QTableWidget *tableWidgetRules;
    // The buttons that work on the selected rule.
    QPushButton *pushButtonEditRule;
    QPushButton *pushButtonRemoveRule;
    QPushButton *pushButtonRuleUp;
    QPushButton *pushButtonRuleDown;
    QTableWidget *tableWidgetRecurring;
    QTableWidget *tableWidgetRecurringPreview;
    QLabel *labelRecurringPreviewTotal;
};
