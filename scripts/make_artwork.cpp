// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Draws Ledgerly's pictures: the home picture (1440 x 900), the logo
// (1500 x 1000) and the application icon (an SVG and PNGs of 16 to 256
// pixels). Build the target ledgerly_artwork and run it from the repository
// root to redraw Images/LedgerlyHome.jpg, Images/CompanyLogo.jpg and
// Images/icon/.
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QTextStream>
#include <cmath>

namespace {

const QColor ink(0x1d, 0x2b, 0x3a);
const QColor teal(0x2a, 0x9d, 0x8f);
const QColor sand(0xe9, 0xc4, 0x6a);
const QColor coral(0xe7, 0x6f, 0x51);
const QColor paper(0xf4, 0xf1, 0xea);
const QColor rule(0xc9, 0xd6, 0xdf);

void drawMark(QPainter &p, const QRectF &box)
{
    // A ledger page with a rising line: the program's mark.
    QPainterPath page;
    page.addRoundedRect(box, box.width() * 0.12, box.width() * 0.12);
    p.setPen(Qt::NoPen);
    p.setBrush(paper);
    p.drawPath(page);

    p.setPen(QPen(rule, box.height() * 0.02));
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

// The application icon: the mark's ledger page with its rising line, on an
// ink tile so that it stands out on light and dark panels alike. One design
// on a 256-unit grid: the SVG carries it as it is; each PNG scales it and,
// below 64 pixels, snaps the tile, the page and the rules to whole pixels,
// keeps only the rules that stay four pixels apart and never lets the line
// get thinner than one and a half pixels, so that 16 pixels still read as a page with a
// line going up.
struct IconDesign
{
    QRectF tile;
    qreal tileRadius = 0;
    QRectF page;
    qreal pageRadius = 0;
    QList<QLineF> rules;
    qreal ruleWidth = 0;
    QPolygonF trend;
    qreal trendWidth = 0;
    QPointF dot;
    qreal dotRadius = 0;
};

IconDesign iconDesign(int size)
{
    const qreal scale = size / 256.0;
    const bool snap = size < 64;
    const auto px = [&](qreal units) { return snap ? std::round(units * scale) : units * scale; };

    IconDesign d;
    const qreal inset = snap ? std::floor(size / 32.0) : 8 * scale;
    d.tile = QRectF(inset, inset, size - 2 * inset, size - 2 * inset);
    d.tileRadius = 48 * scale;
    d.page = QRectF(QPointF(px(52), px(34)), QPointF(px(204), px(222)));
    d.pageRadius = std::max(1.0, 14 * scale);

    // Five rules in the design; a small icon keeps every other one, or none.
    const qreal ruleYs[] = { 0.30, 0.42, 0.54, 0.66, 0.78 };
    const qreal spacing = 0.12 * d.page.height();
    const int step = spacing >= 4 ? 1 : (2 * spacing >= 4 ? 2 : 0);
    d.ruleWidth = snap ? 1 : 6 * scale;
    const qreal ruleLeft = d.page.left() + 0.14 * d.page.width();
    const qreal ruleRight = d.page.right() - 0.14 * d.page.width();
    for (int i = 0; step > 0 && i < 5; i += step) {
        qreal y = d.page.top() + ruleYs[i] * d.page.height();
        if (snap)
            y = std::floor(y) + 0.5;
        d.rules << QLineF(ruleLeft, y, ruleRight, y);
    }

    const QPointF trend[] = { { 0.16, 0.80 }, { 0.36, 0.60 }, { 0.52, 0.68 }, { 0.70, 0.40 }, { 0.84, 0.24 } };
    for (const QPointF &pt : trend)
        d.trend << QPointF(d.page.left() + pt.x() * d.page.width(), d.page.top() + pt.y() * d.page.height());
    d.trendWidth = std::max(1.5, 16 * scale);
    d.dot = d.trend.last();
    d.dotRadius = std::max(1.1 * d.trendWidth, 14 * scale);
    return d;
}

void paintIcon(QPainter &p, const IconDesign &d)
{
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawRoundedRect(d.tile, d.tileRadius, d.tileRadius);
    p.setBrush(paper);
    p.drawRoundedRect(d.page, d.pageRadius, d.pageRadius);
    p.setPen(QPen(rule, d.ruleWidth, Qt::SolidLine, Qt::FlatCap));
    p.drawLines(d.rules);
    p.setPen(QPen(coral, d.trendWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPolyline(d.trend);
    p.setPen(Qt::NoPen);
    p.setBrush(coral);
    p.drawEllipse(d.dot, d.dotRadius, d.dotRadius);
}

QImage iconPicture(int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    paintIcon(p, iconDesign(size));
    return image;
}

// The same design written out as SVG by hand: a few plain elements that any
// renderer draws alike, rather than a painter's recording.
QByteArray iconSvg()
{
    const IconDesign d = iconDesign(256);
    const auto n = [](qreal v) { return QString::number(v, 'g', 6); };
    const auto color = [](const QColor &c) { return c.name(); };
    QString svg;
    QTextStream out(&svg);
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"256\" height=\"256\" viewBox=\"0 0 256 256\">\n"
        << "  <title>Ledgerly</title>\n";
    out << "  <rect x=\"" << n(d.tile.x()) << "\" y=\"" << n(d.tile.y()) << "\" width=\"" << n(d.tile.width())
        << "\" height=\"" << n(d.tile.height()) << "\" rx=\"" << n(d.tileRadius) << "\" fill=\"" << color(ink)
        << "\"/>\n";
    out << "  <rect x=\"" << n(d.page.x()) << "\" y=\"" << n(d.page.y()) << "\" width=\"" << n(d.page.width())
        << "\" height=\"" << n(d.page.height()) << "\" rx=\"" << n(d.pageRadius) << "\" fill=\"" << color(paper)
        << "\"/>\n";
    out << "  <g stroke=\"" << color(rule) << "\" stroke-width=\"" << n(d.ruleWidth) << "\">\n";
    for (const QLineF &line : d.rules)
        out << "    <line x1=\"" << n(line.x1()) << "\" y1=\"" << n(line.y1()) << "\" x2=\"" << n(line.x2())
            << "\" y2=\"" << n(line.y2()) << "\"/>\n";
    out << "  </g>\n";
    out << "  <polyline points=\"";
    for (int i = 0; i < d.trend.size(); ++i)
        out << (i ? " " : "") << n(d.trend[i].x()) << ',' << n(d.trend[i].y());
    out << "\" fill=\"none\" stroke=\"" << color(coral) << "\" stroke-width=\"" << n(d.trendWidth)
        << "\" stroke-linecap=\"round\" stroke-linejoin=\"round\"/>\n";
    out << "  <circle cx=\"" << n(d.dot.x()) << "\" cy=\"" << n(d.dot.y()) << "\" r=\"" << n(d.dotRadius)
        << "\" fill=\"" << color(coral) << "\"/>\n";
    out << "</svg>\n";
    out.flush();
    return svg.toUtf8();
}

bool writeIcons()
{
    if (!QDir().mkpath(QStringLiteral("Images/icon")))
        return false;
    QFile svg(QStringLiteral("Images/icon/ledgerly.svg"));
    if (!svg.open(QIODevice::WriteOnly) || svg.write(iconSvg()) < 0)
        return false;
    for (int size : { 16, 32, 48, 64, 128, 256 }) {
        if (!iconPicture(size).save(QStringLiteral("Images/icon/ledgerly-%1.png").arg(size), "PNG"))
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    const bool ok = homePicture().save(QStringLiteral("Images/LedgerlyHome.jpg"), "JPG", 88) &&
        logoPicture().save(QStringLiteral("Images/CompanyLogo.jpg"), "JPG", 88) && writeIcons();
    return ok ? 0 : 1;
}
