// SPDX-License-Identifier: MIT
#include "tests/e2e/driver/Driver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QGenericPlugin>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPixmap>
#include <QTimer>

#include <unistd.h>

namespace ZorvaneClient::Tests {

namespace {

/// The visible one of that name inside a widget of that class; without a name, the latter.
QWidget *find(const QString &className, const QString &name)
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets) {
        const QString itsClass = QString::fromLatin1(widget->metaObject()->className());
        if (itsClass.section("::", -1) != className || !widget->isVisible())
            continue;
        if (name.isEmpty())
            return widget;
        if (auto *part = widget->findChild<QWidget *>(name); part && part->isVisible())
            return part;
    }
    return nullptr;
}

QJsonArray textsOf(const QWidget *parent)
{
    QJsonArray texts;
    const QWidgetList parts = parent->findChildren<QWidget *>();
    for (const QWidget *part : parts) {
        const QString text = part->property("text").toString();
        if (part->isVisible() && !text.isEmpty())
            texts.append(text);
    }
    return texts;
}

/// A click into its middle; a question is answered with OK.
void click(QWidget *widget)
{
    if (auto *box = qobject_cast<QMessageBox *>(widget))
        widget = box->button(QMessageBox::Ok);
    const QPointF middle = widget->rect().center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, middle, widget->mapToGlobal(middle.toPoint()), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &event);
    }
}

QJsonObject answer(const QString &what, QWidget *widget, const QString &value)
{
    QJsonObject result{{"done", widget != nullptr}};
    if (!widget)
        return result;
    // Later: what is pressed may open a dialog, and the answer would wait for its end.
    if (what == "press")
        QTimer::singleShot(0, widget, [widget] { click(widget); });
    else if (what == "close")
        QTimer::singleShot(0, widget, [widget] { widget->close(); });
    else if (what == "choose")
        qobject_cast<QComboBox *>(widget)->setCurrentIndex(value.toInt());
    else if (what == "texts")
        result.insert("texts", textsOf(widget));
    else if (what == "grab")
        result.insert("done", widget->grab().save(value));
    return result;
}

} // namespace

Driver::Driver(const QString &socketName, QObject *parent) : QObject(parent)
{
    connect(&socket, &QLocalSocket::readyRead, this, &Driver::readRequests);
    // A client whose test is gone ends, also one that was started in another's place.
    const auto endAll = [] { ::_exit(1); };
    connect(&socket, &QLocalSocket::disconnected, this, endAll);
    socket.connectToServer(socketName);
    if (!socket.waitForConnected())
        endAll();
    say({{"pid", static_cast<int>(::getpid())},
         {"parent", static_cast<int>(::getppid())},
         {"folder", QDir::currentPath()},
         {"arguments", QJsonArray::fromStringList(QCoreApplication::arguments())}});
    QDesktopServices::setUrlHandler("http", this, "linkOpened");
}

void Driver::linkOpened(const QUrl &url)
{
    say({{"opened", url.toString()}});
}

void Driver::say(const QJsonObject &line)
{
    socket.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
    socket.flush();
}

void Driver::readRequests()
{
    while (socket.canReadLine()) {
        const QJsonArray request = QJsonDocument::fromJson(socket.readLine()).array();
        say(answer(request.at(0).toString(),
                   find(request.at(1).toString(), request.at(2).toString()),
                   request.at(3).toString()));
    }
}

/// The toolkit loads it into the program when told so by the environment.
class DriverPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "driver.json")

public:
    /// The toolkit is still being set up here: all else waits for the event loop.
    QObject *create(const QString &, const QString &) override
    {
        auto *place = new QObject;
        QTimer::singleShot(0, place, [place] {
            new Driver(qEnvironmentVariable("ZORVANE_DRIVER_SOCKET"), place);
        });
        return place;
    }
};

} // namespace ZorvaneClient::Tests

#include "Driver.moc"
