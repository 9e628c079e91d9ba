// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Server.h"
#include "App/Settings.h"
#include "GUI/CameraWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/SettingsWidget.h"
#include "demo/client/DemoService.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"

using GUI::Player::VideoWidget;

namespace {

const QString rosterFile = "local_roster.txt"_s;
const QString versionPath = "/public/version/client_windows"_s;
const QString localHost = "127.0.0.1"_s;
const QString serverName = "Склад & двор"_s;
const QString movedName = "Склад, новый адрес"_s;

constexpr int recordSeconds = 1200;

struct ServerForm {
    QString name;
    QString host; // empty: this computer
    int port = 0;
    QString password;
};

template <typename T>
T *part(const QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QLatin1String(name));
}

GUI::SettingsWidget *settingsPage()
{
    return mainWindow()->findChild<GUI::SettingsWidget *>();
}

QString updatePage()
{
    return part<QStackedWidget>(settingsPage(), "updatesStack")->currentWidget()->objectName();
}

DialogVisitor::Handler fillIn(const ServerForm &server)
{
    return [server](QDialog *dialog) {
        part<QRadioButton>(dialog, server.host.isEmpty() ? "localhost" : "foreignHost")->click();
        if (!server.host.isEmpty())
            part<QLineEdit>(dialog, "ipAddress")->setText(server.host);
        part<QLineEdit>(dialog, "port")->setText(QString::number(server.port));
        part<QLineEdit>(dialog, "name")->setText(server.name);
        part<QLineEdit>(dialog, "password")->setText(server.password);
        clickOk(dialog);
    };
}

QJsonArray storedServers()
{
    QFile file(rosterFile);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).array()
                                          : QJsonArray();
}

QJsonObject stored(const ServerForm &server)
{
    return {{"ip"_s, server.host.isEmpty() ? localHost : server.host},
            {"name"_s, server.name},
            {"password"_s, server.password},
            {"port"_s, server.port}};
}

GUI::ServerWidget *serverNamed(const QString &name)
{
    const QList<GUI::ServerWidget *> servers = serverWidgets();
    for (GUI::ServerWidget *server : servers) {
        if (server->server()->alias() == name)
            return server;
    }
    return nullptr;
}

void editServer(const QString &name, const ServerForm &server)
{
    const DialogVisitor visitor(fillIn(server));
    chooseFromMenu(part<QPushButton>(serverNamed(name), "settingsButton"), "Edit"_s);
    QTRY_COMPARE(visitor.visits(), 1);
}

/// The strip of a tile whose picture has been turned clockwise.
std::optional<Strip> stripOfTurned(VideoWidget *tile, int degrees)
{
    return StripReader::readTile(tile->grab().toImage().transformed(QTransform().rotate(-degrees)));
}

bool showsTurned(VideoWidget *tile, int camera, int degrees)
{
    return QTest::qWaitFor(
        [&] {
            const auto strip = stripOfTurned(tile, degrees);
            return strip && strip->camera == camera;
        },
        pictureDeadlineMs);
}

/// Presses the dialog's buttons of those names, one after the other.
DialogVisitor::Handler pressAll(const QStringList &buttons, QDialogButtonBox::StandardButton last)
{
    return [buttons, last](QDialog *dialog) {
        for (const QString &name : buttons)
            QTest::mouseClick(dialog->findChild<QPushButton *>(name), Qt::LeftButton);
        const auto *box = dialog->findChild<QDialogButtonBox *>();
        QTest::mouseClick(box->button(last), Qt::LeftButton);
    };
}

QString stringSetting(const char *key)
{
    return App::settings().value(QLatin1String(key)).toString();
}

} // namespace

/// What the user sets: LAN servers, rotation, the account; and the update check.
class SettingsPageTest : public QObject
{
    Q_OBJECT

public slots:
    void linkOpened(const QUrl &url) { openedLinks.append(url.toString()); }

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 1;
        options.cameras = 2;
        options.lanServers = 2;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);
        const QVector<DemoCamera> world = service.cameras();
        cloud =
            *std::find_if(world.begin(), world.end(), [](const auto &each) { return !each.lan; });
        QDesktopServices::setUrlHandler("http"_s, this, "linkOpened");

        QVERIFY(enter(service));
        QTRY_VERIFY_WITH_TIMEOUT(card(cloud.server, cloud.camera), pollDeadlineMs);
        mainWindow()->resize(1500, 900);
    }

    void init()
    {
        QVERIFY(service.clearFaults());
        if (mainWindow())
            pressTab("rosterButton");
    }

    void cleanupTestCase()
    {
        leave();
        service.stop();
    }

    void updateCheckEndsOnItsPage_data()
    {
        const QString found = "updatesFoundPage"_s;
        const QString notFound = "updatesNotFoundPage"_s;
        const QString failed = "updatesErrorPage"_s;
        const QString own = QCoreApplication::applicationVersion();
        rows<QString, QString, QString>({"version", "fault", "page"},
                                        {
                                            {"newer", "6.0.2.1-beta", "", found},
                                            {"the same", own, "", notFound},
                                            {"older", "5.9.9.999", "", notFound},
                                            {"someone else answers", own, "nonjson", failed},
                                            {"the service hangs up", own, "close", failed},
                                        });
    }

    void updateCheckEndsOnItsPage()
    {
        QFETCH(QString, version);
        QFETCH(QString, fault);
        QFETCH(QString, page);
        QVERIFY(!service.control("POST", "/version/set"_s, {{"version"_s, version}}).isEmpty());
        if (!fault.isEmpty()) {
            DemoFault failure;
            failure.kind = fault;
            failure.route = versionPath;
            QVERIFY(service.addFault(failure) > 0);
        }
        openedLinks.clear();
        QStringList offers;
        const DialogVisitor visitor([&](QDialog *dialog) {
            auto *box = qobject_cast<QMessageBox *>(dialog);
            QVERIFY(box);
            offers << box->text() << box->informativeText();
            box->button(QMessageBox::Ok)->click();
        });
        pressTab("settingsButton");
        QTRY_COMPARE_WITH_TIMEOUT(updatePage(), page, replyDeadlineMs);

        if (page == "updatesFoundPage"_s) {
            QTRY_COMPARE(openedLinks.size(), 1);
            QCOMPARE(openedLinks.first(),
                     "http://127.0.0.1:%1/?target=downloads&lang=en"_s.arg(service.flvPort()));
            QCOMPARE(offers.size(), 2);
            QCOMPARE(offers.first(), "A new version of Zorvane Client is available!"_s);
            QVERIFY(offers.last().contains(version));
        } else {
            QCOMPARE(visitor.visits(), 0);
        }
    }

    void updateCheckCanBeSeenWaiting()
    {
        DemoFault stall;
        stall.kind = "stall"_s;
        stall.route = versionPath;
        QVERIFY(service.addFault(stall) > 0);
        const int before = service.requestCount(versionPath);
        pressTab("settingsButton");
        QTRY_COMPARE(service.requestCount(versionPath), before + 1);
        QCOMPARE(updatePage(), "updatesCheckPage"_s);
        QVERIFY(part<QWidget>(settingsPage(), "spinnerWidget")->isVisible());
        QVERIFY(service.clearFaults());
        QTRY_COMPARE_WITH_TIMEOUT(updatePage(), "updatesNotFoundPage"_s, replyDeadlineMs);
    }

    void addedServerWithAWrongPasswordIsOffline()
    {
        const ServerForm server{serverName, QString(), service.lanPorts().first(),
                                "not+this&one"_s};
        pressTab("settingsButton");
        {
            const DialogVisitor visitor(fillIn(server));
            QTest::mouseClick(part<QPushButton>(settingsPage(), "addServerButton"), Qt::LeftButton);
            QCOMPARE(visitor.visits(), 1);
        }
        QCOMPARE(storedServers(), QJsonArray{stored(server)});
        pressTab("rosterButton");
        QVERIFY(serverNamed(serverName));
        QVERIFY(cardsOf(serverNamed(serverName)).isEmpty());
        QVERIFY(part<QWidget>(serverNamed(serverName), "serverOfflineImage")->isVisible());
    }

    void correctedPasswordBringsItsCameras()
    {
        const int port = service.lanPorts().first();
        const ServerForm server{serverName, QString(), port, service.lanPassword()};
        editServer(serverName, server);
        QCOMPARE(storedServers(), QJsonArray{stored(server)});

        const QVector<DemoCamera> cameras = camerasOf(port);
        QVERIFY(!cameras.isEmpty());
        for (const DemoCamera &camera : cameras)
            QTRY_VERIFY_WITH_TIMEOUT(card(camera.server, camera.camera), pollDeadlineMs);
        QVERIFY(!part<QWidget>(serverNamed(serverName), "serverOfflineImage")->isVisible());
        play(cameras.first());
        QVERIFY(showsMovingPicture(tile(), cameras.first().number));
    }

    /// The second LAN server stands for the first one at its new address, which has a host name.
    void serverThatMovedIsFoundAgain()
    {
        const QString oldId = "%1:%2"_s.arg(localHost).arg(service.lanPorts().first());
        QVERIFY(service.setServerOnline(oldId, false));
        QTRY_VERIFY_WITH_TIMEOUT(cardsOf(serverNamed(serverName)).isEmpty(), pollDeadlineMs);

        const int port = service.lanPorts().last();
        const ServerForm server{movedName, "localhost"_s, port, service.lanPassword()};
        editServer(serverName, server);
        QCOMPARE(storedServers(), QJsonArray{stored(server)});
        QVERIFY(!serverNamed(serverName));
        QVERIFY(serverNamed(movedName));

        movedServer = "localhost:%1"_s.arg(port);
        lan = camerasOf(port).first();
        lan.server = movedServer;
        QTRY_VERIFY_WITH_TIMEOUT(card(lan.server, lan.camera), pollDeadlineMs);
        play(lan);
        QVERIFY(showsMovingPicture(tile(), lan.number));

        const QDate day = QDate::currentDate().addDays(-1);
        const QDateTime noon(day, QTime(12, 0));
        QVERIFY(service.setArchive(
            camerasOf(port).first(),
            {{noon.toMSecsSinceEpoch(), noon.addSecs(recordSeconds).toMSecsSinceEpoch()}}));
        press(mainWindow(), "showRecordsButton");
        mainWindow()->updateDate(day);
        QTRY_VERIFY_WITH_TIMEOUT(tile()->camera()->hasRecords(day), replyDeadlineMs);
    }

    void cloudCameraIsTurned_data()
    {
        using Box = QDialogButtonBox;
        const QString right = "clockwise"_s;
        const QString left = "counterclockwise"_s;
        rows<QStringList, int, int>(
            {"presses", "last", "degrees"},
            {
                {"cancelled", QStringList{right, right}, int(Box::Cancel), 0},
                {"to the right", QStringList{right}, int(Box::Ok), 90},
                {"upside down", QStringList{right}, int(Box::Ok), 180},
                {"full circle", QStringList{right, right}, int(Box::Ok), 0},
                {"to the left", QStringList{left}, int(Box::Ok), -90},
            });
    }

    void cloudCameraIsTurned()
    {
        const auto [presses, last, degrees] = row<QStringList, int, int>();
        play(cloud);
        const int before = rotationRequests();
        {
            const DialogVisitor visitor(
                pressAll(presses, static_cast<QDialogButtonBox::StandardButton>(last)));
            chooseFromMenu(part<QPushButton>(card(cloud.server, cloud.camera), "previewMenu"),
                           "Settings"_s);
            QTRY_COMPARE(visitor.visits(), 1);
            QTRY_VERIFY(!QApplication::activeModalWidget());
        }
        QVERIFY(showsTurned(tile(), cloud.number, degrees));
        QVERIFY2(degrees == 0 || !stripOf(tile()), "the picture stands upright");
        if (last == QDialogButtonBox::Cancel) {
            QCOMPARE(rotationRequests(), before);
            return;
        }
        QTRY_COMPARE_WITH_TIMEOUT(rotationRequests(), before + 1, replyDeadlineMs);
        const QString path =
            "//public/servers/%1/cameras/%2/rotation"_s.arg(cloud.server).arg(cloud.camera);
        const QVector<DemoRequest> requests = service.requests(path);
        QVERIFY(!requests.isEmpty());
        QCOMPARE(requests.last().method, "POST"_s);
        const QUrlQuery form(QString::fromUtf8(requests.last().body));
        QCOMPARE(form.queryItemValue("degrees"_s), QString::number(degrees));
    }

    void lanCameraIsTurned()
    {
        play(lan);
        QVERIFY(showsMovingPicture(tile(), lan.number));
        const int before = rotationRequests();
        {
            const DialogVisitor visitor(pressAll({"clockwise"_s}, QDialogButtonBox::Ok));
            tile()->findChild<QAction *>("actionSettings"_s)->trigger();
            QTRY_COMPARE(visitor.visits(), 1);
            QTRY_VERIFY(!QApplication::activeModalWidget());
        }
        QVERIFY(showsTurned(tile(), lan.number, 90));
        QVERIFY(!stripOf(tile()));
        const QString key = "cameras/%1/%2/rotation"_s.arg(lan.server).arg(lan.camera);
        QCOMPARE(App::settings().value(key).toInt(), 90);
        QCOMPARE(rotationRequests(), before);
    }

    void signOutIsAskedForAndForgetsThePassword()
    {
        pressTab("settingsButton");
        auto *button = part<QPushButton>(settingsPage(), "signoutButton");
        {
            const DialogVisitor visitor([](QDialog *dialog) { dialog->reject(); });
            QTest::mouseClick(button, Qt::LeftButton);
            QCOMPARE(visitor.visits(), 1);
        }
        QVERIFY(mainWindow() && !loginDialog());

        const DialogVisitor visitor([](QDialog *dialog) {
            qobject_cast<QMessageBox *>(dialog)->button(QMessageBox::Ok)->click();
        });
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(visitor.visits(), 1);
        QTRY_VERIFY(loginDialog() && mainWindows().isEmpty());
        QCOMPARE(part<QLineEdit>(loginDialog(), "emailLn")->text(), service.email());
        QVERIFY(part<QLineEdit>(loginDialog(), "passwordLn")->text().isEmpty());
        QCOMPARE(stringSetting("auth/email"), service.email());
        QCOMPARE(stringSetting("auth/password"), QString());
        QVERIFY(!App::settings().value("auth/saveAuth"_s).toBool());

        const auto sessionEnds = [this] {
            const QVector<DemoRequest> requests = service.requests();
            return std::count_if(requests.begin(), requests.end(), [](const DemoRequest &request) {
                return request.method == "DELETE"_s &&
                       request.path.startsWith("/public/sessions/"_s);
            });
        };
        QTRY_COMPARE_WITH_TIMEOUT(static_cast<int>(sessionEnds()), 1, replyDeadlineMs);
        QTRY_COMPARE(service.openStreams(), 0);
    }

    /// The service keeps the rotation of its cameras; that of a LAN camera ends with the session.
    void nextSessionFindsWhatWasSet()
    {
        QVERIFY(enter(service));
        mainWindow()->resize(1500, 900);
        QTRY_VERIFY_WITH_TIMEOUT(card(cloud.server, cloud.camera), pollDeadlineMs);
        play(cloud);
        QVERIFY(showsTurned(tile(), cloud.number, -90));
        QTRY_VERIFY_WITH_TIMEOUT(card(lan.server, lan.camera), pollDeadlineMs);
        play(lan);
        QVERIFY(showsMovingPicture(tile(), lan.number));
    }

    void deletedServerIsGone()
    {
        chooseFromMenu(part<QPushButton>(serverNamed(movedName), "settingsButton"), "Delete"_s);
        QTRY_VERIFY(!serverNamed(movedName));
        QVERIFY(storedServers().isEmpty());
        QVERIFY(QFile::exists(rosterFile));
        QCOMPARE(serverWidgets().size(), 1);
        // The tile that plays one of its cameras holds it.
        QVERIFY(showsMovingPicture(tile(), lan.number));
        play(cloud);
        QVERIFY(showsTurned(tile(), cloud.number, -90));
    }

private:
    int rotationRequests()
    {
        const QVector<DemoRequest> requests = service.requests();
        return static_cast<int>(
            std::count_if(requests.begin(), requests.end(), [](const DemoRequest &request) {
                return request.path.endsWith("/rotation"_s);
            }));
    }

    QVector<DemoCamera> camerasOf(int lanPort)
    {
        const QString id = "%1:%2"_s.arg(localHost).arg(lanPort);
        QVector<DemoCamera> cameras = service.cameras();
        cameras.erase(std::remove_if(cameras.begin(), cameras.end(),
                                     [&](const DemoCamera &camera) { return camera.server != id; }),
                      cameras.end());
        return cameras;
    }

    void play(const DemoCamera &camera)
    {
        GUI::CameraWidget *shown = card(camera.server, camera.camera);
        QVERIFY(shown);
        reveal(shown);
        QTest::mouseClick(shown, Qt::LeftButton);
        QTRY_VERIFY(tile() && tile()->camera() == shown->camera());
    }

    DemoService service;
    DemoCamera cloud;
    QString movedServer; // where the LAN server stands in the end
    DemoCamera lan;      // one of its cameras
    QStringList openedLinks;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<SettingsPageTest>(); });
}
#include "SettingsPageTest.moc"
