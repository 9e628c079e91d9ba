// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "demo/scenes/Paint.h"
#include "demo/scenes/Scene.h"

namespace ZorvaneDemo {

struct PersonLook {
    Rgb coat;
    Rgb trousers;
    Rgb hair;
    bool bag = false;
};

/// A few people who come back in every scene.
PersonLook look(int number);

/// Someone who walks from one place to another once a minute.
struct Walk {
    double startSecond;
    double duration; ///< seconds; may run past the end of the minute
    Point from;      ///< where the feet are
    Point to;
    double heightFrom; ///< of the person, in pixels
    double heightTo;
    PersonLook look;
    double brightness = 1;
};

/// Appends the person if one is there at `seconds`.
void addWalk(std::vector<Sprite> *sprites, double seconds, const Walk &walk);
/// Someone who stands at `feet` and shifts from foot to foot.
void addStanding(std::vector<Sprite> *sprites, double seconds, Point feet, double height,
                 const PersonLook &look, double brightness = 1);

void paintPerson(cairo_t *cr, Point feet, double height, double stride, int direction,
                 const PersonLook &look, double brightness);

} // namespace ZorvaneDemo
