// SPDX-License-Identifier: MIT
#pragma once

#include "GUI/Fragment.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

/// A fragment in the hand of the mouse. A handle that is pulled past what a fragment may be
/// carries the whole of it along, and is a handle again when it comes back.
struct FragmentDrag {
    Fragment fragment;
    FragmentPart held = FragmentPart::None;
    bool carries = false; ///< all of it moves, by its body or by a handle
    QDateTime anchor;     ///< what was under the mouse when it last moved as a whole

    /// Takes hold of what lies at `x`.
    void take(int x, const DayWindow &window);
    /// The mouse is at `x`. Handles snap by `labelStep`, the scale's class of labels.
    void moveTo(int x, const DayWindow &window, int labelStep);

private:
    bool pull(const QDateTime &time, int x, const DayWindow &window, int labelStep);
    void carry(const QDateTime &time, const DayWindow &window);
    QDateTime handle() const;
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
