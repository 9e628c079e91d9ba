// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "App/Settings.h"
#include "GUI/CloudToolTip.h"
#include "GUI/LoginDialog.h"
#include "GUI/TippedButton.h"
#include "tests/support/FakeTime.h"
#include "tests/support/ScriptedService.h"

using namespace std::chrono_literals;

namespace {

const QByteArray sessionsPath("/public/sessions");
const QString email = "anna+cam@example.com"_s;
const QString password = "p&ss w+rd"_s;
const QString oldProxy = "old.example:3128:old user:old secret"_s;

const QStringList settingKeys = {"auth/email", "auth/password", "auth/saveAuth",  "proxy/useProxy",
                                 "proxy/host", "proxy/port",    "proxy/username", "proxy/password"};

/// Sets what the file says of the account and the proxy.
void store(const QString &account, const QString &useProxy = "false"_s)
{
    const QStringList values = (account + ':' + useProxy + ':' + oldProxy).split(':');
    for (int i = 0; i < settingKeys.size(); ++i)
        App::settings().setValue(settingKeys.at(i), values.at(i));
}

QString stored()
{
    QStringList values;
    for (const QString &key : settingKeys)
        values.append(App::settings().value(key).toString());
    return values.join(':');
}

/// A sign-in dialog, its controls by name, and what can be seen of it.
struct LoginForm {
    /// Shows the dialog.
    explicit LoginForm(bool isForgetful = false)
    {
        forget->setChecked(isForgetful);
        dialog.show();
    }

    template <typename T = QWidget>
    T *part(const QString &name) const
    {
        return dialog.findChild<T *>(name);
    }

    void fill(const QString &account, const QString &secret)
    {
        emailLn->setText(account);
        passwordLn->setText(secret);
    }

    void fillProxy(const QString &texts)
    {
        for (int i = 0; i < proxyFields.size(); ++i)
            proxyFields.at(i)->setText(texts.section(':', i, i));
    }

    void press(const QString &name)
    {
        auto *pressed = part(name);
        QVERIFY2(pressed && pressed->isVisible(), qPrintable(name));
        // A choice is pressed where its circle is.
        QTest::mouseClick(pressed, Qt::LeftButton, {}, QPoint(8, pressed->height() / 2));
    }

    /// True when the key has been taken.
    bool pressKey(int key, const QString &field)
    {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(part(field), &press);
        return press.isAccepted();
    }

    /// All of it: locked with the spinner if `waiting`, else ready for the user.
    bool isWaiting(bool waiting) const
    {
        const QWidgetList locked = {emailLn, passwordLn, signIn, forget, part("settingsButton")};
        return part("spinnerWidget")->isVisible() == waiting && signIn->isVisible() != waiting &&
               std::all_of(locked.begin(), locked.end(), [waiting](const QWidget *widget) {
                   return widget->isEnabled() != waiting;
               });
    }

    /// Page, height, and the alert or the proxy that is there.
    QString shown() const
    {
        const bool isSignIn = dialog.currentIndex() == 0;
        QString text = "%1 %2"_s.arg(isSignIn ? "sign-in" : "settings").arg(dialog.height());
        const auto *bar = part<QStackedWidget>("alertsBar");
        if (isSignIn && bar->height() > 0)
            text += ' ' + bar->currentWidget()->objectName();
        if (!isSignIn && part<QRadioButton>("defaultChoice")->isChecked())
            text += " default"_s;
        for (const QLineEdit *field : proxyFields)
            text += field->isVisible() ? ' ' + field->text() : QString();
        const bool isAtRest = dialog.currentWidget()->pos().isNull() &&
                              dialog.minimumSize() == dialog.size() && dialog.maximumWidth() == 440;
        return isAtRest ? text : text + " moving";
    }

    GUI::LoginDialog dialog;
    QSignalSpy success{&dialog, &GUI::LoginDialog::loginSuccessful};
    QLineEdit *emailLn = part<QLineEdit>("emailLn");
    QLineEdit *passwordLn = part<QLineEdit>("passwordLn");
    QPushButton *signIn = part<QPushButton>("signInButton");
    QCheckBox *forget = part<QCheckBox>("forgetBox");
    QList<QLineEdit *> proxyFields = part("proxySettings")->findChildren<QLineEdit *>();
};

} // namespace

class LoginDialogTest : public QObject
{
    Q_OBJECT

public slots:
    void linkOpened(const QUrl &url) { openedLinks.append(url); }

private slots:
    void initTestCase()
    {
        QVERIFY(service.start());
        QDesktopServices::setUrlHandler("http"_s, this, "linkOpened");
    }

    void init()
    {
        service.reset();
        store("::");
    }

    void shownWithTheSavedAccount_data()
    {
        rows<QString, QString>({"account", "focus"},
                               {{"first start", "::", "emailLn"},
                                {"no e-mail", ":secret:true", "emailLn"},
                                {"no password", "a@b.example::true", "passwordLn"},
                                {"not remembered", "a@b.example:secret:false", "passwordLn"},
                                {"remembered", "a@b.example:secret:true", "topBarWgt"}});
    }

    void shownWithTheSavedAccount()
    {
        const auto [account, focus] = row<QString, QString>();
        service.succeed("POST", sessionsPath, R"({"session_id":"s-1"})");
        store(account);
        LoginForm form(true);
        const bool signsIn = focus == "topBarWgt"_s;
        QCOMPARE(form.isWaiting(true), signsIn);
        QCOMPARE(form.shown(), "sign-in 413"_s);
        QCOMPARE(form.emailLn->text(), account.section(':', 0, 0));
        QCOMPARE(form.passwordLn->text(), signsIn ? "secret"_s : QString());
        QCOMPARE(form.dialog.focusWidget()->objectName(), focus);
        QCOMPARE(form.forget->isChecked(), !signsIn);
        QVERIFY(!form.signIn->isEnabled());
        QTRY_COMPARE(form.success.size(), signsIn ? 1 : 0);
        QCOMPARE(service.requests().size(), form.success.size());

        // What comes back from the task bar has what was typed.
        form.fill(email, password);
        form.dialog.setWindowState(Qt::WindowMinimized);
        form.dialog.setWindowState(Qt::WindowNoState);
        QCOMPARE(form.emailLn->text() + form.passwordLn->text(), email + password);
    }

    /// What is typed, what is sent, what is stored.
    void signIn_data()
    {
        const QString field = "passwordLn"_s;
        const QString proxyOff = "false:" + oldProxy;
        const QString typedProxy = "127.0.0.1:1:anna:x=y"_s;
        const QString all = email + ':' + password + ":true:";
        const QString nothing = ":older::" + proxyOff;
        const QString forgotten = email + ":older:false:" + proxyOff;
        rows<QString, int, QString, bool, QString>(
            {"typed", "key", "field", "taken", "stored"},
            {{"by the button", "", 0, "", true, all + proxyOff},
             {"forgotten, which leaves the older password", "forget", 0, "", true, forgotten},
             {"with a proxy", typedProxy, 0, "", true, all + "true:" + typedProxy},
             {"port is no number", "127.0.0.1:http", 0, "", true, all + "true:127.0.0.1:0::"},
             {"Return", "", Qt::Key_Return, field, true, all + proxyOff},
             {"Enter", "", Qt::Key_Enter, field, true, all + proxyOff},
             {"without e-mail", "no e-mail", Qt::Key_Return, field, true, nothing},
             {"in the e-mail", "", Qt::Key_Return, "emailLn", false, nothing}});
    }

    void signIn()
    {
        const auto [typed, key, field, taken, expected] =
            row<QString, int, QString, bool, QString>();
        service.answer("POST", sessionsPath, WireReply::silence());
        LoginForm form;
        store(":older:");
        form.fill(typed == "no e-mail"_s ? QString() : email, password);
        if (typed == "forget"_s)
            form.forget->click();
        form.part<QRadioButton>("proxyChoice")->setChecked(typed.contains(':'));
        form.fillProxy(typed);
        if (key == 0)
            form.press("signInButton");
        else
            QCOMPARE(form.pressKey(key, field), taken);
        QCOMPARE(stored(), expected);
        const bool sent = expected.startsWith(email);
        QCOMPARE(form.isWaiting(true), sent);
        if (!sent)
            return;

        // A second sign-in would store this at once.
        form.forget->toggle();
        form.pressKey(Qt::Key_Return, "passwordLn");
        QCOMPARE(stored(), expected);
        // Behind that proxy is nobody.
        QTRY_COMPARE(service.requestsTo(sessionsPath).size(), typed.contains(':') ? 0 : 1);
        for (const WireRequest &request : service.requests()) {
            const QUrlQuery body(QString::fromUtf8(request.body));
            QCOMPARE(body.queryItemValue("login"_s, QUrl::FullyDecoded), email);
            QCOMPARE(body.queryItemValue("password"_s, QUrl::FullyDecoded), password);
        }
    }

    void everyFailureShowsTheBar()
    {
        for (const WireReply &reply :
             {WireReply::json(R"({"success":false,"response":{"code":10001}})"),
              WireReply::json("{}", 500), WireReply::body("<html>", "text/html"),
              WireReply::raw(QByteArray(), WireReply::Ending::Reset)}) {
            init();
            service.answer("POST", sessionsPath, reply);
            LoginForm form;
            form.fill(email, password);
            form.press("signInButton");
            QTRY_COMPARE(form.shown(), "sign-in 451 wrongEmailPassWgt"_s);
            QVERIFY(form.isWaiting(false) && form.success.isEmpty());
            QCOMPARE(form.emailLn->text() + form.passwordLn->text(), email + password);
            QCOMPARE(form.dialog.focusWidget(), form.passwordLn);

            service.succeed("POST", sessionsPath, R"({"session_id":"s-2"})");
            form.press("signInButton");
            QCOMPARE(form.shown(), "sign-in 413"_s);
            QTRY_COMPARE(form.success.size(), 1);
            QVERIFY(form.isWaiting(false));
        }
    }

    /// A wall that came up before its network signs in by itself, once the service answers.
    void aWallTriesAgain()
    {
        const auto requests = [this] { return service.requestsTo(sessionsPath).size(); };
        for (const bool isWall : {false, true}) {
            init();
            store("a@b.example:secret:true");
            isWall ? qputenv("ZORVANE_KIOSK", "Gate") : qunsetenv("ZORVANE_KIOSK");
            service.answer("POST", sessionsPath, WireReply::json("{}", 500));
            LoginForm form;
            QTRY_COMPARE(form.shown(), "sign-in 451 wrongEmailPassWgt"_s);
            // Somebody types.
            form.passwordLn->setText("s");
            QCOMPARE(expireTimers(30s), int(isWall));
            QCOMPARE(requests(), 1);
            form.passwordLn->setText("secret");
            form.press("signInButton");
            QTRY_VERIFY(form.isWaiting(false) && requests() == 2);
            QTRY_COMPARE(form.shown(), "sign-in 451 wrongEmailPassWgt"_s);
            service.succeed("POST", sessionsPath, R"({"session_id":"s-3"})");
            QCOMPARE(expireTimers(30s), int(isWall));
            QTRY_COMPARE(form.success.size(), qsizetype(isWall));
        }
        qunsetenv("ZORVANE_KIOSK");
    }

    void tabButtonAndLinksOfTheForm()
    {
        store("::", "true"_s);
        LoginForm form;
        form.fill(email, password);
        QStringList order;
        for (int i = 0; i < 7; ++i) {
            QTest::keyClick(form.dialog.focusWidget(), Qt::Key_Tab);
            order.append(form.dialog.focusWidget()->objectName());
        }
        QCOMPARE(order, (QStringList{"passwordLn", "signInButton", "forgetBox", "remindButton",
                                     "signUpButton", "settingsButton", "settingsPBtn2"}));
        form.press("remindButton");
        form.press("signUpButton");
        const QString page = "http://go.zorvane.example/?target=%1&lang=en"_s;
        QCOMPARE(openedLinks, (QList<QUrl>{page.arg("password-recover"_s), page.arg("sign_up"_s)}));

        const auto *effect = qobject_cast<QGraphicsOpacityEffect *>(form.signIn->graphicsEffect());
        // In the end it is ready again before the fading is over.
        for (const QStringList &emails : {QStringList{""}, {email}, {"", email}}) {
            for (const QString &text : emails) {
                form.emailLn->setText(text);
                QCOMPARE(form.signIn->isEnabled(), !text.isEmpty());
                QCOMPARE(form.signIn->font().bold(), !text.isEmpty());
            }
            QTRY_COMPARE(effect->opacity(), emails.last().isEmpty() ? 0.5 : 1.0);
        }
    }

    /// What is pressed, and what is shown before and after it. A page comes in beside the other.
    void pages_data()
    {
        const QString plain = "sign-in 413"_s;
        const QString bar = "sign-in 451 usesProxyWgt"_s;
        const QString choices = "settings 365 default"_s;
        const QString oldFields = "settings 535 " + oldProxy.split(':').join(' ');
        const QString noFields = "settings 535    "_s; // four empty ones
        const QString typo = "settings 535 typo 1 2 3"_s;
        rows<QStringList>(
            {"story"},
            {{"turned on and off",
              {plain, "settingsButton settingsButton", choices, "proxyChoice", noFields, "Return",
               bar, "settingsButton", noFields, "defaultChoice", choices, "doneButton", plain}},
             {"turned on and taken back",
              {plain, "settingsButton", choices, "proxyChoice", noFields, "cancelButton", plain,
               "settingsButton", choices}},
             {"turned off and taken back",
              {bar, "settingsPBtn2", oldFields, "typo:1:2:3", typo, "defaultChoice", choices,
               "cancelButton", bar, "settingsButton", oldFields}}});
    }

    void pages()
    {
        const auto [story] = row<QStringList>();
        store("::", story.first().contains("usesProxy"_s) ? "true"_s : "false"_s);
        const QString before = stored();
        LoginForm form;
        form.fill(email, password);
        QCOMPARE(form.shown(), story.first());
        for (int i = 1; i < story.size(); i += 2) {
            const int pageBefore = form.dialog.currentIndex();
            for (const QString &pressed : story.at(i).split(' ')) {
                if (pressed.contains(':'))
                    form.fillProxy(pressed);
                else if (pressed == "Return"_s)
                    for (const char *field :
                         {"proxyPassword", "proxyLogin", "proxyPort", "proxyHost", "passwordLn"})
                        QVERIFY(form.pressKey(Qt::Key_Return, field));
                else
                    form.press(pressed);
            }
            const bool slides = form.dialog.widget(1 - pageBefore)->isVisible();
            QTRY_COMPARE_WITH_TIMEOUT(form.shown(), story.at(i + 1), 10000);
            QCOMPARE(slides, form.dialog.currentIndex() != pageBefore);
        }
        QVERIFY(service.requests().isEmpty());
        QCOMPARE(stored(), before);
    }

    void everyChoiceHasItsTip()
    {
        LoginForm form;
        form.dialog.setCurrentIndex(1);
        const auto choices = form.dialog.findChildren<QRadioButton *>();
        QStringList tips;
        for (const QRadioButton *choice : choices) {
            const QWidget *line = choice->parentWidget();
            auto *icon = line->findChild<TippedIcon *>();
            QVERIFY2(icon, qPrintable(choice->objectName()));
            QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
            QApplication::sendEvent(icon, &enter);
            const QString tip = line->findChild<CloudToolTip *>()->findChild<QLabel *>()->text();
            tips << choice->objectName() + ": " + tip.section(' ', 0, 1);
            // The service has no sign-in for the local mode.
            QCOMPARE(choice->isVisible(), choice->objectName() != "localModeChoice"_s);
        }
        QCOMPARE(tips, (QStringList{"defaultChoice: Sign in", "localModeChoice: Watch video",
                                    "proxyChoice: Use with"}));
    }

private:
    ScriptedService service;
    QList<QUrl> openedLinks;
};

QTEST_MAIN(LoginDialogTest)
#include "LoginDialogTest.moc"
