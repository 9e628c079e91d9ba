// SPDX-License-Identifier: MIT
// The least a Qt program does to show a window of the sign-in dialog's size.
#include <QApplication>
#include <QWidget>

#include "bench/FirstPaint.h"

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    FirstPaint firstPaint;
    application.installEventFilter(&firstPaint);
    QWidget window;
    window.resize(440, 413);
    window.show();
    return QApplication::exec();
}
