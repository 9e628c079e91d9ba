// SPDX-License-Identifier: MIT
#include "demo/ClipMaker.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "demo/Canvas.h"
#include "demo/SensorNoise.h"
#include "demo/VideoEncoder.h"

namespace ZorvaneDemo {

namespace {

using Rect = Canvas::Rect;

/// What surveillance cameras are usually set to, by quality.
constexpr std::array<int, qualityCount> cameraBitRates{250'000, 800'000, 2'500'000};
constexpr std::array<int, qualityCount> constantQuality{};
constexpr Rect wholePicture{0, 0, Scene::width, Scene::height};
constexpr int leastLuma = 16;
constexpr int mostLuma = 235;

void addNoise(SensorNoise &noise, VideoEncoder *encoder)
{
    for (int y = 0; y < encoder->sceneHeight(); ++y) {
        std::uint8_t *luma = encoder->line(0, y);
        const std::int8_t *grain = noise.line(Scene::width);
        for (int x = 0; x < Scene::width; ++x)
            luma[x] =
                static_cast<std::uint8_t>(std::clamp(luma[x] + grain[x], leastLuma, mostLuma));
    }
}

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
            for (std::ptrdiff_t x = rect.left / unit; x < rect.right / unit; ++x)
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
    const std::array<int, qualityCount> rates = noise ? cameraBitRates : constantQuality;
    VideoEncoder low(pictureSizes[0], framesPerSecond, rates[0]);
    VideoEncoder middle(pictureSizes[1], framesPerSecond, rates[1]);
    VideoEncoder high(pictureSizes[2], framesPerSecond, rates[2]);
    VideoEncoder *const encoders[qualityCount] = {&low, &middle, &high};

    SensorNoise sensor;
    std::vector<Rect> changed{wholePicture};
    for (int picture = 0; picture < framesPerSecond * secondsPerMinute; ++picture) {
        const auto moved = canvas.advance(static_cast<double>(picture) / framesPerSecond);
        if (noise)
            changed = {wholePicture};
        else
            changed.insert(changed.end(), moved.begin(), moved.end());
        for (const Rect &rect : changed)
            convert(canvas, rect, &high);
        if (noise)
            addNoise(sensor, &high);
        for (const Rect &rect : changed) {
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
