// SPDX-License-Identifier: MIT
#include "tools/pictures/Require.h"

#include <QtTest>

#include <cstdlib>

namespace ZorvaneClient::Pictures {

namespace {

constexpr int waitDeadlineMs = 120000;
/// The longest animation of the program takes 300.
constexpr int settleMs = 500;

} // namespace

void require(bool holds, const char *what)
{
    if (holds)
        return;
    qCritical("missing: %s", what);
    std::exit(EXIT_FAILURE);
}

void waitFor(const std::function<bool()> &condition, const char *what)
{
    require(QTest::qWaitFor(condition, waitDeadlineMs), what);
}

void settle()
{
    QTest::qWait(settleMs);
}

} // namespace ZorvaneClient::Pictures
