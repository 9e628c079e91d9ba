// SPDX-License-Identifier: MIT
#pragma once

#include <QScopedPointer>
#include <QSize>

#include "GUI/CardLook.h"

class QFrame;
class QMenu;

namespace Ui {
class Preview;
}

namespace ZorvaneClient {
namespace GUI {

/// The widgets inside a card.
class CardForm
{
    Q_DISABLE_COPY(CardForm)

public:
    /// Makes the widgets in `card`, which owns them; `kind` is a Preview::Kind.
    CardForm(QFrame *card, int kind);
    ~CardForm();

    /// Shows all of `look`, whatever was shown before. What is shown already costs next to
    /// nothing, unless the picture's place has another size by now.
    void show(const CardLook &look);
    void setMenu(QMenu *menu);

private:
    void showPicture(const CardLook &look);

    QScopedPointer<Ui::Preview> ui;
    QFrame *openMark; ///< over the left edge of the card
    int kind;
    CardLook shown;
    QSize shownSize{-1,
                    -1}; ///< of the image's place in the screen's pixels when it was last scaled
};

} // namespace GUI
} // namespace ZorvaneClient
