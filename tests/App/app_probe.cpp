// SPDX-License-Identifier: MIT
// A process of its own for tests of what the program keeps in its working directory.
#include <QCoreApplication>
#include <QDebug>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "App/Log.h"
#include "App/Settings.h"

using namespace ZorvaneClient;

namespace {

/// Prints what is stored, then stores something else.
void readAndWriteSettings()
{
    const std::pair<const char *, QVariant> values[] = {
        {"auth/email", "anna@example.com"},
        {"auth/password", QString::fromUtf8("п+a&r;o=l\"ь, 1")},
        {"auth/saveAuth", QString(QLatin1String(""))},
        {"proxy/port", 3128},
        {"mainWindow/geometry", QByteArray("\x01\x00\xff\n", 4)}};
    for (const auto &value : values) {
        const QString key = QLatin1String(value.first);
        std::puts(App::settings().value(key, "none").toByteArray().toHex().constData());
        App::settings().setValue(key, value.second);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "settings") {
        readAndWriteSettings();
        return 0;
    }
    App::openLog();
    if (what == "threads") {
        std::vector<std::thread> threads;
        threads.reserve(8);
        for (int thread = 0; thread < 8; ++thread) {
            threads.emplace_back([thread] {
                for (int line = 0; line < 500; ++line)
                    qWarning("thread %d line %d end", thread, line);
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        return 0;
    }
    qDebug() << "a debug line";
    qWarning() << "a warning line";
    qCritical() << "a critical line";
    qDebug("%s", qPrintable(QString::fromUtf8("камера")));
    if (what == "fatal")
        qFatal("the end");
    return 0;
}
