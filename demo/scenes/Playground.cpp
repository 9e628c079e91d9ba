// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "demo/scenes/Motion.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

class Playground : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 340}, rgb(0x74b1e0), rgb(0xe3f0f2));
        glow(cr, {180, 80}, 260, rgb(0xfff6d0), 0.9);
        for (int i = 0; i < 4; ++i)
            paintCloud(cr, {360 + i * 270.0, 70 + (i % 2) * 46.0}, 150, 0.75);
        paintFront(cr, {700, 130, 420, 210}, rgb(0xd8b48a), 7, 3, 0.05, 111);
        fillGradient(cr, {0, 330, width, 390}, rgb(0x93bf67), rgb(0x5f9447));
        for (int i = 0; i < 13; ++i)
            paintBush(cr, {i * 108.0, 352}, 120, rgb(0x4f8544),
                      static_cast<std::uint32_t>(112 + i));
        for (const double x : {60.0, 250.0, 640.0, 1180.0})
            paintTree(cr, {x, 372}, 250, rgb(0x63a04c), static_cast<std::uint32_t>(x) + 5);
        Dice dice(113);
        for (int blade = 0; blade < 260; ++blade) {
            const double y = dice.between(390, 700);
            const double x = dice.between(0, width);
            strokeLine(cr, {x, y}, {x + 3, y - (y - 300) * 0.02}, 1.6, rgb(0x4f7f3a), 0.6);
        }
        fillEllipse(cr, {640, 560}, 520, 100, rgb(0xd9c08c));
        fillEllipse(cr, {640, 556}, 500, 92, rgb(0xe6d09c));
        paintSlide(cr);
        paintSwingFrame(cr);
        fillRounded(cr, {70, 590, 180, 14}, 4, rgb(0x8a5f3c));
        fillRounded(cr, {70, 556, 180, 12}, 4, rgb(0x8a5f3c));
        for (const double x : {88.0, 226.0})
            fillBox(cr, {x, 556, 9, 76}, rgb(0x3f464c));
        vignette(cr, 0.3);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addWalk(&result, seconds, {5, 34, {-50, 410}, {1330, 405}, 125, 122, look(2)});
        addSwing(&result, seconds, 780, 0, 1);
        addSwing(&result, seconds, 890, 1.3, 7);
        addSlider(&result, seconds);
        addWalk(&result, seconds, {12, 9, {980, 610}, {330, 600}, 118, 118, look(7)});
        addWalk(&result, seconds, {24, 9, {330, 604}, {1020, 612}, 118, 120, look(7)});
        addWalk(&result, seconds, {26, 9, {300, 618}, {990, 626}, 112, 114, look(1)});
        addStanding(&result, seconds, {180, 650}, 190, look(5));
        addWalk(&result, seconds, {36, 23, {1340, 690}, {-60, 690}, 215, 215, look(3)});
        addBall(&result, seconds);
        return result;
    }

private:
    static void paintSlide(cairo_t *cr)
    {
        fillEllipse(cr, {440, 566}, 150, 14, shadow, 0.25);
        strokeLine(cr, {330, 400}, {322, 560}, 10, rgb(0x3d6f9a));
        strokeLine(cr, {366, 400}, {366, 560}, 10, rgb(0x3d6f9a));
        for (int rung = 0; rung < 6; ++rung)
            strokeLine(cr, {327, 430 + rung * 24.0}, {366, 430 + rung * 24.0}, 6, rgb(0x5d8fb8));
        fillPolygon(cr, {{316, 340}, {348, 300}, {380, 340}}, rgb(0xc8423a));
        strokeLine(cr, {328, 340}, {330, 402}, 6, rgb(0x3d6f9a));
        strokeLine(cr, {368, 340}, {366, 402}, 6, rgb(0x3d6f9a));
        fillPolygon(cr, {{366, 396}, {372, 410}, {520, 548}, {580, 556}, {580, 542}, {528, 532}},
                    rgb(0xe0b03a));
        strokeLine(cr, {368, 388}, {526, 524}, 7, rgb(0xf0ca62));
        strokeLine(cr, {526, 524}, {582, 536}, 7, rgb(0xf0ca62));
    }

    static void paintSwingFrame(cairo_t *cr)
    {
        for (const double x : {700.0, 970.0}) {
            strokeLine(cr, {x, 330}, {x - 34, 560}, 9, rgb(0xc8523f));
            strokeLine(cr, {x, 330}, {x + 34, 560}, 9, rgb(0xc8523f));
        }
        strokeLine(cr, {694, 330}, {976, 330}, 11, rgb(0xc8523f));
    }

    static void addSwing(std::vector<Sprite> *sprites, double seconds, double x, double phase,
                         int person)
    {
        const double angle = 0.55 * std::sin(seconds * 2 * pi / 3 + phase);
        sprites->push_back(
            {x - 140, 325, 280, 250, [=](cairo_t *cr) {
                 const PersonLook wears = look(person);
                 const double rope = 190;
                 const Point seat{x + rope * std::sin(angle), 332 + rope * std::cos(angle)};
                 fillEllipse(cr, {seat.x, 562}, 34, 6, shadow, 0.22);
                 strokeLine(cr, {x - 12, 332}, {seat.x - 12, seat.y}, 2.5, rgb(0x50565c));
                 strokeLine(cr, {x + 12, 332}, {seat.x + 12, seat.y}, 2.5, rgb(0x50565c));
                 fillRounded(cr, {seat.x - 24, seat.y - 3, 48, 8}, 3, rgb(0x6b4b35));
                 strokeLine(cr, {seat.x, seat.y - 8}, {seat.x + 26, seat.y + 4}, 12,
                            wears.trousers);
                 strokeLine(cr, {seat.x + 26, seat.y + 4},
                            {seat.x + 34 + 14 * std::sin(angle), seat.y + 34}, 10, wears.trousers);
                 fillRounded(cr, {seat.x - 15, seat.y - 52, 30, 48}, 12, wears.coat);
                 strokeLine(cr, {seat.x, seat.y - 42}, {seat.x + 12, seat.y - 66}, 8,
                            shaded(wears.coat, 0.85));
                 fillEllipse(cr, {seat.x + 2, seat.y - 68}, 14, 16, skin);
                 fillEllipse(cr, {seat.x, seat.y - 76}, 15, 11, wears.hair);
             }});
    }

    static void addSlider(std::vector<Sprite> *sprites, double seconds)
    {
        const double part = progress(std::fmod(seconds, 15) * 4, 8, 14);
        if (part < 0)
            return;
        const double down = part * part;
        const Point at{376 + down * 196, 384 + std::min(1.0, down * 1.15) * 140};
        sprites->push_back(
            {at.x - 50, at.y - 80, 110, 110, [=](cairo_t *cr) {
                 const PersonLook wears = look(4);
                 strokeLine(cr, at, {at.x + 30, at.y + 16}, 13, wears.trousers);
                 fillRounded(cr, {at.x - 15, at.y - 42, 30, 46}, 12, wears.coat);
                 strokeLine(cr, {at.x, at.y - 32}, {at.x - 22, at.y - 56}, 8, wears.coat);
                 strokeLine(cr, {at.x + 4, at.y - 32}, {at.x + 24, at.y - 58}, 8, wears.coat);
                 fillEllipse(cr, {at.x, at.y - 56}, 14, 16, skin);
                 fillEllipse(cr, {at.x - 2, at.y - 64}, 15, 11, wears.hair);
             }});
    }

    static void addBall(std::vector<Sprite> *sprites, double seconds)
    {
        const double part = progress(seconds, 44, 12);
        if (part < 0)
            return;
        const Point at{1100 - part * 800,
                       640 - 90 * std::abs(std::sin(part * pi * 6)) * (1 - part)};
        sprites->push_back({at.x - 40, at.y - 30, 80, 150, [=](cairo_t *cr) {
                                fillEllipse(cr, {at.x, 656}, 16, 4, shadow, 0.3);
                                fillEllipse(cr, at, 17, 17, rgb(0xd8473c));
                                fillEllipse(cr, {at.x - 5, at.y - 6}, 6, 5, rgb(0xffffff), 0.55);
                            }});
    }
};

} // namespace

std::unique_ptr<Scene> newPlayground()
{
    return std::make_unique<Playground>();
}

} // namespace ZorvaneDemo
