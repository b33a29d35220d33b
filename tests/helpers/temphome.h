// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

// A fresh, empty home directory for one test: HOME points at it while the
// object lives, so the program's database file lands inside it. Optionally
// it is also the current directory (where the history page writes its PNGs).
class TempHome
{
public:
    enum class CurrentDir { Keep, Enter };

    explicit TempHome(CurrentDir currentDir = CurrentDir::Keep);
    ~TempHome();
    TempHome(const TempHome &) = delete;
    TempHome &operator=(const TempHome &) = delete;

    bool isValid() const;
    QString path() const;
    QString filePath(const QString &name) const;
    // ~/ledgerlydatabase.db of this home.
    QString databasePath() const;

private:
    QTemporaryDir dir;
    QByteArray previousHome;
    bool hadHome;
    QString previousCurrentDir;
};
