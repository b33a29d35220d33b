// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "contrast.h"

#include <QHash>
#include <QImage>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

double channel(int value)
{
    const double c = value / 255.0;
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * channel(colour.red()) + 0.7152 * channel(colour.green()) + 0.0722 * channel(colour.blue());
}

int countPixels(const QImage &picture, const QRect &area, const std::function<bool(const QColor &)> &counts)
{
    const QRect inside = area.intersected(picture.rect());
    int count = 0;
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            count += counts(picture.pixelColor(x, y)) ? 1 : 0;
    return count;
}

} // namespace

double contrastRatio(const QColor &a, const QColor &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor groundColour(const QImage &picture, const QRect &area)
{
    const QRect inside = area.intersected(picture.rect());
    QHash<QRgb, int> counts;
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            ++counts[picture.pixel(x, y)];
    QRgb commonest = 0;
    int most = -1;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        if (it.value() > most) {
            most = it.value();
            commonest = it.key();
        }
    }
    return QColor::fromRgb(commonest);
}

double drawnContrast(const QImage &picture, const QRect &area)
{
    const QColor ground = groundColour(picture, area);
    const QRect inside = area.intersected(picture.rect());
    std::vector<double> ratios;
    ratios.reserve(size_t(inside.width()) * size_t(inside.height()));
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            ratios.push_back(contrastRatio(ground, picture.pixelColor(x, y)));
    // The fifth strongest pixel: glyph strokes have many, a stray dot not.
    const size_t rank = 5;
    if (ratios.size() < rank)
        return 1.0;
    std::nth_element(ratios.begin(), ratios.begin() + (rank - 1), ratios.end(), std::greater<double>());
    return ratios[rank - 1];
}

double drawnContrast(const QImage &picture)
{
    return drawnContrast(picture, picture.rect());
}

int lightPixels(const QImage &picture, const QRect &area)
{
    return countPixels(picture, area, [](const QColor &colour) { return colour.lightness() > 160; });
}

int darkPixels(const QImage &picture, const QRect &area)
{
    return countPixels(picture, area, [](const QColor &colour) { return colour.lightness() < 90; });
}
