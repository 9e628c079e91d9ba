// SPDX-License-Identifier: MIT
// What every test begins with.
#pragma once

#include <QtTest>
#ifdef QT_NETWORK_LIB
#include <QtNetwork>
#endif
#ifdef QT_WIDGETS_LIB
#include <QtWidgets>
#endif

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>

#include "tests/support/Table.h"

namespace ZorvaneClient::Tests {

/// "text"_s is a QString.
inline QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, int(size));
}

} // namespace ZorvaneClient::Tests

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
