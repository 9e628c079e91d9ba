// SPDX-License-Identifier: MIT
#include "GUI/Tour.h"

#include <algorithm>

#include "API/Layout.h"

namespace ZorvaneClient {
namespace GUI {

API::LayoutPtr layoutBeside(const QList<API::LayoutPtr> &layouts, const API::LayoutPtr &shown,
                            int step)
{
    if (layouts.isEmpty())
        return API::LayoutPtr();
    const int count = static_cast<int>(layouts.size());
    const int place = static_cast<int>(layouts.indexOf(shown));
    if (place < 0)
        return step > 0 ? layouts.first() : layouts.last();
    return layouts.at((place + step + count) % count);
}

void Tour::start(const QDateTime &now, std::chrono::seconds interval)
{
    on = true;
    between = std::max(interval, shortestInterval);
    quietSince = now;
}

API::LayoutPtr Tour::next(const QDateTime &now, const QList<API::LayoutPtr> &layouts,
                          const API::LayoutPtr &shown)
{
    // The wall clock can be set back.
    if (now < quietSince)
        quietSince = now;
    if (!on || now < quietSince.addSecs(between.count()))
        return API::LayoutPtr();
    quietSince = now;
    const API::LayoutPtr layout = layoutBeside(layouts, shown, 1);
    return layout == shown ? API::LayoutPtr() : layout;
}

} // namespace GUI
} // namespace ZorvaneClient
