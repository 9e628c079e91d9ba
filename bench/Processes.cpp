// SPDX-License-Identifier: MIT
#include "bench/Processes.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace ZorvaneClient {
namespace Bench {

namespace {

// Of the fields of /proc/PID/stat that follow the program's name.
constexpr int userTicksField = 11;
constexpr int systemTicksField = 12;

QByteArray contentOf(const QString &pid, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid, QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

double cpuMillisecondsOf(qint64 pid)
{
    const QByteArray line = contentOf(QString::number(pid), "stat");
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double ticks =
        fields.value(userTicksField).toDouble() + fields.value(systemTicksField).toDouble();
    return ticks * 1000 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double mebibytesOf(const QString &pid, const char *file, const QByteArray &label)
{
    const QList<QByteArray> lines = contentOf(pid, file).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(label + ':'))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    }
    return 0;
}

qint64 displayServer()
{
    // ":99.0" is served at a socket of the number 99, which knows who listens there.
    const QByteArray number = qgetenv("DISPLAY").mid(1).split('.').first();
    const QByteArray path = "/tmp/.X11-unix/X" + number;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (number.isEmpty() || path.size() >= static_cast<int>(sizeof address.sun_path))
        return 0;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int link = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ucred server = {};
    socklen_t length = sizeof server;
    const bool known =
        link >= 0 &&
        connect(link, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
        getsockopt(link, SOL_SOCKET, SO_PEERCRED, &server, &length) == 0;
    close(link);
    return known ? server.pid : 0;
}

} // namespace Bench
} // namespace ZorvaneClient
