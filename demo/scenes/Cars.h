// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "demo/scenes/Paint.h"
#include "demo/scenes/Scene.h"

namespace ZorvaneDemo {

/// A car that drives along a level line once a minute, by the side.
struct Drive {
    double startSecond;
    double duration;
    double fromX;
    double toX;
    double groundY;
    double length;
    Rgb colour;
    bool lights = false;
    bool van = false;
};

/// Appends the car if it is there at `seconds`.
void addDrive(std::vector<Sprite> *sprites, double seconds, const Drive &drive);
/// `direction` 1 drives to the right, -1 to the left.
void paintCar(cairo_t *cr, double middleX, double groundY, double length, Rgb colour, int direction,
              bool lights, bool van = false);

} // namespace ZorvaneDemo
