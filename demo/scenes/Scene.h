// SPDX-License-Identifier: MIT
#pragma once

#include <cairo.h>

#include <functional>
#include <memory>
#include <vector>

#include "demo/scenes/SceneCount.h"

namespace ZorvaneDemo {

/// Something that moves in front of a scene's background.
struct Sprite {
    double left;
    double top;
    double width;
    double height;
    /// Paints within the rectangle above.
    std::function<void(cairo_t *)> paint;
};

/// An invented place that a camera watches, drawn in 1280x720 units. All movement repeats
/// after one minute.
class Scene
{
public:
    static constexpr int width = 1280;
    static constexpr int height = 720;

    virtual ~Scene() = default;
    /// What never changes; painted once.
    virtual void paintBackground(cairo_t *cr) const = 0;
    /// What moves, at `seconds` within the minute, from back to front.
    virtual std::vector<Sprite> sprites(double seconds) const = 0;
};

/// The scene of that number, 0 to sceneCount - 1.
std::unique_ptr<Scene> makeScene(int number);

} // namespace ZorvaneDemo
