// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "commandline.h"

#include "backup.h"
#include "budgets.h"
#include "csvformat.h"
#include "csvimportoptions.h"
#include "databasemanager.h"
#include "entryexport.h"
#include "entryimport.h"
#include "entrysearch.h"
#include "importlog.h"
#include "ofxformat.h"
#include "qifformat.h"
#include "rulecommands.h"
#include "recurringcommands.h"
#include "settings.h"
#include "textencoding.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <cmath>
#include <cstdio>
#include <functional>
#include <optional>

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

int importEntries(DatabaseManager &store, const QString &fileName, std::optional<QifFormat::DateOrder> order,
                  std::optional<TextEncoding::Kind> encoding, const CsvImportOptions::Request &csv,
                  bool allowDuplicates, QTextStream &out, QTextStream &err)
{
    std::optional<CsvMapping> mapping;
    if (csv.wanted()) {
        QString failure;
        mapping = CsvImportOptions::mappingOf(store, csv, &failure);
        if (!mapping) {
            err << failure << '\n';
            return CommandLine::Refused;
        }
        // The mapping carries its own encoding and date order.
        order.reset();
        encoding.reset();
    }
    EntryFileContents contents = EntryImport::read(fileName, order, encoding, mapping);
    if (!contents.isAcceptable()) {
        for (const QString &line : contents.problemLines(fileName))
            err << line << '\n';
        err << tr("Nothing was imported from %1.").arg(fileName) << '\n';
        return CommandLine::Refused;
    }
    EntryImport::recognise(store, contents, allowDuplicates);
    EntryImport::categorise(store, contents);
    // The budgets' periods holding today, before and after: each category
    // the import takes past 80 % or past its budget is told once.
    Budgets budgets(store);
    const QDate today = QDate::currentDate();
    const int monthStart = Settings().budgetMonthStart();
    const QList<BudgetStanding> before = budgets.standings(today, monthStart);
    const EntryImport::Outcome outcome = EntryImport::write(store, contents.entries, {}, fileName);
    if (!outcome.written) {
        err << tr("Nothing was imported from %1: %2").arg(fileName, outcome.failure) << '\n';
        return CommandLine::Refused;
    }
    out << EntryImport::summary(fileName, contents, outcome.added) << '\n';
    for (const QString &crossed : Budgets::crossed(before, budgets.standings(today, monthStart)))
        out << tr("Budget: %1").arg(crossed) << '\n';
    if (!csv.saveProfile.isEmpty()) {
        QString failure;
        if (!CsvImportOptions::saveProfile(store, csv, *mapping, &failure)) {
            err << failure << '\n';
            return CommandLine::Refused;
        }
        out << tr("Saved the mapping as the profile %1").arg(csv.saveProfile) << '\n';
    }
    return CommandLine::Success;
}

QString entryCount(int count)
{
    return count == 1 ? tr("1 entry") : tr("%1 entries").arg(count);
}

int listImports(DatabaseManager &store, QTextStream &out)
{
    for (const ImportLog::Import &import : ImportLog(store).imports())
        out << import.id << '\t' << import.importedAt.toString(Qt::ISODate) << '\t' << entryCount(import.entries)
            << '\t' << import.fileName << '\n';
    return CommandLine::Success;
}

int undoImport(DatabaseManager &store, int id, QTextStream &out, QTextStream &err)
{
    QString failure;
    const std::optional<int> removed = ImportLog(store).undo(id, &failure);
    if (!removed) {
        if (failure.isEmpty())
            err << tr("There is no import %1; \"imports\" lists them.").arg(id) << '\n';
        else
            err << tr("Import %1 could not be removed: %2").arg(QString::number(id), failure) << '\n';
        return CommandLine::Refused;
    }
    out << tr("Removed %1 of import %2").arg(entryCount(*removed)).arg(id) << '\n';
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

// The budget command's words and options, read by hand: a negative amount
// such as -5 is a word here, which QCommandLineParser would take for an
// unknown option.
struct BudgetArguments
{
    QStringList words;
    std::optional<QString> period;
    std::optional<QString> date;
    QString unknownOption;
};

BudgetArguments readBudgetArguments(const QStringList &arguments)
{
    BudgetArguments read;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (!argument.startsWith(QLatin1String("--"))) {
            read.words << argument;
            continue;
        }
        std::optional<QString> *option = nullptr;
        QString name = argument.mid(2);
        QString value;
        const qsizetype equals = name.indexOf(QLatin1Char('='));
        if (equals >= 0) {
            value = name.mid(equals + 1);
            name.truncate(equals);
        }
        if (name == QLatin1String("period"))
            option = &read.period;
        else if (name == QLatin1String("date"))
            option = &read.date;
        if (!option) {
            if (read.unknownOption.isEmpty())
                read.unknownOption = name;
            continue;
        }
        if (equals < 0) {
            if (i + 1 == arguments.size()) {
                read.unknownOption = QStringLiteral("--") + name;
                continue;
            }
            value = arguments.at(++i);
        }
        *option = value;
    }
    return read;
}

QString budgetLine(const BudgetStanding &standing)
{
    const Budget &budget = standing.budget;
    return QStringList({ budget.category, BudgetPeriods::name(budget.period), standing.span.first.toString(Qt::ISODate),
                         standing.span.last.toString(Qt::ISODate), Budgets::money(budget.amount),
                         Budgets::money(standing.spent), Budgets::money(standing.left()),
                         QString::number(standing.usedPercent()) + QLatin1Char('%') })
        .join(QLatin1Char('\t'));
}

int budget(const QStringList &arguments, QTextStream &out, QTextStream &err,
           const std::function<int(const QString &)> &usageError)
{
    const BudgetArguments read = readBudgetArguments(arguments);
    if (read.unknownOption.startsWith(QLatin1String("--")))
        return usageError(tr("Missing value after '%1'.").arg(read.unknownOption));
    if (!read.unknownOption.isEmpty())
        return usageError(tr("Unknown option '%1'.").arg(read.unknownOption));
    const QString action = read.words.value(0);
    const QStringList arityOf = { QStringLiteral("set"), QStringLiteral("remove"), QStringLiteral("month-start") };
    if (!action.isEmpty() && !arityOf.contains(action))
        return usageError(tr("Unknown budget command \"%1\".").arg(action));
    if (action.isEmpty() && !read.words.isEmpty())
        return usageError(tr("Unknown budget command \"%1\".").arg(action));
    const int wordsWanted = action == QLatin1String("set") ? 3 : action.isEmpty() ? 0 : 2;
    if (read.words.size() != wordsWanted) {
        if (action == QLatin1String("set"))
            return usageError(tr("budget set takes CATEGORY AMOUNT."));
        if (action == QLatin1String("remove"))
            return usageError(tr("budget remove takes CATEGORY."));
        return usageError(tr("budget month-start takes N."));
    }
    if (read.period && action != QLatin1String("set"))
        return usageError(tr("--period goes with budget set only."));
    if (read.date && !action.isEmpty())
        return usageError(tr("--date goes with budget alone only."));
    BudgetPeriod period = BudgetPeriod::Month;
    if (read.period) {
        const std::optional<BudgetPeriod> named = BudgetPeriods::fromName(*read.period);
        if (!named)
            return usageError(tr("--period is month, week or year, not \"%1\".").arg(*read.period));
        period = *named;
    }
    QDate day = QDate::currentDate();
    if (read.date) {
        static const QRegularExpression isoDay(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}$"));
        day = QDate::fromString(*read.date, Qt::ISODate);
        if (!isoDay.match(*read.date).hasMatch() || !day.isValid())
            return usageError(tr("--date is a day written yyyy-MM-dd, not \"%1\".").arg(*read.date));
    }

    Settings settings;
    if (action == QLatin1String("month-start")) {
        // Only a setting: the database is neither needed nor made.
        bool isNumber = false;
        const int day = read.words.at(1).toInt(&isNumber);
        if (!isNumber || !BudgetPeriods::isMonthStart(day)) {
            err << tr("%1 is no month start: it is a day from 1 to 28.").arg(read.words.at(1)) << '\n';
            return CommandLine::Refused;
        }
        if (!settings.setBudgetMonthStart(day)) {
            err << tr("The month start could not be kept.") << '\n';
            return CommandLine::Refused;
        }
        out << tr("Budget months start on day %1.").arg(day) << '\n';
        return CommandLine::Success;
    }

    DatabaseManager store(nullptr);
    if (!store.isUsable()) {
        err << tr("The database %1 cannot be opened: %2").arg(store.databaseFileName(), store.openError()) << '\n';
        return CommandLine::Refused;
    }
    Budgets budgets(store);
    if (action.isEmpty()) {
        for (const BudgetStanding &standing : budgets.standings(day, settings.budgetMonthStart()))
            out << budgetLine(standing) << '\n';
        return CommandLine::Success;
    }
    const QString category = read.words.at(1);
    if (action == QLatin1String("remove")) {
        if (!budgets.of(category)) {
            err << tr("%1 has no budget.").arg(category) << '\n';
            return CommandLine::Refused;
        }
        if (!budgets.remove(category)) {
            err << tr("The budget of %1 could not be removed.").arg(category) << '\n';
            return CommandLine::Refused;
        }
        out << tr("%1 has no budget now.").arg(category) << '\n';
        return CommandLine::Success;
    }
    if (store.GetCategoryID(category) == 0) {
        err << tr("no category %1").arg(category) << '\n';
        return CommandLine::Refused;
    }
    bool isNumber = false;
    const double amount = read.words.at(2).toDouble(&isNumber);
    if (!isNumber || !Budgets::isAcceptableAmount(amount)) {
        err << tr("%1 is no budget: an amount is a number above 0 and at most 9999999.99.").arg(read.words.at(2))
            << '\n';
        return CommandLine::Refused;
    }
    if (!budgets.set({ category, amount, period })) {
        err << tr("The budget of %1 could not be stored.").arg(category) << '\n';
        return CommandLine::Refused;
    }
    out << tr("%1: %2 a %3").arg(category, Budgets::money(amount), BudgetPeriods::name(period)) << '\n';
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
    // Recurring expenses take these two as well: a place, and a first day.
    QCommandLineOption place { QStringLiteral("place"),
                               tr("find, recurring: entries whose place holds this text; the place of a recurring "
                                  "expense."),
                               QStringLiteral("text") };
    QCommandLineOption from { QStringLiteral("from"),
                              tr("find, recurring: entries of this day or later; the first day of a recurring "
                                 "expense."),
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

// Runs find: TEXT at most, the options of find and none of another
// command's.
int find(const QCommandLineParser &parser, const QStringList &positional, const SearchOptions &options,
         const QList<QPair<QCommandLineOption, QString>> &othersOptions,
         const std::function<int(const QString &)> &usageError, QTextStream &out, QTextStream &err)
{
    if (positional.size() > 2)
        return usageError(tr("find takes at most one TEXT."));
    for (const auto &[option, command] : othersOptions) {
        if (parser.isSet(option))
            return usageError(tr("--%1 goes with %2 only.").arg(option.names().constFirst(), command));
    }
    SearchFilter filter;
    filter.text = positional.value(1);
    const QString problem = readSearchOptions(parser, options, &filter);
    if (!problem.isEmpty())
        return usageError(problem);
    DatabaseManager store(nullptr);
    if (!store.isUsable()) {
        err << tr("The database %1 cannot be opened: %2").arg(store.databaseFileName(), store.openError()) << '\n';
        return CommandLine::Refused;
    }
    return findEntries(store, filter, parser.isSet(options.csv), out, err);
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
           "  import FILE   Adds the entries of a CSV, QIF or OFX (.ofx, .qfx, .qbo) file; a file with any\n"
           "                problem adds none.\n"
           "  import FILE --map date=COLUMN,item=COLUMN,amount=COLUMN [--save-profile NAME]\n"
           "                Adds the expenses of a bank's CSV, its columns given by header name or number\n"
           "                (see --map and the options that follow it); --save-profile keeps the mapping.\n"
           "  import FILE --profile NAME\n"
           "                Adds the expenses of a bank's CSV read as the saved profile NAME says.\n"
           "  backup FILE   Writes a copy of the database into FILE.\n"
           "  find [TEXT]   Lists the entries whose item, category or place holds TEXT (in any case, with or\n"
           "                without accents) and that the options below allow, newest first, then how many\n"
           "                and their total.\n"
           "  imports       Lists the imports that added entries, newest first.\n"
           "  imports undo ID\n"
           "                Removes the entries that import ID added.\n"
           "  profiles      Lists the saved profiles of bank CSVs: the name, a tab, the mapping as given.\n"
           "  profiles remove NAME\n"
           "                Removes the saved profile NAME.\n"
           "  budget [--date yyyy-MM-dd]\n"
           "                Lists each budget in its period holding the day (today without --date):\n"
           "                category, period, first and last day, budget, spent, left, used.\n"
           "  budget set CATEGORY AMOUNT [--period month|week|year]\n"
           "                Sets the budget of a category (a month without --period).\n"
           "  budget remove CATEGORY\n"
           "                Removes the budget of a category.\n"
           "  budget month-start N\n"
           "                Starts budget months and years on day N (1 to 28) of the month.\n"
           "  rules         Lists the rules that categorise entries, in the order they are tried:\n"
           "                N, text, where (item, place or both), how (contains or regex), category.\n"
           "  rules add TEXT CATEGORY [--in item|place|both] [--regex]\n"
           "                Adds a rule last: an entry whose item or place holds TEXT (in any case, with\n"
           "                or without accents; a regular expression with --regex) goes to CATEGORY.\n"
           "  rules remove N\n"
           "                Removes rule N.\n"
           "  rules move N POSITION\n"
           "                Moves rule N to POSITION. The first rule that matches an entry wins.\n"
           "  rules apply [--dry-run]\n"
           "                Gives every entry in Others the category of its first matching rule.\n"
           "                Imports do the same for each entry without a category or in Others.\n"
           "  recurring     Lists the recurring expenses, the soonest first: ID, item, amount, category,\n"
           "                every, next day, mode and how many are left.\n"
           "  recurring add ITEM AMOUNT CATEGORY --every N(d|w|m|y) --from yyyy-MM-dd\n"
           "                [--until yyyy-MM-dd | --times N] [--place TEXT] [--confirm]\n"
           "                Adds an expense that repeats every N days, weeks, months or years, from a first\n"
           "                day to a last one or for N times; with --confirm it is asked about first.\n"
           "  recurring remove ID\n"
           "                Removes a recurring expense; the entries it posted stay.\n"
           "  post-due [--until yyyy-MM-dd] [--all]\n"
           "                Posts every occurrence due on or before the day (today without --until), oldest\n"
           "                first; those that ask first only with --all. For a timer or a cron job.\n"
           "\n"
           "Exit status: 0 when done, 1 when the data or a file is refused, 2 for a usage error.")
            .arg(DatabaseManager::defaultFileName()));
    parser.addPositionalArgument(QStringLiteral("command"),
                                 tr("export, import, backup, find, imports, profiles, budget, rules, recurring or post-due"),
                                 QStringLiteral("[command FILE]"));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption dateOrder(
        QStringLiteral("date-order"),
        tr("import: read QIF dates month first (mdy), day first (dmy) or year first (ymd), whatever the file "
           "seems to say. Without it the file decides, and where it cannot, slashed dates are month first and "
           "dotted ones day first."),
        QStringLiteral("mdy|dmy|ymd"));
    const QCommandLineOption encoding(
        QStringLiteral("encoding"),
        tr("import: read the file's text in NAME (UTF-8, UTF-16LE, UTF-16BE, Windows-1252, ISO-8859-1; for a "
           "bank's CSV any encoding Qt knows, such as windows-1250) instead of the encoding it seems to be in."),
        QStringLiteral("NAME"));
    const QCommandLineOption allowDuplicates(
        QStringLiteral("allow-duplicates"),
        tr("import: add the records that an earlier import already brought in as well."));
    const QCommandLineOption force(QStringLiteral("force"), tr("backup: replace FILE when it exists."));
    parser.addOption(dateOrder);
    parser.addOption(encoding);
    parser.addOption(allowDuplicates);
    const CsvImportOptions csvOptions;
    csvOptions.addTo(parser);
    const SearchOptions searchOptions;
    const QList<QCommandLineOption> findOptions = { searchOptions.category, searchOptions.place, searchOptions.from,
                                                    searchOptions.to,       searchOptions.minimum, searchOptions.maximum,
                                                    searchOptions.csv };
    for (const QCommandLineOption &option : findOptions)
        parser.addOption(option);
    parser.addOption(force);
    // The budget command reads its own words (a negative amount is a word
    // there, not an option); these two stand here so that the help, the
    // manual page made from it and the shell's completion name them.
    const QCommandLineOption budgetPeriod(QStringLiteral("period"),
                                          tr("budget: the budget's period with set (month without it)."),
                                          QStringLiteral("month|week|year"));
    const QCommandLineOption budgetDate(QStringLiteral("date"),
                                        tr("budget: list the periods that hold this day (today without it)."),
                                        QStringLiteral("yyyy-MM-dd"));
    parser.addOption(budgetPeriod);
    parser.addOption(budgetDate);
    // The rules command reads its own words too (a rule's text may begin
    // with a minus).
    const QCommandLineOption ruleIn(QStringLiteral("in"),
                                    tr("rules: where add's rule looks: the item, the place or both (the default)."),
                                    QStringLiteral("item|place|both"));
    const QCommandLineOption ruleRegex(QStringLiteral("regex"),
                                       tr("rules: add's TEXT is a regular expression, matched in any case."));
    const QCommandLineOption ruleDryRun(QStringLiteral("dry-run"),
                                        tr("rules: apply only counts the entries it would recategorise."));
    parser.addOption(ruleIn);
    parser.addOption(ruleRegex);
    parser.addOption(ruleDryRun);
    const QList<QCommandLineOption> recurringOptions = RecurringCommands::options();
    for (const QCommandLineOption &option : recurringOptions)
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

    if (arguments.size() > 1 && arguments.at(1) == QLatin1String("budget"))
        return budget(arguments.mid(2), out, err, usageError);
    if (arguments.size() > 1 && arguments.at(1) == QLatin1String("rules"))
        return RuleCommands::run(arguments.mid(2), out, err, usageError);
    if (arguments.size() > 1 && arguments.at(1) == QLatin1String("recurring"))
        return RecurringCommands::recurring(arguments.mid(2), out, err, usageError);
    if (arguments.size() > 1 && arguments.at(1) == QLatin1String("post-due"))
        return RecurringCommands::postDue(arguments.mid(2), out, err, usageError);
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
    const QStringList commands = { QStringLiteral("export"),  QStringLiteral("import"), QStringLiteral("backup"),
                                   QStringLiteral("imports"), QStringLiteral("find"),   QStringLiteral("profiles") };
    if (!commands.contains(command))
        return usageError(tr("Unknown command \"%1\".").arg(command));
    if (command != QLatin1String("import")) {
        for (const QCommandLineOption &option : csvOptions.options()) {
            if (parser.isSet(option))
                return usageError(tr("--%1 goes with import only.").arg(option.names().constFirst()));
        }
    }
    for (const QCommandLineOption &option : recurringOptions) {
        if (parser.isSet(option))
            return usageError(tr("--%1 goes with recurring or post-due only.").arg(option.names().constFirst()));
    }
    if (command == QLatin1String("find")) {
        const QString import = QStringLiteral("import");
        return find(parser, positional, searchOptions,
                    { { dateOrder, import }, { encoding, import }, { allowDuplicates, import },
                      { force, QStringLiteral("backup") }, { budgetPeriod, QStringLiteral("budget") },
                      { budgetDate, QStringLiteral("budget") }, { ruleIn, QStringLiteral("rules") },
                      { ruleRegex, QStringLiteral("rules") }, { ruleDryRun, QStringLiteral("rules") } },
                    usageError, out, err);
    }
    for (const QCommandLineOption &option : findOptions) {
        if (parser.isSet(option))
            return usageError(tr("--%1 goes with find only.").arg(option.names().constFirst()));
    }
    if (command == QLatin1String("profiles")) {
        for (const QCommandLineOption &option : { dateOrder, encoding, allowDuplicates, force }) {
            if (parser.isSet(option))
                return usageError(tr("--%1 goes with %2 only.")
                                      .arg(option.names().constFirst(),
                                           option.names().constFirst() == QLatin1String("force")
                                               ? QStringLiteral("backup")
                                               : QStringLiteral("import")));
        }
        return CsvImportOptions::profiles(positional.mid(1), out, err, usageError);
    }
    const bool imports = command == QLatin1String("imports");
    int undoId = 0;
    if (imports) {
        bool isNumber = false;
        if (positional.size() == 3 && positional.at(1) == QLatin1String("undo"))
            undoId = positional.at(2).toInt(&isNumber);
        if (positional.size() != 1 && (!isNumber || undoId <= 0))
            return usageError(tr("imports takes nothing, or undo and the ID of an import."));
    } else if (positional.size() != 2) {
        return usageError(tr("%1 takes one FILE.").arg(command));
    }
    if (parser.isSet(dateOrder) && command != QLatin1String("import"))
        return usageError(tr("--date-order goes with import only."));
    if (parser.isSet(encoding) && command != QLatin1String("import"))
        return usageError(tr("--encoding goes with import only."));
    if (parser.isSet(allowDuplicates) && command != QLatin1String("import"))
        return usageError(tr("--allow-duplicates goes with import only."));
    if (parser.isSet(force) && command != QLatin1String("backup"))
        return usageError(tr("--force goes with backup only."));
    for (const QCommandLineOption &option : { budgetPeriod, budgetDate }) {
        if (parser.isSet(option))
            return usageError(tr("--%1 goes with budget only.").arg(option.names().constFirst()));
    }
    for (const QCommandLineOption &option : { ruleIn, ruleRegex, ruleDryRun }) {
        if (parser.isSet(option))
            return usageError(tr("--%1 goes with rules only.").arg(option.names().constFirst()));
    }
    std::optional<QifFormat::DateOrder> order;
    if (parser.isSet(dateOrder)) {
        const QString value = parser.value(dateOrder);
        for (const QifFormat::DateOrder known :
             { QifFormat::DateOrder::MonthFirst, QifFormat::DateOrder::DayFirst, QifFormat::DateOrder::YearFirst }) {
            if (value == QifFormat::orderName(known))
                order = known;
        }
        if (!order)
            return usageError(tr("--date-order is mdy, dmy or ymd, not \"%1\".").arg(value));
    }
    CsvImportOptions::Request csvRequest;
    if (command == QLatin1String("import")) {
        const QString problem = csvOptions.read(parser, encoding, dateOrder, &csvRequest);
        if (!problem.isEmpty())
            return usageError(problem);
    }
    std::optional<TextEncoding::Kind> textEncoding;
    if (parser.isSet(encoding) && !csvRequest.wanted()) {
        TextEncoding::Kind kind = TextEncoding::Utf8;
        if (!TextEncoding::fromName(parser.value(encoding), &kind))
            return usageError(tr("--encoding is one of %1, not \"%2\".")
                                  .arg(TextEncoding::names().join(QLatin1String(", ")), parser.value(encoding)));
        textEncoding = kind;
    }
    const QString fileName = imports ? QString() : positional.at(1);
    if (command == QLatin1String("export") && !CsvFormat::matches(fileName) && !QifFormat::matches(fileName))
        return usageError(tr("%1 names no .csv or .qif file.").arg(fileName));
    if (command == QLatin1String("import") && !CsvFormat::matches(fileName) && !QifFormat::matches(fileName) &&
        !OfxFormat::matches(fileName))
        return usageError(tr("%1 names no .csv, .qif, .ofx, .qfx or .qbo file.").arg(fileName));

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
    if (command == QLatin1String("export"))
        return exportEntries(store, fileName, out, err);
    if (command == QLatin1String("import"))
        return importEntries(store, fileName, order, textEncoding, csvRequest, parser.isSet(allowDuplicates), out,
                             err);
    if (imports)
        return undoId > 0 ? undoImport(store, undoId, out, err) : listImports(store, out);
    return backUp(store, fileName, parser.isSet(force), out, err);
}
