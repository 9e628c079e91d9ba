// SPDX-License-Identifier: MIT
#include "GUI/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace ZorvaneClient {
namespace GUI {

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void ElidedLabel::highlight(const QString &part)
{
    const int position = static_cast<int>(text().indexOf(part, 0, Qt::CaseInsensitive));
    if (position >= 0) {
        setSelection(position, static_cast<int>(part.length()));
    } else {
        setSelection(0, 0);
    }
}

bool ElidedLabel::fits() const
{
    return !text().contains(QLatin1Char('\n')) &&
           fontMetrics().horizontalAdvance(text()) <= contentsRect().width();
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && !fits()) {
        // As rich text a name would be read for tags, so it goes in escaped.
        const auto *help = static_cast<QHelpEvent *>(event);
        QToolTip::showText(help->globalPos(),
                           QStringLiteral("<p>%1</p>").arg(text().toHtmlEscaped()), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent *event)
{
    if (fits()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = contentsRect();
    const QString line = fontMetrics().elidedText(text().simplified(), Qt::ElideRight, area.width(),
                                                  Qt::TextSingleLine);
    const auto flags = static_cast<int>(alignment() | Qt::TextSingleLine);
    style()->drawItemText(&painter, area, flags, palette(), isEnabled(), line, foregroundRole());
}

} // namespace GUI
} // namespace ZorvaneClient
