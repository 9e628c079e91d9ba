// SPDX-License-Identifier: MIT
#include <QDateEdit>
#include <QLineEdit>
#include <QSlider>
#include <QtTest>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tools/pictures/ArchiveStage.h"
#include "tools/pictures/Require.h"
#include "tools/pictures/Scenes.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

namespace {

constexpr int daysBefore = 24;
/// Cameras from here on have not been opened before, so nothing of theirs is known.
constexpr int untouched = 16;

/// The strip with all its controls.
QRect archivePlace()
{
    return placeOf(timeline())
        .united(placeOf(archivePanel()))
        .united(placeOf(mainWindow()->findChild<QWidget *>(QStringLiteral("ControlPanel"))));
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

void takeStripStates(Studio &studio)
{
    QTest::mouseMove(mainWindow(), placeOf(timeline()).center());
    QTest::mouseMove(mainWindow(), placeOf(timeline()).center() + QPoint(70, 6));
    studio.take("timeline-hover", "The moment under the pointer", archivePlace());
    hoverNothing();
    archivePanel()->zoom(40);
    studio.take("timeline-zoomed", "The strip, zoomed in", archivePlace());
    archivePanel()->zoom(100);
    studio.take("timeline-minutes", "The strip, zoomed in as far as it goes", archivePlace());
    archivePanel()->zoom(0);

    auto *date = archivePanel()->findChild<QDateEdit *>(QStringLiteral("dateEdit"));
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
    const char *const listRoute = "//archive/list";
    studio.spoil("stall", listRoute);
    takeMessage(studio, "timeline-loading", "Records are being asked for",
                studio.good.at(untouched));
    studio.service.clearFaults();
    require(studio.service.setArchive(studio.good.at(untouched + 1), {}), "records");
    takeMessage(studio, "timeline-empty", "A day without records", studio.good.at(untouched + 1));
    studio.spoil("nonjson", listRoute);
    takeMessage(studio, "timeline-error", "Records can't be had", studio.good.at(untouched + 2));
    studio.service.clearFaults();
    takeMessage(studio, "timeline-not-shared", "An archive that is not shared",
                studio.cameraThat(
                    [](const DemoCamera &each) {
                        return each.online && each.paid && each.live && !each.archive;
                    },
                    "camera without an archive"));
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

} // namespace ZorvaneClient::Pictures
