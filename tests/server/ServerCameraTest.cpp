// SPDX-License-Identifier: MIT
#include "tests/server/Media.h"

#include <mutex>

#include "server/Capture.h"
#include "server/H264.h"

using namespace ZorvaneServer;

namespace {

/// A camera on loopback: each connection plays a clip in its time and then does what its row
/// says.
class ScriptedCamera : public QTcpServer
{
    Q_OBJECT

public:
    struct Turn {
        QByteArray clip;
        bool hangs;
    };

    explicit ScriptedCamera(std::vector<Turn> turnsOfConnections)
        : turns(std::move(turnsOfConnections))
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, &ScriptedCamera::serve);
    }

    int connections = 0;

private:
    void serve()
    {
        QTcpSocket *socket = nextPendingConnection();
        const Turn turn = turns.at(std::min<std::size_t>(connections++, turns.size() - 1));
        socket->write("HTTP/1.0 200 OK\r\nContent-Type: video/x-flv\r\n\r\n");
        auto *timer = new QTimer(socket);
        connect(timer, &QTimer::timeout, socket, [=, sent = 0, since = QElapsedTimer()]() mutable {
            if (!since.isValid())
                since.start();
            constexpr int clipMs = 3000;
            const int due = int(qMin<qint64>(since.elapsed(), clipMs) * turn.clip.size() / clipMs);
            socket->write(turn.clip.mid(sent, due - sent));
            sent = due;
            if (sent == turn.clip.size() && !turn.hangs)
                socket->disconnectFromHost();
        });
        timer->start(20);
    }

    const std::vector<Turn> turns;
};

} // namespace

/// What comes of cameras that hang, go and come back as others.
class ServerCameraTest : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;

    QByteArray clip(const QString &name, const QStringList &codec)
    {
        const QString path = folder.filePath(name);
        const QByteArray failure = makeClip(path, codec);
        QFile file(path);
        return failure.isEmpty() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    /// One that hangs is left, one that has gone is looked for again, and what comes back is
    /// recorded as what it is.
    void comesBack()
    {
        const QStringList common = {"-c:v", "libx264",   "-g",
                                    "10",   "-flvflags", "no_duration_filesize"};
        const QByteArray large = clip("a.flv", common + QStringList{"-c:a", "aac"});
        const QByteArray small = clip("b.flv", common + QStringList{"-s", "160x90", "-an"});
        QVERIFY(!large.isEmpty() && !small.isEmpty());
        ScriptedCamera camera({{large, true}, {small, false}, {large, true}});

        std::mutex mutex;
        std::vector<PacketPtr> packets;
        Capture capture("A",
                        {"http://127.0.0.1:%1/live.flv"_s.arg(camera.serverPort()).toStdString()},
                        [&](PacketPtr packet) {
                            const std::lock_guard<std::mutex> lock(mutex);
                            packets.push_back(std::move(packet));
                        });
        const auto ends = [&] {
            const std::lock_guard<std::mutex> lock(mutex);
            return std::count(packets.begin(), packets.end(), nullptr);
        };
        capture.start();
        QElapsedTimer time;
        time.start();
        QTRY_COMPARE_WITH_TIMEOUT(int(ends()), 1, 60'000);
        QVERIFY(time.elapsed() >= 10'000);
        QCOMPARE(camera.connections, 1);
        QTRY_COMPARE_WITH_TIMEOUT(int(ends()), 2, 60'000);
        QTRY_COMPARE_WITH_TIMEOUT(camera.connections, 3, 60'000);
        const auto comesNow = [&] {
            const std::lock_guard<std::mutex> lock(mutex);
            return packets.back() && packets.back()->format->width == 320;
        };
        QTRY_VERIFY_WITH_TIMEOUT(comesNow(), 60'000);
        capture.stop();
        QCOMPARE(int(ends()), 3);

        QStringList connections;
        PacketPtr before;
        for (const PacketPtr &packet : packets) {
            if (packet && !before) {
                QVERIFY(packet->isKeyPicture());
                connections << "%1 %2"_s.arg(packet->format->width)
                                   .arg(packet->format->sound == SoundCodec::Aac ? "aac" : "-");
            }
            if (packet && before && packet->track == before->track)
                QVERIFY(packet->run == before->run && packet->format == before->format);
            before = packet;
        }
        QCOMPARE(connections.join(", "), "320 aac, 160 -, 320 aac"_s);
    }

    /// One that changes its settings goes on as another from its next key picture, whether its
    /// stream says so before the pictures or among them.
    void changesItsMind_data()
    {
        rows<QString, int>({"form", "fileHead"}, {{"before", "flv", 13}, {"among", "ts", 0}});
    }

    void changesItsMind()
    {
        const auto [form, fileHead] = row<QString, int>();
        const QStringList common = {"-c:v", "libx264", "-an", "-g", "10", "-bf", "0"};
        const QByteArray large = clip("c." + form, common);
        const QByteArray small = clip("d." + form, common + QStringList{"-s", "160x90"});
        ScriptedCamera camera({{large + small.mid(fileHead), true}});
        std::mutex mutex;
        QStringList pictures;
        Capture capture("A", {"http://127.0.0.1:%1/live"_s.arg(camera.serverPort()).toStdString()},
                        [&](PacketPtr packet) {
                            const std::lock_guard<std::mutex> lock(mutex);
                            if (packet)
                                pictures << QString::number(packet->format->width) +
                                                (packet->isKey ? "K" : "");
                        });
        const auto count = [&](const QString &kind) {
            const std::lock_guard<std::mutex> lock(mutex);
            return int(pictures.count(kind));
        };
        capture.start();
        // Some may be lost where the two meet, and the last one ends with the next.
        constexpr int most = 70;
        QTRY_VERIFY_WITH_TIMEOUT(count("160") + count("160K") >= most, 60'000);
        capture.stop();
        const int before = count("320") + count("320K");
        QVERIFY(before >= most);
        QCOMPARE(pictures.indexOf("160K"), before);
        QCOMPARE(camera.connections, 1);
    }

    /// Units of a picture in either form, in hex; "AUD" and what the record says go.
    void pictures_data()
    {
        rows<QByteArray, int, QByteArray, bool>(
            {"packet", "lengthBytes", "picture", "isKey"},
            {{"start codes", "00000001 65aa 000001 41bb00", 0, "0000000265aa 0000000241bb", true},
             {"with what goes", "00000109f0 00000167010203 0000016801 00000141cc", 0,
              "0000000241cc", false},
             {"a 1 before a start code", "00000001 65aa01 000001 41", 0,
              "0000000365aa01 0000000141", true},
             {"lengths of two", "0002 65aa 0001 41", 2, "0000000265aa 0000000141", true},
             {"a length too long", "00000009 65aa", 4, "0000000265aa", true},
             {"nothing", "", 0, "", false},
             {"no unit", "ffffffff", 0, "", false}});
    }

    void pictures()
    {
        const auto [packet, lengthBytes, picture, isKey] = row<QByteArray, int, QByteArray, bool>();
        const QByteArray bytes = QByteArray::fromHex(packet);
        const auto *data = reinterpret_cast<const std::uint8_t *>(bytes.constData());
        const auto size = std::size_t(bytes.size());
        const H264::Units units =
            lengthBytes == 0
                ? ZorvaneService::unitsAfterStartCodes(data, size)
                : ZorvaneService::unitsAfterLengths(data, size, std::size_t(lengthBytes));
        const Bytes made = H264::pictureOf(units);
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(made.data()), int(made.size())),
                 QByteArray::fromHex(picture));
        QCOMPARE(H264::isKey(units), isKey);
    }

    /// Parameter sets survive the way into a record and back; only new ones are a change.
    void parameterSets()
    {
        const QByteArray stream = QByteArray::fromHex("00000001 67640028ac 00000168ee3c80");
        const auto *data = reinterpret_cast<const std::uint8_t *>(stream.constData());
        H264::ParameterSets sets = H264::ParameterSets::of(data, std::size_t(stream.size()));
        QVERIFY(sets.isComplete());
        const Bytes record = sets.record();
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(record.data()), int(record.size())),
                 QByteArray::fromHex("01640028ffe1 0005 67640028ac 01 0004 68ee3c80"));
        QCOMPARE(H264::lengthBytesOf(record.data(), record.size()), std::size_t(4));
        const auto again = H264::ParameterSets::of(record.data(), record.size());
        QVERIFY(again.withStartCodes() == sets.withStartCodes());
        QVERIFY(!sets.take(ZorvaneService::unitsAfterStartCodes(data, std::size_t(stream.size()))));
        const Bytes other = {0, 0, 1, 0x68, 1};
        QVERIFY(sets.take(ZorvaneService::unitsAfterStartCodes(other.data(), other.size())));
        // However it is cut off, nothing is read that isn't there.
        for (std::size_t size = 0; size < record.size(); ++size) {
            const Bytes part(record.begin(), record.begin() + long(size));
            QVERIFY(!H264::ParameterSets::of(part.data(), part.size()).isComplete());
        }
    }
};

QTEST_GUILESS_MAIN(ServerCameraTest)
#include "ServerCameraTest.moc"
