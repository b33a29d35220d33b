// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "fuzzdriver.h"
#include "qifformat.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The QIF reader takes any bytes, in either day and month order, without
// crashing or hanging; and whatever it reads without a problem, written as
// Ledgerly writes QIF and read again, gives the same entries: the same day,
// item, category, amount (bit for bit) and place.

namespace {

QString describe(const Entry &entry)
{
    quint32 price = 0;
    std::memcpy(&price, &entry.Price, sizeof price);
    return QStringLiteral("%1|%2|%3|%4|%5")
        .arg(entry.TransactDateTime.toString(Qt::ISODate), entry.ItemName, entry.CategoryName,
             QString::number(price, 16), entry.LocationText);
}

[[noreturn]] void finding(const QString &what, const QByteArray &written)
{
    std::fprintf(stderr, "%s; written again as:\n%s\n", qPrintable(what),
                 written.toPercentEncoding(" !:/'.,-[]\r\n").constData());
    std::abort();
}

void check(QByteArrayView bytes, QifFormat::DateOrder order)
{
    const EntryFileContents first = QifFormat::read(bytes, order);
    if (!first.isAcceptable())
        return;
    QByteArray written = QifFormat::header();
    for (const EntryFileContents::LineEntry &read : first.entries)
        QifFormat::appendRecord(written, read.entry);
    // Written month first; dates that read both ways read so by default.
    const EntryFileContents second = QifFormat::read(written);
    if (!second.isAcceptable())
        finding(QStringLiteral("what was read is refused once written: ") +
                    second.problemLines().join(QLatin1String("; ")),
                written);
    if (second.entries.size() != first.entries.size() || second.skipped() != 0)
        finding(QStringLiteral("what was read gives other records once written"), written);
    for (qsizetype i = 0; i < first.entries.size(); ++i) {
        const QString before = describe(first.entries.at(i).entry);
        const QString after = describe(second.entries.at(i).entry);
        if (before != after)
            finding(QStringLiteral("entry %1 reads as %2, once written as %3").arg(i).arg(before, after), written);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    check(bytes, QifFormat::DateOrder::MonthFirst);
    check(bytes, QifFormat::DateOrder::DayFirst);
    return 0;
}
