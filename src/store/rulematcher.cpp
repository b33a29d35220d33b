// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "rulematcher.h"

#include "entrysearch.h"

#include <QCoreApplication>

RuleMatcher::RuleMatcher(const QList<Rule> &rules)
{
    compiled.reserve(rules.size());
    for (const Rule &rule : rules) {
        if (!problemOf(rule).isEmpty())
            continue;
        Compiled each { rule.in, rule.how == Rule::How::Regex, QStringMatcher(), QRegularExpression(), rule.category };
        if (each.regex) {
            each.expression = QRegularExpression(rule.text, QRegularExpression::CaseInsensitiveOption);
            each.expression.optimize();
        } else {
            const QString needle = EntrySearch::fold(rule.text);
            // Nothing but accents: it would match every text.
            if (needle.isEmpty())
                continue;
            each.folded.setPattern(needle);
        }
        compiled.append(each);
    }
}

bool RuleMatcher::takesRuleCategory(const QString &category)
{
    return category.isEmpty() || category == Rules::fallbackCategory();
}

QString RuleMatcher::problemOf(const Rule &rule)
{
    if (rule.text.isEmpty())
        return QCoreApplication::translate("RuleMatcher", "the text to look for is empty");
    if (rule.category.trimmed().isEmpty())
        return QCoreApplication::translate("RuleMatcher", "the category is empty");
    if (rule.how == Rule::How::Regex) {
        const QRegularExpression expression(rule.text, QRegularExpression::CaseInsensitiveOption);
        if (!expression.isValid())
            return QCoreApplication::translate("RuleMatcher",
                                               "the regular expression \"%1\" is not valid: %2 at "
                                               "offset %3")
                .arg(rule.text, expression.errorString(), QString::number(expression.patternErrorOffset()));
    }
    return QString();
}

const QString &RuleMatcher::foldOnce(const QString &text)
{
    auto found = folded.constFind(text);
    if (found == folded.constEnd())
        found = folded.insert(text, EntrySearch::fold(text));
    return *found;
}

bool RuleMatcher::matches(const Compiled &rule, const QString &text, const QString &foldedText) const
{
    if (rule.regex)
        return rule.expression.match(text).hasMatch();
    return rule.folded.indexIn(foldedText) >= 0;
}

std::optional<QString> RuleMatcher::categoryOf(const QString &item, const QString &place)
{
    if (compiled.isEmpty())
        return std::nullopt;
    const QString key = item + QChar(0x1f) + place;
    const auto known = answers.constFind(key);
    if (known != answers.constEnd())
        return *known;

    const QString foldedItem = foldOnce(item);
    const QString foldedPlace = foldOnce(place);
    std::optional<QString> answer;
    for (const Compiled &rule : std::as_const(compiled)) {
        const bool inItem = rule.in != Rule::Field::Place && matches(rule, item, foldedItem);
        if (inItem || (rule.in != Rule::Field::Item && matches(rule, place, foldedPlace))) {
            answer = rule.category;
            break;
        }
    }
    answers.insert(key, answer);
    return answer;
}
