// SPDX-License-Identifier: MIT
#include "tools/pictures/Album.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QWidget>

#include "tools/pictures/Require.h"

namespace ZorvaneClient::Pictures {

namespace {

/// Shows where a popup stands out of its window.
const QColor deskColour(214, 218, 224);

bool isPopup(const QWidget *window)
{
    const Qt::WindowType type = window->windowType();
    return type == Qt::Popup || type == Qt::ToolTip || type == Qt::Tool;
}

/// The tips last, which lie in front.
QWidgetList openPopups(const QWidget *window)
{
    QWidgetList popups;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *candidate : windows) {
        if (candidate != window && candidate->isVisible() && isPopup(candidate))
            popups.insert(candidate->windowType() == Qt::ToolTip ? popups.size() : 0, candidate);
    }
    return popups;
}

} // namespace

Album::Album(const QString &folder) : path(folder)
{
    require(QDir().mkpath(folder), "folder for the pictures");
}

void Album::take(const QString &name, const QString &caption, QWidget *window, const QRect &part)
{
    const QRect shown = part.isNull() ? window->rect() : part;
    const QPoint origin = window->mapToGlobal(shown.topLeft());
    const QWidgetList popups = openPopups(window);
    QRect area(origin, shown.size());
    for (const QWidget *popup : popups)
        area |= popup->geometry();

    const qreal ratio = window->devicePixelRatioF();
    QImage picture(area.size() * ratio, QImage::Format_RGB32);
    picture.setDevicePixelRatio(ratio);
    picture.fill(deskColour);
    QPainter painter(&picture);
    const QRect visible = area.intersected(QRect(window->mapToGlobal(QPoint()), window->size()));
    painter.drawPixmap(
        visible.topLeft() - area.topLeft(),
        window->grab(QRect(window->mapFromGlobal(visible.topLeft()), visible.size())));
    for (QWidget *popup : popups)
        painter.drawPixmap(popup->pos() - area.topLeft(), popup->grab());
    painter.end();

    require(picture.save(QDir(path).filePath(name + QStringLiteral(".png"))), "picture");
    index.append(name + QLatin1Char('\t') + caption);
}

void Album::writeIndex() const
{
    QFile file(QDir(path).filePath(QStringLiteral("index.txt")));
    require(file.open(QIODevice::WriteOnly), "index");
    for (const QString &line : index)
        file.write(line.toUtf8() + '\n');
}

} // namespace ZorvaneClient::Pictures
