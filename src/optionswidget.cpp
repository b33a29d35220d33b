#include "optionswidget.h"
#include "ui_optionswidget.h"

#include "databasemanager.h"
#include "entryeditdelegates.h"
#include "look.h"
#include "notice.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSqlError>
#include <QSqlTableModel>

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

    // Switching to the first tab fills the old-name list through the slot;
    // the direct call fills it once more, so a new page lists every category
    // without entries twice, as it always has.
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
    // Each visit reads the table afresh into a new model. Earlier models stay
    // with the page, so Save and Cancel reach them all.
    if (!dbManager)
        return;
    QSqlTableModel *model = dbManager->createTableModel(QStringLiteral("Entry"), this);
    if (!model)
        return;
    QItemSelectionModel *oldSelection = ui->tableViewEditEntries->selectionModel();
    ui->tableViewEditEntries->setModel(model);
    delete oldSelection;

    for (int column : { SNoColumn, CategoryNameColumn, CategoryIDColumn, EnableGeoLocColumn, GeoLocIDColumn,
                        GeoLocLongitColumn, GeoLocLatitColumn, ItemIDColumn })
        ui->tableViewEditEntries->hideColumn(column);
    ui->tableViewEditEntries->horizontalHeader()->resizeSections(QHeaderView::Stretch);

    connect(ui->pushButtonCancelChanges, &QPushButton::clicked, model, &QSqlTableModel::revertAll);
}

void OptionsWidget::saveEntryEdits()
{
    const QList<QSqlTableModel *> models = findChildren<QSqlTableModel *>(QString(), Qt::FindDirectChildrenOnly);
    if (!dbManager || models.isEmpty() || dbManager->submitAll(models))
        return;

    // A model still holding edits after Save could not write them (the file
    // locked by another program, a full disk). The edits stay in the table so
    // that a later Save can store them, but the user must not believe they
    // are saved.
    QString reason;
    for (const QSqlTableModel *model : models) {
        if (model->isDirty()) {
            reason = model->lastError().text().trimmed();
            break;
        }
    }
    QString text = tr("Your changes to the entries could not be saved.");
    if (!reason.isEmpty())
        text += QStringLiteral("\n\n") + reason;
    text +=
        QStringLiteral("\n\n") + tr("They are still in the table: press Save to try again, or Cancel to drop them.");
    Notice::warn(text);
}
