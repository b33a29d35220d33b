// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "csvformat.h"
#include "databasemanager.h"
#include "fuzzdriver.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The CSV reader takes any bytes without crashing or hanging, and whatever
// it reads without a problem, written out and read again, gives the same
// entries, field for field (numbers bit for bit, dates to the instant).

namespace {

QString bits(float value)
{
    quint32 pattern = 0;
    std::memcpy(&pattern, &value, sizeof pattern);
    return QString::number(pattern, 16);
}

QString describe(const Entry &entry)
{
    return QStringLiteral("%1 (%2)|%3|%4|%5|%6|%7|%8|%9")
        .arg(entry.TransactDateTime.toString(Qt::ISODate))
        .arg(entry.TransactDateTime.toMSecsSinceEpoch())
        .arg(entry.ItemName, entry.CategoryName, bits(entry.Price), entry.LocationText,
             entry.EnableGeoLoc ? QStringLiteral("true") : QStringLiteral("false"), bits(entry.GeoLocLongit),
             bits(entry.GeoLocLatit));
}

[[noreturn]] void finding(const char *what, const QByteArray &written)
{
    std::fprintf(stderr, "%s; written again as:\n%s\n", what, written.toPercentEncoding(" ,\"'=+-@:.\r\n").constData());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // A zone whose clocks have jumped at midnight, so that some days start
    // at one o'clock.
    if (qEnvironmentVariableIsEmpty("TZ"))
        qputenv("TZ", "America/Santiago");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const EntryFileContents first =
        CsvFormat::read(QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!first.isAcceptable())
        return 0;
    QByteArray written = CsvFormat::header();
    for (const EntryFileContents::LineEntry &read : first.entries)
        CsvFormat::appendLine(written, read.entry);
    const EntryFileContents second = CsvFormat::read(written);
    if (!second.isAcceptable())
        finding(qPrintable(QStringLiteral("what was read is refused once written: ") +
                           second.problemLines().join(QLatin1String("; "))),
                written);
    if (second.entries.size() != first.entries.size())
        finding("what was read gives another number of entries once written", written);
    for (qsizetype i = 0; i < first.entries.size(); ++i) {
        const QString before = describe(first.entries.at(i).entry);
        const QString after = describe(second.entries.at(i).entry);
        if (before != after)
            finding(qPrintable(QStringLiteral("entry %1 reads as %2, once written as %3").arg(i).arg(before, after)),
                    written);
    }
    return 0;
}
