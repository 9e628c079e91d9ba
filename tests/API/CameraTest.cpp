// SPDX-License-Identifier: MIT
#include <QtTest>

#include <QJsonDocument>
#include <QJsonObject>

#include "API/Camera.h"
#include "API/CameraPrivate.h"
#include "API/CloudData.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::API;

Q_DECLARE_METATYPE(CameraKind)

namespace {

const QString serverId = QStringLiteral("s1");

QVariantMap parse(QByteArray json)
{
    json.replace('\'', '"');
    const QJsonDocument document = QJsonDocument::fromJson(json);
    Q_ASSERT(document.isObject());
    return document.object().toVariantMap();
}

ServerPtr makeServer()
{
    return ServerPtr::create(parse("{'id':'s1','name':'Depot','online':true}"));
}

CameraPtr makeCamera(const QByteArray &json)
{
    return CameraPtr::create(makeServer().data(), parse(json));
}

CameraPtr makeCamera(CameraKind kind, const QString &server, const QString &password)
{
    const CameraPtr camera = CameraPtr::create();
    camera->setId(server, 7);
    camera->setName(QStringLiteral("Gate"));
    camera->setKind(kind);
    camera->setSessionId(password);
    return camera;
}

/// What stands in the address between `key` and `next`.
QString between(const QString &url, const QString &key, const QString &next)
{
    const int start = url.indexOf(key) + key.size();
    return url.mid(start, url.indexOf(next, start) - start);
}

} // namespace

/// What a camera says of itself without any network.
class CameraTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void paidState_data();
    void paidState();
    void troubleTexts_data();
    void troubleTexts();
    void laterRoster();
    void signalsOnlyOnChange();
    void rights();
    void streamUrls_data();
    void streamUrls();
    void valuesLikeMarkers();
    void localAddress_data();
    void localAddress();
    void localRotation();
    void equality();
    void finishedRequestsAreLetGo();
};

void CameraTest::cleanup()
{
    Internal::cloudData.sessionId.clear();
}

void CameraTest::paidState_data()
{
    QTest::addColumn<QByteArray>("services");
    QTest::addColumn<bool>("paid");

    const auto active = [](const char *value) {
        return "'services':{'enabled':{'active':" + QByteArray(value) + "}}";
    };
    QTest::newRow("no services") << QByteArray("'other':1") << false;
    QTest::newRow("empty services") << QByteArray("'services':{}") << false;
    QTest::newRow("nothing enabled") << QByteArray("'services':{'enabled':{}}") << false;
    QTest::newRow("services of another type") << QByteArray("'services':[1]") << false;
    QTest::newRow("enabled without active")
        << QByteArray("'services':{'enabled':{'a':1}}") << false;
    QTest::newRow("true") << active("true") << true;
    QTest::newRow("word true") << active("'true'") << true;
    QTest::newRow("word True") << active("'True'") << false;
    QTest::newRow("name of a service") << active("'camera'") << false;
    QTest::newRow("false") << active("false") << false;
    QTest::newRow("word false") << active("'false'") << false;
    QTest::newRow("number") << active("1") << false;
    QTest::newRow("null") << active("null") << false;
}

void CameraTest::paidState()
{
    QFETCH(QByteArray, services);
    const CameraPtr camera = makeCamera("{'id':1,'online':true," + services + "}");
    QTEST(camera->isPaid(), "paid");
    QVERIFY(camera->isOnline());
}

void CameraTest::troubleTexts_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("status");

    QTest::newRow("none") << 0 << QString() << QString();
    QTest::newRow("not paid") << 2 << QStringLiteral("not paid for")
                              << QStringLiteral("Camera Gate is not paid for");
    QTest::newRow("offline") << 4 << QStringLiteral("offline")
                             << QStringLiteral("Camera Gate is offline");
    QTest::newRow("both") << 6 << QStringLiteral("not paid for and offline")
                          << QStringLiteral("Camera Gate is not paid for and offline");
}

void CameraTest::troubleTexts()
{
    QFETCH(int, flags);
    const CameraPtr camera = makeCamera(LocalCamera, serverId, QString());
    camera->setFlags(flags);
    QTEST(camera->stateText(), "state");
    QTEST(camera->statusText(), "status");
}

void CameraTest::laterRoster()
{
    const ServerPtr server = makeServer();
    Camera camera(server.data(), parse("{'id':5,'name':'Gate','vcodec':'h264','width':640,"
                                       "'height':360,'rotation':-90,'mirror':true}"));
    camera.update(server.data(), parse("{'id':6,'name':'Yard','vcodec':'mpeg4','width':1,"
                                       "'height':2,'rotation':180,'mirror':false}"));
    QCOMPARE(camera.name(), QStringLiteral("Yard"));
    QCOMPARE(camera.fullName(), QStringLiteral("Depot-Yard"));
    QCOMPARE(camera.id(), 5);
    QCOMPARE(camera.vcodec(), QStringLiteral("h264"));
    QCOMPARE(camera.videoSize(), QSize(640, 360));
    QCOMPARE(camera.rotation(), -90);
    QVERIFY(camera.isMirrored());
    QCOMPARE(camera.kind(), int(CloudCamera));
    QVERIFY(!camera.isExportEnabled());
}

void CameraTest::signalsOnlyOnChange()
{
    const ServerPtr server = makeServer();
    Camera camera(server.data(), parse("{'online':true,'rights':['live','archive','ptz']}"));
    QSignalSpy flagsSpy(&camera, &Camera::flagsChanged);
    QSignalSpy rightsSpy(&camera, &Camera::rightsChanged);

    camera.update(server.data(), parse("{'name':'new','online':true,"
                                       "'rights':['ptz','live','archive','live','other']}"));
    QVERIFY(flagsSpy.isEmpty());
    QVERIFY(rightsSpy.isEmpty());

    camera.update(server.data(), parse("{'online':false,'rights':['Live','ptz']}"));
    QCOMPARE(flagsSpy.size(), 1);
    QCOMPARE(rightsSpy.size(), 1);
    QCOMPARE(camera.flags(), CameraOffline | CameraNotPaid);
    QCOMPARE(camera.rights(), int(RightPtz));

    camera.setFlags(CameraOffline | CameraNotPaid);
    QCOMPARE(flagsSpy.size(), 1);
}

void CameraTest::rights()
{
    const CameraPtr live = makeCamera("{'rights':['live']}");
    QVERIFY(live->isLiveShared());
    QVERIFY(!live->isArchiveShared());
    const CameraPtr archive = makeCamera("{'rights':['archive']}");
    QVERIFY(!archive->isLiveShared());
    QVERIFY(archive->isArchiveShared());
    const CameraPtr local = makeCamera(LocalCamera, QStringLiteral("10.0.0.5:80"), QString());
    QCOMPARE(local->rights(), 0);
    QVERIFY(local->isLiveShared() && local->isArchiveShared());
}

void CameraTest::streamUrls_data()
{
    QTest::addColumn<CameraKind>("kind");
    QTest::addColumn<QString>("live");
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("exported");

    QTest::newRow("cloud")
        << CloudCamera
        << QStringLiteral("http://flv.example:8080/flv/live?server=10.0.0.5:80&camera=7&q=1"
                          "&sessionId=cloud&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3")
        << QStringLiteral("http://flv.example:8080/flv/archive?server=10.0.0.5:80&camera=7&q=0"
                          "&sessionId=cloud&startTime=1700000000&speed=4"
                          "&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3")
        << QString();
    QTest::newRow("local")
        << LocalCamera
        << QStringLiteral("http://10.0.0.5:80/flv/live?server=1&camera=7&q=1"
                          "&sessionId=secret&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3")
        << QStringLiteral("http://10.0.0.5:80/flv/archive?server=1&camera=7&q=0"
                          "&sessionId=secret&startTime=1700000000&speed=4"
                          "&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3")
        << QStringLiteral("http://10.0.0.5:80/flv/archive?server=1&camera=7&q=2"
                          "&sessionId=secret&startTime=1700000000000&endTime=1700000060000"
                          "&uploadRate=500&vcodec=flv&vcodec=h264&vcodec=mpeg4&acodec=mp3");
}

void CameraTest::streamUrls()
{
    App::ServiceProfile profile = App::ServiceProfile::current();
    profile.flvHost = QStringLiteral("flv.example:8080");
    App::ServiceProfile::setCurrent(profile);
    Internal::cloudData.sessionId = QStringLiteral("cloud");

    QFETCH(CameraKind, kind);
    const CameraPtr camera =
        makeCamera(kind, QStringLiteral("10.0.0.5:80"), QStringLiteral("secret"));
    QTEST(camera->liveUrl(1), "live");
    QTEST(camera->archiveUrl(0, 4, 1700000000, 1700000060), "archive");
    QTEST(camera->exportUrl(1700000000000, 1700000060000), "exported");
}

void CameraTest::valuesLikeMarkers()
{
    const QString password = QStringLiteral("%6 %7&%1+/%20");
    const CameraPtr local = makeCamera(LocalCamera, QStringLiteral("10.0.0.5:80"), password);
    const QString key = QStringLiteral("sessionId=");
    QCOMPARE(between(local->liveUrl(0), key, QStringLiteral("&vcodec")), password);
    QCOMPARE(between(local->archiveUrl(0, 1, 5, 6), key, QStringLiteral("&startTime=5&speed=1")),
             password);
    QCOMPARE(between(local->exportUrl(5, 6), key, QStringLiteral("&startTime=5&endTime=6")),
             password);

    Internal::cloudData.sessionId = QStringLiteral("a&b%2");
    const CameraPtr cloud = makeCamera(CloudCamera, QStringLiteral("s%3%5"), QString());
    const QString url = cloud->liveUrl(2);
    QCOMPARE(between(url, QStringLiteral("server="), QStringLiteral("&camera=7&q=2")),
             QStringLiteral("s%3%5"));
    QCOMPARE(between(url, key, QStringLiteral("&vcodec")), QStringLiteral("a&b%2"));
}

void CameraTest::localAddress_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");

    QTest::newRow("address") << QStringLiteral("10.0.0.5:8080") << QStringLiteral("10.0.0.5")
                             << 8080;
    QTest::newRow("no port") << QStringLiteral("camera.local") << QString() << 0;
    QTest::newRow("two colons") << QStringLiteral("::80") << QString() << 0;
    QTest::newRow("port is no number")
        << QStringLiteral("host:http") << QStringLiteral("host") << 0;
    QTest::newRow("empty") << QString() << QString() << 0;
}

void CameraTest::localAddress()
{
    QFETCH(QString, server);
    const CameraPtr camera = makeCamera(LocalCamera, server, QString());
    QTEST(camera->host(), "host");
    QTEST(camera->port(), "port");
}

void CameraTest::localRotation()
{
    const QString server = QStringLiteral("10.0.0.5:80");
    makeCamera(LocalCamera, server, QString())->setRotation(270);
    QCOMPARE(App::settings().value(QStringLiteral("cameras/10.0.0.5:80/7/rotation")).toInt(), 270);
    QCOMPARE(makeCamera(LocalCamera, server, QString())->rotation(), 0);

    // A roster entry below a LAN server takes the stored value, not its own.
    LocalServer lan(QStringLiteral("LAN"), QStringLiteral("127.0.0.1"), 1, QString());
    App::settings().setValue(QStringLiteral("cameras/127.0.0.1:1/7/rotation"), 90);
    const Camera stored(&lan, parse("{'id':7,'rotation':180}"));
    QCOMPARE(stored.rotation(), 90);
    QVERIFY(stored.isExportEnabled());
}

void CameraTest::equality()
{
    const CameraPtr a = makeCamera(CloudCamera, serverId, QString());
    const CameraPtr b = makeCamera(LocalCamera, serverId, QString());
    const CameraPtr c = makeCamera(CloudCamera, QStringLiteral("s2"), QString());
    QVERIFY(*a == *b);
    QVERIFY(a != b);
    QVERIFY(!(*a == *c));
    QVERIFY(a->globalId() == b->globalId());
    QVERIFY(a->globalId() != c->globalId());
    b->setName(QStringLiteral("Yard"));
    QVERIFY(!(*a == *b));
}

void CameraTest::finishedRequestsAreLetGo()
{
    Internal::CameraPrivate state;
    const QObject running;
    const auto keep = [&state](const QObject *client) {
        state.keep(connect(client, &QObject::objectNameChanged, client, [] {}));
    };
    keep(&running);
    for (int i = 0; i < 100; ++i) {
        const QObject finished;
        keep(&finished);
    }
    keep(&running);
    // What is still out can still be cut when the camera dies.
    QCOMPARE(state.connections.size(), 2);
    for (const QMetaObject::Connection &connection : qAsConst(state.connections)) {
        QVERIFY(disconnect(connection));
    }
}

QTEST_MAIN(CameraTest)
#include "CameraTest.moc"
