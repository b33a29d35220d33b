#include "look.h"

#include "testmain.h"

#include <QPushButton>
#include <QtTest>

class TestLook : public QObject
{
    Q_OBJECT

private slots:
    void buttonFontWeightIsTheLightestOfTheOldScaleKeepingTheRest();
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

LEDGERLY_TEST_MAIN(TestLook)

#include "tst_look.moc"
