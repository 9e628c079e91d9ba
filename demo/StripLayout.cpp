// SPDX-License-Identifier: MIT
#include "demo/StripLayout.h"

#include <algorithm>

namespace ZorvaneDemo {

namespace {

constexpr unsigned baselineProfile = 66;
constexpr unsigned mainProfile = 77;
constexpr int middleQp = 26;

void skipNumbers(BitReader &in, int count)
{
    for (int i = 0; i < count; ++i)
        in.ue();
}

} // namespace

bool StripLayout::readParameterSets(const Bytes &sps, const Bytes &pps)
{
    return readSequenceSet(sps) && readPictureSet(pps);
}

bool StripLayout::readSequenceSet(const Bytes &sps)
{
    const Bytes payload = withoutEmulation(sps.data(), sps.size());
    BitReader in(payload.data(), payload.size());
    in.bits(8); // unit header
    const unsigned profile = in.bits(8);
    in.bits(16);        // constraints, level
    skipNumbers(in, 1); // id
    if (profile != baselineProfile && profile != mainProfile)
        return false;
    frameNumBits = static_cast<std::uint8_t>(in.ue() + 4);
    pocType = static_cast<std::uint8_t>(in.ue());
    if (pocType == 1)
        return false;
    if (pocType == 0)
        pocBits = static_cast<std::uint8_t>(in.ue() + 4);
    return true;
}

bool StripLayout::readPictureSet(const Bytes &pps)
{
    const Bytes payload = withoutEmulation(pps.data(), pps.size());
    BitReader in(payload.data(), payload.size());
    in.bits(8);         // unit header
    skipNumbers(in, 2); // ids of both sets
    const bool cabac = in.bits(1);
    const bool fieldOrder = in.bits(1);
    const unsigned sliceGroups = in.ue();
    skipNumbers(in, 2); // reference pictures
    in.bits(3);         // weights
    initialQp = static_cast<std::int8_t>(middleQp + in.se());
    skipNumbers(in, 2); // other quantisers
    const bool deblockingControl = in.bits(1);
    in.bits(1); // constrained prediction
    const bool redundant = in.bits(1);
    return !cabac && !fieldOrder && sliceGroups == 0 && deblockingControl && !redundant;
}

StripPicture StripPicture::fromSlice(const StripLayout &layout, const std::uint8_t *nal,
                                     std::size_t size)
{
    constexpr std::size_t headerBytes = 32;
    const Bytes payload = withoutEmulation(nal, std::min(size, headerBytes));
    BitReader in(payload.data(), payload.size());
    StripPicture picture;
    picture.nalHeader = static_cast<std::uint8_t>(in.bits(8));
    skipNumbers(in, 3); // first macroblock, kind of slice, id of the picture's set
    picture.frameNum = static_cast<std::uint16_t>(in.bits(layout.frameNumBits));
    if (picture.isIdr())
        picture.idrPicId = static_cast<std::uint16_t>(in.ue());
    if (layout.pocType == 0)
        picture.pocLsb = static_cast<std::uint16_t>(in.bits(layout.pocBits));
    return picture;
}

} // namespace ZorvaneDemo
