// SPDX-License-Identifier: MIT
// The program's own start, up to the painted sign-in dialog.
#include "App/Application.h"
#include "bench/FirstPaint.h"

int main(int argc, char *argv[])
{
    using ZorvaneClient::App::Application;

    Application application(argc, argv);
    ZorvaneClient::Bench::FirstPaint firstPaint;
    application.installEventFilter(&firstPaint);
    application.setStyleSheet(Application::globalStyleSheet());
    application.startLogin();
    return Application::exec();
}
