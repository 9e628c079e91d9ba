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
    void paidState();
    void laterRoster();
    void signalsOnlyOnChange();
    void streamUrls();
    void valuesLikeMarkers();
    void localAddress();
    void localRotation();
    void finishedRequestsAreLetGo();
};

void CameraTest::cleanup()
{
    Internal::cloudData.sessionId.clear();
}

void CameraTest::paidState()
{
    const auto isPaid = [](const QByteArray &services) {
        return makeCamera("{'id':1,'online':true,'services':" + services + "}")->isPaid();
    };
    QVERIFY(isPaid("{'enabled':{'active':true}}"));
    QVERIFY(isPaid("{'enabled':{'active':'true'}}"));
    QVERIFY(!isPaid("{'enabled':{'active':'camera'}}"));
    QVERIFY(!isPaid("[1]"));
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

void CameraTest::streamUrls()
{
    App::ServiceProfile profile = App::ServiceProfile::current();
    profile.flvHost = QStringLiteral("flv.example:8080");
    App::ServiceProfile::setCurrent(profile);
    Internal::cloudData.sessionId = QStringLiteral("cloud");

    const QString server = QStringLiteral("10.0.0.5:80");
    const QString codecs = QStringLiteral("&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3");
    const CameraPtr cloud = makeCamera(CloudCamera, server, QStringLiteral("secret"));
    const QString inCloud = QStringLiteral("http://flv.example:8080/flv/");
    QCOMPARE(cloud->liveUrl(1),
             inCloud + "live?server=10.0.0.5:80&camera=7&q=1&sessionId=cloud" + codecs);
    QCOMPARE(cloud->archiveUrl(0, 4, 1700000000, 1700000060),
             inCloud +
                 "archive?server=10.0.0.5:80&camera=7&q=0&sessionId=cloud"
                 "&startTime=1700000000&speed=4" +
                 codecs);
    QVERIFY(cloud->exportUrl(1700000000000, 1700000060000).isEmpty());
    const CameraPtr local = makeCamera(LocalCamera, server, QStringLiteral("secret"));
    const QString onServer = QStringLiteral("http://10.0.0.5:80/flv/");
    QCOMPARE(local->liveUrl(1), onServer + "live?server=1&camera=7&q=1&sessionId=secret" + codecs);
    QCOMPARE(local->archiveUrl(0, 4, 1700000000, 1700000060),
             onServer +
                 "archive?server=1&camera=7&q=0&sessionId=secret"
                 "&startTime=1700000000&speed=4" +
                 codecs);
    QCOMPARE(local->exportUrl(1700000000000, 1700000060000),
             onServer + "archive?server=1&camera=7&q=2&sessionId=secret&startTime=1700000000000"
                        "&endTime=1700000060000&uploadRate=500&vcodec=flv&vcodec=h264"
                        "&vcodec=mpeg4&acodec=mp3");
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

void CameraTest::localAddress()
{
    const auto address = [](const char *server) {
        const CameraPtr camera = makeCamera(LocalCamera, QString::fromLatin1(server), QString());
        return QStringLiteral("%1 %2").arg(camera->host()).arg(camera->port());
    };
    QCOMPARE(address("10.0.0.5:8080"), QStringLiteral("10.0.0.5 8080"));
    QCOMPARE(address("::80"), QStringLiteral(" 0"));
    QCOMPARE(address("host:http"), QStringLiteral("host 0"));
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
