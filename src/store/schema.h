// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "migrations.h"

#include <QString>

class Statements;
class StoreConnection;

// What the file holds before anything else runs on it: the six tables and
// their default rows, and the tables of later features, added step by step
// (see Migrations) as the version in PRAGMA user_version says they are due.
class Schema
{
public:
    struct Outcome
    {
        // Empty when the file may be used; else why it may not (a file
        // written by a newer Ledgerly).
        QString refusal;
        // Empty when the file takes writes; else SQLite's reason why it
        // does not, or why a step could not bring it up to date. The file
        // is then left exactly as it was, and what it holds can be read.
        QString writeProblem;
    };

    // Brings the file on `connection` up to date: the missing tables and
    // default rows, then each missing step in a transaction of its own.
    // `opened` says whether this connection was opened just now (not
    // shared with a store that already lives): only then is it tried for
    // writing when nothing needed writing.
    static Outcome prepare(StoreConnection &connection, Statements &statements, bool opened);

    // The file's version; -1 when it cannot be read.
    static int version(Statements &statements);
    // Applies, in order, each step of `steps` whose version is above the
    // file's, each in a transaction of its own that also sets the version.
    // False at the first step that fails, with its reason in *failure; that
    // step leaves nothing behind, the steps before it stay.
    static bool upgrade(Statements &statements, const QList<Migration> &steps, QString *failure);

    // The one way a name is added (a category, a mode, a default row):
    // exactly one stored copy counts as present; anything else is an
    // insert, which a unique name refuses if the name is there after all,
    // and which gives a mode name stored twice a third copy, as it always
    // has. The statements bind :id (count) and :name (insert).
    static bool addNameIfMissing(Statements &statements, const QString &name, const QString &countStatement,
                                 const QString &insertStatement);
};
