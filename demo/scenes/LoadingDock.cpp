// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>

#include "demo/scenes/Cars.h"
#include "demo/scenes/Motion.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"

namespace ZorvaneDemo {

namespace {

class LoadingDock : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 130}, rgb(0xa9bccb), rgb(0xdde3e4));
        fillGradient(cr, {0, 60, width, 370}, rgb(0xc3c9cc), rgb(0xa7aeb2));
        for (double x = 0; x < width; x += 22)
            fillBox(cr, {x, 60, 3, 370}, rgb(0x98a0a5), 0.6);
        fillBox(cr, {0, 52, width, 16}, rgb(0x6b757c));
        fillBox(cr, {0, 108, width, 26}, rgb(0x2f6b8e));
        for (int door = 0; door < 4; ++door)
            paintDoor(cr, 70 + door * 300.0, door);
        fillBox(cr, {0, 422, width, 12}, rgb(0x7a7f82));
        fillGradient(cr, {0, 432, width, 288}, rgb(0x8d8f8e), rgb(0x65686a));
        for (int lane = 0; lane < 5; ++lane) {
            const double x = 20 + lane * 300.0;
            fillPolygon(cr,
                        {{x, 434},
                         {x + 8, 434},
                         {640 + (x + 14 - 640) * 1.5, 720},
                         {640 + (x - 4 - 640) * 1.5, 720}},
                        rgb(0xe2c24a), 0.75);
        }
        Dice dice(131);
        for (int stain = 0; stain < 14; ++stain)
            fillEllipse(cr, {dice.between(0, width), dice.between(470, 690)}, dice.between(20, 70),
                        dice.between(5, 14), rgb(0x4a4d4f), 0.25);
        for (const double x : {345.0, 645.0, 945.0}) {
            fillRounded(cr, {x - 9, 380, 18, 70}, 6, rgb(0xe2c24a));
            for (int band = 0; band < 2; ++band)
                fillBox(cr, {x - 9, 396 + band * 24.0, 18, 10}, rgb(0x2a2d30));
        }
        paintPallets(cr, {1130, 470});
        paintPallets(cr, {560, 462});
        vignette(cr, 0.36);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addWalk(&result, seconds, {3, 18, {480, 462}, {1080, 468}, 152, 152, worker});
        addWalk(&result, seconds, {33, 18, {1080, 468}, {480, 462}, 152, 152, worker});
        addTruck(&result, seconds);
        addStanding(&result, seconds, {690, 590}, 212, look(6));
        addDrive(&result, seconds, {14, 12, -260, 1520, 668, 330, rgb(0xe8e4da), false, true});
        addWalk(&result, seconds, {40, 19, {-60, 680}, {1340, 690}, 240, 245, look(5)});
        addBarrier(&result, seconds);
        return result;
    }

private:
    static void paintDoor(cairo_t *cr, double x, int number)
    {
        fillBox(cr, {x - 16, 172, 232, 254}, rgb(0x2a2f33));
        if (number == 1) {
            fillGradient(cr, {x, 190, 200, 236}, rgb(0x4a4436), rgb(0x8a7a58));
            fillBox(cr, {x + 20, 300, 60, 126}, rgb(0xb98d57));
            fillBox(cr, {x + 90, 330, 70, 96}, rgb(0xa57a4a));
            fillBox(cr, {x + 30, 250, 50, 48}, rgb(0x8f6a44));
        } else {
            for (int slat = 0; slat < 11; ++slat)
                fillGradient(cr, {x, 190 + slat * 21.5, 200, 21}, rgb(0xe0e4e6), rgb(0xb9c0c4));
        }
        fillRounded(cr, {x + 80, 140, 40, 28}, 5, rgb(0xf2efe6));
        for (int dot = 0; dot <= number; ++dot)
            fillEllipse(cr, {x + 88 + dot * 8.0, 154}, 3, 3, rgb(0x2f353a));
        const Rgb light = number == 1 ? rgb(0x4fe08f) : rgb(0xe0553f);
        fillEllipse(cr, {x + 206, 160}, 7, 7, light);
        glow(cr, {x + 206, 160}, 28, light, 0.5);
    }

    static void paintPallets(cairo_t *cr, Point at)
    {
        fillEllipse(cr, {at.x, at.y + 2}, 84, 9, shadow, 0.3);
        for (int row = 0; row < 3; ++row) {
            for (int box = 0; box < 3 - row / 2; ++box)
                fillRounded(cr, {at.x - 72 + box * 48.0 + row * 8, at.y - 52 - row * 40.0, 46, 38},
                            3, row % 2 == 0 ? rgb(0xb98d57) : rgb(0xa57a4a));
        }
        fillBox(cr, {at.x - 78, at.y - 13, 156, 11}, rgb(0x7d5d38));
    }

    static void addTruck(std::vector<Sprite> *sprites, double seconds)
    {
        // Backs to the first door, is unloaded and drives off.
        double back = 0;
        if (seconds < 10)
            back = eased(seconds / 10);
        else if (seconds < 46)
            back = 1;
        else if (seconds < 56)
            back = 1 - eased((seconds - 46) / 10);
        const double x = -420 + back * 470;
        sprites->push_back(
            {x - 30, 190, 480, 400, [=](cairo_t *cr) {
                 fillEllipse(cr, {x + 200, 566}, 230, 18, shadow, 0.35);
                 fillRounded(cr, {x + 120, 210, 300, 290}, 8, rgb(0xeceae3));
                 fillBox(cr, {x + 120, 330, 300, 50}, rgb(0x2f6b8e));
                 fillPolygon(cr, {{x + 190, 330}, {x + 240, 330}, {x + 210, 380}, {x + 160, 380}},
                             rgb(0xe0b83c));
                 fillBox(cr, {x + 110, 496, 316, 22}, rgb(0x3b4045));
                 fillRounded(cr, {x - 6, 300, 122, 220}, 22, rgb(0xc8423a));
                 fillPolygon(cr, {{x + 8, 400}, {x + 18, 322}, {x + 74, 318}, {x + 74, 400}},
                             rgb(0x27323c));
                 fillBox(cr, {x - 8, 482, 120, 34}, rgb(0x8f2d28));
                 fillEllipse(cr, {x + 8, 496}, 11, 11, rgb(0xfff3cf));
                 for (const double wheel : {60.0, 300.0, 370.0}) {
                     fillEllipse(cr, {x + wheel, 530}, 38, 38, rgb(0x1b1d20));
                     fillEllipse(cr, {x + wheel, 530}, 19, 19, rgb(0x9aa1a8));
                 }
             }});
    }

    static void addBarrier(std::vector<Sprite> *sprites, double seconds)
    {
        const double part = progress(seconds, 16, 14);
        const double up = part < 0 ? 0 : eased(std::min({1.0, part * 6, (1 - part) * 6}));
        sprites->push_back(
            {1000, 380, 260, 300, [=](cairo_t *cr) {
                 const double angle = up * pi * 0.42;
                 const Point hinge{1210, 580};
                 fillRounded(cr, {1188, 560, 44, 110}, 6, rgb(0xd8dde0));
                 fillBox(cr, {1188, 596, 44, 12}, rgb(0xc8423a));
                 for (int band = 0; band < 8; ++band) {
                     const double from = band * 24;
                     const double to = from + 24;
                     strokeLine(
                         cr, {hinge.x - from * std::cos(angle), hinge.y - from * std::sin(angle)},
                         {hinge.x - to * std::cos(angle), hinge.y - to * std::sin(angle)}, 9,
                         band % 2 == 0 ? rgb(0xf2efe6) : rgb(0xc8423a));
                 }
             }});
    }
};

} // namespace

std::unique_ptr<Scene> newLoadingDock()
{
    return std::make_unique<LoadingDock>();
}

} // namespace ZorvaneDemo
