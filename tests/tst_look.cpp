// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "fulltexttooltipdelegate.h"
#include "look.h"

#include "mainwindow.h"
#include "notice.h"
#include "pagestyle.h"

#include "contrast.h"
#include "mainwindowfixture.h"
#include "messageboxanswerer.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QFileDialog>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QTableWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QToolTip>
#include <QTreeView>
#include <QtTest>

namespace {

// Where `child` lies in a picture of `top`.
QRect areaIn(const QWidget *top, const QWidget *child)
{
    return QRect(child->mapTo(top, QPoint(0, 0)), child->size());
}

QWidget *shownToolTip()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (widget->inherits("QTipLabel") && widget->isVisible())
            return widget;
    }
    return nullptr;
}

} // namespace

class TestLook : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase();
    void cleanup();

    void buttonFontWeightIsTheLightestOfTheOldScaleKeepingTheRest();
    void applicationPaletteWritesWhiteOnTheBlackPagesAndKeepsDarkTextInFields();
    void applicationIconOffersEverySizeOfTheIconThemeSharply();
    void applyingTheLookTwiceChangesNothing();
    void messageBoxesShowTheirTextReadably();
    void aboutQtShowsItsTextReadably();
    void fileDialogShowsItsLabelsBoxesAndFilesReadably();
    void progressDialogShowsItsTextReadably();
    void toolTipsShowLightTextOnADarkGround_data();
    void toolTipsShowLightTextOnADarkGround();
    void aCheckBoxOnABlackPageIsSeenTickedOrNot();
    void aCheckBoxOnALightGroundIsLeftToTheDesktopStyle();

    void lookNamesAreKeptAndReadBack_data();
    void lookNamesAreKeptAndReadBack();
    void systemPicksLightUnderALightPaletteAndDarkUnderADarkOne();
    void desktopLooksKeepOnlyTheFontAndPictureOfAPagesStyleSheet_data();
    void desktopLooksKeepOnlyTheFontAndPictureOfAPagesStyleSheet();
    void readableKeepsAColourThatStandsOutAndShadesOneThatDoesNot_data();
    void readableKeepsAColourThatStandsOutAndShadesOneThatDoesNot();
    void richTextColoursAreMadeReadable();
    void desktopLooksUseFusionAndTheirPaletteEverywhere_data();
    void desktopLooksUseFusionAndTheirPaletteEverywhere();
    void messageBoxesMenusListsAndToolTipsAreReadableInEachDesktopLook_data();
    void messageBoxesMenusListsAndToolTipsAreReadableInEachDesktopLook();
    void aPageStyleSheetSetLaterIsReplacedAndClassicGivesItBack();
    void labelColoursFollowTheLookAndComeBackInClassic();
    void redTableTextStaysRedAndReadable_data();
    void redTableTextStaysRedAndReadable();
};

void TestLook::initTestCase()
{
    WidgetTest::initTestCase();
    // What main() sets up, once, before any window.
    Look::applyToApplication();
}

void TestLook::cleanup()
{
    // Every test starts in the look the program starts in.
    if (Look::chosen() != Look::Kind::Classic)
        Look::apply(Look::Kind::Classic);
    QToolTip::hideText();
    VERIFY_NO_WIDGETS_LEFT();
}

void TestLook::buttonFontWeightIsTheLightestOfTheOldScaleKeepingTheRest()
{
    QPushButton button;
    QFont font(QStringLiteral("MS Shell Dlg 2"));
    font.setPointSize(16);
    font.setBold(false);
    font.setItalic(false);
    button.setFont(font);

    Look::applyButtonFontWeight(&button);

    const QFont applied = button.font();
    // Weight 9 of the old 0-99 scale is nearest to the old 12, ExtraLight.
    QCOMPARE(applied.weight(), QFont::ExtraLight);
    QCOMPARE(applied.family(), QStringLiteral("MS Shell Dlg 2"));
    QCOMPARE(applied.pointSize(), 16);
    QVERIFY(!applied.italic());
    QVERIFY(!applied.bold());
}

void TestLook::applicationPaletteWritesWhiteOnTheBlackPagesAndKeepsDarkTextInFields()
{
    const QColor fieldText = QApplication::palette("QLineEdit").color(QPalette::Text);
    Look::applyToApplication();

    QWidget page;
    page.setStyleSheet(QStringLiteral("background-color: rgb(0, 0, 0);"));
    auto *label = new QLabel(QStringLiteral("Category Wise"), &page);
    auto *combo = new QComboBox(&page);
    combo->addItem(QStringLiteral("Food"));
    auto *checkBox = new QCheckBox(QStringLiteral("Add GeoLocation"), &page);
    auto *field = new QLineEdit(&page);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    QCOMPARE(label->palette().color(QPalette::WindowText), QColor(Qt::white));
    QCOMPARE(combo->palette().color(QPalette::ButtonText), QColor(Qt::white));
    QCOMPARE(checkBox->palette().color(QPalette::WindowText), QColor(Qt::white));
    QCOMPARE(checkBox->palette().color(QPalette::Text), QColor(Qt::white));
    // Fields have pale fills; their text stays as dark as it was.
    QCOMPARE(field->palette().color(QPalette::Text), fieldText);
    QVERIFY(fieldText.lightness() < 128);

    // The label's text is drawn in white on the black page.
    label->resize(200, 40);
    const QImage picture = label->grab().toImage();
    int white = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            white += picture.pixelColor(x, y).lightness() > 200 ? 1 : 0;
    QVERIFY2(white > 20, qPrintable(QString::number(white)));
}

void TestLook::applicationIconOffersEverySizeOfTheIconThemeSharply()
{
    const QIcon icon = Look::applicationIcon();
    const QList<QSize> expected = { QSize(16, 16), QSize(32, 32),   QSize(48, 48),
                                    QSize(64, 64), QSize(128, 128), QSize(256, 256) };
    QCOMPARE(icon.availableSizes(), expected);
    // Each size is its own drawing, not another one scaled: the 16-pixel
    // picture is the bundled 16-pixel file, pixel for pixel. A pixmap holds
    // premultiplied colours, so the two are compared in that form: turning
    // the pixmap's back into plain ARGB would round its half-transparent
    // edges by one step on some processors and not on others.
    for (const QSize &size : expected) {
        const QImage drawn = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
        const QImage file = QImage(QStringLiteral(":/Images/icon/ledgerly-%1.png").arg(size.width()))
                                .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(drawn.size(), size);
        QVERIFY2(drawn == file, qPrintable(QString::number(size.width())));
    }
}

void TestLook::applyingTheLookTwiceChangesNothing()
{
    const QPalette application = QApplication::palette();
    const QPalette menu = QApplication::palette("QMenu");
    const QPalette toolTip = QToolTip::palette();
    Look::applyToApplication();
    QCOMPARE(QApplication::palette(), application);
    QCOMPARE(QApplication::palette("QMenu"), menu);
    QCOMPARE(QToolTip::palette(), toolTip);

    // The dialogs still get the desktop's dark text, not the pages' white.
    QDialog dialog;
    auto *label = new QLabel(QStringLiteral("Import"), &dialog);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(label->palette().color(QPalette::WindowText).lightness() < 100);
    dialog.close();
}

void TestLook::messageBoxesShowTheirTextReadably()
{
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Ok, QMessageBox::Save });
    Notice::inform(QStringLiteral("No Entries between the given dates"));
    QVERIFY(Notice::confirm(QStringLiteral("Category Name Entered - Travel ")));
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);

    for (const SeenMessageBox &box : answerer.seen()) {
        QVERIFY(!box.textArea.isEmpty());
        // Text that stands out from the box's ground as the guidelines ask,
        // not the pages' white on the dialog's light grey.
        const double contrast = drawnContrast(box.picture, box.textArea);
        QVERIFY2(contrast >= 4.5, qPrintable(QStringLiteral("%1: %2").arg(box.text).arg(contrast)));
        QVERIFY(darkPixels(box.picture, box.textArea) > 20);
    }
}

void TestLook::aboutQtShowsItsTextReadably()
{
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    QMessageBox::aboutQt(nullptr);
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 1);
    const SeenMessageBox &box = answerer.seen().constFirst();
    QVERIFY(box.text.contains(QStringLiteral("Qt")));
    QVERIFY(!box.textArea.isEmpty());
    const double contrast = drawnContrast(box.picture, box.textArea);
    QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
}

void TestLook::fileDialogShowsItsLabelsBoxesAndFilesReadably()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QFile file(dir.filePath(QStringLiteral("entries.csv")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    QFileDialog dialog(nullptr, QStringLiteral("Export Entries"), dir.path(), QStringLiteral("CSV files (*.csv)"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setViewMode(QFileDialog::List);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *files = dialog.findChild<QListView *>(QStringLiteral("listView"));
    QVERIFY(files);
    QTRY_COMPARE(files->model()->rowCount(files->rootIndex()), 1);
    const QImage picture = dialog.grab().toImage();

    // Every label ("Look in:", "File name:", "Files of type:"), every box
    // (the folder and the file type) and the list of files.
    QList<QWidget *> parts;
    for (QLabel *label : dialog.findChildren<QLabel *>()) {
        if (label->isVisible() && !label->text().isEmpty())
            parts.append(label);
    }
    QCOMPARE(parts.size(), 3);
    const QList<QComboBox *> boxes = dialog.findChildren<QComboBox *>();
    for (QComboBox *box : boxes)
        parts.append(box);
    QCOMPARE(boxes.size(), 2);
    parts.append(files->viewport());

    for (const QWidget *part : parts) {
        const double contrast = drawnContrast(picture, areaIn(&dialog, part));
        QVERIFY2(
            contrast >= 4.5,
            qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(part->metaObject()->className())).arg(contrast)));
    }
    dialog.close();
}

void TestLook::progressDialogShowsItsTextReadably()
{
    QProgressDialog dialog(QStringLiteral("Importing entries…"), QStringLiteral("Cancel"), 0, 100);
    dialog.setMinimumDuration(0);
    dialog.setValue(40);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QImage picture = dialog.grab().toImage();
    auto *label = dialog.findChild<QLabel *>();
    auto *cancel = dialog.findChild<QPushButton *>();
    QVERIFY(label && cancel);
    for (const QWidget *part : { static_cast<QWidget *>(label), static_cast<QWidget *>(cancel) }) {
        const double contrast = drawnContrast(picture, areaIn(&dialog, part));
        QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
    }
    dialog.close();
}

void TestLook::toolTipsShowLightTextOnADarkGround_data()
{
    QTest::addColumn<QString>("styleSheet");
    QTest::newRow("over a black page") << QStringLiteral("background-color: rgb(0, 0, 0);");
    QTest::newRow("over a dialog") << QString();
}

void TestLook::toolTipsShowLightTextOnADarkGround()
{
    QFETCH(QString, styleSheet);
    QWidget page;
    page.setStyleSheet(styleSheet);
    page.resize(300, 200);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    QToolTip::showText(page.mapToGlobal(QPoint(20, 20)), QStringLiteral("Sun Nov 15 13:08:59 2026"), &page);
    QWidget *tip = nullptr;
    QTRY_VERIFY((tip = shownToolTip()) != nullptr);
    const QImage picture = tip->grab().toImage();
    QVERIFY(groundColour(picture, picture.rect()).lightness() < 60);
    const double contrast = drawnContrast(picture);
    QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
    QVERIFY(lightPixels(picture, picture.rect()) > 20);
    page.close();
}

namespace {

// Where the style puts the box of `box`, in a picture of `top`.
QRect indicatorIn(const QWidget *top, const QCheckBox *box)
{
    QStyleOptionButton option;
    option.initFrom(box);
    return box->style()
        ->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box)
        .translated(box->mapTo(top, QPoint(0, 0)));
}

} // namespace

void TestLook::aCheckBoxOnABlackPageIsSeenTickedOrNot()
{
    // The new-entry page's box, in the program's window, as a user sees it:
    // an unticked box must be seen as a box on the black page, not only its
    // caption (the edge of a control needs a contrast of 3 at least), and a
    // tick must change what is drawn there.
    MainWindowFixture f;
    QVERIFY(f.show());
    f.click("pushButtonNewEntry");
    QWidget *page = f.page();
    QVERIFY(page);
    auto *box = page->findChild<QCheckBox *>(QStringLiteral("checkBoxGeoLocation"));
    QVERIFY(box);
    QVERIFY(!box->isChecked());

    const QRect indicator = indicatorIn(page, box);
    QVERIFY(indicator.width() >= 10 && indicator.height() >= 10);
    const QImage unticked = page->grab().toImage();
    QCOMPARE(groundColour(unticked, indicator.adjusted(-4, -4, 4, 4)), QColor(Qt::black));
    QVERIFY2(drawnContrast(unticked, indicator) >= 3.0,
             qPrintable(QString::number(drawnContrast(unticked, indicator))));
    // A whole edge: it stands out on each of the box's four sides.
    const QRect edge = indicator;
    QVERIFY(drawnContrast(unticked, QRect(edge.left() + 2, edge.top(), edge.width() - 4, 2)) >= 3.0);
    QVERIFY(drawnContrast(unticked, QRect(edge.left(), edge.top() + 2, 2, edge.height() - 4)) >= 3.0);
    QVERIFY(drawnContrast(unticked, QRect(edge.right() - 1, edge.top() + 2, 2, edge.height() - 4)) >= 3.0);
    QVERIFY(drawnContrast(unticked, QRect(edge.left() + 2, edge.bottom() - 1, edge.width() - 4, 2)) >= 3.0);

    box->setChecked(true);
    const QImage ticked = page->grab().toImage();
    // The tick fills the inside of the box, where the unticked box is dark.
    const QRect inside = indicator.adjusted(3, 3, -3, -3);
    QCOMPARE(lightPixels(unticked, inside), 0);
    QVERIFY2(lightPixels(ticked, inside) >= 4, qPrintable(QString::number(lightPixels(ticked, inside))));
}

void TestLook::aCheckBoxOnALightGroundIsLeftToTheDesktopStyle()
{
    // Away from the pages (in a dialog, say), the box is the desktop
    // style's own, pixel for pixel.
    auto *style = qobject_cast<PageStyle *>(QApplication::style());
    QVERIFY(style);
    std::unique_ptr<QStyle> desktop(QStyleFactory::create(style->baseStyle()->name()));
    QVERIFY(desktop);

    QDialog dialog;
    auto *box = new QCheckBox(QStringLiteral("Overwrite"), &dialog);
    box->resize(box->sizeHint());
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(box->palette().base().color().lightness() >= 128);
    const QImage ours = box->grab().toImage();
    box->setStyle(desktop.get());
    const QImage theirs = box->grab().toImage();
    box->setStyle(nullptr);
    QCOMPARE(ours, theirs);
    dialog.close();
}

void TestLook::lookNamesAreKeptAndReadBack_data()
{
    QTest::addColumn<Look::Kind>("kind");
    QTest::addColumn<QString>("name");
    QTest::newRow("classic") << Look::Kind::Classic << QStringLiteral("Classic");
    QTest::newRow("light") << Look::Kind::Light << QStringLiteral("Light");
    QTest::newRow("dark") << Look::Kind::Dark << QStringLiteral("Dark");
    QTest::newRow("system") << Look::Kind::System << QStringLiteral("System");
}

void TestLook::lookNamesAreKeptAndReadBack()
{
    QFETCH(Look::Kind, kind);
    QFETCH(QString, name);
    QCOMPARE(Look::name(kind), name);
    QCOMPARE(Look::fromName(name), kind);
    // What an older or edited settings file may hold.
    QCOMPARE(Look::fromName(QString()), Look::Kind::Classic);
    QCOMPARE(Look::fromName(QStringLiteral("dark")), Look::Kind::Classic);
}

void TestLook::systemPicksLightUnderALightPaletteAndDarkUnderADarkOne()
{
    QPalette light;
    light.setColor(QPalette::Window, QColor(240, 240, 240));
    light.setColor(QPalette::WindowText, Qt::black);
    QCOMPARE(Look::systemLook(light), Look::Kind::Light);

    QPalette dark;
    dark.setColor(QPalette::Window, QColor(40, 40, 45));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    QCOMPARE(Look::systemLook(dark), Look::Kind::Dark);

    // This session's desktop palette (Qt's own, light, under the offscreen
    // platform) is the one System follows.
    Look::apply(Look::Kind::System);
    QCOMPARE(Look::chosen(), Look::Kind::System);
    QCOMPARE(Look::shown(), Look::Kind::Light);
    QCOMPARE(QApplication::palette().color(QPalette::Window), Look::palette(Look::Kind::Light).color(QPalette::Window));
}

void TestLook::desktopLooksKeepOnlyTheFontAndPictureOfAPagesStyleSheet_data()
{
    QTest::addColumn<QString>("classic");
    QTest::addColumn<QString>("desktop");
    QTest::newRow("black page") << QStringLiteral("background-color: rgb(0, 0, 0);") << QString();
    QTest::newRow("main window") << QStringLiteral("background-color: rgb(0, 0, 0);\nfont: 75 14pt \"MS Shell Dlg 2\";")
                                 << QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";");
    QTest::newRow("gradient button") << QString::fromLatin1(FormStyle::gradientButton)
                                     << QStringLiteral("font: 75 16pt \"MS Shell Dlg 2\"  rgb(252, 252, 0);");
    QTest::newRow("input field") << QString::fromLatin1(FormStyle::inputField)
                                 << QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";");
    QTest::newRow("home picture") << QStringLiteral(
                                         "image: url(:/Images/LedgerlyHome.jpg);\nborder-color: rgb(0, 0, 0);")
                                  << QStringLiteral("image: url(:/Images/LedgerlyHome.jpg);");
    QTest::newRow("details table") << QStringLiteral(
                                          "border-color: rgb(255, 255, 127);\nselection-color: rgb(255, 255, 127);\n"
                                          "gridline-color: rgb(188, 188, 188);")
                                   << QString();
    QTest::newRow("rules") << QStringLiteral("QComboBox { selection-background-color: #970000; }") << QString();
}

void TestLook::desktopLooksKeepOnlyTheFontAndPictureOfAPagesStyleSheet()
{
    QFETCH(QString, classic);
    QFETCH(QString, desktop);
    QCOMPARE(Look::styleSheetFor(classic, Look::Kind::Classic), classic);
    QCOMPARE(Look::styleSheetFor(classic, Look::Kind::Light), desktop);
    QCOMPARE(Look::styleSheetFor(classic, Look::Kind::Dark), desktop);
}

void TestLook::readableKeepsAColourThatStandsOutAndShadesOneThatDoesNot_data()
{
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<bool>("kept");
    QTest::newRow("black on white") << QColor(Qt::black) << QColor(Qt::white) << true;
    QTest::newRow("red on black") << QColor(255, 0, 0) << QColor(Qt::black) << true;
    QTest::newRow("red on white") << QColor(255, 0, 0) << QColor(Qt::white) << false;
    QTest::newRow("yellow on light grey") << QColor(255, 255, 0) << QColor(239, 239, 239) << false;
    QTest::newRow("purple on dark grey") << QColor(0xaa, 0x00, 0xff) << QColor(43, 43, 43) << false;
    QTest::newRow("dark red on dark grey") << QColor(151, 0, 0) << QColor(31, 31, 31) << false;
}

void TestLook::readableKeepsAColourThatStandsOutAndShadesOneThatDoesNot()
{
    QFETCH(QColor, colour);
    QFETCH(QColor, ground);
    QFETCH(bool, kept);
    const QColor shade = Look::readable(colour, ground);
    QVERIFY2(contrastRatio(shade, ground) >= 4.5, qPrintable(shade.name()));
    if (kept) {
        QCOMPARE(shade, colour);
        return;
    }
    QVERIFY(shade != colour);
    // The same colour, only lighter or darker: its hue moves by no more than
    // rounding (a grey has none).
    if (colour.hslHue() >= 0)
        QVERIFY2(qAbs(shade.hslHue() - colour.hslHue()) <= 3, qPrintable(shade.name()));
}

void TestLook::richTextColoursAreMadeReadable()
{
    const QColor white(Qt::white);
    const QString text = QStringLiteral("<font color=#ff7637> Global Total: 12 </font>"
                                        "<span style=\" color:#ffff00;\">Name</span>");
    const QString readable = Look::readableRichText(text, white);
    QVERIFY(!readable.contains(QStringLiteral("#ff7637")));
    QVERIFY(!readable.contains(QStringLiteral("#ffff00")));
    QVERIFY(readable.contains(QStringLiteral("<font color=") + Look::readable(QColor(0xff7637), white).name()));
    QVERIFY(readable.contains(QStringLiteral(" color:") + Look::readable(QColor(0xffff00), white).name()));
    QVERIFY(readable.contains(QStringLiteral("Global Total: 12")));
    // On black both already stand out.
    QCOMPARE(Look::readableRichText(text, QColor(Qt::black)), text);
}

void TestLook::desktopLooksUseFusionAndTheirPaletteEverywhere_data()
{
    QTest::addColumn<Look::Kind>("kind");
    QTest::newRow("light") << Look::Kind::Light;
    QTest::newRow("dark") << Look::Kind::Dark;
}

void TestLook::desktopLooksUseFusionAndTheirPaletteEverywhere()
{
    QFETCH(Look::Kind, kind);
    const QString desktopStyle = QApplication::style()->name();
    Look::apply(kind);
    QVERIFY(qobject_cast<PageStyle *>(QApplication::style()));
    QCOMPARE(static_cast<QProxyStyle *>(QApplication::style())->baseStyle()->name(), QStringLiteral("fusion"));
    const QPalette look = Look::palette(kind);
    for (const char *className : { "QComboBox", "QCheckBox", "QMenu", "QMenuBar", "QLabel" })
        QCOMPARE(QApplication::palette(className).color(QPalette::WindowText), look.color(QPalette::WindowText));
    QCOMPARE(QToolTip::palette().color(QPalette::ToolTipBase), look.color(QPalette::ToolTipBase));
    // Window text, field text, button text and the highlighted item's text
    // all stand out from their grounds.
    QVERIFY(contrastRatio(look.color(QPalette::WindowText), look.color(QPalette::Window)) >= 4.5);
    QVERIFY(contrastRatio(look.color(QPalette::Text), look.color(QPalette::Base)) >= 4.5);
    QVERIFY(contrastRatio(look.color(QPalette::ButtonText), look.color(QPalette::Button)) >= 4.5);
    QVERIFY(contrastRatio(look.color(QPalette::HighlightedText), look.color(QPalette::Highlight)) >= 4.5);
    QVERIFY(contrastRatio(look.color(QPalette::ToolTipText), look.color(QPalette::ToolTipBase)) >= 4.5);
    QCOMPARE(look.color(QPalette::Window).lightness() > 128, kind == Look::Kind::Light);

    Look::apply(Look::Kind::Classic);
    QCOMPARE(QApplication::style()->name(), desktopStyle);
    QVERIFY(qobject_cast<PageStyle *>(QApplication::style()));
    QCOMPARE(QApplication::palette().color(QPalette::WindowText), QColor(Qt::white));
}

void TestLook::messageBoxesMenusListsAndToolTipsAreReadableInEachDesktopLook_data()
{
    desktopLooksUseFusionAndTheirPaletteEverywhere_data();
}

void TestLook::messageBoxesMenusListsAndToolTipsAreReadableInEachDesktopLook()
{
    QFETCH(Look::Kind, kind);
    Look::apply(kind);
    const QColor window = Look::palette(kind).color(QPalette::Window);
    const auto inLook = [kind](const QColor &ground) {
        return (ground.lightness() > 128) == (kind == Look::Kind::Light);
    };

    // A message box.
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    Notice::inform(QStringLiteral("No Entries between the given dates"));
    QCOMPARE(answerer.seen().size(), 1);
    const SeenMessageBox &box = answerer.seen().constFirst();
    QCOMPARE(groundColour(box.picture, box.textArea), window);
    QVERIFY2(drawnContrast(box.picture, box.textArea) >= 4.5,
             qPrintable(QString::number(drawnContrast(box.picture, box.textArea))));

    // A page with a combo box and a menu, as the window has them.
    QWidget page;
    page.setStyleSheet(QStringLiteral("background-color: rgb(0, 0, 0);\nfont: 75 14pt \"MS Shell Dlg 2\";"));
    page.resize(400, 300);
    auto *combo = new QComboBox(&page);
    combo->setStyleSheet(QString::fromLatin1(FormStyle::borderedCombo));
    combo->addItems({ QStringLiteral("Food"), QStringLiteral("Travel") });
    combo->setGeometry(10, 10, 200, 40);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    QCOMPARE(page.styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";"));
    const QImage pagePicture = page.grab().toImage();
    QCOMPARE(groundColour(pagePicture, pagePicture.rect()), window);
    const QRect comboText = QRect(combo->pos(), combo->size()).adjusted(6, 6, -40, -6);
    QVERIFY2(drawnContrast(pagePicture, comboText) >= 4.5,
             qPrintable(QString::number(drawnContrast(pagePicture, comboText))));

    // The open drop-down list.
    combo->showPopup();
    QAbstractItemView *list = combo->view();
    QTRY_VERIFY(list->isVisible());
    const QImage listPicture = list->grab().toImage();
    QVERIFY(inLook(groundColour(listPicture, listPicture.rect())));
    QVERIFY2(drawnContrast(listPicture) >= 4.5, qPrintable(QString::number(drawnContrast(listPicture))));
    combo->hidePopup();

    // A menu.
    QMenu menu;
    menu.addAction(QStringLiteral("Import Entries…"));
    menu.addAction(QStringLiteral("Export Entries…"));
    menu.popup(page.mapToGlobal(QPoint(20, 60)));
    QTRY_VERIFY(menu.isVisible());
    const QImage menuPicture = menu.grab().toImage();
    QVERIFY(inLook(groundColour(menuPicture, menuPicture.rect())));
    QVERIFY2(drawnContrast(menuPicture) >= 4.5, qPrintable(QString::number(drawnContrast(menuPicture))));
    menu.close();

    // A tool tip.
    QToolTip::showText(page.mapToGlobal(QPoint(20, 20)), QStringLiteral("Sun Nov 15 13:08:59 2026"), &page);
    QWidget *tip = nullptr;
    QTRY_VERIFY((tip = shownToolTip()) != nullptr);
    const QImage tipPicture = tip->grab().toImage();
    QCOMPARE(groundColour(tipPicture, tipPicture.rect()), Look::palette(kind).color(QPalette::ToolTipBase));
    QVERIFY2(drawnContrast(tipPicture) >= 4.5, qPrintable(QString::number(drawnContrast(tipPicture))));
    page.close();
}

void TestLook::aPageStyleSheetSetLaterIsReplacedAndClassicGivesItBack()
{
    QWidget page;
    const QString black = QStringLiteral("background-color: rgb(0, 0, 0);");
    page.setStyleSheet(black);
    auto *field = new QLineEdit(&page);
    const QString fieldSheet = QString::fromLatin1(FormStyle::inputField);
    field->setStyleSheet(fieldSheet);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    Look::apply(Look::Kind::Dark);
    QCOMPARE(page.styleSheet(), QString());
    QCOMPARE(field->styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";"));
    // A field made after the switch, as a page recomputing a tab makes its
    // tables, gets the look's sheet too.
    auto *later = new QLineEdit(&page);
    later->setStyleSheet(fieldSheet);
    later->show();
    QCOMPARE(later->styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";"));
    // No yellow field in the dark look.
    const QImage picture = field->grab().toImage();
    QVERIFY2(groundColour(picture, picture.rect().adjusted(4, 4, -4, -4)).lightness() < 60,
             qPrintable(groundColour(picture, picture.rect().adjusted(4, 4, -4, -4)).name()));

    Look::apply(Look::Kind::Classic);
    QCOMPARE(page.styleSheet(), black);
    QCOMPARE(field->styleSheet(), fieldSheet);
    QCOMPARE(later->styleSheet(), fieldSheet);
    page.close();
}

void TestLook::labelColoursFollowTheLookAndComeBackInClassic()
{
    QWidget page;
    const QString caption = QStringLiteral("<html><head/><body><p><span style=\" color:#ffff00;\">Name</span></p>"
                                           "</body></html>");
    auto *label = new QLabel(caption, &page);
    label->resize(200, 40);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    Look::apply(Look::Kind::Light);
    QVERIFY(!label->text().contains(QStringLiteral("#ffff00")));
    const QImage picture = page.grab().toImage();
    QVERIFY2(drawnContrast(picture, label->geometry()) >= 4.5,
             qPrintable(QString::number(drawnContrast(picture, label->geometry()))));

    // A text the page writes while the look shows is brought into it as it
    // paints.
    label->setText(QStringLiteral("<font color=#ff7637> Global Total: 3 </font>"));
    const QImage repainted = page.grab().toImage();
    QVERIFY(!label->text().contains(QStringLiteral("#ff7637")));
    QVERIFY(drawnContrast(repainted, label->geometry()) >= 4.5);

    Look::apply(Look::Kind::Classic);
    QCOMPARE(label->text(), QStringLiteral("<font color=#ff7637> Global Total: 3 </font>"));
    page.close();
}

void TestLook::redTableTextStaysRedAndReadable_data()
{
    desktopLooksUseFusionAndTheirPaletteEverywhere_data();
}

void TestLook::redTableTextStaysRedAndReadable()
{
    QFETCH(Look::Kind, kind);
    Look::apply(kind);
    QTableWidget table(2, 1);
    table.setItemDelegate(new FullTextToolTipDelegate(&table));
    for (int row = 0; row < 2; ++row) {
        auto *item = new QTableWidgetItem(QStringLiteral("Groceries and more"));
        item->setForeground(QColor(255, 0, 0));
        table.setItem(row, 0, item);
    }
    table.setColumnWidth(0, 300);
    table.resize(360, 160);
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    const QImage picture = table.viewport()->grab().toImage();
    const QRect cell = table.visualRect(table.model()->index(0, 0));
    const double contrast = drawnContrast(picture, cell);
    QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
    // The strongest pixel of the text is still a red: red the strongest of
    // its channels, its hue within 20 degrees of pure red.
    const QColor ground = groundColour(picture, cell);
    QColor strongest = ground;
    for (int y = cell.top(); y <= cell.bottom(); ++y)
        for (int x = cell.left(); x <= cell.right(); ++x)
            if (contrastRatio(picture.pixelColor(x, y), ground) > contrastRatio(strongest, ground))
                strongest = picture.pixelColor(x, y);
    const int hue = strongest.hslHue();
    QVERIFY2(strongest.red() > strongest.green() + 60 && strongest.red() > strongest.blue() + 60 &&
                 (hue <= 20 || hue >= 340),
             qPrintable(strongest.name()));
    table.close();
}

QTEST_MAIN(TestLook)

#include "tst_look.moc"
