// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <ctime>

#include "API/Camera.h"
#include "GUI/TimelineBars.h"
#include "GUI/TimelinePainter.h"
#include "GUI/TimelinePrivate.h"
#include "GUI/TimelineTooltip.h"
#include "tests/GUI/ArchiveWorld.h"

using GUI::Internal::TimelinePrivate;

namespace {

const QDate day(2026, 3, 10);
/// 1000 pixels of scale.
constexpr int stripWidth = 1030;

// Zones as rules, so that the tests need no time zone database.
const QByteArray utc = "UTC0";
const QByteArray berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
/// The clock goes forward at midnight.
const QByteArray brasilia = "BRT3BRST,M11.1.0/0,M2.3.0/0";

const QColor ground(41, 44, 49);
const QColor accent(62, 183, 253);
const QColor focusTop(128, 132, 141);
const QColor focusBottom(105, 109, 116);
const QColor otherTop(85, 88, 95);
const QColor otherBottom(74, 77, 84);

void setZone(const QByteArray &zone)
{
    qputenv("TZ", zone);
    tzset();
}

QDateTime at(int hour, int minute, int second = 0)
{
    return QDateTime(day, QTime(hour, minute, second));
}

/// What a strip of these cameras shows, without its input and its timers.
struct Strip {
    explicit Strip(const QList<API::CameraPtr> &cameras = {}, QDate shownDay = day,
                   int width = stripWidth)
        : widget(shownDay), state(&widget, shownDay)
    {
        widget.resize(width, GUI::Internal::timelineHeight);
        state.recordsImage = QImage(widget.size(), QImage::Format_ARGB32);
        for (const API::CameraPtr &camera : cameras)
            state.cameras.insert(camera->globalId(), camera);
    }

    QImage renderedRecords()
    {
        GUI::Internal::TimelinePainter(state).renderRecords();
        return state.recordsImage;
    }

    QImage picture()
    {
        renderedRecords();
        QImage image(widget.size(), QImage::Format_RGB32);
        image.fill(ground);
        QPainter painter(&image);
        painter.setFont(widget.font());
        GUI::Internal::TimelinePainter(state).paint(painter);
        return image;
    }

    GUI::Timeline widget;
    TimelinePrivate state;
};

void drawRecord(QPainter &painter, const TimelinePrivate &state, const API::ArchiveRecord &record,
                bool inFocus)
{
    const int x1 = state.pixelAt(qMax(record.start, state.startValue));
    int x2 = state.pixelAt(qMin(record.end, state.endValue));
    if (x2 < x1)
        return;
    if (x2 == x1)
        ++x2;
    const bool single = state.cameras.size() == 1;
    const int top = single || inFocus ? 26 : 38;
    const int bottom = !single && inFocus ? 36 : 42;
    QLinearGradient gradient(0, top, 0, bottom);
    gradient.setColorAt(0.0, inFocus ? focusTop : otherTop);
    gradient.setColorAt(1.0, inFocus ? focusBottom : otherBottom);
    painter.setBrush(gradient);
    painter.drawRects(QVector<QRect>{QRect(QPoint(x1, top), QPoint(x2 - 1, bottom - 1))});
}

/// The bars by their definition: each record is drawn by itself.
QImage drawnOneByOne(const TimelinePrivate &state)
{
    QImage image(state.widget->size(), QImage::Format_ARGB32);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const auto draw = [&](const API::CameraPtr &camera, bool inFocus) {
        const QList<API::ArchiveRecord> records = camera->records(state.date);
        for (const API::ArchiveRecord &record : records)
            drawRecord(painter, state, record, inFocus);
    };
    for (const API::CameraPtr &camera : state.cameras)
        draw(camera, false);
    if (state.cameras.contains(state.activeCameraId))
        draw(state.cameras.value(state.activeCameraId), true);
    return image;
}

/// From instants to hours long, overlapping, in any order.
QList<API::ArchiveRecord> randomRecords(QDate date, int count, quint32 seed)
{
    constexpr int lengths[] = {1, 10, 60, 600, 7200};
    QRandomGenerator random(seed);
    QList<API::ArchiveRecord> records;
    for (int i = 0; i < count; ++i) {
        const QDateTime start = date.startOfDay().addSecs(random.bounded(23 * 3600));
        const int length = 1 + random.bounded(lengths[random.bounded(i % 20 == 0 ? 5 : 3)]);
        records.append({start, start.addSecs(length)});
    }
    return records;
}

/// Where an image has anything at all, as "left-right" of each run in that row.
QStringList runs(const QImage &image, int y)
{
    QStringList result;
    for (int x = 0; x < image.width();) {
        const int begin = x;
        while (x < image.width() && qAlpha(image.pixel(x, y)) != 0)
            ++x;
        if (x > begin)
            result.append("%1-%2"_s.arg(begin).arg(x - 1));
        else
            ++x;
    }
    return result;
}

bool isClose(const QColor &one, const QColor &other, int tolerance = 3)
{
    return qAbs(one.red() - other.red()) <= tolerance &&
           qAbs(one.green() - other.green()) <= tolerance &&
           qAbs(one.blue() - other.blue()) <= tolerance;
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

} // namespace

class TimelinePainterTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void init()
    {
        setZone(utc);
        world.reset();
    }

    void oneCamera_data()
    {
        rows<bool>({"active"}, {
                                   {"active", true},
                                   {"not active", false},
                               });
    }

    void oneCamera()
    {
        const auto [active] = row<bool>();
        const API::CameraPtr camera =
            world.loadedCamera(1, day, {record(day, QTime(6, 0), QTime(12, 0))});
        QVERIFY(camera);
        Strip strip({camera});
        if (active)
            strip.state.activeCameraId = camera->globalId();
        const QImage picture = strip.picture();
        // 15 + 1000 * 21600 / 86399 and the same of 43200.
        constexpr int left = 265;
        constexpr int right = 514;
        QVERIFY(isClose(picture.pixelColor(left, 26), active ? focusTop : otherTop));
        QVERIFY(isClose(picture.pixelColor(right, 41), active ? focusBottom : otherBottom));
        for (const QPoint &outside :
             {QPoint(left - 1, 30), QPoint(right + 1, 30), QPoint(400, 25), QPoint(400, 42)})
            QCOMPARE(picture.pixelColor(outside), ground);
    }

    void severalCameras()
    {
        const API::CameraPtr first =
            world.loadedCamera(1, day, {record(day, QTime(0, 0), QTime(6, 0))});
        const API::CameraPtr second =
            world.loadedCamera(2, day, {record(day, QTime(12, 0), QTime(18, 0))});
        QVERIFY(first && second);
        Strip strip({first, second});
        strip.state.activeCameraId = first->globalId();
        const QImage picture = strip.picture();
        constexpr int inFirst = 100;
        constexpr int inSecond = 600;

        QVERIFY(isClose(picture.pixelColor(inFirst, 26), focusTop));
        QVERIFY(isClose(picture.pixelColor(inFirst, 35), focusBottom));
        QCOMPARE(picture.pixelColor(inSecond, 26), ground);
        for (const int x : {inFirst, inSecond}) {
            QCOMPARE(picture.pixelColor(x, 36), ground);
            QCOMPARE(picture.pixelColor(x, 37), ground);
            QVERIFY(isClose(picture.pixelColor(x, 38), otherTop));
            QVERIFY(isClose(picture.pixelColor(x, 41), otherBottom));
            QCOMPARE(picture.pixelColor(x, 42), ground);
        }

        strip.state.activeCameraId = {};
        QCOMPARE(strip.picture().pixelColor(inFirst, 30), ground);
    }

    void shortRecordIsOnePixel()
    {
        const API::CameraPtr camera =
            world.loadedCamera(1, day, {record(day, QTime(12, 0), QTime(12, 0, 10))});
        QVERIFY(camera);
        Strip strip({camera});
        QCOMPARE(runs(strip.renderedRecords(), 30), QStringList{"515-515"});
    }

    void sameAsEachRecordByItself_data()
    {
        rows<QByteArray, QDate, int, int, int>(
            {"zone", "date", "cameras", "records", "width"},
            {
                {"one camera", utc, day, 1, 200, 1030},
                {"four cameras", utc, day, 4, 200, 1030},
                {"dense", utc, day, 2, 3000, 777},
                {"wide", utc, day, 2, 400, 3840},
                {"narrow", utc, day, 2, 50, 37},
                {"all margin", utc, day, 2, 50, 30},
                {"23 hours", berlin, QDate(2026, 3, 29), 2, 300, 1030},
                {"25 hours", berlin, QDate(2026, 10, 25), 2, 300, 1030},
                {"no midnight", brasilia, QDate(2018, 11, 4), 2, 300, 1030},
            });
    }

    void sameAsEachRecordByItself()
    {
        const auto [zone, date, cameras, records, width] = row<QByteArray, QDate, int, int, int>();
        setZone(zone);
        QList<API::CameraPtr> shown;
        for (int id = 1; id <= cameras; ++id) {
            shown.append(world.loadedCamera(id, date, randomRecords(date, records, quint32(id))));
            QVERIFY(shown.last() && shown.last()->hasRecords(date));
        }
        Strip strip(shown, date, width);
        strip.state.activeCameraId = shown.last()->globalId();
        const QDateTime begin = date.startOfDay();
        const QDateTime wholeDayEnd(date, QTime(23, 59, 59));
        const QList<QPair<QDateTime, QDateTime>> windows{
            {strip.state.startValue, wholeDayEnd},
            {begin.addSecs(3600), begin.addSecs(5 * 3600)},
            {begin.addSecs(11 * 3600 + 7), begin.addSecs(14 * 3600 + 1)},
            {begin.addSecs(12 * 3600), begin.addSecs(12 * 3600 + 600)},
            {begin.addSecs(20 * 3600), wholeDayEnd}};
        for (const auto &window : windows) {
            strip.state.startValue = window.first;
            strip.state.endValue = window.second;
            QCOMPARE(strip.renderedRecords(), drawnOneByOne(strip.state));
        }
        // The pixel at each end shows what ends or begins less than a pixel beyond it.
        for (const API::ArchiveRecord &each : shown.first()->records(date).mid(0, 20)) {
            strip.state.startValue = each.end.addSecs(1);
            strip.state.endValue = qMin(wholeDayEnd, each.end.addSecs(4 * 3600));
            QCOMPARE(strip.renderedRecords(), drawnOneByOne(strip.state));
            strip.state.endValue = each.start.addSecs(-1);
            strip.state.startValue = qMax(begin, each.start.addSecs(-4 * 3600)).addSecs(-2);
            QCOMPARE(strip.renderedRecords(), drawnOneByOne(strip.state));
        }
    }

    void manyRecordsAreOneBar()
    {
        using namespace GUI::Internal;
        CoveredColumns columns(TimeAxis(at(0, 0), at(23, 59, 59), stripWidth));
        columns.add(RecordTimes(evenRecords(day, 20000, 4, 1)));
        // 80,000 seconds.
        QCOMPARE(columns.bars(26, 42), QVector<QRect>{QRect(15, 26, 926, 16)});
    }

    void newRecordsReplaceTheOldOnes()
    {
        const API::CameraPtr camera =
            world.loadedCamera(1, day, {record(day, QTime(0, 0), QTime(6, 0))});
        QVERIFY(camera);
        Strip strip({camera});
        QCOMPARE(runs(strip.renderedRecords(), 30), QStringList{"15-264"});
        world.setRecords(1, {record(day, QTime(12, 0), QTime(18, 0))});
        QVERIFY(world.load(camera, day));
        QCOMPARE(runs(strip.renderedRecords(), 30), QStringList{"515-764"});

        // Another day of the same camera.
        strip.state.date = day.addDays(1);
        QCOMPARE(runs(strip.renderedRecords(), 30), QStringList());
        strip.state.date = day;
        strip.state.cameras.clear();
        QCOMPARE(runs(strip.renderedRecords(), 30), QStringList());
    }

    void tickPlanIsLeftForOthers()
    {
        Strip strip;
        strip.state.startValue = at(12, 0);
        strip.state.endValue = at(12, 5);
        strip.picture();
        QCOMPARE(strip.state.labelStep, 60);
        QCOMPARE(strip.state.majorEvery, 6);
        QCOMPARE(strip.state.mediumEvery, 3);
        QCOMPARE(strip.state.minorEvery, 0);
        QCOMPARE(strip.state.labelEvery, 6);
        QCOMPARE(strip.state.ticksPerHour, 360);
    }

    void cursor()
    {
        Strip strip;
        strip.state.textVisible = false;
        const QImage without = strip.picture();
        strip.state.sliderVisible = true;
        strip.state.currentValue = at(12, 0);
        const QImage with = strip.picture();
        // A line between two columns, under a head that is 6 pixels wide.
        const QRect changed = difference(without, with);
        QCOMPARE(changed.bottom(), GUI::Internal::timelineHeight - 1);
        QVERIFY(changed.top() >= 3 && changed.top() <= 4);
        QVERIFY(changed.left() >= 511 && changed.right() <= 518);
        const QColor line = with.pixelColor(515, 50);
        QVERIFY2(line.red() > line.green() + 40, qPrintable(line.name()));
        QVERIFY(isClose(with.pixelColor(515, 5), QColor(223, 72, 72)));

        strip.state.endValue = at(11, 59, 59);
        const QImage hidden = strip.picture();
        strip.state.sliderVisible = false;
        QCOMPARE(hidden, strip.picture());
    }

    void message()
    {
        const API::CameraPtr empty = world.loadedCamera(1, day, {});
        const API::CameraPtr full =
            world.loadedCamera(2, day, {record(day, QTime(1, 0), QTime(1, 1))});
        QVERIFY(empty && full);
        const auto messageArea = [](const QList<API::CameraPtr> &cameras, bool requested) {
            Strip strip(cameras);
            strip.state.currentValue = at(12, 0);
            strip.state.text = "No records"_s;
            strip.state.textVisible = false;
            const QImage without = strip.picture();
            strip.state.textVisible = requested;
            return difference(without, strip.picture());
        };
        const QRect area = messageArea({}, true);
        QVERIFY(area.width() > 30 && area.height() > 5);
        QVERIFY(qAbs(area.center().x() - stripWidth / 2) <= 2);
        // Five pixels below the middle, give or take the descent of the letters.
        QVERIFY2(qAbs(area.center().y() - (GUI::Internal::timelineHeight / 2 + 5)) <= 2,
                 qPrintable(QString::number(area.center().y())));
        QCOMPARE(messageArea({empty}, true), area);
        QCOMPARE(messageArea({empty, full}, true), QRect());
        QCOMPARE(messageArea({}, false), QRect());
    }

    void selection()
    {
        Strip strip;
        strip.state.textVisible = false;
        const QImage without = strip.picture();
        strip.state.selectionMode = true;
        strip.state.selectionStart = at(6, 0);
        strip.state.selectionEnd = at(12, 0);
        const QImage with = strip.picture();
        constexpr int left = 265;
        constexpr int right = 515;
        const int handleWidth = strip.state.selectionStartImage.width();
        QVERIFY(handleWidth > 0);
        QCOMPARE(difference(without, with),
                 QRect(QPoint(left - handleWidth, 0),
                       QPoint(right + handleWidth - 1, GUI::Internal::timelineHeight - 1)));
        // Half of the accent, down to 18 + 20.
        QVERIFY(isClose(with.pixelColor(400, 30), QColor(51, 113, 151)));
        QVERIFY(isClose(with.pixelColor(400, 37), QColor(51, 113, 151)));
        QCOMPARE(with.pixelColor(400, 38), ground);
        // The handles stand on the lower edge, outside the band.
        QCOMPARE(with.pixelColor(left - 2, 50), accent);
        QCOMPARE(with.pixelColor(right + 1, 50), accent);
        QCOMPARE(with.pixelColor(left - 2, 20), ground);
    }

    void selectionBeyondTheWindow()
    {
        Strip strip;
        strip.state.textVisible = false;
        strip.state.startValue = at(6, 0);
        strip.state.endValue = at(12, 0);
        const QImage without = strip.picture();
        const auto changed = [&](const QDateTime &start, const QDateTime &end) {
            strip.state.selectionMode = true;
            strip.state.selectionStart = start;
            strip.state.selectionEnd = end;
            return difference(without, strip.picture());
        };
        // Neither handle nor edge.
        QCOMPARE(changed(at(5, 59), at(12, 1)), QRect(QPoint(15, 0), QPoint(1014, 37)));
        // One handle.
        QCOMPARE(changed(at(5, 0), at(9, 0)).bottom(), 55);
        QCOMPARE(changed(at(5, 0), at(9, 0)).left(), 15);
        QCOMPARE(changed(at(9, 0), at(13, 0)).bottom(), 55);
        QCOMPARE(changed(at(9, 0), at(13, 0)).right(), 1014);
        // Nothing.
        QCOMPARE(changed(at(4, 0), at(5, 0)), QRect());
        QCOMPARE(changed(at(13, 0), at(14, 0)), QRect());
    }

    void hoverLine()
    {
        Strip strip;
        strip.state.textVisible = false;
        const QImage without = strip.picture();
        strip.state.hoverVisible = true;
        strip.state.hoverTime = at(12, 0);
        const QImage with = strip.picture();
        const QRect changed = difference(without, with);
        QCOMPARE(changed.bottom(), GUI::Internal::timelineHeight - 1);
        QVERIFY(changed.top() >= 3 && changed.top() <= 4);
        QCOMPARE(changed.left(), 514);
        QCOMPARE(changed.right(), 515);
        const QColor line = with.pixelColor(515, 30);
        QVERIFY2(line.blue() > line.red() + 60, qPrintable(line.name()));
    }

    void widgetPaintsItself()
    {
        const API::CameraPtr camera =
            world.loadedCamera(1, day, {record(day, QTime(6, 0), QTime(12, 0))});
        QVERIFY(camera);
        GUI::Timeline timeline(day);
        timeline.resize(stripWidth, GUI::Internal::timelineHeight);
        timeline.show();
        QVERIFY(QTest::qWaitForWindowExposed(&timeline));
        timeline.addCamera(camera);
        QTRY_VERIFY(isClose(timeline.grab().toImage().pixelColor(400, 26), otherTop));
        timeline.setActiveCameraId(camera->globalId());
        const QImage picture = timeline.grab().toImage();
        QVERIFY(isClose(picture.pixelColor(400, 26), focusTop));
        QCOMPARE(picture.pixelColor(700, 30), ground);
    }

    void tooltip()
    {
        GUI::TimelineTooltip tip;
        tip.setTime(QTime(9, 5, 7));
        QImage picture(tip.size(), QImage::Format_ARGB32);
        picture.fill(0);
        tip.render(&picture, QPoint(), QRegion(), {});
        const int bottom = tip.height() - 1;
        QCOMPARE(picture.pixelColor(tip.width() / 2, 3), accent);
        QCOMPARE(qAlpha(picture.pixel(0, 0)), 0);
        // The pointer.
        QVERIFY(qAlpha(picture.pixel(tip.width() / 2, bottom)) > 0);
        QCOMPARE(qAlpha(picture.pixel(tip.width() / 4, bottom)), 0);
        // Only the time's text follows the time.
        tip.setTime(QTime(18, 46, 30));
        QImage other(tip.size(), QImage::Format_ARGB32);
        other.fill(0);
        tip.render(&other, QPoint(), QRegion(), {});
        const QRect text = difference(picture, other);
        QVERIFY(!text.isEmpty());
        QVERIFY(QRect(3, 2, tip.width() - 6, tip.height() - 7).contains(text));
    }

private:
    ArchiveWorld world;
};

QTEST_MAIN(TimelinePainterTest)
#include "TimelinePainterTest.moc"
