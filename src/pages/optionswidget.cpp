// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "optionswidget.h"
#include "ui_optionswidget.h"

#include "budgets.h"
#include "databasemanager.h"
#include "entryeditdelegates.h"
#include "look.h"
#include "notice.h"
#include "ruledialog.h"
#include "rules.h"
#include "recurringexpensedialog.h"
#include "recurringexpenses.h"
#include "settings.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSqlError>
#include <QSqlTableModel>

#include <algorithm>
#include <tuple>

namespace {

enum EntryColumn {
    SNoColumn = 0,
    CategoryNameColumn = 2,
    CategoryIDColumn = 3,
    TransactDateTimeColumn = 4,
    PriceColumn = 5,
    EnableGeoLocColumn = 7,
    GeoLocIDColumn = 8,
    GeoLocLongitColumn = 9,
    GeoLocLatitColumn = 10,
    ItemIDColumn = 11,
};

int entrySNo(const QSqlTableModel *model, int row)
{
    return model->index(row, SNoColumn).data().toInt();
}

// What one table model holds unsaved, by SNo: its edited cells and the
// entries marked for deletion. A model marks each row as written as it
// writes it, and a rollback does not undo that mark: without these, a Save
// that failed half-way would leave the model believing part of it stored.
struct PendingEdits
{
    QSqlTableModel *model = nullptr;
    QList<std::tuple<int, int, QVariant>> cells;
    QSet<int> deleted;

    PendingEdits(QSqlTableModel *model, const QSet<int> &deleted) : model(model), deleted(deleted)
    {
        if (!model->isDirty())
            return;
        for (int row = 0; row < model->rowCount(); ++row) {
            const int sno = entrySNo(model, row);
            if (deleted.contains(sno))
                continue;
            for (int column = 0; column < model->columnCount(); ++column) {
                const QModelIndex index = model->index(row, column);
                if (model->isDirty(index))
                    cells.append({ sno, column, index.data(Qt::EditRole) });
            }
        }
    }

    // Reads the stored rows again and makes the same edits and marks.
    void restore() const
    {
        model->select();
        while (model->canFetchMore())
            model->fetchMore();
        QHash<int, int> rowOf;
        for (int row = 0; row < model->rowCount(); ++row)
            rowOf.insert(entrySNo(model, row), row);
        for (const auto &[sno, column, value] : cells) {
            if (rowOf.contains(sno))
                model->setData(model->index(rowOf.value(sno), column), value);
        }
        for (const int sno : deleted) {
            if (rowOf.contains(sno))
                model->removeRow(rowOf.value(sno));
        }
    }
};

} // namespace

OptionsWidget::OptionsWidget(QPointer<DatabaseManager> dbManager, QWidget *parent)
    : QWidget(parent), ui(new Ui::OptionsWidget), dbManager(dbManager), currentMode(QStringLiteral("Default"))
{
    // The form ends on the entries tab and connects its slots only then, so
    // building it runs no tab handler.
    ui->setupUi(this);
    Look::applyButtonFontWeight(ui->pushButtonAddNewCategory);
    ui->tableViewEditEntries->setItemDelegateForColumn(TransactDateTimeColumn,
                                                       new EntryDateTimeDelegate(ui->tableViewEditEntries));
    ui->tableViewEditEntries->setItemDelegateForColumn(PriceColumn, new EntryPriceDelegate(ui->tableViewEditEntries));
    connect(ui->pushButtonSaveChanges, &QPushButton::clicked, this, &OptionsWidget::saveEntryEdits);
    connect(ui->pushButtonCancelChanges, &QPushButton::clicked, this, &OptionsWidget::cancelEntryEdits);

    // The Delete key (while the table, not a cell's editor, has the focus)
    // and the table's context menu mark the selected rows for deletion.
    auto *deleteEntry = new QAction(tr("Delete Entry"), ui->tableViewEditEntries);
    deleteEntry->setObjectName(QStringLiteral("actionDeleteEntry"));
    deleteEntry->setShortcut(QKeySequence::Delete);
    deleteEntry->setShortcutContext(Qt::WidgetShortcut);
    connect(deleteEntry, &QAction::triggered, this, &OptionsWidget::markSelectedEntriesForDeletion);
    ui->tableViewEditEntries->addAction(deleteEntry);
    ui->tableViewEditEntries->setContextMenuPolicy(Qt::ActionsContextMenu);

    // Switching to the first tab fills the old-name list through the slot;
    // the direct call fills it once more, so a new page lists every category
    // without entries twice, as it always has.
    setUpBudgetsTab();
    setUpRulesTab();
    setUpRecurringTab();
    ui->tabWidgetOptionsContainer->setCurrentIndex(0);
    AddEmptyCategoriesToComboBox();
    ShowSwitchModeDetails();
}

OptionsWidget::~OptionsWidget()
{
    delete ui;
}

void OptionsWidget::on_tabWidgetOptionsContainer_currentChanged(int index)
{
    // Every visit refreshes the tab.
    switch (index) {
    case 0:
        AddEmptyCategoriesToComboBox();
        break;
    case 1:
        ShowSwitchModeDetails();
        break;
    case 2:
        ShowEditEntriesDetails();
        break;
    case 3:
        ShowBudgetsDetails();
        break;
    case 4:
        ShowRulesDetails();
        break;
    case 5:
        ShowRecurringDetails();
        break;
    default:
        break;
    }
}

void OptionsWidget::AddEmptyCategoriesToComboBox()
{
    // Only categories that no entry uses may be renamed: entries keep their
    // category by name and would lose it. The box is not cleared first.
    if (!dbManager)
        return;
    const QList<QString> usedNames = dbManager->GetListOfAllDistinctCategoriesOfAllEntries();
    for (const Category *category : owned(dbManager->GetAllCategories())) {
        if (!usedNames.contains(category->CategoryName))
            ui->comboBoxCategoryName->addItem(category->CategoryName);
    }
}

void OptionsWidget::on_pushButtonAddNewCategory_clicked()
{
    const QString name = ui->lineEditNewCategoryName->text();
    if (name.isEmpty()) {
        Notice::inform(tr("New Category Name cannot be empty"));
        return;
    }
    if (!Notice::confirm(tr("Category Name Entered - %1 ").arg(name)))
        return;

    if (dbManager && dbManager->AddCategory(name)) {
        Notice::inform(tr("Category added to the database successfully"));
        ui->lineEditNewCategoryName->clear();
    } else {
        Notice::inform(tr("Category could not be added to the database!"));
    }
}

void OptionsWidget::on_pushButtonEditCategory_clicked()
{
    const QString newName = ui->lineEditCategoryNameToEdit->text();
    if (newName.isEmpty()) {
        Notice::inform(tr("New Category Name cannot be empty"));
        return;
    }
    if (!Notice::confirm(tr("Category Name Entered - %1 ").arg(newName)))
        return;

    const QString oldName = ui->comboBoxCategoryName->currentText();
    if (dbManager && dbManager->EditCategory(oldName, newName)) {
        Notice::inform(tr("Category name %1 edited to %2 ").arg(oldName, newName));
        ui->lineEditCategoryNameToEdit->clear();
        ui->comboBoxCategoryName->clear();
        AddEmptyCategoriesToComboBox();
    } else {
        Notice::inform(tr("Category name could not be edited!"));
    }
}

void OptionsWidget::ShowSwitchModeDetails()
{
    ui->labelCurrentModeActual->setText(
        QStringLiteral("<font color=#ff0000> %1 </font>").arg(currentMode.toHtmlEscaped()));
    ui->comboBoxNewModeNames->clear();
    if (!dbManager)
        return;
    for (const Mode *mode : owned(dbManager->GetAllModes())) {
        if (mode->ModeName != currentMode)
            ui->comboBoxNewModeNames->addItem(mode->ModeName);
    }
}

void OptionsWidget::on_pushButtonChangeMode_clicked()
{
    // The mode belongs to this page alone: nothing is written, and the next
    // options page starts from Default again.
    const QString newMode = ui->comboBoxNewModeNames->currentText();
    if (!Notice::confirm(tr("You are switching from %1 to %2 ").arg(currentMode, newMode)))
        return;

    const QString oldMode = currentMode;
    currentMode = newMode;
    Notice::inform(tr("Mode switched from %1 to %2 ").arg(oldMode, newMode));
    ui->comboBoxNewModeNames->clear();
    ShowSwitchModeDetails();
}

void OptionsWidget::ShowEditEntriesDetails()
{
    // One model for the page: a later visit shows the same model again, so
    // that two models never hold conflicting edits of the same row. A model
    // without edits or marks reads the table afresh (another page may have
    // written meanwhile); one with them keeps them until Save or Cancel.
    if (!dbManager)
        return;
    if (entryModel) {
        if (!entryModel->isDirty() && markedEntries.isEmpty())
            entryModel->select();
        hideMarkedRows();
        return;
    }
    entryModel = dbManager->createTableModel(QStringLiteral("Entry"), this);
    if (!entryModel)
        return;
    ui->tableViewEditEntries->setModel(entryModel);

    for (int column : { SNoColumn, CategoryNameColumn, CategoryIDColumn, EnableGeoLocColumn, GeoLocIDColumn,
                        GeoLocLongitColumn, GeoLocLatitColumn, ItemIDColumn })
        ui->tableViewEditEntries->hideColumn(column);
    ui->tableViewEditEntries->horizontalHeader()->resizeSections(QHeaderView::Stretch);
}

bool OptionsWidget::hasUnsavedEntryChanges() const
{
    return entryModel && entryModel->isDirty();
}

QList<QSqlTableModel *> OptionsWidget::entryModels() const
{
    return entryModel ? QList<QSqlTableModel *> { entryModel } : QList<QSqlTableModel *> {};
}

void OptionsWidget::markSelectedEntriesForDeletion()
{
    auto *model = qobject_cast<QSqlTableModel *>(ui->tableViewEditEntries->model());
    if (!model)
        return;
    QSet<int> rows;
    for (const QModelIndex &index : ui->tableViewEditEntries->selectionModel()->selectedIndexes())
        rows.insert(index.row());
    for (const int row : rows) {
        if (ui->tableViewEditEntries->isRowHidden(row))
            continue;
        // The model keeps the row until Save and gives it back at Cancel.
        markedEntries[model].insert(entrySNo(model, row));
        model->removeRow(row);
    }
    hideMarkedRows();
}

void OptionsWidget::hideMarkedRows()
{
    QTableView *view = ui->tableViewEditEntries;
    auto *model = qobject_cast<QSqlTableModel *>(view->model());
    if (!model)
        return;
    const QSet<int> marked = markedEntries.value(model);
    for (int row = 0; row < model->rowCount(); ++row) {
        const bool hidden = !marked.isEmpty() && marked.contains(entrySNo(model, row));
        if (view->isRowHidden(row) != hidden)
            view->setRowHidden(row, hidden);
    }
}

void OptionsWidget::cancelEntryEdits()
{
    for (QSqlTableModel *model : entryModels())
        model->revertAll();
    markedEntries.clear();
    hideMarkedRows();
}

void OptionsWidget::saveEntryEdits()
{
    // One transaction for the edits and deletions: either all of them are
    // stored, or none is.
    const QList<QSqlTableModel *> models = entryModels();
    if (!dbManager || !hasUnsavedEntryChanges())
        return;
    QList<PendingEdits> pending;
    for (QSqlTableModel *model : models)
        pending.append(PendingEdits(model, markedEntries.value(model)));

    bool submitted = false;
    QString reason;
    const bool saved = dbManager->runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            submitted = true;
            for (QSqlTableModel *model : models) {
                if (!model->submitAll()) {
                    reason = model->lastError().text();
                    return false;
                }
            }
            return true;
        },
        &reason);
    if (saved) {
        markedEntries.clear();
        hideMarkedRows();
        return;
    }

    // Nothing was stored (the file locked by another program, a full disk).
    // The edits and marks stay in the table so that a later Save can store
    // them, but the user must not believe they are saved.
    if (submitted) {
        for (const PendingEdits &edits : pending)
            edits.restore();
    }
    hideMarkedRows();
    QString text = tr("Your changes to the entries could not be saved.");
    if (!reason.trimmed().isEmpty())
        text += QStringLiteral("\n\n") + reason.trimmed();
    text +=
        QStringLiteral("\n\n") + tr("They are still in the table: press Save to try again, or Cancel to drop them.");
    Notice::warn(text);
}

namespace {

enum BudgetColumn { BudgetCategoryColumn, BudgetAmountColumn, BudgetPeriodColumn };

} // namespace

void OptionsWidget::setUpBudgetsTab()
{
    // Built like the "Edit Entries" tab, and dressed as its widgets are, so
    // that the tab follows the page's look.
    auto *tab = new QWidget();
    tab->setObjectName(QStringLiteral("tabBudgets"));

    tableWidgetBudgetsEdit = new QTableWidget(0, 3, tab);
    tableWidgetBudgetsEdit->setObjectName(QStringLiteral("tableWidgetBudgetsEdit"));
    tableWidgetBudgetsEdit->setGeometry(ui->tableViewEditEntries->geometry());
    tableWidgetBudgetsEdit->setStyleSheet(ui->tableViewEditEntries->styleSheet());
    tableWidgetBudgetsEdit->setHorizontalHeaderLabels({ tr("Category"), tr("Budget"), tr("Period") });
    tableWidgetBudgetsEdit->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    tableWidgetBudgetsEdit->verticalHeader()->hide();
    tableWidgetBudgetsEdit->setAccessibleName(tr("Budgets"));

    auto *label = new QLabel(tab);
    label->setObjectName(QStringLiteral("labelMonthStart"));
    label->setGeometry(70, 440, 381, 41);
    label->setText(tr("Budget months start on day"));
    label->setStyleSheet(ui->labelCurrentModeName->styleSheet());
    label->setPalette(ui->labelCurrentModeName->palette());
    label->setFont(ui->labelCurrentModeName->font());
    spinBoxMonthStart = new QSpinBox(tab);
    spinBoxMonthStart->setObjectName(QStringLiteral("spinBoxMonthStart"));
    spinBoxMonthStart->setGeometry(460, 440, 141, 41);
    spinBoxMonthStart->setRange(BudgetPeriods::firstMonthStart, BudgetPeriods::lastMonthStart);
    spinBoxMonthStart->setStyleSheet(ui->lineEditNewCategoryName->styleSheet());
    // Named by the caption beside it, for a screen reader.
    spinBoxMonthStart->setAccessibleName(label->text());
    label->setBuddy(spinBoxMonthStart);

    auto *save = new QPushButton(tr("Save"), tab);
    save->setObjectName(QStringLiteral("pushButtonSaveBudgets"));
    save->setGeometry(70, 500, 311, 61);
    save->setStyleSheet(ui->pushButtonSaveChanges->styleSheet());
    save->setFont(ui->pushButtonSaveChanges->font());
    auto *cancel = new QPushButton(tr("Cancel"), tab);
    cancel->setObjectName(QStringLiteral("pushButtonCancelBudgets"));
    cancel->setGeometry(460, 500, 311, 61);
    cancel->setStyleSheet(ui->pushButtonCancelChanges->styleSheet());
    cancel->setFont(ui->pushButtonCancelChanges->font());
    connect(save, &QPushButton::clicked, this, &OptionsWidget::saveBudgetEdits);
    connect(cancel, &QPushButton::clicked, this, &OptionsWidget::ShowBudgetsDetails);

    // Added while the form's current tab is another, so no handler runs.
    ui->tabWidgetOptionsContainer->addTab(tab, tr("Budgets"));
}

void OptionsWidget::ShowBudgetsDetails()
{
    tableWidgetBudgetsEdit->setRowCount(0);
    budgetedCategories.clear();
    spinBoxMonthStart->setValue(Settings().budgetMonthStart());
    if (!dbManager)
        return;
    QHash<QString, Budget> budgetOf;
    for (const Budget &budget : Budgets(*dbManager).all()) {
        budgetOf.insert(budget.category, budget);
        budgetedCategories << budget.category;
    }
    QStringList names;
    for (const Category *category : owned(dbManager->GetAllCategories()))
        names << category->CategoryName;
    // A budget outlives a rename of its category; it is listed so that it
    // can be removed.
    for (const QString &name : std::as_const(budgetedCategories))
        if (!names.contains(name))
            names << name;

    tableWidgetBudgetsEdit->setRowCount(int(names.size()));
    for (int row = 0; row < names.size(); ++row) {
        auto *name = new QTableWidgetItem(names.at(row));
        name->setFlags(name->flags() & ~Qt::ItemIsEditable);
        tableWidgetBudgetsEdit->setItem(row, BudgetCategoryColumn, name);
        const auto budget = budgetOf.constFind(names.at(row));
        const bool has = budget != budgetOf.cend();
        tableWidgetBudgetsEdit->setItem(row, BudgetAmountColumn,
                                        new QTableWidgetItem(has ? Budgets::money(budget->amount) : QString()));
        auto *period = new QComboBox();
        for (BudgetPeriod each : { BudgetPeriod::Month, BudgetPeriod::Week, BudgetPeriod::Year })
            period->addItem(BudgetPeriods::name(each), int(each));
        period->setCurrentIndex(period->findData(int(has ? budget->period : BudgetPeriod::Month)));
        tableWidgetBudgetsEdit->setCellWidget(row, BudgetPeriodColumn, period);
    }
}

void OptionsWidget::saveBudgetEdits()
{
    if (!dbManager)
        return;
    QList<Budget> kept;
    QStringList removed;
    for (int row = 0; row < tableWidgetBudgetsEdit->rowCount(); ++row) {
        const QString category = tableWidgetBudgetsEdit->item(row, BudgetCategoryColumn)->text();
        const QString text = tableWidgetBudgetsEdit->item(row, BudgetAmountColumn)->text().trimmed();
        if (text.isEmpty()) {
            if (budgetedCategories.contains(category))
                removed << category;
            continue;
        }
        bool isNumber = false;
        const double amount = text.toDouble(&isNumber);
        if (!isNumber || !Budgets::isAcceptableAmount(amount)) {
            Notice::warn(tr("The budget of %1 must be an amount above 0 and at most 9999999.99, not %2. "
                            "Nothing was saved.")
                             .arg(category, text));
            return;
        }
        const auto *period = qobject_cast<QComboBox *>(tableWidgetBudgetsEdit->cellWidget(row, BudgetPeriodColumn));
        kept.append({ category, amount, BudgetPeriod(period->currentData().toInt()) });
    }

    QString reason;
    if (!Budgets(*dbManager).apply(kept, removed, &reason)) {
        // The edits stay in the table for another Save.
        QString text = tr("Your budgets could not be saved.");
        if (!reason.trimmed().isEmpty())
            text += QStringLiteral("\n\n") + reason.trimmed();
        text += QStringLiteral("\n\n") +
            tr("They are still in the table: press Save to try again, or Cancel to drop them.");
        Notice::warn(text);
        return;
    }
    if (!Settings().setBudgetMonthStart(spinBoxMonthStart->value())) {
        Notice::warn(tr("The budgets were saved, but the month start could not be kept."));
        return;
    }
    ShowBudgetsDetails();
}

namespace {

enum RuleColumn { RuleTextColumn, RuleInColumn, RuleHowColumn, RuleCategoryColumn, RuleColumnCount };

QString whereText(Rule::Field in)
{
    switch (in) {
    case Rule::Field::Item:
        return OptionsWidget::tr("Item");
    case Rule::Field::Place:
        return OptionsWidget::tr("Place");
    case Rule::Field::Both:
        break;
    }
    return OptionsWidget::tr("Item or place");
}

enum RecurringColumn {
    RecurringItemColumn,
    RecurringAmountColumn,
    RecurringCategoryColumn,
    RecurringPlaceColumn,
    RecurringEveryColumn,
    RecurringNextColumn,
    RecurringEndColumn,
    RecurringModeColumn,
};

// A read-only table of the tab, dressed as the entry table is.
QTableWidget *recurringTable(QWidget *tab, const QTableView *model, const QRect &geometry, const QStringList &headers,
                             const char *name, const QString &accessibleName)
{
    auto *table = new QTableWidget(0, int(headers.size()), tab);
    table->setObjectName(QLatin1String(name));
    table->setGeometry(geometry);
    table->setStyleSheet(model->styleSheet());
    table->setHorizontalHeaderLabels(headers);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setAccessibleName(accessibleName);
    return table;
}

} // namespace

void OptionsWidget::setUpRulesTab()
{
    // Built as the "Budgets" tab is, dressed as the entries' tab.
    auto *tab = new QWidget();
    tab->setObjectName(QStringLiteral("tabRules"));

    tableWidgetRules = new QTableWidget(0, RuleColumnCount, tab);
    tableWidgetRules->setObjectName(QStringLiteral("tableWidgetRules"));
    QRect area = ui->tableViewEditEntries->geometry();
    area.setHeight(391);
    tableWidgetRules->setGeometry(area);
    tableWidgetRules->setStyleSheet(ui->tableViewEditEntries->styleSheet());
    tableWidgetRules->setHorizontalHeaderLabels({ tr("Look for"), tr("In"), tr("How"), tr("Category") });
    tableWidgetRules->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    // The row numbers are the rules' positions: rule 1 is tried first.
    tableWidgetRules->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tableWidgetRules->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tableWidgetRules->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableWidgetRules->setSelectionMode(QAbstractItemView::SingleSelection);
    tableWidgetRules->setAccessibleName(tr("Rules"));
    connect(tableWidgetRules, &QTableWidget::itemSelectionChanged, this, &OptionsWidget::enableRuleButtons);
    connect(tableWidgetRules, &QTableWidget::cellDoubleClicked, this, &OptionsWidget::editRule);

    const auto addButton = [this, tab](const char *name, const QString &text, const QRect &geometry) {
        auto *button = new QPushButton(text, tab);
        button->setObjectName(QLatin1String(name));
        button->setGeometry(geometry);
        button->setStyleSheet(ui->pushButtonSaveChanges->styleSheet());
        button->setFont(ui->pushButtonSaveChanges->font());
        return button;
    };
    connect(addButton("pushButtonAddRule", tr("Add"), QRect(70, 440, 221, 61)), &QPushButton::clicked, this,
            &OptionsWidget::addRule);
    pushButtonEditRule = addButton("pushButtonEditRule", tr("Edit"), QRect(310, 440, 221, 61));
    connect(pushButtonEditRule, &QPushButton::clicked, this, &OptionsWidget::editRule);
    pushButtonRemoveRule = addButton("pushButtonRemoveRule", tr("Remove"), QRect(550, 440, 221, 61));
    connect(pushButtonRemoveRule, &QPushButton::clicked, this, &OptionsWidget::removeRule);
    pushButtonRuleUp = addButton("pushButtonRuleUp", tr("Up"), QRect(70, 520, 141, 61));
    connect(pushButtonRuleUp, &QPushButton::clicked, this, [this] { moveRule(-1); });
    pushButtonRuleDown = addButton("pushButtonRuleDown", tr("Down"), QRect(230, 520, 141, 61));
    connect(pushButtonRuleDown, &QPushButton::clicked, this, [this] { moveRule(1); });
    connect(addButton("pushButtonApplyRules", tr("Apply to Stored Entries…"), QRect(390, 520, 381, 61)),
            &QPushButton::clicked, this, &OptionsWidget::applyRules);
    enableRuleButtons();

    ui->tabWidgetOptionsContainer->addTab(tab, tr("Rules"));
}

void OptionsWidget::ShowRulesDetails()
{
    const int selected = selectedRule();
    tableWidgetRules->setRowCount(0);
    if (!dbManager)
        return;
    const QList<Rule> rules = Rules(*dbManager).all();
    tableWidgetRules->setRowCount(int(rules.size()));
    for (int row = 0; row < rules.size(); ++row) {
        const Rule &rule = rules.at(row);
        const QStringList cells = { rule.text, whereText(rule.in),
                                    rule.how == Rule::How::Regex ? tr("Regular expression") : tr("Contains"),
                                    rule.category };
        for (int column = 0; column < cells.size(); ++column)
            tableWidgetRules->setItem(row, column, new QTableWidgetItem(cells.at(column)));
    }
    selectRule(selected);
}

int OptionsWidget::selectedRule() const
{
    const QList<QTableWidgetSelectionRange> ranges = tableWidgetRules->selectedRanges();
    return ranges.isEmpty() ? 0 : ranges.constFirst().topRow() + 1;
}

void OptionsWidget::selectRule(int position)
{
    if (position >= 1 && position <= tableWidgetRules->rowCount())
        tableWidgetRules->selectRow(position - 1);
    else
        tableWidgetRules->clearSelection();
    enableRuleButtons();
}

void OptionsWidget::enableRuleButtons()
{
    const int selected = selectedRule();
    pushButtonEditRule->setEnabled(selected > 0);
    pushButtonRemoveRule->setEnabled(selected > 0);
    pushButtonRuleUp->setEnabled(selected > 1);
    pushButtonRuleDown->setEnabled(selected > 0 && selected < tableWidgetRules->rowCount());
}

QStringList OptionsWidget::categoryNames()
{
    QStringList names;
    if (dbManager) {
        for (const Category *category : owned(dbManager->GetAllCategories()))
            names << category->CategoryName;
    }
    return names;
}

void OptionsWidget::addRule()
{
    if (!dbManager)
        return;
    RuleDialog dialog(tr("Add Rule"), Rule(), categoryNames());
    if (dialog.exec() != QDialog::Accepted)
        return;
    QString failure;
    const int position = Rules(*dbManager).add(dialog.rule(), &failure);
    if (position == 0) {
        Notice::warn(tr("The rule could not be added: %1").arg(failure));
        return;
    }
    ShowRulesDetails();
    selectRule(position);
}

void OptionsWidget::editRule()
{
    const int position = selectedRule();
    if (!dbManager || position == 0)
        return;
    const QList<Rule> rules = Rules(*dbManager).all();
    if (position > rules.size())
        return;
    RuleDialog dialog(tr("Edit Rule"), rules.at(position - 1), categoryNames());
    if (dialog.exec() != QDialog::Accepted)
        return;
    QString failure;
    if (!Rules(*dbManager).replace(position, dialog.rule(), &failure))
        Notice::warn(tr("The rule could not be changed: %1").arg(failure));
    ShowRulesDetails();
}

void OptionsWidget::removeRule()
{
    const int position = selectedRule();
    if (!dbManager || position == 0)
        return;
    const QString text = tableWidgetRules->item(position - 1, RuleTextColumn)->text();
    if (!Notice::confirmDestructive(tr("Remove rule %1 (\"%2\")? The entries it categorised keep their category.")
                                        .arg(QString::number(position), text),
                                    tr("Remove")))
        return;
    QString failure;
    if (!Rules(*dbManager).remove(position, &failure))
        Notice::warn(tr("The rule could not be removed: %1").arg(failure));
    ShowRulesDetails();
    selectRule(qMin(position, tableWidgetRules->rowCount()));
}

void OptionsWidget::moveRule(int by)
{
    const int position = selectedRule();
    const int to = position + by;
    if (!dbManager || position == 0 || to < 1 || to > tableWidgetRules->rowCount())
        return;
    QString failure;
    if (!Rules(*dbManager).move(position, to, &failure)) {
        Notice::warn(tr("The rule could not be moved: %1").arg(failure));
        ShowRulesDetails();
        return;
    }
    ShowRulesDetails();
    selectRule(to);
}

void OptionsWidget::applyRules()
{
    if (!dbManager)
        return;
    Rules rules(*dbManager);
    QString failure;
    const std::optional<int> count = rules.apply(true, &failure);
    if (!count) {
        Notice::warn(tr("The stored entries could not be read: %1").arg(failure));
        return;
    }
    if (*count == 0) {
        Notice::inform(tr("No stored entry in Others matches a rule: nothing to recategorise."));
        return;
    }
    const QString entries = *count == 1 ? tr("1 entry") : tr("%1 entries").arg(*count);
    if (!Notice::confirmDestructive(
            tr("The rules give %1 in Others a category of their own. Recategorise them?").arg(entries),
            tr("Recategorise")))
        return;
    const std::optional<int> done = rules.apply(false, &failure);
    if (!done) {
        Notice::warn(tr("No entry was recategorised: %1").arg(failure));
        return;
    }
    Notice::inform(*done == 1 ? tr("Recategorised 1 entry") : tr("Recategorised %1 entries").arg(*done));
}

void OptionsWidget::setUpRecurringTab()
{
    auto *tab = new QWidget();
    tab->setObjectName(QStringLiteral("tabRecurring"));
    tableWidgetRecurring = recurringTable(
        tab, ui->tableViewEditEntries, QRect(70, 20, 701, 250),
        { tr("Item"), tr("Amount"), tr("Category"), tr("Place"), tr("Every"), tr("Next"), tr("End"), tr("Mode") },
        "tableWidgetRecurring", tr("Recurring expenses"));
    connect(tableWidgetRecurring, &QTableWidget::itemDoubleClicked, this, &OptionsWidget::editRecurringExpense);

    const QList<std::tuple<QString, const char *, void (OptionsWidget::*)()>> buttons = {
        { tr("Add"), "pushButtonAddRecurring", &OptionsWidget::addRecurringExpense },
        { tr("Edit"), "pushButtonEditRecurring", &OptionsWidget::editRecurringExpense },
        { tr("Remove"), "pushButtonRemoveRecurring", &OptionsWidget::removeRecurringExpense },
        { tr("Post Due Now"), "pushButtonPostDueNow", &OptionsWidget::postDueRequested },
    };
    int x = 70;
    for (const auto &[text, name, slot] : buttons) {
        auto *button = new QPushButton(text, tab);
        button->setObjectName(QLatin1String(name));
        button->setGeometry(x, 280, 161, 45);
        button->setStyleSheet(ui->pushButtonSaveChanges->styleSheet());
        button->setFont(ui->pushButtonSaveChanges->font());
        connect(button, &QPushButton::clicked, this, slot);
        x += 180;
    }

    auto *coming = new QLabel(tr("The next 30 days"), tab);
    coming->setObjectName(QStringLiteral("labelRecurringPreview"));
    coming->setGeometry(70, 335, 701, 35);
    coming->setStyleSheet(ui->labelCurrentModeName->styleSheet());
    coming->setPalette(ui->labelCurrentModeName->palette());
    coming->setFont(ui->labelCurrentModeName->font());
    tableWidgetRecurringPreview = recurringTable(tab, ui->tableViewEditEntries, QRect(70, 375, 701, 220),
                                                 { tr("Date"), tr("Item"), tr("Category"), tr("Amount") },
                                                 "tableWidgetRecurringPreview", coming->text());
    labelRecurringPreviewTotal = new QLabel(tab);
    labelRecurringPreviewTotal->setObjectName(QStringLiteral("labelRecurringPreviewTotal"));
    labelRecurringPreviewTotal->setGeometry(70, 605, 701, 35);
    labelRecurringPreviewTotal->setStyleSheet(ui->labelCurrentModeName->styleSheet());
    labelRecurringPreviewTotal->setPalette(ui->labelCurrentModeName->palette());
    labelRecurringPreviewTotal->setFont(ui->labelCurrentModeName->font());

    ui->tabWidgetOptionsContainer->addTab(tab, tr("Recurring"));
}

void OptionsWidget::ShowRecurringDetails()
{
    tableWidgetRecurring->setRowCount(0);
    tableWidgetRecurringPreview->setRowCount(0);
    labelRecurringPreviewTotal->clear();
    if (!dbManager)
        return;
    RecurringExpenses recurring(*dbManager);
    const QList<RecurringExpense> expenses = recurring.all();
    tableWidgetRecurring->setRowCount(int(expenses.size()));
    for (int row = 0; row < expenses.size(); ++row) {
        const RecurringExpense &expense = expenses.at(row);
        QString end = tr("Never");
        if (expense.end.until.isValid())
            end = expense.end.until.toString(Qt::TextDate);
        else if (expense.end.times > 0)
            end = expense.end.times == 1 ? tr("Once") : tr("%1 times").arg(expense.end.times);
        const QStringList cells = { expense.item,
                                    Budgets::money(expense.amount),
                                    expense.category,
                                    expense.place,
                                    RecurrenceDates::told(expense.every),
                                    expense.isFinished() ? tr("Finished") : expense.next.toString(Qt::TextDate),
                                    end,
                                    RecurringExpenses::modeName(expense.mode) };
        for (int column = 0; column < cells.size(); ++column) {
            auto *item = new QTableWidgetItem(cells.at(column));
            item->setData(Qt::UserRole, expense.id);
            tableWidgetRecurring->setItem(row, column, item);
        }
    }

    const QDate today = QDate::currentDate();
    const QList<Occurrence> coming = recurring.between(today, today.addDays(29));
    tableWidgetRecurringPreview->setRowCount(int(coming.size()));
    double total = 0;
    for (int row = 0; row < coming.size(); ++row) {
        const Occurrence &occurrence = coming.at(row);
        const QStringList cells = { occurrence.date.toString(Qt::TextDate), occurrence.item, occurrence.category,
                                    Budgets::money(occurrence.amount) };
        for (int column = 0; column < cells.size(); ++column)
            tableWidgetRecurringPreview->setItem(row, column, new QTableWidgetItem(cells.at(column)));
        total += occurrence.amount;
    }
    labelRecurringPreviewTotal->setText(tr("Total: %1").arg(Budgets::money(total)));
}

std::optional<RecurringExpense> OptionsWidget::selectedRecurringExpense() const
{
    const QList<QTableWidgetItem *> selected = tableWidgetRecurring->selectedItems();
    if (!dbManager || selected.isEmpty())
        return std::nullopt;
    return RecurringExpenses(*dbManager).of(selected.constFirst()->data(Qt::UserRole).toInt());
}

void OptionsWidget::addRecurringExpense()
{
    RecurringExpense fresh;
    fresh.first = QDate::currentDate();
    storeFromDialog(fresh);
}

void OptionsWidget::editRecurringExpense()
{
    if (const std::optional<RecurringExpense> expense = selectedRecurringExpense())
        storeFromDialog(*expense);
}

void OptionsWidget::storeFromDialog(const RecurringExpense &expense)
{
    if (!dbManager)
        return;
    RecurringExpenseDialog dialog(expense, categoryNames());
    if (dialog.exec() != QDialog::Accepted)
        return;
    RecurringExpenses recurring(*dbManager);
    QString failure;
    const bool stored = expense.id > 0 ? recurring.update(dialog.expense(), &failure)
                                       : recurring.add(dialog.expense(), &failure) > 0;
    if (!stored)
        Notice::warn(tr("The recurring expense could not be stored: %1").arg(failure));
    ShowRecurringDetails();
}

void OptionsWidget::removeRecurringExpense()
{
    const std::optional<RecurringExpense> expense = selectedRecurringExpense();
    if (!expense)
        return;
    if (!Notice::confirmDestructive(
            tr("Remove the recurring expense %1? The entries it has posted stay.").arg(expense->item), tr("Remove")) ||
        !dbManager)
        return;
    if (!RecurringExpenses(*dbManager).remove(expense->id))
        Notice::warn(tr("The recurring expense %1 could not be removed.").arg(expense->item));
    ShowRecurringDetails();
}
