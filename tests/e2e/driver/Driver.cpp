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
#include <QTimer>

#include <unistd.h>

namespace ZorvaneClient {
namespace Tests {

namespace {

bool isOfClass(const QObject *object, const QString &name)
{
    return QString::fromLatin1(object->metaObject()->className())
               .section(QStringLiteral("::"), -1) == name;
}

/// The visible one of that name inside a widget of that class; without a name, the latter.
QWidget *find(const QString &className, const QString &name)
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets) {
        if (!isOfClass(widget, className) || !widget->isVisible())
            continue;
        if (name.isEmpty())
            return widget;
        if (auto *part = widget->findChild<QWidget *>(name); part && part->isVisible())
            return part;
    }
    return nullptr;
}

/// Later: what is pressed may open a dialog, and the answer would wait for its end.
template <typename Press>
void pressLater(QWidget *widget, Press press)
{
    QTimer::singleShot(0, widget, press);
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

bool press(QWidget *widget, const QString &standardButton)
{
    auto *button = qobject_cast<QAbstractButton *>(widget);
    if (const auto *box = qobject_cast<QMessageBox *>(widget))
        button = box->button(standardButton == QLatin1String("ok") ? QMessageBox::Ok
                                                                   : QMessageBox::Cancel);
    if (!button)
        return false;
    pressLater(button, [button] { button->click(); });
    return true;
}

bool choose(QWidget *widget, int index)
{
    auto *box = qobject_cast<QComboBox *>(widget);
    if (box)
        box->setCurrentIndex(index);
    return box;
}

} // namespace

Driver::Driver(const QString &socketName)
{
    connect(&socket, &QLocalSocket::readyRead, this, &Driver::readRequests);
    socket.connectToServer(socketName);
    say({{QStringLiteral("pid"), static_cast<int>(::getpid())},
         {QStringLiteral("parent"), static_cast<int>(::getppid())},
         {QStringLiteral("folder"), QDir::currentPath()},
         {QStringLiteral("arguments"), QJsonArray::fromStringList(QCoreApplication::arguments())}});
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "linkOpened");
}

void Driver::linkOpened(const QUrl &url)
{
    say({{QStringLiteral("opened"), url.toString()}});
}

void Driver::say(const QJsonObject &line)
{
    socket.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
    socket.flush();
}

void Driver::readRequests()
{
    while (socket.canReadLine())
        say(answer(QJsonDocument::fromJson(socket.readLine()).object()));
}

QJsonObject Driver::answer(const QJsonObject &request)
{
    const QString what = request.value(QLatin1String("do")).toString();
    QWidget *widget = find(request.value(QLatin1String("in")).toString(),
                           request.value(QLatin1String("name")).toString());
    QJsonObject result;
    bool done = widget != nullptr;
    if (widget && what == QLatin1String("press"))
        done = press(widget, request.value(QLatin1String("button")).toString());
    else if (widget && what == QLatin1String("choose"))
        done = choose(widget, request.value(QLatin1String("index")).toInt());
    else if (widget && what == QLatin1String("texts"))
        result.insert(QStringLiteral("texts"), textsOf(widget));
    else if (widget && what == QLatin1String("close"))
        pressLater(widget, [widget] { widget->close(); });
    result.insert(QStringLiteral("done"), done);
    return result;
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
            const QString name = qEnvironmentVariable("ZORVANE_DRIVER_SOCKET");
            auto *driver = new Driver(name);
            driver->setParent(place);
        });
        return place;
    }
};

} // namespace Tests
} // namespace ZorvaneClient

#include "Driver.moc"
