// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "filedialoganswerer.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

FileDialogAnswerer::FileDialogAnswerer(QObject *parent) : QObject(parent)
{
    timer.setInterval(5);
    connect(&timer, &QTimer::timeout, this, &FileDialogAnswerer::poll);
    timer.start();
}

FileDialogAnswerer::~FileDialogAnswerer() = default;

void FileDialogAnswerer::choose(const QString &fileName, const QString &nameFilter)
{
    queued.enqueue({ true, fileName, nameFilter });
}

void FileDialogAnswerer::cancel()
{
    queued.enqueue({ false, QString(), QString() });
}

const QList<SeenFileDialog> &FileDialogAnswerer::seen() const
{
    return dialogs;
}

QStringList FileDialogAnswerer::errors() const
{
    return problems;
}

void FileDialogAnswerer::poll()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *dialog = qobject_cast<QFileDialog *>(widget);
        if (!dialog || !dialog->isVisible())
            continue;
        // While it asks a question of its own, the question is answered
        // first (by a MessageBoxAnswerer).
        if (QApplication::activeModalWidget() && QApplication::activeModalWidget() != dialog)
            continue;

        SeenFileDialog seenDialog;
        seenDialog.title = dialog->windowTitle();
        seenDialog.acceptMode = dialog->acceptMode();
        seenDialog.nameFilters = dialog->nameFilters();
        seenDialog.directory = dialog->directory().absolutePath();
        const QStringList selected = dialog->selectedFiles();
        seenDialog.suggestedName = selected.isEmpty() ? QString() : QFileInfo(selected.constFirst()).fileName();
        seenDialog.hasParent = dialog->parentWidget() != nullptr;
        seenDialog.modal = dialog->isModal();
        dialogs.append(seenDialog);

        if (queued.isEmpty()) {
            problems.append(QStringLiteral("unexpected file dialog: \"%1\"").arg(seenDialog.title));
            dialog->reject();
            return;
        }
        const Answer answer = queued.dequeue();
        if (!answer.accept) {
            dialog->reject();
            return;
        }
        if (!answer.nameFilter.isEmpty()) {
            // Picked from the list as a user picks it, so that the dialog
            // says which filter was chosen.
            auto *types = dialog->findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
            const int index = types ? types->findText(answer.nameFilter) : -1;
            if (index < 0) {
                problems.append(QStringLiteral("the file dialog offers no filter \"%1\"").arg(answer.nameFilter));
                dialog->reject();
                return;
            }
            types->setCurrentIndex(index);
            emit types->activated(index);
            emit types->textActivated(answer.nameFilter);
        }
        // Typed into the name field and accepted as a user would, so that
        // the dialog adds its suffix and asks before replacing a file.
        auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        auto *buttons = dialog->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"));
        if (!name || !buttons) {
            problems.append(QStringLiteral("the file dialog has no name field or buttons"));
            dialog->reject();
            return;
        }
        name->setText(answer.fileName);
        buttons
            ->button(dialog->acceptMode() == QFileDialog::AcceptSave ? QDialogButtonBox::Save : QDialogButtonBox::Open)
            ->click();
        return;
    }
}
