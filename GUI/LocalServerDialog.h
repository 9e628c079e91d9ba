// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QScopedPointer>

#include "API/Types.h"

namespace Ui {
class LocalServerDialog;
}

namespace ZorvaneClient {
namespace GUI {

/// Asks for name, address and password of a LAN server. What is typed is taken unchecked; a
/// port that is no number is 0.
class LocalServerDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(LocalServerDialog)

public:
    /// A server that is in no roster yet; null if the user cancels.
    static API::LocalServerPtr addServer(QWidget *parent);
    /// Changes and saves `server` unless the user cancels.
    static void editServer(API::LocalServerPtr server, QWidget *parent);
    ~LocalServerDialog() override;

private slots:
    void on_buttonBox_accepted();
    void on_buttonBox_rejected();
    void on_foreignHost_toggled(bool checked);
    void on_showPassword_toggled(bool checked);

private:
    explicit LocalServerDialog(QWidget *parent);
    void fill(const API::LocalServer &server);
    /// What is typed goes into the first field that takes it.
    void focusFirstField();
    QString name() const;
    QString host() const;
    int port() const;
    QString password() const;

    QScopedPointer<Ui::LocalServerDialog> ui;
};

} // namespace GUI
} // namespace ZorvaneClient
