// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Server.h"
#include "App/Settings.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/CameraWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/ScriptedService.h"

using GUI::CameraSettingsDialog;

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

class CameraSettingsDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qApp->setStyleSheet("* { font: 12px \"PT Sans\"; }"_s);
        QVERIFY(service.start());
    }

    void init()
    {
        service.reset();
        service.succeed("POST", rotationPath, "{}");
        setWorld({{"s1"_s, "Office"_s, {}}});
    }

    void cleanup() { setWorld({}); }

    void showsNameRotationAndPreview()
    {
        const DialogVisitor visitor([](QDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), "Camera settings"_s);
            QCOMPARE(dialog->size(), QSize(321, 429));
            const auto *name = dialog->findChild<QLineEdit *>("cameraName"_s);
            QCOMPARE(name->text(), "Gate"_s);
            QVERIFY(name->isReadOnly() && name->isVisible());
            QVERIFY(dialog->findChild<QGroupBox *>("rotationBlock"_s)->isVisible());
            QVERIFY(!dialog->findChild<QGroupBox *>("soundBlock"_s)->isVisible());
            QVERIFY(!dialog->findChild<QCheckBox *>("mirrorBox"_s)->isVisible());
            const auto *preview = dialog->findChild<QLabel *>("preview"_s);
            QCOMPARE(preview->size(), QSize(275, 150));
            QVERIFY(
                dialog->rect().contains(QRect(preview->mapTo(dialog, QPoint()), preview->size())));
            QCOMPARE(shownPreview(dialog).width(), 275);
        });
        CameraSettingsDialog::editCamera(camera());
        QCOMPARE(visitor.visits(), 1);
    }

    void acceptedRotationGoesToTheService_data()
    {
        rows<int, QString, int>({"rotation", "steps", "sent"},
                                {
                                    {"no change", 0, "", 0},
                                    {"no change of a turned camera", 180, "", 180},
                                    {"clockwise", 0, "R", 90},
                                    {"full turn", 0, "RRRR", 0},
                                    {"more than a turn", 0, "RRRRR", 90},
                                    {"counterclockwise", 0, "L", -90},
                                    {"three counterclockwise", 0, "LLL", -270},
                                    {"full turn back", 0, "LLLL", 0},
                                    {"to and fro", 90, "RLLL", -90},
                                    {"over the full turn", 270, "RR", 90},
                                });
    }

    void acceptedRotationGoesToTheService()
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
        QCOMPARE(body.queryItemValue("degrees"_s), QString::number(sent));
    }

    void rotationOfALanCameraGoesToTheSettings()
    {
        const auto edited = API::CameraPtr::create();
        edited->setId("127.0.0.1:8080"_s, 3);
        edited->setKind(API::LocalCamera);
        const DialogVisitor visitor([](QDialog *dialog) {
            turn(dialog, "L"_s);
            clickOk(dialog);
        });
        CameraSettingsDialog::editCamera(edited);
        QCOMPARE(edited->rotation(), -90);
        QCOMPARE(App::settings().value("cameras/127.0.0.1:8080/3/rotation"_s), QVariant(-90));
        QVERIFY(service.requests().isEmpty());
    }

    void cancelLeavesTheCamera()
    {
        const API::CameraPtr edited = camera(90);
        const QImage before = edited->preview().toImage();
        QSignalSpy orientation(edited.data(), &API::Camera::orientationChanged);
        const DialogVisitor visitor([](QDialog *dialog) {
            turn(dialog, "RR"_s);
            dialog->findChild<QCheckBox *>("mirrorBox"_s)->toggle();
            clickCancel(dialog);
        });
        CameraSettingsDialog::editCamera(edited);
        QCOMPARE(visitor.visits(), 1);
        QCOMPARE(edited->rotation(), 90);
        QVERIFY(!edited->isMirrored());
        QCOMPARE(edited->preview().toImage(), before);
        QVERIFY(orientation.isEmpty());
    }

    void previewFollowsTheButtons()
    {
        const DialogVisitor visitor([](QDialog *dialog) {
            QCOMPARE(shownPreview(dialog).pixelColor(5, 70), QColor(Qt::red));
            turn(dialog, "R"_s);
            QCOMPARE(shownPreview(dialog).size(), QSize(75, 150));
            QCOMPARE(shownPreview(dialog).pixelColor(35, 5), QColor(Qt::red));
            turn(dialog, "R"_s);
            QCOMPARE(shownPreview(dialog).pixelColor(5, 70), QColor(Qt::blue));
            turn(dialog, "LLL"_s);
            QCOMPARE(shownPreview(dialog).pixelColor(35, 5), QColor(Qt::blue));
        });
        CameraSettingsDialog::editCamera(camera());
        QCOMPARE(visitor.visits(), 1);
    }

    void mirrorIsAppliedToo()
    {
        const API::CameraPtr edited = camera();
        const DialogVisitor visitor([](QDialog *dialog) {
            dialog->findChild<QCheckBox *>("mirrorBox"_s)->setChecked(true);
            QCOMPARE(shownPreview(dialog).pixelColor(5, 70), QColor(Qt::blue));
            clickOk(dialog);
        });
        CameraSettingsDialog::editCamera(edited);
        QVERIFY(edited->isMirrored());
        QCOMPARE(edited->preview().toImage().pixelColor(1, 1), QColor(Qt::blue));
    }

    void cameraWithoutPreviewShowsNone()
    {
        const auto blind = API::CameraPtr::create();
        const DialogVisitor visitor([](QDialog *dialog) {
            turn(dialog, "R"_s);
            QVERIFY(shownPreview(dialog).isNull());
        });
        CameraSettingsDialog::editCamera(blind);
        CameraSettingsDialog::editCamera(API::CameraPtr());
        QCOMPARE(visitor.visits(), 1);
    }

    void menuOpensIt_data()
    {
        rows<bool>({"isTile"}, {
                                   {"card", false},
                                   {"tile", true},
                               });
    }

    /// A card and a tile can go while the dialog is open, as when their server drops the camera.
    void menuOpensIt()
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
            turn(dialog, "R"_s);
            clickOk(dialog);
        });
        const QString button = isTile ? "settingsButton"_s : "previewMenu"_s;
        if (isTile)
            owner->findChild<QWidget *>("bottomBar"_s)->show();
        chooseFromMenu(owner->findChild<QPushButton *>(button), "Settings"_s);
        QTRY_COMPARE(visitor.visits(), 1);
        QTRY_COMPARE(edited->rotation(), 90);
        QVERIFY(!owner);
    }

private:
    API::CameraPtr camera(int rotation = 0) const
    {
        auto made = API::CameraPtr::create(
            worldServer("s1"_s).data(),
            QVariantMap{{"id"_s, 7}, {"name"_s, "Gate"}, {"rotation"_s, rotation}});
        made->setPreview(picture());
        return made;
    }

    ScriptedService service;
};

QTEST_MAIN(CameraSettingsDialogTest)
#include "CameraSettingsDialogTest.moc"
