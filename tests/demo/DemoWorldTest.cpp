// SPDX-License-Identifier: MIT
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

#include "tests/demo/DemoTest.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;

/// The servers and cameras of the demo service as the roster shows them.
class DemoWorldTest : public DemoTest
{
    Q_OBJECT

private slots:
    void rosterHasEveryKindOfCamera();
    void worldIsMadeFromItsSeed();
    void rotationIsKept_data();
    void rotationIsKept();
    void changesOfTheWorldAreInTheRoster();

private:
    QJsonObject roster();
};

QJsonObject DemoWorldTest::roster()
{
    return client.get(client.api(QStringLiteral("/public/roster?sessionId=")) + session).response();
}

void DemoWorldTest::rosterHasEveryKindOfCamera()
{
    const QJsonObject servers = roster();
    QCOMPARE(servers.size(), 5);
    QSet<QString> kinds;
    int cameras = 0;
    for (const QJsonValue value : servers) {
        const QJsonObject server = value.toObject();
        const QJsonObject list = server.value(QLatin1String("cameras")).toObject();
        cameras += list.size();
        const QJsonObject info = server.value(QLatin1String("info")).toObject();
        if (list.isEmpty())
            kinds << QStringLiteral("empty server");
        if (info.value(QLatin1String("build_type")).toString().endsWith(QLatin1String("camera")))
            kinds << QStringLiteral("server is a camera");
        for (auto it = list.begin(); it != list.end(); ++it) {
            const QJsonObject camera = it.value().toObject();
            QCOMPARE(camera.value(QLatin1String("id")).toInt(), it.key().toInt());
            const QJsonArray rights = camera.value(QLatin1String("rights")).toArray();
            const QString name = camera.value(QLatin1String("name")).toString();
            const bool paid = camera.value(QLatin1String("services"))
                                  .toObject()
                                  .value(QLatin1String("enabled"))
                                  .toObject()
                                  .value(QLatin1String("active"))
                                  .toBool();
            kinds << (paid ? QStringLiteral("paid") : QStringLiteral("unpaid"))
                  << (camera.value(QLatin1String("online")).toBool() ? QStringLiteral("online")
                                                                     : QStringLiteral("offline"));
            if (!rights.contains(QStringLiteral("live")))
                kinds << QStringLiteral("without live");
            if (!rights.contains(QStringLiteral("archive")))
                kinds << QStringLiteral("without archive");
            if (camera.value(QLatin1String("rotation")).toInt() != 0)
                kinds << QStringLiteral("rotated");
            if (camera.value(QLatin1String("mirror")).toBool())
                kinds << QStringLiteral("mirrored");
            if (name.size() > 100)
                kinds << QStringLiteral("long name");
            if (name.contains(QRegularExpression(QStringLiteral("[а-яА-Я]"))))
                kinds << QStringLiteral("Cyrillic name");
        }
    }
    QCOMPARE(cameras, 14);
    QStringList found = kinds.values();
    found.sort();
    QCOMPARE(found,
             (QStringList{QStringLiteral("Cyrillic name"), QStringLiteral("empty server"),
                          QStringLiteral("long name"), QStringLiteral("mirrored"),
                          QStringLiteral("offline"), QStringLiteral("online"),
                          QStringLiteral("paid"), QStringLiteral("rotated"),
                          QStringLiteral("server is a camera"), QStringLiteral("unpaid"),
                          QStringLiteral("without archive"), QStringLiteral("without live")}));
}

void DemoWorldTest::worldIsMadeFromItsSeed()
{
    const auto worldOf = [](int seed) {
        DemoService::Options options;
        options.seed = seed;
        options.servers = 500;
        options.cameras = 10'000;
        options.lanServers = 0;
        DemoService other;
        if (!other.start(options))
            return QJsonObject();
        return other.control("GET", QStringLiteral("/world"), QJsonObject());
    };
    const QJsonObject first = worldOf(7);
    QVERIFY(!first.isEmpty());
    QVERIFY(first == worldOf(7));
    QVERIFY(first != worldOf(8));
    QSet<int> numbers;
    int cameras = 0;
    const QJsonArray servers = first.value(QLatin1String("servers")).toArray();
    QCOMPARE(servers.size(), 500);
    for (const QJsonValue server : servers) {
        const QJsonArray list = server.toObject().value(QLatin1String("cameras")).toArray();
        for (const QJsonValue camera : list) {
            numbers << camera.toObject().value(QLatin1String("number")).toInt();
            ++cameras;
        }
    }
    QCOMPARE(cameras, 10'000);
    QCOMPARE(numbers.size(), 10'000);
}

void DemoWorldTest::rotationIsKept_data()
{
    QTest::addColumn<QByteArray>("degrees");
    QTest::addColumn<int>("code"); // 0: taken
    QTest::newRow("right") << QByteArray("90") << 0;
    QTest::newRow("left") << QByteArray("-90") << 0;
    QTest::newRow("crooked") << QByteArray("45") << 10003;
    QTest::newRow("no number") << QByteArray("left") << 10003;
}

void DemoWorldTest::rotationIsKept()
{
    QFETCH(QByteArray, degrees);
    QFETCH(int, code);
    const DemoCamera camera = service.camera(2);
    const QString path = QStringLiteral("//public/servers/%1/cameras/%2/rotation");
    const Answer answer = client.post(client.api(path.arg(camera.server).arg(camera.camera)),
                                      "degrees=" + degrees + "&sessionId=" + session.toUtf8());
    QCOMPARE(answer.success(), code == 0);
    QCOMPARE(answer.code(), code);
    const int rotation = roster()
                             .value(camera.server)
                             .toObject()
                             .value(QLatin1String("cameras"))
                             .toObject()
                             .value(QString::number(camera.camera))
                             .toObject()
                             .value(QLatin1String("rotation"))
                             .toInt();
    QCOMPARE(rotation, code == 0 ? degrees.toInt() : 0);
}

void DemoWorldTest::changesOfTheWorldAreInTheRoster()
{
    const DemoCamera camera = service.camera(1);
    const auto cameras = [&] {
        return roster().value(camera.server).toObject().value(QLatin1String("cameras")).toObject();
    };
    const int before = cameras().size();
    const int added = service.addCamera(camera.server, QStringLiteral("New one"));
    QVERIFY(added > 0);
    QCOMPARE(cameras().size(), before + 1);
    QCOMPARE(cameras().value(QString::number(added)).toObject().value(QLatin1String("name")),
             QJsonValue(QStringLiteral("New one")));
    QVERIFY(service.removeCamera(camera.server, camera.camera));
    QVERIFY(!cameras().contains(QString::number(camera.camera)));
    QVERIFY(!service.removeCamera(camera.server, camera.camera));
    QVERIFY(service.setCameraOnline(camera.server, added, false));
    QCOMPARE(cameras().value(QString::number(added)).toObject().value(QLatin1String("online")),
             QJsonValue(false));

    const QString server = service.addServer(QStringLiteral("Annex"), 2);
    QCOMPARE(roster().value(server).toObject().value(QLatin1String("name")),
             QJsonValue(QStringLiteral("Annex")));
    QVERIFY(service.setServerOnline(server, false));
    QCOMPARE(roster().value(server).toObject().value(QLatin1String("online")), QJsonValue(false));
    QVERIFY(service.removeServer(server));
    QVERIFY(!roster().contains(server));
}

QTEST_GUILESS_MAIN(DemoWorldTest)
#include "DemoWorldTest.moc"
