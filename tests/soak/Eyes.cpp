// SPDX-License-Identifier: MIT
#include "tests/soak/Eyes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGenericPlugin>
#include <QImage>
#include <QJsonDocument>
#include <QMenu>
#include <QProcess>
#include <QRegion>
#include <QScreen>
#include <QWidget>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>

#include "demo/client/StripReader.h"

namespace ZorvaneClient::Tests {

namespace {

using namespace std::chrono_literals;

constexpr auto beatInterval = 20ms;
/// A tile's outermost pixels are its border, which the pointer changes.
constexpr int borderPixels = 4;

QString classOf(const QObject *object)
{
    return QString::fromLatin1(object->metaObject()->className()).section("::", -1);
}

QJsonArray toJson(const QRect &place)
{
    return {place.x(), place.y(), place.width(), place.height()};
}

QRect placeOf(const QWidget *widget, const QRect &part)
{
    return QRect(widget->mapToGlobal(part.topLeft()), part.size());
}

/// What is in sight of it within its window.
QRect seenPart(const QWidget *widget)
{
    return widget->isVisible() ? widget->visibleRegion().boundingRect() : QRect();
}

QJsonObject describe(const QWidget *widget)
{
    QJsonObject result{{"id", QString::number(quintptr(widget))},
                       {"class", classOf(widget)},
                       {"name", widget->objectName()},
                       {"window", double(widget->window()->effectiveWinId())},
                       {"place", toJson(placeOf(widget, seenPart(widget)))},
                       {"text", widget->property("text").toString()},
                       {"enabled", widget->isEnabled()}};
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        result.insert("checked", button->isChecked());
    if (const auto *box = qobject_cast<const QComboBox *>(widget))
        result.insert("index", box->currentIndex());
    return result;
}

/// Those in sight of that class, of that name, or of both; an empty text fits all.
QJsonArray find(const QString &className, const QString &name)
{
    QJsonArray found;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        const bool fits = (className.isEmpty() || classOf(widget) == className) &&
                          (name.isEmpty() || widget->objectName() == name);
        if (fits && !seenPart(widget).isEmpty())
            found.append(describe(widget));
    }
    return found;
}

QJsonArray menuEntries()
{
    QJsonArray entries;
    const auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return entries;
    const QList<QAction *> actions = menu->actions();
    for (QAction *action : actions)
        entries.append(QJsonObject{{"text", action->text()},
                                   {"enabled", action->isEnabled() && !action->isSeparator()},
                                   {"place", toJson(placeOf(menu, menu->actionGeometry(action)))}});
    return entries;
}

QJsonArray windows()
{
    QJsonArray result;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (const QWidget *window : widgets) {
        if (!window->isVisible())
            continue;
        QJsonObject one = describe(window);
        one.insert("title", window->windowTitle());
        one.insert("popup", window == QApplication::activePopupWidget());
        one.insert("modal", window == QApplication::activeModalWidget());
        one.insert("active", window->isActiveWindow());
        one.insert("minimised", window->isMinimized());
        one.insert("fullscreen", window->isFullScreen());
        result.append(one);
    }
    return result;
}

/// What the tile paints itself, without its bars: a name for the picture, and its strip.
void lookAtPicture(QWidget *tile, QJsonObject *result)
{
    const int border = 2 * borderPixels;
    QImage painted(tile->size(), QImage::Format_RGB32);
    if (tile->width() <= border || tile->height() <= border)
        return;
    painted.fill(Qt::black);
    tile->render(&painted, QPoint(), QRegion(), QWidget::RenderFlags());
    const QImage inside = painted.copy(
        painted.rect().adjusted(borderPixels, borderPixels, -borderPixels, -borderPixels));
    result->insert("picture",
                   QString::number(qHashBits(inside.constBits(), size_t(inside.sizeInBytes()))));
    if (const auto strip = ZorvaneDemo::StripReader::readTile(painted))
        result->insert("strip", QJsonArray{strip->camera, strip->milliseconds});
}

QJsonObject describeTile(QWidget *tile)
{
    QJsonObject result = describe(tile);
    const QList<QWidget *> parts = tile->findChildren<QWidget *>();
    for (const QWidget *part : parts) {
        if (part->objectName() == "cameraName" || part->objectName() == "cameraTime")
            result.insert(part->objectName(), part->property("text").toString());
        if (part->objectName() == "spinnerWidget")
            result.insert("spinner", !part->isHidden());
    }
    const QList<QProcess *> processes = tile->findChildren<QProcess *>();
    for (const QProcess *process : processes) {
        const QStringList arguments = process->arguments();
        const bool isExport = arguments.value(0) == "export";
        if (!isExport && !arguments.isEmpty())
            result.insert("url", arguments.first());
        if (process->state() == QProcess::Running)
            result.insert(isExport ? "exporter" : "player", double(process->processId()));
    }
    if (tile->isVisible())
        lookAtPicture(tile, &result);
    return result;
}

QJsonArray tiles()
{
    QJsonArray result;
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets) {
        // One that was closed and is still to be deleted belongs to no window.
        if (classOf(widget) == "VideoWidget" && !widget->isWindow())
            result.append(describeTile(widget));
    }
    return result;
}

} // namespace

Eyes::Eyes(const QString &socketName, QObject *parent) : QObject(parent)
{
    connect(&socket, &QLocalSocket::readyRead, this, &Eyes::readRequests);
    // Nobody looks any more: a client that was started in another's place ends, too.
    const auto endAll = [] { ::_exit(1); };
    connect(&socket, &QLocalSocket::disconnected, this, endAll);
    socket.connectToServer(socketName);
    if (!socket.waitForConnected())
        endAll();
    say({{"pid", double(::getpid())}});
    connect(&pulse, &QTimer::timeout, this, &Eyes::beat);
    pulse.setTimerType(Qt::PreciseTimer);
    pulse.start(beatInterval);
    sinceBeat.start();
}

void Eyes::beat()
{
    const std::chrono::milliseconds passed(sinceBeat.restart());
    longestStall = std::max(longestStall, passed - beatInterval);
}

QJsonObject Eyes::vitals()
{
    beat();
    const auto heap = mallinfo2();
    const QJsonObject result{{"heap", double(heap.uordblks + heap.hblkhd)},
                             {"stall", double(longestStall.count())},
                             {"widgets", double(QApplication::allWidgets().size())}};
    longestStall = 0ms;
    return result;
}

QJsonObject Eyes::answer(const QJsonArray &request)
{
    const QString what = request.at(0).toString();
    if (what == "find")
        return {{"found", find(request.at(1).toString(), request.at(2).toString())}};
    if (what == "menu")
        return {{"found", menuEntries()}};
    if (what == "windows")
        return {{"found", windows()}};
    if (what == "tiles")
        return {{"found", tiles()}};
    if (what == "vitals")
        return vitals();
    if (what == "shot")
        return {{"saved",
                 QGuiApplication::primaryScreen()->grabWindow(0).save(request.at(1).toString())}};
    return {{"unknown", what}};
}

void Eyes::say(const QJsonObject &line)
{
    socket.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
    socket.flush();
}

void Eyes::readRequests()
{
    while (socket.canReadLine())
        say(answer(QJsonDocument::fromJson(socket.readLine()).array()));
}

/// The toolkit loads it into the program when told so by the environment.
class EyesPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "eyes.json")

public:
    /// The toolkit is still being set up here: all else waits for the event loop.
    QObject *create(const QString &, const QString &) override
    {
        auto *place = new QObject;
        QTimer::singleShot(
            0, place, [place] { new Eyes(qEnvironmentVariable("ZORVANE_EYES_SOCKET"), place); });
        return place;
    }
};

} // namespace ZorvaneClient::Tests

#include "Eyes.moc"
