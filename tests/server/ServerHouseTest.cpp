// SPDX-License-Identifier: MIT
#include "tests/server/Media.h"

#include <cstring>
#include <sstream>

#include <sys/socket.h>
#include <sys/un.h>

#include "server/AddCamera.h"
#include "server/HouseRoster.h"
#include "server/Places.h"
#include "server/StateFolder.h"
#include "server/Status.h"
#include "server/StatusSocket.h"
#include "server/Supervisor.h"
#include "service/Accounts.h"

using namespace ZorvaneServer;

/// What the server keeps and tells, apart from pictures.
class ServerHouseTest : public QObject
{
    Q_OBJECT

    static QByteArray content(const QString &name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString &name, const QByteArray &text)
    {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }

private slots:
    /// Variables as "NAME=value" apart by blanks; "[own]" is a user's file that is there.
    void places_data()
    {
        rows<bool, QString, QString>(
            {"root", "environment", "places"},
            {{"root", true, "HOME=/root XDG_CONFIG_HOME=[own]",
              "/etc/zorvane-server.conf /var/lib/zorvane-server"},
             {"service", false, "HOME=/ STATE_DIRECTORY=/s:/s/archive",
              "/etc/zorvane-server.conf /s"},
             {"user", false, "HOME=/h XDG_CONFIG_HOME=[own] XDG_DATA_HOME=/d",
              "[own]/zorvane-server.conf /d/zorvane-server"},
             {"relative", false, "HOME=/h XDG_CONFIG_HOME=c XDG_DATA_HOME=d",
              "/h/.config/zorvane-server.conf /h/.local/share/zorvane-server"}});
    }

    void places()
    {
        auto [root, environment, wanted] = row<bool, QString, QString>();
        QTemporaryDir own;
        write(own.filePath("zorvane-server.conf"), "");
        const QStringList set = environment.replace("[own]"_s, own.path()).split(' ');
        const Places found = Places::of(root, [&](const char *name) {
            const QStringList known = set.filter(QRegularExpression("^%1="_s.arg(name)));
            return known.value(0).section('=', 1).toStdString();
        });
        QCOMPARE(QString::fromStdString(found.configFile + ' ' + found.stateFolder),
                 QString(wanted).replace("[own]"_s, own.path()));
    }

    void stateIsItsOwners()
    {
        write("state", "");
        QVERIFY(!StateFolder("state").make().empty());
        QVERIFY(QFile::remove("state") && QDir().mkdir("given"));
        const auto rights = QFile::permissions("given");
        QVERIFY(StateFolder("given").make().empty() && QFile::permissions("given") == rights);
        StateFolder state("state");
        QCOMPARE(state.make(), std::string());
        QCOMPARE(QFile::permissions("state"), QFile::Permissions(0x7700));
        QCOMPARE(state.lock(), std::string());
        QVERIFY(StateFolder("state").lock().find("another") == 0);
        std::string password;
        std::string again;
        QCOMPARE(state.readPassword(&password) + state.readPassword(&again), std::string());
        QVERIFY(QRegularExpression("^[A-Za-z0-9]{20}$"_s).match(password.c_str()).hasMatch());
        QCOMPARE(again, password);
        QCOMPARE(QFile::permissions("state/password"), QFile::Permissions(0x6600));
        QVERIFY(QFile::remove("state/password"));
        QCOMPARE(state.readPassword(&again), std::string());
        QVERIFY(again != password);
        write("state/password", "");
        QCOMPARE(state.readPassword(&password), std::string());
        write("state/password", "\nmine");
        QVERIFY(!state.readPassword(&again).empty() && content("state/password") == "\nmine");
        // One that leads to itself can't be read by anybody.
        QVERIFY(QFile::remove("state/password") && QFile::link("password", "state/password"));
        QVERIFY(!state.readPassword(&again).empty() && QFileInfo("state/password").isSymLink());
    }

    /// Cameras of one start after the other, "!" and "?" for a damaged file; each with its number.
    void numbersAreKept_data()
    {
        rows<QString, QString>({"starts", "numbers"},
                               {{"in order", "A B", "A1 B2"},
                                {"one between", "A C|A B C", "A1 B3 C2"},
                                {"gone and back", "A B|B|C B|A B C", "A1 B2 C3"},
                                {"damaged", "A B|!|B", "B1"},
                                {"of other kinds", "A B|?|B", "B4"}});
    }

    void numbersAreKept()
    {
        const auto [starts, numbers] = row<QString, QString>();
        QTemporaryDir folder;
        const QString file = folder.filePath("cameras.json");
        QStringList found;
        for (const QString &start : starts.split('|')) {
            if (start == "!"_s || start == "?"_s) {
                write(file, start == "!"_s
                                ? "{"
                                : "{\"A\": 7, \"B\": {\"id\": \"x\"}, \"C\": {\"id\": 3}}");
                continue;
            }
            std::vector<std::string> names;
            for (const QString &name : start.split(' '))
                names.push_back(name.toStdString());
            HouseRoster roster(names, "127.0.0.1", 80, "p", file.toStdString());
            found.clear();
            const auto cameras = roster.servers().back().cameras;
            for (const auto &camera : cameras)
                found << QString::fromStdString(camera.name) + QString::number(camera.id);
        }
        QCOMPARE(found.join(' '), numbers);
    }

    void rosterOfTheHouse()
    {
        HouseRoster roster({"A", "B"}, "127.0.0.1", 8880, "secret", "roster.json");
        const auto servers = roster.servers();
        QCOMPARE(servers.size(), std::size_t(2));
        // Saved layouts are only read while there is a server that is not of the LAN.
        QVERIFY(!servers[0].server.lan && servers[0].cameras.empty());
        QVERIFY(servers[1].server.lan && servers[1].server.password == "secret");
        const HouseRoster::CameraId second{"127.0.0.1:8880", 2};
        QCOMPARE(roster.nameOf(second), std::string("B"));
        QCOMPARE(roster.nameOf({"house", 2}), std::string());
        QVERIFY(roster.lanServer(8880) && !roster.lanServer(8881));
        const auto before = roster.generation();
        roster.setOnline(1, true);
        roster.setSize(1, {640, 480});
        QVERIFY(roster.generation() > before);
        QVERIFY(roster.camera(second)->camera.online);
        QCOMPARE(roster.camera(second)->camera.size.height, 480);
        QVERIFY(!roster.camera({"127.0.0.1:8880", 1})->camera.online);
        QVERIFY(roster.setRotation(second, 90) && !roster.setRotation({"house", 2}, 90));
        HouseRoster again({"B"}, "127.0.0.1", 8880, "secret", "roster.json");
        QCOMPARE(again.camera(second)->camera.rotation, 90);
    }

    void formerLayouts()
    {
        using ZorvaneService::Accounts;
        using ZorvaneService::FormerContents;
        QTemporaryDir folder;
        const QString base = folder.filePath("layouts");
        const auto names = [&] {
            QString found;
            for (int i = 1; i <= 11; ++i) {
                const auto kept = QJsonDocument::fromJson(content(base + '.' + QString::number(i)));
                found += kept["layouts"][0]["id"].toString();
            }
            return found;
        };
        const auto save = [&](const std::string &lists) {
            Accounts accounts("a", "b", folder.filePath("account").toStdString(),
                              FormerContents(base.toStdString()));
            for (const char id : lists)
                accounts.saveLayouts({{{"id", std::string(1, id)}}});
        };
        save("a");
        // The same list of another moment is no other list.
        write(
            folder.filePath("account"),
            content(folder.filePath("account")).replace("\"last_update\": ", "\"last_update\": 1"));
        save("ab");
        QCOMPARE(names(), "a"_s);
        QVERIFY(!QFile::exists(base + ".2"));
        save("bbcb");
        QCOMPARE(names(), "cba"_s);
        // As after a kill before the others had made room.
        QVERIFY(QFile::rename(base + ".1", base + ".0"));
        save("d");
        QCOMPARE(names(), "bcba"_s);
        // As after a kill before the list itself was replaced.
        QVERIFY(FormerContents(base.toStdString()).keep(content(base + ".1").toStdString()));
        QCOMPARE(names(), "bcba"_s);
        save("efghijkl");
        QCOMPARE(names(), "kjihgfedbc"_s);
        QCOMPARE(QFile::permissions(base + ".1"), QFile::Permissions(0x6600));
    }

    /// What the account's file held; the second of its list after it was sent once more, "now" for
    /// the present one.
    void account_data()
    {
        rows<QByteArray, QString, bool>(
            {"stored", "second", "isDamaged"},
            {{"whole", R"({"a": {"last_update": 5, "layouts": []}})", "5", false},
             {"to come", R"({"a": {"last_update": 9999999999, "layouts": []}})", "now", false},
             {"another's", R"({"b": {"last_update": 5, "layouts": []}})", "now", false},
             {"torn", R"({"a": {"last_update": 5, "layouts": [])", "1", true},
             {"empty", "", "1", true},
             {"a list", "[]", "1", true},
             {"a list alone", R"({"a": []})", "1", true},
             {"no age", R"({"a": {"layouts": []}})", "1", true},
             {"no list", R"({"a": {"last_update": 5, "layouts": {}}})", "1", true}});
    }

    void account()
    {
        const auto [stored, second, isDamaged] = row<QByteArray, QString, bool>();
        QTemporaryDir folder;
        const QString file = folder.filePath("account");
        write(file, stored);
        ZorvaneService::Accounts accounts("a", "b", file.toStdString());
        accounts.beginWith({{{"id", "x"}}});
        accounts.saveLayouts(accounts.layouts()["layouts"]);
        QCOMPARE(content(file) == stored, second == "5");
        QCOMPARE(QFile::exists(file + ".damaged"), isDamaged);
        QVERIFY(!isDamaged || content(file + ".damaged") == stored);
        const qint64 found = accounts.layouts()["last_update"];
        QVERIFY(second == "now" ? qAbs(QDateTime::currentSecsSinceEpoch() - found) < 60
                                : found == second.toInt());
    }

    void sessionsEnd()
    {
        using ZorvaneService::Accounts;
        std::string first;
        std::string second;
        {
            Accounts accounts("a", "b", "sessions");
            first = accounts.newSession();
            second = accounts.newSession();
            for (int i = 0; i < 99; ++i)
                accounts.newSession();
        }
        const Accounts again("a", "b", "sessions");
        QVERIFY(!again.isSignedIn(first) && again.isSignedIn(second));
        QCOMPARE(again.layouts().size(), std::size_t(2));
        QVERIFY(!Accounts("a", "another", "sessions").isSignedIn(second));
    }

    /// Pictures of 1,000 bytes with the seconds at which they come; "-" ends the connection.
    void meter_data()
    {
        rows<QString, double, QString>(
            {"pictures", "now", "reading"},
            {{"nothing came", "", 5, "- 0.0 0"},
             {"no whole second yet", "5.2 5.6", 5.9, "5 0.0 0"},
             {"first second isn't whole", "5.9 6.2 6.6 7.1", 7.9, "5 2.0 16"},
             {"silence counts", "5.9 6.2 6.6", 10, "5 0.5 4"},
             {"long ago doesn't", "5 6 6.1 6.2 6.3 16 17 18", 19, "5 0.3 2"},
             {"gone", "5 6 7 -", 9, "- 0.0 0"},
             {"back", "5 6 7 - 20.5 21", 22, "20 1.0 8"}});
    }

    void meter()
    {
        const auto [pictures, now, reading] = row<QString, double, QString>();
        const auto at = [](double second) {
            return std::chrono::microseconds(qRound64(second * 1e6));
        };
        StreamMeter meter;
        MediaPacket picture;
        picture.data.resize(1000);
        for (const QString &word : pictures.split(' ', Qt::SkipEmptyParts)) {
            const double second = word.toDouble();
            meter.take(word == "-"_s ? nullptr : &picture, at(second), qint64(second * 1000));
        }
        const auto found = meter.read(at(now));
        QCOMPARE(
            (found.connectedMs ? QString::number(*found.connectedMs / 1000) : "-"_s) +
                QString::asprintf(" %.1f %.0f", found.picturesPerSecond, found.kilobitsPerSecond),
            reading);
    }

    void statusIsATable()
    {
        Status status;
        status.archiveFolder = "/a";
        status.room = {2'000'000'000, 500'000'000};
        status.streams = {{{"Двор", Quality::Main}, {0, 25, 4012.4}, 3'723'000, 12},
                          {{"Двор", Quality::Sub}, {}, 0, 0}};
        setenv("TZ", "UTC", 1);
        tzset();
        const std::string good = status.text();
        QCOMPARE(QString::fromStdString(good),
                 "camera       connected since       pictures/s   kbit/s   recorded   dropped\n"
                 "Двор         1970-01-01 00:00:00         25.0     4012    1:02:03        12\n"
                 "Двор (sub)   not connected                  -        -    0:00:00         0\n"
                 "\narchive /a: 0 segments, 0.5 GB of 2.0 GB left\n"_s);
        status.isWritten = false;
        QVERIFY(status.text().find("can't be written") != std::string::npos);

        const std::string folder = QString(200, 'd').toStdString(); // longer than an address
        QVERIFY(QDir().mkdir(folder.c_str()));
        std::string told;
        QVERIFY(StatusSocket::ask(folder, &told).find("no zorvane-server") == 0);
        write(QString::fromStdString(folder) + "/status", "left over");
        auto *socket = new StatusSocket(folder, [good] { return good; }); // runs to the end
        QCOMPARE(socket->start(), std::string());
        QCOMPARE(StatusSocket::ask(folder, &told), std::string());
        QCOMPARE(told, good);
        QCOMPARE(QFile::permissions(QString::fromStdString(folder) + "/status"),
                 QFile::Permissions(0x6600));
        // One that hangs answers nobody, whether it takes who asks or lets them queue.
        QVERIFY(QDir().mkdir("hung"));
        const auto hang = []() -> std::string {
            for (;;)
                pause();
        };
        QCOMPARE((new StatusSocket("hung", hang))->start(), std::string());
        for (int i = 0; i < 10; ++i)
            QVERIFY(StatusSocket::ask("hung", &told, std::chrono::milliseconds(10)).find("the ") ==
                    0);
    }

    /// The program tells whoever supervises it that it is ready, alive, and about to end.
    void supervised()
    {
        const int heard = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, "notify");
        QCOMPARE(bind(heard, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        QByteArray said;
        const auto says = [&](const QByteArray &word) {
            char text[100];
            for (ssize_t count; (count = recv(heard, text, sizeof text, 0)) > 0;)
                said += QByteArray(text, int(count)) + ' ';
            return said.contains(word);
        };
        QTemporaryDir folder;
        const QString section = serviceSection(folder.filePath("state"));
        write(folder.filePath("conf"),
              section.toUtf8() + "address = 127.0.0.2\n[camera A]\nurl = file:/none\n");
        QVERIFY(QFile::setPermissions(folder.filePath("conf"), QFile::Permissions(0x6604)));
        QProcess server;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("NOTIFY_SOCKET"_s, QDir("notify").absolutePath());
        environment.insert("WATCHDOG_USEC"_s, "300000"_s);
        server.setProcessEnvironment(environment);
        server.start(QStringLiteral(ZORVANE_BIN_DIR "/zorvane-server"),
                     {"--config", folder.filePath("conf")});
        QTRY_VERIFY_WITH_TIMEOUT(says("WATCHDOG=1 WATCHDOG=1"), 30'000);
        QVERIFY2(said.startsWith("READY=1 "), said);
        QVERIFY(server.readAllStandardError().contains("others can read it"));
        // This machine's client finds the cameras where they always were.
        for (const char *shownAt : {"127.0.0.1", "127.0.0.2"}) {
            QTcpSocket peer;
            peer.connectToHost(shownAt, quint16(section.section(' ', -1).toInt()));
            peer.write("POST / HTTP/1.1\r\nContent-Length: 1025\r\n\r\n" + QByteArray(1025, 'a'));
            QTRY_VERIFY(peer.peek(100).contains(" 413 "));
        }
        QVERIFY(content(folder.filePath("state/account.json")).contains("\"127.0.0.1:"));
        server.terminate();
        QTRY_VERIFY_WITH_TIMEOUT(says("STOPPING=1"), 30'000);
        QTRY_COMPARE_WITH_TIMEOUT(server.state(), QProcess::NotRunning, 30'000);
        QCOMPARE(server.exitCode(), 0);
        ::close(heard);

        setenv("WATCHDOG_USEC", "3000000", 1);
        setenv("WATCHDOG_PID", "1", 1);
        QVERIFY(!Supervisor::heartbeat());
        unsetenv("WATCHDOG_PID");
        QCOMPARE(Supervisor::heartbeat()->count(), qint64(1000));
    }

    /// Answers apart by "|"; what is in the file afterwards, and how many addresses were asked for.
    void add_data()
    {
        const char *before = "[camera A]\nurl = file:/a";
        rows<QByteArray, QString, QByteArray, int>(
            {"before", "answers", "after", "asked"},
            {{"first", QByteArray(), "Front door|file:[clip]|",
              "[camera Front door]\nurl = file:[clip]\n", 2},
             {"further, with a sub stream", before, "B|file:[clip]|file:[clip]",
              "[camera A]\nurl = file:/a\n\n[camera B]\nurl = file:[clip]\nsub = file:[clip]\n", 2},
             {"into nothing", "", "A|nonsense|", "", 1},
             {"known name", before, "A|file:[clip]|", before, 0},
             {"no name", before, "|file:[clip]|", before, 0},
             {"no address", before, "B|nonsense|", before, 1},
             {"nothing there", before, "B|file:/none|", before, 1},
             {"what can't be recorded", before, "B|file:[mjpeg]|", before, 1},
             {"as a sub stream", before, "B|file:[clip]|file:[mjpeg]", before, 2},
             {"end of what is typed", before, "", before, 0}});
    }

    void add()
    {
        const auto [before, answers, after, asked] = row<QByteArray, QString, QByteArray, int>();
        static QTemporaryDir clips;
        const QByteArray clip = clips.filePath("clip.mp4").toUtf8();
        const QByteArray mjpeg = clips.filePath("mjpeg.mkv").toUtf8();
        if (!QFile::exists(clip)) {
            QCOMPARE(makeClip(clip, {"-c:v", "libx264", "-preset", "ultrafast", "-an"}),
                     QByteArray());
            QCOMPARE(makeClip(mjpeg, {"-c:v", "mjpeg", "-an"}), QByteArray());
        }
        QTemporaryDir folder;
        const QString file = folder.filePath("new/conf");
        if (!before.isNull()) {
            QVERIFY(QDir(folder.path()).mkdir("new"));
            write(file, before);
        }
        QByteArray typed = answers.toUtf8().replace('|', '\n');
        QByteArray wanted = after;
        for (QByteArray *text : {&typed, &wanted})
            text->replace("[clip]", clip).replace("[mjpeg]", mjpeg);
        std::istringstream in(typed.toStdString());
        std::ostringstream out;
        QCOMPARE(addCamera(in, out, file.toStdString()), after != before);
        QVERIFY2(content(file).endsWith(wanted), content(file));
        if (after != before)
            QCOMPARE(QFile::permissions(file), QFile::Permissions(0x6600));
        QCOMPARE(QString::fromStdString(out.str()).count("Address of"), asked);
    }
};

QTEST_GUILESS_MAIN(ServerHouseTest)
#include "ServerHouseTest.moc"
