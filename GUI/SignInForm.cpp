// SPDX-License-Identifier: MIT
#include "GUI/SignInForm.h"

#include <QDebug>
#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>

#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "ui_Login.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int fadeMs = 100;
constexpr double dimOpacity = 0.5;
constexpr double fullOpacity = 1;
const QColor placeholderColour(108, 118, 136);

// Through the widget's own sheet, since the sheets above it overrule QWidget::setFont().
void setBold(QWidget *widget, bool bold)
{
    widget->setStyleSheet(bold ? QStringLiteral("font-weight: bold")
                               : QStringLiteral("font-weight: normal"));
}

void setPlaceholderColour(QWidget *field)
{
    QPalette palette = field->palette();
    palette.setColor(QPalette::PlaceholderText, placeholderColour);
    field->setPalette(palette);
}

} // namespace

SignInForm::SignInForm(const Ui::Login &form, QGraphicsOpacityEffect *opacity)
    : ui(form), opacityEffect(opacity)
{
    setPlaceholderColour(ui.emailLn);
    setPlaceholderColour(ui.passwordLn);
    updateButton();
}

QString SignInForm::email() const
{
    return ui.emailLn->text();
}

QString SignInForm::password() const
{
    return ui.passwordLn->text();
}

bool SignInForm::isComplete() const
{
    return !email().isEmpty() && !password().isEmpty();
}

bool SignInForm::load()
{
    const App::Settings &settings = App::settings();
    qDebug() << "Loading settings from " << settings.fileName();
    ui.emailLn->setText(settings.value(App::SettingsKey::email).toString());
    ui.passwordLn->setText(QString());
    if (email().isEmpty()) {
        ui.emailLn->setFocus();
        return false;
    }
    if (settings.value(App::SettingsKey::saveAuth).toBool())
        ui.passwordLn->setText(settings.value(App::SettingsKey::password).toString());
    if (password().isEmpty()) {
        ui.passwordLn->setFocus();
        return false;
    }
    ui.forgetBox->setChecked(false);
    return true;
}

void SignInForm::save() const
{
    App::Settings &settings = App::settings();
    const bool remember = !ui.forgetBox->isChecked();
    settings.setValue(App::SettingsKey::email, email());
    settings.setValue(App::SettingsKey::saveAuth, remember);
    if (!remember)
        return;
    qDebug() << "Saving auth to" << settings.fileName();
    settings.setValue(App::SettingsKey::password, password());
}

bool SignInForm::isRemembered() const
{
    const App::Settings &settings = App::settings();
    return isComplete() && settings.value(App::SettingsKey::saveAuth).toBool() &&
           email() == settings.value(App::SettingsKey::email).toString() &&
           password() == settings.value(App::SettingsKey::password).toString();
}

void SignInForm::updateButton()
{
    const bool ready = isComplete();
    if (ready == ui.signInButton->isEnabled())
        return;
    setBold(ui.signInButton, ready);
    auto *fade = new QPropertyAnimation(opacityEffect, "opacity", opacityEffect);
    fade->setDuration(fadeMs);
    fade->setStartValue(ready ? dimOpacity : fullOpacity);
    fade->setEndValue(ready ? fullOpacity : dimOpacity);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
    ui.signInButton->setEnabled(ready);
}

bool SignInForm::isWaiting() const
{
    return ui.loginButtonSWgt->currentWidget() == ui.waitingPage;
}

void SignInForm::setWaiting(bool waiting)
{
    QWidget *const widgets[] = {ui.emailLn, ui.passwordLn, ui.signInButton, ui.forgetBox};
    for (QWidget *widget : widgets)
        widget->setEnabled(!waiting);
    ui.loginButtonSWgt->setCurrentWidget(waiting ? ui.waitingPage : ui.buttonPage);
    if (waiting)
        ui.spinnerWidget->start();
    else
        ui.spinnerWidget->stop();
}

} // namespace GUI
} // namespace ZorvaneClient
