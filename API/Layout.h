// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include "API/LayoutCell.h"
#include "API/Types.h"

namespace ZorvaneClient {
namespace API {

/// A named grid of cameras. Rows, columns and spans are taken as they come, and spans can
/// overlap; only a cell more than one past the end is refused. GUI thread only.
class Layout : public QObject
{
    Q_OBJECT

public:
    /// One empty cell under a new identifier.
    Layout();
    /// A copy keeps the identifier, so it is the same layout for comparing and saving.
    Layout(const Layout &other);
    /// Emits nothing.
    Layout &operator=(const Layout &other);
    /// From toVariantMap()'s form; without the key "id" the layout gets a new identifier.
    explicit Layout(QVariantMap map);
    explicit Layout(QJsonObject object);

    QString name() const;
    int rows() const;
    int columns() const;
    QString id() const;

    /// The entries by column, then row; one can come without a camera.
    QList<LayoutCell> cellList() const;
    /// An empty cell comes without a camera, one by one.
    LayoutCell cellAt(int row, int column) const;
    /// Does nothing if the cell has that camera already, whatever its span.
    void setCamera(CameraPtr camera, int row, int column, int rowSpan, int columnSpan);
    void clearCell(int row, int column);
    /// Spans are lost; emits nothing.
    void swapCells(int row1, int column1, int row2, int column2);
    /// Drops the cells that begin outside the new size.
    void resize(int rows, int columns);
    /// Cells of the grid less the cells with a camera, each counted as one whatever its span.
    int freeCellCount() const;

    /// The form in which the service and the cache file keep a layout: `w` counts rows and
    /// `h` columns.
    QVariantMap toVariantMap() const;
    /// Takes name, size and cells from a newer version. Cells whose camera is not in the
    /// roster are skipped, cells from before stay unless replaced. Emits nothing.
    void update(QVariantMap map);

    bool operator==(const Layout &other) const;
    bool operator!=(const Layout &other) const;

signals:
    void updated();

public slots:
    void setName(QString name);

private:
    /// More than one past the end.
    bool isFarOutside(int row, int column) const;

    struct Data {
        QString name;
        QMap<LayoutPoint, LayoutCell> cells;
        int rows = 1;
        int columns = 1;
        QString id;
    };

    Data data;
};

} // namespace API
} // namespace ZorvaneClient
