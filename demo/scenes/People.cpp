// SPDX-License-Identifier: MIT
#include "demo/scenes/People.h"

#include <array>
#include <cmath>

#include "demo/scenes/Motion.h"

namespace ZorvaneDemo {

namespace {

constexpr double stepsPerSecond = 1.9;

void paintLeg(cairo_t *cr, Point hip, double length, double swing, double width, Rgb colour)
{
    const Point knee{hip.x + length * 0.5 * std::sin(swing), hip.y + length * 0.5};
    const Point foot{hip.x + length * 0.9 * std::sin(swing * 1.05),
                     hip.y + length * (0.98 - 0.10 * std::abs(std::sin(swing)))};
    strokeLine(cr, hip, knee, width, colour);
    strokeLine(cr, knee, foot, width * 0.9, colour);
    strokeLine(cr, foot, {foot.x + width * 0.35, foot.y}, width * 0.8, rgb(0x2a2522));
}

/// `stride` is the angle of the legs' swing.
void paintPerson(cairo_t *cr, Point feet, double height, double stride, int direction,
                 const PersonLook &wears, double brightness)
{
    const double h = height;
    const double swing = 0.5 * std::sin(stride);
    const double bob = 0.012 * h * std::cos(2 * stride);
    const Rgb coat = shaded(wears.coat, brightness);
    const Rgb trousers = shaded(wears.trousers, brightness);
    const Rgb face = shaded(skin, brightness);
    fillEllipse(cr, {feet.x + 0.05 * h, feet.y}, 0.24 * h, 0.045 * h, shadow, 0.32);

    const Point hip{feet.x, feet.y - 0.47 * h - bob};
    const Point shoulder{feet.x + direction * 0.012 * h, feet.y - 0.80 * h - bob};
    paintLeg(cr, hip, 0.48 * h, -swing, 0.095 * h, shaded(trousers, 0.85));
    paintLeg(cr, hip, 0.48 * h, swing, 0.095 * h, trousers);
    const Point farHand{shoulder.x - 0.25 * h * std::sin(-swing * 1.2), shoulder.y + 0.30 * h};
    strokeLine(cr, {shoulder.x, shoulder.y + 0.03 * h}, farHand, 0.07 * h, shaded(coat, 0.75));
    fillRounded(cr, {feet.x - 0.115 * h, shoulder.y - 0.02 * h, 0.23 * h, 0.37 * h}, 0.085 * h,
                coat);
    fillRounded(
        cr,
        {feet.x + (direction >= 0 ? -0.115 : 0.045) * h, shoulder.y - 0.02 * h, 0.07 * h, 0.37 * h},
        0.035 * h, shaded(coat, 0.86));
    const Point nearHand{shoulder.x - 0.25 * h * std::sin(swing * 1.2), shoulder.y + 0.30 * h};
    strokeLine(cr, {shoulder.x, shoulder.y + 0.03 * h}, nearHand, 0.075 * h, shaded(coat, 0.92));
    fillEllipse(cr, nearHand, 0.032 * h, 0.032 * h, face);
    if (wears.bag)
        fillRounded(cr, {nearHand.x - 0.07 * h, nearHand.y + 0.01 * h, 0.14 * h, 0.13 * h},
                    0.02 * h, shaded(rgb(0x6b4b35), brightness));
    const Point head{feet.x + direction * 0.015 * h, feet.y - 0.90 * h - bob};
    fillBox(cr, {head.x - 0.028 * h, head.y + 0.04 * h, 0.056 * h, 0.07 * h}, shaded(face, 0.9));
    fillEllipse(cr, head, 0.066 * h, 0.08 * h, face);
    const Rgb hair = shaded(wears.hair, brightness);
    fillEllipse(cr, {head.x - direction * 0.018 * h, head.y - 0.03 * h}, 0.07 * h, 0.06 * h, hair);
}

} // namespace

PersonLook look(int number)
{
    constexpr std::array<PersonLook, 8> looks{{
        {rgb(0x3d5a80), rgb(0x2b2d42), rgb(0x3a2a20), true},
        {rgb(0xb5453c), rgb(0x39424e), rgb(0x1f1a17), false},
        {rgb(0xd9a441), rgb(0x4a4e58), rgb(0x6b4a2f), true},
        {rgb(0x4f7f5b), rgb(0x2f3640), rgb(0x2a211c), false},
        {rgb(0x7d6b91), rgb(0x3b3b46), rgb(0x8a6b45), false},
        {rgb(0xd8d4cc), rgb(0x3e5068), rgb(0x251d19), true},
        {rgb(0x2f3b46), rgb(0x22262b), rgb(0x555049), false},
        {rgb(0xe07a3f), rgb(0x33384a), rgb(0x30241d), false},
    }};
    return looks[static_cast<std::size_t>(number) % looks.size()];
}

void addWalk(std::vector<Sprite> *sprites, double seconds, const Walk &walk)
{
    const double part = progress(seconds, walk.startSecond, walk.duration);
    if (part < 0)
        return;
    const Point feet{walk.from.x + (walk.to.x - walk.from.x) * part,
                     walk.from.y + (walk.to.y - walk.from.y) * part};
    const double height = walk.heightFrom + (walk.heightTo - walk.heightFrom) * part;
    const double across = walk.to.x - walk.from.x;
    const int direction = std::abs(across) < 30 ? 0 : across > 0 ? 1 : -1;
    addWalker(sprites, {feet, height, direction, part * walk.duration}, walk.look, walk.brightness);
}

void addWalker(std::vector<Sprite> *sprites, const Walker &walker, const PersonLook &wears,
               double brightness)
{
    const Point feet = walker.feet;
    const double height = walker.height;
    const double stride = walker.walkedSeconds * stepsPerSecond * pi;
    sprites->push_back({feet.x - 0.42 * height, feet.y - 1.05 * height, 0.84 * height,
                        1.15 * height, [=](cairo_t *cr) {
                            paintPerson(cr, feet, height, stride, walker.direction, wears,
                                        brightness);
                        }});
}

void addStanding(std::vector<Sprite> *sprites, double seconds, Point feet, double height,
                 const PersonLook &wears, double brightness)
{
    const Point now{feet.x + 0.012 * height * std::sin(seconds * 2 * pi / 12 + feet.x), feet.y};
    sprites->push_back(
        {feet.x - 0.4 * height, feet.y - 1.05 * height, 0.8 * height, 1.15 * height,
         [=](cairo_t *cr) { paintPerson(cr, now, height, 0.15, 1, wears, brightness); }});
}

} // namespace ZorvaneDemo
