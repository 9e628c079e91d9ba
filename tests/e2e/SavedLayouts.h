// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/Types.h"

namespace ZorvaneClient::Tests {

/// How many contents savedLayouts() knows.
constexpr int savedVariants = 2;

/// The account whose cache file they go to.
QByteArray saverEmail();
/// Forty layouts full of cameras, the same in each process. The variants differ in the name
/// and in every cell of every layout, so a mixture of the two is neither.
QList<API::LayoutPtr> savedLayouts(int variant);

} // namespace ZorvaneClient::Tests
