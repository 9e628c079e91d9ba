// SPDX-License-Identifier: MIT
#include "service/NalUnit.h"

#include <algorithm>
#include <cstring>

namespace ZorvaneService {

namespace {

constexpr std::size_t startCodeBytes = 3;

/// Where the next start code begins; the end when there is none.
const std::uint8_t *findStartCode(const std::uint8_t *at, const std::uint8_t *end)
{
    // Its last byte is a rare one, and one byte is found quickly.
    while (end - at >= std::ptrdiff_t(startCodeBytes)) {
        const auto *one = static_cast<const std::uint8_t *>(
            std::memchr(at + 2, 1, static_cast<std::size_t>(end - at - 2)));
        if (!one)
            break;
        if (one[-1] == 0 && one[-2] == 0)
            return one - 2;
        at = one - 1;
    }
    return end;
}

} // namespace

std::vector<NalUnit> unitsAfterStartCodes(const std::uint8_t *data, std::size_t size)
{
    std::vector<NalUnit> units;
    const std::uint8_t *const end = data + size;
    const std::uint8_t *at = findStartCode(data, end);
    while (at != end) {
        const std::uint8_t *const begin = at + startCodeBytes;
        at = findStartCode(begin, end);
        const std::uint8_t *unitEnd = at;
        while (unitEnd > begin && unitEnd[-1] == 0)
            --unitEnd;
        if (unitEnd > begin)
            units.push_back({begin, static_cast<std::size_t>(unitEnd - begin)});
    }
    return units;
}

std::vector<NalUnit> unitsAfterLengths(const std::uint8_t *data, std::size_t size,
                                       std::size_t lengthBytes)
{
    std::vector<NalUnit> units;
    while (size > lengthBytes) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < lengthBytes; ++i)
            length = length << 8 | data[i];
        data += lengthBytes;
        size -= lengthBytes;
        length = std::min(length, size);
        if (length > 0)
            units.push_back({data, length});
        data += length;
        size -= length;
    }
    return units;
}

void appendWithLength(const NalUnit &unit, Bytes *out)
{
    for (std::size_t i = nalLengthBytes; i-- > 0;)
        out->push_back(static_cast<std::uint8_t>(unit.size >> 8 * i));
    out->insert(out->end(), unit.data, unit.data + unit.size);
}

} // namespace ZorvaneService
