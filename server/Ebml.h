// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "server/StreamFormat.h"

namespace ZorvaneServer {

/// EBML, the notation that Matroska is written in: elements of id, size and content.
namespace Ebml {

constexpr std::uint64_t unknownSize = ~std::uint64_t(0);
constexpr std::size_t longestHeader = 12;
/// A size of this many bytes can be put over any other one in place.
constexpr std::size_t patchableSize = 8;

void appendId(std::uint32_t id, Bytes *out);
/// In as few bytes as it takes, or in `bytes` of them.
void appendSize(std::uint64_t size, Bytes *out, std::size_t bytes = 0);
void appendElement(std::uint32_t id, const Bytes &content, Bytes *out);
void appendUnsigned(std::uint32_t id, std::uint64_t value, Bytes *out);
void appendNumber(std::uint32_t id, double value, Bytes *out);
void appendText(std::uint32_t id, std::string_view text, Bytes *out);
/// An element without meaning of so many bytes in all; at least 2.
void appendVoid(std::size_t bytes, Bytes *out);

struct Header {
    std::uint32_t id;
    std::uint64_t size; ///< of the content; may be `unknownSize`
    std::size_t bytes;  ///< of the header itself
};

/// Nothing when there is no whole header at the beginning of the bytes.
std::optional<Header> readHeader(const std::uint8_t *data, std::size_t size);
std::uint64_t readUnsigned(const std::uint8_t *data, std::size_t size);
double readNumber(const std::uint8_t *data, std::size_t size);

} // namespace Ebml
} // namespace ZorvaneServer
