// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVector>
#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

/// As if the pointer had come into `window` at `place` of the screen, or had left it. The window
/// takes it on from there, so that the toolkit knows it for the next move.
void enterWindow(QWidget *window, const QPoint &place);
void leaveWindow(QWidget *window);

/// Has all widgets of the program that look otherwise under the pointer look so exactly while
/// the pointer is over them. The toolkit tells them when the pointer moves; this tells them when
/// what lies under it has moved or gone instead: after popups and drags, and when something under
/// the pointer is shown, hidden, moved or resized, as for fullscreen or another layout.
class HoverSync : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HoverSync)

public:
    /// Watches the application, which must exist already.
    explicit HoverSync(QObject *parent);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void remember(QWidget *widget);
    bool isEntered(const QObject *object) const;
    /// Enters and leaves what the pointer has come over and gone from unnoticed.
    void followPointer();
    /// False if a widget is entered that is not `under` nor round it, or one of these is not.
    bool agreesWith(const QWidget *under) const;
    void leaveAllBut(const QWidget *under);

    /// Those that the pointer, or what it drags, has entered and not left.
    QVector<QPointer<QWidget>> entered;
    /// What is shown by what the pointer enters, under the pointer, is entered before that is
    /// over: then the toolkit takes the pointer to be still where it was.
    bool isCountLost = false;
    QTimer settled;
};

} // namespace GUI
} // namespace ZorvaneClient
