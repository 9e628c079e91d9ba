// SPDX-License-Identifier: MIT
// What every target needs before its first input: an application without a display, and no log.
#include <QGuiApplication>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    new QGuiApplication(*argc, *argv); // lives as long as the process
    return 0;
}
