// SPDX-License-Identifier: MIT
#include "companion/PictureConverter.h"

#include <libyuv.h>

#include <algorithm>
#include <cmath>

#include "companion/AvHandles.h"
#include "companion/FrameFile.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Above this many rows a stream that doesn't name its colours is taken for HD video.
constexpr int maxStandardRows = 576;

using ConvertBytes = int (*)(const uint8_t *, int, const uint8_t *, int, const uint8_t *, int,
                             uint8_t *, int, const libyuv::YuvConstants *, int, int);
using ConvertWords = int (*)(const uint16_t *, int, const uint16_t *, int, const uint16_t *, int,
                             uint8_t *, int, const libyuv::YuvConstants *, int, int);

int grayToArgb(const uint8_t *y, int yStride, const uint8_t *, int, const uint8_t *, int,
               uint8_t *argb, int argbStride, const libyuv::YuvConstants *matrix, int width,
               int height)
{
    return libyuv::I400ToARGBMatrix(y, yStride, argb, argbStride, matrix, width, height);
}

/// A planar format: how far the second and third plane are smaller, and who converts it.
struct PlanarFormat {
    AVPixelFormat format;
    int planes;
    int shiftX;
    int shiftY;
    bool fullRange;
    ConvertBytes convertBytes;
    ConvertWords convertWords;

    int bytesPerSample() const { return convertWords ? 2 : 1; }
};

const PlanarFormat planarFormats[] = {
    {AV_PIX_FMT_YUV420P, 3, 1, 1, false, libyuv::I420ToARGBMatrix, nullptr},
    {AV_PIX_FMT_YUVJ420P, 3, 1, 1, true, libyuv::I420ToARGBMatrix, nullptr},
    {AV_PIX_FMT_YUV422P, 3, 1, 0, false, libyuv::I422ToARGBMatrix, nullptr},
    {AV_PIX_FMT_YUVJ422P, 3, 1, 0, true, libyuv::I422ToARGBMatrix, nullptr},
    {AV_PIX_FMT_YUV444P, 3, 0, 0, false, libyuv::I444ToARGBMatrix, nullptr},
    {AV_PIX_FMT_YUVJ444P, 3, 0, 0, true, libyuv::I444ToARGBMatrix, nullptr},
    {AV_PIX_FMT_GRAY8, 1, 0, 0, false, grayToArgb, nullptr},
    {AV_PIX_FMT_YUV420P10, 3, 1, 1, false, nullptr, libyuv::I010ToARGBMatrix},
    {AV_PIX_FMT_YUV422P10, 3, 1, 0, false, nullptr, libyuv::I210ToARGBMatrix},
    {AV_PIX_FMT_YUV444P10, 3, 0, 0, false, nullptr, libyuv::I410ToARGBMatrix},
};

const PlanarFormat *planarFormatOf(int format)
{
    const auto found = std::find_if(std::begin(planarFormats), std::end(planarFormats),
                                    [format](const PlanarFormat &f) { return f.format == format; });
    return found == std::end(planarFormats) ? nullptr : found;
}

const libyuv::YuvConstants *matrixOf(const AVFrame &picture, const PlanarFormat &format)
{
    const bool fullRange = format.fullRange || picture.color_range == AVCOL_RANGE_JPEG;
    const bool unnamed = picture.colorspace == AVCOL_SPC_UNSPECIFIED;
    if (picture.colorspace == AVCOL_SPC_BT2020_NCL || picture.colorspace == AVCOL_SPC_BT2020_CL)
        return fullRange ? &libyuv::kYuvV2020Constants : &libyuv::kYuv2020Constants;
    if (picture.colorspace == AVCOL_SPC_BT709 || (unnamed && picture.height > maxStandardRows))
        return fullRange ? &libyuv::kYuvF709Constants : &libyuv::kYuvH709Constants;
    return fullRange ? &libyuv::kYuvJPEGConstants : &libyuv::kYuvI601Constants;
}

struct Planes {
    const uint8_t *data[3] = {};
    int strideBytes[3] = {};
};

bool convertPlanes(const PlanarFormat &format, const Planes &planes,
                   const libyuv::YuvConstants *matrix, PictureSize size, uint8_t *pixels)
{
    const int rowBytes = size.width * FrameFile::bytesPerPixel;
    if (format.convertBytes) {
        return format.convertBytes(planes.data[0], planes.strideBytes[0], planes.data[1],
                                   planes.strideBytes[1], planes.data[2], planes.strideBytes[2],
                                   pixels, rowBytes, matrix, size.width, size.height) == 0;
    }
    const auto words = [&planes](int i) {
        return reinterpret_cast<const uint16_t *>(planes.data[i]);
    };
    return format.convertWords(words(0), planes.strideBytes[0] / 2, words(1),
                               planes.strideBytes[1] / 2, words(2), planes.strideBytes[2] / 2,
                               pixels, rowBytes, matrix, size.width, size.height) == 0;
}

int shifted(int length, int shift)
{
    return (length + (1 << shift) - 1) >> shift;
}

PictureSize planeSize(const PlanarFormat &format, PictureSize size, int plane)
{
    if (plane == 0)
        return size;
    return {shifted(size.width, format.shiftX), shifted(size.height, format.shiftY)};
}

void scalePlane(const PlanarFormat &format, const uint8_t *from, int strideBytes, PictureSize size,
                std::vector<uint8_t> &to, PictureSize target)
{
    const int sample = format.bytesPerSample();
    to.resize(static_cast<size_t>(target.width) * static_cast<size_t>(target.height) *
              static_cast<size_t>(sample));
    if (sample == 1) {
        libyuv::ScalePlane(from, strideBytes, size.width, size.height, to.data(), target.width,
                           target.width, target.height, libyuv::kFilterBilinear);
    } else {
        libyuv::ScalePlane_16(reinterpret_cast<const uint16_t *>(from), strideBytes / sample,
                              size.width, size.height, reinterpret_cast<uint16_t *>(to.data()),
                              target.width, target.width, target.height, libyuv::kFilterBilinear);
    }
}

} // namespace

PictureSize fittedSize(PictureSize size)
{
    if (size.width <= 0 || size.height <= 0)
        return {};
    const int64_t pixels = static_cast<int64_t>(size.width) * size.height;
    if (pixels <= FrameFile::maxPixels)
        return size;
    const double factor =
        std::sqrt(static_cast<double>(FrameFile::maxPixels) / static_cast<double>(pixels));
    const auto scaledLength = [factor](int length) {
        return std::max<int64_t>(1, static_cast<int64_t>(length * factor));
    };
    const int64_t width = std::min(scaledLength(size.width), FrameFile::maxPixels);
    const int64_t height = std::min(scaledLength(size.height), FrameFile::maxPixels / width);
    return {static_cast<int>(width), static_cast<int>(height)};
}

bool PictureConverter::convert(const AVFrame &picture, uint8_t *pixels)
{
    const PlanarFormat *format = planarFormatOf(picture.format);
    const PictureSize size = {picture.width, picture.height};
    const PictureSize target = fittedSize(size);
    if (!format || target == PictureSize())
        return false;

    Planes planes;
    for (int i = 0; i < format->planes; ++i) {
        planes.data[i] = picture.data[i];
        planes.strideBytes[i] = picture.linesize[i];
        if (target == size)
            continue;
        const PictureSize to = planeSize(*format, target, i);
        scalePlane(*format, picture.data[i], picture.linesize[i], planeSize(*format, size, i),
                   scaled[i], to);
        planes.data[i] = scaled[i].data();
        planes.strideBytes[i] = to.width * format->bytesPerSample();
    }
    return convertPlanes(*format, planes, matrixOf(picture, *format), target, pixels);
}

} // namespace Companion
} // namespace ZorvaneClient
