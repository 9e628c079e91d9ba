// SPDX-License-Identifier: MIT
#include "API/CloudAPIClient.h"

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "API/Server.h"
#include "App/Environment.h"
#include "App/Settings.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient::API;

namespace App = ZorvaneClient::App;
using Internal::LayoutBounds;

namespace {

// MD5 of "demo@zorvane.example".
const QString demoCache = "layouts.924942403f0708c36c6637682cb19b21"_s;

// 2026-11-14 09:00:00 UTC.
constexpr int startStamp = 1794646800;

QString cachePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QLatin1Char('/') +
           demoCache;
}

void writeCache(const QByteArray &content)
{
    QFile file(cachePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray cacheContent()
{
    QFile file(cachePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray document(int stamp, const QByteArray &layouts)
{
    return "{\"last_update\":" + QByteArray::number(stamp) + ",\"layouts\":[" + layouts + "]}";
}

QByteArray layoutJson(const QByteArray &id, const QByteArray &name, const QByteArray &cameras = "")
{
    return "{\"id\":\"" + id + "\",\"name\":\"" + name +
           "\",\"rows\":2,\"columns\":3,\"cameras\":[" + cameras + "]}";
}

QStringList names()
{
    QStringList list;
    const LayoutsContainer layouts = CloudAPIClient::layoutList();
    for (const LayoutPtr &layout : layouts)
        list.append(layout->name());
    return list;
}

/// Layouts with cells of every kind that nobody sends on purpose.
QByteArray hostileLayouts()
{
    QByteArray cells = R"(7,null,[1],{"server":[1],"camera":{}},{"row":"x","w":{}})";
    for (int i = 0; i < 10000; ++i)
        cells += R"(,{"server":"s1","camera":7,"row":)" + QByteArray::number(i / 100 - 10) +
                 ",\"column\":" + QByteArray::number(i % 100 - 10) + R"(,"w":1000000000,"h":-7})";
    return R"(7,null,"x",[1],{"id":{},"name":[1],"rows":"many","cameras":"all"},)"
           R"({"id":"a","rows":1000000000,"columns":1000000000,"name":")" +
           QByteArray(1000000, 'x') + R"(","cameras":[)" + cells + "]}";
}

} // namespace

class CloudLayoutsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(service.start());
        QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::CacheLocation)));
    }

    void init()
    {
        setTime(0);
        App::settings().setValue("auth/email"_s, "demo@zorvane.example"_s);
        QDir().rmdir(cachePath());
        const QDir cache(QStandardPaths::writableLocation(QStandardPaths::CacheLocation));
        for (const QString &file : cache.entryList({"layouts*"_s}))
            QVERIFY(QFile::remove(cache.filePath(file)));
        service.reset();
        CloudAPIClient().logout();
        QTRY_COMPARE(service.requests().size(), 1);
        service.reset();
        loadServers();
        service.succeed("GET", "//layouts", document(0, ""));
        service.succeed("POST", "//layouts", "null");
    }

    void nothingWithoutServers()
    {
        CloudAPIClient client;
        client.clearRoster();
        writeCache(document(100, layoutJson("a", "Cached")));
        QSignalSpy updated(&client, &CloudAPIClient::layoutsUpdated);
        QSignalSpy failed(&client, &CloudAPIClient::layoutsUpdateError);
        client.updateLayouts();
        QCOMPARE(client.layoutList().size(), 0);
        loadServers();
        QCOMPARE(service.requestsTo("//layouts").size(), 0);
        QCOMPARE(updated.count() + failed.count(), 0);
    }

    void newerCopyOfTheServiceWins()
    {
        const QByteArray cell = R"({"server":"s1","camera":7,"row":1,"column":2,"w":1,"h":1})";
        writeCache(document(100, layoutJson("a", "Cached") + "," + layoutJson("b", "Dropped")));
        service.succeed("GET", "//layouts", document(101, layoutJson("a", "Fresh", cell)));
        CloudAPIClient client;
        QSignalSpy updated(&client, &CloudAPIClient::layoutsUpdated);
        update(&client);
        QCOMPARE(names(), QStringList({"Fresh"}));
        QCOMPARE(updated.count(), 2); // the cache's copy, then the service's
        const LayoutPtr layout = client.layoutList().value("a"_s);
        QCOMPARE(layout->rows(), 2);
        QCOMPARE(layout->columns(), 3);
        QCOMPARE(layout->cellList().size(), 1);
        QCOMPARE(layout->cellAt(1, 2).camera,
                 client.serverList().value("s1"_s)->cameras().value(7));

        // The cache has the new list under a stamp of its own, and nothing was sent.
        const QJsonObject saved = QJsonDocument::fromJson(cacheContent()).object();
        QVERIFY(saved.value("last_update"_s).toInt() > startStamp);
        QVERIFY(!(QFile::permissions(cachePath()) & QFile::ReadOther));
        QCOMPARE(saved.value("layouts"_s).toArray().size(), 1);
        QCOMPARE(service.requestsTo("//layouts").size(), 1);
    }

    void serviceGetsWhatIsNewer_data()
    {
        rows<int>({"stamp"}, {
                                 {"equal", 100},
                                 {"older", 99},
                             });
    }

    void serviceGetsWhatIsNewer()
    {
        const auto [stamp] = row<int>();

        const QByteArray cell = R"({"server":"s1","camera":8,"row":0,"column":0,"w":1,"h":2})";
        writeCache(document(100, layoutJson("a", "Cached", cell)));
        service.succeed("GET", "//layouts", document(stamp, layoutJson("b", "Old")));
        CloudAPIClient client;
        update(&client);
        QCOMPARE(names(), QStringList({"Cached"}));
        const auto requests = service.requestsTo("//layouts");
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests.at(1).method(), QByteArray("POST"));
        const QJsonArray sent = QJsonDocument::fromJson(requests.at(1).body).array();
        QCOMPARE(sent,
                 QJsonDocument::fromJson("[" + layoutJson("a", "Cached", cell) + "]").array());
    }

    void damagedCache_data()
    {
        rows<QByteArray>(
            {"content"},
            {
                {"cut off", document(100, layoutJson("a", "Cached")).chopped(1)},
                {"stamp is text", QByteArray(R"({"last_update":"soon","layouts":[{"id":"a"}]})")},
                {"nested too deep", QByteArray(100000, '[')},
            });
    }

    void damagedCache()
    {
        const auto [content] = row<QByteArray>();

        writeCache(content);
        service.succeed("GET", "//layouts", document(5, layoutJson("a", "Fresh")));
        CloudAPIClient client;
        update(&client);
        QCOMPARE(names(), QStringList({"Fresh"}));
    }

    void hostileDocument()
    {
        const QByteArray layouts = hostileLayouts();
        const auto boundedCells = [] {
            constexpr QRect bounds(0, 0, LayoutBounds::gridSide, LayoutBounds::gridSide);
            const LayoutPtr layout = CloudAPIClient::layoutList().value("a"_s);
            if (!layout || layout->rows() > LayoutBounds::gridSide ||
                layout->columns() > LayoutBounds::gridSide ||
                layout->name().size() > LayoutBounds::nameLength)
                return -1;
            const QList<LayoutCell> kept = layout->cellList();
            for (const LayoutCell &cell : kept) {
                if (!bounds.contains(cell.area.topLeft()) ||
                    cell.area.width() > LayoutBounds::gridSide || cell.area.height() < 0)
                    return -1;
            }
            return static_cast<int>(kept.size());
        };
        writeCache(document(100, layouts));
        CloudAPIClient client;
        client.updateLayouts();
        const int count = boundedCells();
        QVERIFY(count > 0);
        service.succeed("GET", "//layouts", document(101, layouts));
        update(&client);
        QCOMPARE(boundedCells(), count);
    }

    void throttle()
    {
        CloudAPIClient client;
        client.updateLayouts();
        QTRY_COMPARE(service.requestsTo("//layouts").size(), 2); // GET and POST
        setTime(29);

        // The signal comes with the lock held; what a list reads must not block.
        int servers = 0;
        connect(&client, &CloudAPIClient::layoutsUpdated, this, [&] {
            servers = client.serverList().size() + client.layoutList().size();
            client.sessionId();
        });
        QSignalSpy updated(&client, &CloudAPIClient::layoutsUpdated);
        client.updateLayouts();
        QCOMPARE(updated.count(), 1);
        QCOMPARE(servers, 1);
        setTime(30);
        client.updateLayouts();
        QTRY_COMPARE(service.requestsTo("//layouts").size(), 4);
    }

    void knownLayoutKeepsItsObject()
    {
        service.succeed("GET", "//layouts",
                        document(startStamp, layoutJson("a", "A") + "," + layoutJson("b", "B")));
        CloudAPIClient client;
        update(&client);
        const LayoutPtr a = client.layoutList().value("a"_s);
        QCOMPARE(names(), QStringList({"A", "B"}));
        constexpr int farAhead = 2000000000;
        service.succeed(
            "GET", "//layouts",
            document(farAhead, layoutJson("a", "Renamed") + "," + layoutJson("c", "C")));
        update(&client);
        QCOMPARE(names(), QStringList({"Renamed", "C"}));
        QCOMPARE(client.layoutList().value("a"_s), a);
    }

    void failureKeepsLayouts()
    {
        writeCache(document(100, layoutJson("a", "A")));
        service.answer("GET", "//layouts", WireReply::json("", 500));
        CloudAPIClient client;
        QSignalSpy failed(&client, &CloudAPIClient::layoutsUpdateError);
        update(&client);
        QCOMPARE(failed.count(), 1);
        QCOMPARE(names(), QStringList({"A"}));
        QCOMPARE(cacheContent(), document(100, layoutJson("a", "A")));
    }

    void failedSaveIsTold()
    {
        service.answer("POST", "//layouts",
                       WireReply::json(R"({"success":false,"response":{"code":10003}})"));
        CloudAPIClient client;
        QSignalSpy failed(&client, &CloudAPIClient::layoutsUpdateError);
        client.addLayout(LayoutPtr::create());
        QTest::ignoreMessage(QtWarningMsg, "Error saving layouts");
        client.saveLayoutsToAPI();
        QTRY_COMPARE(failed.count(), 1);

        // The stamp here stays ahead, so the next round sends the list again.
        service.succeed("POST", "//layouts", "null");
        update(&client);
        QCOMPARE(service.requestsTo("//layouts").size(), 2);
        const QByteArray sent = service.requestsTo("//layouts").constLast().body;
        QCOMPARE(QJsonDocument::fromJson(sent).array().size(), 1);
    }

    void cacheThatCannotBeWritten()
    {
        QVERIFY(QDir().mkdir(cachePath())); // stands where the file should
        CloudAPIClient client;
        client.addLayout(LayoutPtr::create());
        QTest::ignoreMessage(QtWarningMsg,
                             "Could not save layouts cache to \"%1\""_s.arg(cachePath()).toUtf8());
        client.saveLayoutsToFile();
        // The stamp has moved all the same, so an older copy of the service changes nothing.
        service.succeed("GET", "//layouts", document(startStamp, layoutJson("b", "Old")));
        update(&client);
        QCOMPARE(client.layoutList().size(), 1);
        QVERIFY(!names().contains("Old"_s));
    }

    void signOutKeepsTheCache()
    {
        CloudAPIClient client;
        client.addLayout(LayoutPtr::create());
        client.saveLayoutsToFile();
        const QByteArray saved = cacheContent();
        client.logout();
        QCOMPARE(client.layoutList().size(), 0);
        QCOMPARE(cacheContent(), saved);
        loadServers();
        client.updateLayouts();
        QCOMPARE(client.layoutList().size(), 1);
        QTRY_COMPARE(service.requestsTo("//layouts").size(), 2);
    }

private:
    void setTime(int seconds)
    {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(startStamp + seconds);
        App::Environment::setClock([time] { return time; });
    }

    void loadServers()
    {
        service.succeed("GET", "/public/roster",
                        R"({"1":{"id":"s1","cameras":{"7":{"id":7},"8":{"id":8}}}})");
        CloudAPIClient client;
        QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
        client.updateRoster();
        QTRY_COMPARE(updated.count(), 1);
        service.server().clearRequests();
    }

    /// Asks once and waits until the service's answer was taken and all traffic is over.

    void update(CloudAPIClient *client)
    {
        static int minutes = 0;
        constexpr int pastThrottleSeconds = 60;
        setTime(++minutes * pastThrottleSeconds);
        service.server().clearRequests();
        client->updateLayouts();
        QTRY_VERIFY(!service.requestsTo("//layouts").isEmpty());
        QTRY_COMPARE(service.server().openConnections(), 0);
        // An exchange begun later has its outcome, so this one was handled, and so was what it
        // led to.
        for (int hop = 0; hop < 2; ++hop) {
            CloudAPIClient later;
            QSignalSpy done(&later, &CloudAPIClient::updatesError);
            later.checkForUpdates();
            QTRY_COMPARE(done.count(), 1);
            QTRY_COMPARE(service.server().openConnections(), 0);
        }
    }

    ScriptedService service;
};

QTEST_MAIN(CloudLayoutsTest)
#include "CloudLayoutsTest.moc"
