// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QPixmap>
#include <QString>

#include "App/QtShims.h"

/// A picture with a tip of the program's own look while the mouse is over it.
class TippedIcon : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY(TippedIcon)

public:
    /// Shows the picture at `pixmapPath`; the tip belongs to `parent`. An empty text shows no tip.
    TippedIcon(QString pixmapPath, QString text, QWidget *parent = nullptr);

    /// The picture while the mouse is over the label; the normal one unless set.
    void setHoverPixmap(QString path);

protected:
    void enterEvent(ZorvaneClient::EnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    QWidget *target = nullptr;
    QPixmap normalPixmap;
    QPixmap hoverPixmap;
    QString tipText;
};
