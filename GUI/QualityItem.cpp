// SPDX-License-Identifier: MIT
#include "GUI/QualityItem.h"

#include <QRadioButton>

#include "GUI/Colours.h"

namespace ZorvaneClient {
namespace GUI {

QualityItem::QualityItem(const QString &text, bool checked, QObject *parent)
    : QWidgetAction(parent), button(new QRadioButton(text))
{
    button->setFocusPolicy(Qt::NoFocus);
    button->setStyleSheet(
        QStringLiteral(
            "QRadioButton { padding: 10px; }"
            "QRadioButton:hover { background-color: %1; color: white; }"
            "QRadioButton::indicator { width: 16px; height: 16px; image: none; }"
            "QRadioButton::indicator:checked { image: url(:/mainwidget/icons/dropdownCheck.png); }"
            "QRadioButton::indicator:checked:hover {"
            " image: url(:/mainwidget/icons/dropdownCheck_hover.png); }")
            .arg(Colours::accent().name()));
    button->setChecked(checked);
    setDefaultWidget(button);
    connect(button, &QRadioButton::clicked, this, &QAction::trigger);
}

void QualityItem::choose()
{
    button->setChecked(true);
}

} // namespace GUI
} // namespace ZorvaneClient
