// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QImage>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QQueue>
#include <QRect>
#include <QStringList>
#include <QTest>
#include <QTimer>

// What a test saw of one modal message box.
struct SeenMessageBox
{
    QString text;
    QString title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    bool hasParent = false;
    QMessageBox::StandardButton pressed = QMessageBox::NoButton;
    // The box as it was on screen, and where its text stood in that picture.
    QImage picture;
    QRect textArea;
};

// The program's kinds of message box (see Notice): all parent-less and
// untitled; an information box has no icon and the single button Ok, also
// the default; a warning the same with the warning icon; a confirmation
// Save and Discard, Save the default, and no icon.
enum class BoxKind { Information, Warning, Confirmation };

// Empty when the box has the shape of its kind, otherwise what differs.
QString boxShapeMismatch(const SeenMessageBox &box, BoxKind kind);

#define VERIFY_BOX_SHAPE(box, kind)                                                                                    \
    do {                                                                                                               \
        const QString mismatch = boxShapeMismatch(box, kind);                                                          \
        QVERIFY2(mismatch.isEmpty(), qPrintable(mismatch));                                                            \
    } while (false)

// Answers the program's modal message boxes: queue the buttons to press, then
// trigger the action. Each box that shows is recorded and answered with the
// next queued button. A box that arrives with nothing queued, or without the
// queued button, is closed with its escape or default button and reported in
// errors(), so a test fails instead of hanging.
class MessageBoxAnswerer : public QObject
{
    Q_OBJECT

public:
    explicit MessageBoxAnswerer(QObject *parent = nullptr);
    ~MessageBoxAnswerer() override;

    void answer(QMessageBox::StandardButton button);
    void answer(std::initializer_list<QMessageBox::StandardButton> buttons);

    // Processes events until `count` boxes have been answered in all.
    bool waitForBoxes(int count, int timeoutMs = 5000);

    const QList<SeenMessageBox> &seen() const;
    QStringList texts() const;
    QStringList errors() const;
    int pendingAnswers() const;
    void clear();

private:
    void poll();

    QTimer timer;
    QQueue<QMessageBox::StandardButton> queued;
    QList<SeenMessageBox> boxes;
    QStringList problems;
};
