// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/Player/ExportOutput.h"
#include "GUI/Player/FrameFile.h"
#include "GUI/Player/PictureGeometry.h"
#include "GUI/Player/PlayerOutput.h"
#include "GUI/Player/TilePainter.h"
#include "GUI/Player/TileState.h"
#include "GUI/Player/Watchdog.h"

using namespace ZorvaneClient::GUI::Player::Internal;

/// What a tile decides without a window.
class TileRulesTest : public QObject
{
    Q_OBJECT

private slots:
    /// One read of the child's output, as the tile understands it.
    void outputOfOneRead_data()
    {
        rows<QByteArray, int, QStringList>(
            {"read", "frames", "events"},
            {{"nothing", "", 0, {}},
             {"blank lines", "\n \n\r\n\n", 0, {}},
             {"in order",
              "state 3\nsize 6 4\nframe\ntime 4\n",
              1,
              {"state 3", "size 6 4", "time 4"}},
             {"no end of line", "frame\nstate 3", 1, {"state 3"}},
             {"carriage returns", "size 640 480\r\nframe\r\n", 1, {"size 640 480"}},
             {"blanks round a line", "  \tframe\t \n  state 4 ", 1, {"state 4"}},
             {"Latin-1 space", QByteArray("\xa0") + "frame\n", 1, {}},
             {"one number", "size 640\n", 0, {"bad: size 640"}},
             {"bare words", "size\nstate\ntime\n", 0, {"bad: size", "bad: state", "bad: time"}},
             {"not numbers",
              "size x 480\nsize 640 4x0\ntime 1.5\n",
              0,
              {"size 0 480", "size 640 0", "time 0"}},
             {"more numbers", "size 640 480 32\nstate 3 4\n", 0, {"size 640 480", "state 3"}},
             {"two blanks", "size  640 480\nstate  7\n", 0, {"size 0 640", "state "}},
             {"beyond an int", "size 2147483648 99999999999999999999\n", 0, {"size 0 0"}},
             {"negative", "size -640 -480\n", 0, {"size -640 -480"}},
             {"case counts", "FRAME\nSize 1 1\nSTATE 7\n", 0, {}},
             {"longer words", "frames\nsized 1 1\nstatement 7\n", 0, {}},
             {"torn lines", "me\nframe\nframe 17\nfra", 2, {}},
             {"cut at NUL", QByteArray("frame\nsta\0te 7\nframe\n", 20), 1, {}},
             {"NUL first", QByteArray("\0frame\n", 7), 0, {}},
             {"garbage", "\xff\xfe\x80 \x01\x02\nframe\n\x7f", 1, {}}});
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
        QCOMPARE(told, events);
    }

    void exportOutput_data()
    {
        rows<QByteArray, QString>(
            {"read", "events"},
            {{"all", "export-start\nexport-percent 9\nexport-done\n", "start 9 done"},
             {"done once", "export-done\nexport-percent 5\nexport-done\n", "5 done"},
             {"errors", "export-error\nexport-start\nexport-error\n", "error start error"},
             {"no number", "export-percent all\nexport-percent  7\n", "0 0"},
             {"no percent", "\t export-percent \nexport-percent 3\n", "bad:export-percent 3"},
             {"others", "\n export-start\r\nExport-start\nexport-started\nframe\n", "start"},
             {"nothing after a NUL", QByteArray("export-percent 8\n\0export-done\n", 30), "8"},
             {"no end of line", "export-percent 20", "20"}});
    }

    void exportOutput()
    {
        const auto [read, expected] = row<QByteArray, QString>();
        QStringList told;
        for (const ExportEvent &event : exportEvents(read)) {
            const QStringList words{"start", QString::number(event.percent), "error", "done",
                                    "bad:" + event.line};
            told << words.at(static_cast<int>(event.kind));
        }
        QCOMPARE(told.join(' '), expected);
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

    /// Whatever alpha a frame has and however it is turned, it is opaque, on background alone.
    void paintedTile()
    {
        const QColor background(25, 25, 29);
        for (const uint alpha : {0x00u, 0x80u, 0xffu}) {
            QImage frame(8, 8, QImage::Format_ARGB32_Premultiplied);
            frame.fill(alpha << 24 | 0xff0000);
            for (const int rotation : {0, 90, -180, 450, 45}) {
                for (const bool mirror : {false, true}) {
                    QImage tile(24, 16, QImage::Format_RGB32);
                    tile.fill(Qt::magenta); // what was there before
                    QPainter painter(&tile);
                    paintPicture(painter, tile.rect(), QRect(4, 0, 16, 16), frame, rotation,
                                 mirror);
                    for (const QPoint free : {QPoint(0, 0), QPoint(23, 15)})
                        QCOMPARE(tile.pixelColor(free), background);
                    QCOMPARE(tile.pixelColor(12, 8), QColor(Qt::red));
                    const bool isSlanted = rotation == 45;
                    QCOMPARE(tile.pixelColor(4, 0), isSlanted ? background : QColor(Qt::red));
                }
            }
        }
        QImage tile(24, 16, QImage::Format_RGB32);
        QPainter painter(&tile);
        paintPicture(painter, tile.rect(), QRect(4, 0, 16, 16), QImage(), 0, false);
        QCOMPARE(tile.pixelColor(12, 8), background);
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
        const auto told = [](const char *vlcState) {
            return [vlcState](State &state) { state.told(QLatin1String(vlcState)); };
        };
        const auto everywhere = [](const char *name) {
            return QByteArrayList{name, name, name, name, name, name}.join(' ');
        };
        const QByteArray unmoved = "Idle Starting Playing Paused Stopping Error";
        const std::vector<std::pair<std::function<void(State &)>, QByteArray>> table{
            {&State::started, everywhere("Starting")},
            {&State::frame, "Idle Playing Playing Paused Stopping Error"},
            {&State::paused, everywhere("Paused")},
            {&State::unpaused, everywhere("Playing")},
            {told("4"), everywhere("Paused")},
            {told("7"), everywhere("Error")},
            {told("3"), unmoved},
            {told("07"), unmoved},
            {&State::stopping, everywhere("Stopping")},
            {&State::stopped, everywhere("Idle")}};
        for (const auto &[event, expected] : table) {
            QByteArrayList reached;
            for (const auto from : {State::Idle, State::Starting, State::Playing, State::Paused,
                                    State::Stopping, State::Error}) {
                State state(from);
                event(state);
                reached << state.name();
            }
            QCOMPARE(reached.join(' '), expected);
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
        QVERIFY(judge(State::Error, true, 0, 0, 3) == Verdict::GiveUp);
        QVERIFY(judge(State::Playing, false, 0, 0, 4) == Verdict::GiveUp);
    }
};

QTEST_APPLESS_MAIN(TileRulesTest)
#include "TileRulesTest.moc"
