// SPDX-License-Identifier: MIT
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

#include "AppProbe.h"

class SettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void filesAreForTheirOwnerOnly_data();
    void filesAreForTheirOwnerOnly();
    void valuesOutliveTheProcess();
    void emptyTextOfASignOutReadsAsFalse();
    void wrongTypesAreConverted();
    void unusableFileIsNoFailure();

private:
    QList<QByteArray> readBack() const;

    QScopedPointer<QTemporaryDir> folder;
    QString iniFile;
};

namespace {

// What app_probe prints for each key, line by line.
enum Row { Email, Password, SaveAuth, ProxyPort, Geometry, Rotation, Volume, FileName, RowCount };

} // namespace

void SettingsTest::init()
{
    folder.reset(new QTemporaryDir);
    iniFile = folder->filePath(QStringLiteral("ZorvaneClient.ini"));
}

void SettingsTest::cleanup()
{
    folder.reset();
}

void SettingsTest::filesAreForTheirOwnerOnly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("wasOpen");
    const QString ini = QStringLiteral("ZorvaneClient.ini");
    const QString log = QStringLiteral("zorvane_client_log.txt");
    QTest::newRow("settings open to all before") << ini << "write-settings" << true;
    QTest::newRow("new log") << log << "log-levels" << false;
}

void SettingsTest::filesAreForTheirOwnerOnly()
{
    QFETCH(QString, name);
    QFETCH(QString, command);
    QFETCH(bool, wasOpen);
    ::umask(0); // or else the environment could keep others out
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                            QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    QFile file(folder->filePath(name));
    if (wasOpen)
        QVERIFY(file.open(QIODevice::WriteOnly) && (file.permissions() & others));
    file.close();
    QCOMPARE(runProbe(folder->path(), {command}).exitCode, 0);
    QVERIFY(file.size() > 0);
    QVERIFY(!(file.permissions() & others));
}

QList<QByteArray> SettingsTest::readBack() const
{
    const ProbeResult probe = runProbe(folder->path(), {QStringLiteral("read-settings")});
    QList<QByteArray> rows = probe.output.split('\n');
    while (rows.size() < RowCount)
        rows.append("missing");
    return rows;
}

void SettingsTest::valuesOutliveTheProcess()
{
    QCOMPARE(runProbe(folder->path(), {QStringLiteral("write-settings")}).exitCode, 0);
    const QList<QByteArray> rows = readBack();
    QCOMPARE(rows.at(Email), QByteArray("anna@example.com"));
    QCOMPARE(QByteArray::fromHex(rows.at(Password)), QByteArray("п+a&r;o=l\"ь, 1"));
    QCOMPARE(rows.at(SaveAuth), QByteArray("1"));
    QCOMPARE(rows.at(ProxyPort), QByteArray("3128"));
    QCOMPARE(rows.at(Geometry), QByteArray("0100ff0a"));
    QCOMPARE(rows.at(Rotation), QByteArray("270"));
    QCOMPARE(QFileInfo(QString::fromUtf8(rows.at(FileName))).canonicalFilePath(),
             QFileInfo(iniFile).canonicalFilePath());
}

void SettingsTest::emptyTextOfASignOutReadsAsFalse()
{
    QCOMPARE(runProbe(folder->path(), {QStringLiteral("write-settings")}).exitCode, 0);
    QCOMPARE(runProbe(folder->path(), {QStringLiteral("sign-out")}).exitCode, 0);
    QVERIFY(contentsOf(iniFile).contains("\nsaveAuth=\n"));
    const QList<QByteArray> rows = readBack();
    QCOMPARE(rows.at(SaveAuth), QByteArray("0"));
    QCOMPARE(rows.at(Email), QByteArray("anna@example.com"));
}

void SettingsTest::wrongTypesAreConverted()
{
    QFile file(iniFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[proxy]\nport=lots\n[sound]\nvolume=\n[auth]\nsaveAuth=no\n");
    file.close();
    const QList<QByteArray> rows = readBack();
    QCOMPARE(rows.at(ProxyPort), QByteArray("0"));
    QCOMPARE(rows.at(Volume), QByteArray("0"));
    // Any text but "false", "0" and the empty one is true.
    QCOMPARE(rows.at(SaveAuth), QByteArray("1"));
}

void SettingsTest::unusableFileIsNoFailure()
{
    QVERIFY(QDir().mkdir(iniFile));
    const ProbeResult writing = runProbe(folder->path(), {QStringLiteral("write-settings")});
    QVERIFY(!writing.crashed);
    QCOMPARE(writing.exitCode, 0);
    QCOMPARE(writing.errors, QByteArray());
    const QList<QByteArray> rows = readBack();
    QCOMPARE(rows.at(Email), QByteArray());
    QCOMPARE(rows.at(Volume), QByteArray("50"));
}

QTEST_GUILESS_MAIN(SettingsTest)
#include "SettingsTest.moc"
