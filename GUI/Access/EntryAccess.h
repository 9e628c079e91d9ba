// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>

#include "GUI/Access/StopAccess.h"

namespace ZorvaneClient {
namespace GUI {

class Preview;

namespace Player {
class VideoWidget;
}

/// A tile of the grid: its camera, what it does and the moment that it shows; or a card of one of
/// the lists: what it stands for and how that is.
class EntryAccess : public StopAccess
{
    Q_DECLARE_TR_FUNCTIONS(ZorvaneClient::GUI::EntryAccess)

public:
    explicit EntryAccess(Player::VideoWidget *tile);
    explicit EntryAccess(Preview *card);

    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
    QStringList actionNames() const override;
};

} // namespace GUI
} // namespace ZorvaneClient
