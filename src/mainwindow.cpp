#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "addentrywidget.h"
#include "databasemanager.h"
#include "historywidget.h"
#include "look.h"
#include "notice.h"
#include "optionswidget.h"

#include <QPointer>

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), ui(new Ui::MainWindow)
{
    ui->setupUi(this);
    for (QWidget *button : { ui->pushButtonHome, ui->pushButtonNewEntry, ui->pushButtonHistory, ui->pushButtonOptions,
                             ui->pushButtonExit })
        Look::applyButtonFontWeight(button);
    IsEntryPresentInDatabase = false;
    ui->stackedWidget->setCurrentIndex(0);

    dbManager = new DatabaseManager(this);
    if (dbManager->GetTotalNumberOfEntries() > 0)
        IsEntryPresentInDatabase = true;

    if (!dbManager->isUsable()) {
        // Queued so that the window is on screen before the message shows.
        QMetaObject::invokeMethod(this, &MainWindow::reportUnusableDatabase, Qt::QueuedConnection);
    }
}

MainWindow::~MainWindow()
{
    delete ui;
}

void MainWindow::showDataPage(QWidget *page)
{
    // The scroll area takes the page over and deletes the one it held, so at
    // most one data page lives at a time.
    ui->scrollArea_2->setWidget(page);
    ui->stackedWidget->setCurrentIndex(2);
    // After setWidget, so the page keeps its designed size and scrolls.
    ui->scrollArea_2->setWidgetResizable(false);
}

void MainWindow::reportUnusableDatabase()
{
    Notice::warn(tr("Ledgerly could not open its database file %1.\n\n%2\n\n"
                    "Nothing can be recorded or shown in this session. The file has not been changed.")
                     .arg(dbManager->databaseFileName(), dbManager->openError()));
}

void MainWindow::on_pushButtonNewEntry_clicked()
{
    showDataPage(new AddEntryWidget(QPointer<DatabaseManager>(dbManager), this));
}

void MainWindow::on_pushButtonOptions_clicked()
{
    showDataPage(new OptionsWidget(QPointer<DatabaseManager>(dbManager), this));
}

void MainWindow::on_pushButtonHistory_clicked()
{
    if (dbManager->GetTotalNumberOfEntries() > 0)
        IsEntryPresentInDatabase = true;

    // The flag is sticky: once entries were seen, History opens even if they
    // have since been deleted.
    if (IsEntryPresentInDatabase) {
        showDataPage(new HistoryWidget(QPointer<DatabaseManager>(dbManager), this));
        return;
    }

    Notice::inform(tr("No Entries added. Kindly add entry first"));
}

void MainWindow::on_pushButtonExit_clicked()
{
    ui->stackedWidget->setCurrentIndex(1);
}

void MainWindow::on_pushButtonHome_clicked()
{
    ui->stackedWidget->setCurrentIndex(0);
}
