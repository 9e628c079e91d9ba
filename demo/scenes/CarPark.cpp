// SPDX-License-Identifier: MIT
#include <array>
#include <cstdint>

#include "demo/scenes/Cars.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

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
        paintLampPost(cr, {632, 392}, 260);
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
            const double lean = (x - width / 2.0) * 0.10;
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

} // namespace

std::unique_ptr<Scene> newCarPark()
{
    return std::make_unique<CarPark>();
}

} // namespace ZorvaneDemo
