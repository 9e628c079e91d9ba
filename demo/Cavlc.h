// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "demo/BitStream.h"

namespace ZorvaneDemo {

/// As much of H.264's variable length codes for coefficients as a strip needs.
namespace Cavlc {

/// The DC levels of one macroblock's luma in scan order; all after these are 0.
using LumaDc = std::array<int, 5>;

/// For a block without neighbours that have coefficients of their own.
void putLumaDc(BitWriter &out, const LumaDc &levels);
/// One chroma DC block whose only level is the first, between 2 and 8 either way.
void putChromaDc(BitWriter &out, int level);

} // namespace Cavlc

} // namespace ZorvaneDemo
