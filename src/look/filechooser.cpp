// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "filechooser.h"

#include <QFileInfo>

QString FileChooser::choose(QFileDialog::AcceptMode mode, const QString &title, const QStringList &nameFilters,
                            const QString &suggested)
{
    QFileDialog dialog(nullptr, title);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setNameFilters(nameFilters);
    dialog.setDirectory(QFileInfo(suggested).absolutePath());
    if (mode == QFileDialog::AcceptSave) {
        // A name typed without its suffix gets that of the chosen filter
        // ("*.csv" gives csv); the dialog asks before replacing a file.
        const auto suffixOf = [](const QString &filter) {
            const qsizetype star = filter.indexOf(QLatin1String("*."));
            return star < 0 ? QString()
                            : filter.mid(star + 2).section(QLatin1Char(')'), 0, 0).section(QLatin1Char(' '), 0, 0);
        };
        dialog.setDefaultSuffix(suffixOf(nameFilters.value(0)));
        QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog,
                [&dialog, suffixOf](const QString &filter) { dialog.setDefaultSuffix(suffixOf(filter)); });
        dialog.selectFile(QFileInfo(suggested).fileName());
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().constFirst();
}
