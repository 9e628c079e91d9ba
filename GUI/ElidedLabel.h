// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QString>

namespace ZorvaneClient {
namespace GUI {

/// A line of plain text. What is too wide ends in an ellipsis and is told whole in a tool tip.
class ElidedLabel : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY(ElidedLabel)

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    /// Selects and marks where `part` first stands in the text, whatever the case; nothing
    /// without it. A text that changes later is marked where `part` stands then.
    void highlight(const QString &part);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool fits() const;

    QString marked;
};

} // namespace GUI
} // namespace ZorvaneClient
