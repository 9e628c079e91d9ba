// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QScopedPointer>
#include <QWidget>

#include "API/Layout.h" // Qt 6 wants it whole for a slot that takes a map of its handles
#include "API/Types.h"

class QVBoxLayout;

namespace Ui {
class LayoutListWidget;
}

namespace ZorvaneClient {

namespace API {
class CloudAPIClient;
}

namespace GUI {

class LayoutCard;
class TourButton;

/// The page of the side bar that lists the saved layouts, each as a card. Asks the service
/// for layouts as long as it exists.
class LayoutListWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(LayoutListWidget)

public:
    explicit LayoutListWidget(QWidget *parent = nullptr);
    ~LayoutListWidget() override;

    /// True if `layout`, the object itself, has a card.
    bool hasLayout(const API::LayoutPtr &layout) const;
    /// Marks the card of the layout with this identifier and no other, one that comes later too.
    void markOpen(const QString &layoutId);
    /// In the order of the cards, those that a search hides too.
    QList<API::LayoutPtr> layouts() const;

public slots:
    void updateLayouts();
    void updateLayouts(API::LayoutsContainer layouts);
    void addLayout(API::LayoutPtr newLayout);
    /// To the cache file first, then to the service.
    void saveLayouts();
    void deleteLayout(API::LayoutPtr layout);
    /// Shows the cards whose name contains `name`, whatever the case.
    void search(QString name);
    /// Shows whether the layouts are opened in turn.
    void showTour(bool isOn, int seconds);

signals:
    void openLayout(API::LayoutPtr layout);
    void openInNewWindow(API::LayoutPtr layout);
    void addLayoutButtonClicked();
    /// The layouts are to be opened in turn, one every so many seconds; no more, if that is 0.
    void tourChosen(int seconds);
    /// The list is as the service or the cache has it.
    void listed();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void removeStaleCards(const API::LayoutsContainer &layouts);
    LayoutCard *createCard(const API::LayoutPtr &layout);
    void arrangeCards(const API::LayoutsContainer &layouts);

    QScopedPointer<Ui::LayoutListWidget> ui;
    QMap<API::LayoutPtr, LayoutCard *> cards;
    QList<API::LayoutPtr> order;
    QVBoxLayout *cardsLayout = nullptr;
    API::CloudAPIClient *client = nullptr;
    QString searchText;
    QString openId;
    TourButton *tourButton;
};

} // namespace GUI
} // namespace ZorvaneClient
