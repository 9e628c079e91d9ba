// SPDX-License-Identifier: MIT
#include <QDir>
#include <QJsonArray>
#include <QSettings>
#include <QtTest>

#include "tests/e2e/ClientProcess.h"
#include "tests/support/DemoService.h"

using namespace ZorvaneClient::Tests;

/// Another language, from the settings page to the process that speaks it.
class RestartTest : public QObject
{
    Q_OBJECT

private slots:
    void languageComesWithTheRestart_data();
    void languageComesWithTheRestart();
};

namespace {

constexpr int deadlineMs = 30000;
const QString sessionsPath = QStringLiteral("/public/sessions");
const QString settingsPage = QStringLiteral("SettingsWidget");
const QString mainWindow = QStringLiteral("MainWindow");
const QString loginDialog = QStringLiteral("LoginDialog");
const QString question = QStringLiteral("QMessageBox");

const QStringList languages{QStringLiteral("en"), QStringLiteral("ru")};

struct Texts {
    QString restartNotice;
    QString accountLabel;
    QString cancelButton; // of the toolkit's own catalogue
    QString signUpButton;
};

/// In the order of `languages`.
const Texts texts[] = {
    {QStringLiteral("Restart required for changes to take effect"), QStringLiteral("Account"),
     QStringLiteral("Cancel"), QStringLiteral("Sign Up")},
    {QStringLiteral("Перезапустите приложение для применения настроек"),
     QStringLiteral("Учетная запись"), QStringLiteral("Отмена"), QStringLiteral("Регистрация")}};

QString newFolder(const QString &name)
{
    const QString folder = QDir::current().absoluteFilePath(name);
    return QDir().mkpath(folder) ? folder : QString();
}

/// The settings of someone who is signed in.
void rememberAccount(const QString &folder, const DemoService &service, const QString &language)
{
    QSettings settings(QDir(folder).filePath(QStringLiteral("ZorvaneClient.ini")),
                       QSettings::IniFormat);
    settings.setValue(QStringLiteral("auth/email"), service.email());
    settings.setValue(QStringLiteral("auth/password"), service.password());
    settings.setValue(QStringLiteral("auth/saveAuth"), true);
    settings.setValue(QStringLiteral("common/language"), language);
}

} // namespace

void RestartTest::languageComesWithTheRestart_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::newRow("Russian") << 0 << 1;
    QTest::newRow("English") << 1 << 0;
}

void RestartTest::languageComesWithTheRestart()
{
    QFETCH(int, before);
    QFETCH(int, after);
    const QString folder = newFolder(languages.at(after));
    DemoService::Options options;
    options.servers = 1;
    options.cameras = 1;
    options.lanServers = 0;
    options.further = QStringList{QStringLiteral("--write-config"), folder};
    DemoService service;
    QVERIFY2(service.start(options), qPrintable(service.errorString()));
    rememberAccount(folder, service, languages.at(before));

    ClientProcess client(folder);
    const QString argument = QStringLiteral("an argument, handed on");
    QVERIFY(client.start({argument}));
    const QJsonObject started = client.client();
    QTRY_VERIFY_WITH_TIMEOUT(client.shows(mainWindow), deadlineMs);
    QCOMPARE(service.requestCount(sessionsPath), 1);

    QVERIFY(client.press(QStringLiteral("ToolBar"), QStringLiteral("settingsButton")));
    QTRY_VERIFY(client.shows(settingsPage));
    QVERIFY(!client.texts(settingsPage).contains(texts[before].restartNotice));
    QVERIFY(client.choose(settingsPage, QStringLiteral("languageBox"), after));
    // What stands on the screen keeps its language.
    QVERIFY(client.texts(settingsPage).contains(texts[before].restartNotice));
    QVERIFY(client.press(settingsPage, QStringLiteral("restartButton")));

    QVERIFY(client.waitForClient(2));
    QTRY_COMPARE_WITH_TIMEOUT(client.process().state(), QProcess::NotRunning, deadlineMs);
    QCOMPARE(client.process().exitStatus(), QProcess::NormalExit);
    QCOMPARE(client.process().exitCode(), 0);
    QVERIFY(client.client().value(QLatin1String("pid")) != started.value(QLatin1String("pid")));
    QVERIFY(client.client().value(QLatin1String("parent")) !=
            started.value(QLatin1String("parent")));
    QCOMPARE(client.client().value(QLatin1String("folder")).toString(), folder);
    // The program stands in it once more.
    QJsonArray arguments = started.value(QLatin1String("arguments")).toArray();
    arguments.prepend(arguments.first());
    QCOMPARE(client.client().value(QLatin1String("arguments")).toArray(), arguments);

    QTRY_VERIFY_WITH_TIMEOUT(client.shows(mainWindow), deadlineMs);
    QCOMPARE(service.requestCount(sessionsPath), 2);
    QVERIFY(client.press(QStringLiteral("ToolBar"), QStringLiteral("settingsButton")));
    QTRY_VERIFY(client.shows(settingsPage));
    QVERIFY(client.texts(settingsPage).contains(texts[after].accountLabel));
    QVERIFY(!client.texts(settingsPage).contains(texts[after].restartNotice));

    QVERIFY(client.press(settingsPage, QStringLiteral("signoutButton")));
    QTRY_VERIFY(client.shows(question));
    QVERIFY(client.texts(question).contains(texts[after].cancelButton));
    QVERIFY(client.answerQuestion(true));
    QTRY_VERIFY_WITH_TIMEOUT(client.shows(loginDialog), deadlineMs);
    QVERIFY(client.texts(loginDialog).contains(texts[after].signUpButton));
    QVERIFY(client.press(loginDialog, QStringLiteral("signUpButton")));
    QTRY_COMPARE(client.openedLinks().size(), 1);
    QVERIFY2(client.openedLinks().first().endsWith(QStringLiteral("&lang=") + languages.at(after)),
             qPrintable(client.openedLinks().first()));

    QVERIFY(client.close(loginDialog));
    QTRY_VERIFY_WITH_TIMEOUT(!client.isClientRunning(), deadlineMs);
}

QTEST_GUILESS_MAIN(RestartTest)
#include "RestartTest.moc"
