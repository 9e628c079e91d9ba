// SPDX-License-Identifier: MIT
#include "demo/scenes/Cars.h"

#include "demo/scenes/Motion.h"

namespace ZorvaneDemo {

namespace {

constexpr Rgb glass = rgb(0x2b3a49);
constexpr Rgb tyre = rgb(0x1b1d20);

void paintWheel(cairo_t *cr, Point centre, double radius)
{
    fillEllipse(cr, centre, radius, radius, tyre);
    fillEllipse(cr, centre, radius * 0.58, radius * 0.58, rgb(0x9aa1a8));
    fillEllipse(cr, centre, radius * 0.22, radius * 0.22, rgb(0x5a6068));
}

/// The outline of a car of length 1 that drives to the right, wheels on y = 0.
void carOutline(cairo_t *cr, bool van)
{
    cairo_move_to(cr, -0.50, -0.09);
    if (van) {
        cairo_line_to(cr, -0.49, -0.42);
        cairo_curve_to(cr, -0.49, -0.45, -0.46, -0.45, -0.44, -0.45);
        cairo_line_to(cr, 0.22, -0.45);
        cairo_curve_to(cr, 0.28, -0.45, 0.36, -0.30, 0.40, -0.25);
    } else {
        cairo_curve_to(cr, -0.51, -0.20, -0.50, -0.22, -0.44, -0.24);
        cairo_curve_to(cr, -0.36, -0.26, -0.32, -0.37, -0.22, -0.38);
        cairo_line_to(cr, 0.05, -0.38);
        cairo_curve_to(cr, 0.14, -0.37, 0.20, -0.27, 0.27, -0.245);
    }
    cairo_curve_to(cr, 0.40, -0.23, 0.48, -0.21, 0.50, -0.15);
    cairo_line_to(cr, 0.50, -0.08);
    cairo_curve_to(cr, 0.50, -0.06, 0.48, -0.06, 0.46, -0.06);
    cairo_line_to(cr, -0.47, -0.06);
    cairo_close_path(cr);
}

void carWindows(cairo_t *cr, bool van)
{
    if (van) {
        fillPolygon(cr, {{0.10, -0.41}, {0.21, -0.41}, {0.33, -0.26}, {0.10, -0.26}}, glass);
        return;
    }
    fillPolygon(cr, {{-0.31, -0.25}, {-0.22, -0.35}, {-0.09, -0.35}, {-0.09, -0.25}}, glass);
    fillPolygon(cr, {{-0.07, -0.25}, {-0.07, -0.35}, {0.05, -0.35}, {0.17, -0.25}}, glass);
    fillPolygon(cr, {{-0.05, -0.25}, {0.02, -0.35}, {0.05, -0.35}, {-0.01, -0.25}}, rgb(0x7f93a5),
                0.5);
}

} // namespace

void paintCar(cairo_t *cr, double middleX, double groundY, double length, Rgb colour, int direction,
              bool lights, bool van)
{
    fillEllipse(cr, {middleX, groundY}, length * 0.53, length * 0.045, shadow, 0.38);
    cairo_save(cr);
    cairo_translate(cr, middleX, groundY);
    cairo_scale(cr, direction * length, length);
    if (lights) {
        fillPolygon(cr, {{0.49, -0.17}, {1.05, -0.24}, {1.05, 0.03}, {0.49, -0.12}}, rgb(0xfff2c4),
                    0.16);
    }
    carOutline(cr, van);
    cairo_pattern_t *paint = cairo_pattern_create_linear(0, -0.45, 0, -0.06);
    const Rgb upper = mixed(colour, rgb(0xffffff), 0.22);
    const Rgb lower = shaded(colour, 0.62);
    cairo_pattern_add_color_stop_rgb(paint, 0, upper.red, upper.green, upper.blue);
    cairo_pattern_add_color_stop_rgb(paint, 0.55, colour.red, colour.green, colour.blue);
    cairo_pattern_add_color_stop_rgb(paint, 1, lower.red, lower.green, lower.blue);
    cairo_set_source(cr, paint);
    cairo_fill(cr);
    cairo_pattern_destroy(paint);
    carWindows(cr, van);
    strokeLine(cr, {-0.08, -0.24}, {-0.08, -0.09}, 0.006, shaded(colour, 0.55));
    fillBox(cr, {0.02, -0.20, 0.05, 0.012}, shaded(colour, 0.5));
    fillEllipse(cr, {0.475, -0.15}, 0.02, 0.022, lights ? rgb(0xfff3cf) : rgb(0xe8eef2));
    fillBox(cr, {-0.502, -0.19, 0.022, 0.045}, lights ? rgb(0xff4a3d) : rgb(0xa8322b));
    paintWheel(cr, {-0.30, -0.075}, 0.085);
    paintWheel(cr, {0.30, -0.075}, 0.085);
    cairo_restore(cr);
}

void addDrive(std::vector<Sprite> *sprites, double seconds, const Drive &drive)
{
    const double part = progress(seconds, drive.startSecond, drive.duration);
    if (part < 0)
        return;
    const double x = drive.fromX + (drive.toX - drive.fromX) * part;
    const int direction = drive.toX > drive.fromX ? 1 : -1;
    const double reach = drive.lights ? 1.1 : 0.56;
    const double left = direction > 0 ? 0.56 : reach;
    const double right = direction > 0 ? reach : 0.56;
    sprites->push_back({x - left * drive.length, drive.groundY - 0.5 * drive.length,
                        (left + right) * drive.length, 0.56 * drive.length, [=](cairo_t *cr) {
                            paintCar(cr, x, drive.groundY, drive.length, drive.colour, direction,
                                     drive.lights, drive.van);
                        }});
}

} // namespace ZorvaneDemo
