// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "App/ServiceProfile.h"
#include "App/SettingsKeys.h"
#include "service/ClientFiles.h"
#include "service/DecodingTimes.h"
#include "service/HttpServer.h"
#include "service/PasswordGuard.h"

using namespace ZorvaneService;
using namespace std::chrono_literals;

/// What the library does to peers that ask for too much, and for those it is made for.
class ServiceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        HttpLimits limits;
        limits.headerBytes = 2000;
        limits.bodyBytes = 3000;
        patient = portWith(limits);
        limits.idleTime = limits.requestTime = 300ms;
        hasty = portWith(limits);
        QVERIFY(patient != 0 && hasty != 0);
    }

    /// "[n]" stands for so many letters. Who asks to close is waited for.
    void requests_data()
    {
        rows<QByteArray, QByteArray, QByteArray, QByteArray>(
            {"first", "rest", "status", "end"},
            {{"good", "POST / HTTP/1.1\r\nConnection: close\r\n",
              "Content-Length: 2900\r\n\r\n[2900]", "200 OK", "2900 bytes"},
             {"long headers", "GET / HTTP/1.1\r\nConnection: close\r\n", "A: [1900]\r\n\r\n",
              "200 OK", "0 bytes"},
             {"too long headers", "GET / HTTP/1.1\r\nConnection: close\r\n",
              "A: [1000]\r\nB: [1000]\r\n\r\n", "400 Bad Request", ""},
             {"endless first line", "GET /[9000]", "", "", ""},
             {"large body", "POST / HTTP/1.1\r\nConnection: close\r\n",
              "Content-Length: 3001\r\n\r\n[3001]", "413 Payload Too Large", ""},
             {"endless chunks", "POST / HTTP/1.1\r\nConnection: close\r\n",
              "Transfer-Encoding: chunked\r\n\r\n1800\r\n[6144]\r\n", "400 Bad Request", ""},
             {"many ranges", "GET / HTTP/1.1\r\nConnection: close\r\n",
              "Range: bytes=0-1,0-1,0-1\r\n\r\n", "200 OK", "0 bytes"},
             {"silence", "", "", "", ""},
             {"half a request", "GET / HTTP/1.1\r\n", "A: b", "400 Bad Request", ""},
             {"half a body", "POST / HTTP/1.1\r\n", "Content-Length: 9\r\n\r\nab",
              "400 Bad Request", ""}});
    }

    void requests()
    {
        auto [first, rest, status, end] = row<QByteArray, QByteArray, QByteArray, QByteArray>();
        QByteArray sent = first + rest;
        for (const int letters : {1000, 1900, 2900, 3001, 6144, 9000})
            sent.replace("[" + QByteArray::number(letters) + "]", QByteArray(letters, 'a'));
        const auto socket = connected(sent.contains("close") ? patient : hasty);
        socket->write(sent);
        QTRY_COMPARE(socket->state(), QAbstractSocket::UnconnectedState);
        const QByteArray reply = socket->readAll();
        QCOMPARE(reply.left(reply.indexOf('\r')).mid(9), status);
        QVERIFY2(reply.endsWith(end), reply);
    }

    /// What looks like its end to whoever only sees that nothing comes any more.
    void brokenOff_data() { rows<bool>({"isWhole"}, {{"whole", true}, {"broken off", false}}); }

    void brokenOff()
    {
        const auto [isWhole] = row<bool>();
        const auto socket = connected(patient);
        socket->write(isWhole ? "GET /stream HTTP/1.1\r\n\r\n" : "GET /broken HTTP/1.1\r\n\r\n");
        QVERIFY(socket->waitForBytesWritten());
        const int descriptor = int(socket->socketDescriptor());
        char bytes[4096];
        ssize_t size = 1;
        while (size > 0) {
            pollfd one{descriptor, POLLIN, 0};
            QVERIFY(poll(&one, 1, 60'000) == 1);
            size = recv(descriptor, bytes, sizeof bytes, 0);
        }
        QCOMPARE(size, isWhole ? 0 : -1);
        QVERIFY(isWhole || errno == ECONNRESET);
    }

    void onePeerTooMany()
    {
        HttpLimits limits;
        limits.connections = 2;
        limits.idleTime = 1h;
        const quint16 port = portWith(limits);
        const auto answers = [](QTcpSocket &socket) {
            socket.write("GET / HTTP/1.1\r\n\r\n");
            return QTest::qWaitFor([&] {
                       return socket.bytesAvailable() > 0 ||
                              socket.state() != QAbstractSocket::ConnectedState;
                   }) &&
                   socket.bytesAvailable() > 0;
        };
        const auto first = connected(port);
        const auto second = connected(port);
        QVERIFY(answers(*first) && answers(*second));
        QVERIFY(!answers(*connected(port)));
        first->disconnectFromHost();
        QVERIFY(QTest::qWaitFor([&] { return answers(*connected(port)); }));
    }

    /// "right", others that are wrong, and seconds that pass; and what came of each password.
    void wrongPasswords_data()
    {
        rows<QString, QString>({"given", "outcomes"},
                               {{"some are forgiven", "wa wb right wc wd right", "001001"},
                                {"locked", "wa wb wc right 59 right", "00000"},
                                {"opened again", "wa wb wc 60 right", "0001"},
                                {"long ago", "wa wb 60 wc right", "0001"},
                                {"one again and again", "wa wa wa wa right", "00001"},
                                {"one again, and others", "wa wa wb wa wb wc right", "0000000"},
                                {"one for long", "wa wb 59 wa wa 1 wc right", "000001"}});
    }

    void wrongPasswords()
    {
        const auto [given, outcomes] = row<QString, QString>();
        PasswordGuard guard({0ms, 3, 60s});
        PasswordGuard::Clock::time_point now;
        QString found;
        for (const QString &word : given.split(' ')) {
            if (word.toInt() > 0)
                now += std::chrono::seconds(word.toInt());
            else
                found +=
                    guard.judge("peer", word.toStdString(), word == "right"_s, now) ? '1' : '0';
        }
        QCOMPARE(found, outcomes);
        QVERIFY(guard.judge("other", "right", true, now));
    }

    /// Else the time it takes would tell who is locked out that this one is right.
    void lockedOutRightPasswordCostsToo()
    {
        PasswordGuard guard({50ms, 1, 1h});
        QVERIFY(!guard.admits("peer", "wrong", false));
        const auto given = PasswordGuard::Clock::now();
        QVERIFY(!guard.admits("peer", "right", true));
        QVERIFY(PasswordGuard::Clock::now() - given >= 50ms);
    }

    /// When pictures are shown, in the order in which they come, and when they are decoded.
    void decodingTimes_data()
    {
        rows<QString, QString>(
            {"shown", "decoded"},
            {{"in order, with jumps", "0 40 40 80 5000 5040 90 130", "0 40 40 80 5000 5040 90 130"},
             {"order is learnt", "0 160 80 40 120 320 240 200 280 480 400 360 440",
              "0 160 160 160 160 160 160 200 240 280 320 360 400"},
             {"jump ahead", "0 80 40 160 120 5000 5080 5040 5160 5120",
              "0 80 80 80 120 5000 5000 5040 5080 5120"},
             {"jump back", "5000 5080 5040 0 80 40", "5000 5080 5080 0 0 40"},
             {"far, but no jump", "0 1000 0 2000 1000", "0 1000 1000 1000 1000"},
             {"just a jump", "0 1001 0 1001 0", "0 1001 0 1001 0"}});
    }

    void decodingTimes()
    {
        const auto [shown, decoded] = row<QString, QString>();
        DecodingTimes times;
        QStringList found;
        for (const QString &moment : shown.split(' '))
            found << QString::number(times.place(moment.toLongLong()));
        QCOMPARE(found.join(' '), decoded);
    }

    void clientFindsItsService()
    {
        ClientFiles files;
        files.host = "127.0.0.1";
        files.apiPort = files.streamingPort = 8443;
        files.flvPort = 8080;
        Server house;
        house.id = "127.0.0.1:8080";
        house.lan = true;
        house.password = "pass";
        QVERIFY(QDir().mkdir("client"));
        QFile others("client/others");
        QVERIFY(others.open(QIODevice::WriteOnly) &&
                others.setPermissions(QFile::Permissions(0x6600)));
        // In somebody's folder, root writes for that one.
        const uint self = geteuid();
        const uint owner = self == 0 ? 65534 : self;
        QCOMPARE(chown("client", owner, gid_t(-1)), 0);
        // What a user has added outlives a second time, what was of the house does not.
        QFile roster("client/local_roster.txt");
        QVERIFY(roster.open(QIODevice::ReadWrite));
        roster.write(R"([{"ip": "127.0.0.1", "port": 8080, "password": "older"},
                         {"ip": "10.0.0.9", "port": 81, "password": "pass"},
                         {"ip": "127.0.0.1", "port": 81, "password": "x"}, 7])");
        roster.close();
        QVERIFY(files.write("client", {{house, {}}}));
        QVERIFY(ClientFiles::writeAccount("client", "home", "a\\b\"c;d=%e"));
        QVERIFY(ClientFiles::writeAccount("client", "home", "another"));
        for (const QFileInfo &file : QDir("client").entryInfoList(QDir::Files)) {
            QCOMPARE(file.permissions(), QFile::Permissions(0x6600));
            QCOMPARE(file.ownerId(), file.fileName() == "others" ? self : owner);
        }

        const auto profile = App::ServiceProfile::fromFile("client/service.ini");
        QCOMPARE(profile.apiPort, 8443);
        QCOMPARE(profile.flvHost, "127.0.0.1:8080"_s);
        QVERIFY(roster.open(QIODevice::ReadOnly));
        const QJsonDocument servers = QJsonDocument::fromJson(roster.readAll());
        QCOMPARE(servers.array().size(), 3);
        QCOMPARE(servers[0]["password"].toString(), "pass"_s);
        QCOMPARE(servers[0]["port"].toInt(), 8080);
        QCOMPARE(servers[1]["password"].toString(), "x"_s);
        const QSettings settings("client/ZorvaneClient.ini", QSettings::IniFormat);
        QCOMPARE(settings.value(App::SettingsKey::password).toString(), "a\\b\"c;d=%e"_s);
        QVERIFY(settings.value(App::SettingsKey::saveAuth).toBool());
    }

private:
    /// Of a server that tells how long a request's body was. It is never released: its threads
    /// don't end.
    static quint16 portWith(const HttpLimits &limits)
    {
        auto *server = new HttpServer(
            "test",
            [](const HttpRequest &request) {
                HttpReply reply;
                if (request.path.size() > 1) {
                    reply.stream = [isWhole = request.path == "/stream"](BodySink &sink) {
                        sink.write("film", 4);
                        if (!isWhole)
                            sink.breakOff();
                        return isWhole;
                    };
                }
                reply.body = std::to_string(request.body.size()) + " bytes";
                return reply;
            },
            nullptr, limits);
        const int port = server->bind(0);
        server->start();
        return quint16(port);
    }
    static std::unique_ptr<QTcpSocket> connected(quint16 port)
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->connectToHost(QHostAddress::LocalHost, port);
        socket->waitForConnected();
        return socket;
    }

    quint16 patient = 0;
    quint16 hasty = 0;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    ServiceTest test;
    const int result = QTest::qExec(&test, argc, argv);
#ifdef __SANITIZE_THREAD__
    // As the programs end: threads that still answer somebody are not waited for.
    ::_exit(result);
#endif
    return result;
}

#include "ServiceTest.moc"
