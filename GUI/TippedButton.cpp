// SPDX-License-Identifier: MIT
#include "GUI/TippedButton.h"

#include <QKeyEvent>

TippedButton::TippedButton(QString pixmapPath, QString text, QWidget *parent)
    : TippedIcon(pixmapPath, text, parent)
{
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
}

void TippedButton::mousePressEvent(QMouseEvent *)
{
    emit clicked();
}

void TippedButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit clicked();
        return;
    default:
        TippedIcon::keyPressEvent(event);
    }
}
