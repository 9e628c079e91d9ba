// SPDX-License-Identifier: MIT
#include "demo/ClipMaker.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "demo/VideoEncoder.h"
#include "demo/scenes/Scene.h"

namespace ZorvaneDemo {

namespace {

constexpr int secondsPerMinute = 60;
/// Rectangles to convert are widened to whole blocks, so that every quality and both chroma
/// planes see whole samples.
constexpr int block = 16;

struct Rect {
    int left;
    int top;
    int right;
    int bottom;
};

int clampByte(int value)
{
    return std::clamp(value, 0, 255);
}

/// The scene's picture, kept up to date where something moved.
class Canvas
{
public:
    explicit Canvas(const Scene &paintedScene)
        : scene(paintedScene), background(newSurface()), picture(newSurface())
    {
        cairo_t *cr = cairo_create(background.get());
        scene.paintBackground(cr);
        cairo_destroy(cr);
        addGrain();
        copyBackground({0, 0, Scene::width, Scene::height});
    }

    /// Moves on to `seconds`; returns what changed.
    std::vector<Rect> advance(double seconds)
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
            cairo_rectangle(cr, rect.left, rect.top, rect.right - rect.left,
                            rect.bottom - rect.top);
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

    const std::uint32_t *line(int y) const { return lineOf(picture.get(), y); }

private:
    using Surface = std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t *)>;

    static Surface newSurface()
    {
        return {cairo_image_surface_create(CAIRO_FORMAT_RGB24, Scene::width, Scene::height),
                cairo_surface_destroy};
    }

    static std::uint32_t *lineOf(cairo_surface_t *surface, int y)
    {
        return reinterpret_cast<std::uint32_t *>(cairo_image_surface_get_data(surface) +
                                                 std::ptrdiff_t(y) *
                                                     cairo_image_surface_get_stride(surface));
    }

    static Rect blocksOf(const Sprite &sprite)
    {
        const auto down = [](double value) {
            return static_cast<int>(std::floor(value / block)) * block;
        };
        const auto up = [](double value) {
            return static_cast<int>(std::ceil(value / block)) * block;
        };
        return {std::max(0, down(sprite.left)), std::max(0, down(sprite.top)),
                std::min(Scene::width, up(sprite.left + sprite.width)),
                std::min(Scene::height, up(sprite.top + sprite.height))};
    }

    void copyBackground(const Rect &rect)
    {
        cairo_surface_flush(background.get());
        cairo_surface_flush(picture.get());
        for (int y = rect.top; y < rect.bottom; ++y) {
            const std::uint32_t *source = lineOf(background.get(), y);
            std::copy(source + rect.left, source + rect.right,
                      lineOf(picture.get(), y) + rect.left);
        }
        cairo_surface_mark_dirty(picture.get());
    }

    /// A trace of sensor grain; it stands still, so it costs the encoder nothing.
    void addGrain()
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

    const Scene &scene;
    Surface background;
    Surface picture;
    std::vector<Rect> occupied;
};

/// Writes `rect` of the canvas into the largest encoder's planes.
void convert(const Canvas &canvas, const Rect &rect, VideoEncoder *encoder)
{
    const int bottom = std::min(rect.bottom, encoder->sceneHeight());
    for (int y = rect.top; y + 1 < bottom; y += 2) {
        const std::uint32_t *upper = canvas.line(y);
        const std::uint32_t *lower = canvas.line(y + 1);
        std::uint8_t *luma[2] = {encoder->line(0, y), encoder->line(0, y + 1)};
        std::uint8_t *cb = encoder->line(1, y / 2);
        std::uint8_t *cr = encoder->line(2, y / 2);
        for (int x = rect.left; x < rect.right; x += 2) {
            const std::uint32_t pixel[4] = {upper[x], upper[x + 1], lower[x], lower[x + 1]};
            int red = 0;
            int green = 0;
            int blue = 0;
            for (int i = 0; i < 4; ++i) {
                const int r = (pixel[i] >> 16) & 0xff;
                const int g = (pixel[i] >> 8) & 0xff;
                const int b = pixel[i] & 0xff;
                luma[i / 2][x + i % 2] =
                    static_cast<std::uint8_t>(((66 * r + 129 * g + 25 * b + 128) >> 8) + 16);
                red += r;
                green += g;
                blue += b;
            }
            cb[x / 2] = static_cast<std::uint8_t>(
                ((-38 * red - 74 * green + 112 * blue + 512) >> 10) + 128);
            cr[x / 2] =
                static_cast<std::uint8_t>(((112 * red - 94 * green - 18 * blue + 512) >> 10) + 128);
        }
    }
}

/// Halves `rect`, given in the source's luma samples, from one encoder's planes to the next.
void halve(VideoEncoder *source, const Rect &rect, VideoEncoder *target)
{
    for (int plane = 0; plane < 3; ++plane) {
        const int unit = plane == 0 ? 2 : 4;
        const int bottom = std::min(rect.bottom / unit, target->sceneHeight() * 2 / unit);
        for (int y = rect.top / unit; y < bottom; ++y) {
            const std::uint8_t *upper = source->line(plane, 2 * y);
            const std::uint8_t *lower = source->line(plane, 2 * y + 1);
            std::uint8_t *out = target->line(plane, y);
            for (int x = rect.left / unit; x < rect.right / unit; ++x)
                out[x] = static_cast<std::uint8_t>(
                    (upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1] + 2) >> 2);
        }
    }
}

Rect halved(const Rect &rect)
{
    return {rect.left / 2, rect.top / 2, rect.right / 2, rect.bottom / 2};
}

} // namespace

std::string ClipMaker::run() const
{
    const std::unique_ptr<Scene> painted = makeScene(scene);
    Canvas canvas(*painted);
    VideoEncoder low(pictureSizes[0], framesPerSecond);
    VideoEncoder middle(pictureSizes[1], framesPerSecond);
    VideoEncoder high(pictureSizes[2], framesPerSecond);
    VideoEncoder *const encoders[qualityCount] = {&low, &middle, &high};

    std::vector<Rect> changed{{0, 0, Scene::width, Scene::height}};
    for (int picture = 0; picture < framesPerSecond * secondsPerMinute; ++picture) {
        const auto moved = canvas.advance(static_cast<double>(picture) / framesPerSecond);
        changed.insert(changed.end(), moved.begin(), moved.end());
        for (const Rect &rect : changed) {
            convert(canvas, rect, &high);
            halve(&high, rect, &middle);
            halve(&middle, halved(rect), &low);
        }
        changed.clear();
        for (VideoEncoder *encoder : encoders) {
            if (!encoder->encode())
                return encoder->error();
        }
        if (secondDone && (picture + 1) % framesPerSecond == 0)
            secondDone();
    }
    for (int quality = 0; quality < qualityCount; ++quality) {
        if (!encoders[quality]->finish(fileNames[quality]))
            return encoders[quality]->error();
    }
    return {};
}

} // namespace ZorvaneDemo
