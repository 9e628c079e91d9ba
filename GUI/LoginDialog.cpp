// SPDX-License-Identifier: MIT
#include "GUI/LoginDialog.h"

#include <QDebug>
#include <QDesktopServices>
#include <QGraphicsOpacityEffect>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QScreen>
#include <QSequentialAnimationGroup>
#include <QShowEvent>
#include <QUrl>

#include "API/CloudAPIClient.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"
#include "GUI/CloudToolTip.h"
#include "GUI/IconPixmap.h"
#include "GUI/TippedButton.h"
#include "ui_Login.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int windowWidth = 440;
constexpr int alertBarHeight = 38;
constexpr int signInHeight = 413;
constexpr int signInHeightWithAlert = signInHeight + alertBarHeight;
constexpr int settingsHeight = 365;
constexpr int settingsHeightWithProxy = 535;

constexpr int signInPageIndex = 0;
constexpr int settingsPageIndex = 1;

constexpr int gearPosition = 2;
constexpr int tipPosition = 1;
constexpr int arrowPosition = 2;
constexpr int proxySettingsPosition = 3;

constexpr int slideMs = 200;
constexpr int resizeMs = 100;
constexpr int fadeMs = 100;
constexpr double dimOpacity = 0.5;
constexpr double fullOpacity = 1;

constexpr int proxyFieldCount = 4;

// Through the widget's own sheet, since the sheets above it overrule QWidget::setFont().
void setBold(QWidget *widget, bool bold)
{
    widget->setStyleSheet(bold ? QStringLiteral("font-weight: bold")
                               : QStringLiteral("font-weight: normal"));
}

void setPlaceholderColor(QWidget *field)
{
    QPalette palette = field->palette();
    palette.setColor(QPalette::PlaceholderText, QColor(108, 118, 136));
    field->setPalette(palette);
}

void addTip(QWidget *row, const QString &text)
{
    auto *tip = new TippedIcon(QStringLiteral(":/login/icons/tip.png"), text, row);
    tip->setHoverPixmap(QStringLiteral(":/login/icons/tip_hover.png"));
    qobject_cast<QBoxLayout *>(row->layout())->insertWidget(tipPosition, tip);
}

void openPage(const QString &pathAndQuery)
{
    QDesktopServices::openUrl(QUrl(QLatin1String("http://") +
                                   App::ServiceProfile::current().redirectorHost + pathAndQuery));
}

} // namespace

LoginDialog::LoginDialog(QWidget *parent)
    : QStackedWidget(parent), ui(new Ui::Login), client(new API::CloudAPIClient)
{
    ui->setupUi(this);
    showPictures();
    setWindowTitle(QCoreApplication::applicationName());
    // The pages have different heights; the taller one must not hold the window open.
    layout()->setSizeConstraint(QLayout::SetNoConstraint);
    setFixedWidth(windowWidth);
    move(QGuiApplication::primaryScreen()->availableGeometry().center() - rect().center());

    opacityEffect = new QGraphicsOpacityEffect(ui->signInButton);
    ui->signInButton->setGraphicsEffect(opacityEffect);
    setPlaceholderColor(ui->emailLn);
    setPlaceholderColor(ui->passwordLn);
    createSettingsButton();
    connect(ui->settingsPBtn2, &QPushButton::clicked, this, &LoginDialog::settingClicked);
    connect(ui->emailLn, &QLineEdit::textChanged, this, &LoginDialog::setLoginButtonState);
    connect(ui->passwordLn, &QLineEdit::textChanged, this, &LoginDialog::setLoginButtonState);
    setLoginButtonState();

    createTips();
    ui->settingsPage->resize(windowWidth, settingsHeight);
    loadProxySettings();
    if (ui->proxyChoice->isChecked())
        showUsesProxyAlert();
    else
        closeAlertBar();
    setCurrentIndex(signInPageIndex);
    ui->topBarWgt->setFocus();

    ui->signInButton->installEventFilter(this);
    ui->passwordLn->installEventFilter(this);
    connect(client, &API::CloudAPIClient::loginSuccess, this, &LoginDialog::onLoginSuccessful);
    connect(client, &API::CloudAPIClient::loginFailed, this, &LoginDialog::showWrongEmailPassAlert);
    ui->localModeBox->hide();
}

LoginDialog::~LoginDialog()
{
    delete client;
}

void LoginDialog::showPictures()
{
    const QPixmap info = iconPixmap(QStringLiteral(":/login/icons/info.png"));
    ui->warnIconLbl->setPixmap(iconPixmap(QStringLiteral(":/login/icons/warn.png")));
    ui->noInternetIconLbl->setPixmap(info);
    ui->usesProxyIconLbl->setPixmap(info);
    ui->brandLbl->setPixmap(iconPixmap(QStringLiteral(":/login/icons/logo.png")));
    ui->arrowLbl->setPixmap(iconPixmap(QStringLiteral(":/login/icons/arrow_line.png")));
}

void LoginDialog::createSettingsButton()
{
    settingsButton = new TippedButton(QStringLiteral(":/login/icons/settings.png"),
                                      tr("Change your account settings"), ui->topBarWgt);
    settingsButton->setHoverPixmap(QStringLiteral(":/login/icons/settings_hover.png"));
    settingsButton->setObjectName(QStringLiteral("settingsButton"));
    qobject_cast<QBoxLayout *>(ui->topBarWgt->layout())->insertWidget(gearPosition, settingsButton);
    QWidget::setTabOrder(ui->signUpButton, settingsButton);
    connect(settingsButton, &TippedButton::clicked, this, &LoginDialog::settingClicked);
}

void LoginDialog::createTips()
{
    addTip(ui->normalLoginBox, tr("Sign in using your Zorvane Cloud account."));
    addTip(ui->localModeBox,
           tr("Watch video feeds from Zorvane Servers over LAN without using an Zorvane account. "
              "Doesn't require internet connection."));
    addTip(ui->proxyBox, tr("Use with Zorvane Cloud account in case internet is accessible only "
                            "via proxy in your network."));
}

void LoginDialog::loadProxySettings()
{
    hideProxyFields();
    const App::Settings &settings = App::settings();
    if (!settings.value(QStringLiteral("proxy/useProxy"), false).toBool()) {
        ui->defaultChoice->setChecked(true);
        return;
    }
    ui->proxyChoice->setChecked(true);
    setProxyFields({settings.value(QStringLiteral("proxy/host")).toString(),
                    settings.value(QStringLiteral("proxy/port")).toString(),
                    settings.value(QStringLiteral("proxy/username")).toString(),
                    settings.value(QStringLiteral("proxy/password")).toString()});
}

void LoginDialog::storeSettings() const
{
    App::Settings &settings = App::settings();
    const bool remember = !ui->forgetBox->isChecked();
    settings.setValue(QStringLiteral("auth/email"), ui->emailLn->text());
    settings.setValue(QStringLiteral("auth/saveAuth"), remember);
    if (remember) {
        qDebug() << "Saving auth to" << settings.fileName();
        settings.setValue(QStringLiteral("auth/password"), ui->passwordLn->text());
    }

    const bool useProxy = ui->proxyChoice->isChecked();
    settings.setValue(QStringLiteral("proxy/useProxy"), useProxy);
    if (useProxy) {
        settings.setValue(QStringLiteral("proxy/host"), ui->proxyHost->text());
        settings.setValue(QStringLiteral("proxy/port"), ui->proxyPort->text().toInt());
        settings.setValue(QStringLiteral("proxy/username"), ui->proxyLogin->text());
        settings.setValue(QStringLiteral("proxy/password"), ui->proxyPassword->text());
    }
}

void LoginDialog::showEvent(QShowEvent *event)
{
    // A window that only comes back from the task bar keeps what was typed.
    if (!event->spontaneous())
        fillInAccount();
    QStackedWidget::showEvent(event);
}

void LoginDialog::fillInAccount()
{
    const App::Settings &settings = App::settings();
    qDebug() << "Loading settings from " << settings.fileName();
    ui->emailLn->setText(settings.value(QStringLiteral("auth/email")).toString());
    ui->passwordLn->setText(QString());
    if (ui->emailLn->text().isEmpty()) {
        ui->emailLn->setFocus();
        return;
    }
    const bool remembered = settings.value(QStringLiteral("auth/saveAuth"), false).toBool();
    const QString password = settings.value(QStringLiteral("auth/password")).toString();
    if (!remembered || password.isEmpty()) {
        ui->passwordLn->setFocus();
        return;
    }
    ui->passwordLn->setText(password);
    ui->forgetBox->setChecked(false);
    on_signInButton_clicked();
}

bool LoginDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QStackedWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return QStackedWidget::eventFilter(watched, event);

    if (currentIndex() != signInPageIndex)
        switchPage(signInPageIndex);
    else if (hasCredentials() && !waiting())
        on_signInButton_clicked();
    return true;
}

void LoginDialog::on_signInButton_clicked()
{
    storeSettings();
    setFormLocked(true);
    client->tryLogin(ui->emailLn->text(), ui->passwordLn->text());
}

void LoginDialog::onLoginSuccessful()
{
    setFormLocked(false);
    emit loginSuccessful();
}

void LoginDialog::setFormLocked(bool locked)
{
    if (locked) {
        closeAlertBar();
        // Otherwise the focus would go on to the next button that is not locked.
        ui->topBarWgt->setFocus();
    }
    QWidget *const widgets[] = {ui->emailLn, ui->passwordLn, ui->signInButton, ui->forgetBox,
                                settingsButton};
    for (QWidget *widget : widgets)
        widget->setEnabled(!locked);
    ui->loginButtonSWgt->setCurrentWidget(locked ? ui->waitingPage : ui->buttonPage);
    if (locked)
        ui->spinnerWidget->start();
    else
        ui->spinnerWidget->stop();
}

bool LoginDialog::waiting() const
{
    return ui->loginButtonSWgt->currentWidget() == ui->waitingPage;
}

void LoginDialog::showWrongEmailPassAlert()
{
    setFormLocked(false);
    openAlertBar(ui->wrongEmailPassWgt);
    ui->passwordLn->setFocus();
}

void LoginDialog::showNoInternetAlert()
{
    openAlertBar(ui->noInternetWgt);
}

void LoginDialog::showUsesProxyAlert()
{
    openAlertBar(ui->usesProxyWgt);
}

void LoginDialog::openAlertBar(QWidget *alert)
{
    alertShown = true;
    setFixedHeight(signInHeightWithAlert);
    ui->alertsBar->setFixedHeight(alertBarHeight);
    ui->alertsBar->setCurrentWidget(alert);
}

void LoginDialog::closeAlertBar()
{
    alertShown = false;
    ui->alertsBar->setCurrentWidget(ui->emptyWgt);
    ui->alertsBar->setFixedHeight(0);
    setFixedHeight(signInHeight);
}

bool LoginDialog::hasCredentials() const
{
    return !ui->emailLn->text().isEmpty() && !ui->passwordLn->text().isEmpty();
}

void LoginDialog::setLoginButtonState()
{
    const bool ready = hasCredentials();
    if (ready == ui->signInButton->isEnabled())
        return;
    setBold(ui->signInButton, ready);
    fadeSignInButton(ready ? dimOpacity : fullOpacity, ready ? fullOpacity : dimOpacity);
    ui->signInButton->setEnabled(ready);
}

void LoginDialog::fadeSignInButton(double from, double to)
{
    auto *fade = new QPropertyAnimation(opacityEffect, "opacity", this);
    fade->setDuration(fadeMs);
    fade->setStartValue(from);
    fade->setEndValue(to);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void LoginDialog::on_remindButton_clicked()
{
    openPage(tr("/?target=password-recover&lang=en"));
}

void LoginDialog::on_signUpButton_clicked()
{
    openPage(tr("/?target=sign_up&lang=en"));
}

void LoginDialog::settingClicked()
{
    switchPage(settingsPageIndex);
}

void LoginDialog::on_doneButton_clicked()
{
    switchPage(signInPageIndex);
}

void LoginDialog::on_cancelButton_clicked()
{
    if (savedProxyOn) {
        ui->proxyChoice->setChecked(true);
        setProxyFields(savedProxy);
    } else {
        ui->defaultChoice->setChecked(true);
        setProxyFields({});
    }
    switchPage(signInPageIndex);
}

void LoginDialog::on_proxyChoice_toggled(bool checked)
{
    if (checked == proxyShown)
        return;
    proxyShown = checked;
    if (checked) {
        setFixedHeight(settingsHeightWithProxy);
        showProxyFields();
    } else {
        hideProxyFields();
        setFixedHeight(settingsHeight);
    }
}

void LoginDialog::showProxyFields()
{
    auto *page = qobject_cast<QBoxLayout *>(ui->settingsPage->layout());
    page->insertWidget(arrowPosition, ui->arrowLbl);
    page->insertWidget(proxySettingsPosition, ui->proxySettings);
    ui->arrowLbl->show();
    ui->proxySettings->show();
}

void LoginDialog::hideProxyFields()
{
    for (QWidget *widget : {static_cast<QWidget *>(ui->arrowLbl), ui->proxySettings}) {
        ui->settingsPage->layout()->removeWidget(widget);
        widget->hide();
    }
}

QStringList LoginDialog::proxyFields() const
{
    return {ui->proxyHost->text(), ui->proxyPort->text(), ui->proxyLogin->text(),
            ui->proxyPassword->text()};
}

void LoginDialog::setProxyFields(const QStringList &values)
{
    QLineEdit *const fields[proxyFieldCount] = {ui->proxyHost, ui->proxyPort, ui->proxyLogin,
                                                ui->proxyPassword};
    for (int i = 0; i < proxyFieldCount; ++i)
        fields[i]->setText(values.value(i));
}

void LoginDialog::switchPage(int target)
{
    if (target == currentIndex() || switching)
        return;
    switching = true;
    CloudToolTip::hideTip();
    if (target > currentIndex())
        runSlide(target, -windowWidth, proxyShown ? settingsHeightWithProxy : settingsHeight);
    else
        runSlide(target, windowWidth, alertShown ? signInHeightWithAlert : signInHeight);
}

void LoginDialog::runSlide(int target, int shift, int targetHeight)
{
    QWidget *outgoing = currentWidget();
    QWidget *incoming = widget(target);
    const QPoint offset(shift, 0);
    const QPoint incomingHome = incoming->pos();
    fromPagePos = outgoing->pos();
    incoming->resize(windowWidth, qMax(height(), targetHeight));
    incoming->move(incomingHome - offset);
    incoming->show();
    incoming->raise();

    auto *slide = new QParallelAnimationGroup;
    slide->addAnimation(slideOf(outgoing, fromPagePos, fromPagePos + offset));
    slide->addAnimation(slideOf(incoming, incoming->pos(), incomingHome));
    QPropertyAnimation *resizing = resizeTo(targetHeight);

    // The window grows before a page comes in, and shrinks after it has come.
    auto *whole = new QSequentialAnimationGroup(this);
    if (targetHeight > height()) {
        whole->addAnimation(resizing);
        whole->addAnimation(slide);
    } else {
        whole->addAnimation(slide);
        whole->addAnimation(resizing);
    }
    connect(slide, &QAbstractAnimation::finished, this, &LoginDialog::screensSwitched);
    connect(resizing, &QAbstractAnimation::finished, this, &LoginDialog::windowResizeDone);
    connect(whole, &QAbstractAnimation::finished, this, &LoginDialog::animationFinished);

    setFixedHeight(QWIDGETSIZE_MAX);
    fromPage = currentIndex();
    toPage = target;
    whole->start(QAbstractAnimation::DeleteWhenStopped);
}

QPropertyAnimation *LoginDialog::slideOf(QWidget *page, QPoint from, QPoint to)
{
    auto *animation = new QPropertyAnimation(page, "pos");
    animation->setDuration(slideMs);
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->setEasingCurve(QEasingCurve::Linear);
    return animation;
}

QPropertyAnimation *LoginDialog::resizeTo(int targetHeight)
{
    auto *animation = new QPropertyAnimation(this, "size");
    animation->setDuration(resizeMs);
    animation->setStartValue(size());
    animation->setEndValue(QSize(windowWidth, targetHeight));
    animation->setEasingCurve(QEasingCurve::Linear);
    return animation;
}

void LoginDialog::screensSwitched()
{
    setCurrentIndex(toPage);
    QWidget *outgoing = widget(fromPage);
    outgoing->hide();
    outgoing->move(fromPagePos);
}

void LoginDialog::windowResizeDone()
{
    setFixedHeight(height());
}

void LoginDialog::animationFinished()
{
    switching = false;
    if (currentIndex() == settingsPageIndex) {
        savedProxyOn = ui->proxyChoice->isChecked();
        savedProxy = proxyFields();
    } else if (ui->proxyChoice->isChecked()) {
        showUsesProxyAlert();
    } else {
        closeAlertBar();
    }
}

} // namespace GUI
} // namespace ZorvaneClient
