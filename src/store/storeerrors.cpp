// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "storeerrors.h"

#include <QSqlError>

#include <sqlite3.h>

namespace {

int primaryCode(const QSqlError &error)
{
    bool isCode = false;
    const int code = error.nativeErrorCode().toInt(&isCode) & 0xff;
    return isCode ? code : -1;
}

} // namespace

bool StoreErrors::isFileFailure(const QSqlError &error)
{
    switch (primaryCode(error)) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_NOMEM:
    case SQLITE_READONLY:
    case SQLITE_INTERRUPT:
    case SQLITE_IOERR:
    case SQLITE_CORRUPT:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
    case SQLITE_PROTOCOL:
    case SQLITE_NOTADB:
        return true;
    default:
        return false;
    }
}

bool StoreErrors::isBusy(const QSqlError &error)
{
    const int code = primaryCode(error);
    return code == SQLITE_BUSY || code == SQLITE_LOCKED;
}
