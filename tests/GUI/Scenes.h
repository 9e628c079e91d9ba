// SPDX-License-Identifier: MIT
// The windows and dialogs of the program, each as it is when all of it is to be seen, and the ways
// through all that is in them.
#pragma once

#include "tests/support/Test.h"

#include "API/Layout.h"
#include "App/Settings.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/RosterWidget.h"
#include "tests/support/DialogVisitor.h"
#include "tests/support/Roster.h"

using Look = std::function<void(QWidget *)>;
/// Shows a window to a look at it, and takes it away.
using Scene = std::function<void(const Look &)>;
Q_DECLARE_METATYPE(Scene)

namespace ZorvaneClient::Tests {

inline const QString serverId = "s1"_s;

inline API::LayoutPtr yardLayout()
{
    auto layout = API::LayoutPtr::create();
    layout->resize(2, 2);
    layout->setCamera(rosterCamera(serverId, 1), 0, 0, 1, 1);
    return layout;
}

/// Everything there is: both kinds of servers, cards, tiles, empty cells, an edited layout.
inline void showMainWindow(const Look &look)
{
    GUI::MainWindow window;
    window.show();
    window.findChild<GUI::RosterWidget *>()->updateRoster();
    window.findChild<GUI::LayoutListWidget *>()->updateLayouts();
    window.openLayout(yardLayout());
    window.addToLayout(rosterCamera(serverId, 2));
    window.showArchivePanels();
    window.startLayoutEditor();
    for (const char *part : {"restartNotice", "restartButton", "messageWidget"})
        window.findChild<QWidget *>(QLatin1String(part))->show();
    QCoreApplication::processEvents();
    look(&window);
}

inline void showSignIn(const Look &look)
{
    App::settings().setValue("proxy/useProxy"_s, true);
    GUI::LoginDialog dialog;
    dialog.show();
    App::settings().setValue("proxy/useProxy"_s, false);
    look(&dialog);
    // As while it waits for the service.
    const auto fields = dialog.findChildren<QLineEdit *>();
    for (QLineEdit *field : fields) {
        field->setText("user"_s);
        field->setEnabled(false);
    }
    look(&dialog);
}

/// For a dialog that comes back only when it is closed.
inline Scene dialogScene(const std::function<void()> &open)
{
    return [open](const Look &look) {
        const DialogVisitor visitor(look);
        open();
        QCOMPARE(visitor.visits(), 1);
    };
}

/// Calls `look` with each visible part of the window, for each page of each stack in front.
inline void visitPages(QWidget *window, const Look &look)
{
    QWidgetList pages{window};
    QList<QStackedWidget *> stacks = window->findChildren<QStackedWidget *>();
    if (auto *own = qobject_cast<QStackedWidget *>(window))
        stacks.append(own);
    for (const QStackedWidget *stack : qAsConst(stacks)) {
        for (int i = 0; i < stack->count(); ++i)
            pages.append(stack->widget(i));
    }
    for (QWidget *page : qAsConst(pages)) {
        // A reply that comes meanwhile can bring another page up, but not for ever.
        for (int attempts = 20; attempts > 0 && !page->isVisible(); --attempts) {
            for (QWidget *inner = page; inner->parentWidget(); inner = inner->parentWidget()) {
                if (auto *stack = qobject_cast<QStackedWidget *>(inner->parentWidget()))
                    stack->setCurrentWidget(inner);
            }
            QCoreApplication::processEvents();
        }
        const QWidgetList parts = window->findChildren<QWidget *>();
        for (QWidget *part : parts) {
            if (part->isVisible() && part->window() == window->window())
                look(part);
        }
    }
}

/// Calls `look` with what screen readers are told of the window and of all in it.
inline void visitTold(QAccessibleInterface *node,
                      const std::function<void(QAccessibleInterface *)> &look)
{
    look(node);
    for (int i = 0; i < node->childCount(); ++i) {
        if (QAccessibleInterface *child = node->child(i))
            visitTold(child, look);
    }
}

/// What the window shows in `area` of the widget, `scale` times enlarged.
inline QImage pictureOf(QWidget *widget, const QRect &area, qreal scale)
{
    QImage picture(area.size() * scale, QImage::Format_RGB32);
    picture.fill(Qt::white);
    picture.setDevicePixelRatio(scale);
    widget->window()->render(&picture, QPoint(),
                             QRect(widget->mapTo(widget->window(), area.topLeft()), area.size()));
    return picture;
}

} // namespace ZorvaneClient::Tests
