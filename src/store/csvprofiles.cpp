// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "csvprofiles.h"

#include "databasemanager.h"
#include "statements.h"

#include <QSqlQuery>

CsvProfiles::CsvProfiles(DatabaseManager &store) : store(store) { }

QList<CsvProfiles::Profile> CsvProfiles::all()
{
    QList<Profile> profiles;
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(query, QStringLiteral("SELECT Name, Mapping FROM CsvProfile ORDER BY Name")))
        return profiles;
    while (query->next())
        profiles.append({ query->value(0).toString(), query->value(1).toString() });
    return profiles;
}

std::optional<QString> CsvProfiles::mapping(const QString &name)
{
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(query, QStringLiteral("SELECT Mapping FROM CsvProfile WHERE Name = :name"),
                                     { { QStringLiteral(":name"), name } }) ||
        !query->next())
        return std::nullopt;
    return query->value(0).toString();
}

bool CsvProfiles::save(const QString &name, const QString &mapping)
{
    if (name.trimmed().isEmpty())
        return false;
    return store.statementRunner().execute(
        QStringLiteral("INSERT OR REPLACE INTO CsvProfile (Name, Mapping) VALUES (:name, :mapping)"),
        { { QStringLiteral(":name"), name }, { QStringLiteral(":mapping"), mapping } });
}

bool CsvProfiles::remove(const QString &name)
{
    Statements &statements = store.statementRunner();
    const Bindings bindings = { { QStringLiteral(":name"), name } };
    if (statements.count(QStringLiteral("SELECT COUNT(*) FROM CsvProfile WHERE Name = :name"), bindings) != 1)
        return false;
    return statements.execute(QStringLiteral("DELETE FROM CsvProfile WHERE Name = :name"), bindings);
}
