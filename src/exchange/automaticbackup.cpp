// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "automaticbackup.h"

#include "sqlitebackup.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryFile>

namespace {

// How long the copy waits before it asks a busy file again.
const int busyRetry = 20;

} // namespace

AutomaticBackup::AutomaticBackup(const QString &databaseFile, const QString &directory, const QDateTime &now,
                                 QObject *parent)
    : QObject(parent), databaseFile(databaseFile), directory(directory), now(now)
{
    next.setSingleShot(true);
    connect(&next, &QTimer::timeout, this, &AutomaticBackup::step);
}

AutomaticBackup::~AutomaticBackup() = default;

void AutomaticBackup::start()
{
    running = true;
    QTimer::singleShot(0, this, &AutomaticBackup::begin);
}

bool AutomaticBackup::isRunning() const
{
    return running;
}

void AutomaticBackup::begin()
{
    if (!Backup::automaticIsDue(directory, now)) {
        running = false;
        emit finished(Backup::Outcome());
        return;
    }
    if (!QDir().mkpath(directory)) {
        finish(QCoreApplication::translate("Backup", "The directory %1 cannot be made.").arg(directory));
        return;
    }
    target = QDir(directory).filePath(Backup::automaticFileName(now));
    // The copy takes the backup's name only once complete.
    copy = std::make_unique<QTemporaryFile>(QDir(directory).filePath(QStringLiteral(".ledgerly-backup-XXXXXX")));
    if (!copy->open()) {
        finish(QCoreApplication::translate("Backup", "%1 cannot be written: %2").arg(target, copy->errorString()));
        return;
    }
    copy->close();
    backup = std::make_unique<SqliteBackup>(databaseFile, copy->fileName());
    step();
}

void AutomaticBackup::step()
{
    switch (backup->step()) {
    case SqliteBackup::Step::More:
        next.start(0);
        return;
    case SqliteBackup::Step::Busy:
        next.start(busyRetry);
        return;
    case SqliteBackup::Step::Failed:
        finish(QCoreApplication::translate("Backup", "%1 cannot be written: %2").arg(target, backup->failure()));
        return;
    case SqliteBackup::Step::Done:
        break;
    }
    backup.reset();
    // QFile::rename() never replaces a file that appeared meanwhile.
    if (!copy->rename(target)) {
        finish(QCoreApplication::translate("Backup", "%1 cannot be written: %2").arg(target, copy->errorString()));
        return;
    }
    copy->setAutoRemove(false);
    Backup::keepNewestAutomatic(directory);
    finish(QString());
}

void AutomaticBackup::finish(const QString &failure)
{
    backup.reset();
    copy.reset();
    running = false;
    Backup::Outcome outcome;
    outcome.written = failure.isEmpty();
    outcome.fileName = target;
    outcome.failure = failure;
    emit finished(outcome);
}
