// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <random>

#include "server/SoundClock.h"

using namespace ZorvaneServer;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// What moments pictures and sound get, whatever camera, line and clocks do.
class ServerTimeTest : public QObject
{
    Q_OBJECT

    static constexpr microseconds epoch = std::chrono::hours(480'000);
    static constexpr microseconds picture = milliseconds(40);
    static constexpr microseconds length = std::chrono::minutes(4);
    static constexpr microseconds wrap = microseconds(std::int64_t((1LL << 32) / 0.09));

    /// What a camera with that fault sends `at` after its start; nothing where it is silent.
    /// The fault begins after half a minute. `jitter` is the line's.
    static std::optional<Arrival> arrival(const QString &fault, microseconds at,
                                          microseconds jitter)
    {
        const bool isOn = at >= seconds(30);
        const microseconds since = at - seconds(30);
        Arrival arrival{at, at + jitter, epoch + at + jitter, at / picture % 50 == 0};
        if (fault == "drift")
            arrival.stamp += at * 3 / 10'000;
        if (fault == "jump" && isOn)
            arrival.stamp += std::chrono::hours(1);
        if (fault == "jump back" && isOn)
            arrival.stamp -= std::chrono::hours(1);
        if (fault == "wrap")
            arrival.stamp = (at + wrap - seconds(30)) % wrap;
        if (fault == "repeat")
            arrival.stamp = at / (2 * picture) * (2 * picture);
        if (fault == "fast" && isOn)
            arrival.stamp += 9 * since;
        if (fault == "stand" && isOn)
            arrival.stamp = seconds(30);
        if (fault == "noise")
            arrival.stamp = microseconds((at.count() * 7919) % 100'000'000'000);
        if (fault == "stall" && isOn && since < seconds(4))
            arrival.steady = seconds(34);
        if (fault == "burst" && at < milliseconds(1500))
            arrival.steady = milliseconds(1500);
        arrival.wall = epoch + arrival.steady;
        if (fault == "clock set" && isOn)
            arrival.wall += std::chrono::hours(1);
        if (fault == "silence" && isOn && since < seconds(8))
            return {};
        return arrival;
    }

private slots:
    /// `farthest` that a moment is ever from the truth, and the last one, in milliseconds.
    void faults_data()
    {
        rows<int, int, int>({"runs", "farthest", "last"}, {{"none", 1, 40, 40},
                                                           {"drift", 1, 60, 60},
                                                           {"jump", 1, 40, 40},
                                                           {"jump back", 1, 40, 40},
                                                           {"wrap", 1, 40, 40},
                                                           {"repeat", 1, 80, 80},
                                                           {"fast", 1, 1500, 60},
                                                           {"stand", 2, 8000, 120},
                                                           {"noise", 1, 200, 200},
                                                           {"stall", 1, 40, 40},
                                                           {"silence", 2, 60, 60},
                                                           {"burst", 1, 1600, 1550},
                                                           {"clock set", 2, 3'600'100, 60}});
    }

    void faults()
    {
        const auto [runs, farthest, last] = row<int, int, int>();
        const QString fault = QTest::currentDataTag();
        std::mt19937 random(5);
        RunClock clock;
        unsigned run = 0;
        microseconds recorded{0};
        microseconds before{0};
        microseconds end{0};
        qint64 worst = 0;
        qint64 off = 0;
        for (microseconds at{0}; at < length; at += picture) {
            const auto packet = arrival(fault, at, milliseconds(random() % 30));
            if (!packet)
                continue;
            const microseconds moment = clock.place(*packet);
            QVERIFY(moment > before || clock.runs() != run);
            // What two runs tell of the same time is there once.
            const microseconds fresh = moment - std::max(before, end);
            if (clock.runs() == run && fresh > microseconds(0))
                recorded += fresh;
            end = std::max(end, moment);
            before = moment;
            run = clock.runs();
            const bool isSet = fault == "clock set" && at >= seconds(30);
            const microseconds truth = epoch + at + (isSet ? std::chrono::hours(1) : seconds(0));
            off = qAbs((moment - truth) / milliseconds(1));
            worst = qMax(worst, off);
        }
        QCOMPARE(int(clock.runs()), runs);
        QVERIFY2(worst <= farthest, qPrintable(QString::number(worst)));
        QVERIFY2(off <= last, qPrintable(QString::number(off)));
        const double share = double(recorded.count()) / double(length.count());
        QVERIFY2(qAbs(share - (fault == "silence" ? 232.0 / 240 : 1)) < 0.01,
                 qPrintable(QString::number(share)));
    }

    /// Sound stays with the pictures of its stamps, and goes on where the stamps part.
    void sound()
    {
        RunClock pictures;
        SoundClock sound;
        for (microseconds at{0}; at < seconds(60); at += picture) {
            pictures.place({at, at, epoch + at, at / picture % 50 == 0});
            const bool parted = at >= seconds(30);
            const microseconds stamp = at + (parted ? std::chrono::hours(1) : seconds(0));
            // It comes later than the pictures do that it belongs to.
            const microseconds came = at + milliseconds(parted ? 0 : 90);
            const microseconds moment = sound.place({stamp, came, epoch + came}, pictures);
            QVERIFY(qAbs((moment - epoch - at) / milliseconds(1)) <= 1);
        }
    }
};

QTEST_GUILESS_MAIN(ServerTimeTest)
#include "ServerTimeTest.moc"
