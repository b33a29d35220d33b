// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "temphome.h"

#include <QDateTime>
#include <QString>

#include <memory>

class MainWindow;
class QScrollArea;
class QStackedWidget;
class QWidget;

// The program's main window over a fresh home that is also the current
// directory (where the history page writes its graphs). Entries added before
// the window opens are in the file when its store starts.
class MainWindowFixture
{
public:
    MainWindowFixture();
    ~MainWindowFixture();
    MainWindowFixture(const MainWindowFixture &) = delete;
    MainWindowFixture &operator=(const MainWindowFixture &) = delete;

    // The file of the home, with its tables and default rows: a store sets
    // it up first when no window has yet.
    QString setUpFile();
    // Writes an entry row straight into that file.
    void addEntry(const QString &item, const QString &category, const QDateTime &when, double price);

    // The window, made on first use.
    MainWindow &window();
    // Drops the window, without closing it, and makes a new one over the
    // same home and settings: the program's next start.
    MainWindow &restart();
    // Shows the window and waits until it is on screen.
    bool show();
    // Clicks one of the menu buttons, by object name.
    void click(const char *button);
    QStackedWidget *stack();
    // The scroll area of the page area, right of the menu column.
    QScrollArea *pageArea();
    // The scroll area that hosts the data page, and the page it holds.
    QScrollArea *host();
    QWidget *page();

    TempHome home;

private:
    std::unique_ptr<MainWindow> mainWindow;
};
