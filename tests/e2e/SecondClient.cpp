// SPDX-License-Identifier: MIT
// second-client EMAIL PASSWORD LAYOUT
// The client in a process of its own: working folder, home and caches are those it is started
// with. Signs in, waits for the card of that layout, opens it and prints what it sees, a line
// of JSON each: the stamp of its first copy of the layouts, the moment of the card, the
// painted wall. Ends with its standard input.
#include "tests/support/Test.h"

#include <cstdio>

#include <unistd.h>

#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "App/Application.h"
#include "App/Environment.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"

namespace {

constexpr std::chrono::milliseconds lookInterval{100};

void say(const QString &key, const QJsonValue &value)
{
    const QByteArray line = QJsonDocument(QJsonObject{{key, value}}).toJson(QJsonDocument::Compact);
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

/// Looks at the running client and says each thing once, as soon as it can be seen.
class Watcher
{
public:
    Watcher(const QString &email, const QString &layout)
        : cacheFile(API::Internal::layoutsCacheFile(email)), layoutName(layout)
    {
    }

    void look()
    {
        if (!hasStamp)
            lookForStamp();
        else if (!hasCard)
            lookForCard();
        else
            lookAtWall();
    }

private:
    void lookForStamp()
    {
        QFile file(cacheFile);
        if (!file.open(QIODevice::ReadOnly))
            return;
        hasStamp = true;
        say("stamp"_s, QJsonDocument::fromJson(file.readAll()).object().value("last_update"_s));
    }

    void lookForCard()
    {
        GUI::LayoutCard *card = layoutCard(mainWindow(), layoutName);
        if (!card)
            return;
        hasCard = true;
        say("card"_s, static_cast<double>(QDateTime::currentMSecsSinceEpoch()));
        press(mainWindow(), "layoutsButton");
        QTest::mouseClick(card, Qt::LeftButton);
    }

    void lookAtWall()
    {
        const API::LayoutPtr layout = gridOf(mainWindow())->workingLayout();
        const QString wall = paintedWall(mainWindow(), layout->rows(), layout->columns());
        if (wall != saidWall)
            say("wall"_s, wall);
        saidWall = wall;
    }

    QString cacheFile;
    QString layoutName;
    QString saidWall;
    bool hasStamp = false;
    bool hasCard = false;
};

} // namespace

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return 2;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);

    signIn(arguments.at(1), arguments.at(2));
    if (!QTest::qWaitFor([] { return mainWindow() != nullptr; }, replyDeadlineMs))
        return 1;
    Watcher watcher(arguments.at(1), arguments.at(3));
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&watcher] { watcher.look(); });
    timer.start(lookInterval);
    return QApplication::exec();
}
