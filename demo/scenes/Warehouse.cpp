// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>
#include <cstdint>

#include "demo/scenes/Motion.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Tunnel.h"

namespace ZorvaneDemo {

namespace {

class Warehouse : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, height}, rgb(0x59636b), rgb(0x8d8a82));
        for (double depth = 0; depth < 0.9; depth += (1 - depth) * 0.2)
            strokeLine(cr, tunnel.ceiling(-1.2, depth), tunnel.ceiling(1.2, depth),
                       10 * (1 - depth), rgb(0x454d54));
        fillPolygon(cr,
                    {tunnel.floor(-2.2, 0), tunnel.floor(-2.2, far), tunnel.floor(2.2, far),
                     tunnel.floor(2.2, 0)},
                    rgb(0xa19c91));
        const Point low = tunnel.floor(-2.2, far);
        fillGradient(cr, {low.x, 190, 2 * (640 - low.x), low.y - 190}, rgb(0xaab2b6),
                     rgb(0x8b9295));
        fillBox(cr, {585, 262, 110, low.y - 262}, rgb(0x5b6a73));
        for (int i = 1; i < 5; ++i)
            strokeLine(cr, {585, 262 + i * 18.0}, {695, 262 + i * 18.0}, 1.5, rgb(0x47545c));
        for (const double depth : {0.1, 0.36, 0.56, 0.7}) {
            const Point lamp = tunnel.ceiling(0, depth);
            fillEllipse(cr, {lamp.x, lamp.y + 12 * (1 - depth)}, 70 * (1 - depth), 10 * (1 - depth),
                        rgb(0xfffbe8));
            glow(cr, lamp, 260 * (1 - depth), rgb(0xfff3cf), 0.35);
            glow(cr, tunnel.floor(0, depth), 230 * (1 - depth), rgb(0xfff3cf), 0.25);
        }
        for (const double side : {-0.55, 0.55})
            fillPolygon(cr,
                        {tunnel.floor(side - 0.02, 0), tunnel.floor(side - 0.02, far),
                         tunnel.floor(side + 0.02, far), tunnel.floor(side + 0.02, 0)},
                        rgb(0xe0b83c), 0.9);
        paintRacks(cr, -1, 61);
        paintRacks(cr, 1, 62);
        vignette(cr, 0.42);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        const PersonLook clerk{rgb(0xd8de3e), rgb(0x33384a), rgb(0xf2f2f2), false};
        addWalk(&result, seconds, {6, 22, {560, 395}, {330, 640}, 92, 265, worker, 0.95});
        addForklift(&result, seconds, 14, 13, {700, 402}, {900, 640}, 0.28, 0.82);
        addForklift(&result, seconds, 42, 13, {840, 640}, {690, 402}, 0.80, 0.28);
        addWalk(&result, seconds, {34, 24, {420, 660}, {600, 392}, 275, 88, clerk, 0.95});
        return result;
    }

private:
    static constexpr double far = 0.8;
    const Tunnel tunnel{{640, 300}, 620, 420, 420};

    void paintRacks(cairo_t *cr, int side, std::uint32_t seed) const
    {
        Dice dice(seed);
        const std::array<Rgb, 6> boxes{rgb(0xb98d57), rgb(0xc9a06a), rgb(0xa57a4a),
                                       rgb(0x5d7f98), rgb(0xcfc8b8), rgb(0x8f6a44)};
        for (double depth = far; depth > 0.02;) {
            const double near = 1 - (1 - depth) * 1.22;
            const double scale = 1 - depth;
            for (int shelf = 0; shelf < 4; ++shelf) {
                const double bottom = tunnel.floor(side, depth).y - shelf * 175 * scale;
                const double nearBottom = tunnel.floor(side, near).y - shelf * 175 * (1 - near);
                for (int box = 0; box < 3; ++box) {
                    const double a = depth + (near - depth) * (box / 3.0 + 0.03);
                    const double b = depth + (near - depth) * (box / 3.0 + 0.29);
                    const double tall = dice.between(70, 140);
                    const auto at = [&](double d, double up) {
                        const double part = (d - depth) / (near - depth);
                        return Point{tunnel.floor(side * 1.03, d).x,
                                     bottom + (nearBottom - bottom) * part - up * (1 - d)};
                    };
                    const Rgb colour = boxes[static_cast<std::size_t>(dice.below(6))];
                    if (dice.next() < 0.12)
                        continue;
                    fillPolygon(cr, {at(a, 8), at(a, tall), at(b, tall), at(b, 8)},
                                shaded(colour, 0.55 + 0.45 * scale));
                    strokeLine(cr, at((a + b) / 2, 8), at((a + b) / 2, tall), 3 * scale,
                               shaded(colour, 0.45 + 0.4 * scale));
                }
                fillPolygon(cr,
                            {{tunnel.floor(side, depth).x, bottom},
                             {tunnel.floor(side, near).x, nearBottom},
                             {tunnel.floor(side, near).x, nearBottom - 11 * (1 - near)},
                             {tunnel.floor(side, depth).x, bottom - 11 * scale}},
                            rgb(0xd2702e));
            }
            strokeLine(cr, tunnel.floor(side, near),
                       {tunnel.floor(side, near).x, tunnel.floor(side, near).y - 720 * (1 - near)},
                       13 * (1 - near), rgb(0x2f5578));
            depth = near;
        }
    }

    static void addForklift(std::vector<Sprite> *sprites, double seconds, double start,
                            double duration, Point from, Point to, double scaleFrom, double scaleTo)
    {
        const double part = progress(seconds, start, duration);
        if (part < 0)
            return;
        const Point at{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
        const double s = scaleFrom + (scaleTo - scaleFrom) * part;
        sprites->push_back({at.x - 130 * s, at.y - 300 * s, 260 * s, 330 * s,
                            [=](cairo_t *cr) { paintForklift(cr, at, s, seconds); }});
    }

    static void paintForklift(cairo_t *cr, Point at, double scale, double seconds)
    {
        cairo_save(cr);
        cairo_translate(cr, at.x, at.y);
        cairo_scale(cr, scale, scale);
        fillEllipse(cr, {0, 0}, 120, 20, shadow, 0.4);
        fillRounded(cr, {-92, -52, 34, 54}, 10, rgb(0x1b1d20));
        fillRounded(cr, {58, -52, 34, 54}, 10, rgb(0x1b1d20));
        fillRounded(cr, {-85, -140, 170, 120}, 18, rgb(0xe2a92c));
        fillRounded(cr, {-85, -70, 170, 50}, 14, rgb(0xb7811d));
        fillBox(cr, {-78, -275, 10, 150}, rgb(0x33383d));
        fillBox(cr, {68, -275, 10, 150}, rgb(0x33383d));
        fillRounded(cr, {-88, -288, 176, 18}, 6, rgb(0x33383d));
        fillEllipse(cr, {0, -205}, 27, 30, skin);
        fillEllipse(cr, {0, -220}, 31, 24, rgb(0xf2f2ea));
        fillRounded(cr, {-40, -180, 80, 60}, 20, rgb(0xe8772e));
        fillBox(cr, {-60, -165, 12, 150}, rgb(0x4a5056));
        fillBox(cr, {48, -165, 12, 150}, rgb(0x4a5056));
        fillRounded(cr, {-72, -96, 144, 84}, 4, rgb(0xb98d57));
        fillBox(cr, {-8, -96, 16, 84}, rgb(0xd6b27c));
        fillBox(cr, {-78, -14, 156, 10}, rgb(0x7d5d38));
        const bool blink = std::fmod(seconds, 1.0) < 0.5;
        fillEllipse(cr, {0, -296}, 11, 9, blink ? rgb(0xffb347) : rgb(0x9c5a12));
        cairo_restore(cr);
    }
};

} // namespace

std::unique_ptr<Scene> newWarehouse()
{
    return std::make_unique<Warehouse>();
}

} // namespace ZorvaneDemo
