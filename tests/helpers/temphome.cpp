// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "temphome.h"

#include <QDir>

TempHome::TempHome(CurrentDir currentDir) : previousHome(qgetenv("HOME")), hadHome(qEnvironmentVariableIsSet("HOME"))
{
    qputenv("HOME", dir.path().toLocal8Bit());
    if (currentDir == CurrentDir::Enter) {
        previousCurrentDir = QDir::currentPath();
        QDir::setCurrent(dir.path());
    }
}

TempHome::~TempHome()
{
    if (!previousCurrentDir.isEmpty())
        QDir::setCurrent(previousCurrentDir);
    if (hadHome)
        qputenv("HOME", previousHome);
    else
        qunsetenv("HOME");
}

bool TempHome::isValid() const
{
    return dir.isValid();
}

QString TempHome::path() const
{
    return dir.path();
}

QString TempHome::filePath(const QString &name) const
{
    return dir.filePath(name);
}

QString TempHome::databasePath() const
{
    return dir.filePath(QStringLiteral("ledgerlydatabase.db"));
}
