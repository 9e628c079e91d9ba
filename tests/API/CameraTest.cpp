// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CameraPrivate.h"
#include "API/CloudData.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"

using namespace ZorvaneClient::API;

namespace {

const QString serverId = "s1"_s;

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
    camera->setName("Gate"_s);
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
    void cleanup() { Internal::cloudData.sessionId.clear(); }

    void paidState()
    {
        const auto isPaid = [](const QByteArray &services) {
            return makeCamera("{'id':1,'online':true,'services':" + services + "}")->isPaid();
        };
        QVERIFY(isPaid("{'enabled':{'active':true}}"));
        QVERIFY(isPaid("{'enabled':{'active':'true'}}"));
        QVERIFY(!isPaid("{'enabled':{'active':'camera'}}"));
        QVERIFY(!isPaid("[1]"));
    }

    void laterRoster()
    {
        const ServerPtr server = makeServer();
        Camera camera(server.data(), parse("{'id':5,'name':'Gate','vcodec':'h264','width':640,"
                                           "'height':360,'rotation':-90,'mirror':true}"));
        camera.update(server.data(), parse("{'id':6,'name':'Yard','vcodec':'mpeg4','width':1,"
                                           "'height':2,'rotation':180,'mirror':false}"));
        QCOMPARE(camera.name(), "Yard"_s);
        QCOMPARE(camera.fullName(), "Depot-Yard"_s);
        QCOMPARE(camera.id(), 5);
        QCOMPARE(camera.vcodec(), "h264"_s);
        QCOMPARE(camera.videoSize(), QSize(640, 360));
        QCOMPARE(camera.rotation(), -90);
        QVERIFY(camera.isMirrored());
        QCOMPARE(camera.kind(), int(CloudCamera));
        QVERIFY(!camera.isExportEnabled());
    }

    void signalsOnlyOnChange()
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

    void streamUrls()
    {
        App::ServiceProfile profile = App::ServiceProfile::current();
        profile.flvHost = "flv.example:8080"_s;
        App::ServiceProfile::setCurrent(profile);
        Internal::cloudData.sessionId = "cloud"_s;

        const QString server = "10.0.0.5:80"_s;
        const QString codecs = "&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3"_s;
        const CameraPtr cloud = makeCamera(CloudCamera, server, "secret"_s);
        const QString inCloud = "http://flv.example:8080/flv/"_s;
        QCOMPARE(cloud->liveUrl(1),
                 inCloud + "live?server=10.0.0.5:80&camera=7&q=1&sessionId=cloud" + codecs);
        QCOMPARE(cloud->archiveUrl(0, 4, 1700000000, 1700000060),
                 inCloud +
                     "archive?server=10.0.0.5:80&camera=7&q=0&sessionId=cloud"
                     "&startTime=1700000000&speed=4" +
                     codecs);
        QVERIFY(cloud->exportUrl(1700000000000, 1700000060000).isEmpty());
        const CameraPtr local = makeCamera(LocalCamera, server, "secret"_s);
        const QString onServer = "http://10.0.0.5:80/flv/"_s;
        QCOMPARE(local->liveUrl(1),
                 onServer + "live?server=1&camera=7&q=1&sessionId=secret" + codecs);
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

    void valuesLikeMarkers()
    {
        const QString password = "%6 %7&%1+/%20"_s;
        const CameraPtr local = makeCamera(LocalCamera, "10.0.0.5:80"_s, password);
        const QString key = "sessionId="_s;
        QCOMPARE(between(local->liveUrl(0), key, "&vcodec"_s), password);
        QCOMPARE(between(local->archiveUrl(0, 1, 5, 6), key, "&startTime=5&speed=1"_s), password);
        QCOMPARE(between(local->exportUrl(5, 6), key, "&startTime=5&endTime=6"_s), password);

        Internal::cloudData.sessionId = "a&b%2"_s;
        const CameraPtr cloud = makeCamera(CloudCamera, "s%3%5"_s, QString());
        const QString url = cloud->liveUrl(2);
        QCOMPARE(between(url, "server="_s, "&camera=7&q=2"_s), "s%3%5"_s);
        QCOMPARE(between(url, key, "&vcodec"_s), "a&b%2"_s);
    }

    void localAddress()
    {
        const auto address = [](const char *server) {
            const CameraPtr camera =
                makeCamera(LocalCamera, QString::fromLatin1(server), QString());
            return "%1 %2"_s.arg(camera->host()).arg(camera->port());
        };
        QCOMPARE(address("10.0.0.5:8080"), "10.0.0.5 8080"_s);
        QCOMPARE(address("::80"), " 0"_s);
        QCOMPARE(address("host:http"), "host 0"_s);
    }

    void localRotation()
    {
        const QString server = "10.0.0.5:80"_s;
        makeCamera(LocalCamera, server, QString())->setRotation(270);
        QCOMPARE(App::settings().value("cameras/10.0.0.5:80/7/rotation"_s).toInt(), 270);
        QCOMPARE(makeCamera(LocalCamera, server, QString())->rotation(), 0);

        // A roster entry below a LAN server takes the stored value, not its own.
        LocalServer lan("LAN"_s, "127.0.0.1"_s, 1, QString());
        App::settings().setValue("cameras/127.0.0.1:1/7/rotation"_s, 90);
        const Camera stored(&lan, parse("{'id':7,'rotation':180}"));
        QCOMPARE(stored.rotation(), 90);
        QVERIFY(stored.isExportEnabled());
    }

    void finishedRequestsAreLetGo()
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
};

QTEST_MAIN(CameraTest)
#include "CameraTest.moc"
