// SPDX-License-Identifier: MIT
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QtTest>

#include "tests/demo/DemoTest.h"
#include "tests/support/StripReader.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;

/// Sign-in, paths, stored state, pictures, LAN interface and life of the demo service.
class DemoServiceTest : public DemoTest
{
    Q_OBJECT

private slots:
    void keysAreTheOwnersAlone();
    void certificateIsChecked();
    void badSignIns_data();
    void badSignIns();
    void passwordReachesTheServiceIntact();
    void onlyExactPaths_data();
    void onlyExactPaths();
    void sessionIsNeeded();
    void layoutsAndSessionsOutliveTheService();
    void previewShowsCameraAndSecond();
    void lanServerWantsItsPassword_data();
    void lanServerWantsItsPassword();
    void requestsAreShownAsTheyCame();
    void endsWithItsInput();
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

void DemoServiceTest::certificateIsChecked()
{
    DemoClient trusting(service);
    QVERIFY(!trusting.session().isEmpty());
    const QString byName =
        QStringLiteral("https://localhost:%1/public/version/client_windows").arg(service.apiPort());
    QVERIFY(trusting.get(byName).success());
    DemoClient stranger(service, false);
    QCOMPARE(stranger.signIn(service.email().toUtf8(), "demo").error,
             QNetworkReply::SslHandshakeFailedError);
}

void DemoServiceTest::badSignIns_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<bool>("refused");
    QTest::addColumn<int>("code");
    const QByteArray form = "application/x-www-form-urlencoded";
    const QByteArray good =
        "clientType=windows&clientVersion=1&login=demo%40zorvane.example&password=";
    QTest::newRow("wrong password") << good + "demon" << form << false << 10001;
    QTest::newRow("unknown address")
        << QByteArray("clientType=windows&clientVersion=1&login=x&password=demo") << form << false
        << 10001;
    QTest::newRow("no password") << QByteArray("clientType=windows&clientVersion=1&login=x") << form
                                 << false << 10003;
    QTest::newRow("empty") << QByteArray() << form << false << 10003;
    QTest::newRow("json") << good + "demo" << QByteArray("application/json") << false << 10003;
    QTest::newRow("sign-in refused") << good + "demo" << form << true << 10005;
}

void DemoServiceTest::badSignIns()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, type);
    QFETCH(bool, refused);
    QFETCH(int, code);
    QVERIFY(service.setSignInRefused(refused));
    const Answer answer = client.post(client.api(QStringLiteral("/public/sessions")), body, type);
    QVERIFY(answer.json().contains(QStringLiteral("success")));
    QVERIFY(!answer.success());
    QCOMPARE(answer.code(), code);
}

void DemoServiceTest::passwordReachesTheServiceIntact()
{
    DemoService::Options options;
    options.email = QStringLiteral("a+b&c@zorvane.example");
    options.password = QStringLiteral("p&s+w %41=ё");
    DemoService other;
    QVERIFY2(other.start(options), qPrintable(other.errorString()));
    DemoClient stranger(other);
    QVERIFY(stranger.signIn(options.email.toUtf8(), options.password.toUtf8()).success());
    QVERIFY(!stranger.signIn(options.email.toUtf8(), "p&s w %41=ё").success());
    // A session is made anew for each sign-in.
    QVERIFY(stranger.session() != stranger.session());
}

void DemoServiceTest::onlyExactPaths_data()
{
    QTest::addColumn<bool>("streaming");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::newRow("roster") << false << "/public/roster" << 200;
    QTest::newRow("roster, two slashes") << false << "//public/roster" << 404;
    QTest::newRow("layouts") << false << "//layouts" << 200;
    QTest::newRow("layouts, one slash") << false << "/layouts" << 404;
    QTest::newRow("version") << false << "/public/version/client_windows" << 200;
    QTest::newRow("another version") << false << "/public/version/client_linux" << 404;
    QTest::newRow("preview") << true << "//preview/live" << 200;
    QTest::newRow("preview, one slash") << true << "/preview/live" << 404;
    QTest::newRow("list, one slash") << true << "/archive/list" << 404;
    QTest::newRow("nothing") << false << "/" << 404;
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
    const QString wanted = client.api(QStringLiteral("/public/roster?sessionId=")) + session;
    QVERIFY(client.get(wanted).success());
    QCOMPARE(client.get(client.api(QStringLiteral("/public/roster?sessionId="))).code(), 10002);
    QVERIFY(client.del(client.api(QStringLiteral("/public/sessions/")) + session).success());
    QCOMPARE(client.get(wanted).code(), 10002);

    const QString second = client.session();
    QVERIFY(service.dropSessions());
    const QString path = QStringLiteral("//preview/live");
    const Answer preview =
        client.get(client.streaming(path) + client.query(service.camera(1), second));
    QCOMPARE(preview.status, 403);
    QVERIFY(preview.body.isEmpty());
}

void DemoServiceTest::layoutsAndSessionsOutliveTheService()
{
    const QString path = client.api(QStringLiteral("//layouts?sessionId="));
    const QJsonObject empty = client.get(path + session).response();
    QCOMPARE(empty.value(QLatin1String("last_update")).toInt(-1), 0);
    QVERIFY(empty.value(QLatin1String("layouts")).toArray().isEmpty());

    const qint64 before = QDateTime::currentSecsSinceEpoch();
    const QByteArray list =
        "[{\"cameras\":[],\"columns\":2,\"id\":\"x\",\"name\":\"Двор\",\"rows\":1}]";
    QCOMPARE(client.post(path + session, "{\"no\":\"list\"}", "application/json").code(), 10003);
    QCOMPARE(client.post(path + session, "[1", "application/json").code(), 10003);
    QCOMPARE(client.post(path + QStringLiteral("none"), list, "application/json").code(), 10002);
    QVERIFY(client.post(path + session, list, "application/json").success());

    QVERIFY2(service.restart(), qPrintable(service.errorString()));
    QVERIFY2(client.get(path + session).success(), "the session did not outlive the service");
    QVERIFY(service.dropSessions());
    QCOMPARE(client.get(path + session).code(), 10002);
    const QJsonObject stored = client.get(path + client.session()).response();
    QVERIFY(stored.value(QLatin1String("last_update")).toInt() >= before);
    QCOMPARE(stored.value(QLatin1String("layouts")).toArray(),
             QJsonDocument::fromJson(list).array());
}

void DemoServiceTest::previewShowsCameraAndSecond()
{
    for (const int number : {1, 2, 14}) {
        const Answer answer =
            client.get(client.streaming(QStringLiteral("//preview/live")) +
                       client.query(service.camera(number), session) + QStringLiteral("&q=0"));
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        const QImage picture = QImage::fromData(answer.body, "JPEG");
        QCOMPARE(picture.size(), QSize(320, 180));
        const auto strip = StripReader::read(picture);
        QVERIFY(strip);
        QCOMPARE(strip->camera, number);
        QVERIFY2(StripReader::ageMs(*strip, now) < 3000, "the picture is older than its second");
        for (const auto mode : {Qt::FastTransformation, Qt::SmoothTransformation}) {
            const auto small =
                StripReader::read(picture.scaled(155, 87, Qt::IgnoreAspectRatio, mode));
            QVERIFY(small);
            QCOMPARE(small->camera, number);
        }
    }
    QImage blank(320, 180, QImage::Format_RGB32);
    blank.fill(Qt::darkGray);
    QVERIFY(!StripReader::read(blank));
}

void DemoServiceTest::lanServerWantsItsPassword_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<int>("status");
    QTest::newRow("as the polls send it")
        << QString::fromLatin1(service.lanPassword().toUtf8().toPercentEncoding()) << 200;
    QTest::newRow("as a stream URL carries it") << service.lanPassword() << 200;
    QTest::newRow("wrong") << QStringLiteral("camera") << 403;
    QTest::newRow("none") << QString() << 403;
}

void DemoServiceTest::lanServerWantsItsPassword()
{
    QFETCH(QString, password);
    QFETCH(int, status);
    const QString query = QStringLiteral("?server=1&sessionId=") + password;
    const Answer information = client.get(client.lan(QStringLiteral("/vs_info/")) + query);
    QCOMPARE(information.status, status);
    const Answer streams = client.get(client.lan(QStringLiteral("/streams/info")) + query);
    QCOMPARE(streams.status, status);
    const Answer preview = client.get(client.lan(QStringLiteral("/preview/live")) + query +
                                      QStringLiteral("&camera=3"));
    QCOMPARE(preview.status, status);
    if (status != 200) {
        QVERIFY(information.body.isEmpty() && streams.body.isEmpty() && preview.body.isEmpty());
        return;
    }
    QVERIFY(information.json()
                .value(QLatin1String("functions"))
                .toArray()
                .contains(QStringLiteral("arc_search")));
    const QJsonArray cameras = streams.list();
    QCOMPARE(cameras.size(), 3);
    QCOMPARE(cameras.at(2).toObject().value(QLatin1String("id")).toInt(), 3);
    QCOMPARE(cameras.at(2).toObject().value(QLatin1String("status")).toInt(), 1);
    const auto strip = StripReader::read(QImage::fromData(preview.body, "JPEG"));
    QVERIFY(strip);
    QCOMPARE(strip->camera, 17);
}

void DemoServiceTest::requestsAreShownAsTheyCame()
{
    client.get(client.api(QStringLiteral("//layouts?sessionId=%1&x=a%2Bb").arg(session)));
    const QVector<DemoRequest> requests = service.requests(QStringLiteral("//layouts"));
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().method, QStringLiteral("GET"));
    QCOMPARE(requests.first().query, QStringLiteral("sessionId=%1&x=a%2Bb").arg(session));
    QCOMPARE(requests.first().listener, QStringLiteral("api"));
    QVERIFY(requests.first().headers.contains(QStringLiteral("host")));
    QCOMPARE(service.requests(QStringLiteral("/public/sessions")).first().body,
             QByteArray("clientType=windows&clientVersion=1.0&login=demo%40zorvane.example"
                        "&password=demo"));
    QCOMPARE(service.requestCount(QString()), 2);
    QVERIFY(service.clearRequests());
    QCOMPARE(service.requestCount(QString()), 0);
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

void DemoServiceTest::refusesUnknownOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown") << QStringList{QStringLiteral("--seeds"), QStringLiteral("1")};
    QTest::newRow("no value") << QStringList{QStringLiteral("--seed")};
    QTest::newRow("no number") << QStringList{QStringLiteral("--cameras"), QStringLiteral("many")};
    QTest::newRow("out of range") << QStringList{QStringLiteral("--api-port"),
                                                 QStringLiteral("65536")};
    QTest::newRow("stray word") << QStringList{QStringLiteral("demo")};
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
