// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Server.h"

using namespace ZorvaneClient::API;

namespace {

QVariantMap parse(const char *json)
{
    QByteArray text(json);
    text.replace('\'', '"');
    const QJsonDocument document = QJsonDocument::fromJson(text);
    Q_ASSERT(document.isObject());
    return document.object().toVariantMap();
}

QStringList names(const QList<CameraPtr> &cameras)
{
    QStringList result;
    for (const CameraPtr &camera : cameras) {
        result.append(camera->name());
    }
    return result;
}

} // namespace

class ServerTest : public QObject
{
    Q_OBJECT

private slots:
    void functions_data()
    {
        QTest::addColumn<QByteArray>("info");
        QTest::addColumn<bool>("speedPlay");
        QTest::addColumn<bool>("arcSearch");
        QTest::addColumn<bool>("isCamera");

        const auto row = [](const char *info, bool speedPlay, bool arcSearch, bool isCamera) {
            QTest::newRow(info) << QByteArray(info) << speedPlay << arcSearch << isCamera;
        };
        row("{'functions':['arc_search','speed_play']}", true, true, false);
        row("{'functions':'speed_play'}", false, false, false);
        row("{'build_type':'arm-camera'}", false, false, true);
        row("{'build_type':'arm-Camera'}", false, false, false);
    }

    void functions()
    {
        QFETCH(QByteArray, info);
        const Server server(parse("{'online':true,'info':" + info + "}"));
        QTEST(server.isSpeedPlayEnabled(), "speedPlay");
        QTEST(server.isArcSearchEnabled(), "arcSearch");
        QTEST(server.isCamera(), "isCamera");
    }

    void laterRoster()
    {
        Server server(parse("{'id':'s1','name':'Depot','owner':true,'online':true,"
                            "'info':{'functions':['arc_search']},'cameras':{'3':{'id':3}}}"));
        const CameraPtr camera = server.cameras().value(3);
        QSignalSpy flagsSpy(&server, &Server::flagsChanged);
        QSignalSpy aliasSpy(&server, &Server::aliasChanged);
        QSignalSpy liveSpy(&server, &Server::liveEnabledChanged);
        int added = 0;
        connect(&server, &Server::cameraAdded, this, [&added](CameraPtr) { ++added; });

        server.update(parse("{'id':'other','name':'Depot','online':false,'live':true,"
                            "'cameras':{'3':{'id':3,'name':'Gate'},'9':{'id':9}}}"));
        QVERIFY(!server.isOnline());
        QVERIFY(flagsSpy.isEmpty());
        QVERIFY(aliasSpy.isEmpty());
        QCOMPARE(liveSpy.size(), 1);
        QCOMPARE(added, 1);
        // What the first roster said and later ones don't change.
        QCOMPARE(server.id(), "s1"_s);
        QVERIFY(server.isOwner());
        QVERIFY(server.isArcSearchEnabled());
        // The object that widgets hold is the one that is brought up to date.
        QCOMPARE(server.cameras().value(3), camera);
        QCOMPARE(camera->name(), "Gate"_s);

        server.update(parse("{'name':'Yard','online':true}"));
        QVERIFY(server.isOnline());
        QCOMPARE(aliasSpy.size(), 1);
        QCOMPARE(liveSpy.size(), 2);
    }

    void keyAndNumberDisagree()
    {
        Server server(parse("{'id':'s1','online':true,'cameras':{'7':{'id':7,'name':'seven'}}}"));
        QTest::ignoreMessage(QtDebugMsg, "Removed camera \"s1\" : 8");
        server.update(parse("{'cameras':{'7':{'id':8,'name':'eight'}}}"));
        QCOMPARE(server.cameras().keys(), QList<camera_id_t>{7});
        QCOMPARE(server.cameras().value(7)->name(), "seven"_s);
    }

    void removedCameraIsFrozen()
    {
        Server server(parse("{'online':true,'cameras':{'1':{'id':1,'name':'a','online':true},"
                            "'2':{'id':2}}}"));
        const CameraPtr held = server.cameras().value(1);
        QList<int> removed;
        connect(&server, &Server::cameraRemoved, this,
                [&removed](camera_id_t number) { removed.append(number); });

        server.update(parse("{'online':true,'cameras':{}}"));
        QCOMPARE(removed, (QList<int>{1, 2}));
        server.removeCamera(1);
        QCOMPARE(removed.size(), 2);

        server.update(parse("{'online':true,'cameras':{'1':{'id':1,'name':'b'}}}"));
        QCOMPARE(held->name(), "a"_s);
        QVERIFY(held->isOnline());
        QVERIFY(server.cameras().value(1) != held);
    }

    void sortedCameras_data()
    {
        // of "b", "a", "C"
        const auto order = [](const char *text) { return QString::fromLatin1(text).split(' '); };
        rows<QList<int>, QStringList>(
            {"flags", "order"},
            {
                {"one offline", QList<int>{0, CameraOffline, 0}, order("C b a")},
                {"offline and not paid", QList<int>{0, CameraOffline | CameraNotPaid, 0},
                 order("C a b")},
            });
    }

    void sortedCameras()
    {
        const auto [flags] = row<QList<int>>();
        Server server;
        const QStringList cameraNames{"b"_s, "a"_s, "C"_s};
        for (int i = 0; i < cameraNames.size(); ++i) {
            const CameraPtr camera = CameraPtr::create();
            camera->setId("s"_s, i);
            camera->setName(cameraNames.at(i));
            camera->setFlags(flags.at(i));
            server.addCamera(camera);
        }
        QTEST(names(server.sortedCameras()), "order");
    }
};

QTEST_MAIN(ServerTest)
#include "ServerTest.moc"
