// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "messageboxanswerer.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QApplication>
#include <QTest>

QString boxShapeMismatch(const SeenMessageBox &box, BoxKind kind)
{
    const bool confirmation = kind == BoxKind::Confirmation;
    const QMessageBox::StandardButtons buttons =
        confirmation ? QMessageBox::Save | QMessageBox::Discard : QMessageBox::StandardButtons(QMessageBox::Ok);
    const QMessageBox::StandardButton defaultButton = confirmation ? QMessageBox::Save : QMessageBox::Ok;
    const QMessageBox::Icon icon = kind == BoxKind::Warning ? QMessageBox::Warning : QMessageBox::NoIcon;

    QStringList differences;
    if (box.buttons != buttons)
        differences.append(QStringLiteral("buttons %1 instead of %2").arg(box.buttons.toInt()).arg(buttons.toInt()));
    if (box.defaultButton != defaultButton)
        differences.append(QStringLiteral("default button %1 instead of %2").arg(box.defaultButton).arg(defaultButton));
    if (box.icon != icon)
        differences.append(QStringLiteral("icon %1 instead of %2").arg(box.icon).arg(icon));
    if (!box.title.isEmpty())
        differences.append(QStringLiteral("title \"%1\"").arg(box.title));
    if (box.hasParent)
        differences.append(QStringLiteral("a parent"));
    if (differences.isEmpty())
        return QString();
    return QStringLiteral("box \"%1\": %2").arg(box.text, differences.join(QStringLiteral(", ")));
}

MessageBoxAnswerer::MessageBoxAnswerer(QObject *parent) : QObject(parent)
{
    timer.setInterval(5);
    connect(&timer, &QTimer::timeout, this, &MessageBoxAnswerer::poll);
    timer.start();
}

MessageBoxAnswerer::~MessageBoxAnswerer() = default;

void MessageBoxAnswerer::answer(QMessageBox::StandardButton button)
{
    queued.enqueue(button);
}

void MessageBoxAnswerer::answer(std::initializer_list<QMessageBox::StandardButton> buttons)
{
    for (QMessageBox::StandardButton button : buttons)
        queued.enqueue(button);
}

bool MessageBoxAnswerer::waitForBoxes(int count, int timeoutMs)
{
    return QTest::qWaitFor([&] { return boxes.size() >= count; }, timeoutMs);
}

const QList<SeenMessageBox> &MessageBoxAnswerer::seen() const
{
    return boxes;
}

QStringList MessageBoxAnswerer::texts() const
{
    QStringList result;
    for (const SeenMessageBox &box : boxes)
        result.append(box.text);
    return result;
}

QStringList MessageBoxAnswerer::errors() const
{
    return problems;
}

int MessageBoxAnswerer::pendingAnswers() const
{
    return queued.size();
}

void MessageBoxAnswerer::clear()
{
    boxes.clear();
    problems.clear();
    queued.clear();
}

void MessageBoxAnswerer::poll()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        if (!box || !box->isVisible())
            continue;

        SeenMessageBox seenBox;
        seenBox.text = box->text();
        seenBox.title = box->windowTitle();
        seenBox.icon = box->icon();
        seenBox.buttons = box->standardButtons();
        seenBox.defaultButton =
            box->defaultButton() ? box->standardButton(box->defaultButton()) : QMessageBox::NoButton;
        seenBox.hasParent = box->parentWidget() != nullptr;
        seenBox.picture = box->grab().toImage();
        const QList<QLabel *> labels = box->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            if (label->isVisible() && label->text() == seenBox.text)
                seenBox.textArea = QRect(label->mapTo(box, QPoint(0, 0)), label->size());
        }

        QAbstractButton *toPress = nullptr;
        if (queued.isEmpty()) {
            problems.append(QStringLiteral("unexpected message box: \"%1\"").arg(seenBox.text));
        } else {
            const QMessageBox::StandardButton wanted = queued.dequeue();
            toPress = box->button(wanted);
            if (!toPress)
                problems.append(QStringLiteral("message box \"%1\" has no button %2").arg(seenBox.text).arg(wanted));
        }
        if (!toPress)
            toPress = box->escapeButton() ? box->escapeButton() : box->defaultButton();
        if (!toPress && !box->buttons().isEmpty())
            toPress = box->buttons().constFirst();

        seenBox.pressed = toPress ? box->standardButton(toPress) : QMessageBox::NoButton;
        boxes.append(seenBox);
        if (toPress)
            toPress->click();
        else
            box->done(QMessageBox::Cancel);
        return; // one box per poll: the click may have changed the widget list
    }
}
