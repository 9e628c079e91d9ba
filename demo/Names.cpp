// SPDX-License-Identifier: MIT
#include "demo/Names.h"

#include <array>
#include <cstddef>

#include "demo/scenes/SceneCount.h"

namespace ZorvaneDemo {

namespace {

constexpr unsigned defaultSeed = 1;

constexpr std::array<const char *, 12> servers{
    "Riverside Office", "Склад на Лесной", "Old Town",         "Gate camera",
    "New branch",       "Marina",          "Торговый центр",   "Science Park",
    "Birchwood School", "Автобаза № 3",    "Harbour Terminal", "Lakeside Hotel"};

// By scene, in the order of makeScene().
constexpr std::array<std::array<const char *, 4>, sceneCount> cameras{{
    {"Main street", "Улица, перекрёсток", "Street, north side", "Bus stop"},
    {"Car park", "Парковка", "Visitors' parking", "Staff car park"},
    {"Main entrance", "Главный вход", "Entrance B", "Side entrance"},
    {"Corridor, 2nd floor", "Коридор", "Corridor, east wing", "Lift lobby"},
    {"Warehouse", "Склад, стеллажи", "Warehouse aisle 4", "Loading area"},
    {"Shop floor", "Торговый зал", "Till 1", "Shop, back"},
    {"Yard at night", "Двор, ночь", "Back yard", "Courtyard"},
    {"Open-plan office", "Офис", "Meeting area", "Office, west"},
    {"Playground", "Детская площадка", "Garden", "Play area"},
    {"Platform 1", "Перрон", "Platform 2", "Railway platform"},
    {"Riverside", "Набережная", "Promenade", "Bridge view"},
    {"Loading dock", "Ворота склада", "Gate 3", "Delivery gate"},
}};

constexpr const char *longName =
    "Camera above the emergency exit of the second underground level, next to the pump room "
    "and the bicycle store, facing the ramp";
constexpr int longNameIndex = 8;

} // namespace

std::string serverName(unsigned seed, int index)
{
    const std::size_t at = static_cast<std::size_t>(index) + seed - defaultSeed;
    const std::string name = servers[at % servers.size()];
    const std::size_t round = static_cast<std::size_t>(index) / servers.size();
    return round == 0 ? name : name + " " + std::to_string(round + 1);
}

std::string cameraName(unsigned seed, int index)
{
    if (index == longNameIndex)
        return longName;
    const auto &names = cameras[static_cast<std::size_t>(index) % sceneCount];
    const std::size_t place = static_cast<std::size_t>(index);
    const std::size_t round = place / (sceneCount * names.size());
    // Neighbours take their names from different columns; the seed shifts them.
    const std::size_t at = (place / sceneCount + place + seed - defaultSeed) % names.size();
    const std::string name = names[at];
    return round == 0 ? name : name + " " + std::to_string(round + 1);
}

std::string lanServerName(int index)
{
    return index == 0 ? "Home recorder" : "LAN recorder " + std::to_string(index + 1);
}

} // namespace ZorvaneDemo
