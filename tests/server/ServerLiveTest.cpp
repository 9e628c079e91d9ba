// SPDX-License-Identifier: MIT
#include "tests/server/House.h"
#include "tests/server/Media.h"

#include <future>

#include "server/Capture.h"
#include "server/HouseLive.h"
#include "service/HttpServer.h"

using namespace ZorvaneServer;
using namespace std::chrono_literals;

/// What comes from a camera, as it is sent on.
class ServerLiveTest : public QObject
{
    Q_OBJECT

    /// One whose bytes are counted.
    static PacketPtr packet(Track track, bool isKey, qint64 momentMs, std::size_t size)
    {
        MediaPacket made = aPicture(momentMs, isKey, size);
        made.track = track;
        return std::make_shared<MediaPacket>(made);
    }

private slots:
    /// "K" a key picture, "p" another one, "P" one of 3 MiB, "s" sound, "|" the connection's end,
    /// "z" four seconds, "b" the receiver begins, "r" it reads: which packet it gets.
    void places_data()
    {
        rows<QByteArray, QByteArray>(
            {"story", "got"},
            {{"nothing yet", "b r K r", "none - 1"},
             {"from the newest key picture on", "K p K s p b r r r r", "3 4 5 -"},
             {"as they come", "K b r r p r s p r r", "1 - 2 3 4"},
             {"slow, but not too slow", "K b r p K r r", "1 2 3"},
             {"too slow", "K b r p K z p r r", "1 3 4"},
             {"too slow, without a key picture", "K b r p z p r r", "1 2 3"},
             {"two groups are kept", "K b K r K r K K r", "1 2 5"},
             {"a group too large", "K P P P p b r r K r", "1 - 6"},
             {"within a group too large", "K b r r P P P P p r K r r", "1 - - 7 -"},
             {"no more comes of a connection", "K p b | r b r", "- none -"},
             {"the next connection", "K b r | r p K p r r", "1 - 3 4"},
             {"nor was seen of the last one", "K b p | K r r", "3 -"}});
    }

    void places()
    {
        const auto [story, expected] = row<QByteArray, QByteArray>();
        LiveRing ring;
        LiveRing::Place place;
        QMap<PacketPtr, int> numbers;
        QByteArrayList got;
        qint64 momentMs = 0;
        for (const QByteArray &word : story.split(' ')) {
            const char what = word[0];
            momentMs += what == 'z' ? 4000 : 0;
            if (what == '|')
                ring.put(nullptr);
            if (what == 'b' && !ring.begin(&place))
                got << "none";
            if (what == 'r') {
                const PacketPtr next = ring.take(&place, 0ms);
                got << (next ? QByteArray::number(numbers.value(next)) : "-");
            }
            if (!QByteArray("KpPs").contains(what))
                continue;
            const auto made = packet(what == 's' ? Track::Sound : Track::Video, what == 'K',
                                     momentMs += 40, what == 'P' ? 3 << 20 : 100);
            numbers[made] = numbers.size() + 1;
            ring.put(made);
        }
        QCOMPARE(got.join(' '), expected);
    }

    /// Whatever the camera sends.
    void ringIsBounded()
    {
        LiveRing ring;
        std::mt19937 random(5);
        std::deque<std::weak_ptr<const MediaPacket>> all;
        std::size_t most = 0;
        for (int i = 0; i < 3000; ++i) {
            const std::size_t size = random() % (i % 400 == 0 ? 9'000'000 : 200'000);
            auto made = packet(Track::Video, i == 0 || random() % 30 == 0, i * 40, size + 1);
            all.push_back(made);
            ring.put(std::move(made));
            std::size_t bytes = 0;
            int groups = 0;
            for (const auto &one : all) {
                const PacketPtr kept = one.lock();
                bytes += kept && kept != ring.newestKey() ? kept->data.size() : 0;
                groups += kept && kept->isKey;
            }
            QVERIFY(bytes <= LiveRing::mostBytes && groups <= LiveRing::mostGroups);
            most = std::max(most, bytes);
        }
        QVERIFY(most > LiveRing::mostBytes / 2);
    }

    /// From the picture that is the newest one, through a connection that ends, whose successor
    /// tells other times. Who doesn't read holds nobody up.
    void seen()
    {
        House house;
        LiveRing &ring = *house.rings.find(House::stream(false));
        const auto put = [&](qint64 momentMs, bool isKey, unsigned run) {
            MediaPacket one = House::picture(false, momentMs, isKey);
            one.run = run;
            ring.put(std::make_shared<MediaPacket>(one));
        };
        QVERIFY(!house.play("/flv/live?q=2", *std::make_unique<Receiver>()));
        for (int i = 0; i < 10; ++i)
            put(7000 + i * 40, i == 0, 1);
        std::promise<void> release;
        Receiver slow([go = release.get_future().share()](const SeenPicture &one) {
            go.wait();
            return one.momentMs == 7960;
        });
        Receiver receiver([](const SeenPicture &one) { return one.momentMs == 3960; });
        const auto play = [&house](Receiver *whose) {
            return std::async(std::launch::async,
                              [&house, whose] { house.play("/flv/live?q=0", *whose); });
        };
        const auto slowPlayer = play(&slow);
        const auto player = play(&receiver);
        QTRY_COMPARE(receiver.last.load(), 7360);
        QTRY_COMPARE(slow.last.load(), 7000);
        for (int i = 10; i < 25; ++i)
            put(7000 + i * 40, i == 20, 1);
        QTRY_COMPARE(receiver.last.load(), 7960);
        QElapsedTimer away;
        away.start();
        release.set_value();
        slowPlayer.wait();
        QTRY_VERIFY(away.elapsed() > 5);
        const qint64 awayMs = away.elapsed();
        ring.put(nullptr);
        for (int i = 0; i < 25; ++i)
            put(3000 + i * 40, i == 0, 2);
        player.wait();
        QCOMPARE(receiver.pictures.size(), 50);
        qint64 behind = 0; ///< what the second connection's stamps are later
        for (int i = 0; i < 50; ++i) {
            const SeenPicture &one = receiver.pictures[i];
            QCOMPARE(one.momentMs, i < 25 ? 7000 + i * 40 : 3000 + (i - 25) * 40);
            if (i == 25)
                behind = one.stampMs;
            QCOMPARE(one.stampMs, i < 25 ? std::max(0, (i - 9) * 40) : behind + (i - 25) * 40);
        }
        QVERIFY(behind >= 15 * 40 + awayMs);
    }

    /// Whoever comes later hears what the others hear, not a sound that begins anew; and each hears
    /// it with the pictures, also after the camera's time has jumped.
    void soundIsMadeOnce()
    {
        House house;
        LiveRing &ring = *house.rings.find(House::stream(false));
        auto format = *aFormat();
        format.sound = SoundCodec::MuLaw;
        format.soundRate = 8000;
        const auto shared = std::make_shared<const StreamFormat>(format);
        std::mt19937 random(5);
        const auto put = [&](unsigned run, qint64 fromMs, qint64 lengthMs) {
            for (qint64 ms = 0; ms < lengthMs; ms += 20) {
                Bytes data(160);
                std::generate(data.begin(), data.end(), random);
                const bool isKey = ms == 0;
                const qint64 momentMs = fromMs + ms;
                if (ms % 40 == 0)
                    ring.put(std::make_shared<MediaPacket>(
                        MediaPacket{Track::Video, isKey, run, momentMs, shared, Bytes(9)}));
                ring.put(std::make_shared<MediaPacket>(
                    MediaPacket{Track::Sound, true, run, momentMs, shared, std::move(data)}));
            }
        };
        qint64 worstMs = 0;
        const auto heardBy = [&worstMs](HouseLive *one) {
            QVector<Bytes> heard;
            qint64 pictureMs = 0;
            ZorvaneService::MediaPacket got;
            while (one->read(&got) == HouseLive::Outcome::Packet) {
                if (got.isPicture)
                    pictureMs = got.momentMs;
                else
                    heard << got.data;
                worstMs = std::max(worstMs, got.isPicture ? 0 : qAbs(got.momentMs - pictureMs));
            }
            return heard;
        };
        HouseLive first(ring);
        HouseLive later(ring);
        put(1, 10'000, 20);
        QVERIFY(first.begin());
        put(1, 10'040, 2000);
        QVERIFY(heardBy(&first).size() > 10);
        put(2, 3'600'000, 1000);
        QVERIFY(later.begin());
        put(2, 3'601'000, 1000);
        const auto all = heardBy(&first);
        const auto some = heardBy(&later);
        QVERIFY(some.size() > 10 && all.size() >= some.size());
        QVERIFY2(worstMs < 500, qPrintable(QString::number(worstMs)));
        QCOMPARE(all.mid(all.size() - some.size()), some);
    }

    /// A flash and a tone begin at the same time, and still do when others' programs play them.
    void soundStaysWithPictures_data()
    {
        rows<QString, QString>(
            {"sound", "address"},
            {{"AAC", "-c:a aac -ac 2 -ar 44100", "live?q=0"},
             {"AAC, recorded", "-c:a aac -ar 16000", "archive?q=2&speed=1&startTime="},
             {"G.711, European", "-c:a pcm_alaw -ar 8000", "live?q=2"},
             {"G.711, recorded", "-c:a pcm_mulaw -ar 8000", "archive?q=1&speed=1&startTime="}});
    }

    void soundStaysWithPictures()
    {
        const auto [sound, address] = row<QString, QString>();
        // What serves connections is never released: they may still be served.
        static auto &houses = *new QVector<House *>;
        auto *house = new House;
        houses << house;
        const QString clip = house->place.filePath("clip.mkv");
        const QString made = "-v error -f lavfi -i color=black:s=640x360:r=25,"
                             "drawbox=c=white:t=fill:enable='between(mod(t,1),0.4,0.59)' "
                             "-f lavfi -i aevalsrc='sin(6000*t)*between(mod(t,1),0.4,0.6)' "
                             "-t 4 -c:v libx264 -preset superfast -bf 0 -g 10 "_s +
                             sound;
        QCOMPARE(outputOf("ffmpeg", made.split(' ') << clip), QByteArray());
        Capture camera("", CameraSource{"file:" + clip.toStdString()}, [&](PacketPtr packet) {
            house->rings.find(House::stream(false))->put(packet);
            if (packet && !house->segment)
                house->segment =
                    house->folder.create(House::stream(false), packet->format, packet->momentMs);
            if (packet)
                house->append(*packet);
        });
        camera.start();
        LiveRing &ring = *house->rings.find(House::stream(false));
        QTRY_VERIFY(ring.newestKey());
        for (const auto &[quality, width] : {std::pair(0, 320), std::pair(2, 640)}) {
            const auto reply = house->ask("/preview/live?q=%1"_s.arg(quality));
            QCOMPARE(QImage::fromData(QByteArray::fromStdString(reply.body), "jpg").size(),
                     QSize(width, width * 9 / 16));
        }

        auto *server =
            new ZorvaneService::HttpServer(ZorvaneService::HttpRequest::lanListener,
                                           [house](const ZorvaneService::HttpRequest &request) {
                                               return house->service.lan.handle(request);
                                           });
        const int port = server->bind(0);
        server->start();
        const qint64 fromMs = (ring.newestKey()->momentMs + 999) / 1000 * 1000;
        QTRY_VERIFY(ring.newestKey()->momentMs > fromMs + 500);
        const QString path =
            address + (address.endsWith('=') ? QString::number(fromMs / 1000) : QString());
        const QByteArray said = outputOf(
            "ffmpeg",
            {"-i", "http://127.0.0.1:%1/flv/"_s.arg(port) + path + "&server=1&camera=0&sessionId=",
             "-t", "3.2", "-vf", "blackdetect=d=0.1:pix_th=0.5", "-af",
             "silencedetect=n=-20dB:d=0.1", "-f", "null", "-"});
        camera.stop();
        QVERIFY2(said.contains("Audio: mp3") && said.contains("mono"), said);
        const auto times = [&](const char *pattern) {
            QVector<double> found;
            auto all = QRegularExpression(pattern).globalMatch(QString::fromUtf8(said));
            while (all.hasNext())
                found << all.next().captured(1).toDouble();
            return found;
        };
        const auto flashes = times("black_end:([0-9.]+)");
        const auto tones = times("silence_end: ([0-9.]+)");
        QVERIFY2(flashes.size() >= 2, said);
        for (const double flash : flashes) {
            QVERIFY2(flash < 0.3 || flash > 2.9 ||
                         std::any_of(tones.begin(), tones.end(),
                                     [=](double tone) { return qAbs(tone - flash) < 0.06; }),
                     said);
        }
    }
};

QTEST_GUILESS_MAIN(ServerLiveTest)
#include "ServerLiveTest.moc"
