// SPDX-License-Identifier: MIT
#include "LoginForm.h"

#include "tests/support/Test.h"

#include "App/Settings.h"
#include "GUI/SpinnerWidget.h"

namespace ZorvaneClient::Tests {

namespace {

constexpr int slideDeadlineMs = 10000;
const char *const proxyFieldNames[] = {"proxyHost", "proxyPort", "proxyLogin", "proxyPassword"};
const char *const proxyKeys[] = {"proxy/host", "proxy/port", "proxy/username", "proxy/password"};

} // namespace

void store(const char *key, const QVariant &value)
{
    App::settings().setValue(QLatin1String(key), value);
}

QVariant stored(const char *key)
{
    return App::settings().value(QLatin1String(key));
}

QStringList oldProxy()
{
    return {"old.example"_s, "3128"_s, "old user"_s, "old secret"_s};
}

void resetSignInSettings(bool useProxy)
{
    for (const char *key : {"auth/email", "auth/password", "auth/saveAuth"})
        store(key, QString(""_s));
    store("proxy/useProxy", useProxy);
    int i = 0;
    for (const char *key : proxyKeys)
        store(key, oldProxy().at(i++));
}

void LoginForm::fill(const QString &email, const QString &password)
{
    emailLn->setText(email);
    passwordLn->setText(password);
}

void LoginForm::click(const char *button)
{
    QTest::mouseClick(child<QPushButton>(button), Qt::LeftButton);
}

QString LoginForm::barShown() const
{
    return bar->height() > 0 ? bar->currentWidget()->objectName() : QString();
}

bool LoginForm::waiting() const
{
    return child<GUI::SpinnerWidget>("spinnerWidget")->isVisible();
}

QStringList LoginForm::proxyFields() const
{
    QStringList texts;
    for (const char *name : proxyFieldNames)
        texts.append(child<QLineEdit>(name)->text());
    return texts;
}

void LoginForm::fillProxy(const QStringList &texts)
{
    int i = 0;
    for (const char *name : proxyFieldNames)
        child<QLineEdit>(name)->setText(texts.value(i++));
}

bool LoginForm::settlesAt(int page, int height)
{
    const auto settled = [&] {
        return dialog.currentIndex() == page && dialog.height() == height &&
               dialog.minimumHeight() == height && dialog.currentWidget()->pos() == QPoint(0, 0);
    };
    return QTest::qWaitFor(settled, slideDeadlineMs);
}

bool LoginForm::openSettings(int height)
{
    QTest::mouseClick(gear, Qt::LeftButton);
    return settlesAt(1, height);
}

} // namespace ZorvaneClient::Tests
