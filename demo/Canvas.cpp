// SPDX-License-Identifier: MIT
#include "demo/Canvas.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ZorvaneDemo {

namespace {

/// Side, in pixels: a whole number of samples in every plane of every quality.
constexpr int block = 16;

int clampByte(int value)
{
    return std::clamp(value, 0, 255);
}

} // namespace

Canvas::Canvas(const Scene &paintedScene)
    : scene(paintedScene), background(newSurface()), picture(newSurface())
{
    cairo_t *cr = cairo_create(background.get());
    scene.paintBackground(cr);
    cairo_destroy(cr);
    addGrain();
    copyBackground({0, 0, Scene::width, Scene::height});
}

std::vector<Canvas::Rect> Canvas::advance(double seconds)
{
    std::vector<Rect> changed = occupied;
    for (const Rect &rect : occupied)
        copyBackground(rect);
    occupied.clear();
    const auto sprites = scene.sprites(seconds);
    cairo_t *cr = cairo_create(picture.get());
    for (const Sprite &sprite : sprites) {
        const Rect rect = blocksOf(sprite);
        if (rect.left >= rect.right || rect.top >= rect.bottom)
            continue;
        cairo_save(cr);
        cairo_rectangle(cr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
        cairo_clip(cr);
        sprite.paint(cr);
        cairo_restore(cr);
        occupied.push_back(rect);
    }
    cairo_destroy(cr);
    cairo_surface_flush(picture.get());
    changed.insert(changed.end(), occupied.begin(), occupied.end());
    return changed;
}

const std::uint32_t *Canvas::line(int y) const
{
    return lineOf(picture.get(), y);
}

Canvas::Surface Canvas::newSurface()
{
    return {cairo_image_surface_create(CAIRO_FORMAT_RGB24, Scene::width, Scene::height),
            cairo_surface_destroy};
}

std::uint32_t *Canvas::lineOf(cairo_surface_t *surface, int y)
{
    return reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(surface) +
                                             std::ptrdiff_t(y) *
                                                 cairo_image_surface_get_stride(surface));
}

Canvas::Rect Canvas::blocksOf(const Sprite &sprite)
{
    const auto down = [](double value) {
        return static_cast<int>(std::floor(value / block)) * block;
    };
    const auto up = [](double value) { return static_cast<int>(std::ceil(value / block)) * block; };
    return {std::max(0, down(sprite.left)), std::max(0, down(sprite.top)),
            std::min(Scene::width, up(sprite.left + sprite.width)),
            std::min(Scene::height, up(sprite.top + sprite.height))};
}

void Canvas::copyBackground(const Rect &rect)
{
    cairo_surface_flush(background.get());
    cairo_surface_flush(picture.get());
    for (int y = rect.top; y < rect.bottom; ++y) {
        const std::uint32_t *source = lineOf(background.get(), y);
        std::copy(source + rect.left, source + rect.right, lineOf(picture.get(), y) + rect.left);
    }
    cairo_surface_mark_dirty(picture.get());
}

/// A trace of sensor grain; it stands still, so it costs the encoder nothing.
void Canvas::addGrain()
{
    cairo_surface_flush(background.get());
    std::uint32_t state = 0x9e3779b9u;
    for (int y = 0; y < Scene::height; ++y) {
        std::uint32_t *pixels = lineOf(background.get(), y);
        for (int x = 0; x < Scene::width; ++x) {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            const int grain = static_cast<int>(state % 3u) - 1;
            const std::uint32_t pixel = pixels[x];
            const auto shifted = [&](int shift) {
                const int value = static_cast<int>((pixel >> shift) & 0xffu) + grain;
                return static_cast<std::uint32_t>(clampByte(value)) << shift;
            };
            pixels[x] = shifted(16) | shifted(8) | shifted(0);
        }
    }
    cairo_surface_mark_dirty(background.get());
}

} // namespace ZorvaneDemo
