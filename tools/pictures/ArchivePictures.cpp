// SPDX-License-Identifier: MIT
#include <QAbstractButton>
#include <QDateEdit>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QtTest>

#include <sys/resource.h>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

namespace {

constexpr int slowBytesPerSecond = 60000;
constexpr int exportDeadlineMs = 120000;
constexpr rlim_t fullDiskBytes = 50000;
constexpr int daysBefore = 24;
/// Cameras from here on have not been opened before, so nothing of theirs is known.
constexpr int untouched = 16;
constexpr QSize hintCorner(460, 200);

QDate yesterday()
{
    return QDate::currentDate().addDays(-1);
}

QDateTime at(const char *time)
{
    return QDateTime(yesterday(), QTime::fromString(QLatin1String(time), QStringLiteral("hh:mm")));
}

GUI::Timeline *timeline()
{
    return mainWindow()->findChild<GUI::Timeline *>();
}

GUI::ArchiveControlPanel *dateStrip()
{
    return mainWindow()->findChild<GUI::ArchiveControlPanel *>();
}

/// The strip with all its controls.
QRect archivePlace()
{
    return placeOf(timeline())
        .united(placeOf(dateStrip()))
        .united(placeOf(mainWindow()->findChild<QWidget *>(QStringLiteral("ControlPanel"))));
}

/// The corner of the grid where hints come up.
QRect hintPlace()
{
    return QRect(placeOf(gridOf(mainWindow())).topLeft(), hintCorner);
}

struct Span {
    const char *start;
    const char *end;
};

/// Gives it these records of yesterday, and some on the days before.
void record(Studio &studio, const DemoCamera &camera, const QList<Span> &spans)
{
    QVector<QPair<qint64, qint64>> records;
    for (int days = daysBefore; days > 1; --days) {
        const QDateTime morning = at("08:00").addDays(-days);
        if (days % 6 > 1)
            records.append(
                {morning.toMSecsSinceEpoch(), morning.addSecs(3600).toMSecsSinceEpoch()});
    }
    for (const Span &span : spans)
        records.append({at(span.start).toMSecsSinceEpoch(), at(span.end).toMSecsSinceEpoch()});
    require(studio.service.setArchive(camera, records), "records");
}

void showRecordsOf(const API::CameraPtr &camera)
{
    if (!timeline()->isVisible())
        press(mainWindow(), "showRecordsButton");
    dateStrip()->setDate(yesterday());
    waitFor([&] { return camera->hasRecords(yesterday()); }, "records");
}

void playFrom(const QDateTime &moment)
{
    mainWindow()->onPlayArchive(moment);
    waitFor(
        [] {
            const QList<GUI::Player::VideoWidget *> tiles = gridOf(mainWindow())->players();
            return std::all_of(tiles.begin(), tiles.end(),
                               [](auto *each) { return stripOf(each).has_value(); });
        },
        "archive pictures");
}

void takeStripStates(Studio &studio)
{
    QTest::mouseMove(mainWindow(), placeOf(timeline()).center());
    QTest::mouseMove(mainWindow(), placeOf(timeline()).center() + QPoint(70, 6));
    studio.take("timeline-hover", "The moment under the pointer", archivePlace());
    hoverNothing();
    dateStrip()->zoom(40);
    studio.take("timeline-zoomed", "The strip, zoomed in", archivePlace());
    dateStrip()->zoom(100);
    studio.take("timeline-minutes", "The strip, zoomed in as far as it goes", archivePlace());
    dateStrip()->zoom(0);

    auto *date = dateStrip()->findChild<QDateEdit *>(QStringLiteral("dateEdit"));
    auto *text = date->findChild<QLineEdit *>();
    QTest::mouseClick(text, Qt::LeftButton, Qt::NoModifier, text->rect().center());
    waitFor([] { return QApplication::activePopupWidget() != nullptr; }, "calendar");
    studio.take("calendar", "The calendar marks the days with records", archivePlace());
    QApplication::activePopupWidget()->close();

    settle();
    hover(partNamed("speedButton"));
    auto *slider = qobject_cast<QSlider *>(partNamed("speedSlider"));
    slider->setValue(2);
    studio.take("controls-speed", "The speed", archivePlace());
    slider->setValue(0);
    hoverNothing();
}

void takeMessage(Studio &studio, const char *name, const char *caption, const DemoCamera &camera)
{
    mainWindow()->openCamera(studio.camera(camera));
    press(mainWindow(), "showRecordsButton");
    studio.take(name, caption, archivePlace());
}

void takeStripMessages(Studio &studio)
{
    DemoFault fault;
    fault.route = QStringLiteral("//archive/list");
    fault.kind = QStringLiteral("stall");
    require(studio.service.addFault(fault) > 0, "fault");
    takeMessage(studio, "timeline-loading", "Records are being asked for",
                studio.good.at(untouched));
    studio.service.clearFaults();
    require(studio.service.setArchive(studio.good.at(untouched + 1), {}), "records");
    takeMessage(studio, "timeline-empty", "A day without records", studio.good.at(untouched + 1));
    fault.kind = QStringLiteral("nonjson");
    require(studio.service.addFault(fault) > 0, "fault");
    takeMessage(studio, "timeline-error", "Records can't be had", studio.good.at(untouched + 2));
    studio.service.clearFaults();
    takeMessage(studio, "timeline-not-shared", "An archive that is not shared",
                studio.cameraThat(
                    [](const DemoCamera &each) {
                        return each.online && each.paid && each.live && !each.archive;
                    },
                    "camera without an archive"));
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
    dateStrip()->zoom(60);
    auto *button = qobject_cast<QAbstractButton *>(partNamed("exportModeButton"));
    waitFor([&] { return button->isEnabled(); }, "export button");
    button->click();
    hoverNothing();
}

} // namespace

void recordArchive(Studio &studio)
{
    record(studio, studio.good.at(0), {{"00:00", "07:40"}, {"09:05", "17:20"}, {"18:10", "22:00"}});
    record(studio, studio.good.at(1), {{"02:10", "12:40"}, {"13:30", "23:50"}});
    record(studio, studio.good.at(2), {{"05:00", "05:50"}, {"08:00", "16:00"}});
    record(studio, studio.good.at(3), {{"11:00", "13:00"}, {"20:00", "21:30"}});
    record(studio, studio.lan, {{"11:00", "13:00"}});
}

void takeArchive(Studio &studio)
{
    require(studio.good.size() > untouched + 2, "cameras");
    studio.open(studio.layout(studio.good.first().name, 1, 1));
    showRecordsOf(studio.camera(studio.good.first()));
    playFrom(at("12:00"));
    hoverNothing();
    studio.take("archive", "The archive of one camera");
    studio.open(studio.layout(QStringLiteral("2 x 2"), 2, 2));
    for (int i = 0; i < 4; ++i)
        showRecordsOf(studio.camera(studio.good.at(i)));
    playFrom(at("12:00"));
    studio.take("archive-2x2", "The archive of four cameras at the same moment");
    takeStripStates(studio);
    takeStripMessages(studio);
}

void takeExport(Studio &studio)
{
    require(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation)) &&
                QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)),
            "folders");
    const API::CameraPtr camera = studio.camera(studio.lan);
    mainWindow()->openCamera(camera);
    beginExport(camera);
    studio.take("export-selection", "A fragment is chosen");

    DemoFault slow;
    slow.kind = QStringLiteral("slow");
    slow.route = QStringLiteral("/flv/archive");
    slow.value = slowBytesPerSecond;
    require(studio.service.addFault(slow) > 0, "fault");
    QSignalSpy done(gridOf(mainWindow()), &GUI::LayoutWidget::exportDone);
    QSignalSpy failed(gridOf(mainWindow()), &GUI::LayoutWidget::exportError);
    QSignalSpy percents(gridOf(mainWindow()), &GUI::LayoutWidget::exportPercentDone);
    press(mainWindow(), "exportButton");
    waitFor([&] { return isExporting() && !percents.isEmpty(); }, "export");
    studio.take("export-running", "The fragment is being exported");
    studio.service.clearFaults();
    require(QTest::qWaitFor([&] { return done.size() == 1; }, exportDeadlineMs), "exported file");
    studio.take("hint-exported", "The hint after an export", hintPlace());

    beginExport(camera);
    require(studio.service.addFault(slow) > 0, "fault");
    press(mainWindow(), "exportButton");
    waitFor([] { return exportChild() > 0; }, "export");
    const rlimit limit = {fullDiskBytes, fullDiskBytes};
    require(::prlimit(exportChild(), RLIMIT_FSIZE, &limit, nullptr) == 0, "full disk");
    require(QTest::qWaitFor([&] { return failed.size() == 1; }, exportDeadlineMs), "failed export");
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
