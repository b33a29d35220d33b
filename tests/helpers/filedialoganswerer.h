// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QFileDialog>
#include <QObject>
#include <QQueue>
#include <QStringList>
#include <QTimer>

// What a test saw of one file dialog.
struct SeenFileDialog
{
    QString title;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
    QStringList nameFilters;
    QString directory;
    QString suggestedName;
    bool hasParent = false;
    bool modal = false;
};

// Answers the program's file dialogs as the MessageBoxAnswerer answers its
// message boxes: queue the answers, then trigger the action. A dialog is
// answered by typing a file name (choosing a name filter first, when
// given) and pressing the dialog's accept button, or by cancelling it. A
// dialog still open after an answer (it asked before replacing a file, and
// was told no) takes the next one. A dialog that comes with nothing queued
// is cancelled and reported in errors().
class FileDialogAnswerer : public QObject
{
    Q_OBJECT

public:
    explicit FileDialogAnswerer(QObject *parent = nullptr);
    ~FileDialogAnswerer() override;

    void choose(const QString &fileName, const QString &nameFilter = QString());
    void cancel();

    const QList<SeenFileDialog> &seen() const;
    QStringList errors() const;

private:
    struct Answer
    {
        bool accept = false;
        QString fileName;
        QString nameFilter;
    };
    void poll();

    QTimer timer;
    QQueue<Answer> queued;
    QList<SeenFileDialog> dialogs;
    QStringList problems;
};
