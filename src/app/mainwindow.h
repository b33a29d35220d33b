// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "budgets.h"
#include <QList>
#include <QMainWindow>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

class DatabaseManager;
class QLabel;
class QTimer;

namespace Ui {
class MainWindow;
}

// The one top-level window: a fixed menu column, a menu bar, and a stacked
// page area whose third page hosts the data page of the moment. The page
// area follows the window's size. Owns the store, writes its daily backup
// at start-up, and runs the File menu's import, export and backup.
class MainWindow : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY(MainWindow)

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // Whether a window at `geometry` could be found again: one of the
    // screens' areas shows at least a 100 x 50 piece of it.
    static bool isOnAScreen(const QRect &geometry, const QList<QRect> &screenAreas);

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void on_pushButtonNewEntry_clicked();
    void on_pushButtonOptions_clicked();
    void on_pushButtonHistory_clicked();
    void on_pushButtonExit_clicked();
    void on_pushButtonHome_clicked();

private:
    void setUpPageArea();
    void fitPageArea();
    void fitDataPage();
    void connectMenuBar();
    void connectLookMenu();
    void restoreWindowGeometry();
    void saveWindowGeometry() const;
    void showDataPage(QWidget *page);
    // A fresh history page, whose Find button opens the Find page.
    void showHistoryPage();
    // A fresh Find page, with the filter it had last.
    void showFindPage();
    void reportUnusableDatabase();
    void reportUnwritableDatabase();
    void reportAutomaticBackupFailure();

    void importEntries();
    void showImports();
    void exportEntries();
    void backUpDatabase();
    // After entries came in or an import was taken back.
    void rebuildDataPageAfterImport();
    // Shows a budget's warning in the status bar until the next page opens.
    void showBudgetWarning(const QString &message, BudgetLevel level);
    void clearBudgetWarning();
    // Posts what the recurring expenses have due today: those that post
    // themselves at once, told in the status bar; those that ask first in
    // the Due Expenses dialog. With nothing due it costs one query.
    // Whether anything was due.
    bool postDueRecurringExpenses();
    // A fresh options page, whose "Post Due Now" posts through the window.
    void showOptionsPage();
    // A window left open posts what comes due each day too: a minute after
    // the next midnight, or a minute later while a dialog is open.
    void scheduleRecurringReview();
    void reviewRecurringExpenses();

    Ui::MainWindow *ui;
    DatabaseManager *dbManager;
    bool IsEntryPresentInDatabase;
    QString automaticBackupFailure;
    // The data pages' host and a data page at the designed window size.
    QSize designedHostSize;
    QSize designedPageSize;
    QLabel *labelBudgetWarning;
    QLabel *labelRecurringPosted = nullptr;
    QTimer *timerRecurringDue = nullptr;
};
