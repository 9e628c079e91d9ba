// SPDX-License-Identifier: MIT
#include "GUI/BubbleMask.h"

#include <QBitmap>
#include <QByteArray>
#include <QGuiApplication>
#include <QImage>
#include <QWidget>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace ZorvaneClient {
namespace GUI {

namespace {

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply *reply)
{
    return {reply, &std::free};
}

/// Who composes the screen says so by owning a selection.
bool isComposedOnX()
{
    int screen = 0;
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> display(
        xcb_connect(nullptr, &screen), &xcb_disconnect);
    const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(screen);
    const auto atom = owned(xcb_intern_atom_reply(
        display.get(),
        xcb_intern_atom(display.get(), 0, static_cast<quint16>(name.size()), name.constData()),
        nullptr));
    if (!atom)
        return false;
    const auto owner = owned(xcb_get_selection_owner_reply(
        display.get(), xcb_get_selection_owner(display.get(), atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

bool isComposed()
{
    const QString platform = QGuiApplication::platformName();
    return platform.startsWith(QLatin1String("wayland")) ||
           (platform == QLatin1String("xcb") && isComposedOnX());
}

} // namespace

void cutToPainting(QWidget *bubble)
{
    if (isComposed()) {
        bubble->clearMask();
        return;
    }
    QImage painted(bubble->size(), QImage::Format_ARGB32_Premultiplied);
    painted.fill(Qt::transparent);
    bubble->render(&painted, QPoint(), QRegion(), QWidget::DrawChildren | QWidget::IgnoreMask);
    bubble->setMask(QBitmap::fromImage(painted.createAlphaMask()));
}

} // namespace GUI
} // namespace ZorvaneClient
