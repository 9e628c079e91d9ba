// SPDX-License-Identifier: MIT
#include "GUI/QualityItem.h"

#include <QEvent>
#include <QMenu>
#include <QRadioButton>

#include "GUI/StyleSheet.h"

namespace ZorvaneClient {
namespace GUI {

QualityItem::QualityItem(const QString &text, bool checked, QObject *parent)
    : QWidgetAction(parent), button(new QRadioButton(text))
{
    button->setFocusPolicy(Qt::NoFocus);
    button->setStyleSheet(QStringLiteral(
        "QRadioButton { padding: 10px; }"
        "QRadioButton:hover, QRadioButton[highlighted=\"true\"] {"
        " background-color: rgb(62, 183, 253); color: white; }"
        "QRadioButton::indicator { width: 16px; height: 16px; image: none; }"
        "QRadioButton::indicator:checked { image: url(:/mainwidget/icons/dropdownCheck.png); }"
        "QRadioButton::indicator:checked:hover,"
        "QRadioButton[highlighted=\"true\"]::indicator:checked {"
        " image: url(:/mainwidget/icons/dropdownCheck_hover.png); }"));
    button->setChecked(checked);
    setDefaultWidget(button);
    button->installEventFilter(this);
    connect(button, &QRadioButton::clicked, this, &QAction::trigger);
    connect(this, &QAction::triggered, this, &QualityItem::choose);
    connect(this, &QAction::hovered, this, &QualityItem::takeHighlight);
}

void QualityItem::choose()
{
    button->setChecked(true);
}

bool QualityItem::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Hide)
        setHighlighted(false);
    // So that the arrows go on from where the mouse is, and two are never lit.
    if (event->type() == QEvent::Enter) {
        if (auto *menu = qobject_cast<QMenu *>(button->parentWidget()))
            menu->setActiveAction(this);
    }
    return QWidgetAction::eventFilter(watched, event);
}

void QualityItem::takeHighlight()
{
    const QList<QualityItem *> items =
        parent()->findChildren<QualityItem *>(QString(), Qt::FindDirectChildrenOnly);
    for (QualityItem *item : items)
        item->setHighlighted(item == this);
}

void QualityItem::setHighlighted(bool isHighlighted)
{
    setStyleProperty(button, "highlighted", isHighlighted);
}

} // namespace GUI
} // namespace ZorvaneClient
