// SPDX-License-Identifier: MIT
#include "tools/pictures/ArchiveStage.h"

#include "API/Camera.h"
#include "GUI/MainWindow.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tools/pictures/Require.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

QDate yesterday()
{
    return QDate::currentDate().addDays(-1);
}

QDateTime at(const char *time)
{
    return QDateTime(yesterday(), QTime::fromString(QLatin1String(time), QStringLiteral("hh:mm")));
}

GUI::ArchiveControlPanel *archivePanel()
{
    return mainWindow()->findChild<GUI::ArchiveControlPanel *>();
}

void showRecordsOf(const API::CameraPtr &camera)
{
    if (!timeline()->isVisible())
        press(mainWindow(), "showRecordsButton");
    archivePanel()->setDate(yesterday());
    waitFor([&] { return camera->hasRecords(yesterday()); }, "records");
}

void playFrom(const QDateTime &moment)
{
    mainWindow()->onPlayArchive(moment);
    waitForPictures("archive pictures");
}

} // namespace ZorvaneClient::Pictures
