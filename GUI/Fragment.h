// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

#include "GUI/DayWindow.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

/// What lies under the mouse.
enum class FragmentPart { None, Start, End, Body };

/// The span of one day that is to be exported.
struct Fragment {
    /// The length of a fragment that nobody has pulled yet.
    static constexpr int firstSeconds = 300;

    QDateTime start;
    QDateTime end;

    /// One of the first length from the minute of `start`; within the day of `window`.
    static Fragment from(const QDateTime &start, const DayWindow &window);

    /// Neither too short nor too long.
    bool isAllowed() const;
    /// With that handle elsewhere; `handle` is `Start` or `End`.
    Fragment with(FragmentPart handle, const QDateTime &time) const;
    FragmentPart partAt(int x, const DayWindow &window) const;
    /// Later by `seconds`, but kept in the day of `window`, at whose ends it gets shorter.
    void move(qint64 seconds, const DayWindow &window);

    /// The window that shows the fragment well, which may reach beyond the day; `present` if
    /// that is closer and shows it already.
    DayWindow viewFrom(const DayWindow &present) const;
};

/// The round time near `time`, by the scale's class of labels; invalid near midnight.
QDateTime snapped(const QDateTime &time, int labelStep);

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
