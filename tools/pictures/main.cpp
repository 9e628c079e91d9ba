// SPDX-License-Identifier: MIT
// picture-maker LANGUAGE FOLDER
// Runs the client in that language with a demo service and the real player, brings it into
// every state that a user can see and saves each as a PNG in the folder. Leaves its working
// files in the working folder; QT_SCALE_FACTOR sets the scale. Starts a display of its own.
#include <cstdio>
#include <cstdlib>

#include "App/Application.h"
#include "App/Environment.h"
#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/support/VirtualDisplay.h"
#include "tools/pictures/Scenes.h"
#include "tools/pictures/Studio.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Pictures;
using namespace ZorvaneClient::Tests;

namespace {

/// Holds the main window, with popups on every side, at the scale 2.
constexpr int displayWidth = 3200;
constexpr int displayHeight = 2000;

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("usage: picture-maker LANGUAGE FOLDER\n", stderr);
        return 2;
    }
    App::settings().setValue(App::SettingsKey::language, QString::fromLocal8Bit(argv[1]));
    const VirtualDisplay display(displayWidth, displayHeight);
    if (display.name().isEmpty()) {
        std::fputs("picture-maker: Xvfb does not start\n", stderr);
        return EXIT_FAILURE;
    }
    display.use();
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));

    Studio studio(QCoreApplication::arguments().at(2));
    recordArchive(studio);
    takeSignIn(studio);
    takeRoster(studio);
    takeWalls(studio);
    takeLayouts(studio);
    takeControls(studio);
    takeArchive(studio);
    takeExport(studio);
    takeDialogs(studio);
    takeSettings(studio);
    studio.album.writeIndex();
    leave();
    return 0;
}
