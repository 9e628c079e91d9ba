// SPDX-License-Identifier: MIT
#include "GUI/LayoutWidget.h"

#include <QDebug>
#include <QFileInfo>
#include <QScopedValueRollback>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/Colours.h"
#include "GUI/HintStack.h"
#include "GUI/LayoutWidgetPrivate.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Retire.h"
#include "GUI/StyleBackground.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int gridMarginPixels = 2;
constexpr int gridSpacingPixels = 2;

QString folderLink(const QString &folder, const QString &text)
{
    return QStringLiteral("<a style=\"color: white\" href=\"") + folder + QStringLiteral("\">") +
           text + QStringLiteral("</a>");
}

} // namespace

LayoutWidget::LayoutWidget(QWidget *parent) : QWidget(parent), d(new Internal::LayoutWidgetPrivate)
{
    setObjectName(QStringLiteral("LayoutWidget"));
    setProperty("drop", false);
    // Once a sheet gives the widget a border, or none, its palette no longer fills it.
    setStyleSheet(
        QStringLiteral("#LayoutWidget { background-color: %1; }"
                       "#LayoutWidget[drop=\"true\"] { border: 2px solid rgb(25, 134, 243); }"
                       "#LayoutWidget[drop=\"false\"] { border: none; }")
            .arg(Colours::panel().name()));
    QPalette colours = palette();
    colours.setColor(QPalette::Window, Colours::panel());
    setPalette(colours);
    setAutoFillBackground(true);
    setAcceptDrops(true);
    d->hints = new HintStack(this);
    makeGrid();
}

LayoutWidget::~LayoutWidget()
{
    delete d->grid;
    // The tiles end their children while the grid's record is still there.
    qDeleteAll(findChildren<QObject *>(QString(), Qt::FindDirectChildrenOnly));
}

API::LayoutPtr LayoutWidget::workingLayout() const
{
    return d->workingLayout;
}

API::LayoutPtr LayoutWidget::savedLayout() const
{
    return d->savedLayout;
}

void LayoutWidget::makeGrid()
{
    d->grid = new QGridLayout;
    d->grid->setContentsMargins(gridMarginPixels, gridMarginPixels, gridMarginPixels,
                                gridMarginPixels);
    d->grid->setSpacing(gridSpacingPixels);
    setLayout(d->grid);
}

bool LayoutWidget::openLayout(API::LayoutPtr layout)
{
    if (layout && d->workingLayout && *layout == *d->workingLayout) {
        qDebug() << "layouts equal";
        if (Player::VideoWidget *tile = d->leaveMaximised())
            d->owedQualities.insert(tile, d->qualityBefore);
        playLive();
        return false;
    }
    clear();
    d->workingLayout = layout;
    d->savedLayout = layout;
    const int rows = layout ? layout->rows() : 0;
    const int columns = layout ? layout->columns() : 0;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const API::LayoutCell cell = layout->cellAt(row, column);
            // Rows are taken for columns here, and columns for rows: a reopened tile comes back
            // transposed, and stored layouts rely on that.
            if (cell.camera)
                addCamera(cell.camera, API::LayoutPoint{column, row},
                          API::CellSize{cell.rowSpan(), cell.columnSpan()});
            else
                addPlaceholder(row, column, cell.columnSpan(), cell.rowSpan());
        }
    }
    emit layoutModified();
    return true;
}

void LayoutWidget::resizeLayout(int rows, int columns)
{
    const API::LayoutPtr remembered = d->savedLayout;
    const auto resized =
        d->workingLayout ? API::LayoutPtr::create(*d->workingLayout) : API::LayoutPtr::create();
    resized->resize(rows, columns);
    {
        const QScopedValueRollback<bool> resizing(d->givesQuality, true);
        openLayout(resized);
    }
    d->savedLayout = remembered;
    if (d->autoQuality)
        updateQuality();
}

void LayoutWidget::clear()
{
    d->leaveMaximised();
    const QList<API::CameraPtr> cameras = d->players.keys();
    for (const API::CameraPtr &camera : cameras)
        removeCamera(camera);
    // Who heard of a closed camera may have opened another layout: that goes like the rest.
    d->players.clear();
    d->owedQualities.clear();
    d->hints->clear();
    delete d->grid;
    const QList<QWidget *> widgets = findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *widget : widgets)
        retire(widget);
    makeGrid();
}

void LayoutWidget::saveLayout(QString layoutName)
{
    if (!d->workingLayout)
        return;
    d->workingLayout->setName(layoutName);
    if (d->savedLayout)
        *d->savedLayout = *d->workingLayout;
    else
        d->savedLayout = d->workingLayout;
    d->workingLayout = d->savedLayout;
}

void LayoutWidget::showSnapshotHint(QString folder)
{
    d->hints->add(tr("Snapshot saved.") + QLatin1Char(' ') + folderLink(folder, tr("Open folder")),
                  false);
}

void LayoutWidget::showExportDoneHint(QString path)
{
    d->hints->add(tr("Record saved.") + QLatin1Char(' ') +
                      folderLink(QFileInfo(path).absolutePath(), tr("Open folder")),
                  false);
}

void LayoutWidget::showHint(const QString &text)
{
    d->hints->add(text, false);
}

void LayoutWidget::showExportErrorHint(QString)
{
    d->hints->add(tr("Error while exporting."), true);
}

void LayoutWidget::updateHintPositions()
{
    d->hints->updatePositions();
}

void LayoutWidget::paintEvent(QPaintEvent *)
{
    drawStyleBackground(*this);
}

void LayoutWidget::resizeEvent(QResizeEvent *event)
{
    updateHintPositions();
    QWidget::resizeEvent(event);
}

} // namespace GUI
} // namespace ZorvaneClient
