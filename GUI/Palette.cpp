// SPDX-License-Identifier: MIT
#include "GUI/Palette.h"

#include "GUI/Colours.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

const QColor light(224, 228, 235);
const QColor grey(175, 176, 178);
const QColor dim(91, 102, 122);
const QColor edge(108, 118, 136);
const QColor link(18, 98, 165);

void setTexts(QPalette *palette, QPalette::ColorGroup group, const QColor &colour)
{
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette->setColor(group, role, colour);
}

} // namespace

QPalette housePalette()
{
    QPalette palette(Colours::panel(), light, Qt::white, edge, QColor(166, 170, 176),
                     Colours::panel(), Qt::white, Qt::white, light);
    palette.setColor(QPalette::PlaceholderText, dim);
    palette.setColor(QPalette::Highlight, Colours::accent());
    palette.setColor(QPalette::HighlightedText, Colours::tile());
    palette.setColor(QPalette::Link, link);
    palette.setColor(QPalette::LinkVisited, dim);
    setTexts(&palette, QPalette::Disabled, dim);
    palette.setColor(QPalette::Disabled, QPalette::Base, light);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, grey);
    for (const QPalette::ColorGroup group :
         {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::ToolTipBase, Colours::panel());
        palette.setColor(group, QPalette::ToolTipText, Qt::white);
    }
    return palette;
}

QPalette toolTipPalette()
{
    QPalette palette = housePalette();
    for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base, QPalette::Button})
        palette.setColor(role, Colours::panel());
    // The frame; the text has a role of its own.
    setTexts(&palette, QPalette::All, edge);
    return palette;
}

} // namespace GUI
} // namespace ZorvaneClient
