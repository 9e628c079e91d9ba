// SPDX-License-Identifier: MIT
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QRadioButton>
#include <QtTest>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "GUI/LocalServerDialog.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/GUI/StoredServers.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::LocalServerDialog;

class LocalServerDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void opensWithItsDefaults();
    void takesWhatWasTyped_data();
    void takesWhatWasTyped();
    void cancelGivesNoServer();
    void showsThePasswordOnDemand();
    void editStartsFromTheServer_data();
    void editStartsFromTheServer();
    void editMovesTheServer();
    void cancelledEditChangesNothing();
    void windowGoesWithTheDialogOpen();

private:
    int deadPort = 0;
};

namespace {

const QString localHost = QStringLiteral("127.0.0.1");

QLineEdit *field(const QDialog *dialog, const char *name)
{
    return dialog->findChild<QLineEdit *>(QLatin1String(name));
}

QRadioButton *choice(const QDialog *dialog, const char *name)
{
    return dialog->findChild<QRadioButton *>(QLatin1String(name));
}

} // namespace

void LocalServerDialogTest::initTestCase()
{
    qApp->setStyleSheet(QStringLiteral("* { font: 12px \"PT Sans\"; }"));
    deadPort = MisbehavingServer::deadPort();
}

void LocalServerDialogTest::cleanup()
{
    forgetServers();
}

void LocalServerDialogTest::opensWithItsDefaults()
{
    const DialogVisitor visitor([](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Add a local videoserver"));
        QCOMPARE(dialog->size(), QSize(480, 330));
        QVERIFY(choice(dialog, "localhost")->isChecked());
        QVERIFY(!field(dialog, "ipAddress")->isEnabled());
        QCOMPARE(field(dialog, "ipAddress")->text(), localHost);
        QCOMPARE(field(dialog, "port")->text(), QStringLiteral("8080"));
        QCOMPARE(field(dialog, "name")->text(), QString());
        QCOMPARE(field(dialog, "password")->text(), QString());
        QTest::mouseClick(choice(dialog, "foreignHost"), Qt::LeftButton);
        QVERIFY(field(dialog, "ipAddress")->isEnabled());
        QTest::mouseClick(choice(dialog, "localhost"), Qt::LeftButton);
        QVERIFY(!field(dialog, "ipAddress")->isEnabled());
        const auto labels = dialog->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            QVERIFY2(label->width() >= label->sizeHint().width(), qPrintable(label->text()));
    });
    LocalServerDialog::addServer(nullptr);
    QCOMPARE(visitor.visits(), 1);
}

void LocalServerDialogTest::takesWhatWasTyped_data()
{
    QTest::addColumn<bool>("foreign");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("number");
    const QString other = QStringLiteral("127.0.0.9");
    QTest::newRow("other computer") << true << other << "1" << other << 1;
    QTest::newRow("this computer, whatever the field says")
        << false << other << "2" << localHost << 2;
    QTest::newRow("no number") << false << localHost << "http" << localHost << 0;
    QTest::newRow("nothing") << true << QString() << QString() << QString() << 0;
}

void LocalServerDialogTest::takesWhatWasTyped()
{
    QFETCH(bool, foreign);
    QFETCH(QString, address);
    QFETCH(QString, port);
    const DialogVisitor visitor([&](QDialog *dialog) {
        choice(dialog, "foreignHost")->setChecked(true);
        field(dialog, "ipAddress")->setText(address);
        choice(dialog, foreign ? "foreignHost" : "localhost")->setChecked(true);
        field(dialog, "port")->setText(port);
        field(dialog, "name")->setText(QStringLiteral("Склад"));
        field(dialog, "password")->setText(QStringLiteral("p&ss"));
        clickOk(dialog);
    });
    const API::LocalServerPtr server = LocalServerDialog::addServer(nullptr);
    QVERIFY(server);
    QTEST(server->host(), "host");
    QTEST(server->port(), "number");
    QCOMPARE(server->alias(), QStringLiteral("Склад"));
    QCOMPARE(server->password(), QStringLiteral("p&ss"));
    QVERIFY(API::CloudAPIClient::serverList().isEmpty());
}

void LocalServerDialogTest::cancelGivesNoServer()
{
    const DialogVisitor visitor([](QDialog *dialog) {
        field(dialog, "name")->setText(QStringLiteral("Store"));
        clickCancel(dialog);
    });
    QVERIFY(!LocalServerDialog::addServer(nullptr));
    QCOMPARE(visitor.visits(), 1);
}

void LocalServerDialogTest::showsThePasswordOnDemand()
{
    const DialogVisitor visitor([](QDialog *dialog) {
        const QLineEdit *password = field(dialog, "password");
        auto *box = dialog->findChild<QCheckBox *>(QStringLiteral("showPassword"));
        QCOMPARE(password->echoMode(), QLineEdit::Password);
        box->click();
        QCOMPARE(password->echoMode(), QLineEdit::Normal);
        box->click();
        QCOMPARE(password->echoMode(), QLineEdit::Password);
    });
    LocalServerDialog::addServer(nullptr);
    QCOMPARE(visitor.visits(), 1);
}

void LocalServerDialogTest::editStartsFromTheServer_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("foreign");
    QTest::newRow("this computer") << localHost << false;
    QTest::newRow("other computer") << "127.0.0.9" << true;
    QTest::newRow("this computer by name") << "localhost" << true;
}

void LocalServerDialogTest::editStartsFromTheServer()
{
    QFETCH(QString, host);
    QFETCH(bool, foreign);
    const auto server = API::LocalServerPtr::create(QStringLiteral("Store"), host, deadPort,
                                                    QStringLiteral("secret"));
    const DialogVisitor visitor([&](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Edit a local videoserver"));
        QCOMPARE(choice(dialog, "foreignHost")->isChecked(), foreign);
        QCOMPARE(choice(dialog, "localhost")->isChecked(), !foreign);
        QCOMPARE(field(dialog, "ipAddress")->isEnabled(), foreign);
        QCOMPARE(field(dialog, "ipAddress")->text(), host);
        QCOMPARE(field(dialog, "port")->text(), QString::number(deadPort));
        QCOMPARE(field(dialog, "name")->text(), QStringLiteral("Store"));
        QCOMPARE(field(dialog, "password")->text(), QStringLiteral("secret"));
    });
    LocalServerDialog::editServer(server, nullptr);
    QCOMPARE(visitor.visits(), 1);
}

void LocalServerDialogTest::editMovesTheServer()
{
    MisbehavingServer lan;
    QVERIFY(lan.start());
    lan.setReply(WireReply::json(R"([{"id":5,"name":"Gate","status":1}])"));
    const auto server = API::LocalServerPtr::create(QStringLiteral("Store"), localHost, lan.port(),
                                                    QStringLiteral("old"));
    API::CloudAPIClient().addLocalServer(server);
    QTRY_COMPARE(server->cameras().size(), 1);
    const API::CameraPtr camera = server->cameras().value(5);
    const QString oldId = server->id();

    const DialogVisitor visitor([&](QDialog *dialog) {
        field(dialog, "name")->setText(QStringLiteral("Hall"));
        field(dialog, "port")->setText(QStringLiteral("3"));
        field(dialog, "password")->setText(QStringLiteral("new"));
        choice(dialog, "foreignHost")->setChecked(true);
        field(dialog, "ipAddress")->setText(QStringLiteral("127.0.0.9"));
        clickOk(dialog);
    });
    LocalServerDialog::editServer(server, nullptr);
    const QVariantMap expected{{QStringLiteral("ip"), QStringLiteral("127.0.0.9")},
                               {QStringLiteral("name"), QStringLiteral("Hall")},
                               {QStringLiteral("password"), QStringLiteral("new")},
                               {QStringLiteral("port"), 3}};
    QCOMPARE(storedServers(), QVariantList{expected});
    QCOMPARE(API::CloudAPIClient::serverList().keys(), QStringList{QStringLiteral("127.0.0.9:3")});
    QCOMPARE(API::CloudAPIClient::serverList().first(), API::ServerPtr(server));
    QCOMPARE(camera->serverId(), oldId);
    QVERIFY(camera->liveUrl(0).contains(QStringLiteral("&sessionId=old&")));
}

void LocalServerDialogTest::cancelledEditChangesNothing()
{
    const auto server = API::LocalServerPtr::create(QStringLiteral("Store"), localHost, deadPort,
                                                    QStringLiteral("secret"));
    API::CloudAPIClient().addLocalServer(server);
    const QVariantList before = storedServers();
    QCOMPARE(before.size(), 1);
    const DialogVisitor visitor([](QDialog *dialog) {
        field(dialog, "name")->setText(QStringLiteral("Hall"));
        field(dialog, "port")->setText(QStringLiteral("3"));
        clickCancel(dialog);
    });
    LocalServerDialog::editServer(server, nullptr);
    QCOMPARE(visitor.visits(), 1);
    QCOMPARE(server->toJson(), before.first().toMap());
    QCOMPARE(storedServers(), before);
}

void LocalServerDialogTest::windowGoesWithTheDialogOpen()
{
    QPointer<QWidget> window = new QWidget;
    const DialogVisitor visitor([&](QDialog *) { delete window; });
    QVERIFY(!LocalServerDialog::addServer(window));
    QVERIFY(!window);

    const auto server = API::LocalServerPtr::create(QStringLiteral("Store"), localHost, deadPort,
                                                    QStringLiteral("secret"));
    window = new QWidget;
    LocalServerDialog::editServer(server, window);
    QVERIFY(!window);
    QCOMPARE(server->alias(), QStringLiteral("Store"));
    QCOMPARE(visitor.visits(), 2);
}

QTEST_MAIN(LocalServerDialogTest)
#include "LocalServerDialogTest.moc"
