// SPDX-License-Identifier: MIT
#include "GUI/TourButton.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

#include "GUI/Colours.h"
#include "GUI/StyleSheet.h"

namespace ZorvaneClient {
namespace GUI {

TourButton::TourButton(QWidget *parent) : QPushButton(tr("Tour"), parent)
{
    setObjectName(QStringLiteral("tourButton"));
    setFocusPolicy(Qt::NoFocus);
    setToolTip(tr("Saved layouts in turn"));
    auto *menu = new QMenu(this);
    // The desktop's own tick has no form for screens of high density.
    menu->setStyleSheet(
        QStringLiteral(
            "QMenu::item { padding: 4px 16px 4px 8px; }"
            "QMenu::item:selected { color: %1; background-color: %2; }"
            "QMenu::indicator { width: 16px; height: 16px; margin-left: 4px; }"
            "QMenu::indicator:checked { image: url(:/mainwidget/icons/dropdownCheck.png); }")
            .arg(Colours::tile().name(), Colours::accent().name()));
    intervals = new QActionGroup(menu);
    const QPair<QString, int> choices[] = {{tr("Off"), 0},
                                           {tr("Every 10 seconds"), 10},
                                           {tr("Every 30 seconds"), 30},
                                           {tr("Every minute"), 60},
                                           {tr("Every 5 minutes"), 300}};
    for (const auto &[text, seconds] : choices) {
        QAction *action = menu->addAction(text);
        action->setCheckable(true);
        action->setData(seconds);
        intervals->addAction(action);
    }
    setMenu(menu);
    connect(intervals, &QActionGroup::triggered, this,
            [this](const QAction *action) { emit chosen(action->data().toInt()); });
    showTour(false, 0);
}

void TourButton::showTour(bool isOn, int seconds)
{
    setStyleProperty(this, "isOn", isOn);
    const QList<QAction *> choices = intervals->actions();
    for (QAction *choice : choices)
        choice->setChecked(choice->data().toInt() == (isOn ? seconds : 0));
}

} // namespace GUI
} // namespace ZorvaneClient
