// SPDX-License-Identifier: MIT
#include <QBuffer>
#include <QDataStream>
#include <QDrag>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QtTest>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "GUI/CameraWidget.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::CameraWidget;

class CameraWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void captionTellsTheState_data();
    void captionTellsTheState();
    void cameraThatComesBackHasItsPlainName();
    void previewsAreFiveSecondsApart_data();
    void previewsAreFiveSecondsApart();
    void offlineCameraIsNotAsked();
    void pictureArrives();
    void failedPreviewBringsTheIconBack();
    void visibleCardAsksAtARefresh();
    void releaseOutOfView();
    void releaseSparesACardInView();
    void knownPreviewIsShownAtOnce();
    void menuAndClickEmitTheCamera();
    void addToLayoutCanBeDisabled();
    void dragCarriesServerAndCamera();
    void unpreparedCardShowsWhatItWasTold_data();
    void unpreparedCardShowsWhatItWasTold();
    void unpreparedCardIsPressedDraggedAndReleased();

private:
    int previewRequests() const;

    ScriptedService service;
};

namespace {

constexpr std::chrono::milliseconds releaseDelay(30000);
const QString cameraIcon = QStringLiteral(":/roster/icons/rosterCardPreviewCam.png");
const QString noCameraIcon = QStringLiteral(":/roster/icons/rosterCardPreviewNoCam.png");

void setCamera(const WorldCamera &camera)
{
    setWorld({{QStringLiteral("s1"), QStringLiteral("Server"), {camera}}});
}

API::CameraPtr makeCamera(bool online = true)
{
    setCamera({7, QStringLiteral("Gate"), online});
    return rosterCamera(QStringLiteral("s1"), 7);
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

void CameraWidgetTest::initTestCase()
{
    QVERIFY(service.start());
}

void CameraWidgetTest::init()
{
    stopClockAt(0);
    service.reset();
}

void CameraWidgetTest::cleanup()
{
    runClock();
    setWorld({});
}

int CameraWidgetTest::previewRequests() const
{
    int count = 0;
    const QList<WireRequest> requests = service.requests();
    for (const WireRequest &request : requests)
        count += request.path().endsWith("preview/live") ? 1 : 0;
    return count;
}

void CameraWidgetTest::captionTellsTheState_data()
{
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("paid");
    QTest::addColumn<QString>("caption");
    QTest::newRow("on") << true << true << "Gate";
    QTest::newRow("off") << false << true << "Gate (offline)";
    QTest::newRow("off and not paid") << false << false << "Gate (not paid for and offline)";
    QTest::newRow("on and not paid") << true << false << "Gate";
}

void CameraWidgetTest::captionTellsTheState()
{
    QFETCH(bool, online);
    QFETCH(bool, paid);
    setCamera({1, QStringLiteral("Gate"), online, paid});
    const API::CameraPtr camera = rosterCamera(QStringLiteral("s1"), 1);
    CameraWidget card(camera);
    QCOMPARE(labelText(&card, "cameraName"), QStringLiteral("Gate"));
    card.updateCamera(camera);
    QTEST(labelText(&card, "cameraName"), "caption");
    const QString icon = online ? QStringLiteral(":/roster/icons/rosterCardOn.png")
                                : QStringLiteral(":/roster/icons/rosterCardOff.png");
    QCOMPARE(labelPicture(&card, "cameraStateImage"), resourcePicture(icon));
}

void CameraWidgetTest::cameraThatComesBackHasItsPlainName()
{
    const API::CameraPtr camera = makeCamera(false);
    CameraWidget card(camera);
    card.updateCamera(camera);
    setCamera({7, QStringLiteral("Back gate"), true});
    QCOMPARE(labelText(&card, "cameraName"), QStringLiteral("Gate (offline)"));
    card.updateCamera(camera);
    QCOMPARE(labelText(&card, "cameraName"), QStringLiteral("Back gate"));
}

void CameraWidgetTest::previewsAreFiveSecondsApart_data()
{
    QTest::addColumn<double>("pause");
    QTest::addColumn<int>("requests");
    QTest::newRow("at once") << 0.0 << 1;
    QTest::newRow("4.9 seconds") << 4.9 << 1;
    QTest::newRow("5 seconds") << 5.0 << 2;
    QTest::newRow("an hour") << 3600.0 << 2;
}

void CameraWidgetTest::previewsAreFiveSecondsApart()
{
    QFETCH(double, pause);
    QFETCH(int, requests);
    CameraWidget card(makeCamera());
    QSignalSpy answered(card.camera().data(), &API::Camera::previewChanged);
    card.updatePreview();
    QVERIFY(card.hasPreview());
    stopClockAt(pause);
    card.updatePreview();
    QTRY_COMPARE(answered.count(), requests);
    QCOMPARE(previewRequests(), requests);
}

void CameraWidgetTest::offlineCameraIsNotAsked()
{
    CameraWidget card(makeCamera(false));
    card.updatePreview();
    QVERIFY(!card.hasPreview());
    // The next card's answer shows that there was time for a request.
    setCamera({7, QStringLiteral("Gate"), true});
    QSignalSpy answered(card.camera().data(), &API::Camera::previewChanged);
    card.updatePreview();
    QTRY_COMPARE(answered.count(), 1);
    QCOMPARE(previewRequests(), 1);
}

void CameraWidgetTest::pictureArrives()
{
    service.answer("GET", "//preview/live", WireReply::body(jpeg(), "image/jpeg"));
    CameraWidget card(makeCamera());
    const auto *stack = card.findChild<QStackedWidget *>("imageStack");
    card.updatePreview();
    QCOMPARE(stack->currentWidget()->objectName(), QStringLiteral("spinnerPage"));
    QTRY_COMPARE(stack->currentWidget()->objectName(), QStringLiteral("previewPage"));
    QVERIFY(card.hasPreview());
    const QImage picture = labelPicture(&card, "previewImage");
    QVERIFY(QColor(picture.pixel(picture.width() / 2, picture.height() / 2)).red() > 200);
}

void CameraWidgetTest::failedPreviewBringsTheIconBack()
{
    CameraWidget card(makeCamera());
    QSignalSpy answered(card.camera().data(), &API::Camera::previewChanged);
    card.updatePreview();
    QTRY_COMPARE(answered.count(), 1);
    QVERIFY(!card.hasPreview());
    QCOMPARE(labelPicture(&card, "previewImage"), resourcePicture(cameraIcon));
}

void CameraWidgetTest::visibleCardAsksAtARefresh()
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

void CameraWidgetTest::releaseOutOfView()
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

void CameraWidgetTest::releaseSparesACardInView()
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

void CameraWidgetTest::knownPreviewIsShownAtOnce()
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

void CameraWidgetTest::menuAndClickEmitTheCamera()
{
    CameraWidget card(makeCamera());
    QStringList heard;
    const auto listen = [&](const QString &what) {
        return [&heard, &card, what](const API::CameraPtr &camera) {
            heard.append(camera == card.camera() ? what : QStringLiteral("other camera"));
        };
    };
    connect(&card, &CameraWidget::openCamera, this, listen(QStringLiteral("open")));
    connect(&card, &CameraWidget::addToLayout, this, listen(QStringLiteral("add")));
    connect(&card, &CameraWidget::openInNewWindow, this, listen(QStringLiteral("window")));
    QCOMPARE(menuTexts(card),
             QStringList({QStringLiteral("Open camera"), QStringLiteral("Add to layout"),
                          QStringLiteral("Settings"), QStringLiteral("Open in a new window")}));
    const auto actions = card.findChild<QPushButton *>("previewMenu")->menu()->actions();
    for (QAction *action : {actions.at(0), actions.at(1), actions.at(3)})
        action->trigger();
    QTest::mouseClick(&card, Qt::LeftButton);
    QCOMPARE(heard, QStringList({QStringLiteral("open"), QStringLiteral("add"),
                                 QStringLiteral("window"), QStringLiteral("open")}));
}

void CameraWidgetTest::addToLayoutCanBeDisabled()
{
    const QScopedPointer<CameraWidget> card(CameraWidget::createUnprepared(makeCamera(), nullptr));
    card->setAddToLayoutEnabled(false);
    card->prepare();
    const auto actions = card->findChild<QPushButton *>("previewMenu")->menu()->actions();
    QVERIFY(actions.at(0)->isEnabled());
    QVERIFY(!actions.at(1)->isEnabled());
    card->setAddToLayoutEnabled(true);
    QVERIFY(actions.at(1)->isEnabled());
}

void CameraWidgetTest::dragCarriesServerAndCamera()
{
    CameraWidget card(makeCamera());
    card.show();
    QVERIFY(QTest::qWaitForWindowExposed(&card));
    const QDrag *drag = dragFrom(&card, QPoint(5, 5), QPoint(100, 60));
    QVERIFY(drag);
    QDataStream stream(drag->mimeData()->data(QStringLiteral("camera")));
    QString server;
    int camera = 0;
    stream >> server >> camera;
    QCOMPARE(stream.status(), QDataStream::Ok);
    QVERIFY(stream.atEnd());
    QCOMPARE(server, QStringLiteral("s1"));
    QCOMPARE(camera, 7);
    QCOMPARE(drag->supportedActions(), Qt::DropActions(Qt::CopyAction));
}

void CameraWidgetTest::unpreparedCardShowsWhatItWasTold_data()
{
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("picture");
    QTest::addColumn<QString>("caption");
    QTest::newRow("offline") << false << false << "Gate (offline)";
    QTest::newRow("without a picture") << true << false << "Gate";
    QTest::newRow("with a picture") << true << true << "Gate";
}

void CameraWidgetTest::unpreparedCardShowsWhatItWasTold()
{
    QFETCH(bool, online);
    QFETCH(bool, picture);
    QFETCH(QString, caption);
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

void CameraWidgetTest::unpreparedCardIsPressedDraggedAndReleased()
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
    QVERIFY(drag->mimeData()->hasFormat(QStringLiteral("camera")));
    // The drag's picture is the card's.
    QVERIFY(!card->findChildren<QLabel *>().isEmpty());
    QCOMPARE(card->pos(), QPoint(0, 0));
}

QTEST_MAIN(CameraWidgetTest)
#include "CameraWidgetTest.moc"
