// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entryfilecontents.h"
#include "textencoding.h"

#include <QByteArrayView>
#include <QString>

#include <optional>

// Bank and credit-card statements in the Open Financial Exchange format
// that banks offer for download (.ofx; Quicken's .qfx and QuickBooks' .qbo
// are the same). Real files mix OFX 1's SGML and OFX 2's XML, so the body
// is read by its tags whatever the header says: an element's text runs to
// the next '<', and any end tag may be missing. Every transaction of a bank
// (STMTRS) or card (CCSTMTRS) statement with a negative TRNAMT is an
// expense of "Others" on the day of its DTPOSTED; income, zero amounts and
// everything outside those statements (investments) are skipped and
// counted. Pure: bytes in, entries out.
class OfxFormat
{
public:
    // Reads a whole file, in `encoding`, or else in the one its header
    // declares (CHARSET, ENCODING, XML's encoding), or else in the one
    // TextEncoding detects. A transaction's entry carries its account and
    // FITID as its source id, when it has a FITID.
    static EntryFileContents read(QByteArrayView bytes, std::optional<TextEncoding::Kind> encoding = std::nullopt);

    // Whether the file name ends in .ofx, .qfx or .qbo, in any case.
    static bool matches(const QString &fileName);
};
