// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDialog>
#include <QObject>
#include <QQueue>
#include <QStringList>
#include <QTimer>

#include <functional>

// Answers the program's own modal dialogs (not message boxes, not file
// dialogs): queue one step per dialog expected, then trigger the action.
// When a dialog of the given object name is the modal widget on top, the
// next step runs with it (to read it, change it and press a button that
// closes it). A dialog that arrives with no step queued, or that a step
// leaves open, is rejected and reported in errors(), so a test fails
// instead of hanging.
class DialogAnswerer : public QObject
{
    Q_OBJECT

public:
    using Step = std::function<void(QDialog &)>;

    explicit DialogAnswerer(const QString &objectName, QObject *parent = nullptr);

    void answer(const Step &step);
    int answered() const { return count; }
    QStringList errors() const { return problems; }

private:
    void poll();

    QString objectName;
    QTimer timer;
    QQueue<Step> queued;
    int count = 0;
    bool busy = false;
    QStringList problems;
};
