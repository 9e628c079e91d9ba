// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>

/// A white bubble with a pointer at its lower edge. At most one is on the screen. It and
/// the tipped pictures stand outside the namespaces, as the forms name them.
class CloudToolTip : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(CloudToolTip)

public:
    ~CloudToolTip() override;

    /// Replaces the tip on the screen by one whose pointer ends above `target`, in global
    /// coordinates. The tip belongs to `parent`. An empty text shows nothing.
    static void showTip(QString text, QPoint target, QWidget *parent);
    static void hideTip();
    /// True while a tip exists.
    static bool isVisible();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    CloudToolTip(const QString &text, QWidget *parent);

    static CloudToolTip *currentTip;
};
