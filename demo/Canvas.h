// SPDX-License-Identifier: MIT
#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "demo/scenes/Scene.h"

namespace ZorvaneDemo {

/// The scene's picture, kept up to date where something moved.
class Canvas
{
public:
    /// Its edges lie between blocks, so that every quality and both chroma planes see whole
    /// samples.
    struct Rect {
        int left;
        int top;
        int right;
        int bottom;
    };

    /// `paintedScene` must outlive this.
    explicit Canvas(const Scene &paintedScene);

    /// Moves on to `seconds`; returns what changed.
    std::vector<Rect> advance(double seconds);
    /// A row of pixels: eight bits each of red, green and blue from the third byte down.
    const std::uint32_t *line(int y) const;

private:
    using Surface = std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t *)>;

    static Surface newSurface();
    static std::uint32_t *lineOf(cairo_surface_t *surface, int y);
    static Rect blocksOf(const Sprite &sprite);

    void copyBackground(const Rect &rect);
    void addGrain();

    const Scene &scene;
    Surface background;
    Surface picture;
    std::vector<Rect> occupied;
};

} // namespace ZorvaneDemo
