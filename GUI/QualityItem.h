// SPDX-License-Identifier: MIT
#pragma once

#include <QWidgetAction>

class QRadioButton;

namespace ZorvaneClient {
namespace GUI {

/// One choice of the quality menu. Those of one menu exclude each other.
class QualityItem : public QWidgetAction
{
    Q_OBJECT
    Q_DISABLE_COPY(QualityItem)

public:
    /// The items of one menu have one parent.
    QualityItem(const QString &text, bool checked, QObject *parent);

    /// Marks it as the chosen one; emits nothing.
    void choose();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The menu has come to this item and no other, by the mouse or by the arrows.
    void light();

    QRadioButton *button;
};

} // namespace GUI
} // namespace ZorvaneClient
