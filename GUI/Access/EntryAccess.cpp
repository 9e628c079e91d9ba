// SPDX-License-Identifier: MIT
#include "GUI/Access/EntryAccess.h"

#include "API/Camera.h"
#include "GUI/Access/SpokenTime.h"
#include "GUI/LayoutCard.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Preview.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoWidget;

EntryAccess::EntryAccess(VideoWidget *tile) : StopAccess(tile, QAccessible::Grouping)
{
}

EntryAccess::EntryAccess(Preview *card) : StopAccess(card, QAccessible::ListItem)
{
}

QAccessible::State EntryAccess::state() const
{
    QAccessible::State state = StopAccess::state();
    state.hasPopup = true;
    state.selectable = true;
    if (const auto *tile = qobject_cast<const VideoWidget *>(widget()))
        state.selected = tile->isActive();
    else if (const auto *card = qobject_cast<const Preview *>(widget()))
        state.selected = card->isOpen();
    return state;
}

QString EntryAccess::text(QAccessible::Text kind) const
{
    const auto *tile = qobject_cast<const VideoWidget *>(widget());
    const auto *card = qobject_cast<const Preview *>(widget());
    if (kind == QAccessible::Name)
        return tile ? tile->camera()->name() : card->caption();
    if (kind != QAccessible::Description)
        return StopAccess::text(kind);
    if (tile)
        return tile->stateText() + QStringLiteral(", ") + spokenTime(tile->playbackTime());
    // The caption of a camera that is off says so.
    const bool isLayout = qobject_cast<const LayoutCard *>(card);
    return card->isOpen() ? (isLayout ? tr("Layout, open") : tr("Camera, open"))
                          : (isLayout ? tr("Layout") : tr("Camera"));
}

QStringList EntryAccess::actionNames() const
{
    QStringList names = StopAccess::actionNames();
    names.append(showMenuAction());
    return names;
}

} // namespace GUI
} // namespace ZorvaneClient
