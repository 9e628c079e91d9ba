// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/Player/FrameFile.h"
#include "GUI/Player/PictureGeometry.h"
#include "GUI/Player/PlayerOutput.h"
#include "GUI/Player/TilePainter.h"
#include "GUI/Player/TileState.h"
#include "GUI/Player/Watchdog.h"

using namespace ZorvaneClient::GUI::Player::Internal;

namespace {

QStringList told(const PlayerOutput &output)
{
    QStringList lines;
    for (const PlayerEvent &event : output.events) {
        switch (event.kind) {
        case PlayerEvent::Kind::Size:
            lines << "size %1 %2"_s.arg(event.width).arg(event.height);
            break;
        case PlayerEvent::Kind::State:
            lines << "state " + event.text;
            break;
        case PlayerEvent::Kind::Position:
            lines << "time " + event.text;
            break;
        case PlayerEvent::Kind::Bad:
            lines << "bad: " + event.text;
            break;
        }
    }
    return lines;
}

} // namespace

/// What a tile decides without a window.
class TileRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void outputOfOneRead_data()
    {
        QTest::addColumn<QByteArray>("read");
        QTest::addColumn<int>("frames");
        QTest::addColumn<QStringList>("events");

        const auto row = [](const char *name, const QByteArray &read, int frames,
                            const QStringList &events) {
            QTest::newRow(name) << read << frames << events;
        };
        row("nothing", "", 0, {});
        row("blank lines", "\n \n\r\n\n", 0, {});
        row("frames are counted", "frame\nframe\nframe 17\n", 3, {});
        row("in order", "state 3\nsize 640 480\ntime 40\nframe\nstate 7\n", 1,
            {"state 3", "size 640 480", "time 40", "state 7"});
        row("no end of line", "frame\nstate 3", 1, {"state 3"});
        row("carriage returns", "size 640 480\r\nframe\r\n", 1, {"size 640 480"});
        row("blanks round a line", "  \tframe\t \n  state 4 ", 1, {"state 4"});
        row("begins with a Latin-1 space",
            "\xa0"
            "frame\n",
            1, {});
        row("one number", "size 640\n", 0, {"bad: size 640"});
        row("bare words", "size\nstate\ntime\n", 0, {"bad: size", "bad: state", "bad: time"});
        row("not numbers", "size x 480\nsize 640 4x0\n", 0, {"size 0 480", "size 640 0"});
        row("more numbers", "size 640 480 32\nstate 3 4\n", 0, {"size 640 480", "state 3"});
        row("two blanks", "size  640 480\nstate  7\n", 0, {"size 0 640", "state "});
        row("too large for an int", "size 2147483648 99999999999999999999\n", 0, {"size 0 0"});
        row("negative", "size -640 -480\n", 0, {"size -640 -480"});
        row("case counts", "FRAME\nSize 1 1\nSTATE 7\n", 0, {});
        row("longer words", "frames\nsized 1 1\nstatement 7\n", 0, {});
        row("torn line", "fra", 0, {});
        row("its other half", "me\nframe\n", 1, {});
        row("cut at NUL", QByteArray("frame\nsta\0te 7\nframe\n", 20), 1, {});
        row("NUL first", QByteArray("\0frame\n", 7), 0, {});
        row("garbage", "\xff\xfe\x80 \x01\x02\nframe\n\x7f", 1, {});
    }

    void outputOfOneRead()
    {
        QFETCH(QByteArray, read);
        QFETCH(int, frames);
        QFETCH(QStringList, events);
        const PlayerOutput output = PlayerOutput::parse(read);
        QCOMPARE(output.frames, frames);
        QCOMPARE(told(output), events);
    }

    void fit_data()
    {
        rows<QSize, QSize, QRect>(
            {"tile", "stream", "picture"},
            {
                {"exact", QSize(320, 240), QSize(640, 480), QRect(0, 0, 320, 240)},
                {"wider stream", QSize(320, 240), QSize(640, 360), QRect(0, 30, 320, 180)},
                {"taller stream", QSize(320, 180), QSize(640, 480), QRect(40, 0, 240, 180)},
                {"height truncated", QSize(155, 110), QSize(16, 9), QRect(0, 11, 155, 87)},
                {"width truncated", QSize(199, 110), QSize(4, 3), QRect(26, 0, 146, 110)},
                {"one row", QSize(320, 240), QSize(3145728, 1), QRect(0, 120, 320, 0)},
                {"no width", QSize(320, 240), QSize(0, 480), QRect()},
                {"no height", QSize(320, 240), QSize(640, 0), QRect()},
                {"nothing", QSize(320, 240), QSize(0, 0), QRect()},
                {"negative", QSize(320, 240), QSize(-640, 480), QRect()},
                {"no tile", QSize(320, 0), QSize(640, 480), QRect()},
            });
    }

    void fit()
    {
        const auto [tile, stream, picture] = row<QSize, QSize, QRect>();
        QCOMPARE(fitPicture(tile, aspectRatioOf(stream, 0)), picture);
    }

    void border_data()
    {
        const int none = static_cast<int>(TileBorder::None);
        const int hover = static_cast<int>(TileBorder::Hover);
        const int selection = static_cast<int>(TileBorder::Selection);
        rows<bool, bool, bool, int, int, int>(
            {"isDropTarget", "isActive", "isHovered", "players", "cells", "border"},
            {
                {"plain", false, false, false, 4, 4, none},
                {"hovered", false, false, true, 4, 4, hover},
                {"lone and active", false, true, false, 1, 1, none},
                {"lone, active, hovered", false, true, true, 1, 1, hover},
                {"lone camera of four cells", false, true, true, 1, 4, selection},
                {"two tiles", false, true, false, 2, 2, selection},
                {"lone drop target", true, false, true, 1, 1, selection},
                {"none counted", false, true, false, 0, 0, none},
            });
    }

    void border()
    {
        const auto [isDropTarget, isActive, isHovered, players, cells, border] =
            row<bool, bool, bool, int, int, int>();
        const BorderRule rule{isDropTarget, isActive, isHovered, players, cells};
        QCOMPARE(static_cast<int>(rule.border()), border);
    }

    void frameRoom_data()
    {
        rows<QSize, bool>({"size", "fits"},
                          {
                              {"full", QSize(2048, 1536), true},
                              {"one column", QSize(1, 3145728), true},
                              {"one pixel more", QSize(1, 3145729), false},
                              {"wraps 32 bits", QSize(65536, 65536), false},
                              {"wraps 64 bits", QSize(2147483647, 2147483647), false},
                              {"zero", QSize(0, 480), false},
                              {"negative", QSize(-1, 1), false},
                              {"both negative", QSize(-640, -480), false},
                          });
    }

    void frameRoom()
    {
        const auto [size, fits] = row<QSize, bool>();
        QCOMPARE(FrameFile::hasRoomFor(size), fits);
    }

    void watchdog_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("archive");
        QTest::addColumn<bool>("childRuns");
        QTest::addColumn<int>("sinceRequest");
        QTest::addColumn<int>("sinceFreeze");
        QTest::addColumn<int>("reloads");
        QTest::addColumn<int>("verdict");

        const auto row = [](const char *name, int state, bool archive, bool childRuns,
                            int sinceRequest, int sinceFreeze, int reloads,
                            Watchdog::Verdict verdict) {
            QTest::newRow(name) << state << archive << childRuns << sinceRequest << sinceFreeze
                                << reloads << static_cast<int>(verdict);
        };
        using Verdict = Watchdog::Verdict;
        row("plays", Playing, false, true, 99, 99, 0, Verdict::Wait);
        row("plays, limit reached", Playing, false, true, 99, 99, 3, Verdict::Wait);
        row("died playing, too fresh", Playing, false, false, 10, 10, 0, Verdict::Wait);
        row("died playing", Playing, false, false, 11, 11, 0, Verdict::Reload);
        row("died playing the archive", Playing, true, false, 99, 99, 0, Verdict::Wait);
        row("died starting", Starting, false, false, 99, 99, 0, Verdict::Wait);
        row("died paused", Paused, false, false, 99, 99, 0, Verdict::Wait);
        row("idle", Idle, false, false, 99, 99, 3, Verdict::Wait);
        row("error, too fresh", Error, false, true, 99, 10, 0, Verdict::Wait);
        row("error", Error, false, true, 99, 11, 0, Verdict::Reload);
        row("error just after a start", Error, false, true, 3, 99, 0, Verdict::Wait);
        row("error four seconds after", Error, false, true, 4, 99, 0, Verdict::Reload);
        row("error of a dead child", Error, false, false, 99, 11, 2, Verdict::Reload);
        row("error in the archive", Error, true, true, 99, 99, 3, Verdict::Wait);
        row("limit reached, fresh", Error, false, true, 0, 0, 3, Verdict::GiveUp);
        row("limit passed", Playing, false, false, 0, 0, 4, Verdict::GiveUp);
    }

    void watchdog()
    {
        QFETCH(int, state);
        QFETCH(bool, archive);
        QFETCH(bool, childRuns);
        QFETCH(int, sinceRequest);
        QFETCH(int, sinceFreeze);
        QFETCH(int, reloads);
        QFETCH(int, verdict);
        const QDateTime now(QDate(2015, 3, 3), QTime(14, 5, 9));
        Watchdog dog;
        dog.lastRequestTime = now.addSecs(-sinceRequest);
        dog.freezeTime = now.addSecs(-sinceFreeze);
        dog.reloadsCount = reloads;
        QCOMPARE(static_cast<int>(dog.judge(state, archive, childRuns, now)), verdict);
    }
};

QTEST_APPLESS_MAIN(TileRulesTest)
#include "TileRulesTest.moc"
