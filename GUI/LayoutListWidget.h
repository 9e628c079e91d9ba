// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QScopedPointer>
#include <QWidget>

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
    /// In the order of the cards, those that a search hides too.
    QList<API::LayoutPtr> layouts() const;
    /// The next one behind `layout`, or with a step of -1 before it, round the list; of one that
    /// has no card, the first or the last. Null if there is none.
    API::LayoutPtr neighbour(const API::LayoutPtr &layout, int step) const;

public slots:
    void updateLayouts();
    void updateLayouts(API::LayoutsContainer layouts);
    void addLayout(API::LayoutPtr newLayout);
    /// To the cache file first, then to the service.
    void saveLayouts();
    void deleteLayout(API::LayoutPtr layout);
    /// Shows the cards whose name contains `name`, whatever the case.
    void search(QString name);

signals:
    void openLayout(API::LayoutPtr layout);
    void openInNewWindow(API::LayoutPtr layout);
    void addLayoutButtonClicked();

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
};

} // namespace GUI
} // namespace ZorvaneClient
