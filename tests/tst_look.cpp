#include "look.h"

#include "widgettest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

class TestLook : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void buttonFontWeightIsTheLightestOfTheOldScaleKeepingTheRest();
    void applicationPaletteWritesWhiteOnTheBlackPagesAndKeepsDarkTextInFields();
    void applicationIconOffersEverySizeOfTheIconThemeSharply();
};

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
    Look::applyApplicationPalette();

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
    // picture is the bundled 16-pixel file, pixel for pixel.
    for (const QSize &size : expected) {
        const QImage drawn = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
        const QImage file = QImage(QStringLiteral(":/Images/icon/ledgerly-%1.png").arg(size.width()))
                                .convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(drawn.size(), size);
        QVERIFY2(drawn == file, qPrintable(QString::number(size.width())));
    }
}

QTEST_MAIN(TestLook)

#include "tst_look.moc"
