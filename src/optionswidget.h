#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

class DatabaseManager;

namespace Ui {
class OptionsWidget;
}

// The options page: adds and renames categories, switches the spending mode
// of this page, and edits the stored entries in a table saved or reverted as
// a batch. The store is borrowed, never owned.
class OptionsWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(OptionsWidget)

public:
    explicit OptionsWidget(QPointer<DatabaseManager> dbManager, QWidget *parent = nullptr);
    ~OptionsWidget() override;

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

    Ui::OptionsWidget *ui;
    QPointer<DatabaseManager> dbManager;
    QString currentMode;
};
