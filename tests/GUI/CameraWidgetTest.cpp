// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "GUI/CameraWidget.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/ScriptedService.h"

using GUI::CameraWidget;

namespace {

constexpr std::chrono::milliseconds releaseDelay(30000);
const QString cameraIcon = ":/roster/icons/rosterCardPreviewCam.png"_s;
const QString noCameraIcon = ":/roster/icons/rosterCardPreviewNoCam.png"_s;

void setCamera(const WorldCamera &camera)
{
    setWorld({{"s1"_s, "Server"_s, {camera}}});
}

API::CameraPtr makeCamera(bool online = true)
{
    setCamera({7, "Gate"_s, online});
    return rosterCamera("s1"_s, 7);
}

QByteArray jpeg()
{
    QImage picture(64, 36, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "JPEG");
    return bytes;
}

QStringList menuTexts(const CameraWidget &card)
{
    QStringList texts;
    const auto actions = card.findChild<QPushButton *>("previewMenu")->menu()->actions();
    for (const QAction *action : actions)
        texts.append(action->text());
    return texts;
}

} // namespace

class CameraWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(service.start()); }

    void init()
    {
        stopClockAt(0);
        service.reset();
    }

    void cleanup()
    {
        runClock();
        setWorld({});
    }

    void captionTellsTheState_data()
    {
        rows<bool, bool, QString>(
            {"online", "paid", "caption"},
            {
                {"on", true, true, "Gate"},
                {"off", false, true, "Gate (offline)"},
                {"off and not paid", false, false, "Gate (not paid for and offline)"},
                {"on and not paid", true, false, "Gate"},
            });
    }

    void captionTellsTheState()
    {
        const auto [online, paid] = row<bool, bool>();
        setCamera({1, "Gate"_s, online, paid});
        const API::CameraPtr camera = rosterCamera("s1"_s, 1);
        CameraWidget card(camera);
        QCOMPARE(labelText(&card, "cameraName"), "Gate"_s);
        card.updateCamera(camera);
        QTEST(labelText(&card, "cameraName"), "caption");
        const QString icon =
            online ? ":/roster/icons/rosterCardOn.png"_s : ":/roster/icons/rosterCardOff.png"_s;
        QCOMPARE(labelPicture(&card, "cameraStateImage"), resourcePicture(icon));
    }

    void cameraThatComesBackHasItsPlainName()
    {
        const API::CameraPtr camera = makeCamera(false);
        CameraWidget card(camera);
        card.updateCamera(camera);
        setCamera({7, "Back gate"_s, true});
        QCOMPARE(labelText(&card, "cameraName"), "Gate (offline)"_s);
        card.updateCamera(camera);
        QCOMPARE(labelText(&card, "cameraName"), "Back gate"_s);
    }

    void previewsAreFiveSecondsApart_data()
    {
        rows<double, int>({"pause", "requests"}, {
                                                     {"at once", 0.0, 1},
                                                     {"4.9 seconds", 4.9, 1},
                                                     {"5 seconds", 5.0, 2},
                                                     {"an hour", 3600.0, 2},
                                                 });
    }

    void previewsAreFiveSecondsApart()
    {
        const auto [pause, requests] = row<double, int>();
        CameraWidget card(makeCamera());
        QSignalSpy answered(card.camera().data(), &API::Camera::previewChanged);
        card.updatePreview();
        QVERIFY(card.hasPreview());
        stopClockAt(pause);
        card.updatePreview();
        QTRY_COMPARE(answered.count(), requests);
        QCOMPARE(previewRequests(), requests);
    }

    void offlineCameraIsNotAsked()
    {
        CameraWidget card(makeCamera(false));
        card.updatePreview();
        QVERIFY(!card.hasPreview());
        // The next card's answer shows that there was time for a request.
        setCamera({7, "Gate"_s, true});
        QSignalSpy answered(card.camera().data(), &API::Camera::previewChanged);
        card.updatePreview();
        QTRY_COMPARE(answered.count(), 1);
        QCOMPARE(previewRequests(), 1);
    }

    void pictureArrives()
    {
        service.answer("GET", "//preview/live", WireReply::body(jpeg(), "image/jpeg"));
        CameraWidget card(makeCamera());
        const auto *stack = card.findChild<QStackedWidget *>("imageStack");
        card.updatePreview();
        QCOMPARE(stack->currentWidget()->objectName(), "spinnerPage"_s);
        QTRY_COMPARE(stack->currentWidget()->objectName(), "previewPage"_s);
        QVERIFY(card.hasPreview());
        const QImage picture = labelPicture(&card, "previewImage");
        QVERIFY(QColor(picture.pixel(picture.width() / 2, picture.height() / 2)).red() > 200);
    }

    void failedPreviewBringsTheIconBack()
    {
        CameraWidget card(makeCamera());
        QSignalSpy answered(card.camera().data(), &API::Camera::previewChanged);
        card.updatePreview();
        QTRY_COMPARE(answered.count(), 1);
        QVERIFY(!card.hasPreview());
        QCOMPARE(labelPicture(&card, "previewImage"), resourcePicture(cameraIcon));
    }

    void visibleCardAsksAtARefresh()
    {
        CameraWidget card(makeCamera());
        card.updateCamera(card.camera());
        QVERIFY(!card.hasPreview());
        card.show();
        QVERIFY(QTest::qWaitForWindowExposed(&card));
        QVERIFY(card.isInView());
        card.updateCamera(card.camera());
        QVERIFY(card.hasPreview());
        QTRY_COMPARE(previewRequests(), 1);
    }

    void releaseOutOfView()
    {
        service.answer("GET", "//preview/live", WireReply::body(jpeg(), "image/jpeg"));
        CameraWidget card(makeCamera());
        card.updatePreview();
        QTRY_VERIFY(card.camera()->hasPreview());
        card.deletePreview();
        card.deletePreview();
        QCOMPARE(expireTimers(releaseDelay), 1);
        QVERIFY(!card.camera()->hasPreview());
        QVERIFY(!card.hasPreview());
        QCOMPARE(labelPicture(&card, "previewImage"), resourcePicture(cameraIcon));

        card.deletePreview();
        QCOMPARE(expireTimers(releaseDelay), 1);
    }

    void releaseSparesACardInView()
    {
        CameraWidget card(makeCamera());
        card.camera()->setPreview(QPixmap::fromImage(QImage::fromData(jpeg())));
        card.deletePreview();
        card.show();
        QVERIFY(QTest::qWaitForWindowExposed(&card));
        QCOMPARE(expireTimers(releaseDelay), 1);
        QVERIFY(card.camera()->hasPreview());
        QVERIFY(card.hasPreview());
    }

    void knownPreviewIsShownAtOnce()
    {
        const API::CameraPtr camera = makeCamera();
        camera->setPreview(QPixmap::fromImage(QImage::fromData(jpeg())));
        CameraWidget first(camera);
        CameraWidget second(camera);
        QVERIFY(first.hasPreview() && second.hasPreview());
        QVERIFY(labelPicture(&first, "previewImage") != resourcePicture(cameraIcon));
        // The cards of two windows share the camera's picture.
        first.deletePreview();
        QCOMPARE(expireTimers(releaseDelay), 1);
        QVERIFY(!second.hasPreview());
        QCOMPARE(labelPicture(&second, "previewImage"), resourcePicture(cameraIcon));
    }

    void menuAndClickEmitTheCamera()
    {
        CameraWidget card(makeCamera());
        QStringList heard;
        const auto listen = [&](const QString &what) {
            return [&heard, &card, what](const API::CameraPtr &camera) {
                heard.append(camera == card.camera() ? what : "other camera"_s);
            };
        };
        connect(&card, &CameraWidget::openCamera, this, listen("open"_s));
        connect(&card, &CameraWidget::addToLayout, this, listen("add"_s));
        connect(&card, &CameraWidget::openInNewWindow, this, listen("window"_s));
        QCOMPARE(menuTexts(card), QStringList({"Open camera"_s, "Add to layout"_s, "Settings"_s,
                                               "Open in a new window"_s}));
        const auto actions = card.findChild<QPushButton *>("previewMenu")->menu()->actions();
        for (QAction *action : {actions.at(0), actions.at(1), actions.at(3)})
            action->trigger();
        QTest::mouseClick(&card, Qt::LeftButton);
        QCOMPARE(heard, QStringList({"open"_s, "add"_s, "window"_s, "open"_s}));
    }

    void addToLayoutCanBeDisabled()
    {
        const QScopedPointer<CameraWidget> card(
            CameraWidget::createUnprepared(makeCamera(), nullptr));
        card->setAddToLayoutEnabled(false);
        card->prepare();
        const auto actions = card->findChild<QPushButton *>("previewMenu")->menu()->actions();
        QVERIFY(actions.at(0)->isEnabled());
        QVERIFY(!actions.at(1)->isEnabled());
        card->setAddToLayoutEnabled(true);
        QVERIFY(actions.at(1)->isEnabled());
    }

    void dragCarriesServerAndCamera()
    {
        CameraWidget card(makeCamera());
        card.show();
        QVERIFY(QTest::qWaitForWindowExposed(&card));
        const QDrag *drag = dragFrom(&card, QPoint(5, 5), QPoint(100, 60));
        QVERIFY(drag);
        QDataStream stream(drag->mimeData()->data("camera"_s));
        QString server;
        int camera = 0;
        stream >> server >> camera;
        QCOMPARE(stream.status(), QDataStream::Ok);
        QVERIFY(stream.atEnd());
        QCOMPARE(server, "s1"_s);
        QCOMPARE(camera, 7);
        QCOMPARE(drag->supportedActions(), Qt::DropActions(Qt::CopyAction));
    }

    void unpreparedCardShowsWhatItWasTold_data()
    {
        rows<bool, bool, QString>({"online", "picture", "caption"},
                                  {
                                      {"offline", false, false, "Gate (offline)"},
                                      {"without a picture", true, false, "Gate"},
                                      {"with a picture", true, true, "Gate"},
                                  });
    }

    void unpreparedCardShowsWhatItWasTold()
    {
        const auto [online, picture, caption] = row<bool, bool, QString>();
        QWidget window;
        window.resize(300, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const API::CameraPtr camera = makeCamera(online);
        CameraWidget *card = CameraWidget::createUnprepared(camera, &window);
        card->updateCamera(camera);
        if (picture)
            camera->setPreview(QPixmap::fromImage(QImage::fromData(jpeg())));
        QCOMPARE(card->hasPreview(), picture);
        QVERIFY(card->findChildren<QLabel *>().isEmpty());
        QCOMPARE(card->size(), QSize(233, 157));

        card->show();
        QTRY_VERIFY(!card->findChildren<QLabel *>().isEmpty());
        QCOMPARE(labelText(card, "cameraName"), caption);
        if (!online)
            QCOMPARE(labelPicture(card, "previewImage"), resourcePicture(noCameraIcon));
        QVERIFY(card->findChild<QLabel *>("cameraName")->isVisible());
        QCOMPARE(menuTexts(*card).size(), 4);

        // It looks like a card that was made whole.
        CameraWidget whole(camera, nullptr);
        whole.updateCamera(camera);
        const auto look = [](QWidget *widget) {
            return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
        };
        QTRY_COMPARE(look(card), look(&whole));
    }

    void unpreparedCardIsPressedDraggedAndReleased()
    {
        QWidget window;
        window.resize(300, 200);
        CameraWidget *card = CameraWidget::createUnprepared(makeCamera(), &window);
        window.show();
        int opened = 0;
        connect(card, &CameraWidget::openCamera, this, [&] { ++opened; });
        QTest::mouseClick(card, Qt::LeftButton);
        QCOMPARE(opened, 1);
        QCOMPARE(card->pos(), QPoint(0, 0));
        const QDrag *drag = dragFrom(card, QPoint(5, 5), QPoint(100, 60));
        QVERIFY(drag);
        QVERIFY(drag->mimeData()->hasFormat("camera"_s));
        // The drag's picture is the card's.
        QVERIFY(!card->findChildren<QLabel *>().isEmpty());
        QCOMPARE(card->pos(), QPoint(0, 0));
    }

private:
    int previewRequests() const
    {
        int count = 0;
        const QList<WireRequest> requests = service.requests();
        for (const WireRequest &request : requests)
            count += request.path().endsWith("preview/live") ? 1 : 0;
        return count;
    }

    ScriptedService service;
};

QTEST_MAIN(CameraWidgetTest)
#include "CameraWidgetTest.moc"
