// SPDX-License-Identifier: MIT
// On a screen of double density the icons keep their size and are drawn from their large form.
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QtTest>

#include "API/LocalServer.h"
#include "App/Application.h"
#include "App/ServiceProfile.h"
#include "GUI/Preview.h"
#include "GUI/ServerWidget.h"
#include "GUI/SideBar.h"
#include "GUI/ToolBar.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;

class HighDensityTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void buttonsShowTheirIconInItsSize_data();
    void buttonsShowTheirIconInItsSize();
    void labelsShowTheLargeForm_data();
    void labelsShowTheLargeForm();
};

namespace {

API::ServerPtr lanServer()
{
    return API::LocalServerPtr::create(QStringLiteral("LAN"), QStringLiteral("127.0.0.1"),
                                       MisbehavingServer::deadPort(), QString());
}

/// The widgets under test, in one window.
struct Stage {
    Stage()
    {
        window.resize(600, 400);
        auto *toolBar = new GUI::ToolBar(&window);
        auto *sideBar = new GUI::SideBar(&window);
        auto *server = new GUI::ServerWidget(lanServer(), &window);
        auto *card = new GUI::Preview(GUI::Preview::KindCamera, &window);
        card->setState(GUI::Preview::StateOff);
        toolBar->setGeometry(0, 0, 60, 400);
        sideBar->setGeometry(60, 0, 269, 400);
        server->setGeometry(340, 0, 240, 120);
        card->move(340, 130);
        window.show();
        ready = QTest::qWaitForWindowExposed(&window);
    }

    QWidget window;
    bool ready;
};

/// In its own pixels.
QImage largeForm(const QString &path)
{
    QImage icon(QString(path).replace(QStringLiteral(".png"), QStringLiteral("@2x.png")));
    icon.setDevicePixelRatio(1);
    return icon.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Where `picture` is clearly not of the colour `ground`.
QRect inkArea(const QImage &picture, const QColor &ground)
{
    const auto isInk = [&](const QColor &colour) {
        return qAbs(colour.red() - ground.red()) + qAbs(colour.green() - ground.green()) +
                   qAbs(colour.blue() - ground.blue()) >
               60;
    };
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isInk(picture.pixelColor(x, y)))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

/// The large form of an icon on the ground that the button has.
QImage iconOn(const QColor &ground, const QString &path)
{
    const QImage icon = largeForm(path);
    QImage picture(icon.size(), QImage::Format_RGB32);
    picture.fill(ground);
    QPainter painter(&picture);
    painter.drawImage(0, 0, icon);
    return picture;
}

} // namespace

void HighDensityTest::initTestCase()
{
    App::ServiceProfile profile;
    profile.apiHost = profile.streamingHost = QStringLiteral("127.0.0.1");
    profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
    App::ServiceProfile::setCurrent(profile);
    QCOMPARE(qApp->devicePixelRatio(), 2.0);
}

void HighDensityTest::buttonsShowTheirIconInItsSize_data()
{
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("icon");
    QTest::newRow("tab") << "ToolBar"
                         << "layoutsButton"
                         << ":/mainwidget/icons/tabLayouts.png";
    QTest::newRow("checked tab") << "ToolBar"
                                 << "rosterButton"
                                 << ":/mainwidget/icons/tabCamera_hover.png";
    QTest::newRow("tab at the bottom") << "ToolBar"
                                       << "settingsButton"
                                       << ":/mainwidget/icons/tabSettings.png";
    QTest::newRow("hide") << "SideBar"
                          << "hideRosterButton"
                          << ":/mainwidget/icons/iconCollapse.png";
    QTest::newRow("server's menu") << "ServerWidget"
                                   << "settingsButton"
                                   << ":/mainwidget/icons/iconMore.png";
}

void HighDensityTest::buttonsShowTheirIconInItsSize()
{
    QFETCH(QString, parent);
    QFETCH(QString, button);
    QFETCH(QString, icon);
    Stage stage;
    QVERIFY(stage.ready);
    auto *widget = stage.window.findChild<QWidget *>(parent)->findChild<QPushButton *>(button);
    QVERIFY(widget->isVisible());
    // Without the edges, which have lines of their own.
    const QRect inside = widget->rect().adjusted(4, 1, -1, -2);
    const QPoint place = widget->mapTo(&stage.window, inside.topLeft());
    const QImage shown = stage.window.grab(QRect(place, inside.size())).toImage();
    QCOMPARE(shown.size(), inside.size() * 2);
    const QColor ground = shown.pixelColor(0, 0);

    const QRect ink = inkArea(shown, ground);
    const QRect expected = inkArea(iconOn(ground, icon), ground);
    QVERIFY(expected.width() > 20);
    QVERIFY2(qAbs(ink.width() - expected.width()) <= 1 &&
                 qAbs(ink.height() - expected.height()) <= 1,
             qPrintable(QStringLiteral("%1 x %2 for %3 x %4")
                            .arg(ink.width())
                            .arg(ink.height())
                            .arg(expected.width())
                            .arg(expected.height())));
}

void HighDensityTest::labelsShowTheLargeForm_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("icon");
    QTest::newRow("state") << "cameraStateImage"
                           << ":/roster/icons/rosterCardOff.png";
    QTest::newRow("no camera") << "previewImage"
                               << ":/roster/icons/rosterCardPreviewNoCam.png";
    QTest::newRow("offline server") << "serverOfflineImage"
                                    << ":/roster/icons/rosterOfflineserver.png";
}

void HighDensityTest::labelsShowTheLargeForm()
{
    QFETCH(QString, label);
    QFETCH(QString, icon);
    const Stage stage;
    const QPixmap pixmap = stage.window.findChild<QLabel *>(label)->pixmap(Qt::ReturnByValue);
    QCOMPARE(pixmap.devicePixelRatio(), 2.0);
    QImage picture = pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(1);
    QCOMPARE(picture, largeForm(icon));
}

int main(int argc, char *argv[])
{
    qputenv("QT_SCALE_FACTOR", "2");
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    HighDensityTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "HighDensityTest.moc"
