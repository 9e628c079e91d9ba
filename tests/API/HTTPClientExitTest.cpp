// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include "tests/API/CloudFixture.h"
#include "tests/support/TlsIdentity.h"

/// What is left of requests when the application object goes.
class HTTPClientExitTest : public QObject
{
    Q_OBJECT

private slots:
    /// Each run ends at another moment of the handshake, the last one with requests that wait
    /// for their answer.
    void noThreadOutlivesTheApplication()
    {
        constexpr int lastRun = 60;
        constexpr int clientCount = 3;
        int argumentCount = 1;
        char program[] = "test";
        char *arguments[] = {program, nullptr};
        QScopedPointer<TlsIdentity> identity;
        for (int run = 0; run <= lastRun; ++run) {
            // A server that goes on while the application object dies. It never answers.
            int port = 0;
            QSemaphore listening;
            QSemaphore asked;
            const QScopedPointer<QThread> thread(QThread::create([&] {
                MisbehavingServer server;
                server.setHandler([&asked](const WireRequest &) {
                    asked.release();
                    return WireReply::silence();
                });
                server.start(identity.data());
                port = server.port();
                listening.release();
                QEventLoop().exec();
            }));
            const auto stop = qScopeGuard([&thread] {
                thread->quit();
                thread->wait();
            });
            QList<QSharedPointer<HTTPClient>> clients;
            QElapsedTimer ending;
            {
                QCoreApplication application(argumentCount, arguments);
                if (!identity) {
                    identity.reset(new TlsIdentity("exit"_s));
                    QVERIFY(identity->isValid());
                    QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
                    trusting.setCaCertificates({identity->certificate()});
                    QSslConfiguration::setDefaultConfiguration(trusting);
                }
                thread->start();
                listening.acquire();
                for (int i = 0; i < clientCount; ++i) {
                    clients << QSharedPointer<HTTPClient>::create("localhost"_s, port, true, false);
                    clients.last()->get("/"_s, QVariantMap(), true);
                }
                if (run == lastRun) {
                    QTRY_COMPARE(asked.available(), clientCount);
                    QCOMPARE(networkThreadCount(), clientCount);
                }
                const QDeadlineTimer moment(run % 20);
                do {
                    QCoreApplication::processEvents();
                } while (!moment.hasExpired());
                ending.start();
            }
            QVERIFY(ending.elapsed() < 4000); // a thread that is stuck is waited for five seconds
            // A thread that has ended can still be listed for a moment.
            const QDeadlineTimer listed(2000);
            while (networkThreadCount() > 0 && !listed.hasExpired())
                QThread::yieldCurrentThread();
            QCOMPARE(networkThreadCount(), 0);
        }
    }
};

QTEST_APPLESS_MAIN(HTTPClientExitTest)
#include "HTTPClientExitTest.moc"
