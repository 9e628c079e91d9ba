// SPDX-License-Identifier: MIT
#pragma once

#include <QSequentialAnimationGroup>
#include <QSize>

class QStackedWidget;

namespace ZorvaneClient {
namespace GUI {

/// Moves a page of `pages` out and another in beside it, and brings `pages` to the size that
/// the new page wants. It grows before the new page comes in, and shrinks after it has come.
/// Only moves: which page is current, and the limits of the size, are the owner's business.
class PageSlide : public QSequentialAnimationGroup
{
    Q_OBJECT
    Q_DISABLE_COPY(PageSlide)

public:
    /// From the current page to `target`, which is put in its place of departure and shown.
    /// A page of a higher number comes from the right.
    PageSlide(QStackedWidget *pages, int target, QSize targetSize);

signals:
    void pagesMoved();
    void resized();
};

} // namespace GUI
} // namespace ZorvaneClient
