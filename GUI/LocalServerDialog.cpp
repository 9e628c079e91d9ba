// SPDX-License-Identifier: MIT
#include "GUI/LocalServerDialog.h"

#include <QPointer>

#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "GUI/IconButton.h"
#include "ui_LocalServerDialog.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

const QString localHostAddress = QStringLiteral("127.0.0.1");

/// Shows `dialog` until the user is done. An accepted one can be read until the event loop runs.
bool isAccepted(const QPointer<LocalServerDialog> &dialog)
{
    const int result = dialog->exec();
    // Its parent can go meanwhile, and takes it along.
    if (!dialog)
        return false;
    dialog->deleteLater();
    return result == QDialog::Accepted;
}

} // namespace

API::LocalServerPtr LocalServerDialog::addServer(QWidget *parent)
{
    const QPointer<LocalServerDialog> dialog = new LocalServerDialog(parent);
    dialog->setWindowTitle(tr("Add a local videoserver"));
    if (!isAccepted(dialog))
        return API::LocalServerPtr();
    return API::LocalServerPtr::create(dialog->name(), dialog->host(), dialog->port(),
                                       dialog->password());
}

void LocalServerDialog::editServer(API::LocalServerPtr server, QWidget *parent)
{
    if (!server)
        return;
    const QPointer<LocalServerDialog> dialog = new LocalServerDialog(parent);
    dialog->setWindowTitle(tr("Edit a local videoserver"));
    dialog->fill(*server);
    if (!isAccepted(dialog))
        return;
    API::CloudAPIClient().editLocalServer(server, dialog->name(), dialog->host(), dialog->port(),
                                          dialog->password());
}

LocalServerDialog::LocalServerDialog(QWidget *parent)
    : QDialog(parent), ui(new Ui::LocalServerDialog)
{
    ui->setupUi(this);
    showTextButtons(*this);
    focusFirstField();
}

LocalServerDialog::~LocalServerDialog() = default;

void LocalServerDialog::fill(const API::LocalServer &server)
{
    ui->name->setText(server.alias());
    ui->ipAddress->setText(server.host());
    if (server.host() == localHostAddress)
        ui->localhost->setChecked(true);
    else
        ui->foreignHost->setChecked(true);
    ui->port->setText(QString::number(server.port()));
    ui->password->setText(server.password());
    focusFirstField();
}

void LocalServerDialog::focusFirstField()
{
    QLineEdit *field = ui->ipAddress->isEnabled() ? ui->ipAddress : ui->port;
    field->setFocus();
    field->selectAll();
}

QString LocalServerDialog::name() const
{
    return ui->name->text();
}

QString LocalServerDialog::host() const
{
    return ui->foreignHost->isChecked() ? ui->ipAddress->text() : localHostAddress;
}

int LocalServerDialog::port() const
{
    return ui->port->text().toInt();
}

QString LocalServerDialog::password() const
{
    return ui->password->text();
}

void LocalServerDialog::on_buttonBox_accepted()
{
    accept();
}

void LocalServerDialog::on_buttonBox_rejected()
{
    reject();
}

void LocalServerDialog::on_foreignHost_toggled(bool checked)
{
    ui->ipAddress->setEnabled(checked);
}

void LocalServerDialog::on_showPassword_toggled(bool checked)
{
    ui->password->setEchoMode(checked ? QLineEdit::Normal : QLineEdit::Password);
}

} // namespace GUI
} // namespace ZorvaneClient
