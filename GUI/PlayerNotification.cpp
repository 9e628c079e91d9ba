// SPDX-License-Identifier: MIT
#include "GUI/PlayerNotification.h"

#include <QDesktopServices>
#include <QPropertyAnimation>
#include <QTimerEvent>
#include <QUrl>

#include <chrono>

#include "GUI/IconButton.h"
#include "GUI/SharedTexts.h"
#include "ui_PlayerNotification.h"

namespace ZorvaneClient {
namespace GUI {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds showTime = 3s;
constexpr std::chrono::milliseconds closeDelay = 100ms;
constexpr std::chrono::milliseconds slideTime = 250ms;

constexpr auto errorProperty = "error";

/// Starts to slide `widget` to `position`; the animation releases itself.
QPropertyAnimation *slide(QWidget *widget, QPoint position)
{
    auto *animation = new QPropertyAnimation(widget, "geometry", widget);
    animation->setDuration(static_cast<int>(slideTime.count()));
    animation->setStartValue(widget->geometry());
    animation->setEndValue(QRect(position, widget->size()));
    animation->setEasingCurve(QEasingCurve::InQuint);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
    return animation;
}

} // namespace

PlayerNotification::PlayerNotification(QString text, bool error, QWidget *parent)
    : QFrame(parent), ui(new Ui::PlayerNotification)
{
    ui->setupUi(this);
    ui->messageLabel->setText(text);
    nameIconButton(ui->closeButton, SharedTexts::close());
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    hideTimerId = startTimer(showTime);
    connect(ui->messageLabel, &QLabel::linkActivated, this, [this](const QString &link) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(link));
        startTimer(closeDelay);
    });
    setProperty(errorProperty, error);
    ui->pixmapLabel->setProperty(errorProperty, error);
}

PlayerNotification::~PlayerNotification() = default;

void PlayerNotification::animateTo(QPoint position)
{
    slide(this, position);
}

void PlayerNotification::on_closeButton_clicked()
{
    startTimer(closeDelay);
}

void PlayerNotification::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != hideTimerId) {
        emit closed();
        return;
    }
    connect(slide(this, pos() + QPoint(0, height())), &QPropertyAnimation::finished, this,
            &PlayerNotification::closed);
}

} // namespace GUI
} // namespace ZorvaneClient
