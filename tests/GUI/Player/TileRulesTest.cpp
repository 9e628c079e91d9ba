// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <fcntl.h>

#include <cerrno>

#include "GUI/Player/ExportOutput.h"
#include "GUI/Player/FrameFile.h"
#include "GUI/Player/PictureGeometry.h"
#include "GUI/Player/PlayerOutput.h"
#include "GUI/Player/ScaledPicture.h"
#include "GUI/Player/TilePainter.h"
#include "GUI/Player/TileState.h"
#include "GUI/Player/Watchdog.h"

using namespace ZorvaneClient::GUI::Player::Internal;

const QColor background(25, 25, 29);

static int diskFault = 0; ///< what the disk says when it is asked for room the next time
static int roomRequests = 0;

/// In place of the C library's.
extern "C" int posix_fallocate(int descriptor, off_t offset, off_t length)
{
    ++roomRequests;
    if (diskFault != 0)
        return std::exchange(diskFault, 0);
    return ::fallocate(descriptor, 0, offset, length) == 0 ? 0 : errno;
}

/// What a tile decides without a window.
class TileRulesTest : public QObject
{
    Q_OBJECT

private slots:
    /// One read of a child's output, as the tile understands it from the player or an export.
    void outputOfOneRead_data()
    {
        rows<QByteArray, int, QStringList>(
            {"read", "frames", "events"},
            {{"nothing", "", 0, {}},
             {"blank lines", "\n \n\r\n\n", 0, {}},
             {"order", "state 3\nsize 6 4\nframe\ntime 4", 1, {"state 3", "size 6 4", "time 4"}},
             {"no end of line", "frame\nstate 3", 1, {"state 3"}},
             {"carriage returns", "size 640 480\r\nframe\r\n", 1, {"size 640 480"}},
             {"blanks round a line", "  \tframe\t \n  state 4 ", 1, {"state 4"}},
             {"Latin-1 space", QByteArray("\xa0") + "frame\n", 1, {}},
             {"one number", "size 640\n", 0, {"bad: size 640"}},
             {"bare words", "size\nstate\ntime\n", 0, {"bad: size", "bad: state", "bad: time"}},
             {"not numbers", "size x 4\nsize 640 4x0\n", 0, {"size 0 4", "size 640 0"}},
             {"no whole number", "time 1.5\n", 0, {"time 0"}},
             {"more numbers", "size 640 480 32\nstate 3 4\n", 0, {"size 640 480", "state 3"}},
             {"two blanks", "size  640 480\nstate  7\n", 0, {"size 0 640", "state "}},
             {"beyond an int", "size 2147483648 99999999999999999999\n", 0, {"size 0 0"}},
             {"negative", "size -640 -480\n", 0, {"size -640 -480"}},
             {"case counts", "FRAME\nSize 1 1\nSTATE 7\n", 0, {}},
             {"longer words", "frames\nsized 1 1\nstatement 7\n", 0, {}},
             {"torn lines", "me\nframe\nframe 17\nfra", 2, {}},
             {"cut at NUL", QByteArray("frame\nsta\0te 7\nframe\n", 20), 1, {}},
             {"NUL first", QByteArray("\0frame\n", 7), 0, {}},
             {"garbage", "\xff\xfe\x80 \x01\x02\nframe\n\x7f", 1, {}},
             {"export", "export-start\nexport-percent 9\nexport-done\n", 0, {"start", "9", "done"}},
             {"done once", "export-done\nexport-percent 5\nexport-done\n", 0, {"5", "done"}},
             {"export errors", "export-error\nexport-error\n", 0, {"error", "error"}},
             {"no numbers", "export-percent all\nexport-percent  7\n", 0, {"0", "0"}},
             {"no percent", "\texport-percent \n", 0, {"bad: export-percent"}},
             {"other words", "Export-start\nexport-started\n", 0, {}}});
    }

    void outputOfOneRead()
    {
        const auto [read, frames, events] = row<QByteArray, int, QStringList>();
        const PlayerOutput output = PlayerOutput::parse(read);
        QCOMPARE(output.frames, frames);
        QStringList told;
        for (const PlayerEvent &event : output.events) {
            const QStringList words{"size %1 %2"_s.arg(event.size.width()).arg(event.size.height()),
                                    "state " + event.text, "time %1"_s.arg(event.position),
                                    "bad: " + event.text};
            told << words.at(static_cast<int>(event.kind));
        }
        for (const ExportEvent &event : exportEvents(read)) {
            const QStringList words{"start", QString::number(event.percent), "error", "done",
                                    "bad: " + event.line};
            told << words.at(static_cast<int>(event.kind));
        }
        QCOMPARE(told, events);
    }

    void fitAndMessageSize()
    {
        const auto picture = [](QSize stream, QSize tile = QSize(320, 240)) {
            return fitPicture(tile, aspectRatioOf(stream, 0));
        };
        QCOMPARE(picture({640, 360}), QRect(0, 30, 320, 180));
        QCOMPARE(picture({640, 480}, {320, 180}), QRect(40, 0, 240, 180));
        // What is left over is cut off.
        QCOMPARE(picture({16, 9}, {155, 110}), QRect(0, 11, 155, 87));
        QCOMPARE(picture({4, 3}, {199, 110}), QRect(26, 0, 146, 110));
        QCOMPARE(picture({3145728, 1}), QRect(0, 120, 320, 0));
        for (const QSize stream : {QSize(0, 480), QSize(640, 0), QSize(0, 0), QSize(-640, 480)})
            QCOMPARE(picture(stream), QRect());
        QCOMPARE(picture({640, 480}, {320, 0}), QRect());
        // The text in the picture's place.
        QCOMPARE(messagePixelSize({160, 240}), 12);
        QCOMPARE(messagePixelSize({200, 120}), 12);
        QCOMPARE(messagePixelSize({161, 121}), 14);
    }

    /// "zoom X Y TIMES" at a place, "pan X Y"; what is seen then.
    void zoom_data()
    {
        rows<QString, QRectF>(
            {"steps", "part"},
            {{"in the middle", "zoom .5 .5 2", {.25, .25, .5, .5}},
             {"in a corner", "zoom 0 0 4", {0, 0, .25, .25}},
             {"what is under the pointer stays", "zoom .75 .5 2", {.375, .25, .5, .5}},
             {"also within a part", "zoom 1 1 2, zoom 0 .5 2", {.5, .625, .25, .25}},
             {"at most 16 times", "zoom 1 0 99", {.9375, 0, .0625, .0625}},
             {"out, but not over the edge", "zoom 0 0 4, zoom 1 1 .5", {0, 0, .5, .5}},
             {"out to the whole", "zoom .3 .9 4, zoom .5 .5 .1", {0, 0, 1, 1}},
             {"almost the whole is the whole", "zoom .3 .9 4, zoom 0 0 .251", {0, 0, 1, 1}},
             {"the picture follows", "zoom .5 .5 2, pan .25 -.125", {.125, .3125, .5, .5}},
             {"up to its edges", "zoom .5 .5 2, pan -9 9", {.5, 0, .5, .5}},
             {"the whole stays", "pan .5 .5", {0, 0, 1, 1}}});
    }

    void zoom()
    {
        const auto [steps, part] = row<QString, QRectF>();
        PictureZoom zoom;
        for (const QString &step : steps.split(", "_s)) {
            const QStringList words = step.split(' ');
            const QPointF place(words.at(1).toDouble(), words.at(2).toDouble());
            words.size() == 4 ? zoom.zoomAt(place, words.at(3).toDouble()) : zoom.pan(place);
        }
        QCOMPARE(zoom.part(), part);
        QCOMPARE(zoom.isZoomed(), part.width() < 1);
    }

    /// The map stays clear of the bars, and its mark can be seen.
    /// Beside the picture, its nearest edge is meant.
    void zoomBesideThePicture()
    {
        QCOMPARE(fractionOf(QRect(10, 10, 100, 50), QPointF(300, -5)), QPointF(1, 0));
        QCOMPARE(fractionOf(QRect(10, 10, 100, 50), QPointF(-5, 300)), QPointF(0, 1));
        QCOMPARE(fractionOf(QRect(), QPointF(5, 5)), QPointF());
        // Three notches of a common wheel.
        QCOMPARE(zoomOfWheel(-360), 0.5);
    }

    void zoomMap()
    {
        PictureZoom zoom;
        zoom.zoomAt({1, .5}, 16);
        const QRect large(1152, 697, 120, 67), small(132, 46, 15, 28);
        QCOMPARE(zoomMapPlace({1280, 800}, {0, 40, 1280, 720}), large);
        QCOMPARE(zoomMapPart(large, zoom), QRectF(1264.5, 728.40625, 7.5, 4.1875));
        QCOMPARE(zoomMapPlace({155, 110}, {46, 0, 62, 110}), small);
        QCOMPARE(zoomMapPart(small, zoom).size(), QSizeF(4, 4));
    }

    /// Only where the screen has other pixels than the picture, here two in a row.
    void smoothScaling()
    {
        for (const QSize size : {QSize(2, 1), QSize(32, 16), QSize(64, 32)}) {
            QImage frame(size, QImage::Format_RGB32);
            frame.fill(Qt::black);
            QPainter(&frame).fillRect(0, 0, size.width() / 2, size.height(), Qt::white);
            QImage tile(64, 32, QImage::Format_RGB32);
            tile.setDevicePixelRatio(2);
            QPainter painter(&tile);
            painter.setRenderHint(QPainter::SmoothPixmapTransform); // left by something else
            paintPicture(painter, {0, 0, 32, 16}, {0, 0, 32, 16}, frame, 0, false);
            const bool isSame = size == tile.size();
            QCOMPARE(painter.testRenderHint(QPainter::SmoothPixmapTransform), !isSame);
            QCOMPARE(qAbs(tile.pixelColor(32, 16).red() - 128) < 100, !isSame);
        }
    }

    /// Painted band by band, a picture is the one that is painted at once, and clips stay.
    void bands()
    {
        QImage frame(96, 90, QImage::Format_RGB32);
        for (int i = 0; i < frame.width() * frame.height(); ++i)
            frame.setPixel(i % 96, i / 96, QRandomGenerator::global()->generate());
        for (const qreal scale : {1., 1.5, 2.}) {
            for (const QRectF part : {QRectF(0, 0, 96, 90), QRectF(20.5, 40.25, 30, 37.5)}) {
                QImage banded(QSize(150, 150) * scale, QImage::Format_RGB32);
                banded.setDevicePixelRatio(scale);
                banded.fill(Qt::magenta);
                QImage whole = banded;
                for (QImage *tile : {&banded, &whole}) {
                    QPainter painter(tile);
                    painter.setClipRect(10, 0, 130, 140);
                    const QRect target(7, 13, 131, 129);
                    painter.setRenderHint(QPainter::SmoothPixmapTransform);
                    tile == &banded ? drawScaled(painter, target, frame, part)
                                    : painter.drawImage(QRectF(target), frame, part);
                    painter.fillRect(0, 0, 150, 5, Qt::white);
                }
                QCOMPARE(banded, whole);
            }
        }
    }

    /// A frame without alpha is opaque however it is turned, on background alone.
    void paintedTile()
    {
        QImage frame(8, 8, QImage::Format_ARGB32_Premultiplied);
        frame.fill(0x00ff0000u);
        for (const int rotation : {0, 90, -180, 450, 45}) {
            for (const bool mirror : {false, true}) {
                QImage tile(24, 16, QImage::Format_RGB32);
                tile.fill(Qt::magenta); // what was there before
                QPainter painter(&tile);
                paintPicture(painter, tile.rect(), QRect(4, 0, 16, 16), frame, rotation, mirror);
                QCOMPARE(tile.pixelColor(0, 0), background);
                QCOMPARE(tile.pixelColor(4, 0), rotation == 45 ? background : Qt::red);
                QCOMPARE(tile.pixelColor(12, 8), QColor(Qt::red));
                paintPicture(painter, tile.rect(), QRect(4, 0, 16, 16), QImage(), 0, false);
                QCOMPARE(tile.pixelColor(12, 8), background);
            }
        }
    }

    /// All but its edge becomes darker.
    void dimming()
    {
        QImage tile(8, 8, QImage::Format_RGB32);
        tile.fill(Qt::white);
        QPainter painter(&tile);
        paintDimming(painter, tile.rect());
        for (int x = 0; x < 8; ++x)
            QCOMPARE(tile.pixelColor(x, x).red() / 10, x % 7 == 0 ? 25 : 12);
    }

    void border()
    {
        // Drop target, active, hovered, tiles, cells.
        QVERIFY((BorderRule{false, true, false, 1, 1}).border() == TileBorder::None);
        QVERIFY((BorderRule{false, true, true, 1, 1}).border() == TileBorder::Hover);
        QVERIFY((BorderRule{false, true, true, 1, 4}).border() == TileBorder::Selection);
        QVERIFY((BorderRule{false, true, false, 2, 1}).border() == TileBorder::Selection);
        QVERIFY((BorderRule{false, false, false, 4, 4}).border() == TileBorder::None);
        QVERIFY((BorderRule{true, false, true, 1, 1}).border() == TileBorder::Selection);
    }

    void frameRoom()
    {
        for (const QSize size : {QSize(2048, 1536), QSize(1, 3145728)})
            QVERIFY(FrameFile::hasRoomFor(size));
        // One pixel more; areas that wrap 32 and 64 bits; none.
        for (const QSize size : {QSize(1, 3145729), QSize(65536, 65536),
                                 QSize(2147483647, 2147483647), QSize(0, 480), QSize(-640, -480)})
            QVERIFY(!FrameFile::hasRoomFor(size));
    }

    /// Where each event leads from each state.
    void states()
    {
        using State = TileState;
        for (const auto from : {State::Idle, State::Starting, State::Playing, State::Paused,
                                State::Stopping, State::Error}) {
            const auto after = [from](const std::function<void(State &)> &event) {
                State state(from);
                event(state);
                return state;
            };
            const auto told = [&after](const QString &vlcState) {
                return after([&vlcState](State &state) { state.told(vlcState); });
            };
            QVERIFY(after(&State::started) == State::Starting);
            QVERIFY(after(&State::frame) == (from == State::Starting ? State::Playing : from));
            QVERIFY(after(&State::paused) == State::Paused);
            QVERIFY(after(&State::unpaused) == State::Playing);
            QVERIFY(told("4"_s) == State::Paused);
            QVERIFY(told("7"_s) == State::Error);
            QVERIFY(told("3"_s) == from && told("07"_s) == from);
            QVERIFY(after(&State::stopping) == State::Stopping);
            QVERIFY(after(&State::stopped) == State::Idle);
        }
    }

    void watchdog()
    {
        using State = TileState;
        using Verdict = Watchdog::Verdict;
        // By the seconds since its start and since its start or last error.
        const auto judge = [](State::Value state, bool childRuns, int sinceStart, int sinceFreeze,
                              int reloads = 0, bool archive = false) {
            const QDateTime now(QDate(2015, 3, 3), QTime(14, 5, 9));
            Watchdog dog;
            dog.lastRequestTime = now.addSecs(-sinceStart);
            dog.freezeTime = now.addSecs(-sinceFreeze);
            dog.reloadsCount = reloads;
            return dog.judge(State(state), archive, childRuns, now);
        };
        for (const auto state : {State::Idle, State::Starting, State::Paused})
            QVERIFY(judge(state, false, 99, 99, 3) == Verdict::Wait);
        QVERIFY(judge(State::Playing, true, 99, 99, 3) == Verdict::Wait);
        QVERIFY(judge(State::Playing, false, 10, 10) == Verdict::Wait);
        QVERIFY(judge(State::Playing, false, 11, 11) == Verdict::Reload);
        QVERIFY(judge(State::Playing, false, 99, 99, 3, true) == Verdict::Wait);
        QVERIFY(judge(State::Error, true, 99, 10) == Verdict::Wait);
        QVERIFY(judge(State::Error, true, 3, 99) == Verdict::Wait);
        QVERIFY(judge(State::Error, true, 4, 99) == Verdict::Reload);
        QVERIFY(judge(State::Error, false, 99, 11, 2) == Verdict::Reload);
        const QDateTime missed(QDate(2015, 3, 3), QTime(14, 5, 9));
        Watchdog without;
        without.missedFile(missed);
        for (const auto state : {State::Idle, State::Paused})
            QCOMPARE(without.judge(State(state), false, false, missed.addSecs(30)) == Verdict::Play,
                     state == State::Idle);
        // After the wall clock was set back.
        QVERIFY(judge(State::Playing, false, -3600, -3600) == Verdict::Reload);
        QVERIFY(judge(State::Error, true, -4, -10) == Verdict::Wait);
        QVERIFY(judge(State::Error, true, 0, 0, 3) == Verdict::GiveUp);
        QVERIFY(judge(State::Playing, false, 0, 0, 4) == Verdict::GiveUp);
    }

    void roomOnDisk_data()
    {
        rows<int, bool>({"fault", "isGiven"},
                        {{"full", ENOSPC, false}, {"interrupted", EINTR, true}});
    }

    /// The disk is asked for a picture's room once, if it answers.
    void roomOnDisk()
    {
        const auto [fault, isGiven] = row<int, bool>();
        FrameFile frames;
        roomRequests = 0;
        QVERIFY(frames.image(QSize(4, 4)).isNull() && frames.open());
        diskFault = fault;
        QVERIFY(frames.image(QSize(4096, 4096)).isNull());
        QCOMPARE(!frames.image(QSize(4, 4)).isNull(), isGiven);
        QVERIFY(!frames.image(QSize(4, 4)).isNull() && !frames.image(QSize(4, 4)).isNull());
        QCOMPARE(roomRequests, 2);
    }
};

QTEST_APPLESS_MAIN(TileRulesTest)
#include "TileRulesTest.moc"
