// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "fuzzdriver.h"
#include "storageform.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The reader of stored date texts promises to read every text exactly as
// Qt's general ISO 8601 parser does, its quick path for the file's own form
// included. Any input on which the two disagree, in validity, in the date
// and time read, in the kind of time or in the instant, is a finding. So is
// any on which the file's own form is read differently from the bytes as
// SQLite holds them (UTF-8) and from the text made of them.

namespace {

QString describe(const QDateTime &when)
{
    if (!when.isValid())
        return QStringLiteral("invalid");
    return QStringLiteral("%1 %2 spec %3 offset %4 instant %5")
        .arg(when.date().toString(Qt::ISODate), when.time().toString(QStringLiteral("HH:mm:ss.zzz")))
        .arg(int(when.timeSpec()))
        .arg(when.offsetFromUtc())
        .arg(when.toMSecsSinceEpoch());
}

void check(const QString &text)
{
    const QString read = describe(StorageForm::readDateTime(text));
    const QString general = describe(QDateTime::fromString(text, Qt::ISODate));
    if (read == general)
        return;
    std::fprintf(stderr, "The stored date text \"%s\" reads as %s, Qt's ISO parser reads %s\n",
                 text.toUtf8().toPercentEncoding(" -:.+T").constData(), qPrintable(read), qPrintable(general));
    std::abort();
}

void checkOwnForm(const QByteArray &utf8)
{
    QDate fromBytes;
    QTime timeFromBytes;
    QDate fromText;
    QTime timeFromText;
    const QString text = QString::fromUtf8(utf8);
    const bool readBytes = StorageForm::readOwnForm(QByteArrayView(utf8), &fromBytes, &timeFromBytes);
    const bool readText = StorageForm::readOwnForm(QStringView(text), &fromText, &timeFromText);
    // The text the bytes make may differ from them only where they are no
    // UTF-8, and then in no digit and no separator: both say no alike.
    if (readBytes == readText && (!readBytes || (fromBytes == fromText && timeFromBytes == timeFromText))) {
        // And what the own form reads is what the whole reader reads.
        if (!readText || StorageForm::readDateTime(text) == QDateTime(fromText, timeFromText))
            return;
    }
    std::fprintf(stderr, "The stored bytes \"%s\" read as the file's own form %d %s %s from the bytes, %d %s %s "
                 "from their text\n",
                 utf8.toPercentEncoding(" -:.+T").constData(), int(readBytes),
                 qPrintable(fromBytes.toString(Qt::ISODate)), qPrintable(timeFromBytes.toString()), int(readText),
                 qPrintable(fromText.toString(Qt::ISODate)), qPrintable(timeFromText.toString()));
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Local times are where the two could part: by default, a zone whose
    // clocks have jumped at midnight, so that some days have no 00:00.
    if (qEnvironmentVariableIsEmpty("TZ"))
        qputenv("TZ", "America/Santiago");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // The bytes as UTF-8, and as UTF-16 code units, lone surrogates and all.
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    check(QString::fromUtf8(bytes));
    checkOwnForm(bytes);
    QString units(qsizetype(size / 2), Qt::Uninitialized);
    if (!units.isEmpty())
        std::memcpy(units.data(), data, size_t(units.size()) * sizeof(QChar));
    check(units);
    return 0;
}
