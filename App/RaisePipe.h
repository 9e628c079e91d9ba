// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

namespace ZorvaneClient {
namespace App {

/// The named pipe through which a second start asks the first for its windows. Who starts the
/// program makes the pipe; it is listened to as long as this object lives.
class RaisePipe : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(RaisePipe)

public:
    /// Says in the log when there is no pipe of the user's at `path`.
    explicit RaisePipe(const QString &path, QObject *parent = nullptr);
    ~RaisePipe() override;

signals:
    void asked();

private:
    void read();

    int descriptor = -1;
};

} // namespace App
} // namespace ZorvaneClient
