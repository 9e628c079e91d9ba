// SPDX-License-Identifier: MIT
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QUrlQuery>
#include <QtTest>

#include "API/Camera.h"
#include "API/Server.h"
#include "App/Settings.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/CameraWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::CameraSettingsDialog;

class CameraSettingsDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void showsNameRotationAndPreview();
    void acceptedRotationGoesToTheService_data();
    void acceptedRotationGoesToTheService();
    void rotationOfALanCameraGoesToTheSettings();
    void cancelLeavesTheCamera();
    void previewFollowsTheButtons();
    void mirrorIsAppliedToo();
    void cameraWithoutPreviewShowsNone();
    void menuOpensIt_data();
    void menuOpensIt();

private:
    API::CameraPtr camera(int rotation = 0) const;

    ScriptedService service;
};

namespace {

const QByteArray rotationPath = "//public/servers/s1/cameras/7/rotation";
const QSize pictureSize(40, 20);

/// Red on the left, blue on the right.
QPixmap picture()
{
    QPixmap pixmap(pictureSize);
    pixmap.fill(Qt::blue);
    QPainter(&pixmap).fillRect(0, 0, pictureSize.width() / 2, pictureSize.height(), Qt::red);
    return pixmap;
}

QImage shownPreview(const QDialog *dialog)
{
    return labelPicture(dialog, "preview");
}

/// "R" is a step clockwise, "L" one counterclockwise.
void turn(const QDialog *dialog, const QString &steps)
{
    for (const QChar step : steps) {
        const char *name = step == QLatin1Char('R') ? "clockwise" : "counterclockwise";
        QTest::mouseClick(dialog->findChild<QPushButton *>(QLatin1String(name)), Qt::LeftButton);
    }
}

/// Opens a button's menu and clicks on an entry, as a user does.
void chooseFromMenu(QPushButton *button, const QString &text)
{
    QMenu *menu = button->menu();
    QTimer::singleShot(0, menu, [menu, text] {
        const auto actions = menu->actions();
        for (QAction *action : actions) {
            if (action->text() == text) {
                const QPoint place = menu->actionGeometry(action).center();
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, place);
                return;
            }
        }
        menu->hide();
    });
    QTest::mousePress(button, Qt::LeftButton);
}

} // namespace

void CameraSettingsDialogTest::initTestCase()
{
    qApp->setStyleSheet(QStringLiteral("* { font: 12px \"PT Sans\"; }"));
    QVERIFY(service.start());
}

void CameraSettingsDialogTest::init()
{
    service.reset();
    service.succeed("POST", rotationPath, "{}");
    setWorld({{QStringLiteral("s1"), QStringLiteral("Office"), {}}});
}

void CameraSettingsDialogTest::cleanup()
{
    setWorld({});
}

API::CameraPtr CameraSettingsDialogTest::camera(int rotation) const
{
    auto made = API::CameraPtr::create(worldServer(QStringLiteral("s1")).data(),
                                       QVariantMap{{QStringLiteral("id"), 7},
                                                   {QStringLiteral("name"), "Gate"},
                                                   {QStringLiteral("rotation"), rotation}});
    made->setPreview(picture());
    return made;
}

void CameraSettingsDialogTest::showsNameRotationAndPreview()
{
    const DialogVisitor visitor([](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Camera settings"));
        QCOMPARE(dialog->size(), QSize(321, 429));
        const auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("cameraName"));
        QCOMPARE(name->text(), QStringLiteral("Gate"));
        QVERIFY(name->isReadOnly() && name->isVisible());
        QVERIFY(dialog->findChild<QGroupBox *>(QStringLiteral("rotationBlock"))->isVisible());
        QVERIFY(!dialog->findChild<QGroupBox *>(QStringLiteral("soundBlock"))->isVisible());
        QVERIFY(!dialog->findChild<QCheckBox *>(QStringLiteral("mirrorBox"))->isVisible());
        const auto *preview = dialog->findChild<QLabel *>(QStringLiteral("preview"));
        QCOMPARE(preview->size(), QSize(275, 150));
        QVERIFY(dialog->rect().contains(QRect(preview->mapTo(dialog, QPoint()), preview->size())));
        QCOMPARE(shownPreview(dialog).width(), 275);
    });
    CameraSettingsDialog::editCamera(camera());
    QCOMPARE(visitor.visits(), 1);
}

void CameraSettingsDialogTest::acceptedRotationGoesToTheService_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<QString>("steps");
    QTest::addColumn<int>("sent");
    QTest::newRow("no change") << 0 << "" << 0;
    QTest::newRow("no change of a turned camera") << 180 << "" << 180;
    QTest::newRow("clockwise") << 0 << "R" << 90;
    QTest::newRow("full turn") << 0 << "RRRR" << 0;
    QTest::newRow("more than a turn") << 0 << "RRRRR" << 90;
    QTest::newRow("counterclockwise") << 0 << "L" << -90;
    QTest::newRow("three counterclockwise") << 0 << "LLL" << -270;
    QTest::newRow("full turn back") << 0 << "LLLL" << 0;
    QTest::newRow("to and fro") << 90 << "RLLL" << -90;
    QTest::newRow("over the full turn") << 270 << "RR" << 90;
}

void CameraSettingsDialogTest::acceptedRotationGoesToTheService()
{
    QFETCH(int, rotation);
    QFETCH(QString, steps);
    QFETCH(int, sent);
    const API::CameraPtr edited = camera(rotation);
    QSignalSpy preview(edited.data(), &API::Camera::previewChanged);
    QSignalSpy orientation(edited.data(), &API::Camera::orientationChanged);
    const DialogVisitor visitor([&](QDialog *dialog) {
        turn(dialog, steps);
        QCOMPARE(edited->rotation(), rotation);
        clickOk(dialog);
    });
    CameraSettingsDialog::editCamera(edited);
    QCOMPARE(edited->rotation(), sent);
    QCOMPARE(preview.size(), 2);
    QCOMPARE(orientation.size(), 2);
    QTRY_COMPARE(service.requestsTo(rotationPath).size(), 1);
    const QUrlQuery body(QString::fromUtf8(service.requestsTo(rotationPath).first().body));
    QCOMPARE(body.queryItemValue(QStringLiteral("degrees")), QString::number(sent));
}

void CameraSettingsDialogTest::rotationOfALanCameraGoesToTheSettings()
{
    const auto edited = API::CameraPtr::create();
    edited->setId(QStringLiteral("127.0.0.1:8080"), 3);
    edited->setKind(API::LocalCamera);
    const DialogVisitor visitor([](QDialog *dialog) {
        turn(dialog, QStringLiteral("L"));
        clickOk(dialog);
    });
    CameraSettingsDialog::editCamera(edited);
    QCOMPARE(edited->rotation(), -90);
    QCOMPARE(App::settings().value(QStringLiteral("cameras/127.0.0.1:8080/3/rotation")),
             QVariant(-90));
    QVERIFY(service.requests().isEmpty());
}

void CameraSettingsDialogTest::cancelLeavesTheCamera()
{
    const API::CameraPtr edited = camera(90);
    const QImage before = edited->preview().toImage();
    QSignalSpy orientation(edited.data(), &API::Camera::orientationChanged);
    const DialogVisitor visitor([](QDialog *dialog) {
        turn(dialog, QStringLiteral("RR"));
        dialog->findChild<QCheckBox *>(QStringLiteral("mirrorBox"))->toggle();
        clickCancel(dialog);
    });
    CameraSettingsDialog::editCamera(edited);
    QCOMPARE(visitor.visits(), 1);
    QCOMPARE(edited->rotation(), 90);
    QVERIFY(!edited->isMirrored());
    QCOMPARE(edited->preview().toImage(), before);
    QVERIFY(orientation.isEmpty());
}

void CameraSettingsDialogTest::previewFollowsTheButtons()
{
    const DialogVisitor visitor([](QDialog *dialog) {
        QCOMPARE(shownPreview(dialog).pixelColor(5, 70), QColor(Qt::red));
        turn(dialog, QStringLiteral("R"));
        QCOMPARE(shownPreview(dialog).size(), QSize(75, 150));
        QCOMPARE(shownPreview(dialog).pixelColor(35, 5), QColor(Qt::red));
        turn(dialog, QStringLiteral("R"));
        QCOMPARE(shownPreview(dialog).pixelColor(5, 70), QColor(Qt::blue));
        turn(dialog, QStringLiteral("LLL"));
        QCOMPARE(shownPreview(dialog).pixelColor(35, 5), QColor(Qt::blue));
    });
    CameraSettingsDialog::editCamera(camera());
    QCOMPARE(visitor.visits(), 1);
}

void CameraSettingsDialogTest::mirrorIsAppliedToo()
{
    const API::CameraPtr edited = camera();
    const DialogVisitor visitor([](QDialog *dialog) {
        dialog->findChild<QCheckBox *>(QStringLiteral("mirrorBox"))->setChecked(true);
        QCOMPARE(shownPreview(dialog).pixelColor(5, 70), QColor(Qt::blue));
        clickOk(dialog);
    });
    CameraSettingsDialog::editCamera(edited);
    QVERIFY(edited->isMirrored());
    QCOMPARE(edited->preview().toImage().pixelColor(1, 1), QColor(Qt::blue));
}

void CameraSettingsDialogTest::cameraWithoutPreviewShowsNone()
{
    const auto blind = API::CameraPtr::create();
    const DialogVisitor visitor([](QDialog *dialog) {
        turn(dialog, QStringLiteral("R"));
        QVERIFY(shownPreview(dialog).isNull());
    });
    CameraSettingsDialog::editCamera(blind);
    CameraSettingsDialog::editCamera(API::CameraPtr());
    QCOMPARE(visitor.visits(), 1);
}

void CameraSettingsDialogTest::menuOpensIt_data()
{
    QTest::addColumn<bool>("isTile");
    QTest::newRow("card") << false;
    QTest::newRow("tile") << true;
}

/// A card and a tile can go while the dialog is open, as when their server drops the camera.
void CameraSettingsDialogTest::menuOpensIt()
{
    QFETCH(bool, isTile);
    const API::CameraPtr edited = camera();
    QPointer<QWidget> owner;
    if (isTile) {
        owner = new GUI::Player::VideoWidget(edited);
        owner->resize(320, 240);
    } else {
        owner = new GUI::CameraWidget(edited);
    }
    owner->show();
    QVERIFY(QTest::qWaitForWindowExposed(owner));
    const DialogVisitor visitor([&](QDialog *dialog) {
        delete owner;
        QCOMPARE(labelPicture(dialog, "preview").isNull(), false);
        turn(dialog, QStringLiteral("R"));
        clickOk(dialog);
    });
    const QString button =
        isTile ? QStringLiteral("settingsButton") : QStringLiteral("previewMenu");
    if (isTile)
        owner->findChild<QWidget *>(QStringLiteral("bottomBar"))->show();
    chooseFromMenu(owner->findChild<QPushButton *>(button), QStringLiteral("Settings"));
    QTRY_COMPARE(visitor.visits(), 1);
    QTRY_COMPARE(edited->rotation(), 90);
    QVERIFY(!owner);
}

QTEST_MAIN(CameraSettingsDialogTest)
#include "CameraSettingsDialogTest.moc"
