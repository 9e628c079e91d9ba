// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "GUI/LoginDialog.h"
#include "GUI/TippedButton.h"

namespace ZorvaneClient::Tests {

void store(const char *key, const QVariant &value);
QVariant stored(const char *key);
/// Puts no account and the proxy settings of `oldProxy()` into the settings.
void resetSignInSettings(bool useProxy = false);
/// Host, port, user and password as they are stored before a test.
QStringList oldProxy();

/// A sign-in dialog and its controls by name.
struct LoginForm {
    GUI::LoginDialog dialog;
    QLineEdit *emailLn = child<QLineEdit>("emailLn");
    QLineEdit *passwordLn = child<QLineEdit>("passwordLn");
    QPushButton *signIn = child<QPushButton>("signInButton");
    QCheckBox *forget = child<QCheckBox>("forgetBox");
    TippedButton *gear = child<TippedButton>("settingsButton");
    QStackedWidget *bar = child<QStackedWidget>("alertsBar");
    QRadioButton *proxyChoice = child<QRadioButton>("proxyChoice");
    QRadioButton *defaultChoice = child<QRadioButton>("defaultChoice");

    template <typename T>
    T *child(const char *name) const
    {
        return dialog.findChild<T *>(QLatin1String(name));
    }

    void fill(const QString &email, const QString &password);
    void click(const char *button);
    /// Name of the bar's page; empty while the bar is closed.
    QString barShown() const;
    bool waiting() const;

    QStringList proxyFields() const;
    void fillProxy(const QStringList &texts);

    /// Waits until the page is there and the window has the height.
    bool settlesAt(int page, int height);
    bool openSettings(int height);
};

} // namespace ZorvaneClient::Tests
