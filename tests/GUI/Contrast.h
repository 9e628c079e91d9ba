// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include <cmath>

namespace ZorvaneClient::Tests {

inline double luminance(QRgb colour)
{
    const auto linear = [](int channel) {
        const double share = channel / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
           0.0722 * linear(qBlue(colour));
}

/// By the formula for web pages.
inline double contrastOf(QRgb one, QRgb other)
{
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

/// Of the colour that stands out most from the most frequent one.
inline double contrastIn(const QImage &picture)
{
    QHash<QRgb, int> counts;
    QRgb ground = picture.pixel(0, 0);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb colour = picture.pixel(x, y);
            if (++counts[colour] > counts.value(ground))
                ground = colour;
        }
    }
    const QList<QRgb> colours = counts.keys();
    double strongest = 1;
    for (const QRgb colour : colours)
        strongest = qMax(strongest, contrastOf(ground, colour));
    return strongest;
}

/// How many pixels are bright.
inline int lit(const QImage &picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixelColor(x, y).red() > 130 ? 1 : 0;
    }
    return count;
}

} // namespace ZorvaneClient::Tests
