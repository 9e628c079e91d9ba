// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QScopedPointer>
#include <QStackedWidget>
#include <QStringList>

class QGraphicsOpacityEffect;
class TippedButton;

namespace Ui {
class Login;
}

namespace ZorvaneClient {

namespace API {
class CloudAPIClient;
}

namespace GUI {

class ProxyForm;
class SignInForm;

/// The sign-in window: the sign-in page, and the account settings page that slides in beside it.
/// Signs in through a request handle of its own, and by itself when it is shown and the account
/// was remembered. What was typed is stored at sign-in, not before.
class LoginDialog : public QStackedWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(LoginDialog)

public:
    explicit LoginDialog(QWidget *parent = nullptr);
    ~LoginDialog() override;

signals:
    void loginSuccessful();
    void exitRequested();

protected:
    void showEvent(QShowEvent *event) override;
    /// Return in the password field and on the sign-in button.
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void on_signInButton_clicked();
    void settingClicked();
    void setLoginButtonState();
    void on_doneButton_clicked();
    void on_cancelButton_clicked();
    void on_proxyChoice_toggled(bool checked);
    void screensSwitched();
    void windowResizeDone();
    void animationFinished();
    void showWrongEmailPassAlert();
    /// What somebody at the window would do; only for the account that is remembered.
    void signInAgain();
    /// Nothing calls it yet.
    void showNoInternetAlert();
    void showUsesProxyAlert();
    void onLoginSuccessful();
    void on_remindButton_clicked();
    void on_signUpButton_clicked();

private:
    void showPictures();
    void createSettingsButton();
    void createTips();

    void setFormLocked(bool locked);
    void showProxyState();
    void showAlert(QWidget *alert);
    void hideAlert();

    /// In pixels, by what the page shows now.
    int heightOf(int page) const;
    void switchPage(int target);

    QScopedPointer<Ui::Login> ui;
    QScopedPointer<ProxyForm> proxyForm;
    QScopedPointer<SignInForm> signInForm;
    bool proxyShown = false;
    bool alertShown = false;
    bool switching = false;
    int fromPage = 0;
    int toPage = 0;
    QPoint fromPagePos;
    QGraphicsOpacityEffect *opacityEffect = nullptr;
    API::CloudAPIClient *client = nullptr;
    QStringList savedProxy; ///< host, port, user, password
    bool savedProxyOn = false;
    TippedButton *settingsButton = nullptr;
};

} // namespace GUI
} // namespace ZorvaneClient
