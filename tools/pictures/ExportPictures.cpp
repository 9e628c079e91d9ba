// SPDX-License-Identifier: MIT
#include <QAbstractButton>
#include <QDir>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QtTest>

#include <sys/resource.h>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tools/pictures/ArchiveStage.h"
#include "tools/pictures/Require.h"
#include "tools/pictures/Scenes.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

namespace {

constexpr char archiveRoute[] = "/flv/archive";
constexpr qint64 slowBytesPerSecond = 60000;
constexpr rlim_t fullDiskBytes = 50000;
constexpr QSize hintCorner(460, 200);

/// The corner of the grid where hints come up.
QRect hintPlace()
{
    return QRect(placeOf(gridOf(mainWindow())).topLeft(), hintCorner);
}

bool isExporting()
{
    auto *panel = qobject_cast<QStackedWidget *>(partNamed("exportControl"));
    return panel->isVisible() &&
           panel->currentWidget()->objectName() == QLatin1String("exportLabelPage");
}

pid_t exportChild()
{
    const auto processes = tile()->findChildren<QProcess *>();
    for (const QProcess *process : processes) {
        if (process->arguments().value(0) == QLatin1String("export"))
            return static_cast<pid_t>(process->processId());
    }
    return 0;
}

void beginExport(const API::CameraPtr &camera)
{
    showRecordsOf(camera);
    playFrom(at("12:00"));
    archivePanel()->zoom(60);
    auto *button = qobject_cast<QAbstractButton *>(partNamed("exportModeButton"));
    waitFor([&] { return button->isEnabled(); }, "export button");
    button->click();
    hoverNothing();
}

} // namespace

void takeExport(Studio &studio)
{
    require(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation)) &&
                QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)),
            "folders");
    const API::CameraPtr camera = studio.camera(studio.lan);
    mainWindow()->openCamera(camera);
    beginExport(camera);
    studio.take("export-selection", "A fragment is chosen");

    studio.spoil("slow", archiveRoute, slowBytesPerSecond);
    QSignalSpy done(gridOf(mainWindow()), &GUI::LayoutWidget::exportDone);
    QSignalSpy failed(gridOf(mainWindow()), &GUI::LayoutWidget::exportError);
    QSignalSpy percents(gridOf(mainWindow()), &GUI::LayoutWidget::exportPercentDone);
    press(mainWindow(), "exportButton");
    waitFor([&] { return isExporting() && !percents.isEmpty(); }, "export");
    studio.take("export-running", "The fragment is being exported");
    studio.service.clearFaults();
    waitFor([&] { return done.size() == 1; }, "exported file");
    studio.take("hint-exported", "The hint after an export", hintPlace());

    beginExport(camera);
    studio.spoil("slow", archiveRoute, slowBytesPerSecond);
    press(mainWindow(), "exportButton");
    waitFor([] { return exportChild() > 0; }, "export");
    const rlimit limit = {fullDiskBytes, fullDiskBytes};
    require(::prlimit(exportChild(), RLIMIT_FSIZE, &limit, nullptr) == 0, "full disk");
    waitFor([&] { return failed.size() == 1; }, "failed export");
    studio.service.clearFaults();
    studio.take("hint-export-failed", "The hint after an export that failed", hintPlace());

    press(mainWindow(), "goLiveButton");
    press(mainWindow(), "hideRecordsButton");
    studio.open(studio.layout(studio.good.first().name, 1, 1));
    QTest::mouseClick(tile()->findChild<QPushButton *>(QStringLiteral("cameraScreenshotButton")),
                      Qt::LeftButton);
    studio.take("hint-snapshot", "The hint after a snapshot", hintPlace());
}

} // namespace ZorvaneClient::Pictures
