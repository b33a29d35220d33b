// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QStringList>

#include <functional>

class QTextStream;
struct Rule;

// The rules command of the command line: lists, adds, removes, moves and
// applies the rules that categorise entries (see Rules).
class RuleCommands
{
public:
    using UsageError = std::function<int(const QString &message)>;

    // Runs `arguments`, the words and options after "rules"; the exit
    // status as CommandLine::run() gives it. A usage error is told through
    // `usageError`, which gives the status.
    static int run(const QStringList &arguments, QTextStream &out, QTextStream &err, const UsageError &usageError);

    // How a rule reads on the terminal: item or place contains "REWE"
    // gives Groceries.
    static QString describe(const Rule &rule);
};
