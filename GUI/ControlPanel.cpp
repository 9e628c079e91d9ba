// SPDX-License-Identifier: MIT
#include "GUI/ControlPanel.h"

#include <QApplication>
#include <QGraphicsOpacityEffect>
#include <QMenu>
#include <QMouseEvent>

#include "App/Environment.h"
#include "GUI/MomentField.h"
#include "GUI/QualityItem.h"
#include "GUI/StyleSheet.h"
#include "ui_ControlPanel.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int exportSpinnerLineWidth = 2;
constexpr int sliderRoomPixels = 84; ///< an unfolded slider and the gap beside it
constexpr qreal enabledOpacity = 1.0;
constexpr qreal disabledOpacity = 0.5;

int speedOf(int sliderValue)
{
    return 1 << sliderValue;
}

} // namespace

ControlPanel::ControlPanel(QWidget *parent) : QStackedWidget(parent), ui(new Ui::ControlPanel)
{
    ui->setupUi(this);
    QSizePolicy policy = ui->speedLabel->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    ui->speedLabel->setSizePolicy(policy);
    ui->speedSelector->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &ControlPanel::unfoldFocused);
    ui->timeLabel->installEventFilter(this);
    setShown(ui->speedSelector, false);
    setUpSound();
    setStyleProperty(ui->speedButton, "acc", QStringLiteral("no"));
    hideSpeedSlider();
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
    auto *menu = new QMenu(this);
    menu->addActions({low, middle, high, automatic});
    ui->qualityButton->setMenu(menu);
}

QWidgetAction *ControlPanel::createQualityMenuItem(QString text, bool checked)
{
    auto *item = new QualityItem(text, checked, this);
    if (checked)
        startQuality = item;
    return item;
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

int ControlPanel::speed() const
{
    return speedOf(ui->speedSlider->value());
}

void ControlPanel::setTime(QDateTime dateTime)
{
    shownTime = dateTime;
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
    startQuality->choose();
}

void ControlPanel::setShown(QWidget *part, bool shown)
{
    const auto willShow = [part, shown](const QWidget *widget) {
        return widget == part ? shown : !widget->isHidden();
    };
    bool isTaken = false;
    for (const QWidget *slider : {ui->speedSlider, ui->soundSlider})
        isTaken = isTaken || (willShow(slider) && willShow(slider->parentWidget()));
    // Before and at once: a bar that is too wide but for a moment makes the window wider for good.
    ui->sliderRoom->changeSize(isTaken ? 0 : sliderRoomPixels, 0, QSizePolicy::Fixed,
                               QSizePolicy::Minimum);
    ui->hl_bar->update();
    part->setVisible(shown);
    for (QWidget *round = part->parentWidget(); round != ui->controlPage;
         round = round->parentWidget())
        round->layout()->activate();
}

void ControlPanel::showSpeedSlider()
{
    ui->speedLabel->show();
    setShown(ui->speedSlider, true);
}

void ControlPanel::hideSpeedSlider()
{
    // A speed above 1x stays readable.
    if (ui->speedSlider->value() == ui->speedSlider->minimum())
        ui->speedLabel->hide();
    setShown(ui->speedSlider, false);
}

void ControlPanel::unfoldFocused(QWidget *left, QWidget *entered)
{
    const auto isIn = [](const QWidget *part, const QWidget *widget) {
        return widget && part->isAncestorOf(widget);
    };
    if (isIn(ui->speedSelector, left) && !isIn(ui->speedSelector, entered))
        hideSpeedSlider();
    if (isIn(ui->soundControl, left) && !isIn(ui->soundControl, entered))
        hideSoundSlider();
    if (isIn(ui->speedSelector, entered))
        unfoldSpeed();
    else if (isIn(ui->soundControl, entered))
        unfoldSound();
}

void ControlPanel::unfoldSpeed()
{
    hideSoundSlider();
    showSpeedSlider();
}

void ControlPanel::unfoldSound()
{
    hideSpeedSlider();
    showSoundSlider();
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
    setShown(ui->speedSelector, true);
    setTimeClickable(true);
}

void ControlPanel::hideRecordsControls()
{
    ui->modeSelector->setCurrentWidget(ui->recordsModePage);
    setShown(ui->speedSelector, false);
    setTimeClickable(false);
}

void ControlPanel::setTimeClickable(bool clickable)
{
    if (clickable)
        ui->timeLabel->setCursor(Qt::PointingHandCursor);
    else
        ui->timeLabel->unsetCursor();
    ui->timeLabel->setToolTip(clickable ? tr("Go to a moment") : QString());
}

void ControlPanel::onTimeReleased(const QMouseEvent &event)
{
    const bool isInRecords = ui->modeSelector->currentWidget() == ui->exportModePage;
    if (!isInRecords || event.button() != Qt::LeftButton ||
        !ui->timeLabel->rect().contains(event.pos()))
        return;
    auto *field = new MomentField(shownTime, this);
    connect(field, &MomentField::chosen, this, &ControlPanel::momentChosen);
    const QPoint corner(ui->timeLabel->mapToGlobal(QPoint()).x(),
                        ui->controlBar->mapToGlobal(QPoint()).y());
    field->showOver(QRect(corner, ui->controlBar->size()));
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

void ControlPanel::on_speedButton_clicked()
{
    if (ui->speedSlider->value() > ui->speedSlider->minimum())
        ui->speedSlider->setValue(ui->speedSlider->minimum());
}

bool ControlPanel::eventFilter(QObject *object, QEvent *event)
{
    if (object == ui->timeLabel && event->type() == QEvent::MouseButtonRelease)
        onTimeReleased(static_cast<const QMouseEvent &>(*event));
    const bool isEntered = event->type() == QEvent::Enter || event->type() == QEvent::HoverEnter;
    const bool isLeft = event->type() == QEvent::Leave || event->type() == QEvent::HoverLeave;
    const bool isSpeed = object == ui->speedSelector;
    const bool isSound = object == ui->soundControl;
    if ((!isEntered && !isLeft) || (!isSpeed && !isSound))
        return QStackedWidget::eventFilter(object, event);
    if (isSpeed && isEntered)
        unfoldSpeed();
    else if (isSpeed)
        hideSpeedSlider();
    else if (isEntered)
        unfoldSound();
    else
        hideSoundSlider();
    return true;
}

} // namespace GUI
} // namespace ZorvaneClient
