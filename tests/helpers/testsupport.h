// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

class DatabaseManager;

// Chores and checks any test may need, on QtCore alone.

// The Qt GUI libraries (Gui, Widgets, any WebEngine part) mapped into this
// process, by file name; empty for a process that runs without a display.
QStringList loadedGuiLibraries();
// The Qt WebEngine libraries the process has loaded.
QStringList loadedWebEngineLibraries();

// A store that cannot open its file asks the application to quit, as the
// program always has. Before the event loop runs, Qt 6 keeps that request
// pending, so every nested event loop (a message box's exec()) would return
// at once until QCoreApplication::exec() clears it, as main() does. Tests
// clear it the same way: a short exec() that quits at once. Events already
// posted (a queued message box, say) are delivered inside it.
void runPendingEventsAndClearQuit();

// Points the settings (every format, user and system scope) at a directory
// of this process, removed when it ends: neither the settings of the user
// running the tests nor those another test process wrote take part.
void useTemporarySettings();

// Texts that a careless program would mangle, by what they hold: quotes,
// backslashes, placeholders of QString::arg, an SQL fragment, HTML,
// right-to-left and combining characters, emoji, a NUL character and 10,000
// characters. Each comes back unchanged from the store and shows literally.
QList<QPair<QString, QString>> hostileTexts();

// A full disk, made on the program's connection (the default one): the file
// may grow no further than it is, and fillDatabaseFile() then adds the
// smallest entries the store writes until one no longer fits, so that any
// larger write fails. It returns how many went in, or -1 when the file never
// filled. liftDatabaseFileLimit() gives the room back.
bool limitDatabaseFile();
int fillDatabaseFile(DatabaseManager &store);
bool liftDatabaseFileLimit();

// A whole file's bytes, or "(unreadable)"; and a file written whole.
QByteArray readFile(const QString &path);
bool writeFile(const QString &path, const QByteArray &bytes);

// What a program run to its end said: whether it ended within the time it
// was given, its exit code (-1 when it did not end normally in time) and its
// output, as text and as the bytes it wrote.
struct ProgramRun
{
    bool finished = false;
    int exitCode = -1;
    QString out;
    QString err;
    QByteArray outBytes;
    QByteArray errBytes;
};
ProgramRun runProgram(const QString &program, const QStringList &arguments,
                      const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment(),
                      int timeoutMs = 120000, const QString &workingDir = QString());
// Runs the program as a user types it on a terminal without a display: no
// QT_QPA_PLATFORM, DISPLAY or WAYLAND_DISPLAY, so that a program that
// started its GUI would abort at once. With a `home`, HOME and the settings
// (XDG_CONFIG_HOME) are there.
ProgramRun runWithoutDisplay(const QString &program, const QStringList &arguments, const QString &home = QString());
