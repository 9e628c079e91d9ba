// SPDX-License-Identifier: MIT
#include "GUI/QualityItem.h"

#include <QEvent>
#include <QMenu>
#include <QRadioButton>

#include "GUI/Colours.h"
#include "GUI/StyleSheet.h"

namespace ZorvaneClient {
namespace GUI {

QualityItem::QualityItem(const QString &text, bool checked, QObject *parent)
    : QWidgetAction(parent), button(new QRadioButton(text))
{
    button->setFocusPolicy(Qt::NoFocus);
    // Lit is yes or no while the menu has come to an item: this one or another one.
    button->setStyleSheet(
        QStringLiteral(
            "QRadioButton { padding: 10px; }"
            "QRadioButton:hover, QRadioButton[lit=\"yes\"] {"
            " background-color: %1; color: white; }"
            "QRadioButton[lit=\"no\"]:hover {"
            " background-color: transparent; color: palette(window-text); }"
            "QRadioButton::indicator { width: 16px; height: 16px; image: none; }"
            "QRadioButton::indicator:checked { image: url(:/mainwidget/icons/dropdownCheck.png); }"
            "QRadioButton::indicator:checked:hover, QRadioButton[lit=\"yes\"]::indicator:checked {"
            " image: url(:/mainwidget/icons/dropdownCheck_hover.png); }"
            "QRadioButton[lit=\"no\"]::indicator:checked:hover {"
            " image: url(:/mainwidget/icons/dropdownCheck.png); }")
            .arg(Colours::accent().name()));
    button->setChecked(checked);
    setDefaultWidget(button);
    button->installEventFilter(this);
    connect(button, &QRadioButton::clicked, this, &QAction::trigger);
    connect(this, &QAction::triggered, this, &QualityItem::choose);
    connect(this, &QAction::hovered, this, &QualityItem::light);
}

void QualityItem::choose()
{
    button->setChecked(true);
}

bool QualityItem::eventFilter(QObject *watched, QEvent *event)
{
    auto *menu = qobject_cast<QMenu *>(button->parentWidget());
    const bool isMouse = event->type() == QEvent::Enter || event->type() == QEvent::HoverMove;
    // So that the arrows go on from where the mouse is.
    if (isMouse && menu && menu->activeAction() != this)
        menu->setActiveAction(this);
    else if (event->type() == QEvent::Hide)
        setStyleProperty(button, "lit", QString());
    return QWidgetAction::eventFilter(watched, event);
}

void QualityItem::light()
{
    const QList<QualityItem *> items =
        parent()->findChildren<QualityItem *>(QString(), Qt::FindDirectChildrenOnly);
    for (QualityItem *item : items) {
        setStyleProperty(item->button, "lit",
                         item == this ? QStringLiteral("yes") : QStringLiteral("no"));
    }
}

} // namespace GUI
} // namespace ZorvaneClient
