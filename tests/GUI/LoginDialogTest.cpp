// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "App/ServiceProfile.h"
#include "LoginForm.h"
#include "tests/support/ScriptedService.h"

Q_DECLARE_METATYPE(WireReply)

namespace {

const QByteArray sessionsPath("/public/sessions");
const QString email = "anna+cam@example.com"_s;
const QString password = "p&ss w+rd"_s;

} // namespace

class LoginDialogTest : public QObject
{
    Q_OBJECT

public slots:
    void linkOpened(const QUrl &url) { openedLinks.append(url); }

private slots:
    void initTestCase()
    {
        qApp->setStyleSheet("* { font: 12px \"PT Sans\"; }"_s);
        QVERIFY(service.start());
        QDesktopServices::setUrlHandler("http"_s, this, "linkOpened");
    }

    void init()
    {
        service.reset();
        openedLinks.clear();
        resetSignInSettings();
    }

    void opensEmpty()
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

    void signInSendsWhatWasTyped()
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
        QCOMPARE(body.queryItemValue("login"_s, QUrl::FullyDecoded), email);
        QCOMPARE(body.queryItemValue("password"_s, QUrl::FullyDecoded), password);
        QVERIFY(!form.waiting());
        QVERIFY(form.signIn->isEnabled() && form.emailLn->isEnabled());
    }

    void signInStoresTheForm_data()
    {
        const QStringList oldProxy = {"old.example"_s, "3128"_s, "old user"_s, "old secret"_s};
        const QStringList newProxy = {"proxy.example"_s, "8080"_s, "anna"_s, "x=y"_s};
        QStringList noPort = newProxy;
        noPort[1] = "http"_s;
        QStringList zeroPort = newProxy;
        zeroPort[1] = "0"_s;
        rows<bool, QStringList, QString, QStringList>(
            {"forget", "proxy", "passwordAfter", "proxyAfter"},
            {
                {"remember", false, QStringList(), password, oldProxy},
                {"forget keeps the older password", true, QStringList(), "older"_s, oldProxy},
                {"proxy", false, newProxy, password, newProxy},
                {"port is no number", true, noPort, "older"_s, zeroPort},
            });
    }

    void signInStoresTheForm()
    {
        const auto [forget, proxy, passwordAfter, proxyAfter] =
            row<bool, QStringList, QString, QStringList>();
        service.answer("POST", sessionsPath, WireReply::silence());
        LoginForm form;
        form.dialog.show();
        store("auth/password", "older"_s);
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
        const QStringList proxyNow = {
            stored("proxy/host").toString(), stored("proxy/port").toString(),
            stored("proxy/username").toString(), stored("proxy/password").toString()};
        QCOMPARE(proxyNow, proxyAfter);
    }

    void rememberedAccountSignsInAtShow()
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

    void incompleteAccountWaitsForTheUser_data()
    {
        rows<QString, QString, QVariant, QString>(
            {"savedEmail", "savedPassword", "saveAuth", "focus"},
            {
                {"no e-mail", QString(), password, QVariant(true), "emailLn"_s},
                {"no password", email, QString(), QVariant(true), "passwordLn"_s},
                {"not remembered", email, password, QVariant(false), "passwordLn"_s},
                {"signed out", email, QString(), QVariant(QString(""_s)), "passwordLn"_s},
            });
    }

    void incompleteAccountWaitsForTheUser()
    {
        const auto [savedEmail, savedPassword, saveAuth, focus] =
            row<QString, QString, QVariant, QString>();
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

    void everyFailureShowsTheBar_data()
    {
        rows<WireReply>(
            {"reply"},
            {
                {"refused", WireReply::json(R"({"success":false,"response":{"code":10001}})")},
                {"server error", WireReply::json("{}", 500)},
                {"no JSON", WireReply::body("<html>", "text/html")},
                {"connection lost", WireReply::raw(QByteArray(), WireReply::Ending::Reset)},
            });
    }

    void everyFailureShowsTheBar()
    {
        const auto [reply] = row<WireReply>();
        service.answer("POST", sessionsPath, reply);
        LoginForm form;
        QSignalSpy success(&form.dialog, &GUI::LoginDialog::loginSuccessful);
        form.dialog.show();
        form.fill(email, password);
        form.click("signInButton");
        QTRY_COMPARE(form.barShown(), "wrongEmailPassWgt"_s);
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

    void formIsLockedWhileWaiting()
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

    void buttonFollowsTheFields()
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

    void returnKey_data()
    {
        const QString passwordField = "passwordLn"_s;
        rows<QString, int, QString, bool, bool>(
            {"field", "key", "emailText", "signsIn", "consumed"},
            {
                {"Return", passwordField, int(Qt::Key_Return), email, true, true},
                {"Enter", passwordField, int(Qt::Key_Enter), email, true, true},
                {"on the button", "signInButton"_s, int(Qt::Key_Return), email, true, true},
                {"no e-mail", passwordField, int(Qt::Key_Return), QString(), false, true},
                {"in the e-mail", "emailLn"_s, int(Qt::Key_Return), email, false, false},
                {"other key", passwordField, int(Qt::Key_F5), email, false, false},
            });
    }

    void returnKey()
    {
        const auto [field, key, emailText, signsIn, consumed] =
            row<QString, int, QString, bool, bool>();
        service.answer("POST", sessionsPath, WireReply::silence());
        LoginForm form;
        form.dialog.show();
        form.fill(emailText, password);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(form.dialog.findChild<QWidget *>(field), &press);
        QCOMPARE(form.waiting(), signsIn);
        QCOMPARE(press.isAccepted(), consumed);
    }

    void linksOpenAtTheRedirector()
    {
        LoginForm form;
        form.dialog.show();
        form.click("remindButton");
        form.click("signUpButton");
        const QString host = App::ServiceProfile::current().redirectorHost;
        const QList<QUrl> expected = {
            QUrl("http://%1/?target=password-recover&lang=en"_s.arg(host)),
            QUrl("http://%1/?target=sign_up&lang=en"_s.arg(host))};
        QCOMPARE(openedLinks, expected);
    }

    void everyControlHasANameAndItsTurn()
    {
        LoginForm form;
        const QStringList order = {"emailLn"_s,        "passwordLn"_s,      "signInButton"_s,
                                   "forgetBox"_s,      "remindButton"_s,    "signUpButton"_s,
                                   "settingsButton"_s, "settingsPBtn2"_s,   "localLoginPBtn"_s,
                                   "defaultChoice"_s,  "localModeChoice"_s, "proxyChoice"_s,
                                   "proxyHost"_s,      "proxyPort"_s,       "proxyLogin"_s,
                                   "proxyPassword"_s,  "doneButton"_s,      "cancelButton"_s};
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

private:
    ScriptedService service;
    QList<QUrl> openedLinks;
};

QTEST_MAIN(LoginDialogTest)
#include "LoginDialogTest.moc"
