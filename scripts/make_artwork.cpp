// Draws Ledgerly's two pictures: the home picture (1440 x 900) and the logo
// (1500 x 1000). Build the target ledgerly_artwork and run it from the
// repository root to redraw Images/LedgerlyHome.jpg and Images/CompanyLogo.jpg.
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

namespace {

const QColor ink(0x1d, 0x2b, 0x3a);
const QColor teal(0x2a, 0x9d, 0x8f);
const QColor sand(0xe9, 0xc4, 0x6a);
const QColor coral(0xe7, 0x6f, 0x51);
const QColor paper(0xf4, 0xf1, 0xea);

void drawMark(QPainter &p, const QRectF &box)
{
    // A ledger page with a rising line: the program's mark.
    QPainterPath page;
    page.addRoundedRect(box, box.width() * 0.12, box.width() * 0.12);
    p.setPen(Qt::NoPen);
    p.setBrush(paper);
    p.drawPath(page);

    p.setPen(QPen(QColor(0xc9, 0xd6, 0xdf), box.height() * 0.02));
    for (int i = 1; i < 6; ++i) {
        const qreal y = box.top() + box.height() * (0.18 + i * 0.12);
        p.drawLine(QPointF(box.left() + box.width() * 0.14, y), QPointF(box.right() - box.width() * 0.14, y));
    }
    QPolygonF trend;
    trend << QPointF(0.16, 0.80) << QPointF(0.36, 0.62) << QPointF(0.52, 0.70) << QPointF(0.70, 0.42)
          << QPointF(0.84, 0.28);
    for (QPointF &pt : trend)
        pt = QPointF(box.left() + pt.x() * box.width(), box.top() + pt.y() * box.height());
    p.setPen(QPen(coral, box.width() * 0.06, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPolyline(trend);
    p.setPen(Qt::NoPen);
    p.setBrush(sand);
    p.drawEllipse(trend.last(), box.width() * 0.07, box.width() * 0.07);
}

QImage homePicture()
{
    QImage image(1440, 900, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 1440, 900);
    sky.setColorAt(0, ink);
    sky.setColorAt(1, QColor(0x26, 0x46, 0x53));
    p.fillRect(image.rect(), sky);

    QRadialGradient glow(QPointF(1100, 260), 520);
    glow.setColorAt(0, QColor(42, 157, 143, 120));
    glow.setColorAt(1, QColor(42, 157, 143, 0));
    p.fillRect(image.rect(), glow);

    // Soft bars of a spending chart along the bottom.
    const int bars[] = { 180, 260, 210, 330, 290, 400, 350, 470, 420, 520 };
    for (int i = 0; i < 10; ++i) {
        QColor c = i % 3 == 0 ? teal : (i % 3 == 1 ? sand : coral);
        c.setAlpha(110);
        p.setBrush(c);
        p.setPen(Qt::NoPen);
        p.drawRoundedRect(QRectF(720 + i * 68, 900 - bars[i], 46, bars[i] + 20), 10, 10);
    }

    drawMark(p, QRectF(120, 170, 260, 320));

    p.setPen(paper);
    QFont title(QStringLiteral("DejaVu Sans"), 96, QFont::Bold);
    p.setFont(title);
    p.drawText(QRectF(120, 520, 1000, 140), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Ledgerly"));
    QFont tagline(QStringLiteral("DejaVu Sans"), 34);
    p.setFont(tagline);
    p.setPen(sand);
    p.drawText(QRectF(124, 660, 1000, 70), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("Every purchase, in its place."));
    return image;
}

QImage logoPicture()
{
    QImage image(1500, 1000, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(image.rect(), paper);
    QLinearGradient band(0, 700, 0, 1000);
    band.setColorAt(0, teal);
    band.setColorAt(1, QColor(0x21, 0x86, 0x7a));
    p.fillRect(QRect(0, 760, 1500, 240), band);

    QPainterPath disc;
    disc.addEllipse(QPointF(750, 360), 260, 260);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawPath(disc);
    drawMark(p, QRectF(630, 200, 240, 300));

    p.setPen(ink);
    p.setFont(QFont(QStringLiteral("DejaVu Sans"), 80, QFont::Bold));
    p.drawText(QRectF(0, 630, 1500, 130), Qt::AlignCenter, QStringLiteral("Ledgerly"));
    p.setPen(paper);
    p.setFont(QFont(QStringLiteral("DejaVu Sans"), 36));
    p.drawText(QRectF(0, 820, 1500, 120), Qt::AlignCenter, QStringLiteral("personal expense tracking"));
    return image;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    const bool ok = homePicture().save(QStringLiteral("Images/LedgerlyHome.jpg"), "JPG", 88) &&
        logoPicture().save(QStringLiteral("Images/CompanyLogo.jpg"), "JPG", 88);
    return ok ? 0 : 1;
}
