// SPDX-License-Identifier: MIT
#include <cmath>

#include "demo/scenes/Motion.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Surroundings.h"

namespace ZorvaneDemo {

namespace {

class Riverside : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 330}, rgb(0x54648f), rgb(0xf5b98a));
        glow(cr, {420, 300}, 420, rgb(0xffd9a0), 0.8);
        fillEllipse(cr, {420, 292}, 44, 44, rgb(0xfff1d0));
        Dice dice(101);
        for (double x = -10; x < width;) {
            const double wide = dice.between(40, 95);
            const double top = dice.between(190, 290);
            fillBox(cr, {x, top, wide, 332 - top},
                    mixed(rgb(0x57557a), rgb(0x7c6f8c), dice.next()));
            for (int window = 0; window < 8; ++window) {
                if (dice.next() < 0.5)
                    fillBox(cr, {x + dice.between(4, wide - 8), dice.between(top + 6, 320), 4, 5},
                            rgb(0xffdf9a), 0.8);
            }
            x += wide + dice.between(0, 12);
        }
        fillGradient(cr, {0, 330, width, 240}, rgb(0xd9a78c), rgb(0x45597f));
        for (int ripple = 0; ripple < 150; ++ripple) {
            const double y = dice.between(334, 566);
            const double x = dice.between(0, width);
            const double wide = (y - 320) * dice.between(0.15, 0.5);
            fillEllipse(cr, {x, y}, wide, 1.4, rgb(0xffe3c0), dice.between(0.08, 0.3));
        }
        for (int i = 0; i < 14; ++i)
            fillEllipse(cr, {420 + dice.between(-18, 18) * (1 + i * 0.3), 340 + i * 16.0},
                        26 + i * 3.0, 3, rgb(0xfff1d0), 0.4);
        paintBridge(cr);
        fillGradient(cr, {0, 570, width, 150}, rgb(0x8d8379), rgb(0x6f665e));
        for (double x = -60; x < width + 60; x += 70)
            strokeLine(cr, {x, 572}, {640 + (x - 640) * 1.35, 720}, 1.5, rgb(0x5b534b), 0.6);
        fillBox(cr, {0, 566, width, 8}, rgb(0x5b534b));
        for (double x = 20; x < width; x += 52)
            strokeLine(cr, {x, 502}, {x, 570}, 4, rgb(0x2f3338));
        fillRounded(cr, {-10, 494, width + 20, 9}, 4, rgb(0x2f3338));
        strokeLine(cr, {0, 534}, {width, 534}, 3, rgb(0x2f3338));
        for (const double x : {180.0, 700.0, 1190.0}) {
            paintLampPost(cr, {x, 600}, 270, rgb(0x2f3338));
            glow(cr, {x + 43, 335}, 90, rgb(0xffe2a8), 0.8);
        }
        vignette(cr, 0.4);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addBoat(&result, seconds, {2, 56, {1420, 392}, {-160, 392}}, 0.7);
        addBoat(&result, seconds, {20, 38, {-200, 470}, {1480, 470}}, 1.15);
        addWalk(&result, seconds, {4, 30, {-60, 640}, {1340, 640}, 165, 165, look(4), 0.8});
        addWalk(&result, seconds, {4.6, 30, {-60, 646}, {1340, 646}, 172, 172, look(6), 0.8});
        addCyclist(&result, seconds, 16, 9, 676, 1);
        addCyclist(&result, seconds, 41, 10, 684, -1);
        addWalk(&result, seconds, {30, 28, {1340, 660}, {-60, 655}, 172, 172, look(2), 0.8});
        addStanding(&result, seconds, {940, 606}, 150, look(3), 0.78);
        return result;
    }

private:
    struct Course {
        double start;
        double duration;
        Point from;
        Point to;
    };

    static void paintBridge(cairo_t *cr)
    {
        const Rgb stone = rgb(0x4a4a66);
        fillBox(cr, {780, 286, 520, 16}, stone);
        for (const double x : {840.0, 1010.0, 1180.0})
            fillBox(cr, {x, 300, 22, 46}, stone);
        for (const double x : {925.0, 1095.0}) {
            cairo_set_source_rgb(cr, stone.red, stone.green, stone.blue);
            cairo_set_line_width(cr, 10);
            cairo_arc(cr, x, 362, 72, pi * 1.18, pi * 1.82);
            cairo_stroke(cr);
        }
        for (double x = 790; x < 1280; x += 40)
            glow(cr, {x, 282}, 12, rgb(0xffdf9a), 0.9);
    }

    static void addBoat(std::vector<Sprite> *sprites, double seconds, const Course &course,
                        double scale)
    {
        const double part = progress(seconds, course.start, course.duration);
        if (part < 0)
            return;
        const int direction = course.to.x > course.from.x ? 1 : -1;
        const Point at{course.from.x + (course.to.x - course.from.x) * part,
                       course.from.y + 2.5 * std::sin(seconds * 2 * pi / 4)};
        sprites->push_back(
            {at.x - 150 * scale, at.y - 95 * scale, 300 * scale, 120 * scale, [=](cairo_t *cr) {
                 cairo_save(cr);
                 cairo_translate(cr, at.x, at.y);
                 cairo_scale(cr, direction * scale, scale);
                 fillEllipse(cr, {0, 10}, 135, 9, rgb(0x2c3754), 0.55);
                 fillPolygon(cr, {{-120, -20}, {130, -24}, {104, 8}, {-104, 8}}, rgb(0xf0ece2));
                 fillPolygon(cr, {{-112, -6}, {118, -9}, {104, 8}, {-104, 8}}, rgb(0x8f3d3a));
                 fillRounded(cr, {-84, -56, 140, 38}, 8, rgb(0xdcd7cb));
                 for (int window = 0; window < 5; ++window)
                     fillRounded(cr, {-76 + window * 26.0, -48, 18, 18}, 4, rgb(0xffdf9a));
                 fillBox(cr, {-40, -82, 6, 28}, rgb(0x4a4a5a));
                 fillPolygon(cr, {{-40, -82}, {-66, -74}, {-40, -66}}, rgb(0xb5453c));
                 cairo_restore(cr);
             }});
    }

    static void addCyclist(std::vector<Sprite> *sprites, double seconds, double start,
                           double duration, double groundY, int direction)
    {
        const double part = progress(seconds, start, duration);
        if (part < 0)
            return;
        const double x = direction > 0 ? -150 + part * 1580 : 1430 - part * 1580;
        const double turn = part * duration * 2 * pi * 1.3;
        const PersonLook wears = look(direction > 0 ? 7 : 1);
        sprites->push_back(
            {x - 110, groundY - 185, 220, 195, [=](cairo_t *cr) {
                 cairo_save(cr);
                 cairo_translate(cr, x, groundY);
                 cairo_scale(cr, direction, 1);
                 const Rgb frame = rgb(0x2f6b73);
                 for (const double wheel : {-52.0, 52.0}) {
                     fillEllipse(cr, {wheel, 0}, 38, 5, shadow, 0.35);
                     cairo_set_source_rgb(cr, 0.1, 0.1, 0.12);
                     cairo_set_line_width(cr, 5);
                     cairo_arc(cr, wheel, -34, 32, 0, 2 * pi);
                     cairo_stroke(cr);
                     strokeLine(cr, {wheel - 30 * std::cos(turn), -34 - 30 * std::sin(turn)},
                                {wheel + 30 * std::cos(turn), -34 + 30 * std::sin(turn)}, 1.5,
                                rgb(0x9aa1a8));
                 }
                 strokeLine(cr, {-52, -34}, {-6, -34}, 5, frame);
                 strokeLine(cr, {-6, -34}, {40, -84}, 5, frame);
                 strokeLine(cr, {-22, -82}, {-6, -34}, 5, frame);
                 strokeLine(cr, {52, -34}, {38, -98}, 5, frame);
                 const Point pedal{-6 + 14 * std::cos(turn), -34 + 14 * std::sin(turn)};
                 strokeLine(cr, {-24, -92}, {12, -66}, 13, shaded(wears.trousers, 0.8));
                 strokeLine(cr, {12, -66}, pedal, 11, shaded(wears.trousers, 0.8));
                 strokeLine(cr, {-24, -94}, {12, -142}, 26, shaded(wears.coat, 0.8));
                 strokeLine(cr, {12, -140}, {38, -100}, 9, shaded(wears.coat, 0.7));
                 fillEllipse(cr, {22, -162}, 13, 15, shaded(skin, 0.85));
                 fillEllipse(cr, {20, -170}, 15, 11, rgb(0xc8423a));
                 cairo_restore(cr);
             }});
    }
};

} // namespace

std::unique_ptr<Scene> newRiverside()
{
    return std::make_unique<Riverside>();
}

} // namespace ZorvaneDemo
