// SPDX-License-Identifier: MIT
// The least a Qt program does to show a window of the sign-in dialog's size.
#include <QApplication>
#include <QWidget>

#include "bench/FirstPaint.h"

namespace {

constexpr QSize dialogSize(440, 413);

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    ZorvaneClient::Bench::FirstPaint firstPaint;
    application.installEventFilter(&firstPaint);
    QWidget window;
    window.resize(dialogSize);
    window.show();
    return QApplication::exec();
}
