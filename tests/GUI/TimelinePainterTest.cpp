// SPDX-License-Identifier: MIT
// What the strip paints: records, scale, marks, and messages in place of records.
#include "GUI/TimelinePainter.h"
#include "GUI/TimelineBars.h"
#include "GUI/TimelineTooltip.h"
#include "tests/GUI/TimelineStrip.h"

using GUI::Timeline;
using namespace GUI::Internal;

namespace {

const QColor accent(62, 183, 253);

QImage paintingOf(TimelineStrip &strip)
{
    QImage image(strip.owner.size(), QImage::Format_RGB32);
    image.fill(stripGround);
    QPainter painter(&image);
    painter.setFont(strip.owner.font());
    TimelinePainter(strip.state).paint(painter);
    return image;
}

/// The bars by their definition: each record is drawn by itself.
QImage drawnOneByOne(const TimelinePrivate &state)
{
    QImage image(state.widget->size(), QImage::Format_ARGB32);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const DayWindow window = state.window();
    const bool single = state.cameras.size() == 1;
    const auto draw = [&](const API::CameraPtr &camera, bool inFocus) {
        const int top = single || inFocus ? 26 : 38;
        const int bottom = !single && inFocus ? 36 : 42;
        QLinearGradient gradient(0, top, 0, bottom);
        gradient.setColorAt(0.0, inFocus ? QColor(128, 132, 141) : QColor(85, 88, 95));
        gradient.setColorAt(1.0, inFocus ? QColor(105, 109, 116) : QColor(74, 77, 84));
        painter.setBrush(gradient);
        const QList<API::ArchiveRecord> records = camera->records(state.date);
        for (const API::ArchiveRecord &record : records) {
            const int left = window.pixelAt(qMax(record.start, window.start));
            const int right = window.pixelAt(qMin(record.end, window.end));
            if (left <= right)
                painter.drawRects(QVector<QRect>{{left, top, qMax(1, right - left), bottom - top}});
        }
    };
    for (const API::CameraPtr &camera : state.cameras)
        draw(camera, false);
    if (state.cameras.contains(state.activeCameraId))
        draw(state.cameras.value(state.activeCameraId), true);
    return image;
}

/// The box of all pixels in which the pictures differ.
QRect difference(const QImage &one, const QImage &other)
{
    QRect box;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

/// Below the scale there is that message and nothing else.
bool showsMessage(Timeline &timeline, const QString &text)
{
    QImage expected(timeline.size(), QImage::Format_RGB32);
    // A size in points is the same number of pixels as on the widget; an inch is 0.0254 m.
    expected.setDotsPerMeterX(qRound(timeline.logicalDpiX() / 0.0254));
    expected.setDotsPerMeterY(qRound(timeline.logicalDpiY() / 0.0254));
    expected.fill(stripGround);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(timeline.font());
    painter.setPen(QColor(105, 106, 109));
    painter.drawText(QRect(0, 5, timeline.width(), timeline.height()), Qt::AlignCenter, text);
    painter.end();
    const QRect area = timeline.rect().adjusted(0, 22, 0, 0);
    return picture(timeline).copy(area) == expected.copy(area);
}

} // namespace

class TimelinePainterTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(world.begin()); }

    void sameAsEachRecordByItself_data()
    {
        rows<QByteArray, QDate, int, int, int>(
            {"zone", "date", "cameras", "records", "width"},
            {{"one camera", "UTC0", stripDay, 1, 200, 1030},
             {"dense", "UTC0", stripDay, 4, 3000, 777},
             {"narrow", "UTC0", stripDay, 2, 50, 37},
             {"23 hours", berlin, QDate(2026, 3, 29), 2, 300, 1030}});
    }

    void sameAsEachRecordByItself()
    {
        const auto [zone, date, cameras, records, width] = row<QByteArray, QDate, int, int, int>();
        useZone(zone);
        TimelineStrip strip(width, date);
        TimelinePrivate &state = strip.state;
        API::CameraPtr camera;
        for (int id = 1; id <= cameras; ++id) {
            camera = world.loadedCamera(id, date, randomRecords(date, records, quint32(id)));
            QVERIFY(camera && camera->hasRecords(date));
            strip.add(camera);
        }
        const QDateTime begin = date.startOfDay();
        const QDateTime end(date, QTime(23, 59, 59));
        const auto isSameIn = [&](const QDateTime &from, const QDateTime &to) {
            state.setWindow({state.date, from, to, strip.owner.width()});
            renderRecords(state);
            return state.recordsImage == drawnOneByOne(state);
        };
        QVERIFY(isSameIn(begin, end));
        state.activeCameraId = camera->globalId();
        QVERIFY(isSameIn(begin, end));
        QVERIFY(isSameIn(begin.addSecs(11 * 3600 + 7), begin.addSecs(14 * 3600 + 1)));
        QVERIFY(isSameIn(begin.addSecs(12 * 3600), begin.addSecs(12 * 3600 + 600)));
        QVERIFY(isSameIn(begin.addSecs(20 * 3600), end));
        // The pixel at each end shows what ends or begins less than a pixel beyond it.
        for (const API::ArchiveRecord &each : camera->records(date).mid(0, 20)) {
            QVERIFY(isSameIn(each.end.addSecs(1), qMin(end, each.end.addSecs(4 * 3600))));
            const QDateTime early = qMax(begin, each.start.addSecs(-4 * 3600)).addSecs(-2);
            QVERIFY(isSameIn(early, each.start.addSecs(-1)));
        }
        // Records that were received anew, those of another day, and none.
        world.setRecords(cameras, randomRecords(date, records, 99));
        QVERIFY(world.load(camera, date));
        QVERIFY(isSameIn(begin, end));
        state.date = date.addDays(1);
        QVERIFY(isSameIn(begin, end));
        state.date = date;
        state.cameras.clear();
        QVERIFY(isSameIn(begin, end));
    }

    void paintedScale()
    {
        TimelineStrip strip;
        strip.state.setWindow(dayWindow("12:00 to 12:05"));
        const QImage image = paintingOf(strip);
        const auto inkIn = [&image](int y, int left, int right) {
            int count = 0;
            for (int x = left; x < right; ++x)
                count += image.pixelColor(x, y) != stripGround ? 1 : 0;
            return count;
        };
        // Ticks stand every 10 s, higher ones every 30 s and every minute, on two columns each.
        const QVector<int> columns{stripWidth, 62, 62, 62, 22, 12, 12, 0};
        for (int y = 0; y < columns.size(); ++y)
            QCOMPARE(inkIn(y, 0, stripWidth), columns.at(y));
        for (int x = 15; x <= 1015; x += 200) {
            QVERIFY(inkIn(14, x - 15, x + 15) > 5);
            QCOMPARE(inkIn(14, x + 20, qMin(x + 180, stripWidth)), 0);
        }
        // What the selection snaps by.
        QCOMPARE(strip.state.labelStep, 60);
    }

    void marks_data()
    {
        // In a view of 6:00 to 12:00: the box of the pixels that change, and one to look at.
        const QRect atNine(511, 3, 8, 53);
        const QString one = "7:30 to 9:00";
        const QRect box(254, 0, 272, 56);
        const QColor band(51, 113, 151);
        const QColor cursor(223, 72, 72);
        rows<QString, QString, QRect, QPoint, QColor>(
            {"what", "time", "box", "pixel", "colour"},
            {{"cursor's head", "cursor", "9:00", atNine, {515, 5}, cursor},
             {"its line", "cursor", "9:00", atNine, {515, 50}, {132, 58, 60}},
             {"at the end", "cursor", "12:00", {1011, 3, 8, 53}, {1015, 5}, cursor},
             {"beyond it", "cursor", "12:00:01", {}, {1015, 50}, stripGround},
             {"hover", "hover", "9:00", {514, 3, 2, 53}, {515, 30}, {51, 113, 151}},
             // The handles stand on the lower edge, outside the band.
             {"band", "fragment", one, box, {400, 30}, band},
             {"below it", "fragment", one, box, {400, 38}, stripGround},
             {"left handle", "fragment", one, box, {262, 50}, accent},
             {"right handle", "fragment", one, box, {516, 50}, accent},
             // What runs on past the view has neither handle nor edge there.
             {"all of it", "fragment", "6:00 to 12:00", {4, 0, 1022, 56}, {12, 50}, accent},
             {"past it", "fragment", "5:59 to 12:01", {15, 0, 1000, 38}, {15, 30}, band},
             {"before it", "fragment", "4:00 to 5:00", {}, {15, 30}, stripGround},
             {"short", "fragment", "9:00 to 9:00:01", {504, 0, 23, 56}, {512, 50}, accent}});
    }

    void marks()
    {
        const auto [what, time, box, pixel, colour] =
            row<QString, QString, QRect, QPoint, QColor>();
        TimelineStrip strip;
        strip.state.setWindow(dayWindow("6:00 to 12:00"));
        const QImage without = paintingOf(strip);
        strip.state.sliderVisible = what == "cursor";
        strip.state.currentValue = at(time);
        strip.state.hoverVisible = what == "hover";
        strip.state.hoverTime = at(time);
        strip.setSelection(time);
        strip.state.selectionMode = what == "fragment";
        const QImage with = paintingOf(strip);
        QCOMPARE(difference(without, with), box);
        const QColor found = with.pixelColor(pixel);
        for (const auto channel : {&QColor::red, &QColor::green, &QColor::blue})
            QVERIFY2(qAbs((found.*channel)() - (colour.*channel)()) <= 2, qPrintable(found.name()));
    }

    void tooltip()
    {
        GUI::TimelineTooltip tip;
        tip.setTime(QTime(9, 5, 7));
        const QImage shown = tip.grab().toImage();
        // The corners are round.
        QCOMPARE(qAlpha(shown.pixel(0, 0)), 0);

        QImage expected(tip.size(), shown.format());
        expected.fill(accent);
        QPainter painter(&expected);
        QFont font("PT Sans"_s);
        font.setPixelSize(12);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRect(1, 0, tip.width() - 2, tip.height() - 5), Qt::AlignCenter,
                         "09:05:07"_s);
        const QRect text = tip.rect().adjusted(4, 3, -4, -7);
        QCOMPARE(shown.copy(text), expected.copy(text));
    }

    void camerasComeAndGo()
    {
        world.setRecords(1, recordsOf("10:00 to 14:00"));
        Timeline timeline(stripDay);
        QVERIFY(showStrip(timeline));
        QSignalSpy updated(&timeline, &Timeline::recordsUpdated);
        timeline.addCamera(API::CameraPtr());
        const API::CameraPtr first = world.localCamera(1);
        timeline.addCamera(first);
        timeline.addCamera(first);
        QCOMPARE(timeline.cameraCount(), 1);
        QVERIFY(showsMessage(timeline, "Loading records..."_s));
        // The bar begins at x 431.
        QTRY_VERIFY(onScreen(timeline).pixelColor(433, 30) != stripGround);
        QCOMPARE(updated.size(), 1);
        const QImage after = onScreen(timeline);
        QCOMPARE(after.pixelColor(429, 30), stripGround);
        timeline.changeDate(stripDay);
        QCOMPARE(world.requestedDays(1), QList<QDate>{stripDay});
        timeline.showText("Hidden by records"_s);
        QCOMPARE(picture(timeline), after);

        // What is gone isn't heard any more.
        timeline.setActiveCameraId(first->globalId());
        timeline.removeCamera(first->globalId());
        QCOMPARE(updated.size(), 2);
        QVERIFY(!timeline.activeCamera() && !timeline.hasCamera(first->globalId()));
        QVERIFY(ArchiveWorld::load(first, stripDay));
        QVERIFY(showsMessage(timeline, "Hidden by records"_s));
        // One that comes back is heard once, and isn't the active one.
        QVERIFY(putCamera(timeline, first));
        QCOMPARE(updated.size(), 3);
        QVERIFY(timeline.hasCamera(first->globalId()) && !timeline.activeCamera());
        timeline.clear();
        QCOMPARE(timeline.cameraCount(), 0);
        QVERIFY(ArchiveWorld::load(first, stripDay));
        QCOMPARE(updated.size(), 4);
    }

    void messages_data()
    {
        rows<bool, bool, QString>({"shared", "refused", "expected"},
                                  {{"no records", true, false, "No records"},
                                   {"not shared", false, false, "Archive is not shared"},
                                   {"refused", true, true, "Cannot load records"}});
    }

    void messages()
    {
        const auto [shared, refused, expected] = row<bool, bool, QString>();
        Timeline timeline(stripDay);
        QVERIFY(showStrip(timeline));
        if (refused)
            world.refuseRecords(1);
        QSignalSpy updated(&timeline, &Timeline::recordsUpdated);
        const API::CameraPtr first = world.cloudCamera(1, shared);
        timeline.addCamera(first);
        QTRY_VERIFY(showsMessage(timeline, expected));
        QVERIFY(updated.isEmpty());
        // Another camera's records take the message away.
        const API::CameraPtr camera = putCamera(timeline, world, 2, recordsOf("1:00 to 2:00"));
        QVERIFY(camera && !showsMessage(timeline, expected));
        // Even hidden it asks again from time to time; a failure leaves what is there.
        timeline.removeCamera(first->globalId());
        timeline.hide();
        world.refuseRecords(2);
        QSignalSpy failed(camera.data(), &API::Camera::recordsError);
        QCOMPARE(expireTimers(std::chrono::minutes(2), &timeline), 1);
        QTRY_COMPARE(failed.size(), 1);
        QCOMPARE(world.requestedDays(2), (QList<QDate>{stripDay, stripDay}));
        QVERIFY(!showsMessage(timeline, "Cannot load records"_s));
        timeline.removeCamera(camera->globalId());
        QVERIFY(showsMessage(timeline, "Cannot load records"_s));
    }

private:
    StripWorld world;
};

QTEST_MAIN(TimelinePainterTest)
#include "TimelinePainterTest.moc"
