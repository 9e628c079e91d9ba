// SPDX-License-Identifier: MIT
#include "GUI/Access/AccessFactory.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QTableView>

#include "GUI/Access/ButtonAccess.h"
#include "GUI/Access/CalendarAccess.h"
#include "GUI/Access/EntryAccess.h"
#include "GUI/Access/SliderAccess.h"
#include "GUI/Access/StripAccess.h"
#include "GUI/CalendarPopup.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Preview.h"
#include "GUI/Timeline.h"
#include "GUI/TippedButton.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// Records can be gone through by it.
const QString timeLabel = QStringLiteral("timeLabel");

/// Null leaves the object to the toolkit.
QAccessibleInterface *accessOf(const QString &, QObject *object)
{
    if (auto *tile = qobject_cast<Player::VideoWidget *>(object))
        return new EntryAccess(tile);
    if (auto *card = qobject_cast<Preview *>(object))
        return new EntryAccess(card);
    if (auto *strip = qobject_cast<Timeline *>(object))
        return new StripAccess(strip);
    if (qobject_cast<MainWindow *>(object) || qobject_cast<LoginDialog *>(object))
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Window);
    // Of cards.
    if (auto *list = qobject_cast<QScrollArea *>(object))
        return new QAccessibleWidget(list, QAccessible::List);
    if (auto *slider = qobject_cast<QSlider *>(object))
        return new SliderAccess(slider);
    if (qobject_cast<QPushButton *>(object) || qobject_cast<QCheckBox *>(object) ||
        qobject_cast<QRadioButton *>(object) || qobject_cast<TippedButton *>(object) ||
        object->objectName() == timeLabel)
        return new ButtonAccess(static_cast<QWidget *>(object));
    auto *view = qobject_cast<QTableView *>(object);
    auto *calendar = qobject_cast<CalendarPopup *>(view ? view->parent() : nullptr);
    return calendar ? new CalendarAccess(view, calendar) : nullptr;
}

} // namespace

void installAccess()
{
    QAccessible::installFactory(accessOf);
}

} // namespace GUI
} // namespace ZorvaneClient
