#include "commandline.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QTextStream>

bool CommandLine::wanted(int argc)
{
    return argc > 1;
}

int CommandLine::run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Ledgerly keeps track of what you spend. Started without arguments, it opens its window."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();

    // parse() rather than process(): process() ends the program itself, with
    // its own exit status, where a usage error here exits with UsageError.
    QTextStream out(stdout);
    QTextStream err(stderr);
    const QString program = arguments.isEmpty() ? QString() : QFileInfo(arguments.first()).fileName();
    const auto usageError = [&](const QString &message) {
        err << message << '\n' << QStringLiteral("Try \"%1 --help\" for more information.").arg(program) << '\n';
        return UsageError;
    };

    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    // Without a window there are no Qt-specific options to add to the help.
    if (parser.isSet(help) || parser.isSet(QStringLiteral("help-all"))) {
        out << parser.helpText();
        return Success;
    }
    if (parser.isSet(version)) {
        out << QCoreApplication::applicationName() << ' ' << QCoreApplication::applicationVersion() << '\n';
        return Success;
    }
    const QStringList positional = parser.positionalArguments();
    if (!positional.isEmpty())
        return usageError(QStringLiteral("Unknown command \"%1\".").arg(positional.first()));
    return usageError(QStringLiteral("Nothing to do."));
}
