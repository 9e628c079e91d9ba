// SPDX-License-Identifier: MIT
#include "GUI/LoginDialog.h"

#include <QDesktopServices>
#include <QGraphicsOpacityEffect>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QShowEvent>
#include <QTimer>

#include <chrono>

#include "API/CloudAPIClient.h"
#include "App/Environment.h"
#include "App/ProxySettings.h"
#include "App/ServiceProfile.h"
#include "GUI/CloudToolTip.h"
#include "GUI/IconPixmap.h"
#include "GUI/PageSlide.h"
#include "GUI/ProxyForm.h"
#include "GUI/SignInForm.h"
#include "GUI/TippedButton.h"
#include "ui_Login.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int windowWidth = 440;
constexpr int alertBarHeight = 38;
constexpr int signInHeight = 413;
constexpr int settingsHeight = 365;
constexpr int settingsHeightWithProxy = 535;

constexpr int signInPageIndex = 0;
constexpr int settingsPageIndex = 1;

constexpr std::chrono::milliseconds wallRetryDelay = std::chrono::seconds(30);

constexpr int gearPosition = 2;
constexpr int tipPosition = 1;

void addTip(QWidget *row, const QString &text)
{
    auto *tip = new TippedIcon(QStringLiteral(":/login/icons/tip.png"), text, row);
    tip->setHoverPixmap(QStringLiteral(":/login/icons/tip_hover.png"));
    qobject_cast<QBoxLayout *>(row->layout())->insertWidget(tipPosition, tip);
}

void openPage(const QString &pathAndQuery)
{
    QDesktopServices::openUrl(App::ServiceProfile::current().redirectorUrl(pathAndQuery));
}

} // namespace

LoginDialog::LoginDialog(QWidget *parent)
    : QStackedWidget(parent)
    , ui(new Ui::Login)
    , proxyForm(new ProxyForm(*ui))
    , client(new API::CloudAPIClient)
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
    signInForm.reset(new SignInForm(*ui, opacityEffect));
    createSettingsButton();
    connect(ui->settingsPBtn2, &QPushButton::clicked, this, &LoginDialog::settingClicked);
    connect(ui->emailLn, &QLineEdit::textChanged, this, &LoginDialog::setLoginButtonState);
    connect(ui->passwordLn, &QLineEdit::textChanged, this, &LoginDialog::setLoginButtonState);

    createTips();
    ui->settingsPage->resize(windowWidth, settingsHeight);
    proxyForm->showFields(proxyShown);
    proxyForm->setSettings(App::ProxySettings::load());
    showProxyState();
    setCurrentIndex(signInPageIndex);
    ui->topBarWgt->setFocus();

    ui->signInButton->installEventFilter(this);
    ui->passwordLn->installEventFilter(this);
    const auto proxyFields = ui->proxySettings->findChildren<QLineEdit *>();
    for (QLineEdit *field : proxyFields)
        field->installEventFilter(this);
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

void LoginDialog::showEvent(QShowEvent *event)
{
    // A window that only comes back from the task bar keeps what was typed.
    if (!event->spontaneous() && signInForm->load())
        on_signInButton_clicked();
    QStackedWidget::showEvent(event);
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
    else if (signInForm->isComplete() && !signInForm->isWaiting())
        on_signInButton_clicked();
    return true;
}

void LoginDialog::on_signInButton_clicked()
{
    signInForm->save();
    proxyForm->settings().save();
    setFormLocked(true);
    client->tryLogin(signInForm->email(), signInForm->password());
}

void LoginDialog::onLoginSuccessful()
{
    setFormLocked(false);
    emit loginSuccessful();
}

void LoginDialog::setFormLocked(bool locked)
{
    if (locked) {
        hideAlert();
        // Otherwise the focus would go on to the next button that is not locked.
        ui->topBarWgt->setFocus();
    }
    signInForm->setWaiting(locked);
    settingsButton->setEnabled(!locked);
}

void LoginDialog::showWrongEmailPassAlert()
{
    setFormLocked(false);
    showAlert(ui->wrongEmailPassWgt);
    ui->passwordLn->setFocus();
    // A wall may come up before its network does, and nobody is there to press the button.
    if (!App::Environment::kioskLayout().isEmpty())
        QTimer::singleShot(wallRetryDelay, this, &LoginDialog::signInAgain);
}

void LoginDialog::signInAgain()
{
    if (currentIndex() == signInPageIndex && !signInForm->isWaiting() && signInForm->isRemembered())
        on_signInButton_clicked();
}

void LoginDialog::showNoInternetAlert()
{
    showAlert(ui->noInternetWgt);
}

void LoginDialog::showUsesProxyAlert()
{
    showAlert(ui->usesProxyWgt);
}

void LoginDialog::showProxyState()
{
    if (proxyForm->isOn())
        showUsesProxyAlert();
    else
        hideAlert();
}

void LoginDialog::showAlert(QWidget *alert)
{
    alertShown = alert != ui->emptyWgt;
    ui->alertsBar->setCurrentWidget(alert);
    ui->alertsBar->setFixedHeight(alertShown ? alertBarHeight : 0);
    setFixedHeight(heightOf(signInPageIndex));
}

void LoginDialog::hideAlert()
{
    showAlert(ui->emptyWgt);
}

int LoginDialog::heightOf(int page) const
{
    if (page == settingsPageIndex)
        return proxyShown ? settingsHeightWithProxy : settingsHeight;
    return alertShown ? signInHeight + alertBarHeight : signInHeight;
}

void LoginDialog::setLoginButtonState()
{
    signInForm->updateButton();
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
    proxyForm->set(savedProxyOn, savedProxyOn ? savedProxy : QStringList());
    switchPage(signInPageIndex);
}

void LoginDialog::on_proxyChoice_toggled(bool checked)
{
    if (checked == proxyShown)
        return;
    proxyShown = checked;
    proxyForm->showFields(checked);
    setFixedHeight(heightOf(settingsPageIndex));
}

void LoginDialog::switchPage(int target)
{
    if (target == currentIndex() || switching)
        return;
    switching = true;
    CloudToolTip::hideTip();
    fromPage = currentIndex();
    toPage = target;
    fromPagePos = currentWidget()->pos();
    auto *slide = new PageSlide(this, target, QSize(windowWidth, heightOf(target)));
    connect(slide, &PageSlide::pagesMoved, this, &LoginDialog::screensSwitched);
    connect(slide, &PageSlide::resized, this, &LoginDialog::windowResizeDone);
    connect(slide, &QAbstractAnimation::finished, this, &LoginDialog::animationFinished);
    setFixedHeight(QWIDGETSIZE_MAX); // no limit
    slide->start(QAbstractAnimation::DeleteWhenStopped);
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
        savedProxyOn = proxyForm->isOn();
        savedProxy = proxyForm->texts();
    } else {
        showProxyState();
    }
}

} // namespace GUI
} // namespace ZorvaneClient
