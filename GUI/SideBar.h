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
class SettingsWidget;

/// The panel at the left edge: the roster, the layout list or the settings. The first two have
/// one search field above them, whose text stays when the page changes.
class SideBar : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(SideBar)

public:
    explicit SideBar(QWidget *parent = nullptr);
    ~SideBar() override;

    RosterWidget *rosterWidget() const;
    LayoutListWidget *layoutListWidget() const;
    SettingsWidget *settingsWidget() const;
    /// The next keys are for the search field, in place of what it has.
    void startSearch();

signals:
    void hideRequest();
    void signout();

public slots:
    void setRosterMode();
    void setLayoutsMode();
    void setSettingsMode();

private:
    /// A page with the search field above it.
    void showList(QWidget *page, const QString &searchText);

    QScopedPointer<Ui::SideBar> ui;
};

} // namespace GUI
} // namespace ZorvaneClient
