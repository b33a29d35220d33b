// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "commandline.h"

#include "backup.h"
#include "csvformat.h"
#include "databasemanager.h"
#include "entryexport.h"
#include "entryimport.h"
#include "entrysearch.h"
#include "qifformat.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <cmath>
#include <cstdio>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("CommandLine", text);
}

int exportEntries(DatabaseManager &store, const QString &fileName, QTextStream &out, QTextStream &err)
{
    const EntryExport::Outcome outcome = EntryExport::write(store, fileName);
    if (!outcome.written) {
        err << tr("Nothing was exported: %1").arg(outcome.failure) << '\n';
        return CommandLine::Refused;
    }
    out << EntryExport::summary(fileName, outcome.exported) << '\n';
    return CommandLine::Success;
}

int importEntries(DatabaseManager &store, const QString &fileName, QifFormat::DateOrder order, QTextStream &out,
                  QTextStream &err)
{
    const EntryFileContents contents = EntryImport::read(fileName, order);
    if (!contents.isAcceptable()) {
        for (const QString &line : contents.problemLines(fileName))
            err << line << '\n';
        err << tr("Nothing was imported from %1.").arg(fileName) << '\n';
        return CommandLine::Refused;
    }
    const EntryImport::Outcome outcome = EntryImport::write(store, contents.entries);
    if (!outcome.written) {
        err << tr("Nothing was imported from %1: %2").arg(fileName, outcome.failure) << '\n';
        return CommandLine::Refused;
    }
    out << EntryImport::summary(fileName, contents, outcome.added) << '\n';
    return CommandLine::Success;
}

int backUp(DatabaseManager &store, const QString &fileName, bool force, QTextStream &out, QTextStream &err)
{
    if (QFileInfo::exists(fileName) && !force) {
        err << tr("%1 already exists; add --force to replace it.").arg(fileName) << '\n';
        return CommandLine::Refused;
    }
    const Backup::Outcome outcome =
        Backup::write(store, fileName, force ? Backup::Existing::Replace : Backup::Existing::Keep);
    if (!outcome.written) {
        err << tr("No backup was written: %1").arg(outcome.failure) << '\n';
        return CommandLine::Refused;
    }
    out << tr("Backed up %1 to %2").arg(store.databaseFileName(), fileName) << '\n';
    return CommandLine::Success;
}

int findEntries(DatabaseManager &store, const SearchFilter &filter, bool csv, QTextStream &out, QTextStream &err)
{
    EntrySearch search(store);
    const EntrySearch::Result result = search.find(filter);
    if (csv) {
        // The bytes of an export, as they are: no text stream in between.
        out.flush();
        QFile standardOutput;
        if (!standardOutput.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered) ||
            standardOutput.write(CsvFormat::write(result.entries.list())) < 0) {
            err << tr("The entries could not be written: %1").arg(standardOutput.errorString()) << '\n';
            return CommandLine::Refused;
        }
        err << EntrySearch::summary(result) << '\n';
        return CommandLine::Success;
    }
    for (const Entry *entry : result.entries.list())
        out << entry->TransactDateTime.date().toString(QStringLiteral("yyyy-MM-dd")) << '\t' << entry->ItemName
            << '\t' << entry->CategoryName << '\t' << QString::number(double(entry->Price), 'f', 2) << '\t'
            << entry->LocationText << '\n';
    out << EntrySearch::summary(result) << '\n';
    return CommandLine::Success;
}

// A day as yyyy-MM-dd, exactly.
bool readDay(const QString &text, QDate *day)
{
    *day = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
    return day->isValid() && text.size() == 10;
}

bool readAmount(const QString &text, double *amount)
{
    bool ok = false;
    *amount = text.toDouble(&ok);
    return ok && std::isfinite(*amount);
}

// The options of find, with their help texts.
struct SearchOptions
{
    QCommandLineOption category { QStringLiteral("category"), tr("find: entries of this category only."),
                                  QStringLiteral("name") };
    QCommandLineOption place { QStringLiteral("place"), tr("find: entries whose place holds this text."),
                               QStringLiteral("text") };
    QCommandLineOption from { QStringLiteral("from"), tr("find: entries of this day or later."),
                              QStringLiteral("yyyy-MM-dd") };
    QCommandLineOption to { QStringLiteral("to"), tr("find: entries of this day or earlier."),
                            QStringLiteral("yyyy-MM-dd") };
    QCommandLineOption minimum { QStringLiteral("min"), tr("find: entries of this amount or more."),
                                 QStringLiteral("amount") };
    QCommandLineOption maximum { QStringLiteral("max"), tr("find: entries of this amount or less."),
                                 QStringLiteral("amount") };
    QCommandLineOption csv { QStringLiteral("csv"),
                             tr("find: the entries as CSV on standard output, the summary on standard error.") };
};

// Fills the parts of `filter` that the options give; else says what is
// wrong with them.
QString readSearchOptions(const QCommandLineParser &parser, const SearchOptions &options, SearchFilter *filter)
{
    if (parser.isSet(options.category))
        filter->category = parser.value(options.category);
    filter->place = parser.value(options.place);
    for (const auto &[option, day] : { std::pair(&options.from, &filter->from), std::pair(&options.to, &filter->to) }) {
        if (parser.isSet(*option) && !readDay(parser.value(*option), day))
            return tr("--%1 takes a day as yyyy-MM-dd, not \"%2\".")
                .arg(option->names().constFirst(), parser.value(*option));
    }
    for (const auto &[option, amount] :
         { std::pair(&options.minimum, &filter->minimum), std::pair(&options.maximum, &filter->maximum) }) {
        double value = 0;
        if (!parser.isSet(*option))
            continue;
        if (!readAmount(parser.value(*option), &value))
            return tr("--%1 takes an amount such as 49.90, not \"%2\".")
                .arg(option->names().constFirst(), parser.value(*option));
        *amount = value;
    }
    if (filter->from.isValid() && filter->to.isValid() && filter->from > filter->to)
        return tr("--from is after --to.");
    if (filter->minimum && filter->maximum && EntrySearch::cents(*filter->minimum) > EntrySearch::cents(*filter->maximum))
        return tr("--min is above --max.");
    return QString();
}

} // namespace

bool CommandLine::wanted(int argc)
{
    return argc > 1;
}

int CommandLine::run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Ledgerly keeps track of what you spend. Started without arguments, it opens its window.\n"
           "\n"
           "Commands, on the database %1:\n"
           "  export FILE   Writes every entry into FILE, as CSV or QIF by its name (.csv, .qif).\n"
           "  import FILE   Adds the entries of a CSV or QIF file; a file with any problem adds none.\n"
           "  backup FILE   Writes a copy of the database into FILE.\n"
           "  find [TEXT]   Lists the entries whose item, category or place holds TEXT (in any case, with or\n"
           "                without accents) and that the options below allow, newest first, then how many\n"
           "                and their total.\n"
           "\n"
           "Exit status: 0 when done, 1 when the data or a file is refused, 2 for a usage error.")
            .arg(DatabaseManager::defaultFileName()));
    parser.addPositionalArgument(QStringLiteral("command"), tr("export, import, backup or find"),
                                 QStringLiteral("[command FILE]"));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption dateOrder(
        QStringLiteral("date-order"),
        tr("import: whether QIF dates that the file leaves open put the month (mdy, the default) or the day "
           "(dmy) first."),
        QStringLiteral("mdy|dmy"));
    const QCommandLineOption force(QStringLiteral("force"), tr("backup: replace FILE when it exists."));
    parser.addOption(dateOrder);
    parser.addOption(force);
    const SearchOptions searchOptions;
    const QList<QCommandLineOption> findOptions = { searchOptions.category, searchOptions.place, searchOptions.from,
                                                    searchOptions.to,       searchOptions.minimum, searchOptions.maximum,
                                                    searchOptions.csv };
    for (const QCommandLineOption &option : findOptions)
        parser.addOption(option);

    // parse() rather than process(): process() ends the program itself, with
    // its own exit status, where a usage error here exits with UsageError.
    QTextStream out(stdout);
    QTextStream err(stderr);
    const QString program = arguments.isEmpty() ? QString() : QFileInfo(arguments.first()).fileName();
    const auto usageError = [&](const QString &message) {
        err << message << '\n' << tr("Try \"%1 --help\" for more information.").arg(program) << '\n';
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
    if (positional.isEmpty())
        return usageError(tr("Nothing to do."));
    const QString command = positional.first();
    const QStringList commands = { QStringLiteral("export"), QStringLiteral("import"), QStringLiteral("backup"),
                                   QStringLiteral("find") };
    if (!commands.contains(command))
        return usageError(tr("Unknown command \"%1\".").arg(command));
    if (command != QLatin1String("find")) {
        for (const QCommandLineOption &option : findOptions) {
            if (parser.isSet(option))
                return usageError(tr("--%1 goes with find only.").arg(option.names().constFirst()));
        }
    }
    std::optional<SearchFilter> searchFilter;
    if (command == QLatin1String("find")) {
        if (positional.size() > 2)
            return usageError(tr("find takes at most one TEXT."));
        if (parser.isSet(dateOrder) || parser.isSet(force))
            return usageError(tr("--%1 goes with %2 only.")
                                  .arg(parser.isSet(force) ? QStringLiteral("force") : QStringLiteral("date-order"),
                                       parser.isSet(force) ? QStringLiteral("backup") : QStringLiteral("import")));
        SearchFilter filter;
        filter.text = positional.value(1);
        const QString problem = readSearchOptions(parser, searchOptions, &filter);
        if (!problem.isEmpty())
            return usageError(problem);
        searchFilter = filter;
    }
    QifFormat::DateOrder order = QifFormat::DateOrder::MonthFirst;
    if (!searchFilter) {
        if (positional.size() != 2)
            return usageError(tr("%1 takes one FILE.").arg(command));
        if (parser.isSet(dateOrder) && command != QLatin1String("import"))
            return usageError(tr("--date-order goes with import only."));
        if (parser.isSet(force) && command != QLatin1String("backup"))
            return usageError(tr("--force goes with backup only."));
        if (parser.isSet(dateOrder)) {
            const QString value = parser.value(dateOrder);
            if (value == QLatin1String("dmy"))
                order = QifFormat::DateOrder::DayFirst;
            else if (value != QLatin1String("mdy"))
                return usageError(tr("--date-order is mdy or dmy, not \"%1\".").arg(value));
        }
        const QString fileName = positional.at(1);
        if (command != QLatin1String("backup") && !CsvFormat::matches(fileName) && !QifFormat::matches(fileName))
            return usageError(tr("%1 names no .csv or .qif file.").arg(fileName));
    }

    // The program's own store, as the window opens it: a new home gets the
    // file with its tables and default rows.
    DatabaseManager store(nullptr);
    if (!store.isUsable()) {
        // The store has asked the application to quit, as it always does on
        // a file it cannot open; no event loop runs here, so the request
        // has no further effect.
        err << tr("The database %1 cannot be opened: %2").arg(store.databaseFileName(), store.openError()) << '\n';
        return Refused;
    }
    if (searchFilter)
        return findEntries(store, *searchFilter, parser.isSet(searchOptions.csv), out, err);
    if (command == QLatin1String("export"))
        return exportEntries(store, positional.at(1), out, err);
    if (command == QLatin1String("import"))
        return importEntries(store, positional.at(1), order, out, err);
    return backUp(store, positional.at(1), parser.isSet(force), out, err);
}
