// SPDX-License-Identifier: MIT
#include "GUI/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QToolTip>
#include <QtMath>

#include <algorithm>

#include "GUI/Colours.h"
#include "GUI/IconButton.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

int positionOf(const QString &part, const QString &text)
{
    return part.isEmpty() ? -1 : static_cast<int>(text.indexOf(part, 0, Qt::CaseInsensitive));
}

/// Where `part` stands in `line`, which is `text` or its beginning with an ellipsis behind it.
/// The ellipsis stands for what was cut away, and is marked for it.
QVector<QTextLayout::FormatRange> marksIn(const QString &line, const QString &text,
                                          const QString &part)
{
    const int position = positionOf(part, text);
    if (position < 0)
        return {};
    const auto cut = std::mismatch(line.begin(), line.end(), text.begin(), text.end()).first;
    const int kept = static_cast<int>(cut - line.begin());
    const int start = std::min(position, kept);
    const int end = position + static_cast<int>(part.size());
    QTextLayout::FormatRange mark;
    mark.start = start;
    mark.length = (end <= kept ? end : static_cast<int>(line.size())) - start;
    mark.format.setBackground(Colours::accent());
    mark.format.setForeground(Colours::tile());
    return {mark};
}

} // namespace

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void ElidedLabel::highlight(const QString &part)
{
    // Selected for those who ask the label; it paints a selection only if the user can make one.
    const int position = positionOf(part, text());
    setSelection(std::max(position, 0), position < 0 ? 0 : static_cast<int>(part.length()));
    if (marked == part)
        return;
    marked = part;
    update();
}

bool ElidedLabel::fits() const
{
    return !text().contains(QLatin1Char('\n')) &&
           fontMetrics().horizontalAdvance(text()) <= contentsRect().width();
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && !fits()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), nameTip(text()), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = contentsRect();
    const QString whole = fits() ? text() : text().simplified();
    const QString shown = fontMetrics().elidedText(whole, Qt::ElideRight, area.width());
    QTextLayout layout(shown, font(), this);
    // Text that is written from the right begins there, as in any other label.
    const Qt::LayoutDirection direction = shown.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    QTextOption option(QStyle::visualAlignment(direction, alignment()));
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(direction);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(area.width());
    layout.endLayout();
    const QSize size(area.width(), qCeil(line.height()));
    const QRect place = QStyle::alignedRect(layoutDirection(), alignment(), size, area);
    painter.setPen(palette().color(foregroundRole()));
    layout.draw(&painter, place.topLeft(), marksIn(shown, whole, marked));
}

} // namespace GUI
} // namespace ZorvaneClient
