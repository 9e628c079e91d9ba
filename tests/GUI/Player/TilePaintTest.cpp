// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/ScriptedChild.h"

using GUI::Player::VideoWidget;

namespace {

const QColor background(25, 25, 29);
const QColor selection(62, 183, 253);
const QColor hover(66, 71, 80);

/// Red and green above, blue and white below.
const QStringList corners{"corners 64 48", "print size 64 48\\nframe\\n"};

/// First letters of the colours of the four quarters of `area`, from the upper left.
QString quartersOf(VideoWidget &tile, const QRect &area)
{
    const QImage image = tile.grab().toImage();
    const int left = area.left() + area.width() / 4;
    const int right = area.left() + area.width() * 3 / 4;
    const int upper = area.top() + area.height() / 4;
    const int lower = area.top() + area.height() * 3 / 4;
    QString letters;
    for (const QPoint &point :
         {QPoint(left, upper), QPoint(right, upper), QPoint(left, lower), QPoint(right, lower)}) {
        const QColor color = image.pixelColor(point);
        letters += color == Qt::red             ? 'R'
                   : color == QColor(0, 255, 0) ? 'G'
                   : color == Qt::blue          ? 'B'
                   : color == Qt::white         ? 'W'
                                                : '?';
    }
    return letters;
}

void sendEnter(QWidget &widget)
{
    QEnterEvent event(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
    QApplication::sendEvent(&widget, &event);
}

void sendLeave(QWidget &widget)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&widget, &event);
}

/// Counts events of one type that reach a widget.
class EventCounter : public QObject
{
public:
    EventCounter(QObject *watched, QEvent::Type countedType) : type(countedType)
    {
        watched->installEventFilter(this);
    }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == type;
        return false;
    }

private:
    QEvent::Type type;
};

} // namespace

/// What a tile looks like, to the pixel, and what it does under the mouse.
class TilePaintTest : public QObject
{
    Q_OBJECT

private slots:
    void fits_data();
    void fits();
    void orientation_data();
    void orientation();
    void paintsFromTheMapping();
    void clearedPictureIsClearedInTheFile();
    void hiddenTileShowsNoPicture();
    void message_data();
    void message();
    void hoverBorder();
    void dropBorder();
    void barsFollowTheMouse();
    void barsStayForTheMenu();
    void buttonComesBackFromItsMenu();
    void doubleClickOnABarIsEaten_data();
    void doubleClickOnABarIsEaten();
    void nameIsElided();
    void closeAsks_data();
    void closeAsks();
    void snapshot();
};

void TilePaintTest::fits_data()
{
    QTest::addColumn<QSize>("tileSize");
    QTest::addColumn<QRect>("picture");
    QTest::newRow("exact") << QSize(320, 240) << QRect(0, 0, 320, 240);
    QTest::newRow("bands at the sides") << QSize(400, 240) << QRect(40, 0, 320, 240);
    QTest::newRow("bands above and below") << QSize(320, 300) << QRect(0, 30, 320, 240);
    QTest::newRow("smallest") << QSize(155, 110) << QRect(4, 0, 146, 110);
}

void TilePaintTest::fits()
{
    QFETCH(QSize, tileSize);
    QFETCH(QRect, picture);
    ScriptedChild child({"solid 64 48 ff0000ff", "print size 64 48\\nframe\\n"});
    VideoWidget tile(localCamera());
    tile.resize(tileSize);
    tile.show();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), "Playing"_s);
    QImage expected(tileSize, QImage::Format_RGB32);
    expected.fill(background);
    for (int y = picture.top(); y <= picture.bottom(); ++y) {
        for (int x = picture.left(); x <= picture.right(); ++x)
            expected.setPixelColor(x, y, Qt::red);
    }
    QCOMPARE(tile.grab().toImage().convertToFormat(QImage::Format_RGB32), expected);
}

void TilePaintTest::orientation_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<bool>("mirror");
    QTest::addColumn<QString>("quarters");
    QTest::newRow("upright") << 0 << false << "RGBW";
    QTest::newRow("mirrored") << 0 << true << "GRWB";
    QTest::newRow("90") << 90 << false << "BRWG";
    QTest::newRow("90, mirrored") << 90 << true << "RBGW";
    QTest::newRow("180") << 180 << false << "WBGR";
    QTest::newRow("180, mirrored") << 180 << true << "BWRG";
    QTest::newRow("270") << 270 << false << "GWRB";
    QTest::newRow("-90") << -90 << false << "GWRB";
}

void TilePaintTest::orientation()
{
    QFETCH(int, rotation);
    QFETCH(bool, mirror);
    QFETCH(QString, quarters);
    ScriptedChild child(corners);
    const API::CameraPtr camera = localCamera();
    VideoWidget tile(camera);
    tile.resize(320, 240);
    tile.show();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(quartersOf(tile, QRect(0, 0, 320, 240)), "RGBW"_s);

    camera->setRotation(rotation);
    camera->setMirrored(mirror);
    const bool isUpright = rotation % 180 == 0;
    const QRect area = isUpright ? QRect(0, 0, 320, 240) : QRect(70, 0, 180, 240);
    QCOMPARE(quartersOf(tile, area), quarters);
    QCOMPARE(pixelOf(tile, 60, 120) == background, !isUpright);
}

void TilePaintTest::paintsFromTheMapping()
{
    // What the child writes shows at the next paint, announced or not.
    ScriptedChild child({"solid 64 48 ff0000ff", "print size 64 48\\nframe\\n", "wait go",
                         "solid 64 48 0000ffff", "print state blue\\n"});
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), "Playing"_s);
    QCOMPARE(pixelOf(tile, 160, 120), QColor(Qt::red));
    child.tell("go"_s);
    QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"blue\""_s));
    QCOMPARE(pixelOf(tile, 160, 120), QColor(Qt::blue));
}

void TilePaintTest::clearedPictureIsClearedInTheFile()
{
    ScriptedChild child(corners);
    VideoWidget tile(localCamera());
    tile.show();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), "Playing"_s);
    tile.stop();
    QFile file(QDir::temp().filePath(child.starts().first().value(1)));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.read(64 * 48 * 4), QByteArray("\x1d\x19\x19\xff").repeated(64 * 48));
    QVERIFY(showsText(tile, QString()));
}

void TilePaintTest::hiddenTileShowsNoPicture()
{
    ScriptedChild child(corners);
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), "Playing"_s);
    QCOMPARE(quartersOf(tile, tile.rect()), "????"_s);
    tile.show();
    QCOMPARE(quartersOf(tile, tile.rect()), "RGBW"_s);
}

void TilePaintTest::message_data()
{
    QTest::addColumn<QSize>("tileSize");
    QTest::newRow("too narrow for the large text") << QSize(160, 240);
    QTest::newRow("just large enough") << QSize(161, 121);
    QTest::newRow("too low for the large text") << QSize(200, 120);
    QTest::newRow("wraps") << QSize(155, 110);
}

void TilePaintTest::message()
{
    QFETCH(QSize, tileSize);
    const QString name = "Entrance of the large northern warehouse"_s;
    const API::CameraPtr camera = localCamera(name);
    camera->setFlags(API::CameraOffline);
    VideoWidget tile(camera);
    tile.resize(tileSize);
    tile.show();
    QVERIFY(!tile.playLive());
    QVERIFY(showsText(tile, "Camera " + name + " is offline"));
    QVERIFY(!showsText(tile, QString()));
}

void TilePaintTest::hoverBorder()
{
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    QCOMPARE(pixelOf(tile, 1, 120), background);
    sendEnter(tile);
    QCOMPARE(pixelOf(tile, 1, 120), hover);
    QCOMPARE(pixelOf(tile, 318, 120), hover);
    QCOMPARE(pixelOf(tile, 4, 120), background);
    sendLeave(tile);
    QCOMPARE(pixelOf(tile, 1, 120), background);
}

void TilePaintTest::dropBorder()
{
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    sendEnter(tile);
    QMimeData data;
    data.setData("camera"_s, "x");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&tile, &enter);
    QCOMPARE(pixelOf(tile, 1, 120), selection);
    QCOMPARE(pixelOf(tile, 160, 1), selection);
    QDragLeaveEvent leave;
    QApplication::sendEvent(&tile, &leave);
    QCOMPARE(pixelOf(tile, 1, 120), hover);
}

void TilePaintTest::barsFollowTheMouse()
{
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    const QWidget &top = *tile.findChild<QWidget *>("topBar"_s);
    const QWidget &bottom = *tile.findChild<QWidget *>("bottomBar"_s);
    QVERIFY(!top.isVisible() && !bottom.isVisible());
    sendEnter(tile);
    QVERIFY(top.isVisible() && bottom.isVisible());
    QCOMPARE(top.height(), 28);
    QCOMPARE(bottom.height(), 28);
    sendLeave(tile);
    QVERIFY(!top.isVisible() && !bottom.isVisible());
}

void TilePaintTest::barsStayForTheMenu()
{
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    const QWidget &top = *tile.findChild<QWidget *>("topBar"_s);
    QMenu &menu = *tile.findChild<QPushButton *>("settingsButton"_s)->menu();
    sendEnter(tile);
    menu.popup(tile.mapToGlobal(QPoint(50, 50)));
    QTRY_VERIFY(menu.isVisible());
    sendLeave(tile);
    QVERIFY(top.isVisible());
    menu.hide();
    QVERIFY(!top.isVisible());

    // Closing the menu hides the bars even under the mouse.
    sendEnter(tile);
    QVERIFY(top.isVisible());
    menu.popup(tile.mapToGlobal(QPoint(50, 50)));
    QTRY_VERIFY(menu.isVisible());
    menu.hide();
    QVERIFY(!top.isVisible());
}

void TilePaintTest::buttonComesBackFromItsMenu()
{
    auto tile = std::make_unique<VideoWidget>(localCamera());
    tile->resize(320, 240);
    tile->show();
    sendEnter(*tile);
    const QPointer<QPushButton> button = tile->findChild<QPushButton *>("settingsButton"_s);
    const QPointer<QMenu> menu = button->menu();
    QSignalSpy hidden(menu, &QMenu::aboutToHide);
    QTimer::singleShot(0, menu, [menu] { menu->hide(); });
    // A menu that goes on waiting is let go together with its tile.
    QTimer::singleShot(5000, menu, [&tile] { tile.reset(); });
    QTest::mousePress(button, Qt::LeftButton);
    QVERIFY(button);
    QTest::mouseRelease(button, Qt::LeftButton);
    QVERIFY(!menu->isVisible());
    QCOMPARE(hidden.size(), 1);
    QVERIFY(!button->isDown());
}

void TilePaintTest::doubleClickOnABarIsEaten_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<int>("reached");
    QTest::newRow("tile") << "" << 1;
    QTest::newRow("upper bar") << "topBar" << 0;
    QTest::newRow("lower bar") << "bottomBar" << 0;
    QTest::newRow("name in the upper bar") << "cameraName" << 0;
}

void TilePaintTest::doubleClickOnABarIsEaten()
{
    QFETCH(QString, target);
    QFETCH(int, reached);
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    sendEnter(tile);
    const EventCounter counter(&tile, QEvent::MouseButtonDblClick);
    QWidget *widget = target.isEmpty() ? &tile : tile.findChild<QWidget *>(target);
    QTest::mouseDClick(widget, Qt::LeftButton, Qt::NoModifier,
                       target.isEmpty() ? QPoint(100, 100) : QPoint(2, 10));
    QCOMPARE(counter.count, reached);
}

void TilePaintTest::nameIsElided()
{
    const QString name = "Entrance of the large northern warehouse"_s;
    VideoWidget tile(localCamera(name));
    const QLabel &label = *tile.findChild<QLabel *>("cameraName"_s);
    QCOMPARE(label.text(), name);
    tile.resize(200, 150);
    tile.show();
    QCOMPARE(label.text(), label.fontMetrics().elidedText(name, Qt::ElideRight, 80));
    QVERIFY(label.text() != name);
    tile.resize(2000, 1000);
    QCOMPARE(label.text(), name);
    tile.setCameraName("Back door"_s);
    QCOMPARE(label.text(), "Back door"_s);
}

void TilePaintTest::closeAsks_data()
{
    QTest::addColumn<bool>("byMenu");
    QTest::newRow("button") << false;
    QTest::newRow("menu") << true;
}

void TilePaintTest::closeAsks()
{
    QFETCH(bool, byMenu);
    VideoWidget tile(localCamera());
    QList<VideoWidget *> closed;
    connect(&tile, &VideoWidget::closed, this,
            [&closed](VideoWidget *widget) { closed << widget; });
    if (byMenu)
        tile.findChild<QPushButton *>("settingsButton"_s)->menu()->actions().last()->trigger();
    else
        tile.findChild<QPushButton *>("closeButton"_s)->click();
    QCOMPARE(closed, QList<VideoWidget *>{&tile});
}

void TilePaintTest::snapshot()
{
    const QDir pictures(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    QVERIFY(QDir().mkpath(pictures.path()));
    ScriptedChild child(corners);
    const API::CameraPtr camera = localCamera();
    camera->setRotation(90);
    VideoWidget tile(camera);
    tile.show();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), "Playing"_s);
    tile.setTime(QDateTime(QDate(2015, 3, 3), QTime(14, 5, 9)));
    QSignalSpy saved(&tile, &VideoWidget::snapshotSaved);
    tile.findChild<QPushButton *>("cameraScreenshotButton"_s)->click();
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved.first().first().toString(), pictures.absolutePath());
    const QImage picture(pictures.filePath("Door-03_03_15_14_05_09.png"_s));
    QCOMPARE(picture.size(), QSize(64, 48));
    QCOMPARE(picture.pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(picture.pixelColor(63, 0), QColor(0, 255, 0));
    QCOMPARE(picture.pixelColor(0, 47), QColor(Qt::blue));
}

QTEST_MAIN(TilePaintTest)
#include "TilePaintTest.moc"
