// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/LocalServer.h"
#include "App/ServiceProfile.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LocalServerDialog.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/PlayerNotification.h"
#include "GUI/RosterWidget.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/Roster.h"

using namespace ZorvaneClient::GUI;

using Look = std::function<void(QWidget *)>;
/// Shows a window to a look at it, and takes it away.
using Scene = std::function<void(const Look &)>;
Q_DECLARE_METATYPE(Scene)

namespace {

/// What the toolkit puts together out of parts is named as a whole.
bool isPartOfControl(const QWidget *widget)
{
    for (const QWidget *whole = widget->parentWidget(); whole; whole = whole->parentWidget()) {
        if (qobject_cast<const QAbstractSpinBox *>(whole) ||
            qobject_cast<const QComboBox *>(whole) || qobject_cast<const QLineEdit *>(whole) ||
            qobject_cast<const QCalendarWidget *>(whole))
            return true;
    }
    return false;
}

bool isControl(const QWidget *widget)
{
    if (qobject_cast<const QScrollBar *>(widget) || isPartOfControl(widget))
        return false;
    return qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QAbstractSlider *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLineEdit *>(widget);
}

bool hasLabel(const QWidget *widget)
{
    const QList<QLabel *> labels = widget->window()->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        if (label->buddy() == widget && !label->text().isEmpty())
            return true;
    }
    return false;
}

/// Empty if all is well with the control.
QString faultOf(const QWidget *widget)
{
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    const bool hasText = button && !button->text().isEmpty();
    if (!hasText && widget->accessibleName().isEmpty() && !hasLabel(widget))
        return "has no name"_s;
    if (button && !hasText && button->toolTip().isEmpty())
        return "has neither text nor tooltip"_s;
    return QString();
}

QStringList faultsIn(const QWidget *window, int *controls)
{
    QStringList faults;
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!isControl(widget))
            continue;
        ++*controls;
        const QString fault = faultOf(widget);
        if (fault.isEmpty())
            continue;
        faults.append("%1 %2 in %3 %4"_s.arg(QLatin1String(widget->metaObject()->className()),
                                             widget->objectName(),
                                             widget->parentWidget()->objectName(), fault));
    }
    return faults;
}

API::LayoutPtr twoByTwo()
{
    const auto layout = API::LayoutPtr::create();
    layout->setName("Yard"_s);
    layout->resize(2, 2);
    layout->setCamera(rosterCamera("gate"_s, 1), 0, 0, 1, 1);
    return layout;
}

/// A window with everything in it: both kinds of servers, cards, tiles, an edited layout.
void showMainWindow(const Look &look)
{
    MainWindow window;
    window.show();
    window.findChild<RosterWidget *>()->updateRoster();
    window.findChild<LayoutListWidget *>()->updateLayouts();
    window.openLayout(twoByTwo());
    window.addToLayout(rosterCamera("gate"_s, 2));
    QCoreApplication::processEvents();
    look(&window);
}

/// For a dialog that comes back only when it is closed.
Scene dialogScene(const std::function<void()> &open)
{
    return [open](const Look &look) {
        QTimer::singleShot(0, qApp, [look] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            look(dialog);
            dialog->reject();
        });
        open();
    };
}

template <typename Widget, typename... Arguments>
Scene widgetScene(Arguments... arguments)
{
    return [=](const Look &look) {
        Widget widget(arguments...);
        widget.show();
        look(&widget);
    };
}

} // namespace

/// What people need who can't see a control, or can't use a mouse.
class ControlsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
        profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
        App::ServiceProfile::setCurrent(profile);
        addServerToRoster("gate"_s, {"a", "b"});
        API::CloudAPIClient().addLayout(twoByTwo());
        const auto local =
            API::LocalServerPtr::create("LAN"_s, profile.apiHost, profile.apiPort, "secret"_s);
        API::CloudAPIClient().addLocalServer(local);
    }

    void everyControlHasAName_data()
    {
        rows<Scene, int>(
            {"scene", "fewest"},
            {
                // controls that are there for sure
                {"main window", Scene(showMainWindow), 40},
                {"sign-in", widgetScene<LoginDialog>(), 15},
                {"hint on a tile", widgetScene<PlayerNotification>("Saved"_s, false, nullptr), 1},
                {"LAN server", dialogScene([] { LocalServerDialog::addServer(nullptr); }), 7},
                {"camera",
                 dialogScene([] { CameraSettingsDialog::editCamera(rosterCamera("gate"_s, 1)); }),
                 5},
            });
    }

    void everyControlHasAName()
    {
        QFETCH(Scene, scene);
        QFETCH(int, fewest);
        int controls = 0;
        QStringList faults;
        scene([&](QWidget *window) { faults = faultsIn(window, &controls); });
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join("; "_s)));
        QVERIFY2(controls >= fewest, QByteArray::number(controls));
    }

    /// The pictures of the panels are left out on purpose: keys stay with what is typed.
    void tabGoesThroughTheEditorOfALayout()
    {
        showMainWindow([](QWidget *window) {
            QStringList order;
            const QWidget *first = window->findChild<QLineEdit *>("searchEdit"_s);
            const QWidget *widget = first;
            do {
                if (isControl(widget) && widget->isVisible() &&
                    (widget->focusPolicy() & Qt::TabFocus))
                    order.append(widget->objectName());
                widget = widget->nextInFocusChain();
            } while (widget != first);
            QCOMPARE(order, (QStringList{"searchEdit", "layoutNameEdit", "saveLayoutButton",
                                         "cancelLayoutButton"}));
        });
    }
};

QTEST_MAIN(ControlsTest)
#include "ControlsTest.moc"
