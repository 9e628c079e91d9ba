// SPDX-License-Identifier: MIT
#pragma once

#include <cairo.h>

#include <cstdint>
#include <initializer_list>

namespace ZorvaneDemo {

constexpr double pi = 3.14159265358979323846;

struct Rgb {
    double red;
    double green;
    double blue;
};

struct Point {
    double x;
    double y;
};

struct Box {
    double x;
    double y;
    double width;
    double height;
};

constexpr Rgb rgb(unsigned hex)
{
    return {((hex >> 16) & 0xff) / 255.0, ((hex >> 8) & 0xff) / 255.0, (hex & 0xff) / 255.0};
}

/// Of what stands on the ground.
constexpr Rgb shadow = rgb(0x101418);

/// From `a` (part 0) to `b` (part 1).
Rgb mixed(Rgb a, Rgb b, double part);
/// Darker below 1, lighter above.
Rgb shaded(Rgb colour, double factor);

/// The same sequence for the same seed: details of a background.
class Dice
{
public:
    explicit Dice(std::uint32_t seed) : state(seed * 2654435761u + 1) {}
    /// Evenly between 0 and 1.
    double next();
    double between(double least, double most) { return least + next() * (most - least); }
    int below(int count) { return static_cast<int>(next() * count); }

private:
    std::uint32_t state;
};

void fillBox(cairo_t *cr, Box box, Rgb colour, double alpha = 1);
void fillRounded(cairo_t *cr, Box box, double radius, Rgb colour, double alpha = 1);
/// From `top` at the upper edge to `bottom` at the lower.
void fillGradient(cairo_t *cr, Box box, Rgb top, Rgb bottom);
void fillPolygon(cairo_t *cr, std::initializer_list<Point> points, Rgb colour, double alpha = 1);
void fillEllipse(cairo_t *cr, Point centre, double radiusX, double radiusY, Rgb colour,
                 double alpha = 1);
void strokeLine(cairo_t *cr, Point from, Point to, double width, Rgb colour, double alpha = 1);
/// Light that fades with the distance from its centre.
void glow(cairo_t *cr, Point centre, double radius, Rgb colour, double alpha);
/// Light that falls from `top` and fades down to `bottomY`.
void lightCone(cairo_t *cr, Point top, double bottomY, double halfWidth, Rgb colour, double alpha);
/// The darker corners of a lens; the last touch of a background.
void vignette(cairo_t *cr, double alpha);

} // namespace ZorvaneDemo
