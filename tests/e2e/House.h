// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include <csignal>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ZorvaneClient::Tests {

/// A server of the working folder's, with the cameras of the file "conf". It needs no application
/// object, so that a client's files can be there before the client.
class House
{
public:
    ~House() { end(SIGKILL); }

    /// Does one command. Its exit code; what it says goes to the file `out`.
    static int run(const QByteArrayList &arguments, const char *out)
    {
        int status = 0;
        waitpid(spawn(arguments, out), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// Starts it; true once it answers.
    bool start()
    {
        server = spawn({}, "log");
        for (int i = 0; i < 600 && waitpid(server, nullptr, WNOHANG) == 0; ++i) {
            if (run({"status"}, "status") == 0)
                return true;
            usleep(100'000);
        }
        return false;
    }
    /// Its exit code.
    int end(int signal)
    {
        int status = 0;
        if (server > 0 && ::kill(server, signal) == 0)
            waitpid(server, &status, 0);
        server = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    static QByteArray content(const QString &name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    static pid_t spawn(const QByteArrayList &arguments, const char *out)
    {
        const pid_t child = fork();
        if (child != 0)
            return child;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (!freopen(out, "a", stdout) || dup2(STDOUT_FILENO, STDERR_FILENO) < 0)
            _exit(1);
        const char *program = ZORVANE_BIN_DIR "/zorvane-server";
        QVarLengthArray<char *, 8> given{const_cast<char *>(program),
                                         const_cast<char *>("--config"),
                                         const_cast<char *>("conf")};
        for (const QByteArray &argument : arguments)
            given.append(const_cast<char *>(argument.constData()));
        given.append(nullptr);
        execv(program, given.data());
        _exit(1);
    }

    pid_t server = 0;
};

} // namespace ZorvaneClient::Tests
