// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "csvmapping.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <utility>

class DatabaseManager;
class QCommandLineParser;
class QTextStream;

// The command line's options for reading a bank's CSV (--map and the
// options that go with it, --profile, --save-profile) and its profiles
// command, which lists and removes saved profiles.
class CsvImportOptions
{
public:
    CsvImportOptions();

    void addTo(QCommandLineParser &parser) const;
    // The options that go with import alone.
    QList<QCommandLineOption> options() const;

    // What the options ask of an import.
    struct Request
    {
        // Given with --map; a profile's is read once the store is open.
        std::optional<CsvMapping> mapping;
        QString profile;
        // --encoding and --date-order given with --profile: they win over
        // the profile's.
        QList<std::pair<QString, QString>> profileOverrides;
        QString saveProfile;
        bool wanted() const { return mapping || !profile.isEmpty(); }
    };
    // Reads the options (with --encoding and --date-order, which also go
    // with QIF and OFX files, from `encoding` and `dateOrder`); a usage
    // error's text when they do not fit together.
    QString read(const QCommandLineParser &parser, const QCommandLineOption &encoding,
                 const QCommandLineOption &dateOrder, Request *request) const;

    // The mapping of the request: its own, or else the saved profile's;
    // nothing, with *failure set, for a profile that is not there.
    static std::optional<CsvMapping> mappingOf(DatabaseManager &store, const Request &request, QString *failure);
    // Keeps the request's mapping as the profile it names; false, with
    // *failure set, when it could not.
    static bool saveProfile(DatabaseManager &store, const Request &request, const CsvMapping &mapping,
                            QString *failure);

    // "profiles" (every profile, NAME<TAB>mapping a line) or "profiles
    // remove NAME"; `words` are the words after "profiles". Returns the exit
    // status.
    static int profiles(const QStringList &words, QTextStream &out, QTextStream &err,
                        const std::function<int(const QString &)> &usageError);

private:
    QCommandLineOption map;
    QCommandLineOption delimiter;
    QCommandLineOption dateFormat;
    QCommandLineOption decimal;
    QCommandLineOption skipLines;
    QCommandLineOption invert;
    QCommandLineOption outMarks;
    QCommandLineOption inMarks;
    QCommandLineOption profile;
    QCommandLineOption saveProfileOption;
};
