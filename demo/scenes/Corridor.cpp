// SPDX-License-Identifier: MIT
#include "demo/scenes/Motion.h"
#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"
#include "demo/scenes/Tunnel.h"

namespace ZorvaneDemo {

namespace {

class Corridor : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillBox(cr, {0, 0, width, height}, rgb(0xd9d6cd));
        fillPolygon(
            cr,
            {tunnel.floor(-1, 0), tunnel.floor(-1, far), tunnel.floor(1, far), tunnel.floor(1, 0)},
            rgb(0x8c8f8c));
        fillPolygon(cr,
                    {tunnel.ceiling(-1, 0), tunnel.ceiling(-1, far), tunnel.ceiling(1, far),
                     tunnel.ceiling(1, 0)},
                    rgb(0xe9e8e2));
        fillPolygon(cr,
                    {tunnel.ceiling(-1, 0), tunnel.ceiling(-1, far), tunnel.floor(-1, far),
                     tunnel.floor(-1, 0)},
                    rgb(0xcfd3cc));
        fillPolygon(cr,
                    {tunnel.ceiling(1, 0), tunnel.ceiling(1, far), tunnel.floor(1, far),
                     tunnel.floor(1, 0)},
                    rgb(0xc2c7c1));
        for (double depth = 0; depth < far; depth += (1 - depth) * 0.16)
            strokeLine(cr, tunnel.floor(-1, depth), tunnel.floor(1, depth), 1.5, rgb(0x747774),
                       0.6);
        for (double side = -1; side <= 1.01; side += 0.25)
            strokeLine(cr, tunnel.floor(side, 0), tunnel.floor(side, far), 1.5, rgb(0x747774), 0.5);
        for (const double depth : {0.12, 0.38, 0.56, 0.68, 0.77}) {
            const double next = depth + (1 - depth) * 0.16;
            fillPolygon(cr,
                        {tunnel.ceiling(-0.22, depth), tunnel.ceiling(0.22, depth),
                         tunnel.ceiling(0.22, next), tunnel.ceiling(-0.22, next)},
                        rgb(0xffffff));
            const Point light = tunnel.floor(0, (depth + next) / 2);
            glow(cr, light, 190 * (1 - depth), rgb(0xffffff), 0.28);
        }
        for (const double depth : {0.16, 0.44, 0.63, 0.75}) {
            paintDoor(cr, -1, depth);
            paintDoor(cr, 1, depth + 0.06);
        }
        paintEnd(cr);
        for (const int side : {-1, 1})
            fillPolygon(cr,
                        {wall(side, 0, 0.42), wall(side, far, 0.42), wall(side, far, 0.46),
                         wall(side, 0, 0.46)},
                        rgb(0x7f9a8e));
        vignette(cr, 0.42);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        const auto walk = [&](double start, double side, bool coming, int person) {
            // A person beside the height of the opening; the scales at both ends of the walk.
            constexpr double share = 0.62;
            constexpr double least = 0.22;
            constexpr double most = 0.97;
            constexpr double duration = 15;
            const Point away = tunnel.floor(side, 0.78);
            const Point near = tunnel.floor(side, 0.03);
            const double small = (tunnel.above + tunnel.below) * least * share;
            const double large = (tunnel.above + tunnel.below) * most * share;
            const double part = progress(seconds, start, duration);
            if (part < 0)
                return;
            // Evenly in the room is not evenly in the picture.
            const double nearness = coming ? part : 1 - part;
            const double scale = 1 / (1 / least + (1 / most - 1 / least) * nearness);
            const double t = (scale - least) / (most - least);
            const Point feet{away.x + (near.x - away.x) * t, away.y + (near.y - away.y) * t};
            const double tall = small + (large - small) * t;
            addWalker(&result, {feet, tall, 0, part * duration}, look(person), 0.97);
        };
        walk(44, 0.25, true, 5);
        walk(1, -0.35, true, 0);
        walk(15, 0.3, false, 1);
        walk(30, -0.2, true, 3);
        return result;
    }

private:
    static constexpr double far = 0.84;
    const Tunnel tunnel{{640, 300}, 760, 430, 470};

    /// A point on a wall; `up` counts from the floor, 0 to 1.
    Point wall(double side, double depth, double up) const
    {
        const Point low = tunnel.floor(side, depth);
        const Point high = tunnel.ceiling(side, depth);
        return {low.x, low.y + (high.y - low.y) * up};
    }

    void paintDoor(cairo_t *cr, double side, double depth) const
    {
        const double next = depth + (1 - depth) * 0.24;
        const auto quarter = [&](double from, double to, double low, double high, Rgb colour) {
            const double a = depth + (next - depth) * from;
            const double b = depth + (next - depth) * to;
            fillPolygon(
                cr,
                {wall(side, a, low), wall(side, a, high), wall(side, b, high), wall(side, b, low)},
                colour);
        };
        quarter(0, 1, 0, 0.74, rgb(0x6d5a48));
        quarter(0.08, 0.92, 0, 0.70, rgb(0x9a7853));
        quarter(0.55, 0.8, 0.4, 0.62, rgb(0xb9cdd6));
        quarter(0.14, 0.22, 0.33, 0.36, rgb(0xd9d6cd));
    }

    void paintEnd(cairo_t *cr) const
    {
        const Point low = tunnel.floor(-1, far);
        const Point high = tunnel.ceiling(1, far);
        fillGradient(cr, {low.x, high.y, high.x - low.x, low.y - high.y}, rgb(0xdfe5e6),
                     rgb(0xb9c2c2));
        const Point middle{(low.x + high.x) / 2, low.y};
        fillBox(cr, {middle.x - 44, low.y - 96, 88, 96}, rgb(0x54656f));
        fillGradient(cr, {middle.x - 39, low.y - 91, 37, 87}, rgb(0xcfe3ee), rgb(0x9fbccb));
        fillGradient(cr, {middle.x + 2, low.y - 91, 37, 87}, rgb(0xcfe3ee), rgb(0x9fbccb));
        fillRounded(cr, {middle.x - 26, low.y - 118, 52, 16}, 3, rgb(0x1f9d57));
        fillBox(cr, {middle.x - 8, low.y - 113, 16, 6}, rgb(0xffffff), 0.9);
        glow(cr, {middle.x, low.y - 110}, 60, rgb(0x4fe08f), 0.3);
    }
};

} // namespace

std::unique_ptr<Scene> newCorridor()
{
    return std::make_unique<Corridor>();
}

} // namespace ZorvaneDemo
