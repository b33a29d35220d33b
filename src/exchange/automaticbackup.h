// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "backup.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class SqliteBackup;
class QTemporaryFile;

// The daily backup at start-up, made without ever holding the program up:
// on a read-only connection of its own, a step at a time from the event
// loop, so that the window stays responsive even while another program
// holds the file (the copy then waits between steps, up to its limit).
// The rules are Backup::writeAutomatic()'s; finished() tells the outcome
// once, and deleting the object stops the copy and leaves no file behind.
class AutomaticBackup : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(AutomaticBackup)

public:
    AutomaticBackup(const QString &databaseFile, const QString &directory,
                    const QDateTime &now = QDateTime::currentDateTime(), QObject *parent = nullptr);
    ~AutomaticBackup() override;

    // Starts the copy from the event loop: nothing happens before it runs.
    void start();
    bool isRunning() const;

signals:
    // Outcome::written is false without a failure when no backup was due.
    void finished(const Backup::Outcome &outcome);

private:
    void begin();
    void step();
    void finish(const QString &failure);

    QString databaseFile;
    QString directory;
    QDateTime now;
    QString target;
    std::unique_ptr<QTemporaryFile> copy;
    std::unique_ptr<SqliteBackup> backup;
    QTimer next;
    bool running = false;
};
