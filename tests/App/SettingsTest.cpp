// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <sys/stat.h>

#include "AppProbe.h"

namespace {

// What app_probe prints for each key, line by line.
enum Row { Email, Password, SaveAuth, ProxyPort, Geometry, Rotation, Volume, FileName, RowCount };

} // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder.reset(new QTemporaryDir);
        iniFile = folder->filePath("ZorvaneClient.ini"_s);
    }

    void cleanup() { folder.reset(); }

    void filesAreForTheirOwnerOnly_data()
    {
        const QString ini = "ZorvaneClient.ini"_s;
        const QString log = "zorvane_client_log.txt"_s;
        rows<QString, QString, bool>(
            {"name", "command", "wasOpen"},
            {
                {"settings open to all before", ini, "write-settings", true},
                {"new log", log, "log-levels", false},
            });
    }

    void filesAreForTheirOwnerOnly()
    {
        const auto [name, command, wasOpen] = row<QString, QString, bool>();
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

    void valuesOutliveTheProcess()
    {
        QCOMPARE(runProbe(folder->path(), {"write-settings"_s}).exitCode, 0);
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

    void emptyTextOfASignOutReadsAsFalse()
    {
        QCOMPARE(runProbe(folder->path(), {"write-settings"_s}).exitCode, 0);
        QCOMPARE(runProbe(folder->path(), {"sign-out"_s}).exitCode, 0);
        QVERIFY(contentsOf(iniFile).contains("\nsaveAuth=\n"));
        const QList<QByteArray> rows = readBack();
        QCOMPARE(rows.at(SaveAuth), QByteArray("0"));
        QCOMPARE(rows.at(Email), QByteArray("anna@example.com"));
    }

    void wrongTypesAreConverted()
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

    void unusableFileIsNoFailure()
    {
        QVERIFY(QDir().mkdir(iniFile));
        const ProbeResult writing = runProbe(folder->path(), {"write-settings"_s});
        QVERIFY(!writing.crashed);
        QCOMPARE(writing.exitCode, 0);
        QCOMPARE(writing.errors, QByteArray());
        const QList<QByteArray> rows = readBack();
        QCOMPARE(rows.at(Email), QByteArray());
        QCOMPARE(rows.at(Volume), QByteArray("50"));
    }

private:
    QList<QByteArray> readBack() const
    {
        const ProbeResult probe = runProbe(folder->path(), {"read-settings"_s});
        QList<QByteArray> rows = probe.output.split('\n');
        while (rows.size() < RowCount)
            rows.append("missing");
        return rows;
    }

    QScopedPointer<QTemporaryDir> folder;
    QString iniFile;
};

QTEST_GUILESS_MAIN(SettingsTest)
#include "SettingsTest.moc"
