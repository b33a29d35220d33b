// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "migrations.h"

const QList<Migration> &Migrations::all()
{
    // A new step goes at the end with the next number; a step that has been
    // released is never changed, since files out there carry its tables.
    static const QList<Migration> steps = {
        { 1, QStringLiteral("budgets"),
          { QStringLiteral("CREATE TABLE Budget (CategoryName text PRIMARY KEY NOT NULL, "
                           "Amount real NOT NULL CHECK (Amount > 0 AND Amount <= 9999999.99), "
                           "Period text NOT NULL DEFAULT 'month' CHECK (Period IN ('month', 'week', 'year')))") } },
    };
    return steps;
}

int Migrations::latestVersion()
{
    return all().isEmpty() ? 0 : all().constLast().version;
}
