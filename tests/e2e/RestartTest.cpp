// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "demo/client/DemoService.h"
#include "tests/e2e/ClientProcess.h"

using namespace ZorvaneDemo;

namespace {

constexpr int deadlineMs = 30000;
const QString sessionsPath = "/public/sessions"_s;
const QString settingsPage = "SettingsWidget"_s;
const QString mainWindow = "MainWindow"_s;
const QString loginDialog = "LoginDialog"_s;
const QString question = "QMessageBox"_s;

const QStringList languages{"en"_s, "ru"_s};

struct Texts {
    QString restartNotice;
    QString accountLabel;
    QString cancelButton; // of the toolkit's own catalogue
    QString signUpButton;
};

/// In the order of `languages`.
const Texts texts[] = {
    {"Restart required for changes to take effect"_s, "Account"_s, "Cancel"_s, "Sign Up"_s},
    {"Перезапустите приложение для применения настроек"_s, "Учетная запись"_s, "Отмена"_s,
     "Регистрация"_s}};

QString newFolder(const QString &name)
{
    const QString folder = QDir::current().absoluteFilePath(name);
    return QDir().mkpath(folder) ? folder : QString();
}

/// The settings of someone who is signed in.
void rememberAccount(const QString &folder, const DemoService &service, const QString &language)
{
    QSettings settings(QDir(folder).filePath("ZorvaneClient.ini"_s), QSettings::IniFormat);
    settings.setValue("auth/email"_s, service.email());
    settings.setValue("auth/password"_s, service.password());
    settings.setValue("auth/saveAuth"_s, true);
    settings.setValue("common/language"_s, language);
}

} // namespace

/// Another language, from the settings page to the process that speaks it.
class RestartTest : public QObject
{
    Q_OBJECT

private slots:
    void languageComesWithTheRestart_data()
    {
        rows<int, int>({"before", "after"}, {
                                                {"Russian", 0, 1},
                                                {"English", 1, 0},
                                            });
    }

    void languageComesWithTheRestart()
    {
        const auto [before, after] = row<int, int>();
        const QString folder = newFolder(languages.at(after));
        DemoService::Options options;
        options.servers = 1;
        options.cameras = 1;
        options.lanServers = 0;
        options.further = QStringList{"--write-config"_s, folder};
        DemoService service;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        rememberAccount(folder, service, languages.at(before));

        ClientProcess client(folder);
        const QString argument = "an argument, handed on"_s;
        QVERIFY(client.start({argument}));
        const QJsonObject started = client.client();
        QTRY_VERIFY_WITH_TIMEOUT(client.shows(mainWindow), deadlineMs);
        QCOMPARE(service.requestCount(sessionsPath), 1);

        QVERIFY(client.press("ToolBar"_s, "settingsButton"_s));
        QTRY_VERIFY(client.shows(settingsPage));
        QVERIFY(!client.texts(settingsPage).contains(texts[before].restartNotice));
        QVERIFY(client.choose(settingsPage, "languageBox"_s, after));
        // What stands on the screen keeps its language.
        QVERIFY(client.texts(settingsPage).contains(texts[before].restartNotice));
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

        QTRY_VERIFY_WITH_TIMEOUT(client.shows(mainWindow), deadlineMs);
        QCOMPARE(service.requestCount(sessionsPath), 2);
        QVERIFY(client.press("ToolBar"_s, "settingsButton"_s));
        QTRY_VERIFY(client.shows(settingsPage));
        QVERIFY(client.texts(settingsPage).contains(texts[after].accountLabel));
        QVERIFY(!client.texts(settingsPage).contains(texts[after].restartNotice));

        QVERIFY(client.press(settingsPage, "signoutButton"_s));
        QTRY_VERIFY(client.shows(question));
        QVERIFY(client.texts(question).contains(texts[after].cancelButton));
        QVERIFY(client.answerQuestion(true));
        QTRY_VERIFY_WITH_TIMEOUT(client.shows(loginDialog), deadlineMs);
        QVERIFY(client.texts(loginDialog).contains(texts[after].signUpButton));
        QVERIFY(client.press(loginDialog, "signUpButton"_s));
        QTRY_COMPARE(client.openedLinks().size(), 1);
        QVERIFY2(client.openedLinks().first().endsWith("&lang="_s + languages.at(after)),
                 qPrintable(client.openedLinks().first()));

        QVERIFY(client.close(loginDialog));
        QTRY_VERIFY_WITH_TIMEOUT(!client.isClientRunning(), deadlineMs);
    }
};

QTEST_GUILESS_MAIN(RestartTest)
#include "RestartTest.moc"
