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

QImage renderedRecords(TimelineStrip &strip)
{
    TimelinePainter(strip.state).renderRecords();
    return strip.state.recordsImage;
}

QImage picture(TimelineStrip &strip)
{
    QImage image(strip.owner.size(), QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    painter.setFont(strip.owner.font());
    TimelinePainter(strip.state).paint(painter);
    return image;
}

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
    gradient.setColorAt(0.0, inFocus ? QColor(128, 132, 141) : QColor(85, 88, 95));
    gradient.setColorAt(1.0, inFocus ? QColor(105, 109, 116) : QColor(74, 77, 84));
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

/// The box of all pixels in which the pictures differ, as "left-right top-bottom".
QString difference(const QImage &one, const QImage &other)
{
    QRect box;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                box |= QRect(x, y, 1, 1);
        }
    }
    return box.isEmpty()
               ? QString()
               : "%1-%2 %3-%4"_s.arg(box.left()).arg(box.right()).arg(box.top()).arg(box.bottom());
}

QImage pictureOf(GUI::TimelineTooltip &tip, const QTime &time)
{
    tip.setTime(time);
    QImage image(tip.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(0);
    tip.render(&image, QPoint(), QRegion(), {});
    return image;
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
        QCOMPARE(renderedRecords(strip), drawnOneByOne(state));
        state.activeCameraId = camera->globalId();
        const QDateTime begin = date.startOfDay();
        const QDateTime end(date, QTime(23, 59, 59));
        const auto isSameIn = [&](const QDateTime &from, const QDateTime &to) {
            state.startValue = from;
            state.endValue = to;
            return renderedRecords(strip) == drawnOneByOne(state);
        };
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

    void manyRecordsAreOneBar()
    {
        CoveredColumns columns(TimeAxis(at("0:00"), at("23:59:59"), stripWidth));
        columns.add(RecordTimes(evenRecords(stripDay, 20000, 4, 1)));
        // 80,000 seconds.
        QCOMPARE(columns.bars(26, 42), QVector<QRect>{QRect(15, 26, 926, 16)});
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

    /// What else is on the strip, by the pixels that it changes in a view of 6:00 to 12:00.
    void marks()
    {
        const auto marked = [](const std::function<void(TimelineStrip &)> &mark) {
            TimelineStrip strip;
            strip.setWindow("6:00 to 12:00");
            const QImage without = picture(strip);
            mark(strip);
            return qMakePair(difference(without, picture(strip)), picture(strip));
        };
        const auto cursorAt = [&marked](const QString &time) {
            return marked([time](TimelineStrip &strip) {
                strip.state.sliderVisible = true;
                strip.state.currentValue = at(time);
            });
        };
        // A line between two columns, under a head that is 6 pixels wide.
        const auto [cursorBox, cursor] = cursorAt("9:00");
        QCOMPARE(cursorBox, "511-518 3-55"_s);
        QCOMPARE(cursor.pixelColor(515, 5), QColor(223, 72, 72));
        QVERIFY(cursor.pixelColor(515, 50).red() > cursor.pixelColor(515, 50).green() + 40);
        QCOMPARE(cursorAt("12:00").first, "1011-1018 3-55"_s);
        QCOMPARE(cursorAt("12:00:01").first, QString());

        const auto [hoverBox, hover] = marked([](TimelineStrip &strip) {
            strip.state.hoverVisible = true;
            strip.state.hoverTime = at("9:00");
        });
        QCOMPARE(hoverBox, "514-515 3-55"_s);
        QVERIFY(hover.pixelColor(515, 30).blue() > hover.pixelColor(515, 30).red() + 60);

        const auto selected = [&marked](const QString &span) {
            return marked([span](TimelineStrip &strip) { strip.setSelection(span); });
        };
        // The handles stand on the lower edge, outside the band.
        const auto [fragmentBox, fragment] = selected("7:30 to 9:00");
        QCOMPARE(fragmentBox, "254-525 0-55"_s);
        const QColor band = fragment.pixelColor(400, 30);
        QVERIFY2(qAbs(band.red() - 51) + qAbs(band.green() - 113) + qAbs(band.blue() - 151) <= 6,
                 qPrintable(band.name()));
        QCOMPARE(fragment.pixelColor(400, 37), band);
        QCOMPARE(fragment.pixelColor(400, 38), ground);
        QCOMPARE(fragment.pixelColor(262, 50), accent);
        QCOMPARE(fragment.pixelColor(516, 50), accent);
        QCOMPARE(fragment.pixelColor(262, 20), ground);
        // What runs on past the view has neither handle nor edge there.
        const QStringList cases{"6:00 to 12:00 -> 4-1025 0-55",
                                "5:59 to 12:01 -> 15-1014 0-37",
                                "5:00 to 9:00 -> 15-525 0-55",
                                "9:00 to 13:00 -> 504-1014 0-55",
                                "4:00 to 5:00 -> ",
                                "13:00 to 14:00 -> ",
                                "9:00 to 9:00:01 -> 504-526 0-55"};
        for (const QString &each : cases)
            QCOMPARE(selected(each.section(" -> ", 0, 0)).first, each.section(" -> ", 1));
    }

    void tooltip()
    {
        GUI::TimelineTooltip tip;
        const QImage shown = pictureOf(tip, QTime(9, 5, 7));
        const int bottom = tip.height() - 1;
        QCOMPARE(shown.pixelColor(tip.width() / 2, 3), accent);
        QCOMPARE(qAlpha(shown.pixel(0, 0)), 0);
        // The pointer.
        QVERIFY(qAlpha(shown.pixel(tip.width() / 2, bottom)) > 0);
        QCOMPARE(qAlpha(shown.pixel(tip.width() / 4, bottom)), 0);

        QImage expected(tip.size(), QImage::Format_ARGB32_Premultiplied);
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
