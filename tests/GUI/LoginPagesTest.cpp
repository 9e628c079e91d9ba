// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "LoginForm.h"
#include "tests/support/ScriptedService.h"

namespace {

// Left edge of a page and height of its window at each move of the page.
class SlideRecorder : public QObject
{
public:
    SlideRecorder(QWidget *newWindow, QWidget *newPage) : window(newWindow), page(newPage)
    {
        page->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Move)
            steps.append(QPoint(page->x(), window->height()));
        return false;
    }

    // Height of the window when the page first stood at home, having come step by step
    // under that same height; -1 if it never came.
    int heightAtArrival() const
    {
        QSet<int> heightsOnTheWay;
        for (const QPoint &step : steps.mid(1)) {
            heightsOnTheWay.insert(step.y());
            if (step.x() == 0)
                return heightsOnTheWay.size() == 1 ? step.y() : -1;
        }
        return -1;
    }

    QWidget *window;
    QWidget *page;
    QList<QPoint> steps;
};

} // namespace

class LoginPagesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void heightsOfThePages();
    void windowGrowsBeforeAndShrinksAfterTheSlide();
    void secondSlideIsDropped();
    void returnOnTheSettingsPageGoesBack();
    void doneKeepsTheProxyUntilSignIn();
    void cancelTakesTheProxyBack_data();
    void cancelTakesTheProxyBack();
    void proxyInForceIsShownAtStart();
    void localModeIsNotOffered();
    void labelsAreOfOneSize();
};

void LoginPagesTest::init()
{
    resetSignInSettings();
}

void LoginPagesTest::heightsOfThePages()
{
    LoginForm form;
    form.dialog.show();
    QVERIFY(form.openSettings(365));
    form.proxyChoice->click();
    QCOMPARE(form.dialog.size(), QSize(440, 535));
    QVERIFY(form.child<QWidget>("proxySettings")->isVisible());
    QVERIFY(form.child<QLabel>("arrowLbl")->isVisible());
    form.defaultChoice->click();
    QCOMPARE(form.dialog.size(), QSize(440, 365));
    QVERIFY(!form.child<QWidget>("proxySettings")->isVisible());
    form.proxyChoice->click();
    form.click("doneButton");
    QVERIFY(form.settlesAt(0, 451));
    QCOMPARE(form.barShown(), "usesProxyWgt"_s);
    QVERIFY(form.openSettings(535));
    form.defaultChoice->click();
    form.click("doneButton");
    QVERIFY(form.settlesAt(0, 413));
    QCOMPARE(form.barShown(), QString());
}

void LoginPagesTest::windowGrowsBeforeAndShrinksAfterTheSlide()
{
    resetSignInSettings(true);
    LoginForm form;
    form.dialog.show();
    QCOMPARE(form.dialog.height(), 451);
    {
        const SlideRecorder recorder(&form.dialog, form.dialog.widget(1));
        QVERIFY(form.openSettings(535));
        QCOMPARE(recorder.steps.first().x(), 440);
        QCOMPARE(recorder.heightAtArrival(), 535);
    }
    {
        const SlideRecorder recorder(&form.dialog, form.dialog.widget(0));
        form.click("doneButton");
        QVERIFY(form.settlesAt(0, 451));
        QCOMPARE(recorder.steps.first().x(), -440);
        QCOMPARE(recorder.heightAtArrival(), 535);
    }
    QCOMPARE(form.dialog.width(), 440);
}

void LoginPagesTest::secondSlideIsDropped()
{
    LoginForm form;
    form.dialog.show();
    const QWidget *incoming = form.dialog.widget(1);
    QTest::mouseClick(form.gear, Qt::LeftButton);
    QCOMPARE(incoming->x(), 440);
    QMetaObject::invokeMethod(&form.dialog, "settingClicked");
    QMetaObject::invokeMethod(&form.dialog, "on_doneButton_clicked");
    QCOMPARE(incoming->x(), 440);
    QVERIFY(form.settlesAt(1, 365));
    form.click("doneButton");
    QVERIFY(form.settlesAt(0, 413));
}

void LoginPagesTest::returnOnTheSettingsPageGoesBack()
{
    LoginForm form;
    form.dialog.show();
    form.fill("a@example.com"_s, "secret"_s);
    QVERIFY(form.openSettings(365));
    QTest::keyClick(form.passwordLn, Qt::Key_Return);
    QVERIFY(form.settlesAt(0, 413));
    QVERIFY(!form.waiting());
}

void LoginPagesTest::doneKeepsTheProxyUntilSignIn()
{
    ScriptedService service;
    QVERIFY(service.start());
    service.answer("POST", "/public/sessions", WireReply::silence());
    LoginForm form;
    form.dialog.show();
    QVERIFY(form.openSettings(365));
    form.proxyChoice->click();
    form.fillProxy({"proxy.example"_s, "8080"_s});
    form.click("doneButton");
    QVERIFY(form.settlesAt(0, 451));
    QCOMPARE(form.barShown(), "usesProxyWgt"_s);
    QCOMPARE(stored("proxy/useProxy").toBool(), false);
    QCOMPARE(stored("proxy/host").toString(), "old.example"_s);
    form.fill("a@example.com"_s, "secret"_s);
    form.click("signInButton");
    QCOMPARE(stored("proxy/useProxy").toBool(), true);
    QCOMPARE(stored("proxy/host").toString(), "proxy.example"_s);
    QCOMPARE(stored("proxy/port").toInt(), 8080);
}

void LoginPagesTest::cancelTakesTheProxyBack_data()
{
    QTest::addColumn<bool>("wasOn");
    QTest::addColumn<bool>("turnedOn");
    QTest::newRow("turned on") << false << true;
    QTest::newRow("turned off") << true << false;
    QTest::newRow("changed") << true << true;
}

void LoginPagesTest::cancelTakesTheProxyBack()
{
    QFETCH(bool, wasOn);
    QFETCH(bool, turnedOn);
    resetSignInSettings(wasOn);
    LoginForm form;
    form.dialog.show();
    const QStringList before = form.proxyFields();
    QVERIFY(form.openSettings(wasOn ? 535 : 365));
    (turnedOn ? form.proxyChoice : form.defaultChoice)->click();
    form.fillProxy({"typo"_s, "1"_s, "2"_s, "3"_s});
    form.click("cancelButton");
    QVERIFY(form.settlesAt(0, wasOn ? 451 : 413));
    QCOMPARE(form.proxyChoice->isChecked(), wasOn);
    QCOMPARE(form.proxyFields(), before);
    QCOMPARE(form.barShown(), wasOn ? "usesProxyWgt"_s : QString());
}

void LoginPagesTest::proxyInForceIsShownAtStart()
{
    resetSignInSettings(true);
    LoginForm form;
    form.dialog.show();
    QCOMPARE(form.barShown(), "usesProxyWgt"_s);
    QCOMPARE(form.dialog.size(), QSize(440, 451));
    form.click("settingsPBtn2");
    QVERIFY(form.settlesAt(1, 535));
    QVERIFY(form.proxyChoice->isChecked());
    const QStringList expected = {"old.example"_s, "3128"_s, "old user"_s, "old secret"_s};
    QCOMPARE(form.proxyFields(), expected);
}

void LoginPagesTest::localModeIsNotOffered()
{
    LoginForm form;
    form.dialog.show();
    QVERIFY(form.openSettings(365));
    QVERIFY(form.defaultChoice->isVisible() && form.proxyChoice->isVisible());
    QVERIFY(!form.child<QRadioButton>("localModeChoice")->isVisible());
}

void LoginPagesTest::labelsAreOfOneSize()
{
    const LoginForm form;
    const QList<QLabel *> labels = form.dialog.findChildren<QLabel *>();
    int texts = 0;
    for (QLabel *label : labels) {
        label->ensurePolished();
        const bool isHeader = label->objectName() == "accountSettingsHeader"_s;
        QCOMPARE(label->font().pixelSize(), isHeader ? 24 : 16);
        texts += label->text().isEmpty() ? 0 : 1;
    }
    // Three alerts, the header and the four proxy fields.
    QCOMPARE(texts, 8);
}

QTEST_MAIN(LoginPagesTest)
#include "LoginPagesTest.moc"
