// SPDX-License-Identifier: MIT
// The buttons of the bar under keys.
#include "GUI/ControlPanel.h"

#include "ui_ControlPanel.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// The bar as a whole may be hidden.
void pressShown(const QWidget *bar, std::initializer_list<QPushButton *> buttons)
{
    for (QPushButton *button : buttons) {
        if (button->isVisibleTo(bar)) {
            button->click();
            return;
        }
    }
}

} // namespace

void ControlPanel::pressPause()
{
    pressShown(this, {ui->pauseButton, ui->playButton});
}

void ControlPanel::pressRecords()
{
    pressShown(this, {ui->showRecordsButton, ui->hideRecordsButton});
}

void ControlPanel::pressSound()
{
    pressShown(this, {ui->soundButton});
}

void ControlPanel::stepSpeed(int steps)
{
    const QSlider *slider = ui->speedSlider;
    ui->speedSlider->setValue(slider->value() + steps);
    ui->speedLabel->setVisible(!slider->isHidden() || slider->value() > slider->minimum());
}

} // namespace GUI
} // namespace ZorvaneClient
