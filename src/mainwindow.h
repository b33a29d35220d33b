#pragma once

#include <QMainWindow>

class DatabaseManager;

namespace Ui {
class MainWindow;
}

// The one top-level window: a fixed menu column and a stacked page area whose
// third page hosts the data page of the moment. Owns the store.
class MainWindow : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY(MainWindow)

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

private slots:
    void on_pushButtonNewEntry_clicked();
    void on_pushButtonOptions_clicked();
    void on_pushButtonHistory_clicked();
    void on_pushButtonExit_clicked();
    void on_pushButtonHome_clicked();

private:
    void showDataPage(QWidget *page);
    void reportUnusableDatabase();

    Ui::MainWindow *ui;
    DatabaseManager *dbManager;
    bool IsEntryPresentInDatabase;
};
