// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include "tests/support/Test.h"

#include "tests/support/MisbehavingServer.h"
#include "tests/support/TlsIdentity.h"

using ZorvaneClient::API::HTTPClient;

namespace {

constexpr qint64 listingDeadlineMs = 2000;
// A thread that is stuck is waited for five seconds.
constexpr qint64 stuckMs = 4000;

int networkThreadCount()
{
    int count = 0;
    const QDir tasks("/proc/self/task"_s);
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(task + "/comm"_s));
        if (name.open(QIODevice::ReadOnly) && name.readAll().startsWith("QNetworkAccess"))
            ++count;
    }
    return count;
}

// A thread that has ended can still be listed for a moment.
bool noNetworkThreadIsLeft()
{
    QElapsedTimer clock;
    clock.start();
    while (networkThreadCount() > 0 && !clock.hasExpired(listingDeadlineMs))
        QThread::yieldCurrentThread();
    return networkThreadCount() == 0;
}

/// A server over TLS that goes on while the application object dies. It never answers.
class ServerThread : public QThread
{
public:
    ~ServerThread() override
    {
        quit();
        wait();
    }

    /// Returns the port.
    int listen(const TlsIdentity &tlsIdentity)
    {
        identity = &tlsIdentity;
        start();
        listening.acquire();
        return port;
    }

protected:
    void run() override
    {
        MisbehavingServer server;
        server.setReply(WireReply::silence());
        server.start(identity);
        port = server.port();
        listening.release();
        exec();
    }

private:
    const TlsIdentity *identity = nullptr;
    int port = 0;
    QSemaphore listening;
};

void trust(const TlsIdentity &identity)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates({identity.certificate()});
    QSslConfiguration::setDefaultConfiguration(configuration);
}

/// The application object of one run.
struct Application {
    int argumentCount = 1;
    char program[5] = "test";
    char *arguments[2] = {program, nullptr};
    QCoreApplication object{argumentCount, arguments};
};

using Clients = QList<QSharedPointer<HTTPClient>>;

void ask(Clients &clients, const QString &host, int port, bool ssl)
{
    clients.append(QSharedPointer<HTTPClient>::create(host, port, ssl, false));
    clients.last()->get("/"_s, QVariantMap(), true);
}

} // namespace

/// What is left of requests when the application object goes.
class HTTPClientExitTest : public QObject
{
    Q_OBJECT

private slots:
    void noThreadOutlivesTheApplication()
    {
        Clients clients;
        {
            Application application;
            MisbehavingServer server;
            QVERIFY(server.start());
            server.setReply(WireReply::silence());
            constexpr int clientCount = 5;
            for (int i = 0; i < clientCount; ++i)
                ask(clients, "127.0.0.1"_s, server.port(), false);
            QTRY_COMPARE(server.requests().size(), clientCount);
            QCOMPARE(networkThreadCount(), clientCount);
        }
        QVERIFY(noNetworkThreadIsLeft());
    }

    void noThreadIsStuckInItsHandshake()
    {
        // Each run ends at another moment of the handshake.
        constexpr int runCount = 60;
        constexpr int latestMomentMs = 20;
        constexpr int clientCount = 3;
        QScopedPointer<TlsIdentity> identity;
        for (int run = 0; run < runCount; ++run) {
            ServerThread server;
            Clients clients;
            QElapsedTimer ending;
            {
                Application application;
                if (!identity) {
                    identity.reset(new TlsIdentity("exit"_s));
                    QVERIFY(identity->isValid());
                    trust(*identity);
                }
                const int port = server.listen(*identity);
                for (int i = 0; i < clientCount; ++i)
                    ask(clients, "localhost"_s, port, true);
                const QDeadlineTimer moment(run % latestMomentMs);
                do {
                    QCoreApplication::processEvents();
                } while (!moment.hasExpired());
                ending.start();
            }
            QVERIFY(ending.elapsed() < stuckMs);
            QVERIFY(noNetworkThreadIsLeft());
        }
    }
};

QTEST_APPLESS_MAIN(HTTPClientExitTest)
#include "HTTPClientExitTest.moc"
