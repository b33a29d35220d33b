// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "amount.h"
#include "csvformat.h"
#include "csvmapping.h"
#include "databasemanager.h"
#include "fuzzdriver.h"
#include "mappedcsvreader.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The CSV reader takes any bytes without crashing or hanging, and whatever
// it reads without a problem, written out and read again, gives the same
// entries, field for field (numbers bit for bit, dates to the instant).
// The same bytes read as a bank's CSV, through a few mappings, give only
// entries that the store takes (a date, an amount above 0 up to the
// largest, an item, a place and a category); and a mapping read from the
// bytes as text, once written, reads back as the same mapping.

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

// The mappings a bank's CSV is read through here: by names, by numbers
// with debit and credit, and by names with a direction column and a
// date format.
const char *const mappings[] = {
    "--map date=Date,item=Payee,amount=Amount",
    "--map date=1,item=2,place=3,debit=4,credit=5 --skip-lines 0",
    "--map date=Buchungstag,item=Verwendungszweck,place=Buchungstag,amount=Betrag,direction=4 --in-marks CR "
    "--date-format dd.MM.yy --decimal comma",
    "--map date=Date,place=2,category=Category,amount=3 --invert --delimiter ';' --date-order dmy",
};

void readMapped(QByteArrayView bytes)
{
    for (const char *text : mappings) {
        const std::optional<CsvMapping> mapping = CsvMapping::fromText(QString::fromLatin1(text));
        if (!mapping)
            std::abort();
        MappedCsvReader::Layout layout;
        const EntryFileContents contents = MappedCsvReader::read(bytes, *mapping, &layout, 20);
        if (layout.rows.size() > 20)
            finding("the layout holds more rows than asked for", QByteArray(text));
        if (!contents.isAcceptable())
            continue;
        for (const EntryFileContents::LineEntry &read : contents.entries) {
            const Entry &entry = read.entry;
            if (!entry.TransactDateTime.isValid() || !(entry.Price > 0.0f) ||
                double(entry.Price) > Amount::largest + 0.01 || entry.ItemName.isEmpty() ||
                entry.LocationText.isEmpty() || entry.CategoryName.isEmpty() || read.line < 1)
                finding(qPrintable(QStringLiteral("a mapped entry the store would not take: ") + describe(entry)),
                        QByteArray(text));
        }
    }
}

void readMappingText(QByteArrayView bytes)
{
    const std::optional<CsvMapping> mapping = CsvMapping::fromText(QString::fromUtf8(bytes));
    if (!mapping)
        return;
    const std::optional<CsvMapping> again = CsvMapping::fromText(mapping->text());
    if (!again || *again != *mapping)
        finding("a mapping written as text reads back otherwise", mapping->text().toUtf8());
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
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    readMapped(bytes);
    readMappingText(bytes);
    const EntryFileContents first = CsvFormat::read(bytes);
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
