// SPDX-License-Identifier: MIT
#include <QProcess>

#include "App/Application.h"

int main(int argc, char *argv[])
{
    using ZorvaneClient::App::Application;

    Application application(argc, argv);
    application.setStyleSheet(Application::globalStyleSheet());
    application.startLogin();
    const int exitCode = Application::exec();
    if (exitCode != ZorvaneClient::App::restartExitCode)
        return exitCode;
    // The whole list goes along, so the new process sees its own path as first argument.
    const QStringList arguments = Application::arguments();
    QProcess::startDetached(arguments.first(), arguments);
    return 0;
}
