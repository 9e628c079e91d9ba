// SPDX-License-Identifier: MIT
#include <QDesktopServices>
#include <QGraphicsOpacityEffect>
#include <QSignalSpy>
#include <QUrl>
#include <QUrlQuery>
#include <QtTest>

#include "App/ServiceProfile.h"
#include "LoginForm.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;

Q_DECLARE_METATYPE(WireReply)

namespace {

const QByteArray sessionsPath("/public/sessions");
const QString email = QStringLiteral("anna+cam@example.com");
const QString password = QStringLiteral("p&ss w+rd");

} // namespace

class LoginDialogTest : public QObject
{
    Q_OBJECT

public slots:
    void linkOpened(const QUrl &url) { openedLinks.append(url); }

private slots:
    void initTestCase();
    void init();
    void opensEmpty();
    void signInSendsWhatWasTyped();
    void signInStoresTheForm_data();
    void signInStoresTheForm();
    void rememberedAccountSignsInAtShow();
    void incompleteAccountWaitsForTheUser_data();
    void incompleteAccountWaitsForTheUser();
    void everyFailureShowsTheBar_data();
    void everyFailureShowsTheBar();
    void formIsLockedWhileWaiting();
    void buttonFollowsTheFields();
    void returnKey_data();
    void returnKey();
    void linksOpenAtTheRedirector();
    void everyControlHasANameAndItsTurn();

private:
    ScriptedService service;
    QList<QUrl> openedLinks;
};

void LoginDialogTest::initTestCase()
{
    qApp->setStyleSheet(QStringLiteral("* { font: 12px \"PT Sans\"; }"));
    QVERIFY(service.start());
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "linkOpened");
}

void LoginDialogTest::init()
{
    service.reset();
    openedLinks.clear();
    resetSignInSettings();
}

void LoginDialogTest::opensEmpty()
{
    LoginForm form;
    form.dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form.dialog));
    QCOMPARE(form.dialog.size(), QSize(440, 413));
    QCOMPARE(form.dialog.currentIndex(), 0);
    QCOMPARE(form.barShown(), QString());
    QVERIFY(!form.forget->isChecked());
    QVERIFY(!form.signIn->isEnabled());
    QCOMPARE(form.dialog.focusWidget(), form.emailLn);
    QVERIFY(service.requests().isEmpty());
}

void LoginDialogTest::signInSendsWhatWasTyped()
{
    service.succeed("POST", sessionsPath, R"({"session_id":"s-1"})");
    LoginForm form;
    QSignalSpy success(&form.dialog, &GUI::LoginDialog::loginSuccessful);
    form.dialog.show();
    form.fill(email, password);
    form.click("signInButton");
    QTRY_COMPARE(success.size(), 1);

    QCOMPARE(service.requestsTo(sessionsPath).size(), 1);
    const QUrlQuery body(QString::fromUtf8(service.requestsTo(sessionsPath).first().body));
    QCOMPARE(body.queryItemValue(QStringLiteral("login"), QUrl::FullyDecoded), email);
    QCOMPARE(body.queryItemValue(QStringLiteral("password"), QUrl::FullyDecoded), password);
    QVERIFY(!form.waiting());
    QVERIFY(form.signIn->isEnabled() && form.emailLn->isEnabled());
}

void LoginDialogTest::signInStoresTheForm_data()
{
    QTest::addColumn<bool>("forget");
    QTest::addColumn<QStringList>("proxy");
    QTest::addColumn<QString>("passwordAfter");
    QTest::addColumn<QStringList>("proxyAfter");
    const QStringList oldProxy = {QStringLiteral("old.example"), QStringLiteral("3128"),
                                  QStringLiteral("old user"), QStringLiteral("old secret")};
    const QStringList newProxy = {QStringLiteral("proxy.example"), QStringLiteral("8080"),
                                  QStringLiteral("anna"), QStringLiteral("x=y")};
    QStringList noPort = newProxy;
    noPort[1] = QStringLiteral("http");
    QStringList zeroPort = newProxy;
    zeroPort[1] = QStringLiteral("0");
    QTest::newRow("remember") << false << QStringList() << password << oldProxy;
    QTest::newRow("forget keeps the older password")
        << true << QStringList() << QStringLiteral("older") << oldProxy;
    QTest::newRow("proxy") << false << newProxy << password << newProxy;
    QTest::newRow("port is no number") << true << noPort << QStringLiteral("older") << zeroPort;
}

void LoginDialogTest::signInStoresTheForm()
{
    QFETCH(bool, forget);
    QFETCH(QStringList, proxy);
    QFETCH(QString, passwordAfter);
    QFETCH(QStringList, proxyAfter);
    service.answer("POST", sessionsPath, WireReply::silence());
    LoginForm form;
    form.dialog.show();
    store("auth/password", QStringLiteral("older"));
    form.fill(email, password);
    form.forget->setChecked(forget);
    if (!proxy.isEmpty()) {
        form.proxyChoice->setChecked(true);
        form.fillProxy(proxy);
    }
    QTest::mouseClick(form.signIn, Qt::LeftButton);

    QCOMPARE(stored("auth/email").toString(), email);
    QCOMPARE(stored("auth/saveAuth").toBool(), !forget);
    QCOMPARE(stored("auth/password").toString(), passwordAfter);
    QCOMPARE(stored("proxy/useProxy").toBool(), !proxy.isEmpty());
    const QStringList proxyNow = {stored("proxy/host").toString(), stored("proxy/port").toString(),
                                  stored("proxy/username").toString(),
                                  stored("proxy/password").toString()};
    QCOMPARE(proxyNow, proxyAfter);
}

void LoginDialogTest::rememberedAccountSignsInAtShow()
{
    service.succeed("POST", sessionsPath, R"({"session_id":"s-2"})");
    store("auth/email", email);
    store("auth/password", password);
    store("auth/saveAuth", true);
    LoginForm form;
    form.forget->setChecked(true);
    QSignalSpy success(&form.dialog, &GUI::LoginDialog::loginSuccessful);
    form.dialog.show();
    QVERIFY(form.waiting());
    QVERIFY(!form.forget->isChecked());
    QTRY_COMPARE(success.size(), 1);
    const QByteArray body = service.requestsTo(sessionsPath).first().body;
    QVERIFY2(body.contains("password=p%26ss%20w%2Brd"), body.constData());
    QCOMPARE(stored("auth/saveAuth").toBool(), true);
}

void LoginDialogTest::incompleteAccountWaitsForTheUser_data()
{
    QTest::addColumn<QString>("savedEmail");
    QTest::addColumn<QString>("savedPassword");
    QTest::addColumn<QVariant>("saveAuth");
    QTest::addColumn<QString>("focus");
    QTest::newRow("no e-mail") << QString() << password << QVariant(true)
                               << QStringLiteral("emailLn");
    QTest::newRow("no password") << email << QString() << QVariant(true)
                                 << QStringLiteral("passwordLn");
    QTest::newRow("not remembered")
        << email << password << QVariant(false) << QStringLiteral("passwordLn");
    QTest::newRow("signed out") << email << QString() << QVariant(QString(QLatin1String("")))
                                << QStringLiteral("passwordLn");
}

void LoginDialogTest::incompleteAccountWaitsForTheUser()
{
    QFETCH(QString, savedEmail);
    QFETCH(QString, savedPassword);
    QFETCH(QVariant, saveAuth);
    QFETCH(QString, focus);
    store("auth/email", savedEmail);
    store("auth/password", savedPassword);
    store("auth/saveAuth", saveAuth);
    LoginForm form;
    form.dialog.show();
    QVERIFY(!form.waiting());
    QCOMPARE(form.emailLn->text(), savedEmail);
    QCOMPARE(form.passwordLn->text(), QString());
    QCOMPARE(form.dialog.focusWidget()->objectName(), focus);
    QVERIFY(!form.signIn->isEnabled());
}

void LoginDialogTest::everyFailureShowsTheBar_data()
{
    QTest::addColumn<WireReply>("reply");
    QTest::newRow("refused") << WireReply::json(R"({"success":false,"response":{"code":10001}})");
    QTest::newRow("server error") << WireReply::json("{}", 500);
    QTest::newRow("no JSON") << WireReply::body("<html>", "text/html");
    QTest::newRow("connection lost") << WireReply::raw(QByteArray(), WireReply::Ending::Reset);
}

void LoginDialogTest::everyFailureShowsTheBar()
{
    QFETCH(WireReply, reply);
    service.answer("POST", sessionsPath, reply);
    LoginForm form;
    QSignalSpy success(&form.dialog, &GUI::LoginDialog::loginSuccessful);
    form.dialog.show();
    form.fill(email, password);
    form.click("signInButton");
    QTRY_COMPARE(form.barShown(), QStringLiteral("wrongEmailPassWgt"));
    QCOMPARE(form.dialog.size(), QSize(440, 451));
    QCOMPARE(form.bar->height(), 38);
    QCOMPARE(form.emailLn->text(), email);
    QCOMPARE(form.passwordLn->text(), password);
    QVERIFY(!form.waiting());
    for (QWidget *widget :
         QList<QWidget *>{form.emailLn, form.passwordLn, form.signIn, form.forget, form.gear})
        QVERIFY2(widget->isEnabled(), qPrintable(widget->objectName()));
    QVERIFY(success.isEmpty());

    service.succeed("POST", sessionsPath, R"({"session_id":"s-3"})");
    form.click("signInButton");
    QCOMPARE(form.barShown(), QString());
    QCOMPARE(form.dialog.height(), 413);
    QTRY_COMPARE(success.size(), 1);
}

void LoginDialogTest::formIsLockedWhileWaiting()
{
    service.answer("POST", sessionsPath, WireReply::silence());
    LoginForm form;
    form.dialog.show();
    form.fill(email, password);
    form.passwordLn->setFocus();
    QTest::keyClick(form.passwordLn, Qt::Key_Return);
    QVERIFY(form.waiting());
    for (QWidget *widget :
         QList<QWidget *>{form.emailLn, form.passwordLn, form.signIn, form.forget, form.gear})
        QVERIFY2(!widget->isEnabled(), qPrintable(widget->objectName()));
    QTRY_COMPARE(service.requestsTo(sessionsPath).size(), 1);

    // A second sign-in would store this at once.
    form.forget->setChecked(true);
    QTest::keyClick(form.passwordLn, Qt::Key_Return);
    QTest::mouseClick(form.signIn, Qt::LeftButton);
    QTest::mouseClick(form.gear, Qt::LeftButton);
    QCOMPARE(stored("auth/saveAuth").toBool(), true);
    QVERIFY(form.waiting());
    QVERIFY(!form.dialog.widget(1)->isVisible());
}

void LoginDialogTest::buttonFollowsTheFields()
{
    LoginForm form;
    form.dialog.show();
    const auto *effect = qobject_cast<QGraphicsOpacityEffect *>(form.signIn->graphicsEffect());
    QVERIFY(effect);
    QTRY_COMPARE(effect->opacity(), 0.5);
    const auto looks = [&](bool ready) {
        const int weight = ready ? QFont::Bold : QFont::Normal;
        return form.signIn->isEnabled() == ready && form.signIn->font().weight() == weight;
    };
    QVERIFY(looks(false));
    form.emailLn->setText(email);
    QVERIFY(looks(false));
    form.passwordLn->setText(password);
    QVERIFY(looks(true));
    QTRY_COMPARE(effect->opacity(), 1.0);
    form.emailLn->clear();
    QVERIFY(looks(false));
    QTRY_COMPARE(effect->opacity(), 0.5);
    // Back before the fading is over.
    form.emailLn->setText(email);
    form.emailLn->clear();
    form.emailLn->setText(email);
    QVERIFY(looks(true));
    QTRY_COMPARE(effect->opacity(), 1.0);
}

void LoginDialogTest::returnKey_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("emailText");
    QTest::addColumn<bool>("signsIn");
    QTest::addColumn<bool>("consumed");
    const QString passwordField = QStringLiteral("passwordLn");
    QTest::newRow("Return") << passwordField << int(Qt::Key_Return) << email << true << true;
    QTest::newRow("Enter") << passwordField << int(Qt::Key_Enter) << email << true << true;
    QTest::newRow("on the button")
        << QStringLiteral("signInButton") << int(Qt::Key_Return) << email << true << true;
    QTest::newRow("no e-mail") << passwordField << int(Qt::Key_Return) << QString() << false
                               << true;
    QTest::newRow("in the e-mail")
        << QStringLiteral("emailLn") << int(Qt::Key_Return) << email << false << false;
    QTest::newRow("other key") << passwordField << int(Qt::Key_F5) << email << false << false;
}

void LoginDialogTest::returnKey()
{
    QFETCH(QString, field);
    QFETCH(int, key);
    QFETCH(QString, emailText);
    QFETCH(bool, signsIn);
    QFETCH(bool, consumed);
    service.answer("POST", sessionsPath, WireReply::silence());
    LoginForm form;
    form.dialog.show();
    form.fill(emailText, password);
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(form.dialog.findChild<QWidget *>(field), &press);
    QCOMPARE(form.waiting(), signsIn);
    QCOMPARE(press.isAccepted(), consumed);
}

void LoginDialogTest::linksOpenAtTheRedirector()
{
    LoginForm form;
    form.dialog.show();
    form.click("remindButton");
    form.click("signUpButton");
    const QString host = App::ServiceProfile::current().redirectorHost;
    const QList<QUrl> expected = {
        QUrl(QStringLiteral("http://%1/?target=password-recover&lang=en").arg(host)),
        QUrl(QStringLiteral("http://%1/?target=sign_up&lang=en").arg(host))};
    QCOMPARE(openedLinks, expected);
}

void LoginDialogTest::everyControlHasANameAndItsTurn()
{
    LoginForm form;
    const QStringList order = {QStringLiteral("emailLn"),         QStringLiteral("passwordLn"),
                               QStringLiteral("signInButton"),    QStringLiteral("forgetBox"),
                               QStringLiteral("remindButton"),    QStringLiteral("signUpButton"),
                               QStringLiteral("settingsButton"),  QStringLiteral("settingsPBtn2"),
                               QStringLiteral("localLoginPBtn"),  QStringLiteral("defaultChoice"),
                               QStringLiteral("localModeChoice"), QStringLiteral("proxyChoice"),
                               QStringLiteral("proxyHost"),       QStringLiteral("proxyPort"),
                               QStringLiteral("proxyLogin"),      QStringLiteral("proxyPassword"),
                               QStringLiteral("doneButton"),      QStringLiteral("cancelButton")};
    QStringList chain;
    QWidget *widget = form.emailLn;
    do {
        if (widget->focusPolicy() & Qt::TabFocus) {
            chain.append(widget->objectName());
            QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
        }
        widget = widget->nextInFocusChain();
    } while (widget != form.emailLn);
    QCOMPARE(chain, order);
}

QTEST_MAIN(LoginDialogTest)
#include "LoginDialogTest.moc"
