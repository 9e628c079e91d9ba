// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QTemporaryDir>
#include <QtGlobal>

#include <cstdio>

namespace ZorvaneClient {
namespace Bench {

/// Made before the application: without a display unless one is chosen, in a folder of its
/// own, and without the debug lines.
class QuietRun
{
public:
    QuietRun()
    {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        QDir::setCurrent(folder.path());
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
            if (type != QtDebugMsg)
                std::fprintf(stderr, "%s\n", qUtf8Printable(text));
        });
    }

private:
    QTemporaryDir folder;
};

} // namespace Bench
} // namespace ZorvaneClient
