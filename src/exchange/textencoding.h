// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

// The text encodings that exchange files come in, and how one is told from
// the bytes when the file does not say: a byte-order mark decides; then
// zero bytes in every other position of the first lines mean UTF-16
// without a mark (Windows' "Unicode" text); then valid UTF-8 is UTF-8; and
// everything else is Windows-1252, which reads Latin-1 text the same and
// gives banks' 0x80-0x9F bytes (€, ™, curly quotes) their characters.
class TextEncoding
{
public:
    enum Kind { Utf8, Utf16LittleEndian, Utf16BigEndian, Windows1252, Latin1 };

    // The encoding of `bytes` by the rules above.
    static Kind detect(QByteArrayView bytes);
    // The text of `bytes` in `kind`, a byte-order mark of that encoding
    // left out. Only an encoding that the bytes do not fit (chosen by the
    // user) gives replacement characters.
    static QString decode(QByteArrayView bytes, Kind kind);

    // "UTF-8", "UTF-16LE", "UTF-16BE", "Windows-1252", "ISO-8859-1".
    static QString name(Kind kind);
    // The names above and their usual aliases (utf8, cp1252, latin1, ...),
    // in any case; false for anything else.
    static bool fromName(const QString &name, Kind *kind);
    // Every encoding's name, in the order of Kind.
    static QStringList names();

    // Whether `name` is one of the names above or any other encoding that
    // Qt's text codecs know (with ICU: windows-1250, windows-1257,
    // ISO-8859-13, Shift_JIS, ...).
    static bool isKnown(const QString &name);
    // The name Qt gives that encoding ("cp1250" is "windows-1250"), or the
    // name of Kind for the names above; empty for an unknown one.
    static QString canonicalName(const QString &name);
    // The text of `bytes` in the encoding `name` (see isKnown()), a
    // byte-order mark left out.
    static QString decode(QByteArrayView bytes, const QString &name);
};
