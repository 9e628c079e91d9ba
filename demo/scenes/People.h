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

constexpr Rgb skin = rgb(0xd9a98a);
/// Someone who loads and stores.
constexpr PersonLook worker{rgb(0xe8772e), rgb(0x2f3a4a), rgb(0xe9c63c), false};

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

/// Someone in the middle of a walk.
struct Walker {
    Point feet;
    double height;
    int direction;        ///< 1 to the right, -1 to the left, 0 towards the viewer or away
    double walkedSeconds; ///< how far the legs are
};

void addWalker(std::vector<Sprite> *sprites, const Walker &walker, const PersonLook &look,
               double brightness);

} // namespace ZorvaneDemo
