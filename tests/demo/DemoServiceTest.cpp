// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/support/DemoService.h"

namespace {

constexpr int deadline = 15'000;
const QByteArray form = "application/x-www-form-urlencoded";
const QByteArray jsonType = "application/json";

/// How an exchange ended.
struct Answer {
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    bool success() const { return json()["success"_s].toBool(); }
    QJsonObject response() const { return json()["response"_s].toObject(); }
    int code() const { return response()["code"_s].toInt(); }

    int status = 0; ///< 0 when no reply came
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    QUrl redirect;
    bool timedOut = false; ///< no end within the time given
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
        for (const QString &name : {"ca-key.pem"_s, "server-key.pem"_s})
            QCOMPARE(QFile::permissions(folder.filePath(name)) &
                         ~(QFile::ReadUser | QFile::WriteUser),
                     QFile::ReadOwner | QFile::WriteOwner);
    }

    void init()
    {
        QVERIFY(service.reset());
        session = signIn();
        QVERIFY(!session.isEmpty());
    }

    void badSignIns_data()
    {
        const QByteArray good = "clientType=windows&clientVersion=1&login=demo%40zorvane.example"
                                "&password=demo";
        rows<QByteArray, QByteArray, int>({"body", "type", "code"},
                                          {{"wrong password", good + "n", form, 10001},
                                           {"empty", "", form, 10003},
                                           {"json", good, jsonType, 10003}});
    }

    void badSignIns()
    {
        const auto [body, type, code] = row<QByteArray, QByteArray, int>();
        const Answer answer = ask(api("/public/sessions"), "POST", body, type);
        QCOMPARE(answer.json()["success"_s], QJsonValue(false));
        QCOMPARE(answer.code(), code);
    }

    void onlyExactPaths()
    {
        const QString query = queryOf(service.camera(1));
        QVERIFY(ask(api("//layouts") + query).success());
        const Answer one = ask(api("/layouts") + query);
        QCOMPARE(one.status, 404);
        QCOMPARE(one.code(), 10004);
        QCOMPARE(ask(streaming("//preview/live") + query).status, 200);
        QCOMPARE(ask(streaming("/preview/live") + query).status, 404);
    }

    void sessionIsNeeded()
    {
        const QString roster = api("/public/roster?sessionId=");
        QVERIFY(ask(roster + session).success());
        QCOMPARE(ask(roster).code(), 10002);
        QVERIFY(ask(api("/public/sessions/") + session, "DELETE").success());
        QCOMPARE(ask(roster + session).code(), 10002);

        session = signIn();
        QVERIFY(service.dropSessions());
        const Answer preview = ask(streaming("//preview/live") + queryOf(service.camera(1)));
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
        QVERIFY(ask(path + session, "POST", list, jsonType).success());

        QVERIFY2(service.restart(), qPrintable(service.errorString()));
        QVERIFY2(ask(path + session).success(), "the session did not outlive the service");
        QVERIFY(service.dropSessions());
        QCOMPARE(ask(path + session).code(), 10002);
        const QJsonObject stored = ask(path + signIn()).response();
        QVERIFY(stored["last_update"_s].toInt() >= before);
        QCOMPARE(stored["layouts"_s].toArray(), QJsonDocument::fromJson(list).array());
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
            DemoService::Options options;
            options.seed = seed;
            options.servers = 500;
            options.cameras = 10'000;
            options.lanServers = 0;
            DemoService other;
            other.start(options);
            return other.control("GET", "/world"_s, QJsonObject());
        };
        const QJsonObject first = worldOf(7);
        QCOMPARE(first["servers"_s].toArray().size(), 500);
        QVERIFY(first == worldOf(7));
        QVERIFY(first != worldOf(8));
    }

    void refusesUnknownOptions()
    {
        for (const QStringList &arguments :
             {QStringList{"--seeds", "1"}, {"--api-port", "65536"}}) {
            QProcess program;
            program.start(ZORVANE_BIN_DIR "/zorvane-demo", arguments);
            QVERIFY(program.waitForFinished(deadline));
            QCOMPARE(program.exitCode(), 2);
            QVERIFY(program.readAllStandardError().startsWith("usage: zorvane-demo"));
            QVERIFY(program.readAllStandardOutput().isEmpty());
        }
    }

    void refusals_data()
    {
        // Of the camera: JSON of its change. "to" is -1 for an export without an end.
        rows<int, QByteArray, QString, int, int, int>(
            {"number", "changed", "path", "from", "to", "status"},
            {{"offline", 1, R"({"online":false})", "/flv/live", 0, 0, 404},
             {"not paid for", 1, R"({"paid":false})", "/flv/live", 0, 0, 403},
             {"no live right", 1, R"({"rights":["archive"]})", "/flv/live", 0, 0, 403},
             {"no archive right", 1, R"({"rights":["live"]})", "/flv/archive", 2, 0, 403},
             {"before the first key frame", 1, "{}", "/flv/archive", 0, 0, 404},
             {"export of a gap", 5, "{}", "/flv/archive", 6, 9, 404},
             {"export without an end", 5, "{}", "/flv/archive", 1, -1, 400},
             {"export from the cloud", 1, "{}", "/flv/archive", 1, 3, 403}});
    }

    /// Of a camera with a record of five seconds, which begins between two pictures.
    void refusals()
    {
        const auto [number, changed, path, from, to, status] =
            row<int, QByteArray, QString, int, int, int>();
        const DemoCamera camera = service.camera(number);
        const qint64 begin = QDateTime::currentSecsSinceEpoch() - 86'400;
        QVERIFY(service.setArchive(camera, {{begin * 1000 + 400, begin * 1000 + 5350}}));
        QVERIFY(service.setCamera(camera.server, camera.camera,
                                  QJsonDocument::fromJson(changed).object()));
        // Exports are asked for in milliseconds.
        const QString times = to == 0 ? "&startTime=%1"_s.arg(begin + from)
                                      : "&startTime=%1&endTime=%2"_s.arg((begin + from) * 1000)
                                            .arg(to < 0 ? -1 : (begin + to) * 1000);
        const Answer answer = ask(flv(path, camera) + times);
        QCOMPARE(answer.status, status);
        QVERIFY(answer.body.isEmpty());
    }

    void recordInProgressGrows()
    {
        const DemoCamera camera = service.camera(1);
        const qint64 begin = QDateTime::currentMSecsSinceEpoch();
        QVERIFY(!service.setArchive(camera, {{begin, begin + 2}, {begin + 1, begin + 3}}));
        QVERIFY(service.setArchive(camera, {{begin - 10'000, begin + 3'600'000}}));
        const QString list =
            streaming("//archive/list") + queryOf(camera) +
            "&startTime=%1&endTime=%2"_s.arg(begin / 1000).arg(begin / 1000 + 3600);
        const auto duration = [&] {
            return QJsonDocument::fromJson(ask(list).body)[0]["duration"].toInt();
        };
        const int before = duration();
        QVERIFY(before >= 10'000);
        QTRY_VERIFY(duration() > before);
    }

    void faultyReplies_data()
    {
        rows<QString, QString>({"kind", "outcome"}, {{"close", "close", "no reply"},
                                                     {"truncate", "truncate", "cut short"},
                                                     {"garble", "garble", "not JSON"},
                                                     {"empty", "empty", "empty"},
                                                     {"nonjson", "nonjson", "not JSON"},
                                                     {"redirect", "redirect", "elsewhere"},
                                                     {"status", "status", "status"},
                                                     {"stall", "stall", "never ends"}});
    }

    void faultyReplies()
    {
        const auto [kind, outcome] = row<QString, QString>();
        DemoFault fault;
        fault.kind = kind;
        fault.route = "/public/*"_s;
        fault.listener = "api"_s;
        fault.value = kind == "status"_s ? 503 : 0;
        fault.after = kind == "truncate"_s ? 200 : 0;
        fault.location = "https://127.0.0.1:1/elsewhere"_s;
        QVERIFY(service.addFault(fault) > 0);
        const QString url = api("/public/roster?sessionId=") + session;
        const Answer answer = ask(url, "GET", "", form, kind == "stall"_s ? 1500 : deadline);
        const bool json = !QJsonDocument::fromJson(answer.body).isNull();
        QString found = "nothing wrong"_s;
        if (answer.timedOut)
            found = "never ends"_s;
        else if (answer.redirect.isValid())
            found = answer.redirect.path().mid(1);
        else if (answer.status == 503 && json)
            found = "status"_s;
        else if (answer.status == 0)
            found = "no reply"_s;
        else if (answer.error == QNetworkReply::RemoteHostClosedError && answer.body.size() >= 200)
            found = "cut short"_s;
        else if (answer.body.isEmpty())
            found = "empty"_s;
        else if (!json)
            found = "not JSON"_s;
        QCOMPARE(found, outcome);
        QVERIFY(service.clearFaults());
        QVERIFY(ask(url).success());
    }

    void faultHitsOnlyItsCameraAndTimes()
    {
        DemoFault fault;
        fault.kind = "empty"_s;
        fault.route = "//preview/live"_s;
        fault.server = service.camera(1).server;
        fault.camera = service.camera(1).camera;
        fault.times = 2;
        QVERIFY(service.addFault(fault) > 0);
        QList<bool> empty;
        for (const int number : {1, 2, 1, 1})
            empty << ask(streaming("//preview/live") + queryOf(service.camera(number)))
                         .body.isEmpty();
        QCOMPARE(empty, (QList<bool>{true, false, true, false}));
    }

    void faultReachesARunningStream()
    {
        for (const QString &kind : {"close"_s, "stall"_s, "stall"_s}) {
            const QUrl url(flv("/flv/live"_s, service.camera(1)));
            QTcpSocket socket;
            socket.connectToHost(url.host(), quint16(url.port()));
            socket.write("GET " + url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority) +
                         " HTTP/1.1\r\nHost: x\r\n\r\n");
            QTRY_VERIFY_WITH_TIMEOUT(socket.bytesAvailable() > 20'000, deadline);
            DemoFault fault;
            fault.kind = kind;
            fault.route = "/flv/*"_s;
            QVERIFY(service.addFault(fault) > 0);
            if (kind == "stall"_s) {
                // What is on its way still comes; then ten pictures a second fall silent.
                const auto isSilent = [&] {
                    socket.readAll();
                    return !socket.waitForReadyRead(1500);
                };
                QTRY_VERIFY_WITH_TIMEOUT(isSilent(), deadline);
                QCOMPARE(socket.state(), QAbstractSocket::ConnectedState);
                QVERIFY(service.clearFaults());
                QTRY_VERIFY_WITH_TIMEOUT(socket.bytesAvailable() > 0, deadline);
            } else {
                QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState,
                                          deadline);
                QVERIFY(service.clearFaults());
            }
        }
    }

private:
    /// Addresses of the service interface, of the streaming one, and of a camera's streams.
    QString api(const char *path) { return "https://127.0.0.1:%1"_s.arg(service.apiPort()) + path; }
    QString streaming(const char *path)
    {
        return "https://127.0.0.1:%1"_s.arg(service.streamingPort()) + path;
    }
    QString flv(const QString &path, const DemoCamera &camera)
    {
        const int port = camera.lan ? service.lanPorts().value(0) : service.flvPort();
        return "http://127.0.0.1:%1"_s.arg(port) + path + queryOf(camera) + "&q=0";
    }
    /// A LAN camera takes its server's password for the session.
    QString queryOf(const DemoCamera &camera) const
    {
        return "?server=%1&camera=%2&sessionId=%3"_s.arg(camera.lan ? "1"_s : camera.server)
            .arg(camera.camera)
            .arg(camera.lan ? service.lanPassword() : session);
    }

    /// Speaks to the service the way the client does, and trusts its authority alone.
    Answer ask(const QString &address, const QByteArray &method = "GET",
               const QByteArray &body = {}, const QByteArray &type = form, int patience = deadline)
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
        const bool timedOut = !QTest::qWaitFor([reply] { return reply->isFinished(); }, patience);
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->error(),
                reply->readAll(),
                reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl(), timedOut};
    }
    /// The new session; empty on failure.
    QString signIn()
    {
        const QByteArray account =
            QUrl::toPercentEncoding(service.email()) + "&password=" + service.password().toUtf8();
        return ask(api("/public/sessions"), "POST",
                   "clientType=windows&clientVersion=1.0&login=" + account)
            .response()["session_id"_s]
            .toString();
    }

    DemoService service;
    QString session;
};

QTEST_GUILESS_MAIN(DemoServiceTest)
#include "DemoServiceTest.moc"
