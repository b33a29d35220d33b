// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "look.h"

#include "pagestyle.h"

#include <QApplication>
#include <QDialog>
#include <QAbstractItemView>
#include <QLabel>
#include <QRegularExpression>
#include <QStyleFactory>
#include <QEvent>
#include <QFont>
#include <QIcon>
#include <QMenuBar>
#include <QPalette>
#include <QToolTip>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace {

// The dark red of the buttons' gradient.
const QColor highlight(151, 0, 0);

// Where a widget keeps what its form or page gave it while another look
// shows, and what the look gave it instead: a sheet or text that differs from
// the look's has been set since, by the page, and is the page's new own.
const char classicSheetProperty[] = "_ledgerly_classicStyleSheet";
const char lookSheetProperty[] = "_ledgerly_lookStyleSheet";
const char classicTextProperty[] = "_ledgerly_classicText";
const char lookTextProperty[] = "_ledgerly_lookText";
const char popUpProperty[] = "_ledgerly_popUpList";

// A palette with every role of every group marked as set, so that a widget
// given it passes all of it on to its children, over the palettes the
// program gives to some classes for the pages.
QPalette everyRoleSet(const QPalette &source)
{
    QPalette palette;
    for (int group = 0; group < QPalette::NColorGroups; ++group) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto colourGroup = QPalette::ColorGroup(group);
            const auto colourRole = QPalette::ColorRole(role);
            palette.setBrush(colourGroup, colourRole, source.brush(colourGroup, colourRole));
        }
    }
    return palette;
}

// Light text on black for what pops up over the pages, with the dark red of
// the buttons' gradient as the highlight and grey for what cannot be chosen.
QPalette popUpPalette(QPalette palette)
{
    const QColor ground(Qt::black);
    const QColor text(Qt::white);
    const QColor disabledText(150, 150, 150);
    for (const QPalette::ColorRole role :
         { QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button, QPalette::ToolTipBase })
        palette.setColor(role, ground);
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                                            QPalette::BrightText, QPalette::ToolTipText, QPalette::HighlightedText })
        palette.setColor(role, text);
    palette.setColor(QPalette::Highlight, highlight);
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, disabledText);
    return palette;
}

// Relative luminance as the accessibility guidelines define it.
double luminance(const QColor &colour)
{
    const auto linear = [](double channel) {
        return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

// What the desktop gave before the program changed anything, for Classic
// and System; the look in force; and the hooks that bring every widget, as
// it is made or changed, into that look.
class LookKeeper : public QObject
{
    Q_OBJECT

public:
    explicit LookKeeper(QObject *parent)
        : QObject(parent), desktopStyle(QApplication::style()->name()), desktop(QApplication::palette()),
          desktopCombo(QApplication::palette("QComboBox")), desktopCheckBox(QApplication::palette("QCheckBox")),
          desktopMenuBar(QApplication::palette("QMenuBar")), desktopMenu(QApplication::palette("QMenu")),
          desktopToolTip(QToolTip::palette())
    {
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::Polish:
            if (auto *dialog = qobject_cast<QDialog *>(watched); dialog && dialog->isWindow())
                dialog->setPalette(dialogPalette);
            if (shown != Look::Kind::Classic)
                restyle(static_cast<QWidget *>(watched));
            break;
        case QEvent::StyleChange:
            if (shown != Look::Kind::Classic && watched->isWidgetType())
                restyle(static_cast<QWidget *>(watched));
            break;
        case QEvent::Show:
            if (auto *label = qobject_cast<QLabel *>(watched))
                Look::fitToText(label);
            break;
        case QEvent::LayoutRequest:
            // What a label asks of a parent without a layout when its text
            // changes: the totals and figures the pages write as they go.
            if (watched->isWidgetType()) {
                const QList<QLabel *> labels = watched->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
                for (QLabel *label : labels)
                    Look::fitToText(label);
            }
            break;
        case QEvent::Paint:
            // A page writes its label texts whenever its figures change;
            // they are brought into the look as they are about to show.
            if (shown != Look::Kind::Classic) {
                if (auto *label = qobject_cast<QLabel *>(watched))
                    recolour(label);
            }
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }

    void restyle(QWidget *widget)
    {
        if (restyling)
            return;
        const QString sheet = widget->styleSheet();
        const QVariant classic = widget->property(classicSheetProperty);
        if (!classic.isValid() && sheet.isEmpty())
            return;
        const bool setSince = !classic.isValid() || sheet != widget->property(lookSheetProperty).toString();
        const QString source = setSince ? sheet : classic.toString();
        const QString wanted = Look::styleSheetFor(source, shown);
        if (shown == Look::Kind::Classic) {
            widget->setProperty(classicSheetProperty, QVariant());
            widget->setProperty(lookSheetProperty, QVariant());
        } else {
            widget->setProperty(classicSheetProperty, source);
            widget->setProperty(lookSheetProperty, wanted);
        }
        if (sheet != wanted) {
            restyling = true;
            widget->setStyleSheet(wanted);
            restyling = false;
        }
    }

    void bringIntoLook(QWidget *widget)
    {
        restyle(widget);
        if (auto *label = qobject_cast<QLabel *>(widget))
            recolour(label);
        if (widget->property(popUpProperty).toBool()) {
            Look::applyToPopUpList(widget);
        } else if (qobject_cast<QDialog *>(widget) && widget->isWindow()) {
            widget->setPalette(dialogPalette);
        } else if (shown != Look::Kind::Classic || !widget->testAttribute(Qt::WA_SetPalette)) {
            // Qt passes a new application palette on to windows that are
            // open and to widgets without a sheet only; a sheet that
            // coloured a widget hands back, as it goes, the palette the
            // widget had before it as the widget's own. The looks' own
            // sheets colour nothing, so every widget takes its parent's.
            widget->setPalette(QPalette());
        }
    }

    void recolour(QLabel *label)
    {
        const QString text = label->text();
        const QVariant classic = label->property(classicTextProperty);
        const bool setSince = !classic.isValid() || text != label->property(lookTextProperty).toString();
        const QString source = setSince ? text : classic.toString();
        QString wanted = source;
        if (shown == Look::Kind::Classic) {
            label->setProperty(classicTextProperty, QVariant());
            label->setProperty(lookTextProperty, QVariant());
        } else {
            if (label->textFormat() == Qt::PlainText)
                return;
            // Readable on the pages' ground, on the tables' cells and on
            // the tab pages, which Fusion fills a shade lighter than its
            // buttons.
            const QPalette look = Look::palette(shown);
            wanted = source;
            for (const QColor &ground : { look.color(QPalette::Window), look.color(QPalette::Base),
                                          look.color(QPalette::Button).lighter(125) })
                wanted = Look::readableRichText(wanted, ground);
            if (wanted == source && !classic.isValid())
                return;
            label->setProperty(classicTextProperty, source);
            label->setProperty(lookTextProperty, wanted);
        }
        if (text != wanted)
            label->setText(wanted);
    }

    const QString desktopStyle;
    const QPalette desktop;
    const QPalette desktopCombo;
    const QPalette desktopCheckBox;
    const QPalette desktopMenuBar;
    const QPalette desktopMenu;
    const QPalette desktopToolTip;
    QPalette dialogPalette;
    Look::Kind chosen = Look::Kind::Classic;
    Look::Kind shown = Look::Kind::Classic;

private:
    bool restyling = false;
};

LookKeeper *keeper()
{
    if (auto *existing = qApp->findChild<LookKeeper *>(QString(), Qt::FindDirectChildrenOnly))
        return existing;
    // The style first: setting a style may give the application that
    // style's palette, which the keeper then takes as the desktop's.
    QApplication::setStyle(new PageStyle(QApplication::style()->name()));
    auto *created = new LookKeeper(qApp);
    qApp->installEventFilter(created);
    return created;
}

// The look of the handset's pages, over the desktop's palette.
void applyClassic(LookKeeper *keeper)
{
    QApplication::setStyle(new PageStyle(keeper->desktopStyle));
    keeper->dialogPalette = everyRoleSet(keeper->desktop);

    QPalette palette = keeper->desktop;
    palette.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(palette);

    // A combo box draws its current text with the button text colour, on
    // the black page.
    QPalette combo = keeper->desktopCombo;
    combo.setColor(QPalette::WindowText, Qt::white);
    combo.setColor(QPalette::ButtonText, Qt::white);
    QApplication::setPalette(combo, "QComboBox");

    // The check box's tick is drawn in the text colour on the page's black.
    QPalette checkBox = keeper->desktopCheckBox;
    checkBox.setColor(QPalette::Text, Qt::white);
    checkBox.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(checkBox, "QCheckBox");

    // Menus, and the drop-down lists of combo boxes, which draw their items
    // as menu items with the menus' colours.
    QApplication::setPalette(popUpPalette(keeper->desktopMenuBar), "QMenuBar");
    QApplication::setPalette(popUpPalette(keeper->desktopMenu), "QMenu");
    QToolTip::setPalette(popUpPalette(keeper->desktopToolTip));
}

// A desktop look: Fusion with one palette for everything, dialogs, menus,
// lists and tool tips included.
void applyDesktopLook(LookKeeper *keeper, const QPalette &palette)
{
    QApplication::setStyle(new PageStyle(QStringLiteral("Fusion")));
    keeper->dialogPalette = everyRoleSet(palette);
    QApplication::setPalette(palette);
    for (const char *className : { "QComboBox", "QCheckBox", "QMenuBar", "QMenu" })
        QApplication::setPalette(palette, className);
    QToolTip::setPalette(palette);
}

} // namespace

QString Look::name(Kind kind)
{
    switch (kind) {
    case Kind::Light:
        return QStringLiteral("Light");
    case Kind::Dark:
        return QStringLiteral("Dark");
    case Kind::System:
        return QStringLiteral("System");
    case Kind::Classic:
        break;
    }
    return QStringLiteral("Classic");
}

Look::Kind Look::fromName(const QString &name)
{
    for (const Kind kind : { Kind::Light, Kind::Dark, Kind::System }) {
        if (name == Look::name(kind))
            return kind;
    }
    return Kind::Classic;
}

void Look::apply(Kind kind)
{
    LookKeeper *looks = keeper();
    looks->chosen = kind;
    looks->shown = kind == Kind::System ? systemLook(looks->desktop) : kind;
    if (looks->shown == Kind::Classic)
        applyClassic(looks);
    else
        applyDesktopLook(looks, palette(looks->shown));

    // Every widget there is, each after its parent, so that a widget that
    // takes its parent's palette takes the new one.
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        QList<QWidget *> tree = window->findChildren<QWidget *>();
        tree.prepend(window);
        for (QWidget *widget : std::as_const(tree))
            looks->bringIntoLook(widget);
    }
}

Look::Kind Look::chosen()
{
    const LookKeeper *looks = qApp->findChild<LookKeeper *>(QString(), Qt::FindDirectChildrenOnly);
    return looks ? looks->chosen : Kind::Classic;
}

Look::Kind Look::shown()
{
    const LookKeeper *looks = qApp->findChild<LookKeeper *>(QString(), Qt::FindDirectChildrenOnly);
    return looks ? looks->shown : Kind::Classic;
}

Look::Kind Look::systemLook(const QPalette &desktop)
{
    return desktop.color(QPalette::Window).lightness() > desktop.color(QPalette::WindowText).lightness() ? Kind::Light
                                                                                                         : Kind::Dark;
}

QPalette Look::palette(Kind kind)
{
    const bool dark = kind == Kind::Dark;
    const QColor window = dark ? QColor(0x2b, 0x2b, 0x2b) : QColor(0xef, 0xef, 0xef);
    const QColor button = dark ? QColor(0x3a, 0x3a, 0x3a) : QColor(0xe6, 0xe6, 0xe6);
    const QColor text = dark ? QColor(0xe8, 0xe8, 0xe8) : QColor(0x1a, 0x1a, 0x1a);
    const QColor base = dark ? QColor(0x1f, 0x1f, 0x1f) : QColor(Qt::white);
    const QColor disabledText = dark ? QColor(0x80, 0x80, 0x80) : QColor(0x90, 0x90, 0x90);

    // Bevels and edges derived from the button, as the desktop styles do.
    QPalette palette(button, window);
    for (const QPalette::ColorRole role :
         { QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText })
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, dark ? QColor(0x26, 0x26, 0x26) : QColor(0xf5, 0xf5, 0xf5));
    palette.setColor(QPalette::ToolTipBase, dark ? base : QColor(0xff, 0xff, 0xe1));
    palette.setColor(QPalette::BrightText, dark ? QColor(Qt::white) : QColor(Qt::black));
    palette.setColor(QPalette::PlaceholderText, dark ? QColor(0xa0, 0xa0, 0xa0) : QColor(0x6e, 0x6e, 0x6e));
    // White on this blue stands out by more than 5 to 1.
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x64, 0xb4));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, dark ? QColor(0x7f, 0xb2, 0xff) : QColor(0x1a, 0x56, 0xb0));
    palette.setColor(QPalette::LinkVisited, dark ? QColor(0xc0, 0x9a, 0xff) : QColor(0x6a, 0x2a, 0xa0));
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, disabledText);
    palette.setColor(QPalette::Disabled, QPalette::Base, window);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, disabledText);
    return palette;
}

QString Look::styleSheetFor(const QString &classic, Kind shown)
{
    if (shown == Kind::Classic)
        return classic;
    // Rules with selectors (the highlights of the menus and lists) are
    // Classic's own; the desktop looks take those from the palette.
    if (classic.contains(QLatin1Char('{')))
        return QString();
    QStringList kept;
    const QStringList declarations = classic.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &declaration : declarations) {
        const QString property = declaration.section(QLatin1Char(':'), 0, 0).trimmed();
        if (property == QLatin1String("font") || property == QLatin1String("image"))
            kept.append(declaration.trimmed() + QLatin1Char(';'));
    }
    return kept.join(QLatin1Char('\n'));
}

QColor Look::readable(const QColor &colour, const QColor &ground)
{
    if (contrast(colour, ground) >= 4.5)
        return colour;
    // The same hue, walked towards black on a light ground and towards
    // white on a dark one, until it stands out, with room to spare: the
    // thin strokes of small text, smoothed into the ground, never quite
    // reach their colour.
    const bool lightGround = luminance(ground) > 0.18;
    float hue, saturation, lightness, alpha;
    colour.getHslF(&hue, &saturation, &lightness, &alpha);
    QColor shade = colour;
    for (int step = 0; step < 100 && contrast(shade, ground) < 5.5; ++step) {
        lightness = std::clamp(lightness + (lightGround ? -0.02f : 0.02f), 0.0f, 1.0f);
        shade = QColor::fromHslF(hue, saturation, lightness, alpha);
    }
    return shade.toRgb();
}

Look::GraphColours Look::graphColours()
{
    const QColor orange(246, 146, 64);
    if (shown() == Kind::Classic)
        return { Qt::black, Qt::white, QColor(63, 63, 63), QColor(134, 134, 134), Qt::white, orange };
    const QPalette look = palette(shown());
    const QColor plot = look.color(QPalette::Base);
    const bool dark = shown() == Kind::Dark;
    return { look.color(QPalette::Window),
             look.color(QPalette::Mid),
             plot,
             dark ? QColor(0x5a, 0x5a, 0x5a) : QColor(0xc4, 0xc4, 0xc4),
             look.color(QPalette::WindowText),
             readable(orange, plot) };
}

QString Look::readableRichText(const QString &text, const QColor &ground)
{
    static const QRegularExpression named(QStringLiteral("(color\\s*[:=]\\s*[\"']?)(#[0-9a-fA-F]{6}|#[0-9a-fA-F]{3})"),
                                          QRegularExpression::CaseInsensitiveOption);
    QString result;
    qsizetype done = 0;
    QRegularExpressionMatchIterator matches = named.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result += QStringView(text).mid(done, match.capturedStart(2) - done);
        result += readable(QColor(match.captured(2)), ground).name();
        done = match.capturedEnd(2);
    }
    result += QStringView(text).mid(done);
    return result;
}

void Look::fitToText(QLabel *label)
{
    QWidget *parent = label->parentWidget();
    // Labels in a layout are sized by it, those in a table's cells by the
    // table; a wrapped label has its text's width whatever it is given.
    if (!parent || parent->layout() || label->wordWrap() || label->text().isEmpty() ||
        qobject_cast<QAbstractItemView *>(parent->parentWidget()))
        return;
    const int needed = label->sizeHint().width();
    if (needed > label->width())
        label->resize(needed, label->height());
}

void Look::applyButtonFontWeight(QWidget *button)
{
    // Weight 9 of the old scale maps to ExtraLight, the nearest of Qt 6's
    // weights (the old 12); set last, as the form always did.
    QFont font = button->font();
    font.setWeight(QFont::ExtraLight);
    button->setFont(font);
}

void Look::applyToApplication()
{
    if (qApp->findChild<LookKeeper *>(QString(), Qt::FindDirectChildrenOnly))
        return;
    apply(Kind::Classic);
}

void Look::applyHighlights(QMenuBar *menuBar, QWidget *area)
{
    const QString colours =
        QStringLiteral("selection-background-color: %1; selection-color: white;").arg(highlight.name());
    // The menu bar marks the title under the pointer as the menus mark their
    // commands; the style alone marks only the title of an open menu.
    // A grey edge keeps a menu apart from the black page it drops onto.
    menuBar->setStyleSheet(QStringLiteral("QMenuBar::item:selected { background-color: %1; color: white; }\n"
                                          "QMenu { border: 1px solid rgb(128, 128, 128); %2 }")
                               .arg(highlight.name(), colours));
    area->setStyleSheet(QStringLiteral("QComboBox { %1 }").arg(colours));
}

void Look::applyToPopUpList(QWidget *list)
{
    // Marked, so that a change of look reaches it too.
    list->setProperty(popUpProperty, true);
    list->setPalette(shown() == Kind::Classic ? popUpPalette(list->palette()) : palette(shown()));
}

QIcon Look::applicationIcon()
{
    QIcon icon;
    for (int size : { 16, 32, 48, 64, 128, 256 })
        icon.addFile(QStringLiteral(":/Images/icon/ledgerly-%1.png").arg(size), QSize(size, size));
    return icon;
}

#include "look.moc"
