// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>

class QWidget;

namespace ZorvaneClient {
namespace GUI {

class PlayerNotification;

/// The hints in the top left corner of a widget, the newest on top. Each goes when it says that
/// it is over, and the others close up.
class HintStack : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HintStack)

public:
    /// `parent` shows the hints; it owns them and the stack.
    explicit HintStack(QWidget *parent);

    /// `text` may be rich text with a link to a local folder.
    void add(const QString &text, bool error);
    /// Has the hints slide to their places.
    void updatePositions();
    void clear();

private:
    void remove(PlayerNotification *hint);

    QWidget *place;
    /// Newest first.
    QList<PlayerNotification *> hints;
};

} // namespace GUI
} // namespace ZorvaneClient
