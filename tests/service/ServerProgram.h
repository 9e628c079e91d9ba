// SPDX-License-Identifier: MIT
#pragma once

#include "tests/server/House.h"
#include "tests/server/Media.h"
#include "tests/service/Program.h"

namespace ZorvaneClient::Tests {

/// The video server, with one camera made of a clip. Nothing that it sends is recorded, since its
/// archive has no marker: what is in there is what a test asked for.
class ServerProgram : public Program
{
public:
    ~ServerProgram() override { stop(); }

    bool start() override
    {
        if (!configuration.isOpen() && !prepare())
            return false;
        stop();
        server.setProcessChannelMode(QProcess::ForwardedChannels);
        server.start(binary(), arguments());
        // Who signs in is answered before the first picture has come.
        ServiceClient client;
        const QString cameras =
            "http://"_s + lanAddress() + "/streams/info?server=1&sessionId=" + lanPassword();
        return QTest::qWaitFor(
            [&] {
                return server.state() == QProcess::NotRunning ||
                       client.ask(cameras).body.contains("\"status\":1");
            },
            60'000);
    }
    App::ServiceProfile profile() const override
    {
        return App::ServiceProfile::fromFile(place.filePath("client/service.ini"));
    }
    QByteArray account() const override { return ServiceClient::account("home", lanPassword()); }
    QString lanAddress() const override { return "127.0.0.1:%1"_s.arg(camerasPort); }
    QString lanPassword() const override
    {
        QFile file(place.filePath("state/password"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll().trimmed())
                                              : QString();
    }
    int lanCamera() override { return 1; }
    bool record(const QVector<QPair<qint64, qint64>> &spans) override
    {
        if (spans == recorded)
            return true;
        recorded = spans;
        stop();
        QDir(place.filePath("archive")).removeRecursively();
        House house(place.filePath("archive"));
        for (const auto &[startMs, endMs] : spans) {
            house.record(false, startMs, endMs - startMs, 1000);
            house.finish(false);
        }
        return QFile::remove(place.filePath("archive/.zorvane-archive")) && start();
    }

private:
    static QString binary() { return QStringLiteral(ZORVANE_BIN_DIR "/zorvane-server"); }
    QStringList arguments() const { return {"--config", place.filePath("conf")}; }

    /// Two ports that are free, and what the server is to know.
    bool prepare()
    {
        QTcpServer first;
        QTcpServer second;
        if (!first.listen(QHostAddress::LocalHost) || !second.listen(QHostAddress::LocalHost))
            return false;
        camerasPort = second.serverPort();
        const QString clip = place.filePath("clip.mp4");
        configuration.setFileName(place.filePath("conf"));
        return makeClip(clip, QStringList{"-c:v", "libx264", "-an"}).isEmpty() &&
               configuration.open(QIODevice::WriteOnly) &&
               configuration.write("[archive]\nfolder = %1/archive\n[service]\nstate = %1/state\n"
                                   "port = %2\ncameras_port = %3\n[camera Gate]\nurl = file:%4\n"_s
                                       .arg(place.path())
                                       .arg(first.serverPort())
                                       .arg(camerasPort)
                                       .arg(clip)
                                       .toUtf8()) > 0 &&
               configuration.flush() && QDir().mkdir(place.filePath("client")) &&
               outputOf(binary(),
                        arguments() + QStringList{"client-files", place.filePath("client")})
                   .isEmpty();
    }
    void stop()
    {
        server.terminate();
        server.waitForFinished();
    }

    QTemporaryDir place;
    QFile configuration;
    QProcess server;
    int camerasPort = 0;
    QVector<QPair<qint64, qint64>> recorded;
};

} // namespace ZorvaneClient::Tests
