// SPDX-License-Identifier: MIT
#include "demo/scenes/Surroundings.h"

#include <array>
#include <cmath>

namespace ZorvaneDemo {

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

void paintLampPost(cairo_t *cr, Point foot, double height, Rgb metal)
{
    const double top = foot.y - height;
    fillEllipse(cr, foot, 0.03 * height, 0.008 * height, shadow, 0.35);
    strokeLine(cr, foot, {foot.x, top}, 0.018 * height, metal);
    const Point head{foot.x + 0.16 * height, top - 0.02 * height};
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
