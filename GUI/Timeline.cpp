// SPDX-License-Identifier: MIT
#include "GUI/Timeline.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <QVariantAnimation>

#include <chrono>

#include "GUI/StyleBackground.h"
#include "GUI/TimelineBars.h"
#include "GUI/TimelinePainter.h"
#include "GUI/TimelinePrivate.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

using namespace std::chrono_literals;

constexpr int heightPixels = 56;
constexpr std::chrono::milliseconds refreshInterval = 2min;
constexpr qreal lastStep = 0.001;

QVariant timeBetween(const QDateTime &from, const QDateTime &to, qreal progress)
{
    if (1.0 - progress < lastStep)
        return to;
    return from.addSecs(static_cast<int>(static_cast<qreal>(from.secsTo(to)) * progress));
}

void registerTypes()
{
    static const bool registered = [] {
        qRegisterMetaType<Playlist>("Playlist");
        qRegisterAnimationInterpolator<QDateTime>(timeBetween);
        return true;
    }();
    Q_UNUSED(registered)
}

} // namespace

Timeline::Timeline(QDate date, QWidget *parent)
    : QWidget(parent), d(QSharedPointer<Internal::TimelinePrivate>::create(this, date))
{
    setFixedHeight(heightPixels);
    setStyleSheet(QStringLiteral("background-color: rgb(41, 44, 49);"));
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setMouseTracking(true);
    registerTypes();
    startTimer(refreshInterval);
}

Timeline::~Timeline() = default;

Timeline::TimeFormat Timeline::timeFormat() const
{
    return d->timeFormat;
}

void Timeline::setTimeFormat(TimeFormat format)
{
    d->timeFormat = format;
    update();
}

QDateTime Timeline::currentValue() const
{
    return d->currentValue;
}

void Timeline::setCurrentValue(QDateTime value)
{
    d->currentValue = value;
    update();
}

bool Timeline::sliderVisible() const
{
    return d->sliderVisible;
}

void Timeline::setSliderVisible(bool visible)
{
    d->sliderVisible = visible;
    update();
}

void Timeline::addMSecs(qlonglong msecs)
{
    d->currentValue = d->currentValue.addMSecs(msecs);
    update();
}

void Timeline::showText(QString text)
{
    d->text = text;
    d->textVisible = true;
    update();
}

void Timeline::hideText()
{
    d->textVisible = false;
    update();
}

void Timeline::redrawRecords()
{
    d->dirty = true;
    update();
}

bool Timeline::event(QEvent *event)
{
    // The message is not painted while the cursor's day has records. On the empty strip of another
    // day it can at least be asked for.
    if (event->type() == QEvent::ToolTip && d->textVisible && d->hasVisibleRecords() &&
        !d->hasRecordsOn(d->date)) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), d->text, this);
        return true;
    }
    return QWidget::event(event);
}

void Timeline::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawStyleBackground(painter, *this);
    // The strip can have come to a screen of another density.
    if (d->recordsImage.devicePixelRatioF() != devicePixelRatioF())
        makeRecordsImage();
    if (d->dirty) {
        Internal::renderRecords(*d);
        d->dirty = false;
        emit exportEnabled(canExport());
    }
    Internal::TimelinePainter(*d).paint(painter);
}

void Timeline::makeRecordsImage()
{
    d->recordsImage = QImage(size() * devicePixelRatioF(), QImage::Format_ARGB32);
    d->recordsImage.setDevicePixelRatio(devicePixelRatioF());
    d->recordsImage.fill(Qt::transparent);
    d->dirty = true;
}

void Timeline::resizeEvent(QResizeEvent *)
{
    makeRecordsImage();
    update();
}

} // namespace GUI
} // namespace ZorvaneClient
