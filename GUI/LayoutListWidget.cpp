// SPDX-License-Identifier: MIT
#include "GUI/LayoutListWidget.h"

#include <QVBoxLayout>

#include <algorithm>
#include <chrono>

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "GUI/LayoutCard.h"
#include "GUI/Retire.h"
#include "GUI/SharedTexts.h"
#include "GUI/TourButton.h"
#include "GUI/WidgetOrder.h"
#include "ui_LayoutListWidget.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr std::chrono::milliseconds pollInterval{5000};
constexpr int cardSpacingPixels = 10;
constexpr int stretchFactor = 10;

} // namespace

LayoutListWidget::LayoutListWidget(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui::LayoutListWidget)
    , client(new API::CloudAPIClient(this))
    , tourButton(new TourButton)
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("layoutListWidget"));
    ui->scrollArea->setAccessibleName(SharedTexts::layouts());
    cardsLayout = new QVBoxLayout(ui->scrollContent);
    cardsLayout->setSizeConstraint(QLayout::SetMinimumSize);
    cardsLayout->setContentsMargins(0, 0, 0, 0);
    cardsLayout->setSpacing(cardSpacingPixels);

    connect(client, &API::CloudAPIClient::layoutsUpdated, this,
            QOverload<>::of(&LayoutListWidget::updateLayouts));
    connect(client, &API::CloudAPIClient::rosterUpdated, client,
            &API::CloudAPIClient::updateLayouts);
    client->updateRoster();
    connect(ui->addLayoutButton, &QPushButton::clicked, this,
            &LayoutListWidget::addLayoutButtonClicked);
    ui->headerRow->addWidget(tourButton);
    connect(tourButton, &TourButton::chosen, this, &LayoutListWidget::tourChosen);
    startTimer(pollInterval, Qt::CoarseTimer);
}

LayoutListWidget::~LayoutListWidget() = default;

bool LayoutListWidget::hasLayout(const API::LayoutPtr &layout) const
{
    return cards.contains(layout);
}

void LayoutListWidget::showTour(bool isOn, int seconds)
{
    tourButton->showTour(isOn, seconds);
}

void LayoutListWidget::timerEvent(QTimerEvent *)
{
    client->updateLayouts();
}

void LayoutListWidget::updateLayouts()
{
    updateLayouts(client->layoutList());
}

void LayoutListWidget::updateLayouts(API::LayoutsContainer layouts)
{
    removeStaleCards(layouts);
    for (const API::LayoutPtr &layout : qAsConst(layouts)) {
        if (LayoutCard *card = cards.value(layout, nullptr))
            card->setLayoutInfo(layout);
        else
            cards.insert(layout, createCard(layout));
    }
    arrangeCards(layouts);
    search(searchText);
    markOpen(openId);
    emit listed();
}

void LayoutListWidget::markOpen(const QString &layoutId)
{
    openId = layoutId;
    for (auto entry = cards.cbegin(); entry != cards.cend(); ++entry)
        entry.value()->setOpen(entry.key()->id() == openId);
}

void LayoutListWidget::removeStaleCards(const API::LayoutsContainer &layouts)
{
    const QList<API::LayoutPtr> present = layouts.values();
    const QList<API::LayoutPtr> known = cards.keys();
    for (const API::LayoutPtr &layout : known) {
        if (!present.contains(layout))
            retire(cards.take(layout));
    }
}

LayoutCard *LayoutListWidget::createCard(const API::LayoutPtr &layout)
{
    auto *card = new LayoutCard(layout);
    connect(card, &LayoutCard::openLayout, this, &LayoutListWidget::openLayout);
    connect(card, &LayoutCard::openInNewWindow, this, &LayoutListWidget::openInNewWindow);
    connect(card, &LayoutCard::layoutDeleted, this, &LayoutListWidget::deleteLayout);
    return card;
}

QList<API::LayoutPtr> LayoutListWidget::layouts() const
{
    return order;
}

void LayoutListWidget::arrangeCards(const API::LayoutsContainer &layouts)
{
    order = layouts.values();
    std::stable_sort(order.begin(), order.end(),
                     [](const auto &a, const auto &b) { return a->name() < b->name(); });
    QList<QWidget *> widgets;
    for (const API::LayoutPtr &layout : qAsConst(order))
        widgets.append(cards.value(layout));
    setWidgetOrder(cardsLayout, widgets, stretchFactor);
}

void LayoutListWidget::addLayout(API::LayoutPtr newLayout)
{
    client->addLayout(newLayout);
}

void LayoutListWidget::saveLayouts()
{
    client->saveLayoutsToFile();
    client->saveLayoutsToAPI();
}

void LayoutListWidget::deleteLayout(API::LayoutPtr layout)
{
    client->deleteLayout(layout);
    saveLayouts();
}

void LayoutListWidget::search(QString name)
{
    searchText = name;
    for (auto entry = cards.cbegin(); entry != cards.cend(); ++entry) {
        const bool matches = entry.key()->name().contains(name, Qt::CaseInsensitive);
        entry.value()->setVisible(matches);
    }
}

} // namespace GUI
} // namespace ZorvaneClient
