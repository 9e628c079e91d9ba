// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "demo/scenes/Motion.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

class Entrance : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 470}, rgb(0xcfc8bb), rgb(0xb6ae9f));
        for (double y = 0; y < 470; y += 47) {
            const bool odd = static_cast<int>(y / 47) % 2 == 1;
            strokeLine(cr, {0, y}, {width, y}, 2, rgb(0x9c9486), 0.7);
            for (double x = odd ? -60 : 0; x < width; x += 120)
                strokeLine(cr, {x, y}, {x, y + 47}, 2, rgb(0x9c9486), 0.5);
        }
        for (const double x : {60.0, 1000.0}) {
            fillBox(cr, {x, 120, 220, 260}, rgb(0x3b4148));
            fillGradient(cr, {x + 10, 130, 200, 240}, rgb(0x9ab3c6), rgb(0x5d7488));
            fillPolygon(cr, {{x + 30, 370}, {x + 120, 130}, {x + 160, 130}, {x + 70, 370}},
                        rgb(0xffffff), 0.16);
            fillBox(cr, {x + 107, 130, 6, 240}, rgb(0x3b4148));
            fillBox(cr, {x - 10, 380, 240, 14}, rgb(0x8d8577));
        }
        fillBox(cr, {350, 60, 580, 410}, rgb(0x2d3339));
        fillGradient(cr, {372, 130, 536, 340}, rgb(0xf3e6c6), rgb(0xb09a72));
        fillGradient(cr, {372, 380, 536, 90}, rgb(0x8e8069), rgb(0xa7977b));
        fillBox(cr, {430, 300, 150, 80}, rgb(0x7a5b40));
        fillBox(cr, {424, 292, 162, 12}, rgb(0x9c7a58));
        paintBush(cr, {820, 392}, 80, rgb(0x4f7f45), 52);
        fillBox(cr, {372, 76, 536, 54}, rgb(0x1f4e6b));
        for (int i = 0; i < 7; ++i)
            fillRounded(cr, {500 + i * 42.0, 92, 30, 22}, 5, rgb(0xf2efe6), 0.9);
        fillPolygon(cr, {{310, 40}, {970, 40}, {1010, 74}, {270, 74}}, rgb(0x4c545c));
        fillBox(cr, {270, 74, 740, 10}, rgb(0x363c42));
        for (const double x : {420.0, 640.0, 860.0})
            glow(cr, {x, 92}, 150, rgb(0xffedc0), 0.4);
        fillGradient(cr, {0, 470, width, 250}, rgb(0xa39d93), rgb(0x7d7870));
        for (int i = -10; i <= 10; ++i)
            strokeLine(cr, {640 + i * 90.0, 470}, {640 + i * 190.0, 720}, 2, rgb(0x6f6a62), 0.45);
        for (const double y : {498.0, 540.0, 606.0, 690.0})
            strokeLine(cr, {0, y}, {width, y}, 2, rgb(0x6f6a62), 0.4);
        fillPolygon(cr, {{470, 478}, {810, 478}, {860, 540}, {420, 540}}, rgb(0x3c3a38), 0.85);
        for (const double x : {316.0, 964.0}) {
            fillPolygon(cr, {{x - 36, 440}, {x + 36, 440}, {x + 26, 505}, {x - 26, 505}},
                        rgb(0x6b5344));
            paintBush(cr, {x, 448}, 110, rgb(0x507f48), static_cast<std::uint32_t>(x));
        }
        vignette(cr, 0.4);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        const double open = opening(seconds);
        result.push_back({372, 130, 536, 345, [open](cairo_t *cr) { paintDoors(cr, open); }});
        for (const Visit &visit : visits()) {
            addWalk(&result, seconds,
                    {visit.start, duration, visit.from, visit.to, heightAt(visit.from.y),
                     heightAt(visit.to.y), look(visit.person)});
        }
        addWalk(&result, seconds, {26, 24, {-60, 640}, {1340, 640}, 250, 250, look(6)});
        return result;
    }

private:
    static constexpr double duration = 10;

    struct Visit {
        double start;
        Point from;
        Point to;
        int person;
    };

    static std::array<Visit, 5> visits()
    {
        return {{{1, {1040, 690}, {650, 476}, 0},
                 {13, {620, 476}, {180, 680}, 1},
                 {24, {330, 700}, {630, 476}, 2},
                 {38, {660, 476}, {980, 690}, 5},
                 {48, {520, 700}, {640, 476}, 3}}};
    }

    static double heightAt(double y) { return 150 + (y - 476) * 0.62; }

    /// How far the doors stand open: 1 while someone is near them.
    static double opening(double seconds)
    {
        double most = 0;
        for (const Visit &visit : visits()) {
            const double part = progress(seconds, visit.start, duration + 2);
            if (part < 0)
                continue;
            const bool in = visit.to.y < visit.from.y;
            const double away = in ? std::abs(part - 0.83) : std::abs(part - 0.05);
            most = std::max(most, std::min(1.0, std::max(0.0, (0.3 - away) / 0.12)));
        }
        return eased(most);
    }

    static void paintDoors(cairo_t *cr, double open)
    {
        for (const int side : {-1, 1}) {
            const double x = side < 0 ? 505 - open * 120 : 642 + open * 120;
            fillBox(cr, {x, 140, 133, 332}, rgb(0x9db8c9), 0.42);
            fillPolygon(cr, {{x + 20, 470}, {x + 85, 142}, {x + 110, 142}, {x + 45, 470}},
                        rgb(0xffffff), 0.14);
            fillBox(cr, {x, 140, 133, 8}, rgb(0x3b4148));
            fillBox(cr, {x, 464, 133, 8}, rgb(0x3b4148));
            fillBox(cr, {x, 140, 7, 332}, rgb(0x3b4148));
            fillBox(cr, {x + 126, 140, 7, 332}, rgb(0x3b4148));
        }
    }
};

} // namespace

std::unique_ptr<Scene> newEntrance()
{
    return std::make_unique<Entrance>();
}

} // namespace ZorvaneDemo
