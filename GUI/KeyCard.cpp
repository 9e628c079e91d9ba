// SPDX-License-Identifier: MIT
#include "GUI/KeyCard.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>

#include "GUI/Colours.h"
#include "GUI/KeyMap.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int columnsOfLines = 2;
constexpr int columnsOfLine = 3; // keys, text, a gap
constexpr int marginPixels = 24; // as wide is the gap
constexpr int spacingPixels = 10;

} // namespace

KeyCard::KeyCard(QWidget *parent) : QWidget(parent, Qt::Popup)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(tr("Keys"));
    setStyleSheet(QStringLiteral("QLabel { color: white; font-size: 13px; }"
                                 "QLabel[isKeys=\"true\"] { color: %1; font-weight: bold; }"
                                 "QLabel#title { font-size: 18px; }")
                      .arg(Colours::accent().name()));

    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(marginPixels, marginPixels, marginPixels, marginPixels);
    grid->setSpacing(spacingPixels);
    grid->setColumnMinimumWidth(columnsOfLine - 1, marginPixels);
    auto *title = new QLabel(tr("Keys"), this);
    title->setObjectName(QStringLiteral("title"));
    grid->addWidget(title, 0, 0, 1, -1);

    const QVector<KeyLine> lines = keyLines();
    const int rows = (lines.size() + columnsOfLines - 1) / columnsOfLines;
    for (int place = 0; place < lines.size(); ++place) {
        auto *keys = new QLabel(lines.at(place).keys, this);
        keys->setProperty("isKeys", true);
        auto *text = new QLabel(tr(lines.at(place).text), this);
        const int row = 1 + place % rows;
        const int column = place / rows * columnsOfLine;
        grid->addWidget(keys, row, column);
        grid->addWidget(text, row, column + 1);
    }
}

void KeyCard::showOver(const QWidget &window)
{
    adjustSize();
    move(window.mapToGlobal(window.rect().center()) - rect().center());
    show();
}

void KeyCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Colours::accent());
    painter.fillRect(rect().adjusted(1, 1, -1, -1), Colours::panel());
}

void KeyCard::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F1)
        close();
    else
        QWidget::keyPressEvent(event); // which closes a popup on Esc
}

void KeyCard::mousePressEvent(QMouseEvent *)
{
    close();
}

} // namespace GUI
} // namespace ZorvaneClient
