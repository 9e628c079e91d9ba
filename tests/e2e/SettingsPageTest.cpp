// SPDX-License-Identifier: MIT
#include <QAction>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTransform>
#include <QUrlQuery>
#include <QtTest>

#include <algorithm>

#include "API/Camera.h"
#include "API/Server.h"
#include "App/Settings.h"
#include "GUI/CameraWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/SettingsWidget.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tests/support/DemoService.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::Player::VideoWidget;

/// What the user sets: LAN servers, rotation, the account; and the update check.
class SettingsPageTest : public QObject
{
    Q_OBJECT

public slots:
    void linkOpened(const QUrl &url) { openedLinks.append(url.toString()); }

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void updateCheckEndsOnItsPage_data();
    void updateCheckEndsOnItsPage();
    void updateCheckCanBeSeenWaiting();
    void addedServerWithAWrongPasswordIsOffline();
    void correctedPasswordBringsItsCameras();
    void serverThatMovedIsFoundAgain();
    void cloudCameraIsTurned_data();
    void cloudCameraIsTurned();
    void lanCameraIsTurned();
    void signOutIsAskedForAndForgetsThePassword();
    void nextSessionFindsWhatWasSet();
    void deletedServerIsGone();

private:
    int rotationRequests();
    QVector<DemoCamera> camerasOf(int lanPort);
    void play(const DemoCamera &camera);

    DemoService service;
    DemoCamera cloud;
    QString movedServer; // where the LAN server stands in the end
    DemoCamera lan;      // one of its cameras
    QStringList openedLinks;
};

namespace {

const QString rosterFile = QStringLiteral("local_roster.txt");
const QString versionPath = QStringLiteral("/public/version/client_windows");
const QString localHost = QStringLiteral("127.0.0.1");
const QString serverName = QStringLiteral("Склад & двор");
const QString movedName = QStringLiteral("Склад, новый адрес");

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
    return {{QStringLiteral("ip"), server.host.isEmpty() ? localHost : server.host},
            {QStringLiteral("name"), server.name},
            {QStringLiteral("password"), server.password},
            {QStringLiteral("port"), server.port}};
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
    chooseFromMenu(part<QPushButton>(serverNamed(name), "settingsButton"), QStringLiteral("Edit"));
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

void SettingsPageTest::initTestCase()
{
    DemoService::Options options;
    options.plain = true;
    options.servers = 1;
    options.cameras = 2;
    options.lanServers = 2;
    QVERIFY2(service.start(options), qPrintable(service.errorString()));
    useService(service);
    const QVector<DemoCamera> world = service.cameras();
    cloud = *std::find_if(world.begin(), world.end(), [](const auto &each) { return !each.lan; });
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "linkOpened");

    QVERIFY(enter(service));
    QTRY_VERIFY_WITH_TIMEOUT(card(cloud.server, cloud.camera), pollDeadlineMs);
    mainWindow()->resize(1500, 900);
}

void SettingsPageTest::init()
{
    QVERIFY(service.clearFaults());
    if (mainWindow())
        pressTab("rosterButton");
}

void SettingsPageTest::cleanupTestCase()
{
    leave();
    service.stop();
}

int SettingsPageTest::rotationRequests()
{
    const QVector<DemoRequest> requests = service.requests();
    return static_cast<int>(
        std::count_if(requests.begin(), requests.end(), [](const DemoRequest &request) {
            return request.path.endsWith(QLatin1String("/rotation"));
        }));
}

QVector<DemoCamera> SettingsPageTest::camerasOf(int lanPort)
{
    const QString id = QStringLiteral("%1:%2").arg(localHost).arg(lanPort);
    QVector<DemoCamera> cameras = service.cameras();
    cameras.erase(std::remove_if(cameras.begin(), cameras.end(),
                                 [&](const DemoCamera &camera) { return camera.server != id; }),
                  cameras.end());
    return cameras;
}

void SettingsPageTest::play(const DemoCamera &camera)
{
    GUI::CameraWidget *shown = card(camera.server, camera.camera);
    QVERIFY(shown);
    reveal(shown);
    QTest::mouseClick(shown, Qt::LeftButton);
    QTRY_VERIFY(tile() && tile()->camera() == shown->camera());
}

void SettingsPageTest::updateCheckEndsOnItsPage_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("page");
    const QString found = QStringLiteral("updatesFoundPage");
    const QString notFound = QStringLiteral("updatesNotFoundPage");
    const QString failed = QStringLiteral("updatesErrorPage");
    const QString own = QCoreApplication::applicationVersion();
    QTest::newRow("newer") << "6.0.2.1-beta"
                           << "" << found;
    QTest::newRow("the same") << own << "" << notFound;
    QTest::newRow("older") << "5.9.9.999"
                           << "" << notFound;
    QTest::newRow("someone else answers") << own << "nonjson" << failed;
    QTest::newRow("the service hangs up") << own << "close" << failed;
}

void SettingsPageTest::updateCheckEndsOnItsPage()
{
    QFETCH(QString, version);
    QFETCH(QString, fault);
    QFETCH(QString, page);
    QVERIFY(!service
                 .control("POST", QStringLiteral("/version/set"),
                          {{QStringLiteral("version"), version}})
                 .isEmpty());
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

    if (page == QLatin1String("updatesFoundPage")) {
        QTRY_COMPARE(openedLinks.size(), 1);
        QCOMPARE(
            openedLinks.first(),
            QStringLiteral("http://127.0.0.1:%1/?target=downloads&lang=en").arg(service.flvPort()));
        QCOMPARE(offers.size(), 2);
        QCOMPARE(offers.first(), QStringLiteral("A new version of Zorvane Client is available!"));
        QVERIFY(offers.last().contains(version));
    } else {
        QCOMPARE(visitor.visits(), 0);
    }
}

void SettingsPageTest::updateCheckCanBeSeenWaiting()
{
    DemoFault stall;
    stall.kind = QStringLiteral("stall");
    stall.route = versionPath;
    QVERIFY(service.addFault(stall) > 0);
    const int before = service.requestCount(versionPath);
    pressTab("settingsButton");
    QTRY_COMPARE(service.requestCount(versionPath), before + 1);
    QCOMPARE(updatePage(), QStringLiteral("updatesCheckPage"));
    QVERIFY(part<QWidget>(settingsPage(), "spinnerWidget")->isVisible());
    QVERIFY(service.clearFaults());
    QTRY_COMPARE_WITH_TIMEOUT(updatePage(), QStringLiteral("updatesNotFoundPage"), replyDeadlineMs);
}

void SettingsPageTest::addedServerWithAWrongPasswordIsOffline()
{
    const ServerForm server{serverName, QString(), service.lanPorts().first(),
                            QStringLiteral("not+this&one")};
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

void SettingsPageTest::correctedPasswordBringsItsCameras()
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
void SettingsPageTest::serverThatMovedIsFoundAgain()
{
    const QString oldId = QStringLiteral("%1:%2").arg(localHost).arg(service.lanPorts().first());
    QVERIFY(service.setServerOnline(oldId, false));
    QTRY_VERIFY_WITH_TIMEOUT(cardsOf(serverNamed(serverName)).isEmpty(), pollDeadlineMs);

    const int port = service.lanPorts().last();
    const ServerForm server{movedName, QStringLiteral("localhost"), port, service.lanPassword()};
    editServer(serverName, server);
    QCOMPARE(storedServers(), QJsonArray{stored(server)});
    QVERIFY(!serverNamed(serverName));
    QVERIFY(serverNamed(movedName));

    movedServer = QStringLiteral("localhost:%1").arg(port);
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

void SettingsPageTest::cloudCameraIsTurned_data()
{
    using Box = QDialogButtonBox;
    QTest::addColumn<QStringList>("presses");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("degrees");
    const QString right = QStringLiteral("clockwise");
    const QString left = QStringLiteral("counterclockwise");
    QTest::newRow("cancelled") << QStringList{right, right} << int(Box::Cancel) << 0;
    QTest::newRow("to the right") << QStringList{right} << int(Box::Ok) << 90;
    QTest::newRow("upside down") << QStringList{right} << int(Box::Ok) << 180;
    QTest::newRow("full circle") << QStringList{right, right} << int(Box::Ok) << 0;
    QTest::newRow("to the left") << QStringList{left} << int(Box::Ok) << -90;
}

void SettingsPageTest::cloudCameraIsTurned()
{
    QFETCH(QStringList, presses);
    QFETCH(int, last);
    QFETCH(int, degrees);
    play(cloud);
    const int before = rotationRequests();
    {
        const DialogVisitor visitor(
            pressAll(presses, static_cast<QDialogButtonBox::StandardButton>(last)));
        chooseFromMenu(part<QPushButton>(card(cloud.server, cloud.camera), "previewMenu"),
                       QStringLiteral("Settings"));
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
    const QString path = QStringLiteral("//public/servers/%1/cameras/%2/rotation")
                             .arg(cloud.server)
                             .arg(cloud.camera);
    const QVector<DemoRequest> requests = service.requests(path);
    QVERIFY(!requests.isEmpty());
    QCOMPARE(requests.last().method, QStringLiteral("POST"));
    const QUrlQuery form(QString::fromUtf8(requests.last().body));
    QCOMPARE(form.queryItemValue(QStringLiteral("degrees")), QString::number(degrees));
}

void SettingsPageTest::lanCameraIsTurned()
{
    play(lan);
    QVERIFY(showsMovingPicture(tile(), lan.number));
    const int before = rotationRequests();
    {
        const DialogVisitor visitor(pressAll({QStringLiteral("clockwise")}, QDialogButtonBox::Ok));
        tile()->findChild<QAction *>(QStringLiteral("actionSettings"))->trigger();
        QTRY_COMPARE(visitor.visits(), 1);
        QTRY_VERIFY(!QApplication::activeModalWidget());
    }
    QVERIFY(showsTurned(tile(), lan.number, 90));
    QVERIFY(!stripOf(tile()));
    const QString key = QStringLiteral("cameras/%1/%2/rotation").arg(lan.server).arg(lan.camera);
    QCOMPARE(App::settings().value(key).toInt(), 90);
    QCOMPARE(rotationRequests(), before);
}

void SettingsPageTest::signOutIsAskedForAndForgetsThePassword()
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
    QVERIFY(!App::settings().value(QStringLiteral("auth/saveAuth")).toBool());

    const auto sessionEnds = [this] {
        const QVector<DemoRequest> requests = service.requests();
        return std::count_if(requests.begin(), requests.end(), [](const DemoRequest &request) {
            return request.method == QLatin1String("DELETE") &&
                   request.path.startsWith(QLatin1String("/public/sessions/"));
        });
    };
    QTRY_COMPARE_WITH_TIMEOUT(static_cast<int>(sessionEnds()), 1, replyDeadlineMs);
    QTRY_COMPARE(service.openStreams(), 0);
}

/// The service keeps the rotation of its cameras; that of a LAN camera ends with the session.
void SettingsPageTest::nextSessionFindsWhatWasSet()
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

void SettingsPageTest::deletedServerIsGone()
{
    chooseFromMenu(part<QPushButton>(serverNamed(movedName), "settingsButton"),
                   QStringLiteral("Delete"));
    QTRY_VERIFY(!serverNamed(movedName));
    QVERIFY(storedServers().isEmpty());
    QVERIFY(QFile::exists(rosterFile));
    QCOMPARE(serverWidgets().size(), 1);
    // The tile that plays one of its cameras holds it.
    QVERIFY(showsMovingPicture(tile(), lan.number));
    play(cloud);
    QVERIFY(showsTurned(tile(), cloud.number, -90));
}

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<SettingsPageTest>(); });
}
#include "SettingsPageTest.moc"
