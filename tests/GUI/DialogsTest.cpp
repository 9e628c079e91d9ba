// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "App/Application.h"
#include "App/Settings.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/CameraWidget.h"
#include "GUI/HouseStyle.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/SettingsWidget.h"
#include "GUI/SideBar.h"
#include "GUI/SpinnerWidget.h"
#include "tests/support/DialogVisitor.h"
#include "tests/support/Roster.h"
#include "tests/support/ScriptedService.h"

using GUI::SettingsWidget;

namespace {

const QByteArray rotationPath = "//public/servers/s1/cameras/7/rotation";
const QString ownVersion = "6.0.1.114"_s;
const QString rosterFile = "local_roster.txt"_s;
const QString here = "localhost"_s;
const QString there = "foreignHost"_s;

template <typename T = QWidget>
T *part(const QWidget *whole, const QString &name)
{
    return whole->findChild<T *>(name);
}

QString textIn(const QWidget *whole, const QString &name)
{
    return part(whole, name)->property("text").toString();
}

void click(const QWidget *whole, const QString &button)
{
    part<QAbstractButton>(whole, button)->click();
}

/// What stands in the file of the LAN servers, and in the roster.
QString storedServers()
{
    QFile file(rosterFile);
    const QByteArray json = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return QString::fromUtf8(QJsonDocument::fromJson(json).toJson(QJsonDocument::Compact)) +
           API::CloudAPIClient::serverList().keys().join(' ');
}

/// Four colours, turned so many steps clockwise, and in the mirror.
QImage fourColours(int steps, bool isMirrored)
{
    const QPoint corners[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    const Qt::GlobalColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::yellow};
    QImage image(2, 2, QImage::Format_RGB32);
    for (int i = 0; i < 4; ++i)
        image.setPixelColor(corners[i], colours[(i - steps) & 3]);
    return image.mirrored(isMirrored, false);
}

QImage cornersOf(const QPixmap &pixmap)
{
    return pixmap.toImage().scaled(2, 2).convertToFormat(QImage::Format_RGB32);
}

QImage paintingOf(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

} // namespace

/// The settings page, and the dialogs for LAN servers and cameras.
class DialogsTest : public QObject
{
    Q_OBJECT

public slots:
    void linkOpened(const QUrl &url) { openedLinks.append(url); }

private slots:
    void initTestCase()
    {
        QApplication::setQuitOnLastWindowClosed(false);
        QVERIFY(service.start());
        QDesktopServices::setUrlHandler("http"_s, this, "linkOpened");
    }

    void init()
    {
        service.reset();
        offer(ownVersion);
        openedLinks.clear();
        App::settings().setValue("common/language"_s, "en"_s);
        QCoreApplication::setApplicationVersion(ownVersion);
    }

    void cleanup()
    {
        API::CloudAPIClient().logout();
        QFile::remove(rosterFile);
    }

    /// A ring marks the focus, and no frame of dots.
    void styleDrawsWhatIsItsOwn()
    {
        for (const auto part : {QStyle::PE_IndicatorArrowDown, QStyle::PE_FrameFocusRect}) {
            QImage drawn(20, 20, QImage::Format_RGB32);
            drawn.fill(Qt::red);
            const QImage blank = drawn.copy();
            QPainter painter(&drawn);
            QStyleOptionFocusRect option;
            option.rect = drawn.rect();
            GUI::HouseStyle().drawPrimitive(part, &option, &painter, nullptr);
            QCOMPARE(drawn == blank, part == QStyle::PE_FrameFocusRect);
        }
    }

    void languageIsChosenAndNeedsARestart()
    {
        const auto language = [] { return App::settings().value("common/language"_s); };
        App::settings().setValue("common/language"_s, "ru_RU"_s);
        const SettingsWidget page;
        const QWidget *notice = part(&page, "restartNotice");
        const QWidget *button = part(&page, "restartButton");
        QVERIFY(notice->isHidden() && button->isHidden());
        QCOMPARE(language(), "ru_RU"_s);
        auto *box = part<QComboBox>(&page, "languageBox");
        QCOMPARE(box->currentText(), "English"_s);
        for (const auto &[index, code] : {std::pair(1, "ru"_s), std::pair(0, "en"_s)}) {
            box->setCurrentIndex(index);
            QCOMPARE(language(), code);
            QVERIFY(!notice->isHidden() && !button->isHidden());
            const SettingsWidget later;
            QCOMPARE(part<QComboBox>(&later, "languageBox")->currentIndex(), index);
            QVERIFY(part(&later, "restartNotice")->isHidden());
        }
    }

    void checkEndsOnItsPage_data()
    {
        const QString found = "updatesFoundPage"_s;
        const QString notFound = "updatesNotFoundPage"_s;
        rows<QString, QString, QString>(
            {"current", "offered", "page"},
            {{"the same", ownVersion, ownVersion, notFound},
             {"newer in the last piece", ownVersion, "6.0.1.115", found},
             {"older in front", ownVersion, "5.9.9.999", notFound},
             {"by number, not by letters", "6.0.9", "6.0.10", found},
             {"longer", "6.0.1", "6.0.1.5", notFound},
             {"suffix", ownVersion, "6.0.1.114-9.9", notFound},
             {"own suffix", "6.0.1.114-3", "6.0.1.114", notFound},
             {"no number counts as 0", "6.0.1", "6.x.2", found},
             {"no version", ownVersion, "", notFound},
             {"no JSON", ownVersion, "\"", "updatesErrorPage"}});
    }

    /// The page checks when it is made, and whenever it is shown.
    void checkEndsOnItsPage()
    {
        const auto [current, offered, page] = row<QString, QString, QString>();
        QCoreApplication::setApplicationVersion(current);
        offer(offered);
        const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
        SettingsWidget settings;
        QCOMPARE(textIn(&settings, "versionLabel"), current);
        const auto *stack = part<QStackedWidget>(&settings, "updatesStack");
        GUI::SpinnerWidget spinner;
        spinner.setLineWidth(2);
        spinner.setColor(Qt::gray);
        for (int checks = 1; checks <= 3; ++checks) {
            QCOMPARE(stack->currentWidget()->objectName(), "updatesCheckPage"_s);
            QVERIFY(!part(&settings, "spinnerWidget")->isHidden());
            spinner.resize(part(&settings, "spinnerWidget")->size());
            QCOMPARE(paintingOf(*part(&settings, "spinnerWidget")), paintingOf(spinner));
            QTRY_COMPARE(stack->currentWidget()->objectName(), page);
            QVERIFY(part(&settings, "spinnerWidget")->isHidden());
            QTRY_COMPARE(visitor.visits(), page == "updatesFoundPage"_s ? checks : 0);
            settings.hide();
            settings.show();
        }
    }

    void questions_data() { rows<bool>({"accept"}, {{"yes", true}, {"no", false}}); }

    /// The download is offered by itself, the sign-out asked for by a button.
    void questions()
    {
        QFETCH(bool, accept);
        const QString email = "a.very.long.address.of.the.whole.district@b.example"_s;
        App::settings().setValue("auth/email"_s, email);
        offer("6.1.0-beta"_s);
        QStringList asked;
        const DialogVisitor visitor([&](QDialog *dialog) {
            const auto *box = qobject_cast<QMessageBox *>(dialog);
            asked << box->text() << box->informativeText() << box->defaultButton()->text();
            accept ? clickOk(dialog) : clickCancel(dialog);
        });
        GUI::SideBar bar;
        bar.resize(269, 500);
        QTRY_COMPARE(visitor.visits(), 1);
        const QUrl downloads("http://go.zorvane.example/?target=downloads&lang=en"_s);
        QCOMPARE(openedLinks.size(), accept ? 1 : 0);
        click(&bar, "downloadButton");
        QCOMPARE(openedLinks.count(downloads), accept ? 2 : 1);

        offer(ownVersion);
        bar.setSettingsMode();
        bar.show();
        QCOMPARE(textIn(&bar, "emailLabel"), email);
        QCOMPARE(bar.width(), 269);
        QSignalSpy signout(&bar, &GUI::SideBar::signout);
        click(&bar, "signoutButton");
        QCOMPARE(signout.size(), accept ? 1 : 0);
        const QString details = "Zorvane Client 6.1.0-beta version is available. "
                                "Would you like to download it now?"_s;
        QCOMPARE(asked, (QStringList{"A new version of Zorvane Client is available!", details, "OK",
                                     "Are you sure you want to log out?", "", "Cancel"}));
    }

    void pageGoesWithADialogOpen()
    {
        offer("6.1"_s);
        QPointer<SettingsWidget> page = new SettingsWidget;
        const DialogVisitor visitor([&](QDialog *) { delete page; });
        QTRY_VERIFY(!page && openedLinks.isEmpty());
        offer(ownVersion);
        page = new SettingsWidget;
        QSignalSpy added(page.data(), &SettingsWidget::serverAdded);
        QTest::ignoreMessage(QtWarningMsg, "Settings called on non-local server");
        page->editServer(addServerToRoster("s1"_s, {"Gate"}));
        QVERIFY(page && added.isEmpty() && !QFile::exists(rosterFile)); // opens none
        delete page;
        for (const char *button : {"signoutButton", "addServerButton"}) {
            page = new SettingsWidget;
            click(page, button);
            QVERIFY(!page);
        }
        page = new SettingsWidget;
        page->editServer(API::LocalServerPtr::create("Store"_s, "127.0.0.1"_s, 3, QString()));
        QVERIFY(!page);
    }

    void lanServerIsTypedIn_data()
    {
        rows<QString, QString, QString, QString, QString>(
            {"edited", "choice", "address", "port", "id"},
            {{"another computer", "", there, "127.0.0.9", "1", "127.0.0.9:1"},
             {"this one, whatever was typed", "", here, "127.0.0.9", "2", "127.0.0.1:2"},
             {"no number", "", here, "", "http", "127.0.0.1:0"},
             {"moved from here", "127.0.0.1", there, "127.0.0.9", "4", "127.0.0.9:4"},
             {"moved to here", "127.0.0.9", here, "127.0.0.9", "4", "127.0.0.1:4"}});
    }

    /// A server is added or edited; the dialog is cancelled first.
    void lanServerIsTypedIn()
    {
        const auto [edited, choice, address, port, id] =
            row<QString, QString, QString, QString, QString>();
        const bool adds = edited.isEmpty();
        const auto server = API::LocalServerPtr::create("Store"_s, edited, 3, "secret"_s);
        if (!adds)
            API::CloudAPIClient().addLocalServer(server);
        const QString before = storedServers();
        QFile::remove(rosterFile);
        SettingsWidget page;
        QSignalSpy added(&page, &SettingsWidget::serverAdded);
        const QStringList fields = {"name", "ipAddress", "port", "password"};
        const QString start = adds ? "Add a local videoserver||127.0.0.1|8080|"_s
                                   : "Edit a local videoserver|Store|%1|3|secret"_s.arg(edited);
        const bool startsForeign = !adds && edited != "127.0.0.1"_s;
        const QStringList typed = {"Hall", address, port, "p&ss"};
        bool accept = false;
        const DialogVisitor visitor([&, choice = choice](QDialog *dialog) {
            const bool isForeign = part<QRadioButton>(dialog, there)->isChecked();
            QString shown = dialog->windowTitle();
            for (const QString &name : fields)
                shown += '|' + textIn(dialog, name);
            QVERIFY(accept || (shown == start && isForeign == startsForeign));
            const auto *first = part<QLineEdit>(dialog, isForeign ? "ipAddress" : "port");
            QVERIFY(dialog->focusWidget() == first && first->selectedText() == first->text());
            for (const QString &each : {isForeign ? there : here, there, here, choice}) {
                click(dialog, each);
                QCOMPARE(part(dialog, "ipAddress")->isEnabled(), each == there);
            }
            for (const auto mode : {QLineEdit::Password, QLineEdit::Normal}) {
                QCOMPARE(part<QLineEdit>(dialog, "password")->echoMode(), mode);
                click(dialog, "showPassword");
            }
            for (int i = 0; i < fields.size(); ++i)
                part<QLineEdit>(dialog, fields.at(i))->setText(typed.at(i));
            // Return is for the dialog as a whole, wherever the focus is.
            part(dialog, "showPassword")->setFocus();
            accept ? QTest::keyClick(part(dialog, "showPassword"), Qt::Key_Return)
                   : clickCancel(dialog);
        });
        const auto open = [&] { adds ? click(&page, "addServerButton") : page.editServer(server); };
        open();
        QCOMPARE(storedServers(), before);
        QCOMPARE(added.size(), adds ? 0 : 1);
        accept = true;
        open();
        open(); // the same address again replaces what was there
        QCOMPARE(added.size(), adds ? 2 : 3);
        const QString stored = R"([{"ip":"%1","name":"Hall","password":"p&ss","port":%2}]%1:%2)";
        QCOMPARE(storedServers(), stored.arg(id.section(':', 0, 0), id.section(':', 1)));
    }

    /// R and L are steps to the right and to the left, M is the mirror, x cancels.
    void cameraIsTurned_data()
    {
        rows<int, QString, int>({"before", "steps", "after"},
                                {{"no change", 180, "", 180},
                                 {"clockwise", 0, "R", 90},
                                 {"full turn", 0, "RRRR", 0},
                                 {"counterclockwise", 0, "L", -90},
                                 {"to and fro", 90, "RLLL", -90},
                                 {"over the full turn", 270, "RR", 90},
                                 {"mirrored", 0, "MR", 90},
                                 {"cancelled", 90, "RRMx", 90}});
    }

    void cameraIsTurned()
    {
        const auto [before, steps, after] = row<int, QString, int>();
        const API::CameraPtr edited = camera(before);
        const bool isAccepted = !steps.endsWith('x');
        const DialogVisitor visitor([&, before = before, steps = steps](auto *dialog) {
            const QMap<QChar, QString> buttons = {
                {'R', "clockwise"}, {'L', "counterclockwise"}, {'M', "mirrorBox"}};
            int turns = before / 90;
            for (const QChar step : '-' + steps) {
                if (buttons.contains(step))
                    click(dialog, buttons.value(step));
                turns += int(step == 'R') - int(step == 'L');
                const QPixmap shown = part<QLabel>(dialog, "preview")->pixmap(Qt::ReturnByValue);
                const bool isMirrored = part<QCheckBox>(dialog, "mirrorBox")->isChecked();
                QCOMPARE(cornersOf(shown), fourColours(turns, isMirrored));
                QCOMPARE(shown.size(), QSize(turns % 2 == 0 ? 200 : 112, 150));
                QCOMPARE(edited->rotation(), before);
            }
            QCOMPARE(part(dialog, "clockwise")->toolTip(), "Rotate right"_s);
            isAccepted ? clickOk(dialog) : clickCancel(dialog);
        });
        GUI::CameraSettingsDialog::editCamera(edited);
        QCOMPARE(edited->rotation(), after);
        QCOMPARE(edited->isMirrored(), isAccepted && steps.contains('M'));
        QCOMPARE(cornersOf(edited->preview()), fourColours(after / 90, edited->isMirrored()));
        QTRY_COMPARE(service.requestsTo(rotationPath).size(), isAccepted ? 1 : 0);
        for (const WireRequest &request : service.requestsTo(rotationPath)) {
            const QUrlQuery body(QString::fromUtf8(request.body));
            QCOMPARE(body.queryItemValue("degrees"_s), QString::number(after));
        }
    }

    void menuGoesMeanwhile_data() { rows<bool>({"isTile"}, {{"card", false}, {"tile", true}}); }

    /// A card and a tile can go while the dialog is open, as when their server drops the camera.
    void menuGoesMeanwhile()
    {
        QFETCH(bool, isTile);
        const API::CameraPtr edited = camera(0);
        const QPointer<QWidget> owner = isTile
                                            ? new GUI::Player::VideoWidget(edited)
                                            : static_cast<QWidget *>(new GUI::CameraWidget(edited));
        owner->show();
        const DialogVisitor visitor([&](QDialog *dialog) {
            delete owner;
            QCOMPARE(textIn(dialog, "cameraName"), "Gate"_s);
            for (const char *unused : {"soundBlock", "mirrorBox"})
                QVERIFY2(part(dialog, unused)->isHidden(), unused);
            click(dialog, "clockwise");
            clickOk(dialog);
        });
        QMenu *menu = part<QPushButton>(owner, isTile ? "settingsButton" : "previewMenu")->menu();
        QAction *settings = menu->actions().at(isTile ? 0 : 2);
        QCOMPARE(settings->text(), "Settings"_s);
        menu->popup(QPoint());
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(settings).center());
        QTRY_COMPARE(edited->rotation(), 90);
    }

private:
    void offer(const QString &version)
    {
        const QByteArray reply = "{\"version\":\"" + version.toUtf8() + "\"}";
        service.succeed("GET", "/public/version/client_windows", reply);
    }

    API::CameraPtr camera(int rotation)
    {
        service.succeed("POST", rotationPath, "{}");
        const QVariantMap reply = {{"id"_s, 7}, {"name"_s, "Gate"}, {"rotation"_s, rotation}};
        auto made = API::CameraPtr::create(addServerToRoster("s1"_s, {}).data(), reply);
        // So small that a line of pixels too many changes its shape.
        made->setPreview(QPixmap::fromImage(fourColours(0, false)).scaled(8, 6));
        return made;
    }

    ScriptedService service;
    QList<QUrl> openedLinks;
};

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    DialogsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "DialogsTest.moc"
