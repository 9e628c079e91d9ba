// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "demo/client/DemoService.h"

using namespace ZorvaneDemo;

namespace {

constexpr int deadline = 15'000;
const QByteArray formType = "application/x-www-form-urlencoded";
const QByteArray jsonType = "application/json";

/// How an exchange ended.
struct Answer {
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    QJsonObject response() const { return json()["response"].toObject(); }
    /// 0 for success.
    int code() const { return json()["success"].toBool() ? 0 : response()["code"].toInt(-1); }

    int status; ///< 0 when no reply came
    QByteArray body;
    QString end; ///< where a redirect points, or why there is no whole reply
};

} // namespace

/// Sign-in, paths, stored state, life, refusals and faults of the demo service.
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

    void badSignInsAndPaths()
    {
        const QString url = api("/public/sessions");
        const QByteArray good = "clientType=windows&clientVersion=1&login=demo%40zorvane.example"
                                "&password=demo";
        QCOMPARE(ask(url, "POST", good).code(), 0);
        QCOMPARE(ask(url, "POST", good + "n").code(), 10001);
        QCOMPARE(ask(url, "POST", "").code(), 10003);
        QCOMPARE(ask(url, "POST", good, jsonType).code(), 10003);

        QCOMPARE(ask(api("//layouts?sessionId=") + session).code(), 0);
        const Answer one = ask(api("/layouts?sessionId=") + session);
        QCOMPARE(one.status, 404);
        QCOMPARE(one.code(), 10004);
        QCOMPARE(ask(streaming("//preview/live")).status, 200);
        QCOMPARE(ask(streaming("/preview/live")).status, 404);
    }

    void sessionIsNeeded()
    {
        const QString roster = api("/public/roster?sessionId=");
        QCOMPARE(ask(roster + session).code(), 0);
        QCOMPARE(ask(roster).code(), 10002);
        QCOMPARE(ask(api("/public/sessions/") + session, "DELETE").code(), 0);
        QCOMPARE(ask(roster + session).code(), 10002);

        session = signIn();
        QVERIFY(service.dropSessions());
        const Answer preview = ask(streaming("//preview/live"));
        QCOMPARE(preview.status, 403);
        QVERIFY(preview.body.isEmpty());
    }

    void layoutsAndSessionsOutliveTheService()
    {
        const QString path = api("//layouts?sessionId=");
        QCOMPARE(ask(path + session).response(),
                 (QJsonObject{{"last_update", 0}, {"layouts", QJsonArray()}}));
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        const QByteArray list =
            "[{\"cameras\":[],\"columns\":2,\"id\":\"x\",\"name\":\"Двор\",\"rows\":1}]";
        QCOMPARE(ask(path + session, "POST", "{\"no\":\"list\"}", jsonType).code(), 10003);
        QCOMPARE(ask(path + session, "POST", "[1", jsonType).code(), 10003);
        QCOMPARE(ask(path + "none", "POST", list, jsonType).code(), 10002);
        QCOMPARE(ask(path + session, "POST", list, jsonType).code(), 0);

        QVERIFY2(service.restart(), qPrintable(service.errorString()));
        QCOMPARE(ask(path + session).code(), 0); // the session has outlived the service
        QVERIFY(service.dropSessions());
        QCOMPARE(ask(path + session).code(), 10002);
        const QJsonObject stored = ask(path + signIn()).response();
        QVERIFY(stored["last_update"].toInt() >= before);
        QCOMPARE(stored["layouts"].toArray(), QJsonDocument::fromJson(list).array());
    }

    void endsWithItsInput()
    {
        QProcess *const process = service.process();
        for (const auto &end : {&QProcess::terminate, &QProcess::closeWriteChannel}) {
            (process->*end)();
            QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, deadline);
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
             {"export of a gap", 5, "{}", "archive?startTime=[6]&endTime=[9]", 404},
             {"export without an end", 5, "{}", "archive?startTime=[1]&endTime=-1", 400},
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
        for (const int seconds : {1, 3, 6, 9})
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
        const QString url = api("/public/roster?sessionId=") + session;
        const Answer answer = ask(url, "GET", "", formType, kind == "stall"_s);
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
                QTRY_VERIFY_WITH_TIMEOUT(socket->bytesAvailable() > 20'000, deadline);
            }
            QVERIFY(service.addFault(
                        {kind, "/flv/*"_s, {}, camera.server, camera.camera, -1, 0, 0, {}}) > 0);
            qint64 missed = 0;
            const auto isSilent = [&] {
                missed = hit.readAll().isEmpty() ? missed + other.readAll().size() : 0;
                return missed > 20'000;
            };
            other.readAll();
            QVERIFY(QTest::qWaitFor(isSilent, deadline));
            QCOMPARE(hit.state(), kind == "close"_s ? QAbstractSocket::UnconnectedState
                                                    : QAbstractSocket::ConnectedState);
            QVERIFY(service.clearFaults());
            QTRY_COMPARE_WITH_TIMEOUT(hit.bytesAvailable() > 0, kind == "stall"_s, deadline);
        }
    }

private:
    /// Addresses of the service interface, of the streaming one, and of a camera's streams.
    QString api(const char *path) { return "https://127.0.0.1:%1"_s.arg(service.apiPort()) + path; }
    QString streaming(const char *path, int camera = 1)
    {
        return "https://127.0.0.1:%1"_s.arg(service.streamingPort()) + path +
               queryOf(service.camera(camera));
    }
    QString flv(const QString &stream, const DemoCamera &camera)
    {
        const int port = camera.lan ? service.lanPorts().value(0) : service.flvPort();
        return "http://127.0.0.1:%1/flv/"_s.arg(port) + stream + queryOf(camera) + "&q=0";
    }
    /// A LAN camera takes its server's password for the session.
    QString queryOf(const DemoCamera &camera)
    {
        const QString password = camera.lan ? service.lanPassword() : session;
        return "?server=" + (camera.lan ? "1"_s : camera.server) +
               "&camera=%1&sessionId=%2"_s.arg(camera.camera).arg(password);
    }

    /// Speaks to the service the way the client does, and trusts its authority alone.
    Answer ask(const QString &address, const QByteArray &method = "GET",
               const QByteArray &body = {}, const QByteArray &type = formType, bool stalls = false)
    {
        // Qt sends one of several leading slashes; what it will drop is added here.
        QUrl url(address);
        const auto lost =
            url.path().size() - url.adjusted(QUrl::NormalizePathSegments).path().size();
        url.setPath(QString(lost, '/') + url.path());
        QNetworkRequest request(url);
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(QSslCertificate::fromPath(service.caCertificate()));
        request.setSslConfiguration(tls);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::ManualRedirectPolicy);
        request.setHeader(QNetworkRequest::ContentTypeHeader, type);
        QNetworkAccessManager manager;
        manager.setProxy(QNetworkProxy::NoProxy);
        QNetworkReply *reply = manager.sendCustomRequest(request, method, body);
        const auto status = QNetworkRequest::HttpStatusCodeAttribute;
        // What stalls is overtaken by what is asked later, and ends with the fault.
        const bool held = stalls &&
                          QTest::qWaitFor([&] { return reply->attribute(status).isValid(); }) &&
                          ask(streaming("//preview/live")).status == 200 && !reply->isFinished() &&
                          service.clearFaults();
        Answer answer = {0, "", "never ends"_s};
        if (QTest::qWaitFor([reply] { return reply->isFinished(); }, deadline))
            answer.end = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toString();
        answer.status = reply->attribute(status).toInt();
        answer.body = reply->readAll();
        if (reply->error() == QNetworkReply::RemoteHostClosedError)
            answer.end = answer.body.isEmpty() ? "no answer"_s : "torn"_s;
        else if (held)
            answer.end = "held back"_s;
        return answer;
    }
    /// The new session; empty on failure.
    QString signIn()
    {
        const QByteArray form = "clientType=windows&clientVersion=1.0&login=" +
                                QUrl::toPercentEncoding(service.email()) +
                                "&password=" + service.password().toUtf8();
        return ask(api("/public/sessions"), "POST", form).response()["session_id"].toString();
    }

    DemoService service;
    QString session;
};

QTEST_GUILESS_MAIN(DemoServiceTest)
#include "DemoServiceTest.moc"
