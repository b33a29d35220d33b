// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "backup.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Backup", text);
}

// The moment in the name, for QDateTime: the quoted parts are text.
const QString automaticPattern = QStringLiteral("'ledgerlydatabase-'yyyy-MM-dd-HHmmss'.db'");

// The automatic backups in `directory`, by the moment in their names.
QMap<QDateTime, QString> automaticBackups(const QString &directory)
{
    static const QRegularExpression name(QStringLiteral("^ledgerlydatabase-\\d{4}-\\d{2}-\\d{2}-\\d{6}\\.db$"));
    QMap<QDateTime, QString> backups;
    const QStringList files = QDir(directory).entryList({ QStringLiteral("ledgerlydatabase-*.db") }, QDir::Files);
    for (const QString &file : files) {
        if (!name.match(file).hasMatch())
            continue;
        const QDateTime when = QDateTime::fromString(file, automaticPattern);
        if (when.isValid())
            backups.insert(when, QDir(directory).filePath(file));
    }
    return backups;
}

} // namespace

Backup::Outcome Backup::write(DatabaseManager &store, const QString &fileName, Existing existing,
                              const DatabaseManager::Progress &progress)
{
    Outcome outcome;
    outcome.fileName = fileName;
    const QFileInfo target(fileName);
    if (target.exists() && target.canonicalFilePath() == QFileInfo(store.databaseFileName()).canonicalFilePath()) {
        outcome.failure = tr("%1 is the database itself").arg(fileName);
        return outcome;
    }
    if (target.exists() && existing == Existing::Keep) {
        outcome.failure = tr("%1 already exists").arg(fileName);
        return outcome;
    }

    // The copy is made under a name of its own beside the target and takes
    // the target's name only once complete.
    QTemporaryFile copy(target.absoluteDir().filePath(QStringLiteral(".ledgerly-backup-XXXXXX")));
    if (!copy.open()) {
        outcome.failure = tr("%1 cannot be written: %2").arg(fileName, copy.errorString());
        return outcome;
    }
    copy.close();
    QString reason;
    if (!store.backUpTo(copy.fileName(), progress, &reason)) {
        outcome.failure = tr("%1 cannot be written: %2").arg(fileName, reason);
        return outcome;
    }

    if (existing == Existing::Keep) {
        // QFile::rename() never replaces a file that appeared meanwhile.
        if (!copy.rename(fileName)) {
            outcome.failure = tr("%1 cannot be written: %2").arg(fileName, copy.errorString());
            return outcome;
        }
        // The object now names the backup itself, which must stay.
        copy.setAutoRemove(false);
    } else {
        // rename(2) replaces the old file in one step, so the target is
        // always either the old file or the whole new copy; QFile::rename()
        // would have to remove the old one first.
        if (std::rename(QFile::encodeName(copy.fileName()).constData(), QFile::encodeName(fileName).constData()) != 0) {
            outcome.failure = tr("%1 cannot be written: %2").arg(fileName, QString::fromLocal8Bit(strerror(errno)));
            return outcome;
        }
        copy.setAutoRemove(false);
    }
    outcome.written = true;
    return outcome;
}

QString Backup::automaticDirectory()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(QStringLiteral("backups"));
}

QString Backup::automaticFileName(const QDateTime &when)
{
    return when.toString(automaticPattern);
}

Backup::Outcome Backup::writeAutomatic(DatabaseManager &store, const QString &directory, const QDateTime &now)
{
    Outcome outcome;
    if (!automaticIsDue(directory, now))
        return outcome;

    if (!QDir().mkpath(directory)) {
        outcome.failure = tr("The directory %1 cannot be made.").arg(directory);
        return outcome;
    }
    outcome = write(store, QDir(directory).filePath(automaticFileName(now)), Existing::Keep);
    if (!outcome.written)
        return outcome;

    keepNewestAutomatic(directory);
    return outcome;
}

bool Backup::automaticIsDue(const QString &directory, const QDateTime &now)
{
    const QMap<QDateTime, QString> before = automaticBackups(directory);
    // A backup "from the future" (the clock was set back) does not hold the
    // next one off for days.
    return before.isEmpty() || before.lastKey() > now || before.lastKey().secsTo(now) >= 24 * 60 * 60;
}

void Backup::keepNewestAutomatic(const QString &directory)
{
    const QMap<QDateTime, QString> after = automaticBackups(directory);
    qsizetype surplus = after.size() - kept;
    for (auto backup = after.cbegin(); surplus > 0; ++backup, --surplus)
        QFile::remove(backup.value());
}
