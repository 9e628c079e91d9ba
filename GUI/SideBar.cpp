// SPDX-License-Identifier: MIT
#include "GUI/SideBar.h"

#include <QGraphicsDropShadowEffect>
#include <QToolButton>

#include "ui_SideBar.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr qreal shadowDownPixels = 1;
constexpr qreal shadowBlurPixels = 5;
const QColor shadowColour(208, 212, 218, 255);

} // namespace

SideBar::SideBar(QWidget *parent) : QWidget(parent), ui(new Ui::SideBar)
{
    ui->setupUi(this);
    connect(ui->hideRosterButton, &QPushButton::clicked, this, &SideBar::hideRequest);
    connect(ui->searchEdit, &QLineEdit::textChanged, ui->rosterWidget, &RosterWidget::search);
    connect(ui->searchEdit, &QLineEdit::textChanged, ui->layoutListWidget,
            &LayoutListWidget::search);
    connect(ui->settingsWidget, &SettingsWidget::signout, this, &SideBar::signout);

    auto *shadow = new QGraphicsDropShadowEffect(ui->searchEdit);
    shadow->setOffset(0, shadowDownPixels);
    shadow->setColor(shadowColour);
    shadow->setBlurRadius(shadowBlurPixels);
    ui->searchEdit->setGraphicsEffect(shadow);
    if (auto *clearButton = ui->searchEdit->findChild<QToolButton *>())
        clearButton->setAccessibleName(tr("Clear the search"));
    setRosterMode();
}

SideBar::~SideBar() = default;

RosterWidget *SideBar::rosterWidget() const
{
    return ui->rosterWidget;
}

LayoutListWidget *SideBar::layoutListWidget() const
{
    return ui->layoutListWidget;
}

SettingsWidget *SideBar::settingsWidget() const
{
    return ui->settingsWidget;
}

void SideBar::startSearch()
{
    ui->searchEdit->setFocus(Qt::ShortcutFocusReason);
    ui->searchEdit->selectAll();
}

// The catalogue has these two texts under QObject.

void SideBar::setRosterMode()
{
    showList(ui->rosterPage, QObject::tr("Search for cameras..."));
}

void SideBar::setLayoutsMode()
{
    showList(ui->layoutsListPage, QObject::tr("Search for layouts..."));
}

void SideBar::setSettingsMode()
{
    ui->stack->setCurrentWidget(ui->settingsPage);
    ui->headerStack->setCurrentWidget(ui->settingsHeader);
}

void SideBar::showList(QWidget *page, const QString &searchText)
{
    ui->stack->setCurrentWidget(page);
    ui->headerStack->setCurrentWidget(ui->searchPage);
    ui->searchEdit->setPlaceholderText(searchText);
    ui->searchEdit->setAccessibleName(searchText);
}

} // namespace GUI
} // namespace ZorvaneClient
