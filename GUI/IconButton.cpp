// SPDX-License-Identifier: MIT
#include "GUI/IconButton.h"

#include <QAbstractButton>
#include <QString>

namespace ZorvaneClient {
namespace GUI {

void nameIconButton(QAbstractButton *button, const QString &name)
{
    button->setAccessibleName(name);
    // Names that people give would be read for tags.
    const QString tip = QStringLiteral("<span>%1</span>").arg(name.toHtmlEscaped());
    button->setToolTip(name.isEmpty() ? name : tip);
}

} // namespace GUI
} // namespace ZorvaneClient
