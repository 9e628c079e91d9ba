// SPDX-License-Identifier: MIT
#include "service/NalUnit.h"

#include <algorithm>

namespace ZorvaneService {

namespace {

constexpr std::size_t lengthBytes = 4;

} // namespace

std::vector<NalUnit> unitsAfterStartCodes(const std::uint8_t *data, std::size_t size)
{
    std::vector<NalUnit> units;
    std::size_t begin = 0;
    for (std::size_t i = 0; i + 3 <= size; ++i) {
        if (data[i] != 0 || data[i + 1] != 0 || data[i + 2] != 1)
            continue;
        if (begin > 0)
            units.push_back({data + begin, i - begin});
        begin = i + 3;
        i += 2;
    }
    if (begin > 0)
        units.push_back({data + begin, size - begin});
    for (NalUnit &unit : units) {
        while (unit.size > 1 && unit.data[unit.size - 1] == 0)
            --unit.size;
    }
    return units;
}

void appendWithLength(const NalUnit &unit, Bytes *out)
{
    for (std::size_t i = lengthBytes; i-- > 0;)
        out->push_back(static_cast<std::uint8_t>(unit.size >> 8 * i));
    out->insert(out->end(), unit.data, unit.data + unit.size);
}

std::vector<NalUnit> unitsAfterLengths(const Bytes &picture)
{
    std::vector<NalUnit> units;
    for (std::size_t at = 0; at + lengthBytes <= picture.size();) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < lengthBytes; ++i)
            size = size << 8 | picture[at++];
        size = std::min(size, picture.size() - at);
        units.push_back({picture.data() + at, size});
        at += size;
    }
    return units;
}

} // namespace ZorvaneService
