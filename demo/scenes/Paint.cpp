// SPDX-License-Identifier: MIT
#include "demo/scenes/Paint.h"

#include <algorithm>
#include <cmath>

#include "demo/scenes/Scene.h"

namespace ZorvaneDemo {

namespace {

void setColour(cairo_t *cr, Rgb colour, double alpha)
{
    cairo_set_source_rgba(cr, colour.red, colour.green, colour.blue, alpha);
}

} // namespace

Rgb mixed(Rgb a, Rgb b, double part)
{
    return {a.red + (b.red - a.red) * part, a.green + (b.green - a.green) * part,
            a.blue + (b.blue - a.blue) * part};
}

Rgb shaded(Rgb colour, double factor)
{
    return {std::min(1.0, colour.red * factor), std::min(1.0, colour.green * factor),
            std::min(1.0, colour.blue * factor)};
}

double Dice::next()
{
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return (state >> 8) / 16777216.0;
}

void fillBox(cairo_t *cr, Box box, Rgb colour, double alpha)
{
    setColour(cr, colour, alpha);
    cairo_rectangle(cr, box.x, box.y, box.width, box.height);
    cairo_fill(cr);
}

void fillRounded(cairo_t *cr, Box box, double radius, Rgb colour, double alpha)
{
    const double r = std::min({radius, box.width / 2, box.height / 2});
    setColour(cr, colour, alpha);
    cairo_new_sub_path(cr);
    cairo_arc(cr, box.x + box.width - r, box.y + r, r, -pi / 2, 0);
    cairo_arc(cr, box.x + box.width - r, box.y + box.height - r, r, 0, pi / 2);
    cairo_arc(cr, box.x + r, box.y + box.height - r, r, pi / 2, pi);
    cairo_arc(cr, box.x + r, box.y + r, r, pi, pi * 3 / 2);
    cairo_close_path(cr);
    cairo_fill(cr);
}

void fillGradient(cairo_t *cr, Box box, Rgb top, Rgb bottom)
{
    cairo_pattern_t *pattern = cairo_pattern_create_linear(0, box.y, 0, box.y + box.height);
    cairo_pattern_add_color_stop_rgb(pattern, 0, top.red, top.green, top.blue);
    cairo_pattern_add_color_stop_rgb(pattern, 1, bottom.red, bottom.green, bottom.blue);
    cairo_set_source(cr, pattern);
    cairo_rectangle(cr, box.x, box.y, box.width, box.height);
    cairo_fill(cr);
    cairo_pattern_destroy(pattern);
}

void fillPolygon(cairo_t *cr, std::initializer_list<Point> points, Rgb colour, double alpha)
{
    setColour(cr, colour, alpha);
    for (const Point &point : points)
        cairo_line_to(cr, point.x, point.y);
    cairo_close_path(cr);
    cairo_fill(cr);
}

void fillEllipse(cairo_t *cr, Point centre, double radiusX, double radiusY, Rgb colour,
                 double alpha)
{
    setColour(cr, colour, alpha);
    cairo_save(cr);
    cairo_translate(cr, centre.x, centre.y);
    cairo_scale(cr, radiusX, radiusY);
    cairo_arc(cr, 0, 0, 1, 0, 2 * pi);
    cairo_restore(cr);
    cairo_fill(cr);
}

void strokeLine(cairo_t *cr, Point from, Point to, double width, Rgb colour, double alpha)
{
    setColour(cr, colour, alpha);
    cairo_set_line_width(cr, width);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_move_to(cr, from.x, from.y);
    cairo_line_to(cr, to.x, to.y);
    cairo_stroke(cr);
}

void glow(cairo_t *cr, Point centre, double radius, Rgb colour, double alpha)
{
    cairo_pattern_t *pattern =
        cairo_pattern_create_radial(centre.x, centre.y, 0, centre.x, centre.y, radius);
    cairo_pattern_add_color_stop_rgba(pattern, 0, colour.red, colour.green, colour.blue, alpha);
    cairo_pattern_add_color_stop_rgba(pattern, 0.45, colour.red, colour.green, colour.blue,
                                      alpha * 0.36);
    cairo_pattern_add_color_stop_rgba(pattern, 1, colour.red, colour.green, colour.blue, 0);
    cairo_set_source(cr, pattern);
    cairo_arc(cr, centre.x, centre.y, radius, 0, 2 * pi);
    cairo_fill(cr);
    cairo_pattern_destroy(pattern);
}

void lightCone(cairo_t *cr, Point top, double bottomY, double halfWidth, Rgb colour, double alpha)
{
    cairo_pattern_t *pattern = cairo_pattern_create_linear(0, top.y, 0, bottomY);
    cairo_pattern_add_color_stop_rgba(pattern, 0, colour.red, colour.green, colour.blue, alpha);
    cairo_pattern_add_color_stop_rgba(pattern, 1, colour.red, colour.green, colour.blue, 0);
    cairo_set_source(cr, pattern);
    cairo_move_to(cr, top.x - 4, top.y);
    cairo_line_to(cr, top.x + 4, top.y);
    cairo_line_to(cr, top.x + halfWidth, bottomY);
    cairo_line_to(cr, top.x - halfWidth, bottomY);
    cairo_close_path(cr);
    cairo_fill(cr);
    cairo_pattern_destroy(pattern);
}

void vignette(cairo_t *cr, double alpha)
{
    const Point centre{Scene::width / 2.0, Scene::height / 2.0};
    cairo_pattern_t *pattern = cairo_pattern_create_radial(centre.x, centre.y, Scene::height * 0.55,
                                                           centre.x, centre.y, Scene::width * 0.62);
    cairo_pattern_add_color_stop_rgba(pattern, 0, 0, 0, 0, 0);
    cairo_pattern_add_color_stop_rgba(pattern, 1, 0, 0, 0, alpha);
    cairo_set_source(cr, pattern);
    cairo_paint(cr);
    cairo_pattern_destroy(pattern);
}

} // namespace ZorvaneDemo
