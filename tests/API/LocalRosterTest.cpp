// SPDX-License-Identifier: MIT
#include "API/CloudAPIClient.h"

#include "tests/support/Test.h"

#include "API/LocalServer.h"
#include "API/Server.h"
#include "tests/API/RosterFixture.h"

using namespace ZorvaneClient::API;

namespace {

const QString localhost = "127.0.0.1"_s;

void writeFile(const QByteArray &content)
{
    QFile file(rosterFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray fileContent()
{
    QFile file(rosterFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class LocalRosterTest : public RosterFixture
{
    Q_OBJECT

private slots:
    void localFile_data();
    void localFile();
    void monstrousFile_data();
    void monstrousFile();
    void localFileIsReadOnEveryRequest();
    void fileOnDisk();
    void fileThatCannotBeWritten();
    void edit_data();
    void edit();
    void localServersComeBackAfterSignOut();
};

void LocalRosterTest::localFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("ids");
    QTest::addColumn<QString>("firstAlias");

    const QByteArray one = R"({"ip":"127.0.0.1","name":"One","password":"p","port":1})";
    QTest::newRow("sorted by id")
        << QByteArray(R"([{"ip":"127.0.0.3","port":2},{"ip":"127.0.0.2","port":3,"name":"B"}])")
        << QStringList{"127.0.0.2:3", "127.0.0.3:2"} << "B";
    QTest::newRow("first of the same id wins")
        << "[" + one + R"(,{"ip":"127.0.0.1","name":"Two","port":1}])" << QStringList{"127.0.0.1:1"}
        << "One";
    QTest::newRow("Cyrillic") << "[{\"ip\":\"127.0.0.1\",\"name\":\"Двор\"}]"_s.toUtf8()
                              << QStringList{"127.0.0.1:0"} << QString::fromUtf8("Двор");
    QTest::newRow("damaged") << QByteArray("[" + one) << QStringList() << "";
    QTest::newRow("garbage") << QByteArray(1000, '\xff') << QStringList() << "";
    QTest::newRow("wrong types")
        << QByteArray(R"([7,null,[1],{"ip":{"a":1},"port":[1],"name":{},"password":[]}])")
        << QStringList{":0"} << "";
}

void LocalRosterTest::localFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, ids);
    QFETCH(QString, firstAlias);

    writeFile(content);
    CloudAPIClient client;
    client.loadLocalRoster();
    const auto servers = client.serverList();
    QCOMPARE(servers.keys(), ids);
    if (!ids.isEmpty()) {
        QCOMPARE(servers.first()->alias(), firstAlias);
        QVERIFY(servers.first()->isLocal());
    }
    QCOMPARE(fileContent(), content);
}

void LocalRosterTest::monstrousFile_data()
{
    QTest::addColumn<int>("entries");
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("taken");
    QTest::newRow("ten thousand servers") << 10000 << 0 << 256;
    QTest::newRow("two megabytes") << 1 << 2 * 1024 * 1024 << 0;
}

void LocalRosterTest::monstrousFile()
{
    QFETCH(int, entries);
    QFETCH(int, bytes);
    QByteArray content = "[";
    for (int port = 1; port <= entries; ++port)
        content += "{\"ip\":\"127.0.0.1\",\"port\":" + QByteArray::number(port) + "},";
    content.chop(1);
    writeFile(content.leftJustified(bytes) + ']');
    CloudAPIClient client;
    client.loadLocalRoster();
    QTEST(client.serverList().size(), "taken");
}

void LocalRosterTest::localFileIsReadOnEveryRequest()
{
    writeFile(R"([{"ip":"127.0.0.1","name":"One","port":1}])");
    CloudAPIClient client;
    update(&client);
    const ServerPtr first = client.serverList().value("127.0.0.1:1"_s);
    QVERIFY(first);

    // Objects in memory win over the file, and stay when the file has lost them.
    writeFile(R"([{"ip":"127.0.0.1","name":"Other","port":1},{"ip":"127.0.0.1","port":2}])");
    update(&client);
    QCOMPARE(client.serverList().keys(), QStringList({"127.0.0.1:1", "127.0.0.1:2", "s1"}));
    QCOMPARE(client.serverList().value("127.0.0.1:1"_s), first);
    QCOMPARE(first->alias(), "One"_s);
    writeFile("[]");
    update(&client);
    QCOMPARE(client.serverList().size(), 3);

    QVERIFY(QFile::remove(rosterFile));
    QTest::ignoreMessage(QtDebugMsg, "Local roster file not present");
    update(&client);
    QCOMPARE(client.serverList().keys(), QStringList({"s1"}));
}

void LocalRosterTest::fileOnDisk()
{
    writeFile("[]");
    QVERIFY(QFile::setPermissions(rosterFile, QFile::permissions(rosterFile) | QFile::ReadOther));
    CloudAPIClient client;
    client.addLocalServer(lanServer(2, QString::fromUtf8("Двор")));
    client.addLocalServer(lanServer(1, "Yard"_s));
    const QByteArray expected = R"([
    {
        "ip": "127.0.0.1",
        "name": "Yard",
        "password": "secret",
        "port": 1
    },
    {
        "ip": "127.0.0.1",
        "name": "Двор",
        "password": "secret",
        "port": 2
    }
]
)";
    QCOMPARE(fileContent(), expected);
    QVERIFY(!(QFile::permissions(rosterFile) & QFile::ReadOther));
    QCOMPARE(QDir().entryList({"local_roster*"_s}), QStringList({rosterFile}));
}

void LocalRosterTest::fileThatCannotBeWritten()
{
    QVERIFY(QDir().mkdir(rosterFile)); // stands where the file should
    CloudAPIClient client;
    QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
    QTest::ignoreMessage(QtWarningMsg, "Cannot save local roster");
    client.addLocalServer(lanServer(1));
    QCOMPARE(updated.count(), 1);
    QCOMPARE(client.serverList().size(), 1);
}

void LocalRosterTest::edit_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::addColumn<QStringList>("ids");
    QTest::newRow("new port") << localhost << 3 << QStringList{"127.0.0.1:2", "127.0.0.1:3"};
    QTest::newRow("address of another") << localhost << 2 << QStringList{"127.0.0.1:2"};
}

void LocalRosterTest::edit()
{
    QFETCH(QString, host);
    QFETCH(int, port);
    QFETCH(QStringList, ids);

    CloudAPIClient client;
    const LocalServerPtr server = lanServer(1);
    client.addLocalServer(server);
    client.addLocalServer(lanServer(2));
    QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
    client.editLocalServer(server, "New"_s, host, port, "changed"_s);
    QCOMPARE(updated.count(), 1);
    QCOMPARE(client.serverList().keys(), ids);
    QCOMPARE(client.serverList().value(server->id()).data(), server.data());
    QCOMPARE(server->alias(), "New"_s);
    QCOMPARE(server->password(), "changed"_s);
    QCOMPARE(fileContent().count("\"ip\""), ids.size());
    QVERIFY(fileContent().contains("changed"));
}

void LocalRosterTest::localServersComeBackAfterSignOut()
{
    CloudAPIClient client;
    client.addLocalServer(lanServer(1));
    update(&client);
    QCOMPARE(client.serverList().size(), 2);
    client.logout();
    QCOMPARE(client.serverList().size(), 0);
    QVERIFY(QFile::exists(rosterFile));
    update(&client);
    QCOMPARE(client.serverList().keys(), QStringList({"127.0.0.1:1", "s1"}));
}

QTEST_MAIN(LocalRosterTest)
#include "LocalRosterTest.moc"
