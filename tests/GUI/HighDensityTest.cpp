// SPDX-License-Identifier: MIT
// On a screen of double density the icons keep their size and are drawn from their large form.
#include "tests/support/Test.h"

#include "App/Application.h"
#include "GUI/LoginDialog.h"
#include "tests/GUI/PanelStage.h"

namespace {

/// In its own pixels.
QImage largeForm(const QString &path)
{
    QImage icon(QString(path).replace(".png"_s, "@2x.png"_s));
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

/// What is not ground.
QImage inkOf(const QImage &picture, const QColor &ground)
{
    QImage ink = picture.copy(inkArea(picture, ground)).convertToFormat(QImage::Format_RGB32);
    ink.setDevicePixelRatio(1);
    return ink;
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

class HighDensityTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        leaveWithoutService();
        QCOMPARE(qApp->devicePixelRatio(), 2.0);
    }

    void iconsKeepTheirSize_data()
    {
        QTest::addColumn<QString>("parent");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("icon");
        const struct {
            const char *row, *parent, *name, *icon;
        } places[] = {
            {"tab", "ToolBar", "layoutsButton", "mainwidget/icons/tabLayouts"},
            {"checked tab", "ToolBar", "rosterButton", "mainwidget/icons/tabCamera_hover"},
            {"tab at the bottom", "ToolBar", "settingsButton", "mainwidget/icons/tabSettings"},
            {"hide", "SideBar", "hideRosterButton", "mainwidget/icons/iconCollapse"},
            {"server's menu", "ServerWidget", "settingsButton", "mainwidget/icons/iconMore"},
            {"card's menu", "Preview", "previewMenu", "roster/icons/rosterMore"},
            {"show", "InfoPanel", "showPBtn", "mainwidget/icons/iconExpand"},
            {"grid", "InfoPanel", "gridSizeButton", "player/icons/edit_grid"},
            {"view's menu", "InfoPanel", "settingsButton", "mainwidget/icons/playerBoxMore"},
            {"show records", "ControlPanel", "showRecordsButton",
             "mainwidget/icons/iconRecordsShow"},
            {"hide records", "ControlPanel", "hideRecordsButton",
             "mainwidget/icons/iconRecordsHide"},
            {"go live", "ControlPanel", "goLiveButton", "mainwidget/icons/iconLive"},
            {"pause", "ControlPanel", "pauseButton", "mainwidget/icons/playerPause"},
            {"play", "ControlPanel", "playButton", "mainwidget/icons/playerPlay"},
            {"speed", "ControlPanel", "speedButton", "mainwidget/icons/iconRewind"},
            {"sound", "ControlPanel", "soundButton", "mainwidget/icons/iconVolume2"},
            {"quality", "ControlPanel", "qualityButton", "mainwidget/icons/iconQuality"},
            {"fullscreen", "ControlPanel", "fullscreenButton", "mainwidget/icons/iconMaximize"},
            {"day before", "ArchiveControlPanel", "prevDayButton", "calendar/icons/arrow_left"},
            {"zoom in", "ArchiveControlPanel", "zoomInButton", "mainwidget/icons/timelineZoomIn"},
            {"close tile", "VideoWidget", "closeButton", "mainwidget/icons/boxCloseCam"},
            {"snapshot", "VideoWidget", "cameraScreenshotButton", "mainwidget/icons/playerBoxSnap"},
            {"tile's menu", "VideoWidget", "settingsButton", "mainwidget/icons/playerBoxMore"},
            {"empty cell", "VideoPlaceholder", "logoLabel", "player/icons/placeholder_logo"},
            {"hint", "PlayerNotification", "pixmapLabel", "player/icons/notificationError"},
            {"close hint", "PlayerNotification", "closeButton", "mainwidget/icons/boxCloseCam"},
        };
        for (const auto &place : places)
            QTest::newRow(place.row)
                << place.parent << place.name << ":/%1.png"_s.arg(QLatin1String(place.icon));
    }

    /// A place larger than the icon would enlarge the large form, a smaller one squeeze it, and so
    /// would the pressed look.
    void iconsKeepTheirSize()
    {
        QFETCH(QString, parent);
        QFETCH(QString, name);
        QFETCH(QString, icon);
        PanelStage stage;
        QVERIFY(stage.isExposed);
        QWidget *widget = stage.reveal(parent, name);
        QVERIFY(widget);
        auto *button = qobject_cast<QPushButton *>(widget);
        if (button)
            button->setText(QString()); // the icon alone
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        const bool isTab = parent == "ToolBar"_s;
        // The edges of a tab are lines.
        const QRect inside = isTab ? widget->rect().adjusted(4, 1, -1, -2) : widget->rect();
        const QImage shown = stage.pictureOf(widget, inside, 2);
        const QColor ground = shown.pixelColor(0, 0);
        const QImage expected = inkOf(iconOn(ground, icon), ground);
        QVERIFY(qMax(expected.width(), expected.height()) > 14);
        QCOMPARE(inkOf(shown, ground), expected);

        if (!button || isTab) // which looks checked while it is pressed
            return;
        const QPoint before = inkArea(shown, ground).topLeft();
        button->setDown(true);
        const QImage pressed = stage.pictureOf(widget, inside, 2);
        QVERIFY(inkArea(pressed, ground).topLeft() != before);
        QCOMPARE(inkOf(pressed, ground).size(), expected.size());
    }

    void labelsShowTheLargeForm_data()
    {
        rows<QString, QString>(
            {"label", "icon"},
            {
                {"state", "cameraStateImage", ":/roster/icons/rosterCardOff.png"},
                {"no camera", "previewImage", ":/roster/icons/rosterCardPreviewNoCam.png"},
                {"offline server", "serverOfflineImage", ":/roster/icons/rosterOfflineserver.png"},
                {"brand", "brandLbl", ":/login/icons/logo.png"},
                {"alert", "warnIconLbl", ":/login/icons/warn.png"},
                {"proxy arrow", "arrowLbl", ":/login/icons/arrow_line.png"},
                {"gear", "settingsButton", ":/login/icons/settings.png"},
            });
    }

    void labelsShowTheLargeForm()
    {
        const auto [label, icon] = row<QString, QString>();
        PanelStage stage;
        const GUI::LoginDialog login(&stage.window);
        const QPixmap pixmap = stage.window.findChild<QLabel *>(label)->pixmap(Qt::ReturnByValue);
        QCOMPARE(pixmap.devicePixelRatio(), 2.0);
        QImage picture = pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
        picture.setDevicePixelRatio(1);
        QCOMPARE(picture, largeForm(icon));
    }
};

int main(int argc, char *argv[])
{
    qputenv("QT_SCALE_FACTOR", "2");
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    HighDensityTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "HighDensityTest.moc"
