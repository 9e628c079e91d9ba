// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/companion/Clips.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

Q_DECLARE_METATYPE(ZorvaneClient::Tests::Clips::Codec)

namespace {

constexpr int deadline = 30'000;
constexpr int clipLength = 480;

} // namespace

/// What stands in the frame file, and when it is announced.
class CompanionPicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void pixels_data()
    {
        using Clips::Codec;
        const auto format = [](const char *name) {
            return QStringList{"-pix_fmt"_s, QString::fromLatin1(name)};
        };
        QTest::addColumn<QSize>("clipSize");
        QTest::addColumn<Codec>("codec");
        QTest::addColumn<QStringList>("more");
        QTest::addColumn<QSize>("shownSize");
        const auto row = [](const char *name, QSize size, Codec codec, const QStringList &more = {},
                            QSize shown = QSize()) {
            QTest::newRow(name) << size << codec << more << (shown.isEmpty() ? size : shown);
        };
        row("ordinary", QSize(320, 180), Codec::H264);
        row("odd both", QSize(159, 97), Codec::Mpeg4);
        row("all colours of a row", QSize(320, 180), Codec::H264, format("yuv422p"));
        row("full range", QSize(320, 180), Codec::H264, format("yuvj420p"));
        row("too large", QSize(3840, 2160), Codec::H264, {}, QSize(2364, 1330));
        row("too large with ten bits", QSize(2560, 1440), Codec::H264, format("yuv420p10le"),
            QSize(2364, 1330));
    }

    void pixels()
    {
        QFETCH(QSize, clipSize);
        QFETCH(Clips::Codec, codec);
        QFETCH(QStringList, more);
        QFETCH(QSize, shownSize);
        StreamScript script;
        script.clip = Clips::quarters(clipSize, clipLength, codec, more);
        script.ending = StreamScript::Ending::Stall;
        QVERIFY(!script.clip.isEmpty());
        StreamServer server;
        QVERIFY(server.start(script));

        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/archive")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() >= 2, deadline);
        QCOMPARE(player.size(), shownSize);
        player.send("pause");
        QTRY_COMPARE_WITH_TIMEOUT(Clips::faultInQuarters(player.picture()), QString(), deadline);

        const int used = 4 * shownSize.width() * shownSize.height();
        const QByteArray file = player.frameFile();
        QCOMPARE(file.size(), PlayerProcess::frameFileBytes);
        QCOMPARE(file.mid(used),
                 QByteArray(PlayerProcess::frameFileBytes - used, PlayerProcess::untouched));
    }

    void sizeChangesInMidStream()
    {
        StreamScript script;
        script.clip = Clips::quarters(QSize(320, 180), 400)
                          .then(Clips::quarters(QSize(640, 360), 400))
                          .then(Clips::quarters(QSize(176, 144), 400));
        script.ending = StreamScript::Ending::Stall;
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/archive")));
        QTRY_COMPARE_WITH_TIMEOUT(player.size(), QSize(176, 144), deadline);
        QTRY_COMPARE_WITH_TIMEOUT(Clips::faultInQuarters(player.picture()), QString(), deadline);

        QList<QByteArray> sizes;
        bool frameSinceSize = true;
        for (const PlayerLine &line : player.lines()) {
            if (line.text.startsWith("size ")) {
                QVERIFY2(frameSinceSize, "two sizes and no frame between");
                sizes.append(line.text);
                frameSinceSize = false;
            } else if (line.text == "frame") {
                QVERIFY2(!sizes.isEmpty(), "frame before the first size");
                frameSinceSize = true;
            }
        }
        const QList<QByteArray> expected = {"size 320 180", "size 640 360", "size 176 144"};
        QCOMPARE(sizes, expected);
    }

    /// Of a stream that stops after its first key frame that picture is shown.
    void soundDoesNotHoldUpThePicture()
    {
        StreamScript script;
        script.clip = Clips::withTone(400, "aac"_s);
        script.stopAt = 45; // the encoders put the first picture at 26 ms or before
        script.ending = StreamScript::Ending::Stall;
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_COMPARE_WITH_TIMEOUT(player.frames(), 1, 8000);
        QCOMPARE(Clips::faultInQuarters(player.picture()), QString());
    }
};

QTEST_GUILESS_MAIN(CompanionPicturesTest)
#include "CompanionPicturesTest.moc"
