// SPDX-License-Identifier: MIT
#pragma once

#include <QScopedPointer>
#include <QWidget>

#include "API/Types.h"

namespace Ui {
class SettingsWidget;
}

namespace ZorvaneClient {
namespace GUI {

/// The settings page of a window: account, language, version and LAN servers. When it is
/// made and each time it is shown it asks the service for a newer version, and offers what it
/// finds in a box.
class SettingsWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(SettingsWidget)

public:
    explicit SettingsWidget(QWidget *parent = nullptr);
    ~SettingsWidget() override;

signals:
    /// The LAN servers have changed, or their state may have.
    void serverAdded();
    /// The user wants to sign out and has confirmed it.
    void signout();

public slots:
    /// Lets the user change `server`, which has to be a LAN server. A cancelled edit, too,
    /// saves the LAN servers, asks `server` for its state and emits serverAdded().
    void editServer(API::ServerPtr server);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void on_languageBox_currentIndexChanged(int index);
    void on_addServerButton_clicked();
    void on_signoutButton_clicked();

private:
    void connectApplication();
    void checkForUpdates();
    void endCheck(QWidget *resultPage);
    void onUpdatesFound(const QString &version);
    void offerUpdate(const QString &version);

    QScopedPointer<Ui::SettingsWidget> ui;
};

} // namespace GUI
} // namespace ZorvaneClient
