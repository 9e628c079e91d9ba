// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "demo/client/DemoService.h"
#include "tests/e2e/ClientProcess.h"

using namespace ZorvaneDemo;

namespace {

constexpr int deadlineMs = 30000;
const QString settingsPage = "SettingsWidget"_s;

struct Language {
    QString code;
    QString restartNotice;
    QString accountLabel;
    QString cancelButton; // of the toolkit's own catalogue
    QString signUpButton;
};

const Language languages[] = {
    {"en"_s, "Restart required for changes to take effect"_s, "Account"_s, "Cancel"_s, "Sign Up"_s},
    {"ru"_s, "Перезапустите приложение для применения настроек"_s, "Учетная запись"_s, "Отмена"_s,
     "Регистрация"_s}};

} // namespace

/// Another language, from the settings page to the process that speaks it.
class RestartTest : public QObject
{
    Q_OBJECT

private slots:
    void languageComesWithTheRestart_data()
    {
        rows<int>({"chosen"}, {{"English", 0}, {"Russian", 1}});
    }

    void languageComesWithTheRestart()
    {
        const auto [chosen] = row<int>();
        const Language &before = languages[1 - chosen];
        const Language &after = languages[chosen];
        const QString folder = QDir::current().absoluteFilePath(after.code);
        QVERIFY(QDir().mkpath(folder));
        DemoService::Options options;
        options.servers = 1;
        options.cameras = 1;
        options.lanServers = 0;
        options.further = QStringList{"--write-config"_s, folder};
        DemoService service;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));

        ClientProcess client(folder);
        client.remember(service.email(), service.password(), before.code);
        QVERIFY(client.start({"an argument, handed on"_s}));
        const QJsonObject started = client.client();
        QTRY_VERIFY_WITH_TIMEOUT(client.shows("MainWindow"_s), deadlineMs);
        QVERIFY(client.press("ToolBar"_s, "settingsButton"_s));
        QTRY_VERIFY(client.shows(settingsPage));
        QVERIFY(!client.texts(settingsPage).contains(before.restartNotice));
        QVERIFY(client.choose(settingsPage, "languageBox"_s, chosen));
        // What stands on the screen keeps its language.
        QVERIFY(client.texts(settingsPage).contains(before.restartNotice));
        QVERIFY(client.press(settingsPage, "restartButton"_s));

        QVERIFY(client.waitForClient(2));
        QTRY_COMPARE_WITH_TIMEOUT(client.process().state(), QProcess::NotRunning, deadlineMs);
        QCOMPARE(client.process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(client.process().exitCode(), 0);
        QVERIFY(client.client().value("pid"_s) != started.value("pid"_s));
        QVERIFY(client.client().value("parent"_s) != started.value("parent"_s));
        QCOMPARE(client.client().value("folder"_s).toString(), folder);
        // The program stands in it once more.
        QJsonArray arguments = started.value("arguments"_s).toArray();
        arguments.prepend(arguments.first());
        QCOMPARE(client.client().value("arguments"_s).toArray(), arguments);

        QTRY_VERIFY_WITH_TIMEOUT(client.shows("MainWindow"_s), deadlineMs);
        QCOMPARE(service.requestCount("/public/sessions"_s), 2);
        QVERIFY(client.press("ToolBar"_s, "settingsButton"_s));
        QTRY_VERIFY(client.shows(settingsPage));
        QVERIFY(client.texts(settingsPage).contains(after.accountLabel));
        QVERIFY(!client.texts(settingsPage).contains(after.restartNotice));

        QVERIFY(client.press(settingsPage, "signoutButton"_s));
        QTRY_VERIFY(client.shows("QMessageBox"_s));
        QVERIFY(client.texts("QMessageBox"_s).contains(after.cancelButton));
        QVERIFY(client.press("QMessageBox"_s));
        QTRY_VERIFY_WITH_TIMEOUT(client.shows("LoginDialog"_s), deadlineMs);
        QVERIFY(client.texts("LoginDialog"_s).contains(after.signUpButton));
        QVERIFY(client.press("LoginDialog"_s, "signUpButton"_s));
        QTRY_COMPARE(client.openedLinks().size(), 1);
        QVERIFY2(client.openedLinks().first().endsWith("&lang="_s + after.code),
                 qPrintable(client.openedLinks().first()));
        QVERIFY(client.close("LoginDialog"_s));
        QTRY_VERIFY_WITH_TIMEOUT(!client.isClientRunning(), deadlineMs);
    }
};

QTEST_GUILESS_MAIN(RestartTest)
#include "RestartTest.moc"
