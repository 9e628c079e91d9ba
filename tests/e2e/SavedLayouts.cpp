// SPDX-License-Identifier: MIT
#include "tests/e2e/SavedLayouts.h"

#include <QVariantMap>

#include "API/Layout.h"
#include "tests/support/Roster.h"

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int layoutCount = 40;
constexpr int gridSide = 6;
const QString serverId = QStringLiteral("saver-server");

void makeRoster()
{
    if (rosterCamera(serverId, 1))
        return;
    QStringList names;
    for (int camera = 1; camera <= gridSide * gridSide; ++camera)
        names << QStringLiteral("camera %1").arg(camera);
    addServerToRoster(serverId, names);
}

API::LayoutPtr savedLayout(int variant, int number)
{
    const QString id = QStringLiteral("layout-%1").arg(number, 2, 10, QLatin1Char('0'));
    const auto layout = API::LayoutPtr::create(QVariantMap{{QStringLiteral("id"), id}});
    layout->setName(QStringLiteral("%1 of variant %2").arg(id).arg(variant));
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

} // namespace Tests
} // namespace ZorvaneClient
