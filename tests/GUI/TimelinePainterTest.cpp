// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/TimelinePainter.h"
#include "GUI/TimelineTooltip.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/GUI/TimelineStrip.h"

using namespace GUI::Internal;

namespace {

// Zones as rules, so that the tests need no time zone database.
const QByteArray utc = "UTC0";
const QByteArray berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
/// The clock goes forward at midnight.
const QByteArray brasilia = "BRT3BRST,M11.1.0/0,M2.3.0/0";

const QColor ground(41, 44, 49);
const QColor accent(62, 183, 253);

QImage picture(TimelineStrip &strip)
{
    QImage image(strip.owner.size(), QImage::Format_RGB32);
    image.fill(ground);
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
            const int left = state.pixelAt(qMax(record.start, state.startValue));
            const int right = state.pixelAt(qMin(record.end, state.endValue));
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

} // namespace

class TimelinePainterTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void init()
    {
        useZone(utc);
        world.reset();
    }

    void sameAsEachRecordByItself_data()
    {
        rows<QByteArray, QDate, int, int, int>(
            {"zone", "date", "cameras", "records", "width"},
            {{"one camera", utc, stripDay, 1, 200, 1030},
             {"four cameras", utc, stripDay, 4, 200, 1030},
             {"dense", utc, stripDay, 2, 3000, 777},
             {"wide", utc, stripDay, 2, 400, 3840},
             {"narrow", utc, stripDay, 2, 50, 37},
             {"all margin", utc, stripDay, 2, 50, 30},
             {"23 hours", berlin, QDate(2026, 3, 29), 2, 300, 1030},
             {"25 hours", berlin, QDate(2026, 10, 25), 2, 300, 1030},
             {"no midnight", brasilia, QDate(2018, 11, 4), 2, 300, 1030}});
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
            strip.addCamera(camera);
        }
        const QDateTime begin = date.startOfDay();
        const QDateTime end(date, QTime(23, 59, 59));
        const auto isSameIn = [&](const QDateTime &from, const QDateTime &to) {
            state.startValue = from;
            state.endValue = to;
            TimelinePainter(state).renderRecords();
            return state.recordsImage == drawnOneByOne(state);
        };
        QVERIFY(isSameIn(begin, end));
        state.activeCameraId = camera->globalId();
        QVERIFY(isSameIn(begin, end));
        QVERIFY(isSameIn(begin.addSecs(3600), begin.addSecs(5 * 3600)));
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

    void scale()
    {
        TimelineStrip strip;
        strip.setWindow("12:00 to 12:05");
        const QImage image = picture(strip);
        const auto inkIn = [&image](int y, int left, int right) {
            int count = 0;
            for (int x = left; x < right; ++x)
                count += image.pixelColor(x, y) != ground ? 1 : 0;
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
        QCOMPARE(inkIn(19, 0, stripWidth), 0);
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
             {"beyond it", "cursor", "12:00:01", {}, {1015, 50}, ground},
             {"hover", "hover", "9:00", {514, 3, 2, 53}, {515, 30}, {51, 113, 151}},
             // The handles stand on the lower edge, outside the band.
             {"band", "fragment", one, box, {400, 30}, band},
             {"below it", "fragment", one, box, {400, 38}, ground},
             {"left handle", "fragment", one, box, {262, 50}, accent},
             {"right handle", "fragment", one, box, {516, 50}, accent},
             {"above it", "fragment", one, box, {262, 20}, ground},
             {"as the view", "fragment", "6:00 to 12:00", {4, 0, 1022, 56}, {12, 50}, accent},
             // What runs on past the view has neither handle nor edge there.
             {"past it", "fragment", "5:59 to 12:01", {15, 0, 1000, 38}, {15, 30}, band},
             {"before it", "fragment", "4:00 to 5:00", {}, {15, 30}, ground},
             {"behind it", "fragment", "13:00 to 14:00", {}, {1014, 30}, ground},
             {"short", "fragment", "9:00 to 9:00:01", {504, 0, 23, 56}, {512, 50}, accent}});
    }

    void marks()
    {
        const auto [what, time, box, pixel, colour] =
            row<QString, QString, QRect, QPoint, QColor>();
        TimelineStrip strip;
        strip.setWindow("6:00 to 12:00");
        const QImage without = picture(strip);
        strip.state.sliderVisible = what == "cursor";
        strip.state.currentValue = at(time);
        strip.state.hoverVisible = what == "hover";
        strip.state.hoverTime = at(time);
        strip.setSelection(time);
        strip.state.selectionMode = what == "fragment";
        const QImage with = picture(strip);
        QCOMPARE(difference(without, with), box);
        const QColor found = with.pixelColor(pixel);
        QVERIFY2(qAbs(found.red() - colour.red()) + qAbs(found.green() - colour.green()) +
                         qAbs(found.blue() - colour.blue()) <=
                     6,
                 qPrintable(found.name()));
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

private:
    ArchiveWorld world;
};

QTEST_MAIN(TimelinePainterTest)
#include "TimelinePainterTest.moc"
