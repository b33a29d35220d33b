// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

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
};

void TestLook::initTestCase()
{
    WidgetTest::initTestCase();
    // What main() sets up, once, before any window.
    Look::applyToApplication();
}

void TestLook::cleanup()
{
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
    QVERIFY2(drawnContrast(unticked, indicator) >= 3.0, qPrintable(QString::number(drawnContrast(unticked, indicator))));
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

QTEST_MAIN(TestLook)

#include "tst_look.moc"
