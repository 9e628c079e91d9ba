// SPDX-License-Identifier: MIT
#include "demo/scenes/Scene.h"

#include <array>
#include <cstddef>

#include "demo/scenes/Scenes.h"

namespace ZorvaneDemo {

std::unique_ptr<Scene> makeScene(int number)
{
    using Maker = std::unique_ptr<Scene> (*)();
    constexpr std::array<Maker, sceneCount> makers{
        newStreet,    newCarPark, newEntrance,   newCorridor, newWarehouse, newShop,
        newNightYard, newOffice,  newPlayground, newPlatform, newRiverside, newLoadingDock};
    return makers[static_cast<std::size_t>(number) % makers.size()]();
}

} // namespace ZorvaneDemo
