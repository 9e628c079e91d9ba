// SPDX-License-Identifier: MIT
#include <QComboBox>
#include <QDesktopServices>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QtTest>

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

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::SettingsWidget;

class SettingsWidgetTest : public QObject
{
    Q_OBJECT

public slots:
    void linkOpened(const QUrl &url) { openedLinks.append(url); }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void showsAccountAndVersion();
    void languageBoxShowsTheLanguage_data();
    void languageBoxShowsTheLanguage();
    void languageIsChosenAndNeedsARestart();
    void restartButtonEndsTheEventLoop();
    void waitsForTheCheck();
    void checkEndsOnItsPage_data();
    void checkEndsOnItsPage();
    void failedCheckIsMadeAnewWhenShown();
    void boxOffersTheDownload_data();
    void boxOffersTheDownload();
    void boxComesBackWheneverThePageIsShown();
    void pageGoesWithTheBoxOpen();
    void signOutIsConfirmed_data();
    void signOutIsConfirmed();
    void addedServerIsSaved();
    void cancelledAddChangesNothing();
    void editedServerMovesInTheRoster();
    void cancelledEditSavesWhatThereIs();
    void cloudServerIsNotEdited();

private:
    void offer(const QString &version);

    ScriptedService service;
    QList<QUrl> openedLinks;
};

namespace {

const QByteArray versionPath = "/public/version/client_windows";
const QString ownVersion = QStringLiteral("6.0.1.114");
const QString localHost = QStringLiteral("127.0.0.1");
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
    part<QLineEdit>(*dialog, "password")->setText(QStringLiteral("secret"));
}

API::LocalServerPtr lanServer(int port)
{
    return API::LocalServerPtr::create(QStringLiteral("Store"), localHost, port,
                                       QStringLiteral("secret"));
}

QString language()
{
    return App::settings().value(QStringLiteral("common/language")).toString();
}

void setLanguage(const QVariant &code)
{
    App::settings().setValue(QStringLiteral("common/language"), code);
}

} // namespace

void SettingsWidgetTest::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
    QVERIFY(service.start());
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "linkOpened");
}

void SettingsWidgetTest::init()
{
    service.reset();
    offer(ownVersion);
    openedLinks.clear();
    App::settings().setValue(QStringLiteral("auth/email"), QStringLiteral("a@b.example"));
    qobject_cast<App::Application *>(qApp)->translate(QStringLiteral("en"));
    QCoreApplication::setApplicationVersion(ownVersion);
}

void SettingsWidgetTest::cleanup()
{
    setWorld({});
    forgetServers();
}

void SettingsWidgetTest::offer(const QString &version)
{
    service.succeed("GET", versionPath, "{\"version\":\"" + version.toUtf8() + "\"}");
}

void SettingsWidgetTest::showsAccountAndVersion()
{
    const QString email = QStringLiteral("a.very.long.address.of.the.whole.district@b.example");
    App::settings().setValue(QStringLiteral("auth/email"), email);
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

void SettingsWidgetTest::languageBoxShowsTheLanguage_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<int>("index");
    QTest::newRow("English") << "en" << 0;
    QTest::newRow("Russian") << "ru" << 1;
    QTest::newRow("another form") << "ru_RU" << 0;
}

void SettingsWidgetTest::languageBoxShowsTheLanguage()
{
    QFETCH(QString, code);
    setLanguage(code);
    const SettingsWidget page;
    const auto *box = part<QComboBox>(page, "languageBox");
    QTEST(box->currentIndex(), "index");
    QCOMPARE(box->itemText(0), QStringLiteral("English"));
    QCOMPARE(box->itemText(1), QStringLiteral("Русский"));
    QVERIFY(!asksForRestart(page));
    QCOMPARE(language(), code);
    QVERIFY(isSettled(page));
}

void SettingsWidgetTest::languageIsChosenAndNeedsARestart()
{
    const SettingsWidget page;
    QVERIFY(isSettled(page));
    auto *box = part<QComboBox>(page, "languageBox");
    box->setCurrentIndex(1);
    QCOMPARE(language(), QStringLiteral("ru"));
    QVERIFY(asksForRestart(page));
    QCOMPARE(labelText(&page, "accountLabel"), QStringLiteral("Account"));
    const SettingsWidget later;
    QVERIFY(isSettled(later));
    QCOMPARE(labelText(&later, "accountLabel"), QStringLiteral("Учетная запись"));
    box->setCurrentIndex(0);
    QCOMPARE(language(), QStringLiteral("en"));
    QVERIFY(asksForRestart(page));
}

void SettingsWidgetTest::restartButtonEndsTheEventLoop()
{
    SettingsWidget page;
    QVERIFY(isSettled(page));
    part<QComboBox>(page, "languageBox")->setCurrentIndex(1);
    QTimer::singleShot(0, &page, [&page] { part<QPushButton>(page, "restartButton")->click(); });
    QTimer::singleShot(deadlineMs, &page, [] { QCoreApplication::exit(1); });
    QCOMPARE(QApplication::exec(), -666);
}

void SettingsWidgetTest::waitsForTheCheck()
{
    service.answer("GET", versionPath, WireReply::silence());
    SettingsWidget page;
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    QTRY_COMPARE(service.requestsTo(versionPath).size(), 2);
    QCOMPARE(shownPage(page), QStringLiteral("updatesCheckPage"));
    QVERIFY(part<QWidget>(page, "spinnerWidget")->isVisible());
}

void SettingsWidgetTest::checkEndsOnItsPage_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("offered");
    QTest::addColumn<bool>("isNew");
    QTest::newRow("the same") << ownVersion << ownVersion << false;
    QTest::newRow("newer in the last piece") << ownVersion << "6.0.1.115" << true;
    QTest::newRow("newer in the first piece") << ownVersion << "7" << true;
    QTest::newRow("older in front of newer") << ownVersion << "5.9.9.999" << false;
    QTest::newRow("by number, not by letters") << "6.0.9"
                                               << "6.0.10" << true;
    QTest::newRow("longer") << "6.0.1"
                            << "6.0.1.5" << false;
    QTest::newRow("shorter") << ownVersion << "6.0" << false;
    QTest::newRow("suffix") << ownVersion << "6.0.1.114-9.9" << false;
    QTest::newRow("newer with a suffix") << ownVersion << "6.0.2-rc1" << true;
    QTest::newRow("own suffix") << "6.0.1.114-3"
                                << "6.0.1.114" << false;
    QTest::newRow("no number counts as 0") << "6.0.1"
                                           << "6.x.2" << true;
    QTest::newRow("own piece that is no number") << "6.x"
                                                 << "6.1" << true;
    QTest::newRow("no version") << ownVersion << "" << false;
}

void SettingsWidgetTest::checkEndsOnItsPage()
{
    QFETCH(QString, current);
    QFETCH(QString, offered);
    QFETCH(bool, isNew);
    QCoreApplication::setApplicationVersion(current);
    offer(offered);
    const LogCapture log;
    const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
    const SettingsWidget page;
    QTRY_VERIFY(shownPage(page) != QLatin1String("updatesCheckPage"));
    QCOMPARE(shownPage(page),
             isNew ? QStringLiteral("updatesFoundPage") : QStringLiteral("updatesNotFoundPage"));
    QTRY_COMPARE(visitor.visits(), isNew ? 1 : 0);
    QVERIFY(part<QWidget>(page, "spinnerWidget")->isHidden());
    const QString line =
        QStringLiteral("Updates: version from API: \"%1\" current version: \"%2\"");
    QCOMPARE(log.linesOf(line.arg(offered, current.section('-', 0, 0))).size(), 1);
    QVERIFY(isSettled(page));
}

void SettingsWidgetTest::failedCheckIsMadeAnewWhenShown()
{
    service.reset();
    SettingsWidget page;
    QTRY_COMPARE(shownPage(page), QStringLiteral("updatesErrorPage"));
    QVERIFY(part<QWidget>(page, "spinnerWidget")->isHidden());
    offer(ownVersion);
    page.show();
    QCOMPARE(shownPage(page), QStringLiteral("updatesCheckPage"));
    QTRY_COMPARE(shownPage(page), QStringLiteral("updatesNotFoundPage"));
    QCOMPARE(service.requestsTo(versionPath).size(), 2);
}

void SettingsWidgetTest::boxOffersTheDownload_data()
{
    QTest::addColumn<bool>("accept");
    QTest::newRow("taken") << true;
    QTest::newRow("not taken") << false;
}

void SettingsWidgetTest::boxOffersTheDownload()
{
    QFETCH(bool, accept);
    offer(QStringLiteral("6.1.0-beta"));
    const DialogVisitor visitor([&](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        QVERIFY(box);
        QCOMPARE(box->text(), QStringLiteral("A new version of Zorvane Client is available!"));
        QCOMPARE(box->informativeText(),
                 QStringLiteral("Zorvane Client 6.1.0-beta version is available. "
                                "Would you like to download it now?"));
        QCOMPARE(box->standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(qobject_cast<QAbstractButton *>(box->defaultButton()),
                 box->button(QMessageBox::Ok));
        QCOMPARE(box->windowModality(), Qt::ApplicationModal);
        box->button(accept ? QMessageBox::Ok : QMessageBox::Cancel)->click();
    });
    const SettingsWidget page;
    QTRY_COMPARE(visitor.visits(), 1);
    QVERIFY(isSettled(page));
    const QUrl downloads(QStringLiteral("http://go.zorvane.example/?target=downloads&lang=en"));
    QCOMPARE(openedLinks, accept ? QList<QUrl>{downloads} : QList<QUrl>());
    part<QPushButton>(page, "downloadButton")->click();
    QCOMPARE(openedLinks.size(), accept ? 2 : 1);
    QCOMPARE(openedLinks.last(), downloads);
}

void SettingsWidgetTest::boxComesBackWheneverThePageIsShown()
{
    offer(QStringLiteral("6.1"));
    const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
    SettingsWidget page;
    for (int round = 1; round <= 3; ++round) {
        QTRY_COMPARE(visitor.visits(), round);
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QCOMPARE(shownPage(page), QStringLiteral("updatesFoundPage"));
        page.hide();
        page.show();
        QCOMPARE(shownPage(page), QStringLiteral("updatesCheckPage"));
    }
    QTRY_COMPARE(visitor.visits(), 4);
    QCOMPARE(service.requestsTo(versionPath).size(), 4);
}

void SettingsWidgetTest::pageGoesWithTheBoxOpen()
{
    offer(QStringLiteral("6.1"));
    QPointer<SettingsWidget> page = new SettingsWidget;
    const DialogVisitor visitor([&](QDialog *) { delete page; });
    QTRY_COMPARE(visitor.visits(), 1);
    QVERIFY(!page);
    QVERIFY(openedLinks.isEmpty());
}

void SettingsWidgetTest::signOutIsConfirmed_data()
{
    QTest::addColumn<bool>("accept");
    QTest::newRow("confirmed") << true;
    QTest::newRow("not confirmed") << false;
}

void SettingsWidgetTest::signOutIsConfirmed()
{
    QFETCH(bool, accept);
    GUI::SideBar bar;
    QVERIFY(isSettled(*bar.settingsWidget()));
    QSignalSpy signout(&bar, &GUI::SideBar::signout);
    const DialogVisitor visitor([&](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        QCOMPARE(box->text(), QStringLiteral("Are you sure you want to log out?"));
        QCOMPARE(qobject_cast<QAbstractButton *>(box->defaultButton()),
                 box->button(QMessageBox::Cancel));
        box->button(accept ? QMessageBox::Ok : QMessageBox::Cancel)->click();
    });
    click(*bar.settingsWidget(), "signoutButton");
    QCOMPARE(visitor.visits(), 1);
    QCOMPARE(signout.size(), accept ? 1 : 0);
}

void SettingsWidgetTest::addedServerIsSaved()
{
    SettingsWidget page;
    QVERIFY(isSettled(page));
    QSignalSpy added(&page, &SettingsWidget::serverAdded);
    const DialogVisitor visitor([](QDialog *dialog) {
        typeServer(dialog, QStringLiteral("Store"), 3);
        clickOk(dialog);
    });
    click(page, "addServerButton");
    QCOMPARE(added.size(), 1);
    QCOMPARE(API::CloudAPIClient::serverList().keys(), QStringList{QStringLiteral("127.0.0.1:3")});
    QCOMPARE(storedServers(), QVariantList{lanServer(3)->toJson()});
    // The same address again replaces what was there.
    click(page, "addServerButton");
    QCOMPARE(added.size(), 2);
    QCOMPARE(storedServers().size(), 1);
}

void SettingsWidgetTest::cancelledAddChangesNothing()
{
    SettingsWidget page;
    QVERIFY(isSettled(page));
    QSignalSpy added(&page, &SettingsWidget::serverAdded);
    const DialogVisitor visitor([](QDialog *dialog) {
        typeServer(dialog, QStringLiteral("Store"), 3);
        clickCancel(dialog);
    });
    click(page, "addServerButton");
    QCOMPARE(visitor.visits(), 1);
    QVERIFY(added.isEmpty());
    QVERIFY(API::CloudAPIClient::serverList().isEmpty());
    QVERIFY(!QFile::exists(rosterFile));
}

/// From the roster's menu to the roster, wired as in a window.
void SettingsWidgetTest::editedServerMovesInTheRoster()
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
        QCOMPARE(part<QLineEdit>(*dialog, "port")->text(), QStringLiteral("3"));
        typeServer(dialog, QStringLiteral("Hall"), newHome.port());
        clickOk(dialog);
    });
    const auto actions = part<QPushButton>(*oldEntry, "settingsButton")->menu()->actions();
    QCOMPARE(actions.first()->text(), QStringLiteral("Edit"));
    actions.first()->trigger();
    QTRY_COMPARE(visitor.visits(), 1);
    QTRY_VERIFY(!oldEntry);
    const auto entries = roster->findChildren<GUI::ServerWidget *>();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.first()->server(), API::ServerPtr(server));
    QCOMPARE(labelText(entries.first(), "serverName"), QStringLiteral("Hall"));
    QCOMPARE(storedServers(), QVariantList{server->toJson()});
    QTRY_COMPARE(server->cameras().size(), 1);
    QCOMPARE(server->cameras().first()->serverId(), server->id());
    QVERIFY(server->id().endsWith(QString::number(newHome.port())));
}

void SettingsWidgetTest::cancelledEditSavesWhatThereIs()
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

void SettingsWidgetTest::cloudServerIsNotEdited()
{
    setWorld({{QStringLiteral("s1"), QStringLiteral("Office"), {}}});
    SettingsWidget page;
    QVERIFY(isSettled(page));
    QSignalSpy added(&page, &SettingsWidget::serverAdded);
    const LogCapture log;
    const DialogVisitor visitor([](QDialog *dialog) { clickCancel(dialog); });
    page.editServer(worldServer(QStringLiteral("s1")));
    QCOMPARE(log.linesOf(QStringLiteral("Settings called on non-local server")).size(), 1);
    QCOMPARE(visitor.visits(), 0);
    QVERIFY(added.isEmpty());
    QVERIFY(!QFile::exists(rosterFile));
}

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    SettingsWidgetTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SettingsWidgetTest.moc"
