// SPDX-License-Identifier: MIT
// The windows and dialogs of the program, each as it is when all of it is to be seen.
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

} // namespace ZorvaneClient::Tests
