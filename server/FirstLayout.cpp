// SPDX-License-Identifier: MIT
#include "server/FirstLayout.h"

#include <algorithm>

namespace ZorvaneServer {

namespace {

constexpr int mostColumns = 6; ///< of the client's grid, and rows

} // namespace

nlohmann::json firstLayouts(const ZorvaneService::ServerWithCameras &lan)
{
    const int count = std::min(static_cast<int>(lan.cameras.size()), mostColumns * mostColumns);
    int columns = 1;
    while (columns * columns < count)
        ++columns;
    auto cells = nlohmann::json::array();
    for (int i = 0; i < count; ++i) {
        cells.push_back({{"server", lan.server.id},
                         {"camera", lan.cameras[static_cast<std::size_t>(i)].id},
                         {"row", i / columns},
                         {"column", i % columns},
                         {"w", 1},
                         {"h", 1}});
    }
    return nlohmann::json::array({{{"id", "all-cameras"},
                                   {"name", "All cameras"},
                                   {"rows", std::max(1, (count + columns - 1) / columns)},
                                   {"columns", columns},
                                   {"cameras", cells}}});
}

} // namespace ZorvaneServer
