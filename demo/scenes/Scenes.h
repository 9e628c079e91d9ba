// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "demo/scenes/Scene.h"

namespace ZorvaneDemo {

std::unique_ptr<Scene> newStreet();
std::unique_ptr<Scene> newCarPark();
std::unique_ptr<Scene> newEntrance();
std::unique_ptr<Scene> newCorridor();
std::unique_ptr<Scene> newWarehouse();
std::unique_ptr<Scene> newShop();
std::unique_ptr<Scene> newNightYard();
std::unique_ptr<Scene> newOffice();
std::unique_ptr<Scene> newPlayground();
std::unique_ptr<Scene> newPlatform();
std::unique_ptr<Scene> newRiverside();
std::unique_ptr<Scene> newLoadingDock();

} // namespace ZorvaneDemo
