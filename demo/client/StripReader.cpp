// SPDX-License-Identifier: MIT
#include "demo/client/StripReader.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "demo/ServiceWords.h"
#include "demo/StripCode.h"
#include "service/LocalTime.h"

namespace ZorvaneDemo {

namespace {

constexpr int leastContrast = 20;
// Lines within the strip that are tried, as parts of its height: a tile's border may cover
// the outermost ones.
constexpr std::array<double, 4> linesTried{0.5, 0.35, 0.65, 0.2};
// A tile rounds where its picture stands; the strip is looked for so many pixels higher and lower.
constexpr int placeTolerance = 2;

int brightness(const QImage &picture, const QRectF &cell, int y)
{
    // The inner half of a cell, at least one pixel, is free of what scaling mixed in.
    const int left = static_cast<int>(std::floor(cell.left() + cell.width() * 0.3));
    const int right = std::max(left, static_cast<int>(cell.left() + cell.width() * 0.7));
    int sum = 0;
    int count = 0;
    for (int x = left; x <= right && x < picture.width(); ++x, ++count)
        sum += qGray(picture.pixel(x, y));
    return count > 0 ? sum / count : 0;
}

std::optional<StripCode> readLine(const QImage &picture, const QRectF &area, int y)
{
    std::array<int, StripCode::cellCount> values{};
    const double width = area.width() / StripCode::cellCount;
    for (int i = 0; i < StripCode::cellCount; ++i) {
        const QRectF cell(area.left() + i * width, area.top(), width, area.height());
        values[static_cast<std::size_t>(i)] = brightness(picture, cell, y);
    }
    // The fixed cells tell what light and dark are here.
    const auto mean = [&values](const std::array<int, 3> &places) {
        int sum = 0;
        for (const int place : places)
            sum += values[static_cast<std::size_t>(place)];
        return sum / static_cast<int>(places.size());
    };
    const int light = mean(StripCode::lightCells);
    const int dark = mean(StripCode::darkCells);
    if (light - dark < leastContrast)
        return std::nullopt;
    StripCode::Cells cells{};
    std::transform(values.begin(), values.end(), cells.begin(),
                   [&](int value) { return value > (light + dark) / 2; });
    return StripCode::fromCells(cells);
}

std::optional<Strip> readArea(const QImage &picture, const QRect &area)
{
    const double height = area.height() / StripCode::heightDivisor;
    const double top = area.top() + area.height() - height;
    for (const double part : linesTried) {
        const int y = static_cast<int>(top + height * part);
        if (y < 0 || y >= picture.height())
            continue;
        if (const auto code = readLine(picture, area, y))
            return Strip{code->camera, code->milliseconds};
    }
    return std::nullopt;
}

} // namespace

std::optional<Strip> StripReader::read(const QImage &picture)
{
    return picture.isNull() ? std::nullopt : readArea(picture, picture.rect());
}

std::optional<Strip> StripReader::readTile(const QImage &tile)
{
    const QRect area = pictureArea(tile.size());
    if (area.isEmpty())
        return std::nullopt;
    for (int distance = 0; distance <= placeTolerance; ++distance) {
        for (const int shift : {distance, -distance}) {
            if (const auto strip = readArea(tile, area.translated(0, shift)))
                return strip;
        }
    }
    return std::nullopt;
}

QRect StripReader::pictureArea(const QSize &tile, const QSize &source)
{
    const QSize fitted = source.scaled(tile, Qt::KeepAspectRatio);
    return QRect((tile.width() - fitted.width()) / 2, (tile.height() - fitted.height()) / 2,
                 fitted.width(), fitted.height());
}

int StripReader::ageMs(const Strip &strip, qint64 nowMs)
{
    constexpr int futureMs = 1000;
    const qint64 age = (nowMs - strip.milliseconds + minuteMs) % minuteMs;
    return static_cast<int>(age > minuteMs - futureMs ? age - minuteMs : age);
}

} // namespace ZorvaneDemo
