// SPDX-License-Identifier: MIT
#include "tests/server/House.h"

#include <future>

using namespace ZorvaneServer;

/// What is recorded, as it is asked for and sent. Moments are those that the pictures tell.
class ServerPlayingTest : public QObject
{
    Q_OBJECT

    static constexpr int pictureMs = House::pictureMs;
    /// Yesterday, as seconds are asked for.
    const qint64 begin = QDateTime::currentSecsSinceEpoch() * 1000 - 86'400'000;

    /// Main: [0, 20) [20, 40) [40, 60) [100, 110) seconds, with another width from 20 on. Sub: the
    /// same without [20, 40).
    void fill(House &house, int groupMs) const
    {
        for (const int second : {0, 20, 40, 100}) {
            house.record(false, begin + second * 1000, second < 100 ? 20'000 : 10'000, groupMs,
                         second == 20 ? 1280 : 1920);
            house.finish(false);
            if (second == 20)
                continue;
            house.record(true, begin + second * 1000, second < 100 ? 20'000 : 10'000, groupMs, 640);
            house.finish(true);
        }
    }

    /// Where in its segment a picture is.
    static qint64 placeOf(const QString &path, qint64 momentMs)
    {
        QByteArray moment(8, 0);
        qToBigEndian(momentMs, moment.data());
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().indexOf(moment) : -1;
    }

    /// Makes the head of a picture's block unreadable.
    static void damage(const QString &path, qint64 momentMs)
    {
        constexpr int headBytes = 13;
        const qint64 at = placeOf(path, momentMs) - headBytes;
        QFile file(path);
        QVERIFY(at > 0 && file.open(QIODevice::ReadWrite) && file.seek(at));
        QCOMPARE(file.write(QByteArray(headBytes, 0)), qint64(headBytes));
    }

    /// Bytes that this process has read.
    static qint64 bytesRead()
    {
        QFile file("/proc/self/io");
        return file.open(QIODevice::ReadOnly)
                   ? file.readLine().split(' ').last().trimmed().toLongLong()
                   : 0;
    }

private slots:
    void played_data()
    {
        rows<int, int, int, int, int>({"speed", "quality", "groupMs", "second", "pictures"},
                                      {{"within a second of pictures", 1, 2, 1000, 3, 20},
                                       {"far behind a key picture", 1, 2, 2000, 17, 20},
                                       {"farther", 1, 1, 10'000, 9, 20},
                                       {"into the next segment", 2, 2, 2000, 19, 50},
                                       {"into another stream", 2, 0, 2000, 19, 50},
                                       {"and back", 2, 0, 10'000, 39, 50},
                                       {"4x", 4, 2, 1000, 17, 50},
                                       {"8x, all pictures are key pictures", 8, 2, 40, 15, 10},
                                       {"8x", 8, 0, 2000, 17, 40},
                                       {"4x, few key pictures", 4, 1, 10'000, 11, 110},
                                       {"8x, few key pictures", 8, 1, 10'000, 11, 3},
                                       {"16x", 16, 2, 1000, 5, 10},
                                       {"32x", 32, 2, 2000, 1, 10},
                                       {"32x, few key pictures", 32, 1, 10'000, 11, 4}});
    }

    void played()
    {
        const auto [speed, quality, groupMs, second, count] = row<int, int, int, int, int>();
        House house;
        fill(house, groupMs);
        const qint64 asked = begin + second * 1000;
        int shown = 0;
        Receiver receiver([&, most = count](const SeenPicture &picture) {
            shown += picture.stampMs > 0 || picture.momentMs >= asked;
            return shown > most;
        });
        const qint64 before = bytesRead();
        house.play(
            "/flv/archive?startTime=%1&speed=%2&q=%3"_s.arg(asked / 1000).arg(speed).arg(quality),
            receiver);
        const qint64 readBytes = bytesRead() - before;

        const auto &seen = receiver.pictures;
        QVERIFY(seen.size() > count && seen.first().isKey);
        const bool allPictures = speed < 4;
        // Not more than twelve a second are shown, of those that the index has.
        const int indexMs = std::max(groupMs, 1000);
        const qint64 stepMs =
            allPictures ? pictureMs : (speed * 1000 / 12 + indexMs - 1) / indexMs * indexMs;
        // But few key pictures bring others along, as many as at twice the speed, unless a player's
        // clock goes on better without.
        const bool hasOthers = speed == 4 || (speed == 8 && groupMs == 2000);
        const qint64 othersMs = hasOthers ? indexMs * 2 / speed : 0;
        qint64 shownFirst = 0;
        for (int i = 0; i < seen.size(); ++i) {
            const SeenPicture &picture = seen[i];
            const bool isOfOther =
                picture.momentMs >= begin + 20'000 && picture.momentMs < begin + 40'000;
            QCOMPARE(picture.isSub, quality < 2 && !isOfOther);
            QCOMPARE(picture.formats, 1 + (picture.momentMs >= begin + 20'000) - (second >= 20) +
                                          (picture.momentMs >= begin + 40'000));
            QCOMPARE(picture.isKey, (picture.momentMs - begin) % groupMs == 0);
            if (picture.stampMs == 0)
                shownFirst = picture.momentMs;
            else
                QVERIFY2(qAbs(picture.momentMs - asked - picture.stampMs * speed) < pictureMs,
                         picture.text());
            QCOMPARE(picture.laterMs, 0);
            if (i <= (allPictures ? 0 : 1))
                continue;
            const qint64 inGroupMs = (seen[i - 1].momentMs - begin) % indexMs;
            const qint64 nextMs = inGroupMs + pictureMs < othersMs ? pictureMs
                                  : hasOthers                      ? indexMs - inGroupMs
                                                                   : stepMs;
            QCOMPARE(picture.momentMs - seen[i - 1].momentMs, nextMs);
        }
        QVERIFY(shownFirst <= asked && shownFirst > asked - (allPictures ? pictureMs : groupMs));
        if (!allPictures)
            QVERIFY2(readBytes < 60'000 * seen.size() + 200'000, QByteArray::number(readBytes));
    }

    /// It doesn't wait for what comes after a gap.
    void endsWithTheRecord()
    {
        House house;
        fill(house, 2000);
        Receiver receiver;
        const auto started = std::chrono::steady_clock::now();
        QVERIFY(
            house.play("/flv/archive?startTime=%1&speed=2&q=0"_s.arg(begin / 1000 + 59), receiver));
        QCOMPARE(receiver.last.load(), begin + 60'000 - pictureMs);
        QVERIFY(std::chrono::steady_clock::now() - started < std::chrono::seconds(20));
    }

    /// Packet by packet, without the gaps.
    void exported()
    {
        House house;
        fill(house, 2000);
        Receiver receiver;
        QVERIFY(house.play(
            "/flv/archive?startTime=%1&endTime=%2&q=2"_s.arg(begin + 19'960).arg(begin + 102'000),
            receiver));
        qint64 expectedMs = begin + 18'000;
        qint64 stampMs = 0;
        for (const SeenPicture &picture : receiver.pictures) {
            QCOMPARE(picture.text(),
                     QByteArray::number(expectedMs) + " at " + QByteArray::number(stampMs));
            expectedMs += expectedMs == begin + 59'960 ? 40'040 : pictureMs;
            stampMs += pictureMs;
        }
        QCOMPARE(expectedMs, begin + 102'000);
    }

    /// Wrong passwords that its peer gives meanwhile don't end a stream, nor does it make up for
    /// them; another password of the server does end it.
    void exportedByPassword()
    {
        House house;
        fill(house, 2000);
        Receiver receiver([&](const SeenPicture &one) {
            const qint64 ms = one.momentMs - begin;
            if (ms == 1000 || ms == 2000)
                house.ask("/streams/info?sessionId=%1"_s.arg(ms));
            house.gate.server.password = ms < 4000 ? "" : "other";
            ++house.changes;
            return false;
        });
        const QString film = "/flv/archive?startTime=%1&endTime=%2&q=2"_s.arg(begin);
        QVERIFY(!house.play(film.arg(begin + 10'000), receiver));
        QVERIFY(receiver.isBroken);
        QCOMPARE(receiver.last.load(), begin + 4000);
        house.gate.server.password.clear();
        QCOMPARE(house.ask(film.arg(begin + 1000)).status, 403);
    }

    /// A film that lacks something is not told as whole.
    void lacks_data()
    {
        rows<QByteArray, int, int, bool>({"lacking", "endMs", "untilMs", "isWhole"},
                                         {{"nothing", "", 60'000, 60'000, true},
                                          {"a byte at the end", "byte", 60'000, 39'960, false},
                                          {"a picture", "picture", 60'000, 31'000, false},
                                          {"a file", "file", 60'000, 20'000, false},
                                          {"a file behind it", "file", 20'000, 20'000, true},
                                          {"what was known", "known", 60'000, 20'000, false},
                                          {"a later record", "later", 105'000, 60'000, false},
                                          {"one behind it", "later", 100'000, 60'000, true},
                                          {"its record", "known later", 60'000, 10'040, false}});
    }

    void lacks()
    {
        const auto [lacking, endMs, untilMs, isWhole] = row<QByteArray, int, int, bool>();
        House house;
        fill(house, 1000);
        const SegmentName name{begin + 20'000, 20'000};
        const auto path = QString::fromStdString(house.folder.pathOf(House::stream(false), name));
        QVERIFY(lacking != "byte" || QFile::resize(path, QFileInfo(path).size() - 1));
        QVERIFY(lacking != "file" || QFile::remove(path));
        if (lacking == "picture")
            damage(path, begin + 31'000);
        Receiver film([&, what = lacking](const SeenPicture &one) {
            if (one.momentMs != begin + 10'000)
                return false;
            if (what.contains("known"))
                house.catalogue.remove(House::stream(false), name);
            for (const bool isSub : {false, true}) {
                if (what.contains("later"))
                    house.catalogue.remove(House::stream(isSub), {begin + 100'000, 10'000});
                for (const int second : {0, 40})
                    if (what.contains("known later"))
                        house.catalogue.remove(House::stream(isSub),
                                               {begin + second * 1000, 20'000});
            }
            ++house.changes;
            return false;
        });
        const QString span = "/flv/archive?startTime=%1&endTime=%2&q=2"_s.arg(begin);
        QCOMPARE(house.play(span.arg(begin + endMs), film), isWhole);
        QCOMPARE(film.isBroken, !isWhole);
        QCOMPARE(film.last.load(), begin + untilMs - pictureMs);
    }

    /// Who watches goes on with the next key picture that can be read, unless that is far.
    void goesOnBehindDamage_data()
    {
        rows<int, int, int, int>({"speed", "second", "lostMs", "nextMs"},
                                 {{"a picture", 2, 30, 31'000, 32'000},
                                  {"a key picture of the index", 8, 30, 31'000, 32'000},
                                  {"the last byte", 2, 39, 39'960, 40'000},
                                  {"a half", 2, 29, 30'000, 0}});
    }

    void goesOnBehindDamage()
    {
        const auto [speed, second, lostMs, nextMs] = row<int, int, int, int>();
        House house;
        fill(house, 1000);
        const auto path = QString::fromStdString(
            house.folder.pathOf(House::stream(false), {begin + 20'000, 20'000}));
        if (lostMs == 31'000)
            damage(path, begin + lostMs);
        else
            QVERIFY(QFile::resize(path, placeOf(path, begin + lostMs)));
        Receiver player([&, until = nextMs](const SeenPicture &one) {
            return until > 0 && one.momentMs >= begin + until;
        });
        const QString asked = "/flv/archive?startTime=%1&speed=%2&q=2"_s;
        QCOMPARE(house.play(asked.arg(begin / 1000 + second).arg(speed), player), nextMs == 0);
        const auto &seen = player.pictures;
        const auto after =
            std::find_if(seen.begin(), seen.end(), [&, from = lostMs](const auto &one) {
                return one.momentMs >= begin + from;
            });
        QVERIFY(after > seen.begin() && (after == seen.end()) == (nextMs == 0));
        QVERIFY(nextMs == 0 || after->momentMs == begin + nextMs);
    }

    /// As when the clock was set back: the next picture's time is far. Once the camera has gone,
    /// and once the receiver, who is one of little patience then.
    void endsWhileItWaits()
    {
        for (const bool online : {false, true}) {
            House house;
            const qint64 startMs = QDateTime::currentSecsSinceEpoch() * 1000 - 1000;
            house.record(false, startMs, pictureMs, 1000);
            house.append(House::picture(false, startMs + 100'000, true));
            const auto change = [&](const SeenPicture &) {
                house.gate.server.online = online;
                return false;
            };
            Receiver receiver(change);
            receiver.patience.setRemainingTime(online ? 1000 : 60'000);
            QCOMPARE(
                house.play("/flv/archive?startTime=%1&speed=1"_s.arg(startMs / 1000), receiver),
                !online);
            QCOMPARE(receiver.pictures.size(), 1);
        }
    }

    /// A camera that hung, and its next connection, which others than players need to know of: what
    /// is told ends where pictures do, and nothing ends early.
    void hung()
    {
        House house;
        const qint64 startMs = QDateTime::currentSecsSinceEpoch() * 1000 - 20'000;
        house.record(false, startMs, 10'000, 1000);
        const auto records = [&] {
            const auto reply =
                house.ask("/archive/list?startTime=%1&endTime=%2"_s.arg(startMs / 1000)
                              .arg(startMs / 1000 + 20));
            return QString::fromStdString(reply.body);
        };
        const QString told = R"([{"duration":12000,"startTime":%1}])"_s.arg(startMs);
        QCOMPARE(records(), told);
        Receiver receiver;
        auto film = std::async(std::launch::async, [&] {
            return house.play(
                "/flv/archive?startTime=%1&endTime=%2&q=2"_s.arg(startMs).arg(startMs + 17'000),
                receiver);
        });
        QTRY_COMPARE(receiver.last.load(), startMs + 10'000 - pictureMs);
        auto hanging = std::move(house.segment);
        house.record(false, startMs + 15'000, 2000, 1000);
        house.finish(false);
        house.segment = std::move(hanging);
        house.finish(false);
        QVERIFY(film.get());
        QCOMPARE(receiver.last.load(), startMs + 17'000 - pictureMs);
        QCOMPARE(receiver.pictures.size(), 12'000 / pictureMs);
        QCOMPARE(
            records(),
            R"([{"duration":10000,"startTime":%1},{"duration":2000,"startTime":%2}])"_s.arg(startMs)
                .arg(startMs + 15'000));
    }

    /// Those that others are made of come before them.
    void picturesOutOfOrder()
    {
        House house;
        house.record(false, begin, pictureMs, 1000);
        for (int group = 0; group < 20; ++group) {
            for (const int place : {4, 2, 1, 3})
                house.append(House::picture(false, begin + (group * 4 + place) * pictureMs, false));
        }
        house.finish(false);
        Receiver receiver;
        QVERIFY(house.play("/flv/archive?startTime=%1&speed=1&q=2"_s.arg(begin / 1000), receiver));
        QCOMPARE(receiver.pictures.size(), 81);
        qint64 lastMs = 0;
        for (int i = 0; i < receiver.pictures.size(); ++i) {
            const SeenPicture &picture = receiver.pictures[i];
            QVERIFY2(picture.stampMs >= lastMs, picture.text());
            lastMs = picture.stampMs;
            // By the end of the first group it is known how far they are out of order.
            const qint64 isShownMs = picture.stampMs + picture.laterMs;
            QCOMPARE(isShownMs, i > 0 && i < 5 ? 4 * pictureMs : picture.momentMs - begin);
        }
        // All of the span, and those before them that they may be made of.
        for (const auto &[pictures, sent] : {QPair(37, 37), {38, 40}, {39, 40}, {40, 41}}) {
            Receiver film;
            QVERIFY(house.play("/flv/archive?startTime=%1&endTime=%2&q=2"_s.arg(begin).arg(
                                   begin + pictures * pictureMs),
                               film));
            const qint64 endMs = begin + pictures * pictureMs;
            QCOMPARE(std::count_if(film.pictures.begin(), film.pictures.end(),
                                   [=](const SeenPicture &one) { return one.momentMs < endMs; }),
                     pictures);
            QCOMPARE(film.pictures.size(), sent);
        }
    }

    /// A segment that grows, and the one that follows it, while another stream is farther.
    void followed_data() { rows<int>({"speed"}, {{"in its time", 1}, {"fast", 8}}); }

    void followed()
    {
        const auto [speed] = row<int>();
        House house;
        const qint64 nowS = QDateTime::currentSecsSinceEpoch();
        const qint64 startMs = (nowS - 8) * 1000;
        house.record(false, startMs, 7800, 1000);
        house.record(true, startMs, 7000, 1000);
        QVERIFY(house.archive.records({}, startMs, startMs)[0].endMs <=
                QDateTime::currentMSecsSinceEpoch());
        const qint64 endMs = startMs + 10'000;
        const qint64 keyMs = speed == 1 ? pictureMs : 1000; ///< from one to the next
        Receiver receiver([=](const SeenPicture &one) { return one.momentMs >= endMs - keyMs; });
        const auto player = std::async(std::launch::async, [&, playSpeed = speed] {
            house.play("/flv/archive?startTime=%1&speed=%2&q=0"_s.arg(nowS - 4).arg(playSpeed),
                       receiver);
        });
        QTRY_COMPARE_WITH_TIMEOUT(receiver.last.load(), startMs + 7000 - keyMs, 30'000);
        // The catalogue is told of it later.
        for (qint64 ms = 7000; ms < 8000; ms += pictureMs)
            house.segment->append(House::picture(true, startMs + ms, ms % 1000 == 0));
        QTRY_COMPARE_WITH_TIMEOUT(receiver.last.load(), startMs + 8000 - keyMs, 30'000);
        house.finish(true);
        house.record(true, startMs + 8000, 2000, 1000);
        player.wait();
        for (int i = 1; i < receiver.pictures.size(); ++i)
            QCOMPARE(receiver.pictures[i].momentMs - receiver.pictures[i - 1].momentMs, keyMs);
        QCOMPARE(receiver.last.load(), endMs - keyMs);
        QCOMPARE(receiver.pictures.last().formats, 1);
        QVERIFY(receiver.pictures.last().isSub);
    }

    /// The clock was set back: what was seen already isn't seen again.
    void overlapping()
    {
        House house;
        for (const int ms : {0, 8500}) {
            house.record(false, begin + ms, 10'000, 1000);
            house.finish(false);
        }
        Receiver receiver([this](const SeenPicture &one) { return one.momentMs > begin + 11'000; });
        house.play("/flv/archive?startTime=%1&speed=2&q=2"_s.arg(begin / 1000 + 8), receiver);
        const auto &seen = receiver.pictures;
        const auto jump = std::adjacent_find(seen.begin(), seen.end(),
                                             [](const SeenPicture &one, const SeenPicture &next) {
                                                 return next.momentMs != one.momentMs + pictureMs;
                                             });
        QVERIFY(jump != seen.end() && (jump + 1)->isKey);
        QCOMPARE(jump->momentMs, begin + 10'000 - pictureMs);
        QCOMPARE((jump + 1)->momentMs, begin + 10'500);
        QCOMPARE(seen.last().momentMs, begin + 11'020);

        const qint64 later = QDateTime::currentMSecsSinceEpoch() + 60'000;
        house.record(false, later, 1000, 1000);
        QCOMPARE(house.archive.records({}, later, later)[0].endMs, later + 1000);
    }
};

QTEST_GUILESS_MAIN(ServerPlayingTest)
#include "ServerPlayingTest.moc"
