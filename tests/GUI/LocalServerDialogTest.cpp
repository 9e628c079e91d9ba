// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "GUI/LocalServerDialog.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/GUI/StoredServers.h"
#include "tests/support/MisbehavingServer.h"

using GUI::LocalServerDialog;

namespace {

const QString localHost = "127.0.0.1"_s;

QLineEdit *field(const QDialog *dialog, const char *name)
{
    return dialog->findChild<QLineEdit *>(QLatin1String(name));
}

QRadioButton *choice(const QDialog *dialog, const char *name)
{
    return dialog->findChild<QRadioButton *>(QLatin1String(name));
}

} // namespace

class LocalServerDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qApp->setStyleSheet("* { font: 12px \"PT Sans\"; }"_s);
        deadPort = MisbehavingServer::deadPort();
    }

    void cleanup() { forgetServers(); }

    void opensWithItsDefaults()
    {
        const DialogVisitor visitor([](QDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), "Add a local videoserver"_s);
            QCOMPARE(dialog->size(), QSize(480, 330));
            QVERIFY(choice(dialog, "localhost")->isChecked());
            QVERIFY(!field(dialog, "ipAddress")->isEnabled());
            QCOMPARE(field(dialog, "ipAddress")->text(), localHost);
            QCOMPARE(field(dialog, "port")->text(), "8080"_s);
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

    void takesWhatWasTyped_data()
    {
        const QString other = "127.0.0.9"_s;
        rows<bool, QString, QString, QString, int>(
            {"foreign", "address", "port", "host", "number"},
            {
                {"other computer", true, other, "1", other, 1},
                {"this computer, whatever the field says", false, other, "2", localHost, 2},
                {"no number", false, localHost, "http", localHost, 0},
                {"nothing", true, QString(), QString(), QString(), 0},
            });
    }

    void takesWhatWasTyped()
    {
        QFETCH(bool, foreign);
        QFETCH(QString, address);
        QFETCH(QString, port);
        const DialogVisitor visitor([&](QDialog *dialog) {
            choice(dialog, "foreignHost")->setChecked(true);
            field(dialog, "ipAddress")->setText(address);
            choice(dialog, foreign ? "foreignHost" : "localhost")->setChecked(true);
            field(dialog, "port")->setText(port);
            field(dialog, "name")->setText("Склад"_s);
            field(dialog, "password")->setText("p&ss"_s);
            clickOk(dialog);
        });
        const API::LocalServerPtr server = LocalServerDialog::addServer(nullptr);
        QVERIFY(server);
        QTEST(server->host(), "host");
        QTEST(server->port(), "number");
        QCOMPARE(server->alias(), "Склад"_s);
        QCOMPARE(server->password(), "p&ss"_s);
        QVERIFY(API::CloudAPIClient::serverList().isEmpty());
    }

    void cancelGivesNoServer()
    {
        const DialogVisitor visitor([](QDialog *dialog) {
            field(dialog, "name")->setText("Store"_s);
            clickCancel(dialog);
        });
        QVERIFY(!LocalServerDialog::addServer(nullptr));
        QCOMPARE(visitor.visits(), 1);
    }

    void showsThePasswordOnDemand()
    {
        const DialogVisitor visitor([](QDialog *dialog) {
            const QLineEdit *password = field(dialog, "password");
            auto *box = dialog->findChild<QCheckBox *>("showPassword"_s);
            QCOMPARE(password->echoMode(), QLineEdit::Password);
            box->click();
            QCOMPARE(password->echoMode(), QLineEdit::Normal);
            box->click();
            QCOMPARE(password->echoMode(), QLineEdit::Password);
        });
        LocalServerDialog::addServer(nullptr);
        QCOMPARE(visitor.visits(), 1);
    }

    void editStartsFromTheServer_data()
    {
        rows<QString, bool>({"host", "foreign"}, {
                                                     {"this computer", localHost, false},
                                                     {"other computer", "127.0.0.9", true},
                                                     {"this computer by name", "localhost", true},
                                                 });
    }

    void editStartsFromTheServer()
    {
        QFETCH(QString, host);
        QFETCH(bool, foreign);
        const auto server = API::LocalServerPtr::create("Store"_s, host, deadPort, "secret"_s);
        const DialogVisitor visitor([&](QDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), "Edit a local videoserver"_s);
            QCOMPARE(choice(dialog, "foreignHost")->isChecked(), foreign);
            QCOMPARE(choice(dialog, "localhost")->isChecked(), !foreign);
            QCOMPARE(field(dialog, "ipAddress")->isEnabled(), foreign);
            QCOMPARE(field(dialog, "ipAddress")->text(), host);
            QCOMPARE(field(dialog, "port")->text(), QString::number(deadPort));
            QCOMPARE(field(dialog, "name")->text(), "Store"_s);
            QCOMPARE(field(dialog, "password")->text(), "secret"_s);
        });
        LocalServerDialog::editServer(server, nullptr);
        QCOMPARE(visitor.visits(), 1);
    }

    void editMovesTheServer()
    {
        MisbehavingServer lan;
        QVERIFY(lan.start());
        lan.setReply(WireReply::json(R"([{"id":5,"name":"Gate","status":1}])"));
        const auto server = API::LocalServerPtr::create("Store"_s, localHost, lan.port(), "old"_s);
        API::CloudAPIClient().addLocalServer(server);
        QTRY_COMPARE(server->cameras().size(), 1);
        const API::CameraPtr camera = server->cameras().value(5);
        const QString oldId = server->id();

        const DialogVisitor visitor([&](QDialog *dialog) {
            field(dialog, "name")->setText("Hall"_s);
            field(dialog, "port")->setText("3"_s);
            field(dialog, "password")->setText("new"_s);
            choice(dialog, "foreignHost")->setChecked(true);
            field(dialog, "ipAddress")->setText("127.0.0.9"_s);
            clickOk(dialog);
        });
        LocalServerDialog::editServer(server, nullptr);
        const QVariantMap expected{
            {"ip"_s, "127.0.0.9"_s}, {"name"_s, "Hall"_s}, {"password"_s, "new"_s}, {"port"_s, 3}};
        QCOMPARE(storedServers(), QVariantList{expected});
        QCOMPARE(API::CloudAPIClient::serverList().keys(), QStringList{"127.0.0.9:3"_s});
        QCOMPARE(API::CloudAPIClient::serverList().first(), API::ServerPtr(server));
        QCOMPARE(camera->serverId(), oldId);
        QVERIFY(camera->liveUrl(0).contains("&sessionId=old&"_s));
    }

    void cancelledEditChangesNothing()
    {
        const auto server = API::LocalServerPtr::create("Store"_s, localHost, deadPort, "secret"_s);
        API::CloudAPIClient().addLocalServer(server);
        const QVariantList before = storedServers();
        QCOMPARE(before.size(), 1);
        const DialogVisitor visitor([](QDialog *dialog) {
            field(dialog, "name")->setText("Hall"_s);
            field(dialog, "port")->setText("3"_s);
            clickCancel(dialog);
        });
        LocalServerDialog::editServer(server, nullptr);
        QCOMPARE(visitor.visits(), 1);
        QCOMPARE(server->toJson(), before.first().toMap());
        QCOMPARE(storedServers(), before);
    }

    void windowGoesWithTheDialogOpen()
    {
        QPointer<QWidget> window = new QWidget;
        const DialogVisitor visitor([&](QDialog *) { delete window; });
        QVERIFY(!LocalServerDialog::addServer(window));
        QVERIFY(!window);

        const auto server = API::LocalServerPtr::create("Store"_s, localHost, deadPort, "secret"_s);
        window = new QWidget;
        LocalServerDialog::editServer(server, window);
        QVERIFY(!window);
        QCOMPARE(server->alias(), "Store"_s);
        QCOMPARE(visitor.visits(), 2);
    }

private:
    int deadPort = 0;
};

QTEST_MAIN(LocalServerDialogTest)
#include "LocalServerDialogTest.moc"
