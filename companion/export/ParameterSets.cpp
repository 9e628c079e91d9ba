// SPDX-License-Identifier: MIT
#include "companion/export/ParameterSets.h"

#include <algorithm>
#include <optional>

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr int sequenceSet = 7;
constexpr int delimiter = 9;
constexpr unsigned unitTypeMask = 0x1F;

/// Takes numbers and runs of bytes off the front; fails for good where there is too little.
class Bytes
{
public:
    Bytes(const uint8_t *bytes, size_t count) : begin(bytes), end(bytes + count) {}

    size_t left() const { return static_cast<size_t>(end - begin); }
    bool failed() const { return hasFailed; }

    size_t number(size_t count)
    {
        size_t value = 0;
        for (const uint8_t *byte = take(count); count > 0; --count)
            value = value << 8 | (byte ? *byte++ : 0);
        return value;
    }
    const uint8_t *take(size_t count)
    {
        hasFailed = hasFailed || count > left();
        if (hasFailed)
            return nullptr;
        begin += count;
        return begin - count;
    }

private:
    const uint8_t *begin;
    const uint8_t *end;
    bool hasFailed = false;
};

void appendUnit(std::vector<uint8_t> &units, const uint8_t *unit, size_t size, size_t lengthBytes)
{
    for (size_t i = lengthBytes; i > 0; --i)
        units.push_back(static_cast<uint8_t>(size >> 8 * (i - 1)));
    units.insert(units.end(), unit, unit + size);
}

/// Where parameter sets belong: behind a delimiter. Nothing if the packet has some.
std::optional<size_t> placeForSets(const AVPacket &packet, size_t lengthBytes)
{
    Bytes bytes(packet.data, static_cast<size_t>(packet.size));
    size_t place = 0;
    while (bytes.left() > 0) {
        const size_t size = bytes.number(lengthBytes);
        const uint8_t *unit = bytes.take(size);
        if (!unit || size == 0)
            return std::nullopt;
        const int type = *unit & unitTypeMask;
        if (type == sequenceSet)
            return std::nullopt;
        if (type == delimiter)
            place = static_cast<size_t>(packet.size) - bytes.left();
    }
    return place;
}

} // namespace

void ParameterSets::set(const uint8_t *record, size_t size)
{
    constexpr size_t headBytes = 4;
    Bytes bytes(record, size);
    bytes.take(headBytes);
    const size_t newLengthBytes = (bytes.number(1) & 3) + 1;
    std::vector<uint8_t> newUnits;
    for (const size_t countMask : {size_t(0x1F), size_t(0xFF)}) {
        for (size_t count = bytes.number(1) & countMask; count > 0 && !bytes.failed(); --count) {
            const size_t unitSize = bytes.number(2);
            if (const uint8_t *unit = bytes.take(unitSize))
                appendUnit(newUnits, unit, unitSize, newLengthBytes);
        }
    }
    if (bytes.failed())
        return;
    units = std::move(newUnits);
    lengthBytes = newLengthBytes;
}

bool ParameterSets::apply(AVPacket &packet)
{
    size_t size = 0;
    if (const uint8_t *record = av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, &size))
        set(record, size);
    if (units.empty() || !(packet.flags & AV_PKT_FLAG_KEY))
        return true;
    const auto place = placeForSets(packet, lengthBytes);
    return !place || insertInto(packet, *place);
}

bool ParameterSets::insertInto(AVPacket &packet, size_t place) const
{
    const auto oldSize = static_cast<size_t>(packet.size);
    if (av_grow_packet(&packet, static_cast<int>(units.size())) < 0 ||
        av_packet_make_writable(&packet) < 0)
        return false;
    std::copy_backward(packet.data + place, packet.data + oldSize, packet.data + packet.size);
    std::copy(units.begin(), units.end(), packet.data + place);
    return true;
}

} // namespace Companion
} // namespace ZorvaneClient
