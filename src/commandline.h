#pragma once

#include <QStringList>

// Ledgerly's command line. Started with arguments, the program answers on
// the terminal and exits, without a window and without needing a display;
// started without any, it opens its window.
class CommandLine
{
public:
    enum ExitStatus { Success = 0, UsageError = 2 };

    // True when main() got any argument after the program's name: then the
    // command line answers, not the window.
    static bool wanted(int argc);

    // Does what the arguments ask and returns the exit status. Needs a
    // QCoreApplication; the program's name and version are the application's.
    static int run(const QStringList &arguments);
};
