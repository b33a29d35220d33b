// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "mainwindowfixture.h"

#include "databasemanager.h"
#include "mainwindow.h"
#include "rawdatabase.h"
#include "widgettest.h"

#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTest>

MainWindowFixture::MainWindowFixture() : home(TempHome::CurrentDir::Enter) { }

MainWindowFixture::~MainWindowFixture() = default;

QString MainWindowFixture::setUpFile()
{
    if (!mainWindow) {
        // A store makes the tables, and closes the file again as it goes.
        const DatabaseManager setUp(nullptr);
    }
    return home.databasePath();
}

void MainWindowFixture::addEntry(const QString &item, const QString &category, const QDateTime &when, double price)
{
    RawDatabase raw(setUpFile());
    if (raw.insertEntry(item, category, when, price) == 0)
        qWarning("cannot add the entry %s: %s", qPrintable(item), qPrintable(raw.lastError()));
}

MainWindow &MainWindowFixture::window()
{
    if (!mainWindow)
        mainWindow = std::make_unique<MainWindow>();
    return *mainWindow;
}

MainWindow &MainWindowFixture::restart()
{
    // The old store lets go of the file before the new one opens it.
    mainWindow.reset();
    return window();
}

bool MainWindowFixture::show()
{
    window().show();
    return QTest::qWaitForWindowExposed(&window());
}

void MainWindowFixture::click(const char *button)
{
    child<QPushButton>(window(), button)->click();
}

QStackedWidget *MainWindowFixture::stack()
{
    return child<QStackedWidget>(window(), "stackedWidget");
}

QScrollArea *MainWindowFixture::pageArea()
{
    return child<QScrollArea>(window(), "scrollArea");
}

QScrollArea *MainWindowFixture::host()
{
    return child<QScrollArea>(window(), "scrollArea_2");
}

QWidget *MainWindowFixture::page()
{
    return host()->widget();
}
