// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QColor>

class QImage;
class QRect;

// How well what is drawn stands out from its ground, by the contrast ratio of
// the Web Content Accessibility Guidelines: 1 for one colour, 21 for black on
// white; 4.5 is the least the guidelines ask of text.
double contrastRatio(const QColor &a, const QColor &b);

// The commonest colour of `area` of the picture: the ground text is drawn on.
QColor groundColour(const QImage &picture, const QRect &area);

// The contrast between the ground of `area` and what is drawn on it, taken
// from the few pixels that differ most, so that a stray pixel does not count
// and anti-aliased edges do not lower it. 1 when nothing is drawn.
double drawnContrast(const QImage &picture, const QRect &area);
double drawnContrast(const QImage &picture);

// The number of pixels of `area` that are light (lightness above 160) and
// dark (below 90).
int lightPixels(const QImage &picture, const QRect &area);
int darkPixels(const QImage &picture, const QRect &area);
