// SPDX-License-Identifier: MIT
#include "demo/Figures.h"

#include <array>
#include <cmath>

namespace ZorvaneDemo {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double minute = 60;
constexpr double stepsPerSecond = 1.9;
constexpr Rgb skin = rgb(0xd9a98a);
constexpr Rgb shadow = rgb(0x101418);
constexpr Rgb glass = rgb(0x2b3a49);
constexpr Rgb tyre = rgb(0x1b1d20);

void paintLeg(cairo_t *cr, Point hip, double length, double swing, double width, Rgb colour)
{
    const Point knee{hip.x + length * 0.5 * std::sin(swing), hip.y + length * 0.5};
    const Point foot{hip.x + length * 0.9 * std::sin(swing * 1.05),
                     hip.y + length * (0.98 - 0.10 * std::abs(std::sin(swing)))};
    strokeLine(cr, hip, knee, width, colour);
    strokeLine(cr, knee, foot, width * 0.9, colour);
    strokeLine(cr, foot, {foot.x + width * 0.35, foot.y}, width * 0.8, rgb(0x2a2522));
}

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

PersonLook look(int number)
{
    constexpr std::array<PersonLook, 8> looks{{
        {rgb(0x3d5a80), rgb(0x2b2d42), rgb(0x3a2a20), true},
        {rgb(0xb5453c), rgb(0x39424e), rgb(0x1f1a17), false},
        {rgb(0xd9a441), rgb(0x4a4e58), rgb(0x6b4a2f), true},
        {rgb(0x4f7f5b), rgb(0x2f3640), rgb(0x2a211c), false},
        {rgb(0x7d6b91), rgb(0x3b3b46), rgb(0x8a6b45), false},
        {rgb(0xd8d4cc), rgb(0x3e5068), rgb(0x251d19), true},
        {rgb(0x2f3b46), rgb(0x22262b), rgb(0x555049), false},
        {rgb(0xe07a3f), rgb(0x33384a), rgb(0x30241d), false},
    }};
    return looks[static_cast<std::size_t>(number) % looks.size()];
}

double progress(double seconds, double start, double duration)
{
    const double since = std::fmod(seconds - start + 2 * minute, minute);
    return since < duration ? since / duration : -1;
}

double eased(double part)
{
    return part * part * (3 - 2 * part);
}

void paintPerson(cairo_t *cr, Point feet, double height, double stride, int direction,
                 const PersonLook &wears, double brightness)
{
    const double h = height;
    const double swing = 0.5 * std::sin(stride);
    const double bob = 0.012 * h * std::cos(2 * stride);
    const Rgb coat = shaded(wears.coat, brightness);
    const Rgb trousers = shaded(wears.trousers, brightness);
    const Rgb face = shaded(skin, brightness);
    fillEllipse(cr, {feet.x + 0.05 * h, feet.y}, 0.24 * h, 0.045 * h, shadow, 0.32);

    const Point hip{feet.x, feet.y - 0.47 * h - bob};
    const Point shoulder{feet.x + direction * 0.012 * h, feet.y - 0.80 * h - bob};
    paintLeg(cr, hip, 0.48 * h, -swing, 0.095 * h, shaded(trousers, 0.85));
    paintLeg(cr, hip, 0.48 * h, swing, 0.095 * h, trousers);
    const Point farHand{shoulder.x - 0.25 * h * std::sin(-swing * 1.2), shoulder.y + 0.30 * h};
    strokeLine(cr, {shoulder.x, shoulder.y + 0.03 * h}, farHand, 0.07 * h, shaded(coat, 0.75));
    fillRounded(cr, {feet.x - 0.115 * h, shoulder.y - 0.02 * h, 0.23 * h, 0.37 * h}, 0.085 * h,
                coat);
    fillRounded(
        cr,
        {feet.x + (direction >= 0 ? -0.115 : 0.045) * h, shoulder.y - 0.02 * h, 0.07 * h, 0.37 * h},
        0.035 * h, shaded(coat, 0.86));
    const Point nearHand{shoulder.x - 0.25 * h * std::sin(swing * 1.2), shoulder.y + 0.30 * h};
    strokeLine(cr, {shoulder.x, shoulder.y + 0.03 * h}, nearHand, 0.075 * h, shaded(coat, 0.92));
    fillEllipse(cr, nearHand, 0.032 * h, 0.032 * h, face);
    if (wears.bag)
        fillRounded(cr, {nearHand.x - 0.07 * h, nearHand.y + 0.01 * h, 0.14 * h, 0.13 * h},
                    0.02 * h, shaded(rgb(0x6b4b35), brightness));
    const Point head{feet.x + direction * 0.015 * h, feet.y - 0.90 * h - bob};
    fillBox(cr, {head.x - 0.028 * h, head.y + 0.04 * h, 0.056 * h, 0.07 * h}, shaded(face, 0.9));
    fillEllipse(cr, head, 0.066 * h, 0.08 * h, face);
    const Rgb hair = shaded(wears.hair, brightness);
    fillEllipse(cr, {head.x - direction * 0.018 * h, head.y - 0.03 * h}, 0.07 * h, 0.06 * h, hair);
}

void addWalk(std::vector<Sprite> *sprites, double seconds, const Walk &walk)
{
    const double part = progress(seconds, walk.startSecond, walk.duration);
    if (part < 0)
        return;
    const Point feet{walk.from.x + (walk.to.x - walk.from.x) * part,
                     walk.from.y + (walk.to.y - walk.from.y) * part};
    const double height = walk.heightFrom + (walk.heightTo - walk.heightFrom) * part;
    const double across = walk.to.x - walk.from.x;
    const int direction = std::abs(across) < 30 ? 0 : across > 0 ? 1 : -1;
    const double stride = part * walk.duration * stepsPerSecond * pi;
    sprites->push_back({feet.x - 0.42 * height, feet.y - 1.05 * height, 0.84 * height,
                        1.15 * height, [=](cairo_t *cr) {
                            paintPerson(cr, feet, height, stride, direction, walk.look,
                                        walk.brightness);
                        }});
}

void addStanding(std::vector<Sprite> *sprites, double seconds, Point feet, double height,
                 const PersonLook &wears, double brightness)
{
    const Point now{feet.x + 0.012 * height * std::sin(seconds * 2 * pi / 12 + feet.x), feet.y};
    sprites->push_back(
        {feet.x - 0.4 * height, feet.y - 1.05 * height, 0.8 * height, 1.15 * height,
         [=](cairo_t *cr) { paintPerson(cr, now, height, 0.15, 1, wears, brightness); }});
}

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

void paintTree(cairo_t *cr, Point foot, double height, Rgb leaves, std::uint32_t seed)
{
    Dice dice(seed);
    fillEllipse(cr, {foot.x + 0.06 * height, foot.y}, 0.30 * height, 0.04 * height, shadow, 0.28);
    fillPolygon(cr,
                {{foot.x - 0.035 * height, foot.y},
                 {foot.x - 0.018 * height, foot.y - 0.5 * height},
                 {foot.x + 0.018 * height, foot.y - 0.5 * height},
                 {foot.x + 0.035 * height, foot.y}},
                rgb(0x5b4636));
    for (int layer = 0; layer < 3; ++layer) {
        const Rgb colour = shaded(leaves, 0.72 + 0.18 * layer);
        for (int i = 0; i < 9; ++i) {
            const double angle = dice.between(0, 2 * pi);
            const double away = dice.between(0.02, 0.2 - 0.04 * layer) * height;
            const Point centre{foot.x - 0.03 * layer * height + away * std::cos(angle),
                               foot.y - (0.68 + 0.04 * layer) * height +
                                   0.9 * away * std::sin(angle)};
            const double radius = dice.between(0.07, 0.13) * height;
            fillEllipse(cr, centre, radius, radius * 0.92, colour);
        }
    }
}

void paintBush(cairo_t *cr, Point foot, double width, Rgb leaves, std::uint32_t seed)
{
    Dice dice(seed);
    fillEllipse(cr, {foot.x, foot.y}, 0.52 * width, 0.07 * width, shadow, 0.3);
    for (int layer = 0; layer < 2; ++layer) {
        for (int i = 0; i < 8; ++i) {
            const double x = foot.x + dice.between(-0.4, 0.4) * width;
            const double radius = dice.between(0.12, 0.2) * width;
            fillEllipse(cr, {x, foot.y - radius * (0.8 + 0.5 * layer)}, radius, radius * 0.9,
                        shaded(leaves, 0.78 + 0.22 * layer));
        }
    }
}

void paintCloud(cairo_t *cr, Point centre, double size, double alpha)
{
    struct Puff {
        double x;
        double y;
        double radius;
    };
    constexpr std::array<Puff, 4> puffs{
        {{-0.55, 0.08, 0.28}, {-0.2, -0.08, 0.38}, {0.2, 0.0, 0.34}, {0.55, 0.1, 0.24}}};
    cairo_push_group(cr);
    for (const Puff &puff : puffs)
        fillEllipse(cr, {centre.x + puff.x * size, centre.y + puff.y * size}, puff.radius * size,
                    puff.radius * size * 0.55, rgb(0xffffff));
    cairo_pop_group_to_source(cr);
    cairo_paint_with_alpha(cr, alpha);
}

void paintLampPost(cairo_t *cr, Point foot, double height, Rgb metal, int arm)
{
    const double top = foot.y - height;
    fillEllipse(cr, foot, 0.03 * height, 0.008 * height, shadow, 0.35);
    strokeLine(cr, foot, {foot.x, top}, 0.018 * height, metal);
    const Point head{foot.x + arm * 0.16 * height, top - 0.02 * height};
    strokeLine(cr, {foot.x, top}, head, 0.013 * height, metal);
    fillRounded(cr, {head.x - 0.05 * height, head.y - 0.01 * height, 0.10 * height, 0.03 * height},
                0.01 * height, shaded(metal, 0.8));
    fillBox(cr, {head.x - 0.04 * height, head.y + 0.016 * height, 0.08 * height, 0.007 * height},
            rgb(0xfff0c2));
}

void paintFront(cairo_t *cr, Box box, Rgb wall, int columns, int rows, double lit,
                std::uint32_t seed)
{
    Dice dice(seed);
    fillGradient(cr, box, shaded(wall, 1.05), shaded(wall, 0.9));
    fillBox(cr, {box.x, box.y, box.width, 7}, shaded(wall, 0.75));
    fillBox(cr, {box.x + box.width - 9, box.y, 9, box.height}, shaded(wall, 0.82));
    const double stepX = box.width / columns;
    const double stepY = box.height / rows;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const Box window{box.x + (column + 0.22) * stepX, box.y + (row + 0.25) * stepY,
                             stepX * 0.56, stepY * 0.55};
            const bool light = dice.next() < lit;
            const Rgb pane = light ? mixed(rgb(0xf6d58a), rgb(0xffedc0), dice.next())
                                   : mixed(rgb(0x33475b), rgb(0x5f7d97), dice.next());
            fillBox(cr, {window.x - 3, window.y - 3, window.width + 6, window.height + 6},
                    shaded(wall, 1.18));
            fillBox(cr, window, pane);
            fillPolygon(cr,
                        {{window.x, window.y + window.height},
                         {window.x + window.width * 0.55, window.y},
                         {window.x + window.width * 0.8, window.y},
                         {window.x + window.width * 0.2, window.y + window.height}},
                        rgb(0xffffff), light ? 0.12 : 0.10);
            fillBox(cr, {window.x + window.width / 2 - 1, window.y, 2, window.height},
                    shaded(wall, 1.12));
            fillBox(cr, {window.x - 4, window.y + window.height + 3, window.width + 8, 4},
                    shaded(wall, 0.72));
        }
    }
}

} // namespace ZorvaneDemo
