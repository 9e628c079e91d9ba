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
    QualityItem(const QString &text, bool checked, QObject *parent);

    /// Marks it as the chosen one; emits nothing.
    void choose();

private:
    QRadioButton *button;
};

} // namespace GUI
} // namespace ZorvaneClient
