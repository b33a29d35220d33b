// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entryfilecontents.h"

#include <QCoreApplication>
#include <QUtf8StringView>

int EntryFileContents::skipped() const
{
    return skippedIncome + skippedTransfers + skippedZeroAmounts + skippedDuplicates + skippedOtherSections +
        skippedNotTransactions;
}

void EntryFileContents::addProblem(int line, const QString &text)
{
    problems.append({ line, text });
}

bool EntryFileContents::acceptText(QByteArrayView bytes, bool utf8Only)
{
    const qsizetype nul = bytes.indexOf('\0');
    if (nul >= 0) {
        addProblem(lineAt(bytes, nul),
                   QCoreApplication::translate("EntryFileContents", "a NUL byte: this is not a text file"));
        return false;
    }
    if (!utf8Only || QUtf8StringView(bytes).isValidUtf8())
        return true;
    // Which line holds the first byte that is not UTF-8: lines end in
    // ASCII, so each can be checked on its own.
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', start);
        if (end < 0)
            end = bytes.size();
        if (!QUtf8StringView(bytes.sliced(start, end - start)).isValidUtf8())
            break;
        start = end + 1;
    }
    addProblem(lineAt(bytes, start), QCoreApplication::translate("EntryFileContents", "the text is not UTF-8"));
    return false;
}

int EntryFileContents::lineAt(QByteArrayView bytes, qsizetype offset)
{
    int line = 1;
    for (qsizetype i = 0; i < offset && i < bytes.size(); ++i) {
        if (bytes[i] == '\n' || (bytes[i] == '\r' && (i + 1 >= bytes.size() || bytes[i + 1] != '\n')))
            ++line;
    }
    return line;
}

QStringList EntryFileContents::skippedReasons() const
{
    QStringList reasons;
    if (skippedIncome > 0)
        reasons.append(QCoreApplication::translate("EntryFileContents", "income %1").arg(skippedIncome));
    if (skippedTransfers > 0)
        reasons.append(QCoreApplication::translate("EntryFileContents", "transfers %1").arg(skippedTransfers));
    if (skippedZeroAmounts > 0)
        reasons.append(QCoreApplication::translate("EntryFileContents", "zero amounts %1").arg(skippedZeroAmounts));
    if (skippedDuplicates > 0)
        reasons.append(
            QCoreApplication::translate("EntryFileContents", "already imported %1").arg(skippedDuplicates));
    if (skippedOtherSections > 0)
        reasons.append(QCoreApplication::translate("EntryFileContents", "other sections %1").arg(skippedOtherSections));
    if (skippedNotTransactions > 0)
        reasons.append(
            QCoreApplication::translate("EntryFileContents", "not transactions %1").arg(skippedNotTransactions));
    return reasons;
}

QString EntryFileContents::skippedSummary() const
{
    const QStringList reasons = skippedReasons();
    QString summary = QCoreApplication::translate("EntryFileContents", "skipped %1").arg(skipped());
    if (!reasons.isEmpty())
        summary += QStringLiteral(" (%1)").arg(reasons.join(QStringLiteral(", ")));
    return summary;
}

QStringList EntryFileContents::problemLines(const QString &fileName, int limit) const
{
    QStringList lines;
    for (const Problem &problem : problems) {
        if (lines.size() == limit)
            break;
        if (problem.line == 0)
            lines.append(problem.text);
        else if (fileName.isEmpty())
            lines.append(QCoreApplication::translate("EntryFileContents", "line %1: %2")
                             .arg(QString::number(problem.line), problem.text));
        else
            lines.append(QStringLiteral("%1:%2: %3").arg(fileName, QString::number(problem.line), problem.text));
    }
    const qsizetype rest = problems.size() - lines.size();
    if (rest > 0)
        lines.append(rest == 1 ? QCoreApplication::translate("EntryFileContents", "and 1 more problem")
                               : QCoreApplication::translate("EntryFileContents", "and %1 more problems").arg(rest));
    return lines;
}
