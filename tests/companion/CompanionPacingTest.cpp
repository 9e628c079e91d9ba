// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <future>

#include "companion/Controls.h"
#include "companion/Pacing.h"
#include "companion/PicturePatience.h"
#include "companion/PositionTrack.h"
#include "companion/TimeLines.h"
#include "tests/companion/Words.h"

using namespace ZorvaneClient::Companion;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// When a picture is shown, and what time is told with it.
class CompanionPacingTest : public QObject
{
    Q_OBJECT

private slots:
    /// By stamp, "+" for what is shown so much later, "d" for so much dropped before it.
    void positions_data()
    {
        rows<QString, int, QString>(
            {"stamps", "passed", "positions"},
            {{"from anywhere", "50000 50040 50080", 40, "0 40 80"},
             {"back", "900 940 0 40", 40, "0 40 80 120"},
             {"gap of ten seconds", "0 10000 10040", 40, "0 10000 10040"},
             {"farther", "0 10001 10041", 40, "0 40 80"},
             {"farther, and as much time passed", "0 60000 60040", 58'000, "0 60000 60040"},
             {"farther than the time that passed", "0 60001 60041", 58'000, "0 40 80"},
             {"farther, and as much was dropped", "0 60000d57960 60040", 40, "0 60000 60040"},
             {"shown later than decoded", "500+80 540+120", 40, "0 80"},
             {"first ones dropped", "500+80d300 540+80", 40, "300 340"}});
    }

    void positions()
    {
        const auto [stamps, passed, positions] = row<QString, int, QString>();
        PositionTrack track;
        milliseconds elapsed(0);
        const milliseconds step(passed);
        const auto tell = [&](const QString &stamp) {
            const QString times = stamp.section('d', 0, 0);
            const int time = times.section('+', 0, 0).toInt();
            const int shownAt = time + times.section('+', 1).toInt();
            track.advance(time, shownAt, elapsed += step, millisecondsOf(stamp.section('d', 1)));
            return QString::number(shownAt + track.offset());
        };
        QCOMPARE(tellAll(stamps, tell), positions);
    }

    /// One picture a word: position@now, "+" for what waits behind it, "!" for a decoder that had
    /// nothing to do since the one before. "~now+backlog" asks again during the wait, "?now" for
    /// the time without a new picture. Pictures are shown in their time unless skipped.
    void pacing_data()
    {
        rows<bool, QString, QString>(
            {"live", "pictures", "answers"},
            {{"in its time", false, "0@100 40@110+9 80@150+9", "show wait140 wait180"},
             {"stream is late", false, "0@0+9 40@99 80@100+9", "show show wait139"},
             {"stream was late", false, "0@0+9 40@99!+9 80@100+9", "show show wait139"},
             {"decoder is late", false, "0@0+9 40@80+9 80@121+9", "show show skip"},
             {"late, nothing behind it", false, "0@0+9 40@41+9 80@121", "show show show"},
             {"late for long", false, "0@0+9 10@249+9 10@250+9", "show skip,late show,late"},
             {"not yet very late", false, "0@0+9 10@210+9 10@211+9", "show skip skip,late"},
             {"to a key frame", false, "0@0+9 10@1010+9 20@1021+9",
              "show show,late skip,late,j1001"},
             {"too late", false, "0@0+9 10@2010+9 20@2021+9 30@2022+9",
              "show show,late,j2000 show,j2001 wait2031"},
             {"jump ahead", false, "0@0+9 5000@0+9 10001@5000+9", "show wait5000 show"},
             {"close together", false, "0@0+9 9@5+9 10@6+9", "show skip wait10"},
             {"live backlog", true, "0@0+400 40@0+360 80@40+361", "show wait40 skip,late"},
             {"live, far behind", true, "0@0+1000 9@0+1001", "show,late skip,late,j1000000"},
             {"live, after a jump", true, "0@0+401 241@0+160 300@9+99", "show,late show wait19"},
             {"live backlog comes in a wait", true, "0@0+9 90@9+9 ~20+330 ~21+332",
              "show wait90 wait90 show"},
             {"without pictures", false, "0@0 40@40 ?289 ?291 440@440 ?900 4440@4440 ?9000",
              "show show 289 290 show 840 show 5940"},
             {"backlog comes in a wait", false, "0@0+9 90@9+9 ~20+5000 ~90+9",
              "show wait90 wait90 show"}});
    }

    void pacing()
    {
        const auto [live, pictures, answers] = row<bool, QString, QString>();
        Pacing pacing(live);
        Pacing::Time position(0);
        std::optional<Pacing::Time> shown;
        const auto tell = [&](const QString &word) {
            const QString times = word.section(QRegularExpression("[@~?]"_s), 1);
            const milliseconds now =
                millisecondsOf(times.section(QRegularExpression("[!+]"_s), 0, 0));
            const QString behind = times.section('+', 1);
            const bool again = word.startsWith('~');
            if (shown && !again)
                pacing.shown(position, *std::exchange(shown, {}));
            if (word.startsWith('?'))
                return QString::number(pacing.idlePosition(now) / milliseconds(1));
            position = again ? position : millisecondsOf(word.section('@', 0, 0));
            const Pacing::Backlog backlog = {millisecondsOf(behind), behind.isEmpty(),
                                             times.contains('!')};
            const auto answer = again ? pacing.waited(position, now, backlog)
                                      : pacing.arrived(position, now, backlog);
            const bool waits = answer.action == Pacing::Action::Wait;
            QString text = waits ? "wait%1"_s.arg(answer.until / milliseconds(1)) : "show"_s;
            if (answer.action != Pacing::Action::Skip)
                shown = waits ? answer.until : now;
            else
                text = "skip"_s;
            text += answer.isVeryLate ? ",late" : "";
            return answer.jump ? text + ",j%1"_s.arg(answer.jump->count()) : text;
        };
        QCOMPARE(tellAll(pictures, tell), answers);
    }

    /// position@now, with "f" beside a frame; what isn't told is "-".
    void timeLines()
    {
        TimeLines lines;
        milliseconds last(0);
        const auto tell = [&](const QString &word) {
            const QString time = word.section('f', 0, 0);
            const milliseconds now = millisecondsOf(time.section('@', 1));
            const auto line =
                lines.next(millisecondsOf(time.section('@', 0, 0)), now,
                           time == word ? TimeLines::Beside::Nothing : TimeLines::Beside::Frame);
            last = line ? now : last;
            const bool due =
                lines.due(now) == qMax(last + milliseconds(200), now + milliseconds(10));
            return !due ? "due?"_s : line ? QString::number(line->count()) : "-"_s;
        };
        QCOMPARE(tellAll("0@0 1@199 1@200 2@319f 2@320f 2@999 1@999f 3@1000"_s, tell),
                 "0 - 1 - 2 - - 3"_s);
    }

    /// Nine seconds for a picture, half a minute for a packet.
    void patience()
    {
        PicturePatience patience;
        const auto endsAfter = [&patience](int limit, bool shown = true) {
            return !patience.isOver(seconds(limit), shown) &&
                   patience.isOver(seconds(limit) + milliseconds(1), shown);
        };
        patience.gotPacket(seconds(1));
        QVERIFY(endsAfter(9, false));
        patience.gotPicture(seconds(2));
        QVERIFY(endsAfter(32));
        patience.gotPacket(seconds(4));
        patience.gotPacket(seconds(12));
        QVERIFY(endsAfter(13));
        patience.gotPicture(seconds(12));
        patience.lostPicture(seconds(2));
        patience.gotPacket(seconds(12));
        QVERIFY(endsAfter(11));
    }

    void clockStandsStillInAPause()
    {
        Controls controls;
        QTRY_VERIFY(controls.now() > milliseconds(20));
        controls.setPaused(true);
        const auto end = controls.now() + milliseconds(30);
        const auto waiter = std::async(std::launch::async, [&] { controls.waitUntil(end); });
        const bool waits = waiter.wait_for(milliseconds(100)) == std::future_status::timeout;
        const bool stands = controls.now() == end - milliseconds(30);
        controls.setPaused(false);
        waiter.wait();
        QVERIFY(waits && stands && controls.now() >= end);
    }
};

QTEST_GUILESS_MAIN(CompanionPacingTest)
#include "CompanionPacingTest.moc"
