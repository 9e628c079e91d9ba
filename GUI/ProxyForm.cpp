// SPDX-License-Identifier: MIT
#include "GUI/ProxyForm.h"

#include "App/ProxySettings.h"
#include "ui_Login.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int arrowPosition = 2;
constexpr int fieldsPosition = 3;

} // namespace

ProxyForm::ProxyForm(const Ui::Login &form) : ui(form)
{
}

void ProxyForm::showFields(bool shown)
{
    auto *page = qobject_cast<QBoxLayout *>(ui.settingsPage->layout());
    if (shown) {
        page->insertWidget(arrowPosition, ui.arrowLbl);
        page->insertWidget(fieldsPosition, ui.proxySettings);
    } else {
        page->removeWidget(ui.arrowLbl);
        page->removeWidget(ui.proxySettings);
    }
    ui.arrowLbl->setVisible(shown);
    ui.proxySettings->setVisible(shown);
}

bool ProxyForm::isOn() const
{
    return ui.proxyChoice->isChecked();
}

QStringList ProxyForm::texts() const
{
    return {ui.proxyHost->text(), ui.proxyPort->text(), ui.proxyLogin->text(),
            ui.proxyPassword->text()};
}

void ProxyForm::set(bool isOn, const QStringList &texts)
{
    QRadioButton *choice = isOn ? ui.proxyChoice : ui.defaultChoice;
    choice->setChecked(true);
    int field = 0;
    for (QLineEdit *edit : {ui.proxyHost, ui.proxyPort, ui.proxyLogin, ui.proxyPassword})
        edit->setText(texts.value(field++));
}

App::ProxySettings ProxyForm::settings() const
{
    App::ProxySettings settings;
    settings.isOn = isOn();
    settings.host = ui.proxyHost->text();
    settings.port = ui.proxyPort->text().toInt();
    settings.userName = ui.proxyLogin->text();
    settings.password = ui.proxyPassword->text();
    return settings;
}

void ProxyForm::setSettings(const App::ProxySettings &settings)
{
    QStringList texts;
    if (settings.isOn) {
        texts << settings.host << QString::number(settings.port) << settings.userName
              << settings.password;
    }
    set(settings.isOn, texts);
}

} // namespace GUI
} // namespace ZorvaneClient
