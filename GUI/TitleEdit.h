// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

namespace ZorvaneClient {
namespace GUI {

/// A field with a name that can be read, and at times edited. While it is only read, a name that
/// is too wide ends in an ellipsis and is told whole in a tool tip.
class TitleEdit : public QLineEdit
{
    Q_OBJECT
    Q_DISABLE_COPY(TitleEdit)

public:
    explicit TitleEdit(QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// Where the text stands.
    QRect textArea() const;
    bool isCut() const;
};

} // namespace GUI
} // namespace ZorvaneClient
