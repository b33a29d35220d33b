// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "pagewalk.h"

#include "mainwindowfixture.h"
#include "widgettest.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QCheckBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QStyleOptionButton>
#include <QStyleOptionGroupBox>
#include <QStyleOptionTab>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextDocument>
#include <QtTest>

namespace {

// The style options that the widgets build for themselves, reached through
// their (protected) members.
struct TabBarOptions : QTabBar
{
    static void of(const QTabBar *bar, QStyleOptionTab *option, int tab)
    {
        (bar->*(&TabBarOptions::initStyleOption))(option, tab);
    }
};
struct PushButtonOptions : QPushButton
{
    static void of(const QPushButton *button, QStyleOptionButton *option)
    {
        (button->*(&PushButtonOptions::initStyleOption))(option);
    }
};
struct CheckBoxOptions : QCheckBox
{
    static void of(const QCheckBox *box, QStyleOptionButton *option)
    {
        (box->*(&CheckBoxOptions::initStyleOption))(option);
    }
};
struct GroupBoxOptions : QGroupBox
{
    static void of(const QGroupBox *box, QStyleOptionGroupBox *option)
    {
        (box->*(&GroupBoxOptions::initStyleOption))(option);
    }
};

// The width of a one-line text at `font`, its widest line if it has several,
// without the '&' that marks a shortcut.
int advance(const QFont &font, QString text, bool mnemonic = false)
{
    if (mnemonic)
        text.replace(QStringLiteral("&&"), QStringLiteral("\1"))
            .remove(QLatin1Char('&'))
            .replace(QLatin1Char('\1'), QLatin1Char('&'));
    const QFontMetrics metrics(font);
    int widest = 0;
    for (const QString &line : text.split(QLatin1Char('\n')))
        widest = std::max(widest, metrics.horizontalAdvance(line));
    return widest;
}

QString cut(const QWidget *widget, const QString &text, int needed, int room)
{
    return QStringLiteral("%1 %2: \"%3\" (%4 > %5)")
        .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName(), text.simplified())
        .arg(needed)
        .arg(room);
}

void checkLabel(const QLabel *label, QStringList *found)
{
    const QString text = label->text();
    if (text.trimmed().isEmpty())
        return;
    const QRect room =
        label->contentsRect().adjusted(label->margin(), label->margin(), -label->margin(), -label->margin());
    const bool rich =
        label->textFormat() == Qt::RichText || (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(text));
    if (label->wordWrap()) {
        const int needed = label->heightForWidth(label->width());
        if (needed > label->height())
            found->append(cut(label, rich ? plainText(label) : text, needed, label->height()));
        return;
    }
    int needed = 0;
    if (rich) {
        QTextDocument document;
        document.setDefaultFont(label->font());
        document.setDocumentMargin(0);
        document.setHtml(text);
        needed = qCeil(document.idealWidth());
    } else {
        needed = advance(label->font(), text);
    }
    const int indent = label->indent() > 0 ? label->indent() : 0;
    if (needed + indent > room.width())
        found->append(cut(label, rich ? plainText(label) : text, needed + indent, room.width()));
}

void checkButton(const QAbstractButton *button, QStringList *found)
{
    const QString text = button->text();
    if (text.trimmed().isEmpty())
        return;
    QRect room;
    if (auto *push = qobject_cast<const QPushButton *>(button)) {
        QStyleOptionButton option;
        PushButtonOptions::of(push, &option);
        room = button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button);
        if (!option.icon.isNull())
            room.setWidth(room.width() - option.iconSize.width() - 4);
    } else if (auto *box = qobject_cast<const QCheckBox *>(button)) {
        QStyleOptionButton option;
        CheckBoxOptions::of(box, &option);
        room = button->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, button);
    } else {
        return;
    }
    const int needed = advance(button->font(), text, true);
    if (needed > room.width())
        found->append(cut(button, text, needed, room.width()));
}

void checkTabBar(const QTabBar *bar, QStringList *found)
{
    for (int tab = 0; tab < bar->count(); ++tab) {
        QStyleOptionTab option;
        TabBarOptions::of(bar, &option, tab);
        // What the style gives the title inside the tab; an elided title is
        // shorter than the tab's own.
        const QRect text = bar->style()->subElementRect(QStyle::SE_TabBarTabText, &option, bar);
        const int needed = advance(bar->font(), bar->tabText(tab), true);
        const QRect shown = bar->tabRect(tab).intersected(bar->rect());
        if (option.text != bar->tabText(tab) || needed > text.width() || shown.width() < bar->tabRect(tab).width())
            found->append(cut(bar, bar->tabText(tab), needed, text.width()));
    }
}

void checkGroupBox(const QGroupBox *box, QStringList *found)
{
    if (box->title().isEmpty())
        return;
    QStyleOptionGroupBox option;
    GroupBoxOptions::of(box, &option);
    const QRect label = box->style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, box);
    const int needed = advance(box->font(), box->title(), true);
    if (needed > label.width() || label.right() >= box->width())
        found->append(cut(box, box->title(), needed, label.width()));
}

void checkHeader(const QHeaderView *header, QStringList *found)
{
    const QAbstractItemModel *model = header->model();
    if (!model || header->isHidden())
        return;
    const int margin = header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
    const int count = header->orientation() == Qt::Horizontal ? model->columnCount() : model->rowCount();
    for (int section = 0; section < count; ++section) {
        if (header->isSectionHidden(section))
            continue;
        const QString text = model->headerData(section, header->orientation(), Qt::DisplayRole).toString();
        if (text.isEmpty())
            continue;
        QFont font = header->font();
        const QVariant own = model->headerData(section, header->orientation(), Qt::FontRole);
        if (own.canConvert<QFont>())
            font = own.value<QFont>();
        const int needed = advance(font, text) + 2 * margin;
        const int room = header->sectionSize(section);
        if (needed > room)
            found->append(cut(header->parentWidget(), text, needed, room));
    }
}

} // namespace

void visitEveryPage(MainWindowFixture &f, const std::function<void(const QString &, QWidget *)> &visit)
{
    const auto current = [&f] { return f.stack()->currentWidget(); };
    const auto settle = [] {
        // Labels a page writes as it shows, and the layouts they change.
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    };
    f.click("pushButtonHome");
    settle();
    visit(QStringLiteral("home"), current());
    f.click("pushButtonExit");
    settle();
    visit(QStringLiteral("about"), current());
    f.click("pushButtonNewEntry");
    settle();
    visit(QStringLiteral("new entry"), current());

    f.click("pushButtonHistory");
    auto *history = child<QTabWidget>(*f.page(), "tabWidgetHistoryContainer");
    for (int tab = 0; tab < history->count(); ++tab) {
        history->setCurrentIndex(tab);
        settle();
        visit(QStringLiteral("history: ") + history->tabText(tab), current());
    }
    auto *entries = child<QTableWidget>(*f.page(), "tableWidgetAllEntries");
    for (int tab = 0; tab < history->count(); ++tab) {
        if (history->widget(tab)->isAncestorOf(entries))
            history->setCurrentIndex(tab);
    }
    emit entries->cellClicked(0, 1);
    settle();
    visit(QStringLiteral("entry details"), current());

    f.click("pushButtonOptions");
    auto *options = child<QTabWidget>(*f.page(), "tabWidgetOptionsContainer");
    for (int tab = 0; tab < options->count(); ++tab) {
        options->setCurrentIndex(tab);
        settle();
        visit(QStringLiteral("options: ") + options->tabText(tab), current());
    }
}

QStringList cutTexts(QWidget *root)
{
    QStringList found;
    QList<QWidget *> widgets = root->findChildren<QWidget *>();
    widgets.prepend(root);
    for (const QWidget *widget : std::as_const(widgets)) {
        if (!widget->isVisible())
            continue;
        if (auto *label = qobject_cast<const QLabel *>(widget))
            checkLabel(label, &found);
        else if (auto *button = qobject_cast<const QAbstractButton *>(widget))
            checkButton(button, &found);
        else if (auto *bar = qobject_cast<const QTabBar *>(widget))
            checkTabBar(bar, &found);
        else if (auto *box = qobject_cast<const QGroupBox *>(widget))
            checkGroupBox(box, &found);
        else if (auto *header = qobject_cast<const QHeaderView *>(widget))
            checkHeader(header, &found);
    }
    return found;
}

QStringList unnamedControls(QWidget *root)
{
    QStringList found;
    QList<QWidget *> widgets = root->findChildren<QWidget *>();
    widgets.prepend(root);
    for (QWidget *widget : std::as_const(widgets)) {
        if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus || !widget->isEnabled())
            continue;
        // A widget that takes the focus for another (a date edit's field, a
        // web view's page) is announced by that other.
        QWidget *named = qobject_cast<QAbstractSpinBox *>(widget->parentWidget()) ? widget->parentWidget() : widget;
        for (QWidget *owner = widget->parentWidget(); owner; owner = owner->parentWidget()) {
            if (owner->focusProxy() == widget)
                named = owner;
        }
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(named);
        if (!accessible || accessible->text(QAccessible::Name).trimmed().isEmpty())
            found.append(QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ') +
                         widget->objectName());
    }
    return found;
}
