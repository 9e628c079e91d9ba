// SPDX-License-Identifier: MIT
#include "GUI/ControlPanel.h"

#include <QCoreApplication>
#include <QGraphicsOpacityEffect>
#include <QMenu>
#include <QRadioButton>
#include <QWidgetAction>

#include "App/Environment.h"
#include "App/Settings.h"
#include "GUI/StyleProperty.h"
#include "ui_ControlPanel.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int defaultVolume = 50;
constexpr int highVolumeLimit = 49;
constexpr int exportSpinnerLineWidth = 2;
constexpr qreal enabledOpacity = 1.0;
constexpr qreal disabledOpacity = 0.5;

const QString volumeKey = QStringLiteral("sound/volume");
const QString soundKey = QStringLiteral("sound/on");

int speedOf(int sliderValue)
{
    return 1 << sliderValue;
}

} // namespace

ControlPanel::ControlPanel(QWidget *parent) : QStackedWidget(parent), ui(new Ui::ControlPanel)
{
    ui->setupUi(this);
    ui->speedSelector->installEventFilter(this);
    ui->soundControl->installEventFilter(this);
    ui->speedSelector->hide();
    ui->soundSlider->setAccessibleName(
        QCoreApplication::translate("CameraSettingsDialog", "Sound"));

    const int storedVolume = App::settings().value(volumeKey, defaultVolume).toInt();
    const bool soundOn = App::settings().value(soundKey, true).toBool();
    setSoundVolume(storedVolume);
    enableSound(soundOn);

    setStyleProperty(ui->speedButton, "acc", QStringLiteral("no"));
    hideSpeedSlider();
    ui->soundSlider->hide();
    setTime(App::Environment::now());
    enableExport(false);
    ui->exportSpinner->setLineWidth(exportSpinnerLineWidth);
    createQualityMenu();
    connectButtons();
}

ControlPanel::~ControlPanel() = default;

void ControlPanel::createQualityMenu()
{
    QWidgetAction *low = createQualityMenuItem(tr("Low"), false);
    QWidgetAction *middle = createQualityMenuItem(tr("Middle"), false);
    QWidgetAction *high = createQualityMenuItem(tr("High"), false);
    QWidgetAction *automatic = createQualityMenuItem(tr("Auto"), true);
    connect(low, &QAction::triggered, this, &ControlPanel::setLowQuality);
    connect(middle, &QAction::triggered, this, &ControlPanel::setMidQuality);
    connect(high, &QAction::triggered, this, &ControlPanel::setHighQuality);
    connect(automatic, &QAction::triggered, this, &ControlPanel::setAutoQuality);
    qualityMenu = new QMenu(this);
    qualityMenu->addActions({low, middle, high, automatic});
    ui->qualityButton->setMenu(qualityMenu);
}

QWidgetAction *ControlPanel::createQualityMenuItem(QString text, bool checked)
{
    auto *button = new QRadioButton(text);
    button->setFocusPolicy(Qt::NoFocus);
    button->setStyleSheet(QStringLiteral(
        "QRadioButton { padding: 10px; }"
        "QRadioButton:hover { background-color: rgb(62, 183, 253); color: white; }"
        "QRadioButton::indicator { width: 16px; height: 16px; image: none; }"
        "QRadioButton::indicator:checked { image: url(:/mainwidget/icons/dropdownCheck.png); }"
        "QRadioButton::indicator:checked:hover {"
        " image: url(:/mainwidget/icons/dropdownCheck_hover.png); }"));
    button->setChecked(checked);
    auto *action = new QWidgetAction(this);
    action->setDefaultWidget(button);
    connect(button, &QRadioButton::clicked, action, &QAction::trigger);
    return action;
}

void ControlPanel::connectButtons()
{
    using Button = QPushButton;
    connect(ui->goLiveButton, &Button::clicked, this, &ControlPanel::liveButtonClicked);
    connect(ui->exportModeButton, &Button::clicked, this, &ControlPanel::exportModeButtonClicked);
    connect(ui->cancelButton, &Button::clicked, this, &ControlPanel::cancelExportButtonClicked);
    connect(ui->showRecordsButton, &Button::clicked, this, &ControlPanel::showRecordsButtonClicked);
    connect(ui->hideRecordsButton, &Button::clicked, this, &ControlPanel::hideRecordsButtonClicked);
    connect(ui->exportButton, &Button::clicked, this, &ControlPanel::exportButtonClicked);
    connect(ui->fullscreenButton, &Button::clicked, this, &ControlPanel::fullscreenButtonClicked);
    connect(ui->pauseButton, &Button::clicked, this, &ControlPanel::pause);
    connect(ui->playButton, &Button::clicked, this, &ControlPanel::play);
}

int ControlPanel::volume() const
{
    return ui->soundSlider->value();
}

int ControlPanel::speed() const
{
    return speedOf(ui->speedSlider->value());
}

bool ControlPanel::isSoundEnabled() const
{
    return ui->soundButton->property("volume").toString() != QLatin1String("mute");
}

void ControlPanel::setTime(QDateTime dateTime)
{
    ui->timeLabel->setText(dateTime.time().toString(QStringLiteral("hh:mm:ss")));
    ui->dateLabel->setText(dateTime.date().toString(QStringLiteral("dd/MM")));
}

void ControlPanel::resetSpeed()
{
    ui->speedSlider->setValue(ui->speedSlider->minimum());
    hideSpeedSlider();
}

void ControlPanel::resetQuality()
{
    const QList<QAction *> actions = qualityMenu->actions();
    if (auto *last = qobject_cast<QWidgetAction *>(actions.last())) {
        if (auto *button = qobject_cast<QRadioButton *>(last->defaultWidget()))
            button->setChecked(true);
    }
}

void ControlPanel::showSpeedSlider()
{
    ui->speedLabel->show();
    ui->speedSlider->show();
}

void ControlPanel::showSoundSlider()
{
    ui->soundSlider->show();
}

void ControlPanel::hideSpeedSlider()
{
    // A speed above 1x stays readable.
    if (ui->speedSlider->value() == ui->speedSlider->minimum())
        ui->speedLabel->hide();
    ui->speedSlider->hide();
}

void ControlPanel::hideSoundSlider()
{
    ui->soundSlider->hide();
}

void ControlPanel::setExportMode()
{
    setCurrentWidget(ui->exportPage);
}

void ControlPanel::setNormalMode()
{
    ui->exportSpinner->stop();
    ui->exportControl->setCurrentWidget(ui->exportButtonPage);
    setCurrentWidget(ui->controlPage);
}

void ControlPanel::setEmptyMode(bool active)
{
    setCurrentWidget(active ? ui->emptyPage : ui->controlPage);
}

void ControlPanel::showRecordsControls()
{
    ui->modeSelector->setCurrentWidget(ui->exportModePage);
    ui->speedSelector->show();
}

void ControlPanel::hideRecordsControls()
{
    ui->modeSelector->setCurrentWidget(ui->recordsModePage);
    ui->speedSelector->hide();
}

void ControlPanel::showLiveLabel()
{
    ui->controlMode->setCurrentWidget(ui->livePage);
}

void ControlPanel::showDateLabel()
{
    ui->controlMode->setCurrentWidget(ui->datePage);
}

void ControlPanel::showPauseButton()
{
    ui->playPauseStack->setCurrentWidget(ui->pausePage);
}

void ControlPanel::showPlayButton()
{
    ui->playPauseStack->setCurrentWidget(ui->playPage);
}

void ControlPanel::enableExport(bool enabled)
{
    ui->exportModeButton->setEnabled(enabled);
    auto *effect = new QGraphicsOpacityEffect(ui->exportModeButton);
    effect->setOpacity(enabled ? enabledOpacity : disabledOpacity);
    ui->exportModeButton->setGraphicsEffect(effect);
}

void ControlPanel::setSoundVolume(int volume)
{
    if (ui->soundSlider->value() != volume)
        ui->soundSlider->setValue(volume);
    updateVolumeButton();
}

void ControlPanel::enableSound(bool enable)
{
    if (ui->soundSlider->isEnabled() != enable)
        ui->soundSlider->setEnabled(enable);
    updateVolumeButton();
}

void ControlPanel::enterFullscreen()
{
    ui->fullscreenButton->setChecked(true);
}

void ControlPanel::leaveFullscreen()
{
    ui->fullscreenButton->setChecked(false);
}

void ControlPanel::exportStarted()
{
    ui->exportControl->setCurrentWidget(ui->exportLabelPage);
    ui->exportSpinner->start();
    exportPercentDone(0);
}

void ControlPanel::exportPercentDone(int percent)
{
    ui->exportPercent->setText(QString::number(percent) + QLatin1Char('%'));
}

void ControlPanel::on_speedSlider_valueChanged(int value)
{
    setStyleProperty(ui->speedButton, "acc",
                     value == 0 ? QStringLiteral("no") : QStringLiteral("yes"));
    ui->speedLabel->setText(QString::number(speedOf(value)) + QLatin1Char('x'));
    emit speedChanged(speedOf(value));
}

void ControlPanel::on_soundSlider_valueChanged(int value)
{
    App::settings().setValue(volumeKey, value);
    emit soundVolumeChanged(value);
}

void ControlPanel::on_soundButton_clicked()
{
    const bool enable = !isSoundEnabled();
    App::settings().setValue(soundKey, enable);
    emit soundEnabled(enable);
}

void ControlPanel::on_speedButton_clicked()
{
    if (ui->speedSlider->value() > ui->speedSlider->minimum())
        ui->speedSlider->setValue(ui->speedSlider->minimum());
}

void ControlPanel::updateVolumeButton()
{
    QString word = QStringLiteral("mid");
    if (!ui->soundSlider->isEnabled())
        word = QStringLiteral("mute");
    else if (ui->soundSlider->value() == 0)
        word = QStringLiteral("low");
    else if (ui->soundSlider->value() > highVolumeLimit)
        word = QStringLiteral("high");
    setStyleProperty(ui->soundButton, "volume", word);
}

bool ControlPanel::eventFilter(QObject *object, QEvent *event)
{
    const bool isSpeed = object == ui->speedSelector;
    if (!isSpeed && object != ui->soundControl)
        return QStackedWidget::eventFilter(object, event);
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::HoverEnter:
        isSpeed ? showSpeedSlider() : showSoundSlider();
        return true;
    case QEvent::Leave:
    case QEvent::HoverLeave:
        isSpeed ? hideSpeedSlider() : hideSoundSlider();
        return true;
    default:
        return QStackedWidget::eventFilter(object, event);
    }
}

} // namespace GUI
} // namespace ZorvaneClient
