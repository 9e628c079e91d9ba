// SPDX-License-Identifier: MIT
#include "GUI/ToolBar.h"

#include <QPainter>
#include <QStyleOption>

#include "ui_ToolBar.h"

namespace ZorvaneClient {
namespace GUI {

ToolBar::ToolBar(QWidget *parent) : QWidget(parent), ui(new Ui::ToolBar)
{
    ui->setupUi(this);
    connect(ui->rosterButton, &QPushButton::clicked, this, &ToolBar::liveClicked);
    connect(ui->layoutsButton, &QPushButton::clicked, this, &ToolBar::layoutsClicked);
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

void ToolBar::paintEvent(QPaintEvent *)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

} // namespace GUI
} // namespace ZorvaneClient
