// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "demo/Paint.h"
#include "demo/Scene.h"

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

/// How far along something is that begins at `start` and lasts `duration`: 0 to 1, or below 0
/// while it is not there. Both in seconds of a minute that repeats.
double progress(double seconds, double start, double duration);
/// Slow at both ends.
double eased(double part);

/// Appends the person or car if it is there at `seconds`.
void addWalk(std::vector<Sprite> *sprites, double seconds, const Walk &walk);
void addDrive(std::vector<Sprite> *sprites, double seconds, const Drive &drive);
/// Someone who stands at `feet` and shifts from foot to foot.
void addStanding(std::vector<Sprite> *sprites, double seconds, Point feet, double height,
                 const PersonLook &look, double brightness = 1);

void paintPerson(cairo_t *cr, Point feet, double height, double stride, int direction,
                 const PersonLook &look, double brightness);
/// `direction` 1 drives to the right, -1 to the left.
void paintCar(cairo_t *cr, double middleX, double groundY, double length, Rgb colour, int direction,
              bool lights, bool van = false);
void paintTree(cairo_t *cr, Point foot, double height, Rgb leaves, std::uint32_t seed);
void paintBush(cairo_t *cr, Point foot, double width, Rgb leaves, std::uint32_t seed);
void paintCloud(cairo_t *cr, Point centre, double size, double alpha);
void paintLampPost(cairo_t *cr, Point foot, double height, Rgb metal, int arm);
/// A front with rows of windows; `lit` of them, 0 to 1, have light.
void paintFront(cairo_t *cr, Box box, Rgb wall, int columns, int rows, double lit,
                std::uint32_t seed);

} // namespace ZorvaneDemo
