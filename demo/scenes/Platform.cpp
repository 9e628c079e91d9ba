// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

class Platform : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 300}, rgb(0x8fb0cc), rgb(0xe6e6df));
        Dice dice(121);
        for (double x = -20; x < width; x += dice.between(50, 100))
            fillBox(cr, {x, dice.between(130, 210), dice.between(60, 120), 200}, rgb(0xb3bfca),
                    0.9);
        for (int i = 0; i < 9; ++i)
            paintTree(cr, {40 + i * 160.0, 322}, 130, rgb(0x6b8f57),
                      static_cast<std::uint32_t>(i + 122));
        fillGradient(cr, {0, 315, width, 75}, rgb(0xa8a297), rgb(0x8f897e));
        fillBox(cr, {0, 382, width, 12}, rgb(0xe2c24a));
        fillGradient(cr, {0, 392, width, 110}, rgb(0x6a635a), rgb(0x4d4741));
        for (double x = -30; x < width; x += 34)
            fillPolygon(cr, {{x + 8, 430}, {x + 22, 430}, {x + 12, 486}, {x - 4, 486}},
                        rgb(0x5f4a38));
        for (const double y : {438.0, 474.0}) {
            fillBox(cr, {0, y, width, 5}, rgb(0xb9bec3));
            fillBox(cr, {0, y + 5, width, 3}, rgb(0x3b3f43));
        }
        fillBox(cr, {0, 500, width, 10}, rgb(0x8a857b));
        fillGradient(cr, {0, 508, width, 212}, rgb(0xb5afa4), rgb(0x928c81));
        fillBox(cr, {0, 516, width, 12}, rgb(0xe2c24a));
        for (double x = -300; x < width + 300; x += 90)
            strokeLine(cr, {x, 530}, {640 + (x - 640) * 1.3, 720}, 1.5, rgb(0x7d776c), 0.6);
        for (const double y : {570.0, 630.0})
            strokeLine(cr, {0, y}, {width, y}, 1.5, rgb(0x7d776c), 0.5);
        strokeLine(cr, {0, 118}, {width, 112}, 2, rgb(0x3b3f43), 0.7);
        vignette(cr, 0.36);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addTrain(&result, seconds);
        result.push_back({0, 0, width, 112, paintRoof});
        for (const double x : {230.0, 640.0, 1050.0})
            result.push_back({x - 14, 100, 28, 500, [x](cairo_t *cr) {
                                  fillBox(cr, {x - 8, 100, 16, 488}, rgb(0x54616b));
                                  fillBox(cr, {x - 8, 100, 5, 488}, rgb(0x74828d));
                                  fillRounded(cr, {x - 14, 576, 28, 16}, 4, rgb(0x434d55));
                              }});
        result.push_back({700, 105, 90, 95, [seconds](cairo_t *cr) { paintClock(cr, seconds); }});
        addWaiting(&result, seconds);
        addWalk(&result, seconds, {40, 18, {560, 560}, {-60, 660}, 190, 225, look(0)});
        addWalk(&result, seconds, {40.5, 18, {900, 556}, {1340, 650}, 190, 220, look(5)});
        addWalk(&result, seconds, {2, 24, {1340, 690}, {-70, 690}, 255, 255, look(2)});
        return result;
    }

private:
    // The train: in from the right, doors open, out to the left.
    static constexpr double arrives = 12;
    static constexpr double stands = 24;
    static constexpr double leaves = 42;
    static constexpr double gone = 54;

    static void addTrain(std::vector<Sprite> *sprites, double seconds)
    {
        if (seconds < arrives || seconds > gone)
            return;
        double front = -40;
        if (seconds < stands) {
            const double left = 1 - (seconds - arrives) / (stands - arrives);
            front = -40 + 1500 * left * left;
        } else if (seconds > leaves) {
            const double part = (seconds - leaves) / (gone - leaves);
            front = -40 - 1700 * part * part;
        }
        const double open = std::min({1.0, std::max(0.0, (seconds - stands - 1) / 1.5),
                                      std::max(0.0, (leaves - 1 - seconds) / 1.5)});
        for (int car = 0; car < 3; ++car) {
            const double x = front + car * 520;
            sprites->push_back(
                {x, 190, 524, 295, [=](cairo_t *cr) { paintCarriage(cr, x, car == 0, open); }});
        }
    }

    static void paintCarriage(cairo_t *cr, double x, bool first, double open)
    {
        fillBox(cr, {x + 20, 440, 480, 34}, rgb(0x2a2d31));
        for (const double wheel : {70.0, 130.0, 390.0, 450.0})
            fillEllipse(cr, {x + wheel, 462}, 20, 20, rgb(0x3d4247));
        fillRounded(cr, {x + 2, 200, 516, 246}, first ? 40 : 14, rgb(0xd8dde0));
        fillBox(cr, {x + 2, 372, 516, 34}, rgb(0xb5363a));
        fillBox(cr, {x + 6, 406, 508, 36}, rgb(0x8f979d));
        fillBox(cr, {x + 30, 196, 456, 14}, rgb(0x9aa4ab));
        if (first) {
            fillPolygon(cr, {{x + 6, 330}, {x + 22, 248}, {x + 66, 240}, {x + 66, 330}},
                        rgb(0x27323c));
            fillEllipse(cr, {x + 18, 388}, 9, 9, rgb(0xfff3cf));
        }
        for (int window = 0; window < 5; ++window) {
            const double at = x + 88 + window * 84.0;
            const bool door = window == 1 || window == 3;
            if (!door) {
                fillRounded(cr, {at, 244, 68, 92}, 10, rgb(0x33475b));
                fillPolygon(cr, {{at + 8, 334}, {at + 34, 246}, {at + 50, 246}, {at + 24, 334}},
                            rgb(0xffffff), 0.16);
                fillEllipse(cr, {at + 38, 306}, 10, 12, rgb(0x8f7a6a));
                fillRounded(cr, {at + 24, 316, 28, 20}, 8, rgb(0x4a5a78));
                continue;
            }
            fillBox(cr, {at, 236, 68, 200}, rgb(0xf4e3b8));
            for (const int side : {0, 1}) {
                const double leaf = side == 0 ? at - open * 30 : at + 34 + open * 30;
                fillBox(cr, {leaf, 236, 34, 200}, rgb(0xb5363a));
                fillRounded(cr, {leaf + 6, 248, 22, 84}, 6, rgb(0x33475b));
            }
        }
    }

    static void paintRoof(cairo_t *cr)
    {
        fillPolygon(cr, {{0, 0}, {width, 0}, {width, 96}, {0, 96}}, rgb(0x5d6a74));
        for (double x = 0; x < width; x += 80)
            fillBox(cr, {x, 0, 6, 96}, rgb(0x4f5b64));
        fillBox(cr, {0, 94, width, 16}, rgb(0x3f4a52));
        for (const double x : {120.0, 435.0, 845.0, 1160.0}) {
            fillRounded(cr, {x - 70, 84, 140, 12}, 5, rgb(0xfffbe8));
        }
    }

    static void paintClock(cairo_t *cr, double seconds)
    {
        const Point middle{745, 152};
        strokeLine(cr, {745, 108}, {745, 122}, 5, rgb(0x2f353a));
        fillEllipse(cr, middle, 36, 36, rgb(0x2f353a));
        fillEllipse(cr, middle, 31, 31, rgb(0xf6f4ec));
        for (int hour = 0; hour < 12; ++hour) {
            const double angle = hour * pi / 6;
            strokeLine(cr, {middle.x + 24 * std::sin(angle), middle.y - 24 * std::cos(angle)},
                       {middle.x + 28 * std::sin(angle), middle.y - 28 * std::cos(angle)}, 2.5,
                       rgb(0x2f353a));
        }
        strokeLine(cr, middle, {middle.x + 12, middle.y - 11}, 4, rgb(0x2f353a));
        strokeLine(cr, middle, {middle.x - 6, middle.y - 23}, 3, rgb(0x2f353a));
        const double angle = seconds * pi / 30;
        strokeLine(cr, middle, {middle.x + 24 * std::sin(angle), middle.y - 24 * std::cos(angle)},
                   1.8, rgb(0xb5363a));
    }

    static void addWaiting(std::vector<Sprite> *sprites, double seconds)
    {
        const bool aboard = seconds > 29 && seconds < 56;
        if (!aboard) {
            addStanding(sprites, seconds, {420, 560}, 190, look(1));
            addStanding(sprites, seconds, {480, 566}, 182, look(4));
            addStanding(sprites, seconds, {850, 558}, 192, look(3));
        } else if (seconds < 33) {
            addWalk(sprites, seconds, {29, 4, {420, 560}, {255, 522}, 190, 172, look(1)});
            addWalk(sprites, seconds, {29, 4, {480, 566}, {300, 522}, 182, 170, look(4)});
            addWalk(sprites, seconds, {29, 4, {850, 558}, {770, 522}, 192, 172, look(3)});
        }
        addStanding(sprites, seconds, {1130, 600}, 205, look(7));
    }
};

} // namespace

std::unique_ptr<Scene> newPlatform()
{
    return std::make_unique<Platform>();
}

} // namespace ZorvaneDemo
