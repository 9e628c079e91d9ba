// SPDX-License-Identifier: MIT
#include "demo/client/DemoService.h"
#include "tests/service/ServiceClient.h"

using namespace ZorvaneDemo;

/// Life, world, refusals and faults of the demo service.
class DemoServiceTest : public QObject
{
    Q_OBJECT

private slots:
    /// Cameras 1 to 4 in the cloud and 5 to 7 at a LAN server, with all rights.
    void initTestCase()
    {
        DemoService::Options options;
        options.servers = 2;
        options.cameras = 4;
        options.plain = true;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        client.profile = service.profile();
        const QDir folder = QFileInfo(service.caCertificate()).dir();
        for (const char *key : {"ca-key.pem", "server-key.pem"})
            QCOMPARE(QFile::permissions(folder.filePath(key)) | QFile::ReadUser | QFile::WriteUser,
                     QFile::Permissions(0x6600));
    }

    void init()
    {
        QVERIFY(service.reset());
        session = signIn();
        QVERIFY(!session.isEmpty());
    }

    void cloudPreviews()
    {
        QCOMPARE(ask(streaming("//preview/live")).status, 200);
        QCOMPARE(ask(streaming("/preview/live")).status, 404);
        QVERIFY(service.dropSessions());
        const Answer preview = ask(streaming("//preview/live"));
        QCOMPARE(preview.status, 403);
        QVERIFY(preview.body.isEmpty());
    }

    void endsWithItsInput()
    {
        QProcess *const process = service.process();
        for (const auto &end : {&QProcess::terminate, &QProcess::closeWriteChannel}) {
            (process->*end)();
            QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning,
                                      ServiceClient::deadline);
            QCOMPARE(process->exitStatus(), QProcess::NormalExit);
            QCOMPARE(process->exitCode(), 0);
            QVERIFY2(service.restart(), qPrintable(service.errorString()));
            QVERIFY(!signIn().isEmpty());
        }
    }

    void worldIsMadeFromItsSeed()
    {
        const auto worldOf = [](int seed) {
            DemoService other;
            DemoService::Options options;
            options.seed = seed;
            options.servers = 500;
            options.cameras = 10'000;
            options.lanServers = 0;
            other.start(options);
            return other.control("GET", "/world"_s, QJsonObject());
        };
        const QJsonObject first = worldOf(7);
        QCOMPARE(first["servers"].toArray().size(), 500);
        QVERIFY(first == worldOf(7));
        QVERIFY(first != worldOf(8));
    }

    /// Of a camera with a record of five seconds, which begins between two pictures. "[s]" is
    /// its second, and "[1]" the millisecond one second after that.
    void refusals_data()
    {
        rows<int, QByteArray, QString, int>(
            {"number", "changed", "stream", "status"},
            {{"offline", 1, R"({"online":false})", "live", 404},
             {"not paid for", 1, R"({"paid":false})", "live", 403},
             {"no live right", 1, R"({"rights":["archive"]})", "live", 403},
             {"no archive right", 1, R"({"rights":["live"]})", "archive?startTime=[s]", 403},
             {"before the first key frame", 1, "{}", "archive?startTime=[s]", 404},
             {"export from the cloud", 1, "{}", "archive?startTime=[1]&endTime=[3]", 403}});
    }

    void refusals()
    {
        const auto [number, changed, stream, status] = row<int, QByteArray, QString, int>();
        const DemoCamera camera = service.camera(number);
        const qint64 begin = QDateTime::currentSecsSinceEpoch() - 86'400;
        QVERIFY(service.setArchive(camera, {{begin * 1000 + 400, begin * 1000 + 5350}}));
        QVERIFY(service.setCamera(camera.server, camera.camera,
                                  QJsonDocument::fromJson(changed).object()));
        QString asked = flv(stream.section('?', 0, 0), camera) + '&' + stream.section('?', 1);
        asked.replace("[s]"_s, QString::number(begin));
        for (const int seconds : {1, 3})
            asked.replace("[%1]"_s.arg(seconds), QString::number((begin + seconds) * 1000));
        const Answer answer = ask(asked);
        QCOMPARE(answer.status, status);
        QVERIFY(answer.body.isEmpty());
    }

    void recordInProgressGrows()
    {
        const DemoCamera camera = service.camera(1);
        const qint64 begin = QDateTime::currentMSecsSinceEpoch();
        QVERIFY(!service.setArchive(camera, {{begin, begin + 2}, {begin + 1, begin + 3}}));
        QVERIFY(service.setArchive(camera, {{begin - 10'000, begin + 3'600'000}}));
        const QString list = streaming("//archive/list") +
                             "&startTime=%1&endTime=%2"_s.arg(begin / 1000).arg(begin / 1000 + 9);
        const auto duration = [&] {
            return QJsonDocument::fromJson(ask(list).body)[0]["duration"].toInt();
        };
        const int before = duration();
        QVERIFY(before >= 10'000);
        QTRY_VERIFY(duration() > before);
    }

    void faultyReplies_data()
    {
        rows<QString, int, int, QString>({"kind", "value", "after", "outcome"},
                                         {{"close", "close", 0, 0, "0 no answer"},
                                          {"truncate", "truncate", 0, 200, "200 torn"},
                                          {"garble", "garble", 0, 0, "200 not JSON"},
                                          {"empty", "empty", 0, 0, "200 empty"},
                                          {"nonjson", "nonjson", 0, 0, "200 not JSON"},
                                          {"redirect", "redirect", 0, 0, "302 //h/elsewhere"},
                                          {"status", "status", 503, 0, "503 JSON"},
                                          {"stall", "stall", 0, 0, "200 held back"}});
    }

    void faultyReplies()
    {
        const auto [kind, value, after, outcome] = row<QString, int, int, QString>();
        QVERIFY(service.addFault({kind, "/public/*"_s, "api"_s, QString(), -1, -1, value, after,
                                  "//h/elsewhere"_s}) > 0);
        const QString url = client.api("/public/roster?sessionId="_s + session);
        // What stalls is overtaken by what is asked later, and ends with the fault.
        const auto overtaken = [&] { return ask(streaming("//preview/live")).status == 200; };
        const Answer answer = client.ask(url, "GET", "", ServiceClient::formType,
                                         kind == "stall"_s ? overtaken : std::function<bool()>());
        QString found = answer.end;
        if (found.isEmpty())
            found = answer.body.isEmpty() ? "empty" : answer.json().isEmpty() ? "not JSON" : "JSON";
        QCOMPARE(QString::number(answer.status) + ' ' + found, outcome);
        QVERIFY(answer.body.size() >= after);
        QVERIFY(service.clearFaults());
        QCOMPARE(ask(url).code(), 0);
    }

    void faultHitsOnlyItsCameraAndTimes()
    {
        const DemoCamera camera = service.camera(1);
        QVERIFY(service.addFault({"empty"_s, "//preview/live"_s, QString(), camera.server,
                                  camera.camera, 2, 0, 0, QString()}) > 0);
        QList<bool> empty;
        for (const int number : {1, 2, 1, 1})
            empty << ask(streaming("//preview/live", number)).body.isEmpty();
        QCOMPARE(empty, (QList<bool>{true, false, true, false}));
    }

    /// The stream of another camera tells when something should have come.
    void faultReachesARunningStream()
    {
        const DemoCamera camera = service.camera(1);
        for (const QString &kind : {"close"_s, "stall"_s}) {
            QTcpSocket hit;
            QTcpSocket other;
            for (QTcpSocket *socket : {&hit, &other}) {
                const QUrl url(flv("live"_s, service.camera(socket == &hit ? 1 : 2)));
                socket->connectToHost(url.host(), quint16(url.port()));
                socket->write("GET " + url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority) +
                              " HTTP/1.1\r\nHost: x\r\n\r\n");
                QTRY_VERIFY_WITH_TIMEOUT(socket->bytesAvailable() > 20'000,
                                         ServiceClient::deadline);
            }
            QVERIFY(service.addFault(
                        {kind, "/flv/*"_s, {}, camera.server, camera.camera, -1, 0, 0, {}}) > 0);
            qint64 missed = 0;
            const auto isSilent = [&] {
                missed = hit.readAll().isEmpty() ? missed + other.readAll().size() : 0;
                return missed > 20'000;
            };
            other.readAll();
            QVERIFY(QTest::qWaitFor(isSilent, ServiceClient::deadline));
            QCOMPARE(hit.state(), kind == "close"_s ? QAbstractSocket::UnconnectedState
                                                    : QAbstractSocket::ConnectedState);
            QVERIFY(service.clearFaults());
            QTRY_COMPARE_WITH_TIMEOUT(hit.bytesAvailable() > 0, kind == "stall"_s,
                                      ServiceClient::deadline);
        }
    }

private:
    /// Addresses of the streaming interface and of a camera's streams.
    QString streaming(const char *path, int camera = 1)
    {
        return client.streaming(path + queryOf(service.camera(camera)));
    }
    QString flv(const QString &stream, const DemoCamera &camera)
    {
        return "http://127.0.0.1:%1/flv/"_s.arg(service.flvPort()) + stream + queryOf(camera) +
               "&q=0";
    }
    QString queryOf(const DemoCamera &camera)
    {
        return "?server=%1&camera=%2&sessionId=%3"_s.arg(camera.server)
            .arg(camera.camera)
            .arg(session);
    }
    Answer ask(const QString &address) { return client.ask(address); }
    /// The new session; empty on failure.
    QString signIn()
    {
        return client.signIn(ServiceClient::account(service.email(), service.password()));
    }

    DemoService service;
    ServiceClient client;
    QString session;
};

QTEST_GUILESS_MAIN(DemoServiceTest)
#include "DemoServiceTest.moc"
