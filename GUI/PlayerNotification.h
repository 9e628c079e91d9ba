// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QPoint>
#include <QScopedPointer>
#include <QString>

namespace Ui {
class PlayerNotification;
}

namespace ZorvaneClient {
namespace GUI {

/// A hint: a short message over the grid that slides away by itself after three seconds.
/// The owner removes it on closed().
class PlayerNotification : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY(PlayerNotification)

public:
    /// `text` may be rich text; the target of a link in it is the path of a local folder.
    PlayerNotification(QString text, bool error, QWidget *parent = nullptr);
    ~PlayerNotification() override;

public slots:
    /// Slides to `position` in the parent.
    void animateTo(QPoint position);
    void on_closeButton_clicked();

signals:
    void closed();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    QScopedPointer<Ui::PlayerNotification> ui;
    int hideTimerId = -1;
};

} // namespace GUI
} // namespace ZorvaneClient
