// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "textencoding.h"

#include <QStringDecoder>
#include <QUtf8StringView>

namespace {

// Windows-1252's characters for the bytes 0x80-0x9F; the five bytes it
// leaves undefined read as Latin-1 does, as the C1 control of that number.
const char16_t windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

// How many bytes of the start of a file tell UTF-16 without a mark: a few
// lines of text.
const qsizetype utf16Sample = 256;

QString fromUtf16(QByteArrayView bytes, QStringConverter::Encoding encoding)
{
    QStringDecoder decoder(encoding, QStringConverter::Flag::Default);
    return decoder.decode(bytes);
}

// Whether the bytes are UTF-16 throughout: whole units, surrogates in pairs.
bool isValidUtf16(QByteArrayView bytes, QStringConverter::Encoding encoding)
{
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return !decoder.hasError() && bytes.size() % 2 == 0;
}

} // namespace

TextEncoding::Kind TextEncoding::detect(QByteArrayView bytes)
{
    // A mark, or zeros, that the rest of the file does not bear out are
    // bytes that happen to look so.
    if (bytes.startsWith("\xEF\xBB\xBF") && QUtf8StringView(bytes).isValidUtf8())
        return Utf8;
    if (bytes.startsWith("\xFF\xFE") && isValidUtf16(bytes, QStringConverter::Utf16LE))
        return Utf16LittleEndian;
    if (bytes.startsWith("\xFE\xFF") && isValidUtf16(bytes, QStringConverter::Utf16BE))
        return Utf16BigEndian;
    // Text outside Latin-1 (a euro sign) fills both bytes of its unit, so
    // three units in four with a zero on the same side are enough.
    const qsizetype units = qMin(bytes.size(), utf16Sample) / 2;
    if (units > 0) {
        qsizetype highZero = 0;
        qsizetype lowZero = 0;
        for (qsizetype i = 0; i < units; ++i) {
            const bool first = bytes[2 * i] == '\0';
            const bool second = bytes[2 * i + 1] == '\0';
            highZero += second && !first;
            lowZero += first && !second;
        }
        if (highZero * 4 >= units * 3 && isValidUtf16(bytes, QStringConverter::Utf16LE))
            return Utf16LittleEndian;
        if (lowZero * 4 >= units * 3 && isValidUtf16(bytes, QStringConverter::Utf16BE))
            return Utf16BigEndian;
    }
    if (QUtf8StringView(bytes).isValidUtf8())
        return Utf8;
    return Windows1252;
}

QString TextEncoding::decode(QByteArrayView bytes, Kind kind)
{
    switch (kind) {
    case Utf8:
        if (bytes.startsWith("\xEF\xBB\xBF"))
            bytes = bytes.sliced(3);
        return QString::fromUtf8(bytes);
    case Utf16LittleEndian:
        if (bytes.startsWith("\xFF\xFE"))
            bytes = bytes.sliced(2);
        return fromUtf16(bytes, QStringConverter::Utf16LE);
    case Utf16BigEndian:
        if (bytes.startsWith("\xFE\xFF"))
            bytes = bytes.sliced(2);
        return fromUtf16(bytes, QStringConverter::Utf16BE);
    case Latin1:
        return QString::fromLatin1(bytes);
    case Windows1252:
        break;
    }
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const uchar byte = uchar(bytes[i]);
        out[i] = byte >= 0x80 && byte < 0xA0 ? QChar(windows1252High[byte - 0x80]) : QChar(byte);
    }
    return text;
}

QString TextEncoding::name(Kind kind)
{
    return names().at(int(kind));
}

bool TextEncoding::fromName(const QString &name, Kind *kind)
{
    const QString key = name.trimmed().toLower().remove(QLatin1Char('-')).remove(QLatin1Char('_'));
    static const QList<QPair<QStringList, Kind>> aliases = {
        { { QStringLiteral("utf8") }, Utf8 },
        { { QStringLiteral("utf16le"), QStringLiteral("utf16") }, Utf16LittleEndian },
        { { QStringLiteral("utf16be") }, Utf16BigEndian },
        { { QStringLiteral("windows1252"), QStringLiteral("cp1252"), QStringLiteral("1252") }, Windows1252 },
        { { QStringLiteral("iso88591"), QStringLiteral("latin1"), QStringLiteral("88591") }, Latin1 },
    };
    for (const auto &alias : aliases) {
        if (alias.first.contains(key)) {
            *kind = alias.second;
            return true;
        }
    }
    return false;
}

QStringList TextEncoding::names()
{
    return { QStringLiteral("UTF-8"), QStringLiteral("UTF-16LE"), QStringLiteral("UTF-16BE"),
             QStringLiteral("Windows-1252"), QStringLiteral("ISO-8859-1") };
}

bool TextEncoding::isKnown(const QString &name)
{
    return !canonicalName(name).isEmpty();
}

QString TextEncoding::canonicalName(const QString &name)
{
    Kind kind = Utf8;
    if (fromName(name, &kind))
        return TextEncoding::name(kind);
    const QByteArray key = name.trimmed().toLatin1();
    if (key.isEmpty())
        return QString();
    QStringDecoder decoder(key.constData());
    return decoder.isValid() ? QString::fromLatin1(decoder.name()) : QString();
}

QString TextEncoding::decode(QByteArrayView bytes, const QString &name)
{
    Kind kind = Utf8;
    if (fromName(name, &kind))
        return decode(bytes, kind);
    QStringDecoder decoder(name.trimmed().toLatin1().constData(), QStringConverter::Flag::Default);
    if (!decoder.isValid())
        return QString();
    return decoder.decode(bytes);
}
