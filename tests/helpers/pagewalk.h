// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class MainWindowFixture;
class QWidget;

// Walks the window through every page a user can reach: home, About, new
// entry, each tab of the history page, an entry's details, each tab of the
// options page. At each stop `visit` gets a name for the place and the
// widget that shows it; the window must be shown.
void visitEveryPage(MainWindowFixture &f, const std::function<void(const QString &where, QWidget *shown)> &visit);

// Every text under `root` that is wider than the room its widget gives it,
// at that widget's own font, as "object name: text (needed > room)": label
// texts (a wrapped label by its height), button and check box texts, tab
// titles, group box titles and table headers. Only what is shown counts.
QStringList cutTexts(QWidget *root);

// Every widget under `root` that takes focus and that a screen reader
// cannot name (an empty accessible name), as "class object name".
QStringList unnamedControls(QWidget *root);
