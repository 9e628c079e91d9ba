// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

class Office : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 380}, rgb(0xe6e4de), rgb(0xd3d0c8));
        for (int i = 0; i < 5; ++i)
            paintWindow(cr, {40 + i * 246.0, 70, 216, 220}, static_cast<std::uint32_t>(81 + i));
        fillBox(cr, {0, 296, width, 14}, rgb(0xb8b2a6));
        fillGradient(cr, {0, 380, width, 340}, rgb(0x7f8a92), rgb(0x5f6970));
        for (int i = -9; i <= 9; ++i)
            strokeLine(cr, {640 + i * 110.0, 380}, {640 + i * 230.0, 720}, 1.5, rgb(0x545d64), 0.6);
        for (const double y : {415.0, 470.0, 560.0, 690.0})
            strokeLine(cr, {0, y}, {width, y}, 1.5, rgb(0x545d64), 0.5);
        for (const double x : {250.0, 640.0, 1030.0}) {
            strokeLine(cr, {x, 0}, {x, 40}, 3, rgb(0x3b4148));
            fillRounded(cr, {x - 80, 38, 160, 14}, 6, rgb(0x3b4148));
            fillBox(cr, {x - 76, 50, 152, 4}, rgb(0xfffbe8));
            glow(cr, {x, 60}, 170, rgb(0xfffbe8), 0.4);
        }
        for (const double x : {30.0, 1240.0}) {
            fillPolygon(cr, {{x - 26, 380}, {x + 26, 380}, {x + 18, 440}, {x - 18, 440}},
                        rgb(0xf0ece4));
            paintBush(cr, {x, 384}, 110, rgb(0x4d8a56), static_cast<std::uint32_t>(x) + 1);
        }
        vignette(cr, 0.36);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        for (const double x : {210.0, 640.0, 1070.0})
            addDesk(&result, seconds, {x, 465}, 0.78);
        addWalk(&result, seconds, {3, 22, {-50, 500}, {1330, 505}, 200, 202, look(1), 0.96});
        addWalk(&result, seconds, {33, 23, {1330, 510}, {-50, 505}, 205, 203, look(5), 0.96});
        for (const double x : {70.0, 470.0, 870.0, 1270.0})
            addDesk(&result, seconds, {x, 662}, 1.1);
        return result;
    }

private:
    static void paintWindow(cairo_t *cr, Box box, std::uint32_t seed)
    {
        Dice dice(seed);
        fillBox(cr, {box.x - 7, box.y - 7, box.width + 14, box.height + 14}, rgb(0x6f757a));
        fillGradient(cr, box, rgb(0x8fb9dc), rgb(0xe3edf2));
        for (double x = box.x; x < box.x + box.width - 4;) {
            const double wide = std::min(dice.between(24, 50), box.x + box.width - x);
            const double tall = dice.between(40, 150);
            fillBox(cr, {x, box.y + box.height - tall, wide, tall},
                    mixed(rgb(0x9fb2c2), rgb(0xc4ccd2), dice.next()));
            x += wide;
        }
        fillBox(cr, {box.x + box.width / 2 - 3, box.y, 6, box.height}, rgb(0x6f757a));
        for (int slat = 0; slat < 6; ++slat)
            fillBox(cr, {box.x, box.y + slat * 9.0, box.width, 5}, rgb(0xf2f0ea), 0.75);
    }

    static void addDesk(std::vector<Sprite> *sprites, double seconds, Point at, double scale)
    {
        sprites->push_back({at.x - 170 * scale, at.y - 200 * scale, 340 * scale, 245 * scale,
                            [=](cairo_t *cr) { paintDesk(cr, at, scale, seconds); }});
    }

    static void paintDesk(cairo_t *cr, Point at, double scale, double seconds)
    {
        const int person = static_cast<int>(at.x) / 37;
        const PersonLook wears = look(person);
        cairo_save(cr);
        cairo_translate(cr, at.x, at.y);
        cairo_scale(cr, scale, scale);
        fillEllipse(cr, {0, 34}, 160, 12, shadow, 0.3);
        // The person behind the desk, turned towards the screen.
        const double nod = 2 * std::sin(2 * pi * seconds / 6 + at.x);
        fillRounded(cr, {-98, -112, 76, 110}, 16, rgb(0x2f353b));
        fillRounded(cr, {-92, -96, 64, 100}, 24, wears.coat);
        fillEllipse(cr, {-58, -122 + nod}, 24, 29, skin);
        fillEllipse(cr, {-62, -134 + nod}, 26, 21, wears.hair);
        const double typing = 3 * std::sin(2 * pi * seconds * 2 + at.x);
        strokeLine(cr, {-46, -64}, {-8, -22 + typing}, 16, shaded(wears.coat, 0.88));
        fillEllipse(cr, {-4, -20 + typing}, 8, 7, skin);
        fillRounded(cr, {-155, -16, 310, 14}, 4, rgb(0xcaa777));
        fillBox(cr, {-148, -2, 296, 8}, rgb(0x9c7c50));
        for (const double x : {-140.0, 130.0})
            fillBox(cr, {x, 4, 10, 32}, rgb(0x4a5056));
        fillBox(cr, {62, -34, 12, 20}, rgb(0x33383d));
        fillRounded(cr, {14, -112, 110, 80}, 5, rgb(0x2a2f34));
        paintScreen(cr, seconds, person);
        fillRounded(cr, {-118, -30, 20, 16}, 3, rgb(0xe8e4da));
        cairo_restore(cr);
    }

    static void paintScreen(cairo_t *cr, double seconds, int person)
    {
        fillGradient(cr, {19, -107, 100, 70}, rgb(0x2f5f86), rgb(0x1f3f5c));
        const int shown = static_cast<int>(seconds / 4 + person) % 3;
        if (shown == 0) {
            for (int bar = 0; bar < 7; ++bar) {
                const double tall = 20 + 18 * std::sin(bar * 1.7 + person);
                fillBox(cr, {26 + bar * 13.0, -46 - tall, 9, tall}, rgb(0x6fd0c0));
            }
        } else {
            for (int row = 0; row < 6; ++row)
                fillBox(cr, {26, -100 + row * 10.0, 40 + 42 * std::abs(std::sin(row + shown)), 5},
                        rgb(0xd6e6f0), 0.85);
        }
    }
};

} // namespace

std::unique_ptr<Scene> newOffice()
{
    return std::make_unique<Office>();
}

} // namespace ZorvaneDemo
