// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "recurringcommands.h"

#include "budgets.h"
#include "commandline.h"
#include "databasemanager.h"
#include "recurringexpenses.h"

#include <QCoreApplication>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QTextStream>

#include <optional>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("RecurringCommands", text);
}

// The words and options after a command, read by hand.
struct Arguments
{
    QStringList words;
    QHash<QString, QString> values;
    QSet<QString> flags;
    // What does not read, as the usage error tells it.
    QString problem;

    bool has(const QString &name) const { return values.contains(name) || flags.contains(name); }
};

const QStringList valuedOptions = { QStringLiteral("every"), QStringLiteral("from"), QStringLiteral("until"),
                                    QStringLiteral("times"), QStringLiteral("place") };
const QStringList flagOptions = { QStringLiteral("confirm"), QStringLiteral("all") };

Arguments readArguments(const QStringList &arguments)
{
    Arguments read;
    for (int i = 0; i < arguments.size() && read.problem.isEmpty(); ++i) {
        const QString &argument = arguments.at(i);
        if (!argument.startsWith(QLatin1String("--"))) {
            read.words << argument;
            continue;
        }
        QString name = argument.mid(2);
        const qsizetype equals = name.indexOf(QLatin1Char('='));
        std::optional<QString> value;
        if (equals >= 0) {
            value = name.mid(equals + 1);
            name.truncate(equals);
        }
        if (flagOptions.contains(name) && !value) {
            read.flags.insert(name);
        } else if (!valuedOptions.contains(name)) {
            read.problem = tr("Unknown option '%1'.").arg(name);
        } else if (value) {
            read.values.insert(name, *value);
        } else if (i + 1 < arguments.size()) {
            read.values.insert(name, arguments.at(++i));
        } else {
            read.problem = tr("Missing value after '--%1'.").arg(name);
        }
    }
    return read;
}

// The first option of `arguments` that is not among `allowed`, told as
// going with the command that takes it.
QString optionElsewhere(const Arguments &arguments, const QStringList &allowed)
{
    const QList<QPair<QString, QString>> owners = {
        { QStringLiteral("every"), QStringLiteral("recurring add") },
        { QStringLiteral("from"), QStringLiteral("recurring add") },
        { QStringLiteral("times"), QStringLiteral("recurring add") },
        { QStringLiteral("place"), QStringLiteral("recurring add") },
        { QStringLiteral("confirm"), QStringLiteral("recurring add") },
        { QStringLiteral("until"), QStringLiteral("recurring add and post-due") },
        { QStringLiteral("all"), QStringLiteral("post-due") },
    };
    for (const auto &[name, owner] : owners) {
        if (arguments.has(name) && !allowed.contains(name))
            return tr("--%1 goes with %2 only.").arg(name, owner);
    }
    return QString();
}

// A day as yyyy-MM-dd, exactly, and a real one.
std::optional<QDate> readDay(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}$"));
    const QDate day = QDate::fromString(text, Qt::ISODate);
    if (!form.match(text).hasMatch() || !day.isValid())
        return std::nullopt;
    return day;
}

QString dayProblem(const QString &option, const QString &text)
{
    return tr("--%1 takes a day as yyyy-MM-dd, not \"%2\".").arg(option, text);
}

int openFailure(DatabaseManager &store, QTextStream &err)
{
    err << tr("The database %1 cannot be opened: %2").arg(store.databaseFileName(), store.openError()) << '\n';
    return CommandLine::Refused;
}

QString listLine(const RecurringExpense &expense)
{
    const std::optional<qint64> left = expense.left();
    return QStringList({ QString::number(expense.id), expense.item, Budgets::money(expense.amount), expense.category,
                         RecurrenceDates::text(expense.every),
                         expense.isFinished() ? QStringLiteral("-") : expense.next.toString(Qt::ISODate),
                         RecurringExpenses::modeName(expense.mode),
                         left ? QString::number(*left) : QStringLiteral("-") })
        .join(QLatin1Char('\t'));
}

int list(const Arguments &arguments, QTextStream &out, QTextStream &err,
         const RecurringCommands::UsageError &usageError)
{
    const QString elsewhere = optionElsewhere(arguments, {});
    if (!elsewhere.isEmpty())
        return usageError(elsewhere);
    DatabaseManager store(nullptr);
    if (!store.isUsable())
        return openFailure(store, err);
    for (const RecurringExpense &expense : RecurringExpenses(store).all())
        out << listLine(expense) << '\n';
    return CommandLine::Success;
}

int add(const Arguments &arguments, QTextStream &out, QTextStream &err, const RecurringCommands::UsageError &usageError)
{
    const QString elsewhere =
        optionElsewhere(arguments,
                        { QStringLiteral("every"), QStringLiteral("from"), QStringLiteral("until"),
                          QStringLiteral("times"), QStringLiteral("place"), QStringLiteral("confirm") });
    if (!elsewhere.isEmpty())
        return usageError(elsewhere);
    if (arguments.words.size() != 4)
        return usageError(tr("recurring add takes ITEM AMOUNT CATEGORY."));
    if (!arguments.values.contains(QStringLiteral("every")))
        return usageError(tr("recurring add needs --every, such as --every 1m."));
    if (!arguments.values.contains(QStringLiteral("from")))
        return usageError(tr("recurring add needs --from, the first day as yyyy-MM-dd."));

    RecurringExpense expense;
    expense.item = arguments.words.at(1);
    expense.category = arguments.words.at(3);
    expense.place = arguments.values.value(QStringLiteral("place"));
    expense.mode = arguments.flags.contains(QStringLiteral("confirm")) ? PostingMode::Confirm : PostingMode::Auto;

    const QString amountText = arguments.words.at(2);
    static const QRegularExpression number(QStringLiteral("^-?[0-9]+(\\.[0-9]+)?$"));
    if (!number.match(amountText).hasMatch())
        return usageError(tr("AMOUNT is a number such as 950.00, not \"%1\".").arg(amountText));
    expense.amount = amountText.toDouble();
    const QString everyText = arguments.values.value(QStringLiteral("every"));
    const std::optional<Recurrence> every = RecurrenceDates::fromText(everyText);
    if (!every)
        return usageError(tr("--every is a count and d, w, m or y (days, weeks, months, years), such as 1m or 2w, "
                             "not \"%1\".")
                              .arg(everyText));
    expense.every = *every;
    for (const auto &[name, target] : { std::pair(QStringLiteral("from"), &expense.first),
                                        std::pair(QStringLiteral("until"), &expense.end.until) }) {
        if (!arguments.values.contains(name))
            continue;
        const std::optional<QDate> day = readDay(arguments.values.value(name));
        if (!day)
            return usageError(dayProblem(name, arguments.values.value(name)));
        *target = *day;
    }
    std::optional<int> times;
    if (arguments.values.contains(QStringLiteral("times"))) {
        const QString text = arguments.values.value(QStringLiteral("times"));
        static const QRegularExpression count(QStringLiteral("^[0-9]{1,9}$"));
        if (!count.match(text).hasMatch())
            return usageError(tr("--times takes a number of times, such as 12, not \"%1\".").arg(text));
        times = text.toInt();
    }
    if (times && expense.end.until.isValid())
        return usageError(tr("--until and --times do not go together: an expense ends one way."));
    if (expense.end.until.isValid() && expense.end.until < expense.first)
        return usageError(tr("--until is before --from."));

    // What reads but is refused.
    if (times && *times == 0) {
        err << tr("A recurring expense happens at least once, not 0 times.") << '\n';
        return CommandLine::Refused;
    }
    expense.end.times = times.value_or(0);
    if (amountText.section(QLatin1Char('.'), 1).size() > 2) {
        err << tr("%1 is no amount: an amount has at most two decimals.").arg(amountText) << '\n';
        return CommandLine::Refused;
    }
    const QString problem = RecurringExpenses::problem(expense);
    if (!problem.isEmpty()) {
        err << problem << '\n';
        return CommandLine::Refused;
    }

    DatabaseManager store(nullptr);
    if (!store.isUsable())
        return openFailure(store, err);
    QString failure;
    const int id = RecurringExpenses(store).add(expense, &failure);
    if (id <= 0) {
        err << tr("The recurring expense could not be stored: %1").arg(failure) << '\n';
        return CommandLine::Refused;
    }
    out << tr("Recurring expense %1: %2 %3 every %4 from %5")
               .arg(QString::number(id), expense.item, Budgets::money(expense.amount),
                    RecurrenceDates::told(expense.every), expense.first.toString(Qt::ISODate))
        << '\n';
    return CommandLine::Success;
}

int remove(const Arguments &arguments, QTextStream &out, QTextStream &err,
           const RecurringCommands::UsageError &usageError)
{
    const QString elsewhere = optionElsewhere(arguments, {});
    if (!elsewhere.isEmpty())
        return usageError(elsewhere);
    bool isNumber = false;
    const int id = arguments.words.value(1).toInt(&isNumber);
    if (arguments.words.size() != 2 || !isNumber || id <= 0)
        return usageError(tr("recurring remove takes the ID of a recurring expense."));
    DatabaseManager store(nullptr);
    if (!store.isUsable())
        return openFailure(store, err);
    RecurringExpenses recurring(store);
    const std::optional<RecurringExpense> expense = recurring.of(id);
    if (!expense) {
        err << tr("There is no recurring expense %1; \"recurring\" lists them.").arg(id) << '\n';
        return CommandLine::Refused;
    }
    if (!recurring.remove(id)) {
        err << tr("Recurring expense %1 could not be removed.").arg(id) << '\n';
        return CommandLine::Refused;
    }
    out << tr("Removed recurring expense %1 (%2); the entries it posted stay.").arg(QString::number(id), expense->item)
        << '\n';
    return CommandLine::Success;
}

} // namespace

int RecurringCommands::recurring(const QStringList &arguments, QTextStream &out, QTextStream &err,
                                 const UsageError &usageError)
{
    const Arguments read = readArguments(arguments);
    if (!read.problem.isEmpty())
        return usageError(read.problem);
    const QString action = read.words.value(0);
    if (action.isEmpty())
        return list(read, out, err, usageError);
    if (action == QLatin1String("add"))
        return add(read, out, err, usageError);
    if (action == QLatin1String("remove"))
        return remove(read, out, err, usageError);
    return usageError(tr("Unknown recurring command \"%1\".").arg(action));
}

int RecurringCommands::postDue(const QStringList &arguments, QTextStream &out, QTextStream &err,
                               const UsageError &usageError)
{
    const Arguments read = readArguments(arguments);
    if (!read.problem.isEmpty())
        return usageError(read.problem);
    const QString elsewhere = optionElsewhere(read, { QStringLiteral("until"), QStringLiteral("all") });
    if (!elsewhere.isEmpty())
        return usageError(elsewhere);
    if (!read.words.isEmpty())
        return usageError(tr("post-due takes no words, only --until and --all."));
    QDate day = QDate::currentDate();
    if (read.values.contains(QStringLiteral("until"))) {
        const std::optional<QDate> until = readDay(read.values.value(QStringLiteral("until")));
        if (!until)
            return usageError(dayProblem(QStringLiteral("until"), read.values.value(QStringLiteral("until"))));
        day = *until;
    }
    DatabaseManager store(nullptr);
    if (!store.isUsable())
        return openFailure(store, err);
    const RecurringExpenses::Posting posting =
        RecurringExpenses(store).postDue(day, read.flags.contains(QStringLiteral("all")));
    out << postedSummary(int(posting.posted.size())) << '\n';
    if (!posting.failure.isEmpty()) {
        err << tr("Posting stopped: %1").arg(posting.failure) << '\n';
        return CommandLine::Refused;
    }
    return CommandLine::Success;
}

QList<QCommandLineOption> RecurringCommands::options()
{
    return {
        QCommandLineOption(QStringLiteral("every"),
                           tr("recurring: how often, every N days, weeks, months or years: 10d, 2w, 1m, 1y."),
                           QStringLiteral("interval")),
        QCommandLineOption(QStringLiteral("until"),
                           tr("recurring, post-due: the last day of a recurring expense; the day post-due posts up "
                              "to (today without it)."),
                           QStringLiteral("yyyy-MM-dd")),
        QCommandLineOption(QStringLiteral("times"), tr("recurring: the recurring expense ends after N occurrences."),
                           QStringLiteral("N")),
        QCommandLineOption(QStringLiteral("confirm"),
                           tr("recurring: ask before each occurrence is posted (a bill whose amount varies).")),
        QCommandLineOption(QStringLiteral("all"), tr("post-due: post those that ask first as well.")),
    };
}

QString RecurringCommands::postedSummary(int count)
{
    return count == 1 ? tr("Posted 1 entry") : tr("Posted %1 entries").arg(count);
}
