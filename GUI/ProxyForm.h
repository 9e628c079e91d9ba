// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace Ui {
class Login;
}

namespace ZorvaneClient {

namespace App {
struct ProxySettings;
}

namespace GUI {

/// The part of the sign-in form that says whether to use a proxy, and which: the choice, and
/// four fields that are there only when it is yes. The widgets are the form's, which has to
/// outlive this.
class ProxyForm
{
public:
    explicit ProxyForm(const Ui::Login &form);

    /// Fields that are not shown take no place in the page's layout either.
    void showFields(bool shown);

    bool isOn() const;
    /// Host, port, user and password as they were typed.
    QStringList texts() const;
    /// A text that is missing empties its field.
    void set(bool isOn, const QStringList &texts);

    /// What was typed; a port that is no number is 0.
    App::ProxySettings settings() const;
    /// Settings that are switched off leave the fields empty.
    void setSettings(const App::ProxySettings &settings);

private:
    const Ui::Login &ui;
};

} // namespace GUI
} // namespace ZorvaneClient
