// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>

#include <chrono>

#include "API/Types.h"

namespace ZorvaneClient {
namespace GUI {

/// The layout behind `shown`, or with a step of -1 before it, round the list; beside one that is
/// not in the list, the first or the last. Null without layouts.
API::LayoutPtr layoutBeside(const QList<API::LayoutPtr> &layouts, const API::LayoutPtr &shown,
                            int step);

/// Layouts in turn: says which one is to be opened, and when. Whatever somebody does at the
/// window holds it back for a whole interval.
class Tour
{
public:
    static constexpr std::chrono::seconds usualInterval{30};
    static constexpr std::chrono::seconds shortestInterval{5};

    bool isOn() const { return on; }
    std::chrono::seconds interval() const { return between; }
    /// Goes on by itself after the interval, or the shortest one.
    void start(const QDateTime &now, std::chrono::seconds interval);
    void stop() { on = false; }

    /// Somebody is there, or what is shown must stay.
    void hold(const QDateTime &now) { quietSince = now; }
    /// What to open now; null most of the time.
    API::LayoutPtr next(const QDateTime &now, const QList<API::LayoutPtr> &layouts,
                        const API::LayoutPtr &shown);

private:
    bool on = false;
    std::chrono::seconds between = usualInterval;
    QDateTime quietSince;
};

} // namespace GUI
} // namespace ZorvaneClient
