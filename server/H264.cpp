// SPDX-License-Identifier: MIT
#include "server/H264.h"

#include <algorithm>

namespace ZorvaneServer {
namespace H264 {

namespace {

constexpr std::size_t recordHead = 6; // version, profile, flags, level, lengths, count
constexpr std::uint8_t recordVersion = 1;
constexpr std::uint8_t fourByteLengths = 0xff;
constexpr std::uint8_t countMark = 0xe0;
constexpr unsigned countBits = 0x1f;
constexpr std::size_t profileEnd = 4;

void appendSized(const Bytes &unit, Bytes *out)
{
    out->push_back(static_cast<std::uint8_t>(unit.size() >> 8));
    out->push_back(static_cast<std::uint8_t>(unit.size()));
    out->insert(out->end(), unit.begin(), unit.end());
}

} // namespace

std::size_t lengthBytesOf(const std::uint8_t *setup, std::size_t size)
{
    return size > recordHead && setup[0] == recordVersion ? (setup[4] & 3u) + 1 : 0;
}

ParameterSets ParameterSets::of(const std::uint8_t *setup, std::size_t size)
{
    ParameterSets sets;
    if (lengthBytesOf(setup, size) == 0) {
        sets.take(ZorvaneService::unitsAfterStartCodes(setup, size));
        return sets;
    }
    Units units;
    std::size_t at = recordHead - 1;
    for (const unsigned mask : {countBits, 0xffu}) {
        unsigned count = at < size ? setup[at++] & mask : 0;
        for (; count > 0 && at + 2 <= size; --count) {
            const std::size_t length = std::size_t(setup[at]) << 8 | setup[at + 1];
            at += 2;
            if (length == 0 || length > size - at)
                return sets;
            units.push_back({setup + at, length});
            at += length;
        }
    }
    sets.take(units);
    return sets;
}

bool ParameterSets::take(const Units &units)
{
    ParameterSets found;
    for (const Unit &unit : units) {
        if (unit.type() == Unit::SequenceSet && unit.size >= profileEnd)
            found.sequence.emplace_back(unit.data, unit.data + unit.size);
        else if (unit.type() == Unit::PictureSet)
            found.picture.emplace_back(unit.data, unit.data + unit.size);
    }
    bool changed = false;
    for (const auto kind : {&ParameterSets::sequence, &ParameterSets::picture}) {
        std::vector<Bytes> &sets = found.*kind;
        sets.erase(std::unique(sets.begin(), sets.end()), sets.end());
        if (sets.empty() || sets == this->*kind)
            continue;
        this->*kind = std::move(sets);
        changed = true;
    }
    return changed;
}

Bytes ParameterSets::record() const
{
    const Bytes &first = sequence.front();
    Bytes out = {recordVersion, first[1], first[2], first[3], fourByteLengths};
    out.push_back(static_cast<std::uint8_t>(countMark | sequence.size()));
    for (const Bytes &set : sequence)
        appendSized(set, &out);
    out.push_back(static_cast<std::uint8_t>(picture.size()));
    for (const Bytes &set : picture)
        appendSized(set, &out);
    return out;
}

Bytes ParameterSets::withStartCodes() const
{
    Bytes out;
    for (const auto kind : {&ParameterSets::sequence, &ParameterSets::picture}) {
        for (const Bytes &set : this->*kind) {
            out.insert(out.end(), {0, 0, 0, 1});
            out.insert(out.end(), set.begin(), set.end());
        }
    }
    return out;
}

Bytes pictureOf(const Units &units)
{
    Bytes out;
    std::size_t size = 0;
    for (const Unit &unit : units)
        size += ZorvaneService::nalLengthBytes + unit.size;
    out.reserve(size);
    for (const Unit &unit : units) {
        const unsigned type = unit.type();
        if (type == Unit::SequenceSet || type == Unit::PictureSet || type == Unit::Delimiter)
            continue;
        appendWithLength(unit, &out);
    }
    return out;
}

bool isKey(const Units &units)
{
    return std::any_of(units.begin(), units.end(),
                       [](const Unit &unit) { return unit.type() == Unit::IdrSlice; });
}

} // namespace H264
} // namespace ZorvaneServer
