// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "rules.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringMatcher>

#include <optional>

// Finds the first of a list of rules that an entry's item and place match.
// Texts are compared as finding entries compares them (EntrySearch::fold()):
// "cafe" matches "Café". A rule that cannot be used never matches.
class RuleMatcher
{
public:
    explicit RuleMatcher(const QList<Rule> &rules);

    bool isEmpty() const { return compiled.isEmpty(); }

    // The category of the first rule that matches, if any.
    std::optional<QString> categoryOf(const QString &item, const QString &place);

    // Whether an entry of `category` is one the rules may give a category:
    // one without any, or in "Others". A category that a file or the user
    // gave is never overwritten.
    static bool takesRuleCategory(const QString &category);

    // Empty when `rule` can be used; else why not: an empty text or
    // category, or Qt's reason for a regular expression it cannot read.
    static QString problemOf(const Rule &rule);

private:
    struct Compiled
    {
        Rule::Field in;
        bool regex;
        QStringMatcher folded;
        QRegularExpression expression;
        QString category;
    };
    bool matches(const Compiled &rule, const QString &text, const QString &foldedText) const;
    const QString &foldOnce(const QString &text);

    QList<Compiled> compiled;
    // Entries repeat a few hundred payees: each text is folded once, and
    // each pair of texts matched once.
    QHash<QString, QString> folded;
    QHash<QString, std::optional<QString>> answers;
};
