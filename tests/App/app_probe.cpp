// SPDX-License-Identifier: MIT
// A process of its own for tests of what the program keeps in its working directory.
#include <QCoreApplication>
#include <QDebug>
#include <QTextStream>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "App/Log.h"
#include "App/Settings.h"

using namespace ZorvaneClient;

namespace {

int logLevels()
{
    App::openLog();
    qDebug() << "a debug line";
    qWarning() << "a warning line";
    qCritical() << "a critical line";
    qDebug("%s", qPrintable(QString::fromUtf8("камера")));
    return 0;
}

int logFatal()
{
    App::openLog();
    qDebug() << "going down";
    qFatal("the end");
}

// Stays alive after its line, so that the reader knows the line didn't wait for the end.
int logAndWait()
{
    App::openLog();
    qWarning() << "still alive";
    std::printf("written\n");
    std::fflush(stdout);
    std::getchar();
    return 0;
}

int logFromThreads(int threadCount, int lineCount)
{
    App::openLog();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([thread, lineCount] {
            for (int line = 0; line < lineCount; ++line)
                qWarning("thread %d line %d end", thread, line);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    return 0;
}

int writeSettings()
{
    App::Settings &settings = App::settings();
    settings.setValue(QStringLiteral("auth/email"), QStringLiteral("anna@example.com"));
    settings.setValue(QStringLiteral("auth/password"), QString::fromUtf8("п+a&r;o=l\"ь, 1"));
    settings.setValue(QStringLiteral("auth/saveAuth"), true);
    settings.setValue(QStringLiteral("proxy/port"), 3128);
    settings.setValue(QStringLiteral("mainWindow/geometry"), QByteArray("\x01\x00\xff\n", 4));
    settings.setValue(QStringLiteral("cameras/srv1/7/rotation"), 270);
    return 0;
}

int signOut()
{
    App::settings().setValue(QStringLiteral("auth/saveAuth"), QString(QLatin1String("")));
    return 0;
}

int readSettings()
{
    const App::Settings &settings = App::settings();
    QTextStream out(stdout);
    out << settings.value(QStringLiteral("auth/email")).toString() << '\n'
        << settings.value(QStringLiteral("auth/password")).toString().toUtf8().toHex() << '\n'
        << settings.value(QStringLiteral("auth/saveAuth"), false).toBool() << '\n'
        << settings.value(QStringLiteral("proxy/port"), 0).toInt() << '\n'
        << settings.value(QStringLiteral("mainWindow/geometry")).toByteArray().toHex() << '\n'
        << settings.value(QStringLiteral("cameras/srv1/7/rotation"), 0).toInt() << '\n'
        << settings.value(QStringLiteral("sound/volume"), 50).toInt() << '\n'
        << settings.fileName() << '\n';
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "log-levels")
        return logLevels();
    if (what == "log-fatal")
        return logFatal();
    if (what == "log-wait")
        return logAndWait();
    if (what == "log-threads" && argc > 3)
        return logFromThreads(std::atoi(argv[2]), std::atoi(argv[3]));
    if (what == "write-settings")
        return writeSettings();
    if (what == "sign-out")
        return signOut();
    if (what == "read-settings")
        return readSettings();
    std::fprintf(stderr, "usage: app_probe log-levels|log-fatal|log-wait|log-threads THREADS LINES|"
                         "write-settings|sign-out|read-settings\n");
    return 2;
}
