// SPDX-License-Identifier: MIT
#include <cmath>
#include <cstdint>

#include "demo/scenes/Cars.h"
#include "demo/scenes/Motion.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

class NightYard : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        Dice dice(91);
        fillGradient(cr, {0, 0, width, 360}, rgb(0x0d1626), rgb(0x2a3a52));
        for (int star = 0; star < 90; ++star)
            fillEllipse(cr, {dice.between(0, width), dice.between(0, 230)}, dice.between(0.6, 1.7),
                        dice.between(0.6, 1.7), rgb(0xffffff), dice.between(0.3, 0.9));
        glow(cr, {1080, 90}, 170, rgb(0xcfe0ff), 0.35);
        fillEllipse(cr, {1080, 90}, 34, 34, rgb(0xeef3ff));
        fillEllipse(cr, {1069, 82}, 7, 6, rgb(0xd2dbee));
        fillEllipse(cr, {1090, 98}, 5, 5, rgb(0xd2dbee));
        paintFront(cr, {-40, 110, 420, 320}, rgb(0x37404c), 5, 4, 0.35, 92);
        paintFront(cr, {860, 180, 460, 250}, rgb(0x3b3f49), 5, 3, 0.25, 93);
        fillBox(cr, {380, 300, 480, 130}, rgb(0x202832));
        for (double x = 380; x < 860; x += 24)
            fillBox(cr, {x, 292, 18, 138}, rgb(0x2a333e));
        for (const double x : {440.0, 590.0, 770.0})
            paintTree(cr, {x, 432}, 250, rgb(0x1e3a34), static_cast<std::uint32_t>(x));
        fillGradient(cr, {0, 430, width, 290}, rgb(0x323b45), rgb(0x1d2329));
        for (int i = -8; i <= 8; ++i)
            strokeLine(cr, {640 + i * 110.0, 430}, {640 + i * 230.0, 720}, 1.5, rgb(0x161b20), 0.7);
        for (const double y : {462.0, 510.0, 584.0, 690.0})
            strokeLine(cr, {0, y}, {width, y}, 1.5, rgb(0x161b20), 0.6);
        for (const Point foot : {Point{300, 470}, Point{700, 456}, Point{1090, 474}})
            paintLight(cr, foot);
        paintCar(cr, 1010, 590, 290, rgb(0x43566b), -1, false);
        paintBush(cr, {110, 690}, 230, rgb(0x24453a), 94);
        vignette(cr, 0.55);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addWalk(&result, seconds, {6, 26, {380, 476}, {1330, 470}, 150, 146, look(6), 0.62});
        const double guard = progress(seconds, 28, 26);
        if (guard >= 0) {
            const Point feet{1340 - guard * 1440, 640};
            const double swing = 0.12 * std::sin(seconds * 2 * pi / 5);
            result.push_back({feet.x - 460, feet.y - 200, 480, 240, [=](cairo_t *cr) {
                                  paintTorch(cr, {feet.x - 20, feet.y - 130}, swing);
                              }});
            addWalk(&result, seconds, {28, 26, {1340, 640}, {-100, 640}, 260, 260, look(0), 0.62});
        }
        addCat(&result, seconds);
        return result;
    }

private:
    static void paintLight(cairo_t *cr, Point foot)
    {
        constexpr double tall = 260;
        const Rgb warm = rgb(0xffd590);
        paintLampPost(cr, foot, tall, rgb(0x55606b));
        const Point head{foot.x + 0.16 * tall, foot.y - tall};
        lightCone(cr, head, foot.y + 60, 150, warm, 0.42);
        glow(cr, head, 80, warm, 0.85);
        cairo_save(cr);
        cairo_translate(cr, head.x, foot.y + 30);
        cairo_scale(cr, 1, 0.3);
        glow(cr, {0, 0}, 220, warm, 0.5);
        cairo_restore(cr);
    }

    static void paintTorch(cairo_t *cr, Point hand, double swing)
    {
        const double reach = 400;
        const Point end{hand.x - reach, hand.y + 110 + 300 * swing};
        fillPolygon(cr, {hand, {end.x, end.y - 60}, {end.x, end.y + 60}}, rgb(0xfff4d0), 0.10);
        fillPolygon(cr, {hand, {end.x + 90, end.y - 26}, {end.x + 90, end.y + 26}}, rgb(0xfff4d0),
                    0.14);
        cairo_save(cr);
        cairo_translate(cr, end.x + 60, end.y + 10);
        cairo_scale(cr, 1, 0.4);
        glow(cr, {0, 0}, 100, rgb(0xfff4d0), 0.45);
        cairo_restore(cr);
        fillEllipse(cr, hand, 7, 7, rgb(0xfffbe8));
    }

    static void addCat(std::vector<Sprite> *sprites, double seconds)
    {
        const double part = progress(seconds, 17, 9);
        if (part < 0)
            return;
        const Point at{-60 + part * 1400, 668};
        const double run = std::sin(part * 9 * 2 * pi * 2.2);
        sprites->push_back(
            {at.x - 70, at.y - 70, 140, 84, [=](cairo_t *cr) {
                 const Rgb fur = rgb(0x12151a);
                 fillEllipse(cr, {at.x, at.y + 2}, 44, 6, rgb(0x000000), 0.4);
                 fillRounded(cr, {at.x - 34, at.y - 36, 68, 22}, 11, fur);
                 fillEllipse(cr, {at.x + 38, at.y - 38}, 13, 12, fur);
                 fillPolygon(
                     cr, {{at.x + 30, at.y - 46}, {at.x + 33, at.y - 58}, {at.x + 39, at.y - 48}},
                     fur);
                 fillEllipse(cr, {at.x + 43, at.y - 40}, 2, 2, rgb(0xd8f07a));
                 for (const double x : {-26.0, 24.0}) {
                     strokeLine(cr, {at.x + x, at.y - 20}, {at.x + x + 14 * run, at.y}, 6, fur);
                     strokeLine(cr, {at.x + x, at.y - 20}, {at.x + x - 14 * run, at.y}, 6, fur);
                 }
                 strokeLine(cr, {at.x - 32, at.y - 30}, {at.x - 58, at.y - 50 + 8 * run}, 6, fur);
             }});
    }
};

} // namespace

std::unique_ptr<Scene> newNightYard()
{
    return std::make_unique<NightYard>();
}

} // namespace ZorvaneDemo
