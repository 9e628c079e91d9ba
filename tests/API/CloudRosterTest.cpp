// SPDX-License-Identifier: MIT
#include "tests/API/CloudFixture.h"

#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include "API/Camera.h"
#include "API/Layout.h"
#include "API/PrivateFile.h"
#include "API/Server.h"

Q_DECLARE_METATYPE(ZorvaneClient::Tests::WireReply)

using namespace ZorvaneClient::API;

namespace {

WireReply success(const QByteArray &response)
{
    return WireReply::json("{\"success\":true,\"response\":" + response + "}");
}

WireReply refusal()
{
    return WireReply::json(R"({"success":false,"response":{"code":10001}})");
}

mode_t modeOf(const QString &fileName)
{
    struct stat status = {};
    ::stat(QFile::encodeName(fileName), &status);
    return status.st_mode & 0777;
}

QByteArray manyServers(int count)
{
    QByteArray content = "[";
    for (int port = 1; port <= count; ++port)
        content += "{\"ip\":\"127.0.0.1\",\"port\":" + QByteArray::number(port) + "},";
    content.back() = ']';
    return content;
}

QStringList ids()
{
    return CloudAPIClient::serverList().keys();
}

} // namespace

/// Session and roster of the service, and the LAN servers of the user's file.
class CloudRosterTest : public CloudFixture
{
    Q_OBJECT

private slots:
    void signIn_data()
    {
        QString everyAsciiCharacter;
        for (char16_t code = 1; code < 128; ++code)
            everyAsciiCharacter.append(QChar(code));
        rows<QString, WireReply, QString>(
            {"text", "reply", "session"}, // the session is null where the sign-in fails
            {{"every ASCII character twice", everyAsciiCharacter + everyAsciiCharacter,
              success(R"({"session_id":"abc"})"), "abc"},
             {"looks encoded", "100%25 %2B%26 +&=#;%", success(R"({"session_id":7})"), "7"},
             {"Cyrillic", "Пароль+Ё&ъ", success(R"({"session_id":"abc"})"), "abc"},
             {"beyond the basic plane", "\xf0\x9f\x8e\xa5", success("{}"), ""},
             {"wrong password", "", refusal(), QString()},
             {"no envelope", "", WireReply::json(R"({"session_id":"abc"})"), QString()}});
    }

    void signIn()
    {
        const auto [text, reply, session] = row<QString, WireReply, QString>();
        QCoreApplication::setApplicationVersion("6.0.1.114"_s);
        service.answer("POST", "/public/sessions", reply);
        CloudAPIClient client;
        QSignalSpy succeeded(&client, &CloudAPIClient::loginSuccess);
        QSignalSpy failed(&client, &CloudAPIClient::loginFailed);
        client.tryLogin(text, text);
        QTRY_COMPARE(succeeded.count() + failed.count(), 1);
        QCOMPARE(failed.count(), session.isNull() ? 1 : 0);
        QCOMPARE(CloudAPIClient::sessionId(), session);
        const WireRequest request = service.requests().constFirst();
        QCOMPARE(request.requestLine(), QByteArray("POST /public/sessions HTTP/1.1"));
        QCOMPARE(request.header("Content-Type"), QByteArray("application/x-www-form-urlencoded"));
        // What a service makes of a form body: one decoding of each key and value.
        const QUrlQuery form(QString::fromLatin1(request.body).replace('+', "%20"));
        for (const char *key : {"login", "password"})
            QCOMPARE(form.queryItemValue(key, QUrl::FullyDecoded), text);
        QVERIFY(request.body.startsWith("clientType=windows&clientVersion=6.0.1.114&login="));
        QCOMPARE(form.queryItems().size(), 4);
    }

    void signOutForgetsEverything()
    {
        service.succeed("POST", "/public/sessions", R"({"session_id":"abc"})");
        CloudAPIClient client;
        client.tryLogin("a@b"_s, "p"_s);
        QTRY_COMPARE(client.sessionId(), "abc"_s);
        updateRoster(&client);
        client.addLocalServer(lanServer(1));
        client.addLayout(LayoutPtr::create());
        // What a list in an open window does: it reads while it is told.
        QStringList seen;
        const auto look = [&] {
            client.clearRoster(); // blocks where the lock is held
            seen << "%1 %2"_s.arg(client.serverList().size()).arg(client.layoutList().size());
        };
        connect(&client, &CloudAPIClient::rosterUpdated, this, look);
        connect(&client, &CloudAPIClient::layoutsUpdated, this, look);
        client.logout();
        QCOMPARE(seen, (QStringList{"0 0", "0 0"}));
        QCOMPARE(client.sessionId(), QString());
        QTRY_COMPARE(service.requestsTo("/public/sessions/abc").size(), 1);
        QVERIFY(service.requests().last().head.startsWith("DELETE "));
        // The file of LAN servers belongs to no account.
        client.disconnect(this);
        updateRoster(&client);
        QCOMPARE(ids(), (QStringList{"127.0.0.1:1", "s1"}));
    }

    void knownServerKeepsItsObject()
    {
        service.succeed("GET", "/public/roster",
                        R"({"1":{"id":"s1","name":"One","cameras":{"7":{"id":7,"name":"old"}}},
                            "2":{"id":"s2","name":"Two"}})");
        CloudAPIClient client;
        updateRoster(&client);
        const ServerPtr kept = client.serverList().value("s1"_s);
        const ServerPtr removed = client.serverList().value("s2"_s);
        QVERIFY(kept && removed);
        const CameraPtr camera = kept->cameras().value(7);

        // Signals of servers come with the lock held, and who hears them reads the lists.
        QStringList seen;
        connect(kept.data(), &Server::aliasChanged, this, [&seen](const QString &alias) {
            seen << alias << ids() << CloudAPIClient::sessionId()
                 << QString::number(CloudAPIClient::layoutList().size());
        });
        // Empty entries are skipped, and the keys say nothing.
        service.succeed("GET", "/public/roster",
                        R"({"1":{},"2":[],"3":null,"4":"text","5":{"id":"s3"},"6":{"id":"s3"},
                            "7":{"id":"s1","name":"Yard","cameras":{"7":{"id":7,"name":"new"}}}})");
        updateRoster(&client);
        QCOMPARE(seen, (QStringList{"Yard", "s1", "s2", "s3", "", "0"}));
        QCOMPARE(ids(), (QStringList{"s1", "s3"}));
        QCOMPARE(client.serverList().value("s1"_s), kept);
        QCOMPARE(kept->cameras().value(7), camera);
        QCOMPARE(camera->name(), "new"_s);
        QCOMPARE(removed->alias(), "Two"_s);
        service.succeed("GET", "/public/roster", "{}");
        updateRoster(&client);
        QCOMPARE(ids(), QStringList());
    }

    void throttle()
    {
        struct Step {
            int seconds;
            WireReply reply;
            int requests; // so far
            int failures;
        };
        // An empty roster is never fresh, and a failed request counts, too.
        const Step steps[] = {{0, success("{}"), 1, 0},       {0, success("{}"), 2, 0},
                              {0, success(oneServer), 3, 0},  {29, success("{}"), 3, 0},
                              {30, success(oneServer), 4, 0}, {60, refusal(), 5, 1},
                              {89, success("{}"), 5, 1},      {90, success(oneServer), 6, 1}};
        CloudAPIClient client;
        client.addLocalServer(lanServer(1));
        QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
        QSignalSpy failed(&client, &CloudAPIClient::rosterUpdateError);
        int outcomes = 0;
        for (const Step &step : steps) {
            ++outcomes;
            setTime(step.seconds);
            service.answer("GET", "/public/roster", step.reply);
            client.updateRoster();
            QTRY_COMPARE(updated.count() + failed.count(), outcomes);
            QCOMPARE(service.requestsTo("/public/roster").size(), step.requests);
            QCOMPARE(failed.count(), step.failures);
            QCOMPARE(ids().size(), outcomes < 3 ? 1 : 2);
        }
    }

    void deadHandleIsHarmless()
    {
        const camera_global_id_t camera{"s1"_s, 1};
        // The service leaves the connection open; only who asked can close it.
        WireReply reply = success(oneServer);
        reply.bytes.replace("Connection: close\r\n", "");
        reply.ending = WireReply::Ending::KeepOpen;
        service.answer("GET", "/public/roster", reply);
        QTest::ignoreMessage(QtWarningMsg, "Error saving layouts");
        QTest::ignoreMessage(QtWarningMsg, "Error saving rotation 10001 500");
        {
            CloudAPIClient client;
            client.checkForUpdates();
            client.updateRoster();
            client.requestPreview(camera.server, camera.camera);
            client.getTimeline(camera, 1, 2);
            client.getCalendar(camera, 1, 2);
            client.setCameraRotation(camera, 90);
            client.saveLayoutsToAPI();
            client.tryLogin("a"_s, "b"_s);
        }
        QTRY_COMPARE(service.requests().size(), 8);
        QTRY_COMPARE(service.server().openConnections(), 0);
        // An exchange begun later has its outcome, so theirs have been handled.
        CloudAPIClient later;
        QSignalSpy failed(&later, &CloudAPIClient::updatesError);
        later.checkForUpdates();
        QTRY_COMPARE(failed.count(), 1);
        QVERIFY(ids().isEmpty()); // dropped with its handle
    }

    void localFile_data()
    {
        const QByteArray one = R"([{"ip":"127.0.0.1","name":"One","password":"p","port":1})";
        const QByteArray two = R"(,{"ip":"127.0.0.1","name":"Two","port":1}])";
        const QString first = "127.0.0.1:1"_s;
        rows<QByteArray, int, QString, QString>(
            {"content", "count", "firstId", "firstAlias"},
            {{"sorted by id", R"([{"ip":"127.0.0.3","port":2},{"ip":"127.0.0.2","name":"B"}])", 2,
              "127.0.0.2:0", "B"},
             {"first of the same id wins", one + two, 1, first, "One"},
             {"Cyrillic", R"([{"ip":"127.0.0.1","name":"Двор","port":1}])", 1, first, "Двор"},
             {"wrong types", R"([7,null,[1],{"ip":{"a":1},"port":[1],"name":{},"password":[]}])", 1,
              ":0", ""},
             {"ten thousand servers", manyServers(10000), 256, first, ""},
             {"damaged", one, 0, "", ""},
             {"garbage", QByteArray(1000, '\xff'), 0, "", ""},
             {"two megabytes", manyServers(1).leftJustified(2 * 1024 * 1024), 0, "", ""}});
    }

    void localFile()
    {
        const auto [content, count, firstId, firstAlias] = row<QByteArray, int, QString, QString>();
        writeFile(rosterFile, content);
        CloudAPIClient client;
        client.loadLocalRoster();
        const auto servers = client.serverList();
        QCOMPARE(servers.size(), count);
        if (count > 0) {
            QCOMPARE(servers.firstKey(), firstId);
            QCOMPARE(servers.first()->alias(), firstAlias);
            QVERIFY(servers.first()->isLocal());
        }
        QCOMPARE(contentOf(rosterFile), content);
    }

    void localFileIsReadOnEveryRequest()
    {
        writeFile(rosterFile, R"([{"ip":"127.0.0.1","name":"One","port":1}])");
        CloudAPIClient client;
        updateRoster(&client);
        const ServerPtr first = client.serverList().value("127.0.0.1:1"_s);
        QVERIFY(first);

        // Objects in memory win over the file, and stay when the file has lost them.
        writeFile(rosterFile,
                  R"([{"ip":"127.0.0.1","name":"Other","port":1},{"ip":"127.0.0.1","port":2}])");
        updateRoster(&client);
        QCOMPARE(ids(), (QStringList{"127.0.0.1:1", "127.0.0.1:2", "s1"}));
        QCOMPARE(client.serverList().value("127.0.0.1:1"_s), first);
        QCOMPARE(first->alias(), "One"_s);
        writeFile(rosterFile, "[]");
        updateRoster(&client);
        QCOMPARE(ids().size(), 3);
        QVERIFY(QFile::remove(rosterFile));
        updateRoster(&client);
        QCOMPARE(ids(), QStringList{"s1"});
    }

    void fileOnDisk()
    {
        const mode_t mask = ::umask(0);
        const auto restore = qScopeGuard([mask] { ::umask(mask); });
        CloudAPIClient client;
        client.addLocalServer(lanServer(2, "Двор"_s));
        QCOMPARE(modeOf(rosterFile), mode_t(0600));
        // A crash in the middle must not cost the old content: who has it open keeps all of it.
        ::chmod(QFile::encodeName(rosterFile), 0644);
        const QByteArray before = contentOf(rosterFile);
        QFile reader(rosterFile);
        QVERIFY(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        client.addLocalServer(lanServer(1, "Yard"_s));
        QCOMPARE(reader.readAll(), before);
        QCOMPARE(QJsonDocument::fromJson(contentOf(rosterFile)).toJson(QJsonDocument::Compact),
                 QByteArray(R"([{"ip":"127.0.0.1","name":"Yard","password":"secret","port":1},)"
                            R"({"ip":"127.0.0.1","name":"Двор","password":"secret","port":2}])"));
        QCOMPARE(modeOf(rosterFile), mode_t(0600));
        QCOMPARE(QDir().entryList({"local_roster*"_s}, QDir::Files | QDir::Hidden),
                 QStringList{rosterFile});
    }

    void fileIsWrittenInPlaceWhereNoneCanBeMade()
    {
        // Nobody gets into the folder of this run.
        const QTemporaryDir folder("/tmp/zorvane-test.XXXXXX"_s);
        const QString name = folder.filePath("file"_s);
        writeFile(name, QByteArray(100, 'x'));
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0)
            QCOMPARE(::chown(QFile::encodeName(name), nobody, gid_t(-1)), 0);
        ::chmod(QFile::encodeName(name), 0644);
        ::chmod(QFile::encodeName(folder.path()), 0555);
        const auto previous = static_cast<uid_t>(::setfsuid(nobody));
        const bool written = Internal::writePrivateFile(name, "after");
        ::setfsuid(previous);
        ::chmod(QFile::encodeName(folder.path()), 0755);
        QVERIFY(written);
        QCOMPARE(contentOf(name), QByteArray("after"));
        QCOMPARE(modeOf(name), mode_t(0600));
    }
};

QTEST_MAIN(CloudRosterTest)
#include "CloudRosterTest.moc"
