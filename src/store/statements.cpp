// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "statements.h"

#include "storeerrors.h"

#include <QSqlError>

#include <utility>

Statements::Statements(const QSqlDatabase &connection) : db(connection) { }

Statements::~Statements()
{
    keepPrepared(false);
}

bool Statements::isOpen() const
{
    return db.isOpen();
}

bool Statements::run(std::optional<QSqlQuery> &query, const QString &statement, const Bindings &bindings)
{
    // Checked before any query exists: Qt warns about statements on a closed
    // connection. The query is made here and only here: every QSqlQuery
    // makes a result of the driver, so one made beforehand only to be
    // replaced costs a second.
    if (!db.isOpen() || writeFailed)
        return false;
    QSqlQuery &made = query.emplace(db);
    // Results are read once, front to back; a scrollable query would keep a
    // second copy of every row.
    made.setForwardOnly(true);
    bool executed = false;
    if (bindings.isEmpty()) {
        executed = made.exec(statement);
    } else if (made.prepare(statement)) {
        for (const auto &binding : bindings)
            made.bindValue(binding.first, binding.second);
        executed = made.exec();
    }
    noteFailure(executed, made);
    return executed;
}

bool Statements::runText(std::optional<QSqlQuery> &query, const QString &statement)
{
    // Without bindings run() executes the text as it is.
    return run(query, statement);
}

bool Statements::runText(const QString &statement, QString *failure)
{
    std::optional<QSqlQuery> query;
    if (runText(query, statement))
        return true;
    if (failure)
        *failure = query ? query->lastError().text() : QString();
    return false;
}

QSqlQuery *Statements::bound(std::optional<QSqlQuery> &fresh, const QString &statement, const Bindings &bindings)
{
    if (!db.isOpen() || writeFailed)
        return nullptr;
    QSqlQuery *query = nullptr;
    if (keeping) {
        auto kept = prepared.find(statement);
        if (kept == prepared.end()) {
            QSqlQuery made(db);
            made.setForwardOnly(true);
            if (!made.prepare(statement)) {
                noteFailure(false, made);
                return nullptr;
            }
            kept = prepared.emplace(statement, std::move(made)).first;
        }
        query = &kept->second;
    } else {
        query = &fresh.emplace(db);
        query->setForwardOnly(true);
        if (!query->prepare(statement)) {
            noteFailure(false, *query);
            return nullptr;
        }
    }
    for (const auto &binding : bindings)
        query->bindValue(binding.first, binding.second);
    return query;
}

bool Statements::executeBound(QSqlQuery *query)
{
    if (!query)
        return false;
    const bool executed = query->exec();
    noteFailure(executed, *query);
    return executed;
}

bool Statements::execute(const QString &statement, const Bindings &bindings)
{
    std::optional<QSqlQuery> fresh;
    return executeBound(bound(fresh, statement, bindings));
}

bool Statements::runCount(const QString &statement, const Bindings &bindings, int *count)
{
    std::optional<QSqlQuery> fresh;
    QSqlQuery *query = bound(fresh, statement, bindings);
    const bool executed = executeBound(query);
    *count = executed && query->next() ? query->value(0).toInt() : 0;
    return executed;
}

int Statements::count(const QString &statement, const Bindings &bindings)
{
    int rows = 0;
    runCount(statement, bindings, &rows);
    return rows;
}

int Statements::firstId(const QString &statement, const Bindings &bindings)
{
    std::optional<QSqlQuery> fresh;
    QSqlQuery *query = bound(fresh, statement, bindings);
    if (executeBound(query) && query->next())
        return query->value(0).toInt();
    return 0;
}

QString Statements::firstText(const QString &statement, const Bindings &bindings)
{
    std::optional<QSqlQuery> fresh;
    QSqlQuery *query = bound(fresh, statement, bindings);
    if (executeBound(query) && query->next())
        return query->value(0).toString();
    return QString();
}

bool Statements::firstInts(const QString &statement, const Bindings &bindings, std::initializer_list<int *> columns)
{
    std::optional<QSqlQuery> fresh;
    QSqlQuery *query = bound(fresh, statement, bindings);
    if (!executeBound(query) || !query->next())
        return false;
    int column = 0;
    for (int *value : columns)
        *value = query->value(column++).toInt();
    return true;
}

void Statements::keepPrepared(bool keep)
{
    keeping = keep;
    if (keep)
        return;
    for (auto &kept : prepared)
        kept.second.finish();
    prepared.clear();
}

void Statements::watchWrites()
{
    watching = true;
    writeFailed = false;
    fileFailure.clear();
}

bool Statements::endWatchAndTellFailure()
{
    watching = false;
    return std::exchange(writeFailed, false);
}

void Statements::noteFailure(bool executed, const QSqlQuery &query)
{
    if (!executed && watching && StoreErrors::isFileFailure(query.lastError())) {
        writeFailed = true;
        fileFailure = query.lastError().text();
    }
}
