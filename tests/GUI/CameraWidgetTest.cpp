// SPDX-License-Identifier: MIT
#include "GUI/CameraWidget.h"
#include "API/Camera.h"
#include "GUI/SpinnerWidget.h"
#include "tests/GUI/RosterWorld.h"

using GUI::CameraWidget;
using GUI::Preview;

namespace {

constexpr QPoint home(20, 10);
// A grey that a JPEG file keeps.
const QString grey = "#808080"_s;

/// Black in the middle half, so that one shown too large is not grey at the edge.
QPixmap greyPicture(const QSize &size = QSize(64, 36))
{
    QPixmap picture(size);
    picture.fill(QColor(grey));
    const int quarter = size.width() / 4;
    QPainter(&picture).fillRect(picture.rect().adjusted(quarter, 0, -quarter, 0), Qt::black);
    return picture;
}

/// On a server of the running test's name, for a request of an earlier one can be late.
API::CameraPtr makeCamera(bool online = true, const QString &name = "Gate"_s, bool paid = true)
{
    setWorld({{QTest::currentTestFunction(), "Site"_s, {{7, name, online, paid}, {8, "Other"_s}}}});
    return rosterCamera(QTest::currentTestFunction(), 7);
}

/// Takes the steps that the name of the row consists of.
void take(const QHash<QString, std::function<void()>> &steps)
{
    for (const QString &name : QString(QTest::currentDataTag()).split(' '))
        steps.value(name)();
}

/// A window with a card in it, at `home`.
struct Stage {
    explicit Stage(Preview *card)
    {
        window.resize(300, 200);
        card->setParent(&window);
        card->move(home);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }

    QWidget window;
};

/// What a person sees in the place of the picture: the spinner, the icon of a camera or of no
/// camera, or the colour at the edge, which a wide picture fills.
QString look(QWidget *card)
{
    if (card->findChild<GUI::SpinnerWidget *>()->isVisibleTo(card))
        return "spinner"_s;
    const QImage whole = card->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const auto *label = card->findChild<QLabel *>("previewImage");
    const QImage painted = whole.copy(QRect(label->mapTo(card, QPoint()), label->size()));
    for (const QString &name : {"Cam"_s, "NoCam"_s}) {
        const QPixmap icon(":/roster/icons/rosterCardPreview%1.png"_s.arg(name));
        const QRect place =
            QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, icon.size(), painted.rect());
        QImage expected(icon.size(), QImage::Format_RGB32);
        expected.fill(painted.pixel(5, 5));
        QPainter(&expected).drawPixmap(0, 0, icon);
        if (painted.copy(place) == expected)
            return name;
    }
    return painted.pixelColor(1, painted.height() / 2).name();
}

} // namespace

class CameraWidgetTest : public RosterTest
{
    Q_OBJECT

private slots:
    void imageIsScaledByKind_data()
    {
        rows<int, QSize, bool, bool>(
            {"kind", "image", "toWidth", "toHeight"},
            {{"camera, wide", int(Preview::KindCamera), QSize(300, 200), true, false},
             {"camera, tall", int(Preview::KindCamera), QSize(200, 300), false, true},
             {"layout", int(Preview::KindLayout), QSize(640, 480), true, true}});
    }

    void imageIsScaledByKind()
    {
        const auto [kind, image, toWidth, toHeight] = row<int, QSize, bool, bool>();
        // It comes before the card has its place, so it has to fit when it is painted.
        auto *card = new Preview(kind);
        card->setImage(greyPicture(image));
        const Stage stage(card);
        const auto *label = card->findChild<QLabel *>("previewImage");
        const QSize room = label->size();
        const auto shown = [&] { return label->pixmap(Qt::ReturnByValue).size(); };
        QTRY_COMPARE(shown().width() == room.width(), toWidth);
        QTRY_COMPARE(shown().height() == room.height(), toHeight);
        const QSize excess = image.scaled(shown(), Qt::KeepAspectRatioByExpanding) - shown();
        QVERIFY(kind == Preview::KindLayout || qMax(excess.width(), excess.height()) <= 1);
        QCOMPARE(label->size(), room);
    }

    /// What a card shows and how often it has asked for a picture, step by step.
    void pictureAndRequests_data()
    {
        rows<QString, int>({"seen", "requests"},
                           {{"refresh", "Cam", 0},
                            {"show refresh", "spinner", 1},
                            {"ask 4.9 ask", "spinner", 1},
                            {"ask 5.0 ask", "spinner", 2},
                            {"ask back ask", "spinner", 2},
                            {"served ask", grey, 1},
                            {"failing ask", "Cam", 1},
                            {"grey ask", grey, 1},
                            {"grey null", "Cam", 0},
                            {"offline ask", "Cam", 0},
                            {"show grey offline refresh resize", "NoCam", 0},
                            {"offline refresh online refresh", "NoCam", 0},
                            {"offline refresh grey refresh", "NoCam", 0},
                            {"grey release release expire", "Cam", 0},
                            {"grey release show expire", grey, 0},
                            {"grey release expire grey release expire", "Cam", 0}});
    }

    void pictureAndRequests()
    {
        const auto [seen, requests] = row<QString, int>();
        const QByteArray path("//preview/live");
        QBuffer jpeg;
        QVERIFY(greyPicture().save(&jpeg, "JPEG"));
        service.answer("GET", path, WireReply::silence());
        const API::CameraPtr camera = makeCamera();
        CameraWidget card(camera);
        // The cards of two windows share the camera's picture.
        CameraWidget second(camera);
        const auto reply = WireReply::body(jpeg.data(), "image/jpeg");
        take({{"refresh"_s, [&] { card.updateCamera(camera); }},
              {"ask"_s, [&] { card.updatePreview(); }},
              {"served"_s, [&] { service.answer("GET", path, reply); }},
              {"failing"_s, [&] { service.reset(); }},
              {"4.9"_s, [] { stopClockAt(4.9); }},
              {"5.0"_s, [] { stopClockAt(5); }},
              {"back"_s, [] { stopClockAt(-3600); }},
              {"grey"_s, [&] { camera->setPreview(greyPicture()); }},
              {"null"_s, [&] { camera->setPreview(QPixmap()); }},
              {"online"_s, [] { makeCamera(true); }},
              {"offline"_s, [] { makeCamera(false); }},
              {"resize"_s, [&] { card.findChild<QLabel *>("previewImage")->resize(180, 110); }},
              {"show"_s, [&] { card.show(); }},
              {"release"_s, [&] { card.deletePreview(); }},
              {"expire"_s, [] { QCOMPARE(expireTimers(releaseDelay), 1); }}});
        QTRY_COMPARE(look(&card), seen);
        QVERIFY(card.findChild<GUI::SpinnerWidget *>()->isHidden() == (seen != "spinner"_s));
        QVERIFY(seen == "NoCam"_s || card.hasPreview() == (seen != "Cam"_s));
        QVERIFY(seen == "NoCam"_s || seen == "spinner"_s || look(&second) == seen);
        // A new card is right from the first, before a refresh.
        const QString icon = camera->isOnline() ? "Cam"_s : "NoCam"_s;
        CameraWidget later(camera);
        QCOMPARE(look(&later), camera->hasPreview() ? grey : icon);
        // The request for another camera shows that there was time for one more.
        rosterCamera("pictureAndRequests"_s, 8)->updatePreview();
        const auto targets = [&] {
            QByteArray all;
            for (const WireRequest &request : service.requestsTo(path))
                all += request.target();
            return all;
        };
        QTRY_VERIFY(targets().contains("camera=8&q=0&server=pictureAndRequests"));
        QTRY_COMPARE(targets().count("camera=7&q=0&server=pictureAndRequests"), requests);
    }

    void pressedCardComesBack_data()
    {
        rows<bool, bool, int>({"draggable", "pressed", "clicks"},
                              {{"press", false, true, 0},
                               {"press layout release", false, false, 1},
                               {"press move release", false, false, 1},
                               {"right", false, false, 0},
                               {"press nudge release", true, false, 1},
                               {"press drag release", true, false, 0}});
    }

    void pressedCardComesBack()
    {
        const auto [draggable, pressed, clicks] = row<bool, bool, int>();
        Preview *card =
            draggable ? new CameraWidget(makeCamera()) : new Preview(Preview::KindCamera);
        const Stage stage(card);
        QSignalSpy clicked(card, &Preview::clicked);
        const QPoint at(10, 10);
        const int distance = QApplication::startDragDistance();
        const auto drag = [&] {
            const QDrag *started = dragTo(card, at + QPoint(distance - 2, 2));
            QVERIFY(started && started->mimeData()->hasFormat("camera"_s));
            QCOMPARE(started->hotSpot(), QPoint(80, 50));
            // Its picture is the card, tilted.
            QVERIFY(started->pixmap().width() > card->width());
        };
        take({{"press"_s, [&] { QTest::mousePress(card, Qt::LeftButton, {}, at); }},
              {"release"_s, [&] { QTest::mouseRelease(card, Qt::LeftButton); }},
              {"right"_s, [&] { QTest::mouseClick(card, Qt::RightButton); }},
              {"layout"_s, [&] { card->move(home); }},
              {"nudge"_s, [&] { QVERIFY(!dragTo(card, at + QPoint(distance - 1, 0))); }},
              {"move"_s, [&] { QVERIFY(!dragTo(card, at + QPoint(140, 90))); }},
              {"drag"_s, drag}});
        QCOMPARE(card->pos(), pressed ? home + QPoint(2, 2) : home);
        QCOMPARE(clicked.count(), clicks);
    }

    void aNameBeginsOnTheSideOfItsScript()
    {
        for (const QString &name : {"Gate"_s, "שער"_s}) {
            CameraWidget card(makeCamera(true, name));
            auto *label = card.findChild<QLabel *>("cameraName");
            const QRect ink = placeOf(QColor(134, 143, 157), label);
            QCOMPARE(ink.center().x() < label->width() / 2, name == "Gate"_s);
        }
    }

    void aMenuTakesThePlaceOfTheOneBefore()
    {
        Preview card(Preview::KindCamera);
        for (int i = 0; i < 2; ++i)
            card.setMenu(new QMenu(&card));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(card.findChildren<QMenu *>().size(), 1);
    }

    /// What is cut away is marked in the ellipsis, which has the room of a letter.
    void aPartThatIsFoundIsMarkedInAShortenedName_data()
    {
        rows<QString, QString>({"part", "shown"},
                               {{"at the beginning", "GATE", "^\\[Gate\\] W+ shop$"},
                                {"cut away", "Shop", "^Gate W+\\[W\\]W+ shop$"},
                                {"cut in two", QString(90, 'W'), "^Gate \\[W+\\]W+ shop$"}});
    }

    void aPartThatIsFoundIsMarkedInAShortenedName()
    {
        const auto [part, shown] = row<QString, QString>();
        CameraWidget card(makeCamera(true, "Gate " + QString(99, 'W') + " shop"_s));
        card.highlight(part);
        QVERIFY(QRegularExpression(shown).match(labelText(&card, "cameraName")).hasMatch());
        // It can be read: no other text has this colour.
        auto *label = card.findChild<QLabel *>("cameraName");
        QVERIFY(!placeOf(QColor(25, 25, 29), label).isEmpty());
        // It is the label's selection too.
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        card.highlight(part);
        QCOMPARE(label->selectedText().toLower(), part.toLower());
    }

    void unpreparedCardShowsWhatItWasTold_data()
    {
        rows<bool, bool, bool, QString, QString>(
            {"online", "paid", "picture", "caption", "seen"},
            {{"offline", false, true, false, "G[at]e (offline)", "NoCam"},
             {"not paid", false, false, false, "G[at]e (not paid for and offline)", "NoCam"},
             {"online", true, false, false, "G[at]e", "Cam"},
             {"without a name", true, true, false, "", "Cam"},
             {"with a picture", true, true, true, "G[at]e", grey}});
    }

    void unpreparedCardShowsWhatItWasTold()
    {
        const auto [online, paid, picture, caption, seen] =
            row<bool, bool, bool, QString, QString>();
        const API::CameraPtr camera =
            makeCamera(online, caption.isEmpty() ? QString() : "Gate"_s, paid);
        auto *card = new CameraWidget(camera, nullptr, CameraWidget::Making::Later);
        card->updateCamera(camera);
        card->highlight("at"_s);
        if (picture)
            camera->setPreview(greyPicture());
        QCOMPARE(card->hasPreview(), picture);
        const Stage stage(card);
        card->prepare();
        const auto painted = [](QWidget *widget) {
            return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
        };
        const QImage first = painted(card);
        QCOMPARE(labelText(card, "cameraName"), caption);
        QCOMPARE(look(card), seen);
        const QPixmap state(":/roster/icons/rosterCard%1.png"_s.arg(online ? "On" : "Off"));
        const auto *shown = card->findChild<QLabel *>("cameraStateImage");
        QCOMPARE(shown->pixmap(Qt::ReturnByValue).toImage(), state.toImage());

        // It looks like a card that was made whole, from the first.
        CameraWidget whole(camera, nullptr);
        whole.updateCamera(camera);
        whole.highlight("at"_s);
        QCOMPARE(first, painted(&whole));

        // A new name comes with a refresh, and a long one leaves the rest in its place.
        const auto *button = card->findChild<QPushButton *>("previewMenu");
        const QRect place = button->geometry();
        const QString name = QString(300, 'W') + "\nsecond line"_s;
        makeCamera(true, name);
        QCOMPARE(labelText(card, "cameraName"), caption);
        card->updateCamera(camera);
        QCOMPARE(labelText(card, "cameraName"), name);
        QCoreApplication::processEvents();
        QCOMPARE(button->geometry(), place);
    }
};

QTEST_MAIN(CameraWidgetTest)
#include "CameraWidgetTest.moc"
