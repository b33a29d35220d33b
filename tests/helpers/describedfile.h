// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// The file of the six described tables, written by the tests' own copy of
// their create statements (not the program's), at schema version 0.
const QList<QPair<QString, QString>> &describedCreateStatements();
// Makes `fileName` such a file, without rows; false when it cannot.
bool makeDescribedFile(const QString &fileName);

// The names of the objects of one type ("table", "index", "trigger") that
// the store's migrations create beside the six tables, sorted.
QStringList migrationObjectNames(const QString &type);
