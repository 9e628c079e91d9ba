// SPDX-License-Identifier: MIT
#include "GUI/SettingsWidget.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QDebug>
#include <QPointer>

#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "App/Application.h"
#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "GUI/IconButton.h"
#include "GUI/LocalServerDialog.h"
#include "GUI/Question.h"
#include "GUI/VersionOrder.h"
#include "ui_SettingsWidget.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int englishIndex = 0;
constexpr int russianIndex = 1;
constexpr int spinnerLinePixels = 2;

} // namespace

SettingsWidget::SettingsWidget(QWidget *parent) : QWidget(parent), ui(new Ui::SettingsWidget)
{
    ui->setupUi(this);
    ui->emailLabel->setText(App::settings().value(App::SettingsKey::email).toString());
    ui->versionLabel->setText(QCoreApplication::applicationVersion());
    const auto *application = App::application();
    const bool isRussian = application && application->language() == QLatin1String("ru");
    ui->languageBox->setCurrentIndex(isRussian ? russianIndex : englishIndex);
    ui->languageBox->view()->setAccessibleName(ui->languageBox->accessibleName());
    ui->restartNotice->hide();
    ui->restartButton->hide();
    connectApplication();
    ui->spinnerWidget->setLineWidth(spinnerLinePixels);
    ui->spinnerWidget->setColor(Qt::gray);
    checkForUpdates();
}

SettingsWidget::~SettingsWidget() = default;

void SettingsWidget::connectApplication()
{
    using App::Application;
    const Application *application = App::application();
    if (!application)
        return;
    connect(ui->restartButton, &QPushButton::clicked, application, &Application::restart);
    connect(ui->downloadButton, &QPushButton::clicked, application,
            &Application::openDownloadsPage);
}

void SettingsWidget::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    checkForUpdates();
}

void SettingsWidget::checkForUpdates()
{
    ui->updatesStack->setCurrentWidget(ui->updatesCheckPage);
    ui->spinnerWidget->start();
    // A handle whose check fails stays as long as the page.
    auto *client = new API::CloudAPIClient(this);
    connect(client, &API::CloudAPIClient::updatesError, this,
            [this] { endCheck(ui->updatesErrorPage); });
    connect(client, &API::CloudAPIClient::updatesFound, this, &SettingsWidget::onUpdatesFound);
    connect(client, &API::CloudAPIClient::updatesFound, client, &QObject::deleteLater);
    client->checkForUpdates();
}

void SettingsWidget::endCheck(QWidget *resultPage)
{
    ui->spinnerWidget->stop();
    ui->updatesStack->setCurrentWidget(resultPage);
}

void SettingsWidget::onUpdatesFound(const QString &version)
{
    const QString current = plainVersion(QCoreApplication::applicationVersion());
    qDebug() << "Updates: version from API:" << version << "current version:" << current;
    if (!isNewerVersion(version, current)) {
        endCheck(ui->updatesNotFoundPage);
        return;
    }
    endCheck(ui->updatesFoundPage);
    offerUpdate(version);
}

void SettingsWidget::offerUpdate(const QString &version)
{
    const QString name = QCoreApplication::applicationName();
    Question question;
    question.text = tr("A new version of %1 is available!").arg(name);
    question.details =
        tr("%1 %2 version is available. Would you like to download it now?").arg(name, version);
    auto *application = App::application();
    if (ask(question, this) == QMessageBox::Ok && application)
        application->openDownloadsPage();
}

void SettingsWidget::on_languageBox_currentIndexChanged(int index)
{
    auto *application = App::application();
    if (application && index == englishIndex)
        application->translate(QStringLiteral("en"));
    else if (application && index == russianIndex)
        application->translate(QStringLiteral("ru"));
    ui->restartNotice->show();
    ui->restartButton->show();
}

void SettingsWidget::on_addServerButton_clicked()
{
    const API::LocalServerPtr server = LocalServerDialog::addServer(this);
    if (!server)
        return;
    API::CloudAPIClient().addLocalServer(server);
    emit serverAdded();
}

void SettingsWidget::on_signoutButton_clicked()
{
    Question question;
    question.text = tr("Are you sure you want to log out?");
    question.defaultButton = QMessageBox::Cancel;
    if (ask(question, this) == QMessageBox::Ok)
        emit signout();
}

void SettingsWidget::editServer(API::ServerPtr server)
{
    const auto localServer = server.dynamicCast<API::LocalServer>();
    if (!localServer) {
        qWarning() << "Settings called on non-local server";
        return;
    }
    const QPointer<SettingsWidget> self(this);
    LocalServerDialog::editServer(localServer, this);
    API::CloudAPIClient().saveLocalRoster();
    localServer->update();
    if (self)
        emit serverAdded();
}

} // namespace GUI
} // namespace ZorvaneClient
