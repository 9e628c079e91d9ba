// SPDX-License-Identifier: MIT
#include "tests/e2e/SavedLayouts.h"

#include "tests/support/Test.h"

#include "API/Layout.h"
#include "tests/support/Roster.h"

namespace ZorvaneClient::Tests {

namespace {

constexpr int layoutCount = 40;
constexpr int gridSide = 6;
const QString serverId = "saver-server"_s;

void makeRoster()
{
    if (rosterCamera(serverId, 1))
        return;
    QStringList names;
    for (int camera = 1; camera <= gridSide * gridSide; ++camera)
        names << "camera %1"_s.arg(camera);
    addServerToRoster(serverId, names);
}

API::LayoutPtr savedLayout(int variant, int number)
{
    const QString id = "layout-%1"_s.arg(number, 2, 10, QLatin1Char('0'));
    const auto layout = API::LayoutPtr::create(QVariantMap{{"id"_s, id}});
    layout->setName("%1 of variant %2"_s.arg(id).arg(variant));
    layout->resize(gridSide, gridSide);
    for (int cell = 0; cell < gridSide * gridSide; ++cell) {
        const int camera = 1 + (cell + variant) % (gridSide * gridSide);
        layout->setCamera(rosterCamera(serverId, camera), cell / gridSide, cell % gridSide, 1, 1);
    }
    return layout;
}

} // namespace

QByteArray saverEmail()
{
    return QByteArrayLiteral("saver@zorvane.example");
}

QList<API::LayoutPtr> savedLayouts(int variant)
{
    makeRoster();
    QList<API::LayoutPtr> layouts;
    for (int number = 0; number < layoutCount; ++number)
        layouts << savedLayout(variant, number);
    return layouts;
}

} // namespace ZorvaneClient::Tests
