// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "amount.h"
#include "fuzzdriver.h"
#include "ofxformat.h"

#include <QByteArrayView>
#include <QString>

#include <cstdio>
#include <cstdlib>

// The OFX reader takes any bytes, in the encoding they tell and in each one
// a user may choose, without crashing or hanging; whatever it reads without
// a problem is an expense that Ledgerly can store: a day at midnight, a
// price above 0 and at most the largest amount, an item, and no character
// that the file did not hold.

namespace {

[[noreturn]] void finding(const QString &what)
{
    std::fprintf(stderr, "%s\n", qPrintable(what));
    std::abort();
}

void check(QByteArrayView bytes, std::optional<TextEncoding::Kind> encoding)
{
    const EntryFileContents contents = OfxFormat::read(bytes, encoding);
    if (!contents.isAcceptable()) {
        for (const EntryFileContents::Problem &problem : contents.problems) {
            if (problem.line < 1)
                finding(QStringLiteral("a problem without its line: ") + problem.text);
        }
        return;
    }
    for (const EntryFileContents::LineEntry &read : contents.entries) {
        const Entry &entry = read.entry;
        if (!entry.TransactDateTime.isValid() || entry.TransactDateTime.time() != QTime(0, 0))
            finding(QStringLiteral("an entry of line %1 is not at midnight of a day").arg(read.line));
        if (!(entry.Price > 0.0f) || double(entry.Price) > Amount::largest + 0.01)
            finding(QStringLiteral("an entry of line %1 has the price %2").arg(read.line).arg(double(entry.Price)));
        if (entry.ItemName.isEmpty() || entry.CategoryName != QLatin1String("Others"))
            finding(QStringLiteral("an entry of line %1 has no item or another category").arg(read.line));
        if (!encoding && (entry.ItemName.contains(QChar::ReplacementCharacter) ||
                          entry.LocationText.contains(QChar::ReplacementCharacter)) &&
            !bytes.contains("\xEF\xBF\xBD") && !bytes.contains("\xFD\xFF") && !bytes.contains("\xFF\xFD"))
            finding(QStringLiteral("an entry of line %1 holds a replacement character").arg(read.line));
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
    check(bytes, std::nullopt);
    check(bytes, TextEncoding::Utf16LittleEndian);
    check(bytes, TextEncoding::Windows1252);
    return 0;
}
