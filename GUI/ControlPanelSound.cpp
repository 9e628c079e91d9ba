// SPDX-License-Identifier: MIT
// The volume, and the switch of the sound, which is the enabled state of the slider.
#include "GUI/ControlPanel.h"

#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "GUI/SharedTexts.h"
#include "GUI/StyleSheet.h"
#include "ui_ControlPanel.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int defaultVolume = 50;
constexpr int highVolumeLimit = 49;

const QString muteWord = QStringLiteral("mute");

/// What the style sheet has a picture for.
QString volumeWord(bool isOn, int volume)
{
    if (!isOn)
        return muteWord;
    if (volume == 0)
        return QStringLiteral("low");
    return volume > highVolumeLimit ? QStringLiteral("high") : QStringLiteral("mid");
}

} // namespace

void ControlPanel::setUpSound()
{
    ui->soundControl->installEventFilter(this);
    ui->soundSlider->setAccessibleName(SharedTexts::sound());
    const int storedVolume = App::settings().value(App::SettingsKey::volume, defaultVolume).toInt();
    const bool soundOn = App::settings().value(App::SettingsKey::soundOn, true).toBool();
    setSoundVolume(storedVolume);
    enableSound(soundOn);
    setShown(ui->soundSlider, false);
}

int ControlPanel::volume() const
{
    return ui->soundSlider->value();
}

bool ControlPanel::isSoundEnabled() const
{
    return ui->soundButton->property("volume").toString() != muteWord;
}

void ControlPanel::setSoundVolume(int volume)
{
    if (ui->soundSlider->value() != volume)
        ui->soundSlider->setValue(volume);
    updateVolumeButton();
}

void ControlPanel::enableSound(bool enable)
{
    if (ui->soundSlider->isEnabled() != enable)
        ui->soundSlider->setEnabled(enable);
    updateVolumeButton();
}

void ControlPanel::showSoundSlider()
{
    setShown(ui->soundSlider, true);
}

void ControlPanel::hideSoundSlider()
{
    setShown(ui->soundSlider, false);
}

void ControlPanel::on_soundSlider_valueChanged(int value)
{
    App::settings().setValue(App::SettingsKey::volume, value);
    emit soundVolumeChanged(value);
}

void ControlPanel::on_soundButton_clicked()
{
    const bool enable = !isSoundEnabled();
    App::settings().setValue(App::SettingsKey::soundOn, enable);
    emit soundEnabled(enable);
}

void ControlPanel::updateVolumeButton()
{
    const bool isOn = ui->soundSlider->isEnabled();
    setStyleProperty(ui->soundButton, "volume", volumeWord(isOn, ui->soundSlider->value()));
}

} // namespace GUI
} // namespace ZorvaneClient
