// SPDX-License-Identifier: MIT
#include <QMimeData>

#include <memory>

#include "GUI/DragFormats.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::GUI;

/// The bytes in each format that the program takes.
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    for (QMimeData *drag :
         {cameraDrag({}), serverDrag(QString()), layoutDrag(QString()), tileDrag({0, 0})}) {
        const std::unique_ptr<QMimeData> dropped(drag);
        const QStringList formats = dropped->formats();
        for (const QString &format : formats)
            dropped->setData(format, bytesOf(data, size));
        draggedCamera(*dropped);
        draggedServer(*dropped);
        draggedLayout(*dropped);
        draggedTile(*dropped);
    }
    return 0;
}
