// SPDX-License-Identifier: MIT
#include "GUI/PageSlide.h"

#include <QParallelAnimationGroup>
#include <QPoint>
#include <QPropertyAnimation>
#include <QStackedWidget>

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int moveMs = 200;
constexpr int resizeMs = 100;

QPropertyAnimation *animation(QWidget *widget, const char *property, int durationMs,
                              const QVariant &from, const QVariant &to)
{
    auto *made = new QPropertyAnimation(widget, property);
    made->setDuration(durationMs);
    made->setStartValue(from);
    made->setEndValue(to);
    return made;
}

} // namespace

PageSlide::PageSlide(QStackedWidget *pages, int target, QSize targetSize)
    : QSequentialAnimationGroup(pages)
{
    QWidget *outgoing = pages->currentWidget();
    QWidget *incoming = pages->widget(target);
    const int width = targetSize.width();
    const QPoint shift(target > pages->currentIndex() ? -width : width, 0);
    const QPoint home = incoming->pos();
    incoming->resize(width, qMax(pages->height(), targetSize.height()));
    incoming->move(home - shift);
    incoming->show();
    incoming->raise();

    auto *moves = new QParallelAnimationGroup;
    moves->addAnimation(
        animation(outgoing, "pos", moveMs, outgoing->pos(), outgoing->pos() + shift));
    moves->addAnimation(animation(incoming, "pos", moveMs, home - shift, home));
    auto *resizing = animation(pages, "size", resizeMs, pages->size(), targetSize);
    connect(moves, &QAbstractAnimation::finished, this, &PageSlide::pagesMoved);
    connect(resizing, &QAbstractAnimation::finished, this, &PageSlide::resized);

    addAnimation(moves);
    insertAnimation(targetSize.height() > pages->height() ? 0 : 1, resizing);
}

} // namespace GUI
} // namespace ZorvaneClient
