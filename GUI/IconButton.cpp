// SPDX-License-Identifier: MIT
#include "GUI/IconButton.h"

#include <QAbstractButton>
#include <QDialog>
#include <QDialogButtonBox>
#include <QIcon>
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

void showTextButtons(const QDialog &dialog)
{
    const QList<QDialogButtonBox *> boxes = dialog.findChildren<QDialogButtonBox *>();
    for (const QDialogButtonBox *box : boxes) {
        const QList<QAbstractButton *> buttons = box->buttons();
        for (QAbstractButton *button : buttons)
            button->setIcon(QIcon());
    }
}

} // namespace GUI
} // namespace ZorvaneClient
