// SPDX-License-Identifier: MIT
#include "tests/server/Media.h"

#include <mutex>

#include "server/Capture.h"

using namespace ZorvaneServer;

namespace {

/// A capture, and what came of it.
class Watched
{
public:
    explicit Watched(const CameraSource &source)
        : capture("A", source, [this](PacketPtr packet) { take(std::move(packet)); })
    {
        capture.start();
    }

    std::vector<PacketPtr> packets(Track track) const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        std::vector<PacketPtr> found;
        std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                     [track](const PacketPtr &packet) { return packet->track == track; });
        return found;
    }

private:
    void take(PacketPtr packet)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (packet)
            all.push_back(std::move(packet));
    }

    mutable std::mutex mutex;
    std::vector<PacketPtr> all;
    Capture capture;
};

} // namespace

/// What comes over RTSP from somebody else's server is what is in its clips.
class ServerRtspTest : public QObject
{
    Q_OBJECT

    static constexpr int clipPictures = 75;

    QTemporaryDir folder;
    QProcess cameras;
    QByteArrayList addresses;
    // All at the same time, since they take theirs.
    std::map<QString, std::unique_ptr<Watched>> received;
    std::map<QString, std::unique_ptr<Watched>> played;

    QString clip(const QString &name) const { return folder.filePath(name + ".mov"); }

    CameraSource camera(const QString &name, bool overUdp, bool withSound) const
    {
        static const QStringList names = {"aac", "alaw", "mulaw", "mute", "reordered"};
        const QByteArray address = addresses.value(names.indexOf(name));
        return {QByteArray(address).replace("//", "//admin:opensesame@").toStdString(), overUdp,
                withSound};
    }

private slots:
    void initTestCase()
    {
        const QStringList common = {"-c:v", "libx264", "-preset", "superfast", "-g", "25"};
        const QStringList g711 = {"-bf", "0", "-ar", "8000", "-c:a"};
        const std::map<QString, QStringList> codecs = {
            {"aac", {"-bf", "0", "-c:a", "aac"}},
            {"alaw", g711 + QStringList{"pcm_alaw"}},
            {"mulaw", g711 + QStringList{"pcm_mulaw"}},
            {"mute", {"-bf", "0", "-an"}},
            {"reordered", {"-bf", "3", "-b-pyramid", "normal", "-an"}}};
        QStringList arguments = {"--port", "0", "--login", "admin:opensesame"};
        for (const auto &[name, codec] : codecs) {
            QCOMPARE(makeClip(clip(name), common + codec), QByteArray());
            arguments << clip(name);
        }
        cameras.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        cameras.start(ZORVANE_SOURCE_DIR "/tools/rtsp-cameras", arguments);
        const auto areThere = [&] {
            while (cameras.canReadLine())
                addresses << cameras.readLine().trimmed();
            return addresses.size() == int(codecs.size());
        };
        QTRY_VERIFY_WITH_TIMEOUT(areThere(), 60'000);
        for (const auto &[name, codec] : codecs)
            played[name] = std::make_unique<Watched>(
                CameraSource{"file:" + clip(name).toStdString(), false, true});
    }

    void cleanupTestCase()
    {
        received.clear();
        played.clear();
        cameras.kill();
        cameras.waitForFinished();
    }

    void arrivesWhole_data()
    {
        rows<QString, bool, bool, QString>(
            {"clip", "overUdp", "withSound", "sound"},
            {{"AAC", "aac", false, true, "1 16000"},
             {"UDP", "aac", true, true, "1 16000"},
             {"sound not wanted", "aac", false, false, "0 0"},
             {"A-law", "alaw", false, true, "3 8000"},
             {"mu-law", "mulaw", false, true, "4 8000"},
             {"no sound", "mute", false, true, "0 0"},
             {"pictures out of order", "reordered", false, true, "0 0"}});
    }

    /// Each picture once, in the order and with the moments of its clip; and its sound.
    void arrivesWhole()
    {
        const auto [name, overUdp, withSound, sound] = row<QString, bool, bool, QString>();
        const QString tag = QTest::currentDataTag();
        received[tag] = std::make_unique<Watched>(camera(name, overUdp, withSound));
        const Watched &seen = *received[tag];
        const Watched &made = *played[name];
        QTRY_VERIFY_WITH_TIMEOUT(made.packets(Track::Video).size() > clipPictures, 60'000);
        QTRY_VERIFY_WITH_TIMEOUT(seen.packets(Track::Video).size() > clipPictures, 60'000);
        const auto expected = made.packets(Track::Video);
        const auto pictures = seen.packets(Track::Video);
        const auto indexOf = [&](const PacketPtr &picture) {
            const auto last = expected.begin() + clipPictures;
            return std::find_if(expected.begin(), last,
                                [&](const PacketPtr &one) { return one->data == picture->data; }) -
                   expected.begin();
        };
        for (std::size_t i = 1; i < pictures.size(); ++i) {
            const auto before = std::size_t(indexOf(pictures[i - 1]));
            const auto index = std::size_t(indexOf(pictures[i]));
            QCOMPARE(index, (before + 1) % clipPictures);
            const auto step = pictures[i]->momentMs - pictures[i - 1]->momentMs;
            const auto wanted = expected[index]->momentMs - expected[before]->momentMs;
            QVERIFY2(index == 0 || qAbs(step - wanted) <= 5,
                     qPrintable("%1: %2, not %3"_s.arg(i).arg(step).arg(wanted)));
        }
        const StreamFormat &format = *pictures.front()->format;
        QCOMPARE("%1 %2"_s.arg(int(format.sound)).arg(format.soundRate), sound);
        const auto sounds = seen.packets(Track::Sound);
        QCOMPARE(sounds.empty(), sound == "0 0");
        if (sounds.empty())
            return;
        // Three seconds of pictures have three of sound.
        const auto lengthOf = [](const std::vector<PacketPtr> &packets) {
            return packets.back()->momentMs - packets.front()->momentMs;
        };
        QVERIFY(qAbs(lengthOf(sounds) - lengthOf(pictures)) < 300);
    }
};

QTEST_GUILESS_MAIN(ServerRtspTest)
#include "ServerRtspTest.moc"
