// SPDX-License-Identifier: MIT
#include "GUI/MomentField.h"

#include <QHBoxLayout>
#include <QLineEdit>

#include "App/Environment.h"
#include "GUI/Colours.h"
#include "GUI/MomentFormat.h"
#include "GUI/StyleSheet.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int freePixels = 24; ///< beside the text: borders, margins and the cursor

/// In the program's language.
MomentFormat momentFormat()
{
    return {MomentField::tr("dd/MM/yyyy")};
}

} // namespace

MomentField::MomentField(const QDateTime &shown, QWidget *parent)
    : QWidget(parent, Qt::Popup), edit(new QLineEdit(momentFormat().text(shown))), day(shown.date())
{
    setAttribute(Qt::WA_DeleteOnClose);
    edit->setAccessibleName(tr("Date and time"));
    edit->setStyleSheet(
        QStringLiteral("QLineEdit { background: %1; color: white; font-size: 14px; padding: 0 6px;"
                       " border: 1px solid %2; selection-color: %3;"
                       " selection-background-color: %2; }"
                       "QLineEdit[refused=\"true\"] { color: rgb(255, 125, 125);"
                       " border-color: rgb(255, 125, 125); }")
            .arg(Colours::panel().name(), Colours::accent().name(), Colours::tile().name()));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(edit);
    connect(edit, &QLineEdit::returnPressed, this, &MomentField::choose);
    connect(edit, &QLineEdit::textEdited, this,
            [this] { setStyleProperty(edit, "refused", false); });
}

void MomentField::showOver(const QRect &area)
{
    edit->ensurePolished();
    const int textPixels = edit->fontMetrics().horizontalAdvance(edit->text());
    edit->setFixedSize(textPixels + freePixels, area.height());
    move(area.topLeft());
    show();
    edit->setFocus();
    edit->selectAll();
}

void MomentField::choose()
{
    const QDateTime moment = momentFormat().moment(edit->text(), day);
    if (!moment.isValid() || moment > App::Environment::now()) {
        setStyleProperty(edit, "refused", true);
        return;
    }
    close();
    emit chosen(moment);
}

} // namespace GUI
} // namespace ZorvaneClient
