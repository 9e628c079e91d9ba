// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/demo/DemoTest.h"

/// Sign-in, paths, stored state and life of the demo service.
class DemoServiceTest : public DemoTest
{
    Q_OBJECT

private slots:
    void keysAreTheOwnersAlone();
    void badSignIns_data();
    void badSignIns();
    void onlyExactPaths_data();
    void onlyExactPaths();
    void sessionIsNeeded();
    void layoutsAndSessionsOutliveTheService();
    void endsWithItsInput();
    void worldIsMadeFromItsSeed();
    void refusesUnknownOptions_data();
    void refusesUnknownOptions();
};

void DemoServiceTest::keysAreTheOwnersAlone()
{
    const QFileInfo authority(service.caCertificate());
    for (const char *name : {"ca-key.pem", "server-key.pem"}) {
        const QFileInfo key(authority.dir().filePath(QLatin1String(name)));
        QVERIFY(key.exists());
        QCOMPARE(key.permissions() & ~(QFile::ReadUser | QFile::WriteUser),
                 QFile::ReadOwner | QFile::WriteOwner);
    }
}

void DemoServiceTest::badSignIns_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<int>("code");
    const QByteArray form = "application/x-www-form-urlencoded";
    const QByteArray good =
        "clientType=windows&clientVersion=1&login=demo%40zorvane.example&password=";
    QTest::newRow("wrong password") << good + "demon" << form << 10001;
    QTest::newRow("empty") << QByteArray() << form << 10003;
    QTest::newRow("json") << good + "demo" << QByteArray("application/json") << 10003;
}

void DemoServiceTest::badSignIns()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, type);
    QFETCH(int, code);
    const Answer answer = client.post(client.api("/public/sessions"_s), body, type);
    QVERIFY(answer.json().contains("success"_s));
    QVERIFY(!answer.success());
    QCOMPARE(answer.code(), code);
}

void DemoServiceTest::onlyExactPaths_data()
{
    QTest::addColumn<bool>("streaming");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::newRow("layouts") << false << "//layouts" << 200;
    QTest::newRow("layouts, one slash") << false << "/layouts" << 404;
    QTest::newRow("preview") << true << "//preview/live" << 200;
    QTest::newRow("preview, one slash") << true << "/preview/live" << 404;
}

void DemoServiceTest::onlyExactPaths()
{
    QFETCH(bool, streaming);
    QFETCH(QString, path);
    QFETCH(int, status);
    const QString wanted = path + client.query(service.camera(1), session);
    const Answer answer = client.get(streaming ? client.streaming(wanted) : client.api(wanted));
    QCOMPARE(answer.status, status);
    if (!streaming)
        QCOMPARE(answer.success(), status == 200);
    if (!streaming && status == 404)
        QCOMPARE(answer.code(), 10004);
}

void DemoServiceTest::sessionIsNeeded()
{
    const QString wanted = client.api("/public/roster?sessionId="_s) + session;
    QVERIFY(client.get(wanted).success());
    QCOMPARE(client.get(client.api("/public/roster?sessionId="_s)).code(), 10002);
    QVERIFY(client.del(client.api("/public/sessions/"_s) + session).success());
    QCOMPARE(client.get(wanted).code(), 10002);

    const QString second = client.session();
    QVERIFY(service.dropSessions());
    const QString path = "//preview/live"_s;
    const Answer preview =
        client.get(client.streaming(path) + client.query(service.camera(1), second));
    QCOMPARE(preview.status, 403);
    QVERIFY(preview.body.isEmpty());
}

void DemoServiceTest::layoutsAndSessionsOutliveTheService()
{
    const QString path = client.api("//layouts?sessionId="_s);
    const QJsonObject empty = client.get(path + session).response();
    QCOMPARE(empty.value("last_update"_s).toInt(-1), 0);
    QVERIFY(empty.value("layouts"_s).toArray().isEmpty());

    const qint64 before = QDateTime::currentSecsSinceEpoch();
    const QByteArray list =
        "[{\"cameras\":[],\"columns\":2,\"id\":\"x\",\"name\":\"Двор\",\"rows\":1}]";
    QCOMPARE(client.post(path + session, "{\"no\":\"list\"}", "application/json").code(), 10003);
    QCOMPARE(client.post(path + session, "[1", "application/json").code(), 10003);
    QCOMPARE(client.post(path + "none"_s, list, "application/json").code(), 10002);
    QVERIFY(client.post(path + session, list, "application/json").success());

    QVERIFY2(service.restart(), qPrintable(service.errorString()));
    QVERIFY2(client.get(path + session).success(), "the session did not outlive the service");
    QVERIFY(service.dropSessions());
    QCOMPARE(client.get(path + session).code(), 10002);
    const QJsonObject stored = client.get(path + client.session()).response();
    QVERIFY(stored.value("last_update"_s).toInt() >= before);
    QCOMPARE(stored.value("layouts"_s).toArray(), QJsonDocument::fromJson(list).array());
}

void DemoServiceTest::endsWithItsInput()
{
    for (const bool bySignal : {false, true}) {
        if (bySignal)
            service.process()->terminate();
        else
            service.process()->closeWriteChannel();
        QTRY_COMPARE_WITH_TIMEOUT(service.process()->state(), QProcess::NotRunning, 10'000);
        QCOMPARE(service.process()->exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.process()->exitCode(), 0);
        QVERIFY2(service.restart(), qPrintable(service.errorString()));
        QVERIFY(!client.session().isEmpty());
    }
}

void DemoServiceTest::worldIsMadeFromItsSeed()
{
    const auto worldOf = [](int seed) {
        DemoService::Options options;
        options.seed = seed;
        options.servers = 500;
        options.cameras = 10'000;
        options.lanServers = 0;
        DemoService other;
        return other.start(options) ? other.control("GET", "/world"_s, QJsonObject())
                                    : QJsonObject();
    };
    const QJsonObject first = worldOf(7);
    QCOMPARE(first.value("servers"_s).toArray().size(), 500);
    QVERIFY(first == worldOf(7));
    QVERIFY(first != worldOf(8));
}

void DemoServiceTest::refusesUnknownOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown") << QStringList{"--seeds"_s, "1"_s};
    QTest::newRow("out of range") << QStringList{"--api-port"_s, "65536"_s};
}

void DemoServiceTest::refusesUnknownOptions()
{
    QFETCH(QStringList, arguments);
    QProcess program;
    program.start(QStringLiteral(ZORVANE_BIN_DIR "/zorvane-demo"), arguments);
    QVERIFY(program.waitForFinished(10'000));
    QCOMPARE(program.exitCode(), 2);
    QVERIFY(program.readAllStandardError().startsWith("usage: zorvane-demo"));
    QVERIFY(program.readAllStandardOutput().isEmpty());
}

QTEST_GUILESS_MAIN(DemoServiceTest)
#include "DemoServiceTest.moc"
