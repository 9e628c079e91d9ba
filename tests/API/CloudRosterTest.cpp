// SPDX-License-Identifier: MIT
#include "tests/API/CloudFixture.h"

#include <sys/stat.h>

namespace {

QStringList ids()
{
    return CloudAPIClient::serverList().keys();
}

/// Ids of the LAN servers in the file.
QSet<QString> storedIds()
{
    QSet<QString> stored;
    for (const QVariant &entry :
         QJsonDocument::fromJson(contentOf(rosterFile)).toVariant().toList())
        stored << LocalServer::idOf(entry.toMap());
    return stored;
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
        rows<QString, QByteArray, QString>(
            {"text", "response", "session"}, // the session is null where the sign-in fails
            {{"every ASCII character twice", everyAsciiCharacter + everyAsciiCharacter,
              R"({"session_id":"abc"})", "abc"},
             {"looks encoded", "100%25 %2B%26 +&=#;%", R"({"session_id":7})", "7"},
             {"Cyrillic and a sign beyond the basic plane", "Пароль+Ё&ъ\xf0\x9f\x8e\xa5", "{}", ""},
             {"wrong password", "", "", QString()}});
    }

    void signIn()
    {
        const auto [text, response, session] = row<QString, QByteArray, QString>();
        QCoreApplication::setApplicationVersion("6.0.1.114"_s);
        if (!response.isEmpty())
            service.succeed("POST", "/public/sessions", response);
        QSignalSpy outcome(client.get(), session.isNull() ? &CloudAPIClient::loginFailed
                                                          : &CloudAPIClient::loginSuccess);
        client->tryLogin(text, text);
        QTRY_COMPARE(outcome.count(), 1);
        QCOMPARE(CloudAPIClient::sessionId(), session);
        const WireRequest request = service.requests().first();
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
        client->tryLogin("a@b"_s, "p"_s);
        QTRY_COMPARE(client->sessionId(), "abc"_s);
        updateRoster();
        client->addLocalServer(lanServer(1));
        client->addLayout(LayoutPtr::create());
        // What a list in an open window does: it reads while it is told.
        QStringList seen;
        const auto look = [&] {
            client->clearRoster(); // blocks where the lock is held
            seen << "%1 %2"_s.arg(client->serverList().size()).arg(client->layoutList().size());
        };
        connect(client.get(), &CloudAPIClient::rosterUpdated, this, look);
        connect(client.get(), &CloudAPIClient::layoutsUpdated, this, look);
        client->logout();
        QCOMPARE(seen, (QStringList{"0 0", "0 0"}));
        QCOMPARE(client->sessionId(), QString());
        QTRY_COMPARE(service.requestsTo("/public/sessions/abc").size(), 1);
        QVERIFY(service.requests().last().head.startsWith("DELETE "));
        // The file of LAN servers belongs to no account.
        client->disconnect(this);
        updateRoster();
        QCOMPARE(ids(), (QStringList{"127.0.0.1:1", "s1"}));
        // It is read each time. Servers in memory win, and go when there is no file any more.
        writeFile(rosterFile, R"([{"ip":"127.0.0.1","name":"Other","port":1},{"port":2}])");
        updateRoster();
        QCOMPARE(ids(), (QStringList{"127.0.0.1:1", ":2", "s1"}));
        QCOMPARE(client->serverList().first()->alias(), "LAN"_s);
        QVERIFY(QFile::remove(rosterFile));
        updateRoster();
        QCOMPARE(ids(), QStringList{"s1"});
    }

    void knownServerKeepsItsObject()
    {
        updateRoster(R"({"1":{"id":"s1","name":"One","cameras":{"7":{"id":7,"name":"old"}}},
                         "2":{"id":"s2","name":"Two"}})");
        const ServerPtr kept = client->serverList().value("s1"_s);
        const CameraPtr camera = kept->cameras().value(7);

        // Signals of servers come with the lock held, and who hears them reads the lists.
        QStringList seen;
        connect(kept.data(), &Server::aliasChanged, this, [&seen](const QString &alias) {
            const int layouts = CloudAPIClient::layoutList().size();
            seen << alias << ids() << CloudAPIClient::sessionId() << QString::number(layouts);
        });
        // Empty entries are skipped, and the keys say nothing.
        updateRoster(R"({"1":{},"2":[],"3":null,"4":"text","5":{"id":"s3"},"6":{"id":"s3"},
                         "7":{"id":"s1","name":"Yard","cameras":{"7":{"id":7,"name":"new"}}}})");
        QCOMPARE(seen, (QStringList{"Yard", "s1", "s2", "s3", "", "0"}));
        QCOMPARE(ids(), (QStringList{"s1", "s3"}));
        QCOMPARE(client->serverList().value("s1"_s), kept);
        QVERIFY(kept->cameras().value(7) == camera && camera->name() == "new"_s);
        updateRoster("{}");
        QCOMPARE(ids(), QStringList());
    }

    void throttle()
    {
        // Seconds, reply, and how many requests and failures so far. An empty roster is never
        // fresh, and a failed request counts, too.
        using Step = std::tuple<int, QByteArray, int, int>;
        const Step steps[] = {{0, "{}", 1, 0},  {0, "{}", 2, 0},       {0, oneServer, 3, 0},
                              {29, "{}", 3, 0}, {30, oneServer, 4, 0}, {60, "", 5, 1},
                              {89, "{}", 5, 1}, {90, oneServer, 6, 1}, {-3600, oneServer, 7, 1}};
        client->addLocalServer(lanServer(1));
        QSignalSpy updated(client.get(), &CloudAPIClient::rosterUpdated);
        QSignalSpy failed(client.get(), &CloudAPIClient::rosterUpdateError);
        int outcomes = 0;
        for (const auto &[seconds, roster, requests, failures] : steps) {
            ++outcomes;
            setTime(seconds);
            service.succeed("GET", "/public/roster", roster);
            client->updateRoster();
            QTRY_COMPARE(updated.count() + failed.count(), outcomes);
            QCOMPARE(service.requestsTo("/public/roster").size(), requests);
            QCOMPARE(failed.count(), failures);
            QCOMPARE(ids().size(), outcomes < 3 ? 1 : 2);
        }
    }

    void deadHandleIsHarmless()
    {
        // The service leaves the connection open; only who asked can close it.
        WireReply reply = WireReply::json("{\"success\":true,\"response\":" + oneServer + '}');
        reply.bytes.replace("Connection: close\r\n", "");
        reply.ending = WireReply::Ending::KeepOpen;
        service.answer("GET", "/public/roster", reply);
        client->checkForUpdates();
        client->updateRoster();
        client->requestPreview("s1"_s, 1);
        client->getTimeline({"s1"_s, 1}, 1, 2);
        client->getCalendar({"s1"_s, 1}, 1, 2);
        client->setCameraRotation({"s1"_s, 1}, 90);
        client->saveLayoutsToAPI();
        client->tryLogin("a"_s, "b"_s);
        client.reset();
        QTRY_COMPARE(service.requests().size(), 8);
        settle();
        QVERIFY(ids().isEmpty()); // dropped with its handle
    }

    void localFile_data()
    {
        const QByteArray one = R"([{"ip":"127.0.0.1","name":"Двор","password":"p","port":1})";
        const QByteArray two = R"(,{"ip":"127.0.0.1","name":"Two","port":1}])";
        const QString first = "127.0.0.1:1"_s;
        QByteArray many = "[{}";
        for (int port = 1; port <= 10000; ++port)
            many += ",{\"port\":" + QByteArray::number(port) + '}';
        rows<QByteArray, int, QString, QString, int>(
            {"content", "count", "firstId", "firstAlias", "saved"},
            {{"sorted by id", R"([{"ip":"127.0.0.3","port":2},{"ip":"127.0.0.2","name":"B"}])", 2,
              "127.0.0.2:0", "B", 2},
             {"first of the same id wins", one + two, 1, first, "Двор", 1},
             {"wrong types", R"([7,null,[1],{"ip":{"a":1},"port":[1],"name":{}}])", 1, ":0", "", 1},
             {"ten thousand servers", many + ']', 256, ":0", "", 9999},
             {"damaged", one, 0, "", "", 0},
             {"two megabytes", QByteArray("[{}]").leftJustified(2 << 20), 1, ":0", "", 1}});
    }

    void localFile()
    {
        const auto [content, count, firstId, firstAlias, saved] =
            row<QByteArray, int, QString, QString, int>();
        writeFile(rosterFile, content);
        client->loadLocalRoster();
        const auto servers = client->serverList();
        QCOMPARE(servers.size(), count);
        const ServerPtr server = servers.value(firstId);
        QVERIFY(count == 0 || servers.first() == server);
        QVERIFY(!server || (server->alias() == firstAlias && server->isLocal()));
        QCOMPARE(contentOf(rosterFile), content);
        // A save keeps also what isn't connected; what is added, moved and deleted goes.
        const auto added = LocalServerPtr::create("Yard"_s, QString(), 10000, QString());
        client->addLocalServer(added);
        client->editLocalServer(added, "Gate"_s, QString(), 9999, QString());
        client->deleteLocalServer(added);
        QCOMPARE(storedIds().size(), saved);
    }

    void fileOnDisk()
    {
        const mode_t mask = ::umask(0);
        const auto restore = qScopeGuard([mask] { ::umask(mask); });
        client->addLocalServer(lanServer(2, "Двор"_s));
        QVERIFY(isPrivate(rosterFile));
        // A crash in the middle must not cost the old content: who has it open keeps all of it.
        ::chmod(QFile::encodeName(rosterFile), 0644);
        const QByteArray before = contentOf(rosterFile);
        QFile reader(rosterFile);
        QVERIFY(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        client->addLocalServer(lanServer(1, "Yard"_s));
        QCOMPARE(reader.readAll(), before);
        const auto written = QJsonDocument::fromJson(contentOf(rosterFile));
        QCOMPARE(written.toJson(QJsonDocument::Compact),
                 QByteArray(R"([{"ip":"127.0.0.1","name":"Yard","password":"secret","port":1},)"
                            R"({"ip":"127.0.0.1","name":"Двор","password":"secret","port":2}])"));
        QVERIFY(isPrivate(rosterFile));
        QCOMPARE(QDir().entryList({"local_roster*"_s}, QDir::Files | QDir::Hidden).size(), 1);
    }
};

QTEST_MAIN(CloudRosterTest)
#include "CloudRosterTest.moc"
