// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QList>
#include <QString>

#include <optional>

class DatabaseManager;

// The saved ways of reading banks' CSV files, by name, in a table of the
// file's own (CsvProfile): each keeps its mapping as the command line's
// options give it, so that next month's statement reads the same way.
class CsvProfiles
{
public:
    struct Profile
    {
        QString name;
        QString mapping;
    };

    // `store` outlives this object.
    explicit CsvProfiles(DatabaseManager &store);

    // Every profile, by name.
    QList<Profile> all();
    // The mapping of the profile `name`, compared exactly.
    std::optional<QString> mapping(const QString &name);
    // Keeps `mapping` under `name`, replacing what that name kept. False
    // for an empty name or a file that takes no writes.
    bool save(const QString &name, const QString &mapping);
    // False when there is no such profile or it could not be removed.
    bool remove(const QString &name);

private:
    DatabaseManager &store;
};
