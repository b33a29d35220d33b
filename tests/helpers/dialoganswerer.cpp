// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "dialoganswerer.h"

#include <QApplication>

DialogAnswerer::DialogAnswerer(const QString &objectName, QObject *parent) : QObject(parent), objectName(objectName)
{
    timer.setInterval(5);
    connect(&timer, &QTimer::timeout, this, &DialogAnswerer::poll);
    timer.start();
}

void DialogAnswerer::answer(const Step &step)
{
    queued.enqueue(step);
}

void DialogAnswerer::poll()
{
    // A step may open boxes of its own, whose event loops call in here.
    if (busy)
        return;
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (!dialog || dialog->objectName() != objectName || !dialog->isVisible())
        return;
    busy = true;
    ++count;
    if (queued.isEmpty()) {
        problems.append(QStringLiteral("%1 showed with no step queued").arg(objectName));
        dialog->reject();
    } else {
        queued.dequeue()(*dialog);
        if (dialog->isVisible()) {
            problems.append(QStringLiteral("a step left %1 open").arg(objectName));
            dialog->reject();
        }
    }
    busy = false;
}
