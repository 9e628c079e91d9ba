// SPDX-License-Identifier: MIT
#include <array>
#include <cstdint>

#include "demo/scenes/Cars.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

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
            paintLampPost(cr, {x, 470}, 260);
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

} // namespace

std::unique_ptr<Scene> newStreet()
{
    return std::make_unique<Street>();
}

} // namespace ZorvaneDemo
