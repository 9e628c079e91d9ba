// SPDX-License-Identifier: MIT
#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class SideBar;
}

namespace ZorvaneClient {
namespace GUI {

class LayoutListWidget;
class RosterWidget;

/// The panel at the left edge: the roster or the layout list, with one search field for both
/// above them. The text of the search stays when the page changes.
class SideBar : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(SideBar)

public:
    explicit SideBar(QWidget *parent = nullptr);
    ~SideBar() override;

    RosterWidget *rosterWidget() const;
    LayoutListWidget *layoutListWidget() const;

signals:
    void hideRequest();

public slots:
    void setRosterMode();
    void setLayoutsMode();

private:
    void showSearchText(const QString &text);

    QScopedPointer<Ui::SideBar> ui;
};

} // namespace GUI
} // namespace ZorvaneClient
