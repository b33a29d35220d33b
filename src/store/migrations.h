// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// One step of the file's schema: the statements that take a file from
// version `version - 1` to `version`. Version 0 is the file of the six
// tables; a step only ever adds tables (and their indexes) of its own
// beside them and never alters those six.
struct Migration
{
    int version = 0;
    // What the step adds, for the start-up message when it fails.
    QString purpose;
    QStringList statements;
};

namespace Migrations {

// Every step this Ledgerly knows, in order, numbered from 1 without gaps.
const QList<Migration> &all();
// The version of a file that every step has reached: 0 without any.
int latestVersion();

} // namespace Migrations
