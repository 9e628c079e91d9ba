// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>

#include "demo/Figures.h"
#include "demo/Scenes.h"

namespace ZorvaneDemo {

namespace {

constexpr double width = Scene::width;
constexpr double pi = 3.14159265358979323846;

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
        paintLampPost(cr, foot, tall, rgb(0x55606b), 1);
        const Point head{foot.x + 0.16 * tall, foot.y - 1.0 * tall};
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
            paintLampPost(cr, {x, 600}, 270, rgb(0x2f3338), 1);
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
                     fillEllipse(cr, {wheel, 0}, 38, 5, rgb(0x101418), 0.35);
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
                 fillEllipse(cr, {22, -162}, 13, 15, shaded(rgb(0xd9a98a), 0.85));
                 fillEllipse(cr, {20, -170}, 15, 11, rgb(0xc8423a));
                 cairo_restore(cr);
             }});
    }
};

} // namespace

std::unique_ptr<Scene> newNightYard()
{
    return std::make_unique<NightYard>();
}

std::unique_ptr<Scene> newRiverside()
{
    return std::make_unique<Riverside>();
}

} // namespace ZorvaneDemo
