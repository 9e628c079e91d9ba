// SPDX-License-Identifier: MIT
#include <QtTest>

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
            lines << QStringLiteral("size %1 %2").arg(event.width).arg(event.height);
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
    void outputOfOneRead_data();
    void outputOfOneRead();
    void fit_data();
    void fit();
    void border_data();
    void border();
    void frameRoom_data();
    void frameRoom();
    void watchdog_data();
    void watchdog();
};

void TileRulesTest::outputOfOneRead_data()
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

void TileRulesTest::outputOfOneRead()
{
    QFETCH(QByteArray, read);
    QFETCH(int, frames);
    QFETCH(QStringList, events);
    const PlayerOutput output = PlayerOutput::parse(read);
    QCOMPARE(output.frames, frames);
    QCOMPARE(told(output), events);
}

void TileRulesTest::fit_data()
{
    QTest::addColumn<QSize>("tile");
    QTest::addColumn<QSize>("stream");
    QTest::addColumn<QRect>("picture");
    QTest::newRow("exact") << QSize(320, 240) << QSize(640, 480) << QRect(0, 0, 320, 240);
    QTest::newRow("wider stream") << QSize(320, 240) << QSize(640, 360) << QRect(0, 30, 320, 180);
    QTest::newRow("taller stream") << QSize(320, 180) << QSize(640, 480) << QRect(40, 0, 240, 180);
    QTest::newRow("height truncated") << QSize(155, 110) << QSize(16, 9) << QRect(0, 11, 155, 87);
    QTest::newRow("width truncated") << QSize(199, 110) << QSize(4, 3) << QRect(26, 0, 146, 110);
    QTest::newRow("one row") << QSize(320, 240) << QSize(3145728, 1) << QRect(0, 120, 320, 0);
    QTest::newRow("no width") << QSize(320, 240) << QSize(0, 480) << QRect();
    QTest::newRow("no height") << QSize(320, 240) << QSize(640, 0) << QRect();
    QTest::newRow("nothing") << QSize(320, 240) << QSize(0, 0) << QRect();
    QTest::newRow("negative") << QSize(320, 240) << QSize(-640, 480) << QRect();
    QTest::newRow("no tile") << QSize(320, 0) << QSize(640, 480) << QRect();
}

void TileRulesTest::fit()
{
    QFETCH(QSize, tile);
    QFETCH(QSize, stream);
    QFETCH(QRect, picture);
    QCOMPARE(fitPicture(tile, aspectRatioOf(stream, 0)), picture);
}

void TileRulesTest::border_data()
{
    QTest::addColumn<bool>("isDropTarget");
    QTest::addColumn<bool>("isActive");
    QTest::addColumn<bool>("isHovered");
    QTest::addColumn<int>("players");
    QTest::addColumn<int>("cells");
    QTest::addColumn<int>("border");
    const int none = static_cast<int>(TileBorder::None);
    const int hover = static_cast<int>(TileBorder::Hover);
    const int selection = static_cast<int>(TileBorder::Selection);
    QTest::newRow("plain") << false << false << false << 4 << 4 << none;
    QTest::newRow("hovered") << false << false << true << 4 << 4 << hover;
    QTest::newRow("lone and active") << false << true << false << 1 << 1 << none;
    QTest::newRow("lone, active, hovered") << false << true << true << 1 << 1 << hover;
    QTest::newRow("lone camera of four cells") << false << true << true << 1 << 4 << selection;
    QTest::newRow("two tiles") << false << true << false << 2 << 2 << selection;
    QTest::newRow("lone drop target") << true << false << true << 1 << 1 << selection;
    QTest::newRow("none counted") << false << true << false << 0 << 0 << none;
}

void TileRulesTest::border()
{
    QFETCH(bool, isDropTarget);
    QFETCH(bool, isActive);
    QFETCH(bool, isHovered);
    QFETCH(int, players);
    QFETCH(int, cells);
    QFETCH(int, border);
    const BorderRule rule{isDropTarget, isActive, isHovered, players, cells};
    QCOMPARE(static_cast<int>(rule.border()), border);
}

void TileRulesTest::frameRoom_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("fits");
    QTest::newRow("full") << QSize(2048, 1536) << true;
    QTest::newRow("one column") << QSize(1, 3145728) << true;
    QTest::newRow("one pixel more") << QSize(1, 3145729) << false;
    QTest::newRow("wraps 32 bits") << QSize(65536, 65536) << false;
    QTest::newRow("wraps 64 bits") << QSize(2147483647, 2147483647) << false;
    QTest::newRow("zero") << QSize(0, 480) << false;
    QTest::newRow("negative") << QSize(-1, 1) << false;
    QTest::newRow("both negative") << QSize(-640, -480) << false;
}

void TileRulesTest::frameRoom()
{
    QFETCH(QSize, size);
    QFETCH(bool, fits);
    QCOMPARE(FrameFile::hasRoomFor(size), fits);
}

void TileRulesTest::watchdog_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("archive");
    QTest::addColumn<bool>("childRuns");
    QTest::addColumn<int>("sinceRequest");
    QTest::addColumn<int>("sinceFreeze");
    QTest::addColumn<int>("reloads");
    QTest::addColumn<int>("verdict");

    const auto row = [](const char *name, int state, bool archive, bool childRuns, int sinceRequest,
                        int sinceFreeze, int reloads, Watchdog::Verdict verdict) {
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

void TileRulesTest::watchdog()
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

QTEST_APPLESS_MAIN(TileRulesTest)
#include "TileRulesTest.moc"
