// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/companion/Clips.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

namespace {

constexpr int deadline = 20'000;

} // namespace

/// Arguments and frame file: what is refused, and what is touched.
class CompanionStartTest : public QObject
{
    Q_OBJECT

private slots:
    void wrongArguments_data()
    {
        using List = QList<QByteArray>;
        const QByteArray url = "http://127.0.0.1:1/flv/live";
        const QByteArray proxy = ":http-proxy=http://h:1/";
        rows<QList<QByteArray>>(
            {"arguments"},
            {
                {"no frame file", List{url}},
                {"no scheme", List{"127.0.0.1/flv", "FRAME"}},
                {"way out for name", List{url, "../FRAME"}},
                {"unknown third", List{url, "FRAME", ":http-proxi=http://h:1/"}},
                {"proxy without scheme", List{url, "FRAME", ":http-proxy=h:1/"}},
                {"proxy port too big", List{url, "FRAME", ":http-proxy=http://h:65536/"}},
                {"too many", List{url, "FRAME", proxy, ":http-proxy-pwd=a", "b"}},
            });
    }

    void wrongArguments()
    {
        const auto [arguments] = row<QList<QByteArray>>();
        const QString path = QDir::tempPath() + "/FRAME"_s;
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.write(QByteArray(PlayerProcess::frameFileBytes, PlayerProcess::untouched));
        file.close();

        PlayerProcess player;
        QVERIFY(player.startWithArguments(arguments));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 2);
        QVERIFY(player.errorOutput().startsWith("Usage: vlc-stream "));
        QCOMPARE(player.lines().size(), 0);

        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(),
                 QByteArray(PlayerProcess::frameFileBytes, PlayerProcess::untouched));
        QFile::remove(path);
    }

    void unusableFrameFile_data()
    {
        rows<int>({"bytes"}, {
                                 {"missing", -1},
                                 {"long", PlayerProcess::frameFileBytes + 1},
                             });
    }

    /// The tile hears of it, and the file is neither made nor resized.
    void unusableFrameFile()
    {
        const auto [bytes] = row<int>();
        const QString path = QDir::tempPath() + "/zorvane-player-unusable"_s;
        QFile::remove(path);
        if (bytes >= 0) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.resize(bytes));
        }
        PlayerProcess player;
        QVERIFY(
            player.startWithArguments({"http://127.0.0.1:1/flv/live", "zorvane-player-unusable"}));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 1);
        QCOMPARE(player.states(), QList<int>{7});
        QVERIFY(player.errorOutput().contains(path.toUtf8()));
        QCOMPARE(QFile::exists(path), bytes >= 0);
        QCOMPARE(QFile(path).size(), qint64(qMax(bytes, 0)));
    }

    /// The client escapes nothing: what would break the request line is escaped here.
    void unsafeBytesOfUrl()
    {
        StreamScript gone;
        gone.status = 404;
        StreamServer server;
        QVERIFY(server.start(gone));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live?server=a b\r\nX: y&camera=\xD0\x9F&x=%41+")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(server.heads().size(), 1);
        QCOMPARE(
            server.heads().first().split('\r').first(),
            QByteArray("GET /flv/live?server=a%20b%0D%0AX:%20y&camera=%D0%9F&x=%41+ HTTP/1.1"));
    }
};

QTEST_GUILESS_MAIN(CompanionStartTest)
#include "CompanionStartTest.moc"
