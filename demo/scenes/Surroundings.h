// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "demo/scenes/Paint.h"

namespace ZorvaneDemo {

void paintTree(cairo_t *cr, Point foot, double height, Rgb leaves, std::uint32_t seed);
void paintBush(cairo_t *cr, Point foot, double width, Rgb leaves, std::uint32_t seed);
void paintCloud(cairo_t *cr, Point centre, double size, double alpha);
constexpr Rgb lampMetal = rgb(0x4a5159);
/// Its arm reaches to the right.
void paintLampPost(cairo_t *cr, Point foot, double height, Rgb metal = lampMetal);
/// A front with rows of windows; `lit` of them, 0 to 1, have light.
void paintFront(cairo_t *cr, Box box, Rgb wall, int columns, int rows, double lit,
                std::uint32_t seed);

} // namespace ZorvaneDemo
