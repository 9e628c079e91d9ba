// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "App/Application.h"
#include "App/Settings.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/SettingsWidget.h"
#include "GUI/SideBar.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/GUI/StoredServers.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedService.h"

using GUI::SettingsWidget;

namespace {

const QByteArray versionPath = "/public/version/client_windows";
const QString ownVersion = "6.0.1.114"_s;
const QString localHost = "127.0.0.1"_s;
constexpr int deadlineMs = 20000;

template <typename T>
T *part(const QWidget &page, const char *name)
{
    return page.findChild<T *>(QLatin1String(name));
}

QString shownPage(const SettingsWidget &page)
{
    return part<QStackedWidget>(page, "updatesStack")->currentWidget()->objectName();
}

/// All its checks have been answered, so none is counted in the next test.
bool isSettled(const SettingsWidget &page)
{
    const auto released = [&] { return page.findChildren<API::CloudAPIClient *>().isEmpty(); };
    return QTest::qWaitFor(released, deadlineMs);
}

void click(const QWidget &page, const char *button)
{
    QTest::mouseClick(part<QPushButton>(page, button), Qt::LeftButton);
}

bool asksForRestart(const SettingsWidget &page)
{
    return !part<QLabel>(page, "restartNotice")->isHidden() &&
           !part<QPushButton>(page, "restartButton")->isHidden();
}

void typeServer(const QDialog *dialog, const QString &name, int port)
{
    part<QLineEdit>(*dialog, "name")->setText(name);
    part<QLineEdit>(*dialog, "port")->setText(QString::number(port));
    part<QLineEdit>(*dialog, "password")->setText("secret"_s);
}

API::LocalServerPtr lanServer(int port)
{
    return API::LocalServerPtr::create("Store"_s, localHost, port, "secret"_s);
}

QString language()
{
    return App::settings().value("common/language"_s).toString();
}

void setLanguage(const QVariant &code)
{
    App::settings().setValue("common/language"_s, code);
}

} // namespace

class SettingsWidgetTest : public QObject
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
        App::settings().setValue("auth/email"_s, "a@b.example"_s);
        qobject_cast<App::Application *>(qApp)->translate("en"_s);
        QCoreApplication::setApplicationVersion(ownVersion);
    }

    void cleanup()
    {
        setWorld({});
        forgetServers();
    }

    void showsAccountAndVersion()
    {
        const QString email = "a.very.long.address.of.the.whole.district@b.example"_s;
        App::settings().setValue("auth/email"_s, email);
        GUI::SideBar bar;
        bar.resize(269, 500);
        bar.setSettingsMode();
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
        const SettingsWidget &page = *bar.settingsWidget();
        QVERIFY(page.isVisible());
        QCOMPARE(labelText(&page, "emailLabel"), email);
        QCOMPARE(labelText(&page, "versionLabel"), ownVersion);
        QVERIFY(!asksForRestart(page));
        QCOMPARE(bar.width(), 269);
        for (const char *name : {"signoutButton", "addServerButton", "restartButton"}) {
            const auto *button = part<QPushButton>(page, name);
            QVERIFY2(button->sizeHint().width() <= page.width(), name);
        }
        QVERIFY(isSettled(page));
    }

    void languageBoxShowsTheLanguage_data()
    {
        rows<QString, int>({"code", "index"}, {
                                                  {"English", "en", 0},
                                                  {"Russian", "ru", 1},
                                                  {"another form", "ru_RU", 0},
                                              });
    }

    void languageBoxShowsTheLanguage()
    {
        const auto [code] = row<QString>();
        setLanguage(code);
        const SettingsWidget page;
        const auto *box = part<QComboBox>(page, "languageBox");
        QTEST(box->currentIndex(), "index");
        QCOMPARE(box->itemText(0), "English"_s);
        QCOMPARE(box->itemText(1), "Русский"_s);
        QVERIFY(!asksForRestart(page));
        QCOMPARE(language(), code);
        QVERIFY(isSettled(page));
    }

    void languageIsChosenAndNeedsARestart()
    {
        const SettingsWidget page;
        QVERIFY(isSettled(page));
        auto *box = part<QComboBox>(page, "languageBox");
        box->setCurrentIndex(1);
        QCOMPARE(language(), "ru"_s);
        QVERIFY(asksForRestart(page));
        QCOMPARE(labelText(&page, "accountLabel"), "Account"_s);
        const SettingsWidget later;
        QVERIFY(isSettled(later));
        QCOMPARE(labelText(&later, "accountLabel"), "Учетная запись"_s);
        box->setCurrentIndex(0);
        QCOMPARE(language(), "en"_s);
        QVERIFY(asksForRestart(page));
    }

    void restartButtonEndsTheEventLoop()
    {
        SettingsWidget page;
        QVERIFY(isSettled(page));
        part<QComboBox>(page, "languageBox")->setCurrentIndex(1);
        QTimer::singleShot(0, &page,
                           [&page] { part<QPushButton>(page, "restartButton")->click(); });
        QTimer::singleShot(deadlineMs, &page, [] { QCoreApplication::exit(1); });
        QCOMPARE(QApplication::exec(), -666);
    }

    void waitsForTheCheck()
    {
        service.answer("GET", versionPath, WireReply::silence());
        SettingsWidget page;
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        QTRY_COMPARE(service.requestsTo(versionPath).size(), 2);
        QCOMPARE(shownPage(page), "updatesCheckPage"_s);
        QVERIFY(part<QWidget>(page, "spinnerWidget")->isVisible());
    }

    void checkEndsOnItsPage_data()
    {
        rows<QString, QString, bool>(
            {"current", "offered", "isNew"},
            {
                {"the same", ownVersion, ownVersion, false},
                {"newer in the last piece", ownVersion, "6.0.1.115", true},
                {"newer in the first piece", ownVersion, "7", true},
                {"older in front of newer", ownVersion, "5.9.9.999", false},
                {"by number, not by letters", "6.0.9", "6.0.10", true},
                {"longer", "6.0.1", "6.0.1.5", false},
                {"shorter", ownVersion, "6.0", false},
                {"suffix", ownVersion, "6.0.1.114-9.9", false},
                {"newer with a suffix", ownVersion, "6.0.2-rc1", true},
                {"own suffix", "6.0.1.114-3", "6.0.1.114", false},
                {"no number counts as 0", "6.0.1", "6.x.2", true},
                {"own piece that is no number", "6.x", "6.1", true},
                {"no version", ownVersion, "", false},
            });
    }

    void checkEndsOnItsPage()
    {
        const auto [current, offered, isNew] = row<QString, QString, bool>();
        QCoreApplication::setApplicationVersion(current);
        offer(offered);
        const LogCapture log;
        const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
        const SettingsWidget page;
        QTRY_VERIFY(shownPage(page) != "updatesCheckPage"_s);
        QCOMPARE(shownPage(page), isNew ? "updatesFoundPage"_s : "updatesNotFoundPage"_s);
        QTRY_COMPARE(visitor.visits(), isNew ? 1 : 0);
        QVERIFY(part<QWidget>(page, "spinnerWidget")->isHidden());
        const QString line = "Updates: version from API: \"%1\" current version: \"%2\""_s;
        QCOMPARE(log.linesOf(line.arg(offered, current.section('-', 0, 0))).size(), 1);
        QVERIFY(isSettled(page));
    }

    void failedCheckIsMadeAnewWhenShown()
    {
        service.reset();
        SettingsWidget page;
        QTRY_COMPARE(shownPage(page), "updatesErrorPage"_s);
        QVERIFY(part<QWidget>(page, "spinnerWidget")->isHidden());
        offer(ownVersion);
        page.show();
        QCOMPARE(shownPage(page), "updatesCheckPage"_s);
        QTRY_COMPARE(shownPage(page), "updatesNotFoundPage"_s);
        QCOMPARE(service.requestsTo(versionPath).size(), 2);
    }

    void boxOffersTheDownload_data()
    {
        rows<bool>({"accept"}, {
                                   {"taken", true},
                                   {"not taken", false},
                               });
    }

    void boxOffersTheDownload()
    {
        QFETCH(bool, accept);
        offer("6.1.0-beta"_s);
        const DialogVisitor visitor([&](QDialog *dialog) {
            auto *box = qobject_cast<QMessageBox *>(dialog);
            QVERIFY(box);
            QCOMPARE(box->text(), "A new version of Zorvane Client is available!"_s);
            QCOMPARE(box->informativeText(), "Zorvane Client 6.1.0-beta version is available. "
                                             "Would you like to download it now?"_s);
            QCOMPARE(box->standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
            QCOMPARE(qobject_cast<QAbstractButton *>(box->defaultButton()),
                     box->button(QMessageBox::Ok));
            QCOMPARE(box->windowModality(), Qt::ApplicationModal);
            box->button(accept ? QMessageBox::Ok : QMessageBox::Cancel)->click();
        });
        const SettingsWidget page;
        QTRY_COMPARE(visitor.visits(), 1);
        QVERIFY(isSettled(page));
        const QUrl downloads("http://go.zorvane.example/?target=downloads&lang=en"_s);
        QCOMPARE(openedLinks, accept ? QList<QUrl>{downloads} : QList<QUrl>());
        part<QPushButton>(page, "downloadButton")->click();
        QCOMPARE(openedLinks.size(), accept ? 2 : 1);
        QCOMPARE(openedLinks.last(), downloads);
    }

    void boxComesBackWheneverThePageIsShown()
    {
        offer("6.1"_s);
        const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
        SettingsWidget page;
        for (int round = 1; round <= 3; ++round) {
            QTRY_COMPARE(visitor.visits(), round);
            QTRY_VERIFY(!QApplication::activeModalWidget());
            QCOMPARE(shownPage(page), "updatesFoundPage"_s);
            page.hide();
            page.show();
            QCOMPARE(shownPage(page), "updatesCheckPage"_s);
        }
        QTRY_COMPARE(visitor.visits(), 4);
        QCOMPARE(service.requestsTo(versionPath).size(), 4);
    }

    void pageGoesWithTheBoxOpen()
    {
        offer("6.1"_s);
        QPointer<SettingsWidget> page = new SettingsWidget;
        const DialogVisitor visitor([&](QDialog *) { delete page; });
        QTRY_COMPARE(visitor.visits(), 1);
        QVERIFY(!page);
        QVERIFY(openedLinks.isEmpty());
    }

    void signOutIsConfirmed_data()
    {
        rows<bool>({"accept"}, {
                                   {"confirmed", true},
                                   {"not confirmed", false},
                               });
    }

    void signOutIsConfirmed()
    {
        QFETCH(bool, accept);
        GUI::SideBar bar;
        QVERIFY(isSettled(*bar.settingsWidget()));
        QSignalSpy signout(&bar, &GUI::SideBar::signout);
        const DialogVisitor visitor([&](QDialog *dialog) {
            auto *box = qobject_cast<QMessageBox *>(dialog);
            QCOMPARE(box->text(), "Are you sure you want to log out?"_s);
            QCOMPARE(qobject_cast<QAbstractButton *>(box->defaultButton()),
                     box->button(QMessageBox::Cancel));
            box->button(accept ? QMessageBox::Ok : QMessageBox::Cancel)->click();
        });
        click(*bar.settingsWidget(), "signoutButton");
        QCOMPARE(visitor.visits(), 1);
        QCOMPARE(signout.size(), accept ? 1 : 0);
    }

    void addedServerIsSaved()
    {
        SettingsWidget page;
        QVERIFY(isSettled(page));
        QSignalSpy added(&page, &SettingsWidget::serverAdded);
        const DialogVisitor visitor([](QDialog *dialog) {
            typeServer(dialog, "Store"_s, 3);
            clickOk(dialog);
        });
        click(page, "addServerButton");
        QCOMPARE(added.size(), 1);
        QCOMPARE(API::CloudAPIClient::serverList().keys(), QStringList{"127.0.0.1:3"_s});
        QCOMPARE(storedServers(), QVariantList{lanServer(3)->toJson()});
        // The same address again replaces what was there.
        click(page, "addServerButton");
        QCOMPARE(added.size(), 2);
        QCOMPARE(storedServers().size(), 1);
    }

    void cancelledAddChangesNothing()
    {
        SettingsWidget page;
        QVERIFY(isSettled(page));
        QSignalSpy added(&page, &SettingsWidget::serverAdded);
        const DialogVisitor visitor([](QDialog *dialog) {
            typeServer(dialog, "Store"_s, 3);
            clickCancel(dialog);
        });
        click(page, "addServerButton");
        QCOMPARE(visitor.visits(), 1);
        QVERIFY(added.isEmpty());
        QVERIFY(API::CloudAPIClient::serverList().isEmpty());
        QVERIFY(!QFile::exists(rosterFile));
    }

    /// From the roster's menu to the roster, wired as in a window.
    void editedServerMovesInTheRoster()
    {
        MisbehavingServer newHome;
        QVERIFY(newHome.start());
        newHome.setReply(WireReply::json(R"([{"id":5,"name":"Gate","status":1}])"));
        const API::LocalServerPtr server = lanServer(3);
        API::CloudAPIClient().addLocalServer(server);
        GUI::SideBar bar;
        QVERIFY(isSettled(*bar.settingsWidget()));
        GUI::RosterWidget *roster = bar.rosterWidget();
        connect(roster, &GUI::RosterWidget::editServer, bar.settingsWidget(),
                &SettingsWidget::editServer);
        connect(bar.settingsWidget(), &SettingsWidget::serverAdded, roster,
                &GUI::RosterWidget::updateRoster);
        roster->updateRoster();
        const QPointer<GUI::ServerWidget> oldEntry = roster->findChild<GUI::ServerWidget *>();
        QVERIFY(oldEntry);

        const DialogVisitor visitor([&](QDialog *dialog) {
            QCOMPARE(part<QLineEdit>(*dialog, "port")->text(), "3"_s);
            typeServer(dialog, "Hall"_s, newHome.port());
            clickOk(dialog);
        });
        const auto actions = part<QPushButton>(*oldEntry, "settingsButton")->menu()->actions();
        QCOMPARE(actions.first()->text(), "Edit"_s);
        actions.first()->trigger();
        QTRY_COMPARE(visitor.visits(), 1);
        QTRY_VERIFY(!oldEntry);
        const auto entries = roster->findChildren<GUI::ServerWidget *>();
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries.first()->server(), API::ServerPtr(server));
        QCOMPARE(labelText(entries.first(), "serverName"), "Hall"_s);
        QCOMPARE(storedServers(), QVariantList{server->toJson()});
        QTRY_COMPARE(server->cameras().size(), 1);
        QCOMPARE(server->cameras().first()->serverId(), server->id());
        QVERIFY(server->id().endsWith(QString::number(newHome.port())));
    }

    void cancelledEditSavesWhatThereIs()
    {
        const API::LocalServerPtr server = lanServer(3);
        API::CloudAPIClient().addLocalServer(server);
        QVERIFY(QFile::remove(rosterFile));
        SettingsWidget page;
        QVERIFY(isSettled(page));
        QSignalSpy added(&page, &SettingsWidget::serverAdded);
        const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
        page.editServer(server);
        QCOMPARE(visitor.visits(), 1);
        QCOMPARE(added.size(), 1);
        QCOMPARE(storedServers(), QVariantList{lanServer(3)->toJson()});
    }

    void cloudServerIsNotEdited()
    {
        setWorld({{"s1"_s, "Office"_s, {}}});
        SettingsWidget page;
        QVERIFY(isSettled(page));
        QSignalSpy added(&page, &SettingsWidget::serverAdded);
        const LogCapture log;
        const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
        page.editServer(worldServer("s1"_s));
        QCOMPARE(log.linesOf("Settings called on non-local server"_s).size(), 1);
        QCOMPARE(visitor.visits(), 0);
        QVERIFY(added.isEmpty());
        QVERIFY(!QFile::exists(rosterFile));
    }

private:
    void offer(const QString &version)
    {
        service.succeed("GET", versionPath, "{\"version\":\"" + version.toUtf8() + "\"}");
    }

    ScriptedService service;
    QList<QUrl> openedLinks;
};

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    SettingsWidgetTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SettingsWidgetTest.moc"
