// SPDX-License-Identifier: MIT
#include "GUI/TippedIcon.h"

#include "GUI/CloudToolTip.h"
#include "GUI/IconPixmap.h"

namespace {

// Where the tip's pointer ends, from the top left corner of the label.
constexpr QPoint pointerOffset(0, -5);

} // namespace

TippedIcon::TippedIcon(QString pixmapPath, QString text, QWidget *parent)
    : QLabel(parent)
    , target(parent)
    , normalPixmap(ZorvaneClient::GUI::iconPixmap(pixmapPath))
    , hoverPixmap(normalPixmap)
    , tipText(text)
{
    setPixmap(normalPixmap);
    setAccessibleName(tipText);
}

void TippedIcon::setHoverPixmap(QString path)
{
    hoverPixmap = ZorvaneClient::GUI::iconPixmap(path);
}

void TippedIcon::enterEvent(ZorvaneClient::EnterEvent *)
{
    setPixmap(hoverPixmap);
    CloudToolTip::showTip(tipText, mapToGlobal(pointerOffset), target);
}

void TippedIcon::leaveEvent(QEvent *)
{
    setPixmap(normalPixmap);
    CloudToolTip::hideTip();
}
