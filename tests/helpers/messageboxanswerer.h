#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QQueue>
#include <QStringList>
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
};

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
