// SPDX-License-Identifier: MIT
#include "App/RaisePipe.h"

#include <QDebug>
#include <QFile>
#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZorvaneClient {
namespace App {

RaisePipe::RaisePipe(const QString &path, QObject *parent) : QObject(parent)
{
    // Open for writing too: without any writer a pipe would always be ready, with nothing in it.
    descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    struct stat status = {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0 || !S_ISFIFO(status.st_mode) ||
        status.st_uid != geteuid()) {
        qWarning() << "Second starts cannot ask for the windows through" << path;
        return;
    }
    auto *notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &RaisePipe::read);
}

RaisePipe::~RaisePipe()
{
    if (descriptor >= 0)
        ::close(descriptor);
}

void RaisePipe::read()
{
    char ignored[256];
    if (::read(descriptor, ignored, sizeof ignored) > 0)
        emit asked();
}

} // namespace App
} // namespace ZorvaneClient
