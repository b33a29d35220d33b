// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QStringList>

// Ledgerly's command line. Started with arguments, the program answers on
// the terminal and exits, without a window and without needing a display:
// --help, --version, and the commands export, import and backup on the
// user's database. Started without any, it opens its window.
class CommandLine
{
public:
    enum ExitStatus { Success = 0, Refused = 1, UsageError = 2 };

    // True when main() got any argument after the program's name: then the
    // command line answers, not the window.
    static bool wanted(int argc);

    // Does what the arguments ask and returns the exit status: one summary
    // line on standard output when a command succeeds; the reasons, with
    // line numbers, on standard error when the data or a file is refused.
    // Needs a QCoreApplication; the program's name and version are the
    // application's.
    static int run(const QStringList &arguments);
};
