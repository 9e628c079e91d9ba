// SPDX-License-Identifier: MIT
#include "GUI/TitleEdit.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFrame>
#include <QToolTip>

#include "GUI/IconButton.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// That the toolkit leaves on both sides of a field's text.
constexpr int textMarginPixels = 2;

} // namespace

TitleEdit::TitleEdit(QWidget *parent) : QLineEdit(parent)
{
}

QRect TitleEdit::textArea() const
{
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    return contents.adjusted(textMarginPixels, 0, -textMarginPixels, 0);
}

bool TitleEdit::isCut() const
{
    return isReadOnly() && fontMetrics().horizontalAdvance(displayText()) > textArea().width();
}

bool TitleEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && isCut()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), nameTip(text()), this);
        return true;
    }
    return QLineEdit::event(event);
}

void TitleEdit::keyPressEvent(QKeyEvent *event)
{
    QLineEdit::keyPressEvent(event);
    // The key that ended the typing is none of the window's keys.
    if (!hasFocus())
        event->accept();
}

void TitleEdit::paintEvent(QPaintEvent *event)
{
    if (!isCut() || hasFocus()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QPainter painter(this);
    QStyleOptionFrame option;
    initStyleOption(&option);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
    const QRect area = textArea();
    const QString shown = fontMetrics().elidedText(displayText(), Qt::ElideRight, area.width());
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(area, Qt::AlignVCenter | Qt::TextSingleLine, shown);
}

} // namespace GUI
} // namespace ZorvaneClient
