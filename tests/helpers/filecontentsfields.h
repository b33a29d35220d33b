// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entryfilecontents.h"

#include <QString>
#include <QStringList>

// What an entry that a file reader made carries, as one comparable line:
// "LINE DATE|ITEM|CATEGORY|PRICE|PLACE". Header only: the readers' tests link
// the exchange library themselves.
inline QString fields(const EntryFileContents::LineEntry &read)
{
    const Entry &entry = read.entry;
    return QStringLiteral("%1 %2|%3|%4|%5|%6")
        .arg(read.line)
        .arg(entry.TransactDateTime.toString(Qt::ISODate), entry.ItemName, entry.CategoryName)
        .arg(double(entry.Price), 0, 'g', 9)
        .arg(entry.LocationText);
}

inline QStringList allFields(const EntryFileContents &contents)
{
    QStringList lines;
    for (const EntryFileContents::LineEntry &read : contents.entries)
        lines.append(fields(read));
    return lines;
}
