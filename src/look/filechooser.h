// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QFileDialog>
#include <QString>
#include <QStringList>

// The one way the program asks for a file: a modal dialog of its own,
// without a parent (inside the window it would take the black pages' style
// sheet).
class FileChooser
{
public:
    // Empty when the user cancels. A name saved without its suffix gets that
    // of the chosen filter; the dialog asks before replacing a file.
    static QString choose(QFileDialog::AcceptMode mode, const QString &title, const QStringList &nameFilters,
                          const QString &suggested);
};
