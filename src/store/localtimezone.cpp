// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "localtimezone.h"

#include <QByteArray>
#include <QtGlobal>

namespace LocalTimeZone {

void readOnce()
{
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", QByteArrayLiteral(":/etc/localtime"));
}

} // namespace LocalTimeZone
