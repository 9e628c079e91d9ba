// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

class QWidget;

namespace ZorvaneClient::Pictures {

/// Saves what stands on the screen as PNG files of one folder.
class Album
{
public:
    /// Makes the folder.
    explicit Album(const QString &folder);

    /// Saves `window`, or the part of it in its own coordinates, and over it every popup, menu
    /// and tip that is open; the picture grows with them. `caption` goes into the index.
    void take(const QString &name, const QString &caption, QWidget *window,
              const QRect &part = QRect());
    /// Writes "index.txt": a line for each picture, name and caption with a tabulator between.
    void writeIndex() const;

private:
    QString path;
    QStringList index;
};

} // namespace ZorvaneClient::Pictures
