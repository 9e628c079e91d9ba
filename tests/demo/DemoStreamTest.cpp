// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/demo/DemoTest.h"

/// What is refused, and what goes wrong with streams and replies on purpose.
class DemoStreamTest : public DemoTest
{
    Q_OBJECT

public:
    DemoStreamTest() : DemoTest(plainWorld()) {}

private slots:
    void refusals_data();
    void refusals();
    void recordInProgressGrows();
    void faultyReplies_data();
    void faultyReplies();
    void faultHitsOnlyItsCameraAndTimes();
    void faultReachesARunningStream_data();
    void faultReachesARunningStream();

private:
    QString streamUrl(const QString &path, const DemoCamera &camera);
    void openStream(const QString &url);

    QTcpSocket socket;
};

QString DemoStreamTest::streamUrl(const QString &path, const DemoCamera &camera)
{
    const QString host = camera.lan ? client.lan(path) : client.flv(path);
    return host + client.query(camera, session) + "&q=0"_s;
}

/// Opens it by the socket and reads until it is running.
void DemoStreamTest::openStream(const QString &url)
{
    const QString path = url.mid(client.flv(QString()).size());
    socket.abort();
    socket.connectToHost("127.0.0.1"_s, static_cast<quint16>(service.flvPort()));
    socket.write("GET " + path.toUtf8() + " HTTP/1.1\r\nHost: x\r\n\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(socket.bytesAvailable() > 20'000, 10'000);
}

void DemoStreamTest::refusals_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("changed"); // JSON of the camera's change
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("from"); // seconds of the record
    QTest::addColumn<int>("to");   // -1 for an export without an end, 0 for none
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, int number, const char *changed, const char *path,
                        int from, int to, int status) {
        QTest::newRow(name) << number << changed << path << from << to << status;
    };
    row("offline", 1, R"({"online":false})", "/flv/live", 0, 0, 404);
    row("not paid for", 1, R"({"paid":false})", "/flv/live", 0, 0, 403);
    row("no live right", 1, R"({"rights":["archive"]})", "/flv/live", 0, 0, 403);
    row("no archive right", 1, R"({"rights":["live"]})", "/flv/archive", 2, 0, 403);
    row("before the first key frame", 1, "", "/flv/archive", 0, 0, 404);
    row("export of a gap", 5, "", "/flv/archive", 6, 9, 404);
    row("export without an end", 5, "", "/flv/archive", 1, -1, 400);
    row("export from the cloud", 1, "", "/flv/archive", 1, 3, 403);
}

void DemoStreamTest::refusals()
{
    QFETCH(int, number);
    QFETCH(QString, changed);
    QFETCH(QString, path);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, status);
    const DemoCamera camera = service.camera(number);
    constexpr int day = 86'400;
    const qint64 begin = QDateTime::currentSecsSinceEpoch() - day;
    QVERIFY(service.setArchive(camera, {{begin * 1000 + 400, begin * 1000 + 5350}}));
    if (!changed.isEmpty())
        QVERIFY(service.setCamera(camera.server, camera.camera,
                                  QJsonDocument::fromJson(changed.toUtf8()).object()));
    // Exports are asked for in milliseconds.
    const QString times = to == 0 ? "&startTime=%1"_s.arg(begin + from)
                                  : "&startTime=%1&endTime=%2"_s.arg((begin + from) * 1000)
                                        .arg(to < 0 ? -1 : (begin + to) * 1000);
    const Answer answer = client.get(streamUrl(path, camera) + times);
    QCOMPARE(answer.status, status);
    QVERIFY(answer.body.isEmpty());
}

void DemoStreamTest::recordInProgressGrows()
{
    const DemoCamera camera = service.camera(1);
    const qint64 begin = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(!service.setArchive(camera, {{begin, begin + 2}, {begin + 1, begin + 3}}));
    QVERIFY(service.setArchive(camera, {{begin - 10'000, begin + 3'600'000}}));
    const QString list = client.streaming("//archive/list"_s) + client.query(camera, session) +
                         "&startTime=%1&endTime=%2"_s.arg(begin / 1000).arg(begin / 1000 + 3600);
    const auto duration = [&] { return client.get(list).list().at(0)["duration"_s].toInt(); };
    const int before = duration();
    QVERIFY(before >= 10'000);
    QTRY_VERIFY(duration() > before);
}

void DemoStreamTest::faultyReplies_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("outcome");
    const QList<QPair<const char *, const char *>> outcomes = {
        {"close", "no reply"}, {"truncate", "cut short"}, {"garble", "not JSON"},
        {"empty", "empty"},    {"nonjson", "not JSON"},   {"redirect", "elsewhere"},
        {"status", "status"},  {"stall", "never ends"}};
    for (const auto &[kind, outcome] : outcomes)
        QTest::newRow(kind) << kind << outcome;
}

void DemoStreamTest::faultyReplies()
{
    QFETCH(QString, kind);
    QFETCH(QString, outcome);
    DemoFault fault;
    fault.kind = kind;
    fault.route = "/public/*"_s;
    fault.listener = "api"_s;
    fault.value = kind == "status"_s ? 503 : 0;
    fault.after = kind == "truncate"_s ? 200 : 0;
    fault.location = "https://127.0.0.1:1/elsewhere"_s;
    QVERIFY(service.addFault(fault) > 0);
    const QString url = client.api("/public/roster?sessionId="_s) + session;
    const Answer answer = client.get(url, kind == "stall"_s ? 1500 : 15'000);
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
    QVERIFY(client.get(url).success());
}

void DemoStreamTest::faultHitsOnlyItsCameraAndTimes()
{
    DemoFault fault;
    fault.kind = "empty"_s;
    fault.route = "//preview/live"_s;
    fault.server = service.camera(1).server;
    fault.camera = service.camera(1).camera;
    fault.times = 2;
    QVERIFY(service.addFault(fault) > 0);
    const auto isEmpty = [&](int number) {
        return client
            .get(client.streaming("//preview/live"_s) +
                 client.query(service.camera(number), session))
            .body.isEmpty();
    };
    QVERIFY(isEmpty(1));
    QVERIFY(!isEmpty(2));
    QVERIFY(isEmpty(1));
    QVERIFY(!isEmpty(1));
}

void DemoStreamTest::faultReachesARunningStream_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("close") << "close";
    QTest::newRow("stall") << "stall";
    QTest::newRow("stall") << "stall";
}

void DemoStreamTest::faultReachesARunningStream()
{
    QFETCH(QString, kind);
    openStream(streamUrl("/flv/live"_s, service.camera(1)));
    DemoFault fault;
    fault.kind = kind;
    fault.route = "/flv/*"_s;
    QVERIFY(service.addFault(fault) > 0);
    if (kind != "stall"_s) {
        QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, 10'000);
        return;
    }
    // What is on its way still comes; then a stream of ten pictures a second falls silent.
    bool silent = false;
    for (int i = 0; i < 10 && !silent; ++i) {
        socket.readAll();
        silent = !socket.waitForReadyRead(1500);
    }
    QVERIFY(silent);
    QCOMPARE(socket.state(), QAbstractSocket::ConnectedState);
    QVERIFY(service.clearFaults());
    QTRY_VERIFY_WITH_TIMEOUT(socket.bytesAvailable() > 0, 10'000);
}

QTEST_GUILESS_MAIN(DemoStreamTest)
#include "DemoStreamTest.moc"
