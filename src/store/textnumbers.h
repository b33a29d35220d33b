// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QString>
#include <QStringList>

#include <string_view>
#include <unordered_map>

// Numbers for texts that repeat over many rows: the names of items,
// categories and places of ten years of entries, a few hundred texts over
// tens of thousands of rows. The first text given gets 0, the next new one
// 1, and so on.
//
// Not a QHash: Qt hashes a string with a seeded SipHash here, and a lookup
// of a short name costs about ten times what the standard library's hash of
// the same UTF-16 does; the lists of ten years look up several names per
// row. Nothing depends on the order of the keys, and the texts are the
// user's own, not an attacker's.
class TextNumbers
{
public:
    // The number of `text`, new ones added.
    int numberOf(const QString &text);
    // The text of `number`, which numberOf() gave.
    const QString &text(int number) const { return texts.at(number); }
    const QStringList &all() const { return texts; }
    int size() const { return int(texts.size()); }

    void clear();
    // Keeps the texts but no longer finds them: for when no new text is to
    // come.
    void forgetLookups();

private:
    // The keys look into the texts' own characters, which stay where they
    // are as long as the list holds the texts, however the list grows. A
    // copy's keys look into the same characters, which its own list holds
    // too (shared, and never changed), so copying is copying both.
    QStringList texts;
    std::unordered_map<std::u16string_view, int> numbers;
};
