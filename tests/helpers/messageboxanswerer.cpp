#include "messageboxanswerer.h"

#include <QAbstractButton>
#include <QPushButton>
#include <QApplication>
#include <QTest>

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
