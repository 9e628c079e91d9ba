// SPDX-License-Identifier: MIT
#include <QApplication>

#include "tests/fuzz/Fuzz.h"

/// An application without a display, and no log.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TZ", "Asia/Beirut"); // where on some days the clock goes forward at midnight
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    new QApplication(*argc, *argv); // lives as long as the process
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    tryInput(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    return 0;
}
