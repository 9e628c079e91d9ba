// SPDX-License-Identifier: MIT
#include "GUI/IconButton.h"

#include <QAbstractButton>
#include <QDialog>
#include <QDialogButtonBox>
#include <QIcon>
#include <QString>

namespace ZorvaneClient {
namespace GUI {

QString nameTip(const QString &name)
{
    // Names that people give would be read for tags.
    return name.isEmpty() ? name : QStringLiteral("<span>%1</span>").arg(name.toHtmlEscaped());
}

void nameIconButton(QAbstractButton *button, const QString &name)
{
    button->setAccessibleName(name);
    button->setToolTip(nameTip(name));
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
