// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "companion/Controls.h"
#include "companion/FrameFile.h"
#include "companion/LineOutput.h"
#include "companion/PacketQueue.h"
#include "companion/PictureConverter.h"
#include "companion/PositionTrack.h"

using namespace ZorvaneClient::Companion;
using std::chrono::milliseconds;

namespace {

QueuedPacket packetAt(int milliseconds, bool key, int bytes = 10)
{
    static const auto format = std::make_shared<StreamFormat>();
    QueuedPacket item;
    item.packet.reset(av_packet_alloc());
    item.format = format;
    av_new_packet(item.packet.get(), bytes);
    item.packet->dts = milliseconds;
    item.packet->flags = key ? AV_PKT_FLAG_KEY : 0;
    return item;
}

/// Takes all that waits; time stamps.
QList<int> drained(PacketQueue &queue)
{
    QList<int> times;
    QueuedPacket item;
    while (queue.pop(item, milliseconds(0)) == PacketQueue::Taken::Packet)
        times.append(static_cast<int>(item.packet->dts));
    return times;
}

QByteArray readAll(int fd)
{
    QByteArray all(1 << 20, '\0');
    const ssize_t count = ::read(fd, all.data(), static_cast<size_t>(all.size()));
    return all.left(static_cast<int>(qMax<ssize_t>(count, 0)));
}

} // namespace

/// The decisions of the player that need no child to be seen.
class CompanionRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void positions_data()
    {
        using List = QList<int>;
        rows<QList<int>, int, QList<int>>(
            {"stamps", "passed", "positions"},
            {
                {"from anywhere", List{50'000, 50'040, 50'080}, 40, List{0, 40, 80}},
                {"back", List{900, 940, 0, 40}, 40, List{0, 40, 80, 120}},
                {"gap of ten seconds", List{0, 10'000, 10'040}, 40, List{0, 10'000, 10'040}},
                {"farther", List{0, 10'001, 10'041}, 40, List{0, 40, 80}},
                {"farther, and as much time passed", List{0, 60'000, 60'040}, 59'000,
                 List{0, 60'000, 60'040}},
            });
    }

    void positions()
    {
        const auto [stamps, passed, positions] = row<QList<int>, int, QList<int>>();
        PositionTrack track;
        QList<int> found;
        for (const int stamp : stamps) {
            track.advance(stamp, stamp, milliseconds(found.isEmpty() ? 0 : passed));
            found.append(static_cast<int>(stamp + track.offset()));
        }
        QCOMPARE(found, positions);
    }

    void fittedSizes_data()
    {
        rows<QSize, QSize>({"size", "fitted"},
                           {
                               {"one row too many", QSize(2048, 1537), QSize(2047, 1536)},
                               {"a column", QSize(1, 4'000'000), QSize(1, 3'145'728)},
                               {"largest", QSize(INT_MAX, INT_MAX), QSize(1773, 1773)},
                               {"nothing", QSize(0, 100), QSize(0, 0)},
                           });
    }

    void fittedSizes()
    {
        const auto [size, fitted] = row<QSize, QSize>();
        const PictureSize found = fittedSize({size.width(), size.height()});
        QCOMPARE(QSize(found.width, found.height), fitted);
        QVERIFY(int64_t(found.width) * found.height <= FrameFile::maxPixels);
    }

    void fullLiveQueueBeginsAtAKey()
    {
        PacketQueue queue({100, milliseconds(10'000), PacketQueue::Overflow::DropToKey});
        for (int i = 0; i < 17; ++i)
            queue.push(packetAt(i * 40, i == 0 || i == 14, 10));
        QueuedPacket item;
        QCOMPARE(queue.pop(item, milliseconds(0)), PacketQueue::Taken::Packet);
        QCOMPARE(int(item.packet->dts), 14 * 40);
        QCOMPARE(int(item.droppedBefore.count()), 13 * 40);
        const QList<int> expected = {15 * 40, 16 * 40};
        QCOMPARE(drained(queue), expected);
    }

    void fullQueueHoldsTheReaderBack()
    {
        PacketQueue queue({100, milliseconds(10'000), PacketQueue::Overflow::Wait});
        constexpr int count = 200;
        std::atomic<int> pushed{0};
        std::thread reader([&] {
            for (int i = 0; i < count; ++i) {
                queue.push(packetAt(i, true, 10));
                ++pushed;
            }
            queue.finish(PacketQueue::End::Finished);
        });
        QTRY_COMPARE(pushed.load(), 10);
        QTest::qWait(50);
        const int held = pushed;
        QList<int> times;
        QueuedPacket item;
        while (queue.pop(item, milliseconds(10'000)) == PacketQueue::Taken::Packet)
            times.append(static_cast<int>(item.packet->dts));
        reader.join();
        QCOMPARE(held, 10);
        QCOMPARE(int(times.size()), count);
        QVERIFY(std::is_sorted(times.begin(), times.end()));
    }

    /// Frames and times are lost then, the last state and size are not; nothing blocks.
    void linesToAClientThatDoesNotRead()
    {
        int ends[2];
        QCOMPARE(pipe2(ends, O_CLOEXEC), 0);
        fcntl(ends[1], F_SETPIPE_SZ, 4096);
        LineOutput output(ends[1]);
        for (int i = 0; i < 2000; ++i) {
            output.time(i);
            output.frame();
            QVERIFY(output.flush());
        }
        output.size(640, 480);
        output.state(StreamState::Playing);
        QVERIFY(output.flush());
        const QByteArray early = readAll(ends[0]);
        QVERIFY(early.startsWith("time 0\nframe\n"));
        QVERIFY(early.endsWith("frame\n"));
        QVERIFY(!early.contains("size"));

        output.time(5000);
        output.frame();
        QVERIFY(output.flush());
        QCOMPARE(readAll(ends[0]), QByteArray("state 3\nsize 640 480\ntime 5000\nframe\n"));
        ::close(ends[0]);
        output.frame();
        std::signal(SIGPIPE, SIG_IGN);
        QVERIFY(!output.flush());
        ::close(ends[1]);
    }

    void clockStandsStillInAPause()
    {
        Controls controls;
        QTRY_VERIFY(controls.now() > milliseconds(20));
        controls.setPaused(true);
        const auto paused = controls.now();
        std::atomic<bool> reached{false};
        std::thread waiter([&] {
            controls.waitUntil(paused + milliseconds(30));
            reached = true;
        });
        QTest::qWait(200);
        const auto later = controls.now();
        const bool tooEarly = reached;
        controls.setPaused(false);
        waiter.join();
        QVERIFY(later == paused);
        QVERIFY(!tooEarly);
        QVERIFY(controls.now() >= paused + milliseconds(30));
    }
};

QTEST_GUILESS_MAIN(CompanionRulesTest)
#include "CompanionRulesTest.moc"
