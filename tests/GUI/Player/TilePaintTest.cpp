// SPDX-License-Identifier: MIT
#include "API/Camera.h"
#include "GUI/Player/NameTag.h"
#include "GUI/Player/PictureZoom.h"
#include "GUI/PlayerNotification.h"
#include "tests/GUI/Contrast.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"

using GUI::PlayerNotification;
using GUI::Player::VideoWidget;
using GUI::Player::Internal::NameTag;
using GUI::Player::Internal::zoomMapPlace;

namespace {

const QColor background(25, 25, 29);
const QColor selection(62, 183, 253);
const QColor hovered(66, 71, 80);

/// Red and green above, blue and white below.
const QString corners = "corners 64 48|print size 64 48\\nframe\\n"_s;

/// The first letter of the colour there.
QString letterAt(const QImage &image, QPoint place)
{
    const QHash<QString, QString> letters{
        {"#ff0000", "R"}, {"#00ff00", "G"}, {"#0000ff", "B"}, {"#ffffff", "W"}};
    return letters.value(image.pixelColor(place).name(), "?"_s);
}

/// Letters of the colours of the four quarters of `area`, from the upper left, with a
/// mark if the rest of the tile is not background.
QString quartersOf(const QImage &image, const QRect &area)
{
    QImage rest = image;
    QPainter(&rest).fillRect(area, background);
    QImage empty = rest;
    empty.fill(background);
    QString quarters(rest == empty ? "" : "!");
    for (const int y : {1, 3}) {
        for (const int x : {1, 3}) {
            const QPoint middle(area.width() * x / 4, area.height() * y / 4);
            quarters += letterAt(image, area.topLeft() + middle);
        }
    }
    return quarters;
}

/// Turns the wheel by so many notches.
void turnWheel(QWidget &widget, QPointF place, int notches, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent wheel(place, widget.mapToGlobal(place.toPoint()), QPoint(),
                      QPoint(0, 120 * notches), Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &wheel);
}

/// Puts a hint where it is sliding to, a quarter of a second away.
void endSlide(const PlayerNotification &hint)
{
    QPropertyAnimation *slide = hint.findChildren<QPropertyAnimation *>().last();
    QCOMPARE(slide->duration(), 250);
    slide->setCurrentTime(250);
}

/// The mouse comes, or goes.
void hover(QWidget &widget, bool isOver)
{
    QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&widget, isOver ? &enter : &leave);
}

} // namespace

/// What a tile and a hint over it look like, to the pixel, and what they do under the mouse.
class TilePaintTest : public QObject
{
    Q_OBJECT

public slots:
    void rememberUrl(const QUrl &url) { opened << url; }

private slots:
    void pictures_data()
    {
        const QRect all(0, 0, 320, 240);
        const QRect upended(70, 0, 180, 240);
        rows<int, bool, QString, QRect>({"rotation", "mirror", "quarters", "area"},
                                        {{"upright", 0, false, "RGBW", all},
                                         {"mirrored", 0, true, "GRWB", all},
                                         {"90", 90, false, "BRWG", upended},
                                         {"90, mirrored", 90, true, "RBGW", upended},
                                         {"180", 180, false, "WBGR", all},
                                         {"180, mirrored", 180, true, "BWRG", all},
                                         {"270", 270, false, "GWRB", upended},
                                         {"-90", -90, false, "GWRB", upended}});
    }

    void pictures()
    {
        const auto [rotation, mirror, quarters, area] = row<int, bool, QString, QRect>();
        const API::CameraPtr camera = localCamera();
        ScriptedTile tile(corners, camera);
        QVERIFY(tile.playLive());
        QTRY_COMPARE(quartersOf(onScreen(tile), tile.rect()), "RGBW"_s);
        camera->setRotation(rotation);
        camera->setMirrored(mirror);
        QTRY_COMPARE(quartersOf(onScreen(tile), area), quarters);
        // An upright picture leaves the rest of a wider tile to the background.
        tile.resize(400, 240);
        QTRY_COMPARE(quartersOf(onScreen(tile), area.translated(40, 0)), quarters);
        // Its lower right corner fills its place then; the map has it in a frame, and a shade
        // on the rest.
        turnWheel(tile, {399, 239}, 36, Qt::ControlModifier);
        QTRY_COMPARE(letterAt(onScreen(tile), {200, 120}), quarters.right(1));
        const QRect map = zoomMapPlace(tile.size(), area);
        QCOMPARE(onScreen(tile).pixelColor(map.bottomRight()), selection);
        QCOMPARE(letterAt(onScreen(tile), map.bottomRight() - QPoint(1, 1)), quarters.right(1));
        for (const QPoint &corner : {map.topLeft() - QPoint(1, 1), map.topRight() + QPoint(1, -1)})
            QCOMPARE(onScreen(tile).pixelColor(corner), QColor(41, 44, 49));
        const QColor shaded = onScreen(tile).pixelColor(map.topLeft());
        QVERIFY(shaded.value() > 100 && shaded.value() < 200);
    }

    /// "wheel N" and "ctrl N" turn it at the lower right, "drag X Y" begins there, "gone" is the
    /// picture.
    void closeLook_data()
    {
        constexpr auto arrow = Qt::ArrowCursor;
        constexpr auto open = Qt::OpenHandCursor;
        constexpr auto closed = Qt::ClosedHandCursor;
        rows<QString, QString, int, Qt::CursorShape>(
            {"steps", "seen", "maximised", "hand"},
            {{"at rest", "wheel 9", "RGB", 0, arrow},
             {"zoomed", "ctrl 36", "WWW", 0, open},
             {"alone", "alone, wheel 36", "WWW", 0, open},
             {"and back", "ctrl 9, ctrl -10", "RGB", 0, arrow},
             {"moved", "ctrl 36, drag 9000 0", "BBB", 0, closed},
             {"moved twice", "ctrl 36, drag 9000 0, drag 0 9000", "RRR", 0, closed},
             {"no picture", "ctrl 36, gone", "???", 0, arrow},
             {"held without it", "ctrl 36, drag 1 0, gone, move -50 -50", "???", 0, arrow},
             {"held and played on", "ctrl 36, press, gone, live, move 9000 0", "BBB", 0, closed},
             {"reset", "ctrl 36, double", "RGB", 0, arrow},
             {"maximised", "double, move -50 -50", "RGB", 1, arrow},
             {"both", "ctrl 36, double, double", "RGB", 1, arrow},
             {"turned", "ctrl 36, turn", "WBG", 0, arrow}});
    }

    void closeLook()
    {
        const auto [steps, seen, maximised, hand] = row<QString, QString, int, Qt::CursorShape>();
        ScriptedTile tile(corners);
        turnWheel(tile, {5, 5}, 9, Qt::ControlModifier); // there is nothing to zoom yet
        QVERIFY(tile.playsLive());
        QSignalSpy asked(&tile, &VideoWidget::maximiseRequested);
        QSignalSpy dragged(&tile, &VideoWidget::dragStarting);
        connect(&tile, &VideoWidget::dragStarting,
                [] { QTimer::singleShot(0, [] { QDrag::cancel(); }); });
        const QPoint place(319, 239);
        for (const QString &step : steps.split(", "_s)) {
            const QStringList words = step.split(' ') << "0"_s;
            const QString &what = words.first();
            const QPoint to = place + QPoint(words.at(1).toInt(), words.value(2).toInt());
            if (what == "drag"_s || what == "press"_s)
                QTest::mousePress(&tile, Qt::LeftButton, Qt::NoModifier, place);
            QMouseEvent move(QEvent::MouseMove, to, tile.mapToGlobal(to), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            if (what == "drag"_s || what == "move"_s)
                QApplication::sendEvent(&tile, &move);
            if (what == "double"_s) {
                const auto before = asked.size();
                QTest::mouseDClick(&tile, Qt::RightButton, Qt::NoModifier, place);
                QCOMPARE(asked.size(), before);
                QTest::mouseDClick(&tile, Qt::LeftButton, Qt::NoModifier, place);
            }
            if (what == "gone"_s)
                tile.stop();
            if (what == "live"_s)
                QVERIFY(tile.playsLive());
            if (what == "turn"_s)
                tile.camera()->setRotation(180);
            tile.setAlone(what == "alone"_s || steps.startsWith("alone"_s));
            if (what == "ctrl"_s)
                turnWheel(tile, place, words.at(1).toInt(), Qt::ControlModifier);
            if (what == "wheel"_s)
                turnWheel(tile, place, words.at(1).toInt(), Qt::NoModifier);
        }
        QTRY_COMPARE(letterAt(onScreen(tile), {80, 60}) + letterAt(onScreen(tile), {240, 60}) +
                         letterAt(onScreen(tile), {80, 180}),
                     seen);
        QCOMPARE(asked.size(), maximised);
        QCOMPARE(tile.cursor().shape(), hand);
        QCOMPARE(dragged.size(), 0);
    }

    void nameTag()
    {
        const QString name = "Entrance of the large northern warehouse"_s;
        ScriptedTile tile("solid 64 48 00ff00ff|print size 64 48\\nframe\\n|wait end"
                          "|print state 7\\n"_s,
                          localCamera(name));
        const auto says = [&](const QString &word, const QColor &behind) {
            QImage expected(320, 30, QImage::Format_RGB32);
            expected.fill(behind);
            QPainter painter(&expected);
            NameTag().paint(painter, tile.rect(), tile.font(), name, word);
            painter.end();
            return QTest::qWaitFor([&] {
                const QImage top = onScreen(tile).copy(expected.rect());
                return top == expected && top.pixelColor(318, 16) == behind; // it is cut
            });
        };
        tile.setNameShown(true);
        QVERIFY(says("Connecting"_s, background));
        QVERIFY(tile.playsLive());
        QVERIFY(says("Live"_s, Qt::green));
        // Its edges, and a corner that is a little round.
        const QImage tag = onScreen(tile);
        for (const QPoint &place : {QPoint(3, 16), QPoint(30, 5), QPoint(30, 26)})
            QCOMPARE(tag.pixelColor(place), QColor(Qt::green));
        for (const QPoint &place : {QPoint(4, 16), QPoint(30, 6), QPoint(30, 25), QPoint(5, 7)})
            QCOMPARE(tag.pixelColor(place), QColor(0, 85, 0));
        QVERIFY(tag.pixelColor(4, 6).green() > 85);
        QVERIFY(lit(tag.copy(4, 6, 6, 20)) == 0 && lit(tag.copy(10, 6, 6, 20)) > 0);
        tile.pause();
        QVERIFY(says("Paused"_s, Qt::green));
        tile.unpause();
        tile.setArchiveMode(true);
        tile.update();
        QVERIFY(says("Records"_s, Qt::green));
        tile.setArchiveMode(false);
        tile.tell("end"_s);
        QVERIFY(says("Interrupted"_s, Qt::green));
        tile.showError("Nothing"_s);
        QVERIFY(says("No picture"_s, background));
        hover(tile, true); // the bar has nothing behind it
        QTRY_VERIFY(onScreen(tile).pixelColor(160, 16) != background);
        const QImage bar = onScreen(tile);
        tile.setNameShown(false);
        QTRY_COMPARE(onScreen(tile), bar);
        // Where a pixel of the window is two of the screen it is drawn, not enlarged.
        QImage fine(640, 60, QImage::Format_RGB32);
        fine.setDevicePixelRatio(2);
        fine.fill(Qt::green);
        QPainter painter(&fine);
        NameTag().paint(painter, tile.rect(), tile.font(), name, "Live"_s);
        painter.end();
        QVERIFY(fine.scaled(320, 30).scaled(640, 60) != fine);
    }

    void borders()
    {
        ScriptedTile tile;
        QTRY_COMPARE(onScreen(tile).pixelColor(1, 120), background);
        hover(tile, true);
        QTRY_COMPARE(onScreen(tile).pixelColor(1, 120), hovered);
        QCOMPARE(onScreen(tile).pixelColor(318, 120), hovered);
        QCOMPARE(onScreen(tile).pixelColor(2, 120), background);
        QMimeData data;
        data.setData("camera"_s, "x");
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&tile, &enter);
        QTRY_COMPARE(onScreen(tile).pixelColor(1, 120), selection);
        QDragLeaveEvent leave;
        QApplication::sendEvent(&tile, &leave);
        QTRY_COMPARE(onScreen(tile).pixelColor(1, 120), hovered);
        hover(tile, false);
        QTRY_COMPARE(onScreen(tile).pixelColor(1, 120), background);
    }

    void bars()
    {
        struct Tile : ScriptedTile {
            void mouseDoubleClickEvent(QMouseEvent *) override { ++doubleClicks; }
            int doubleClicks = 0;
        } tile;
        const QWidget &top = *tile.findChild<QWidget *>("topBar"_s);
        const QWidget &bottom = *tile.findChild<QWidget *>("bottomBar"_s);
        QPushButton &button = *tile.findChild<QPushButton *>("settingsButton"_s);
        QMenu &menu = *button.menu();
        QVERIFY(!top.isVisible() && !bottom.isVisible());
        hover(tile, true);
        QVERIFY(top.isVisible() && bottom.isVisible());
        hover(tile, false);
        QVERIFY(!top.isVisible() && !bottom.isVisible());

        // They stay for the menu, and go with it even under the mouse.
        for (const bool isUnderMouse : {false, true}) {
            hover(tile, true);
            menu.popup(tile.mapToGlobal(QPoint(50, 50)));
            QTRY_VERIFY(menu.isVisible());
            if (!isUnderMouse)
                hover(tile, false);
            QVERIFY(top.isVisible());
            menu.hide();
            QVERIFY(!top.isVisible());
        }

        // The button comes back from its menu.
        hover(tile, true);
        QTimer::singleShot(0, &menu, &QWidget::hide);
        QTest::mousePress(&button, Qt::LeftButton);
        QTest::mouseRelease(&button, Qt::LeftButton);
        QVERIFY(!menu.isVisible() && !button.isDown());

        // A double click on a bar is none on the tile.
        hover(tile, true);
        for (const QString &name : {"topBar"_s, "bottomBar"_s, "cameraName"_s})
            QTest::mouseDClick(tile.findChild<QWidget *>(name), Qt::LeftButton, Qt::NoModifier,
                               QPoint(2, 10));
        QCOMPARE(tile.doubleClicks, 0);
        QTest::mouseDClick(&tile, Qt::LeftButton);
        QCOMPARE(tile.doubleClicks, 1);
    }

    void clicksAndMenuEntries()
    {
        ScriptedTile tile;
        QList<API::CameraPtr> clicked;
        connect(&tile, &VideoWidget::clicked, &tile, [&](const auto &which) { clicked << which; });
        QTest::mouseClick(&tile, Qt::RightButton);
        QVERIFY(clicked.isEmpty());
        QTest::mouseClick(&tile, Qt::LeftButton);
        QCOMPARE(clicked, QList<API::CameraPtr>{tile.camera()});

        QList<VideoWidget *> closed;
        connect(&tile, &VideoWidget::closed, &tile, [&](VideoWidget *which) { closed << which; });
        tile.findChild<QPushButton *>("closeButton"_s)->click();
        const QMenu &menu = *tile.findChild<QPushButton *>("settingsButton"_s)->menu();
        menu.actions().last()->trigger();
        QCOMPARE(closed, QList<VideoWidget *>({&tile, &tile}));

        QString edited;
        QTimer look;
        connect(&look, &QTimer::timeout, this, [&edited] {
            if (QWidget *dialog = QApplication::activeModalWidget()) {
                edited = dialog->findChild<QLineEdit *>("cameraName"_s)->text();
                dialog->close();
            }
        });
        look.start(10);
        menu.actions().first()->trigger();
        QTRY_COMPARE(edited, "Door"_s);
    }

    void nameIsElided()
    {
        const QString name = "Entrance of the large northern warehouse"_s;
        ScriptedTile tile(QString(), localCamera(name));
        tile.resize(200, 150);
        const QLabel &label = *tile.findChild<QLabel *>("cameraName"_s);
        QCOMPARE(label.text(), label.fontMetrics().elidedText(name, Qt::ElideRight, 80));
        QVERIFY(label.text() != name);
        QVERIFY(label.toolTip().contains(name));
        tile.resize(2000, 1000);
        QCOMPARE(label.text(), name);
        QCOMPARE(label.toolTip(), QString());
        tile.setCameraName("Back door"_s);
        QCOMPARE(label.text(), "Back door"_s);
    }

    void snapshot()
    {
        const QDir folder(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
        const QString path = folder.filePath("Door-03_03_15_14_05_09.png"_s);
        const API::CameraPtr camera = localCamera();
        camera->setRotation(90);
        ScriptedTile tile(corners, camera);
        QSignalSpy saved(&tile, &VideoWidget::snapshotSaved);
        const LogCapture log;
        const auto snap = [&] {
            tile.setTime(QDateTime(QDate(2015, 3, 3), QTime(14, 5, 9)));
            tile.findChild<QPushButton *>("cameraScreenshotButton"_s)->click();
            return log.linesOf("Cannot "_s).join('|');
        };
        QCOMPARE(snap(), "Cannot save snapshot \"%1\" : \"there is no picture\""_s.arg(path));
        QVERIFY(!QFile::exists(path));
        QVERIFY(tile.playsLive());
        turnWheel(tile, {160, 120}, 9, Qt::ControlModifier);
        snap();
        QCOMPARE(saved.size(), 2);
        QCOMPARE(saved.last().first().toString(), folder.absolutePath());
        // As the stream has it, not as the tile turns it.
        const QImage picture(path);
        QCOMPARE(picture.size(), QSize(64, 48));
        QCOMPARE(quartersOf(picture, picture.rect()), "RGBW"_s);
        // A full disk, and a file in the folder's place.
        QVERIFY(QFile::remove(path) && QFile::link("/dev/full"_s, path));
        QVERIFY(snap().endsWith("png\" : \"No space left on device\""_s));
        QVERIFY(QDir(folder).removeRecursively() && QFile::link("/dev/null"_s, folder.path()));
        QVERIFY(snap().contains("folder \"%1\" : \"Not a directory\"|"_s.arg(folder.path())));
        QVERIFY(QFile::remove(folder.path()));
    }

    /// A hint slides in, and goes in one of three ways.
    void hints()
    {
        QDesktopServices::setUrlHandler("file"_s, this, "rememberUrl");
        QImage icons[2];
        for (const QString &way : {"by itself"_s, "button"_s, "link"_s}) {
            QWidget parent;
            parent.setStyleSheet("background: black;"_s);
            parent.resize(500, 300);
            const bool isError = way == "button"_s;
            PlayerNotification hint("<a href=\"/tmp/a b\">Open folder</a>"_s, isError, &parent);
            hint.move(10, -40);
            parent.show();
            QSignalSpy closed(&hint, &PlayerNotification::closed);
            hint.animateTo(QPoint(10, 10));
            endSlide(hint);
            QCOMPARE(hint.geometry(), QRect(10, 10, 355, 40));
            const QColor seen = parent.grab().toImage().pixelColor(187, 12);
            QCOMPARE(seen.red() > seen.blue(), isError);
            icons[isError] = hint.findChild<QLabel *>("pixmapLabel"_s)->grab().toImage();

            if (way == "link"_s)
                emit hint.findChild<QLabel *>("messageLabel"_s)->linkActivated("/tmp/a b"_s);
            else if (way == "button"_s)
                hint.findChild<QPushButton *>("closeButton"_s)->click();
            const bool slides = way == "by itself"_s;
            QVERIFY(expireTimers(std::chrono::milliseconds(slides ? 3000 : 100), &hint));
            QCOMPARE(closed.size(), slides ? 0 : 1);
            if (slides)
                endSlide(hint);
            QCOMPARE(closed.size(), 1);
            QCOMPARE(hint.pos(), QPoint(10, slides ? 50 : 10));
        }
        QVERIFY(icons[false] != icons[true]);
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(opened, QList<QUrl>{QUrl::fromLocalFile("/tmp/a b"_s)});
    }

private:
    QList<QUrl> opened;
};

QTEST_MAIN(TilePaintTest)
#include "TilePaintTest.moc"
