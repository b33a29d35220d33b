// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class QTextStream;

// The command line's recurring expenses: `recurring` (list, add, remove)
// and `post-due`, the command a timer or a cron job runs. Each reads its own
// words and options (a negative amount is a word there, which
// QCommandLineParser would take for an option), checks all of them before
// the database is opened, and writes nothing when it refuses.
class RecurringCommands
{
public:
    // Prints the message and the hint at --help; returns the usage status.
    using UsageError = std::function<int(const QString &)>;

    // The words after "recurring" and after "post-due".
    static int recurring(const QStringList &arguments, QTextStream &out, QTextStream &err,
                         const UsageError &usageError);
    static int postDue(const QStringList &arguments, QTextStream &out, QTextStream &err, const UsageError &usageError);

    // The options only these commands take, for the help (and so the manual
    // page and the shell's completion); --from and --place are find's too.
    static QList<QCommandLineOption> options();

    // "Posted 1 entry", "Posted 3 entries".
    static QString postedSummary(int count);
};
