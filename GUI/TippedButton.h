// SPDX-License-Identifier: MIT
#pragma once

#include "GUI/TippedIcon.h"

/// A tipped picture that can be clicked, or pressed with Space or Return when it has the focus.
class TippedButton : public TippedIcon
{
    Q_OBJECT
    Q_DISABLE_COPY(TippedButton)

public:
    TippedButton(QString pixmapPath, QString text, QWidget *parent = nullptr);

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
