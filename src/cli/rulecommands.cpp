// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "rulecommands.h"

#include "commandline.h"
#include "databasemanager.h"
#include "rules.h"

#include <QCoreApplication>
#include <QTextStream>

#include <optional>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("RuleCommands", text);
}

// The words and options of the rules command, read by hand as the budget
// command's are: the TEXT of a rule may begin with a minus. After "--"
// every argument is a word.
struct RuleArguments
{
    QStringList words;
    std::optional<QString> in;
    bool regex = false;
    bool dryRun = false;
    QString problem;
};

RuleArguments readRuleArguments(const QStringList &arguments)
{
    RuleArguments read;
    bool wordsOnly = false;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (wordsOnly || !argument.startsWith(QLatin1String("--"))) {
            read.words << argument;
            continue;
        }
        if (argument == QLatin1String("--")) {
            wordsOnly = true;
            continue;
        }
        QString name = argument.mid(2);
        const qsizetype equals = name.indexOf(QLatin1Char('='));
        QString value;
        if (equals >= 0) {
            value = name.mid(equals + 1);
            name.truncate(equals);
        }
        if (name == QLatin1String("in")) {
            if (equals < 0) {
                if (i + 1 == arguments.size()) {
                    read.problem = tr("Missing value after '--in'.");
                    break;
                }
                value = arguments.at(++i);
            }
            read.in = value;
        } else if (name == QLatin1String("regex") && equals < 0) {
            read.regex = true;
        } else if (name == QLatin1String("dry-run") && equals < 0) {
            read.dryRun = true;
        } else {
            read.problem = tr("Unknown option '%1'.").arg(name);
            break;
        }
    }
    return read;
}

bool readPosition(const QString &text, int *position)
{
    bool isNumber = false;
    *position = text.toInt(&isNumber);
    return isNumber && *position > 0;
}

QString entriesText(int count)
{
    return count == 1 ? tr("1 entry") : tr("%1 entries").arg(count);
}

} // namespace

QString RuleCommands::describe(const Rule &rule)
{
    QString where;
    switch (rule.in) {
    case Rule::Field::Item:
        where = tr("item");
        break;
    case Rule::Field::Place:
        where = tr("place");
        break;
    case Rule::Field::Both:
        where = tr("item or place");
        break;
    }
    return rule.how == Rule::How::Regex ? tr("%1 matching \"%2\" gives %3").arg(where, rule.text, rule.category)
                                        : tr("%1 containing \"%2\" gives %3").arg(where, rule.text, rule.category);
}

int RuleCommands::run(const QStringList &arguments, QTextStream &out, QTextStream &err, const UsageError &usageError)
{
    const RuleArguments read = readRuleArguments(arguments);
    if (!read.problem.isEmpty())
        return usageError(read.problem);
    const QString action = read.words.value(0);
    const QStringList actions = { QString(), QStringLiteral("add"), QStringLiteral("remove"), QStringLiteral("move"),
                                  QStringLiteral("apply") };
    if (!actions.contains(action) || (action.isEmpty() && !read.words.isEmpty()))
        return usageError(tr("Unknown rules command \"%1\".").arg(action));
    const bool add = action == QLatin1String("add");
    if (read.in && !add)
        return usageError(tr("--in goes with rules add only."));
    if (read.regex && !add)
        return usageError(tr("--regex goes with rules add only."));
    if (read.dryRun && action != QLatin1String("apply"))
        return usageError(tr("--dry-run goes with rules apply only."));

    Rule rule;
    int position = 0;
    int to = 0;
    if (add) {
        if (read.words.size() != 3)
            return usageError(tr("rules add takes TEXT CATEGORY."));
        rule.text = read.words.at(1);
        rule.category = read.words.at(2);
        rule.how = read.regex ? Rule::How::Regex : Rule::How::Contains;
        if (read.in) {
            const std::optional<Rule::Field> field = Rule::fieldFromName(*read.in);
            if (!field)
                return usageError(tr("--in is item, place or both, not \"%1\".").arg(*read.in));
            rule.in = *field;
        }
    } else if (action == QLatin1String("remove")) {
        if (read.words.size() != 2 || !readPosition(read.words.at(1), &position))
            return usageError(tr("rules remove takes the number N of a rule."));
    } else if (action == QLatin1String("move")) {
        if (read.words.size() != 3 || !readPosition(read.words.at(1), &position) ||
            !readPosition(read.words.at(2), &to))
            return usageError(tr("rules move takes the number N of a rule and its new POSITION."));
    } else if (action == QLatin1String("apply") && read.words.size() != 1) {
        return usageError(tr("rules apply takes nothing but --dry-run."));
    }

    DatabaseManager store(nullptr);
    if (!store.isUsable()) {
        err << tr("The database %1 cannot be opened: %2").arg(store.databaseFileName(), store.openError()) << '\n';
        return CommandLine::Refused;
    }
    Rules rules(store);
    QString failure;
    if (action.isEmpty()) {
        const QList<Rule> all = rules.all();
        for (qsizetype i = 0; i < all.size(); ++i) {
            const Rule &each = all.at(i);
            out << (i + 1) << '\t' << each.text << '\t' << Rule::fieldName(each.in) << '\t' << Rule::howName(each.how)
                << '\t' << each.category << '\n';
        }
        return CommandLine::Success;
    }
    if (add) {
        position = rules.add(rule, &failure);
        if (position == 0) {
            err << tr("The rule was not added: %1").arg(failure) << '\n';
            return CommandLine::Refused;
        }
        out << tr("Rule %1: %2").arg(QString::number(position), describe(rule)) << '\n';
        return CommandLine::Success;
    }
    if (action == QLatin1String("apply")) {
        const std::optional<int> count = rules.apply(read.dryRun, &failure);
        if (!count) {
            err << tr("No entry was recategorised: %1").arg(failure) << '\n';
            return CommandLine::Refused;
        }
        out << (read.dryRun ? tr("Would recategorise %1") : tr("Recategorised %1")).arg(entriesText(*count)) << '\n';
        return CommandLine::Success;
    }
    const QList<Rule> before = rules.all();
    if (action == QLatin1String("remove")) {
        if (!rules.remove(position, &failure)) {
            err << tr("No rule was removed: %1").arg(failure) << '\n';
            return CommandLine::Refused;
        }
        out << tr("Removed rule %1: %2").arg(QString::number(position), describe(before.at(position - 1))) << '\n';
        return CommandLine::Success;
    }
    if (!rules.move(position, to, &failure)) {
        err << tr("No rule was moved: %1").arg(failure) << '\n';
        return CommandLine::Refused;
    }
    out << tr("Rule %1: %2").arg(QString::number(to), describe(before.at(position - 1))) << '\n';
    return CommandLine::Success;
}
