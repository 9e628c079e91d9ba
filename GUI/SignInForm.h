// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QGraphicsOpacityEffect;

namespace Ui {
class Login;
}

namespace ZorvaneClient {
namespace GUI {

/// The account on the sign-in page: two fields, whether to remember it, the button that follows
/// the fields, and the spinner in its place while the service is asked. The widgets are the
/// form's, which has to outlive this.
class SignInForm
{
public:
    /// `opacity` is the button's and shows whether it can be pressed.
    SignInForm(const Ui::Login &form, QGraphicsOpacityEffect *opacity);

    QString email() const;
    QString password() const;
    /// Both are there.
    bool isComplete() const;

    /// Fills the fields from the settings and puts the focus where something is missing. True
    /// if nothing is: the account was remembered whole.
    bool load();
    /// What stands in the fields is the account that is remembered.
    bool isRemembered() const;
    /// An account that is not to be remembered leaves the password in the settings as it is.
    void save() const;

    void updateButton();

    bool isWaiting() const;
    /// Locks what could be changed, or opens it again.
    void setWaiting(bool waiting);

private:
    const Ui::Login &ui;
    QGraphicsOpacityEffect *opacityEffect;
};

} // namespace GUI
} // namespace ZorvaneClient
