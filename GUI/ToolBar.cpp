// SPDX-License-Identifier: MIT
#include "GUI/ToolBar.h"

#include "GUI/ServiceSign.h"
#include "GUI/StyleBackground.h"
#include "ui_ToolBar.h"

namespace ZorvaneClient {
namespace GUI {

ToolBar::ToolBar(QWidget *parent) : QWidget(parent), ui(new Ui::ToolBar)
{
    ui->setupUi(this);
    ui->verticalLayout->insertWidget(ui->verticalLayout->indexOf(ui->settingsButton),
                                     new ServiceSign(this));
    connect(ui->rosterButton, &QPushButton::clicked, this, &ToolBar::liveClicked);
    connect(ui->layoutsButton, &QPushButton::clicked, this, &ToolBar::layoutsClicked);
    connect(ui->settingsButton, &QPushButton::clicked, this, &ToolBar::settingsClicked);
}

ToolBar::~ToolBar() = default;

void ToolBar::setRosterMode()
{
    ui->rosterButton->setChecked(true);
}

void ToolBar::setLayoutsMode()
{
    ui->layoutsButton->setChecked(true);
}

void ToolBar::setSettingsMode()
{
    ui->settingsButton->setChecked(true);
}

void ToolBar::paintEvent(QPaintEvent *)
{
    drawStyleBackground(*this);
}

} // namespace GUI
} // namespace ZorvaneClient
