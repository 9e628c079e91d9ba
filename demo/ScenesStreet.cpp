// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>

#include "demo/Figures.h"
#include "demo/Scenes.h"

namespace ZorvaneDemo {

namespace {

constexpr double width = Scene::width;
constexpr Rgb metal = rgb(0x4a5159);

class Street : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 360}, rgb(0x6f9fd0), rgb(0xe9eef0));
        glow(cr, {1010, 90}, 320, rgb(0xfff4d6), 0.75);
        paintCloud(cr, {300, 90}, 150, 0.55);
        paintCloud(cr, {720, 60}, 110, 0.45);
        Dice dice(7);
        for (double x = -20; x < width; x += dice.between(60, 110)) {
            const double top = dice.between(150, 250);
            fillBox(cr, {x, top, dice.between(70, 120), 400 - top}, rgb(0xa9bccd), 0.8);
        }
        paintFront(cr, {-30, 120, 270, 310}, rgb(0xc58f6f), 4, 4, 0.1, 11);
        paintFront(cr, {240, 190, 220, 240}, rgb(0xd8c9a8), 3, 3, 0.1, 12);
        paintFront(cr, {460, 90, 300, 340}, rgb(0xa9a39b), 5, 5, 0.12, 13);
        paintFront(cr, {760, 160, 240, 270}, rgb(0xb9776a), 4, 3, 0.1, 14);
        paintFront(cr, {1000, 110, 310, 320}, rgb(0xd3b98f), 4, 4, 0.1, 15);
        paintShops(cr);
        fillGradient(cr, {0, 430, width, 48}, rgb(0xb9b4aa), rgb(0xa49f96));
        for (double x = 0; x < width; x += 64)
            strokeLine(cr, {x, 432}, {x - 26, 476}, 1.5, rgb(0x8e8a82), 0.6);
        fillBox(cr, {0, 476, width, 8}, rgb(0x8b8780));
        fillGradient(cr, {0, 484, width, 170}, rgb(0x565b61), rgb(0x43474c));
        for (double x = 20; x < width; x += 150)
            fillPolygon(cr, {{x, 563}, {x + 78, 563}, {x + 74, 570}, {x - 6, 570}}, rgb(0xe9e6d8),
                        0.85);
        for (int i = 0; i < 9; ++i) {
            const double x = 560 + i * 26;
            fillPolygon(cr, {{x, 490}, {x + 14, 490}, {x - 10, 650}, {x - 30, 650}}, rgb(0xe9e6d8),
                        0.75);
        }
        fillBox(cr, {0, 650, width, 8}, rgb(0x8b8780));
        fillGradient(cr, {0, 658, width, 62}, rgb(0xb5b0a6), rgb(0x9a958c));
        for (const double x : {70.0, 395.0, 905.0, 1180.0})
            paintTree(cr, {x, 462}, 190, rgb(0x5f8f4e), static_cast<std::uint32_t>(x));
        for (const double x : {230.0, 830.0})
            paintLampPost(cr, {x, 470}, 260, metal, 1);
        vignette(cr, 0.35);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addWalk(&result, seconds, {2, 26, {-40, 462}, {1320, 456}, 92, 92, look(0)});
        addWalk(&result, seconds, {15, 30, {1320, 470}, {-40, 468}, 96, 96, look(1)});
        addWalk(&result, seconds, {38, 28, {-40, 466}, {1320, 462}, 94, 94, look(2)});
        addWalk(&result, seconds, {50, 24, {1320, 460}, {-40, 462}, 90, 90, look(4)});
        addStanding(&result, seconds, {1085, 466}, 94, look(5));
        const std::array<Drive, 8> drives{
            {{1, 9, 1480, -220, 548, 210, rgb(0xb23a3a)},
             {17, 9, 1480, -220, 548, 205, rgb(0xe3e5e6)},
             {30, 8, 1480, -220, 548, 215, rgb(0x39566f)},
             {44, 9, 1480, -260, 548, 250, rgb(0xd9dcd6), false, true},
             {6, 8, -240, 1500, 632, 245, rgb(0x2f6f73)},
             {22, 8, -240, 1500, 632, 240, rgb(0xd1a13a)},
             {36, 9, -300, 1560, 632, 300, rgb(0x8f9aa3), false, true},
             {51, 7, -240, 1500, 632, 245, rgb(0x23282d)}}};
        for (const Drive &drive : drives)
            addDrive(&result, seconds, drive);
        addWalk(&result, seconds, {10, 22, {-70, 700}, {1350, 700}, 150, 150, look(3)});
        addWalk(&result, seconds, {34, 23, {1350, 706}, {-70, 706}, 156, 156, look(7)});
        return result;
    }

private:
    static void paintShops(cairo_t *cr)
    {
        const std::array<Rgb, 6> awnings{rgb(0xb5423a), rgb(0x2f6b5e), rgb(0xd9a441),
                                         rgb(0x3d5a80), rgb(0x8a4f7d), rgb(0xc8693f)};
        for (int i = 0; i < 6; ++i) {
            const double x = 10 + i * 213.0;
            fillBox(cr, {x, 352, 185, 78}, rgb(0x2c3238));
            fillGradient(cr, {x + 8, 372, 108, 54}, rgb(0xf4e3b8), rgb(0xb99d6b));
            fillBox(cr, {x + 128, 368, 44, 62}, rgb(0x4a3a30));
            fillBox(cr, {x + 134, 374, 32, 34}, rgb(0xd7c89c));
            for (int item = 0; item < 4; ++item)
                fillRounded(cr, {x + 16 + item * 25, 396, 16, 28}, 4,
                            awnings[static_cast<std::size_t>((item + i + 2) % 6)], 0.85);
            for (int stripe = 0; stripe < 8; ++stripe) {
                const double sx = x - 6 + stripe * 24.6;
                fillPolygon(cr, {{sx + 4, 340}, {sx + 25, 340}, {sx + 24.6, 368}, {sx, 368}},
                            stripe % 2 == 0 ? awnings[static_cast<std::size_t>(i)] : rgb(0xf1ece2));
            }
            fillBox(cr, {x - 6, 366, 197, 4}, rgb(0x000000), 0.25);
        }
    }
};

class CarPark : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 170}, rgb(0x9db8cc), rgb(0xe4e6e1));
        paintFront(cr, {80, 20, 520, 150}, rgb(0xb8bcc0), 9, 3, 0.15, 21);
        paintFront(cr, {640, 50, 330, 120}, rgb(0xa5896f), 6, 2, 0.15, 22);
        fillGradient(cr, {0, 165, width, 555}, rgb(0x7d8285), rgb(0x5b5f63));
        for (int i = 0; i < 12; ++i)
            paintBush(cr, {20 + i * 115.0, 192}, 120, rgb(0x567a45),
                      static_cast<std::uint32_t>(31 + i));
        for (const double x : {40.0, 620.0, 1020.0, 1240.0})
            paintTree(cr, {x, 190}, 165, rgb(0x6d9450), static_cast<std::uint32_t>(x) + 3);
        paintBays(cr, 232, 302, 16, 60);
        paintBays(cr, 392, 480, 12, 40);
        paintBays(cr, 590, 700, 9, 10);
        for (const double x : {300.0, 900.0})
            fillPolygon(cr,
                        {{x, 352},
                         {x + 60, 340},
                         {x + 60, 347},
                         {x + 96, 343},
                         {x + 60, 356},
                         {x + 60, 350},
                         {x, 358}},
                        rgb(0xe9e6d8), 0.55);
        paintRow(cr, 296, 112, 16, 60, 0.74, 41);
        paintRow(cr, 472, 148, 12, 40, 0.66, 42);
        paintRow(cr, 692, 196, 9, 10, 0.56, 43);
        paintLampPost(cr, {632, 392}, 260, metal, 1);
        vignette(cr, 0.35);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addWalk(&result, seconds, {4, 30, {-40, 345}, {1320, 338}, 88, 88, look(5)});
        addWalk(&result, seconds, {36, 28, {1320, 352}, {-40, 352}, 90, 90, look(1)});
        addDrive(&result, seconds, {8, 10, -150, 1430, 362, 165, rgb(0x3b6ea5), true});
        addDrive(&result, seconds, {31, 10, 1430, -150, 362, 165, rgb(0xc9ccd0), true});
        addWalk(&result, seconds, {18, 32, {1330, 528}, {-50, 528}, 122, 122, look(2)});
        addDrive(&result, seconds, {20, 11, 1500, -220, 560, 225, rgb(0xa83a35), true});
        addDrive(&result, seconds, {46, 11, -220, 1500, 560, 225, rgb(0x30353a), true});
        addWalk(&result, seconds, {48, 26, {-50, 540}, {1330, 540}, 126, 126, look(3)});
        return result;
    }

private:
    static double bayX(int bay, int bays, double margin)
    {
        return margin + bay * (width - 2 * margin) / bays;
    }

    static void paintBays(cairo_t *cr, double top, double bottom, int bays, double margin)
    {
        for (int bay = 0; bay <= bays; ++bay) {
            const double x = bayX(bay, bays, margin);
            const double lean = (x - width / 2) * 0.10;
            fillPolygon(
                cr, {{x - lean - 2, top}, {x - lean + 2, top}, {x + 3, bottom}, {x - 3, bottom}},
                rgb(0xe9e6d8), 0.7);
        }
        fillBox(cr, {margin, top - 3, width - 2 * margin, 3}, rgb(0xe9e6d8), 0.6);
    }

    static void paintRow(cairo_t *cr, double groundY, double length, int bays, double margin,
                         double taken, std::uint32_t seed)
    {
        const std::array<Rgb, 7> colours{rgb(0xb23a3a), rgb(0xdfe2e4), rgb(0x2f3a44), rgb(0x3f6f8f),
                                         rgb(0x8d9399), rgb(0x56704f), rgb(0xc9a24b)};
        Dice dice(seed);
        const double step = (width - 2 * margin) / bays;
        // Two bays for each car seen from the side.
        for (int bay = 0; bay + 1 < bays; bay += 2) {
            if (dice.next() > taken + 0.2)
                continue;
            const auto colour = static_cast<std::size_t>(dice.below(7));
            paintCar(cr, bayX(bay, bays, margin) + step + dice.between(-8, 8), groundY, length,
                     colours[colour], dice.next() < 0.5 ? 1 : -1, false, dice.next() < 0.15);
        }
    }
};

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
            const double part = progress(seconds, visit.start, duration);
            if (part < 0)
                continue;
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

std::unique_ptr<Scene> newStreet()
{
    return std::make_unique<Street>();
}

std::unique_ptr<Scene> newCarPark()
{
    return std::make_unique<CarPark>();
}

std::unique_ptr<Scene> newEntrance()
{
    return std::make_unique<Entrance>();
}

} // namespace ZorvaneDemo
