// SPDX-License-Identifier: MIT
// What the program keeps in its working directory: log, settings, service.ini.
#include "tests/support/Test.h"

#include <sys/stat.h>
#include <unistd.h>

#include "App/ServiceProfile.h"
#include "tests/support/TlsIdentity.h"

using App::ServiceProfile;

namespace {

const QString logName = "zorvane_client_log.txt"_s;
const QString iniName = "ZorvaneClient.ini"_s;

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString writeFile(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(content) > 0 ? fileName : QString();
}

ServiceProfile profileOf(const QByteArray &content)
{
    return ServiceProfile::fromFile(writeFile("service.ini"_s, "[service]\n" + content));
}

QList<QSslCertificate> trusted()
{
    return QSslConfiguration::defaultConfiguration().caCertificates();
}

} // namespace

class FilesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(ours.isValid() && stranger.isValid()); }

    void init()
    {
        folder.reset(new QTemporaryDir);
        QVERIFY(QDir::setCurrent(folder->path()));
    }

    void cleanup() { QDir::setCurrent(QDir::rootPath()); }

    void linesCarryLevelAndStamp()
    {
        QVERIFY(!writeFile(logName, QByteArray("an earlier run\n").repeated(1000)).isEmpty());
        const QDateTime before = QDateTime::currentDateTime();
        QVERIFY(runProbe("fatal"_s) != 0);
        const QStringList starts = {"", "Warning: ", "Critical: ", "", "Fatal: "};
        const QStringList texts = {"a debug line", "a warning line", "a critical line", "камера",
                                   "the end"};
        const QStringList lines = logLines();
        QCOMPARE(lines.size(), texts.size());
        const QString stampFormat = "dd.MM.yyyy hh:mm::ss.zzz"_s;
        for (int i = 0; i < lines.size(); ++i) {
            const QDateTime stamp = QDateTime::fromString(
                lines.at(i).mid(starts.at(i).size(), stampFormat.size()), stampFormat);
            QVERIFY(stamp >= before.addMSecs(-1) && stamp <= QDateTime::currentDateTime());
            QCOMPARE(lines.at(i),
                     starts.at(i) + stamp.toString(stampFormat) + QLatin1Char(' ') + texts.at(i));
            // Who started the program in a terminal reads along.
            QVERIFY2(errors.contains(texts.at(i).toUtf8()), errors);
        }
    }

    void threadsDontMixTheirLines()
    {
        QCOMPARE(runProbe("threads"_s), 0);
        const QStringList lines = logLines();
        QCOMPARE(lines.size(), 8 * 500);
        const QRegularExpression shape(
            "^Warning: [0-9.]{10} [0-9:.]{13} thread ([0-9]) line ([0-9]+) end$"_s);
        QHash<QString, int> nextLine;
        for (const QString &line : lines) {
            const QRegularExpressionMatch match = shape.match(line);
            QVERIFY2(match.hasMatch(), qPrintable(line));
            QCOMPARE(match.captured(2).toInt(), nextLine[match.captured(1)]++);
        }
    }

    void filesAreForTheirOwnerOnly_data()
    {
        rows<QString, QString, int, int>(
            {"name", "command", "before", "after"},
            {{"settings open to all", iniName, "settings", 0x7066, 0x7000},
             {"new settings", iniName, "settings", 0, 0x6000},
             {"log kept for reading", logName, "log", 0x4044, 0x4000},
             {"new log", logName, "log", 0, 0x6000}});
    }

    /// In the numbers of QFile::Permission; before 0: there is none.
    void filesAreForTheirOwnerOnly()
    {
        const auto [name, command, before, after] = row<QString, QString, int, int>();
        // Or else the environment could keep others out.
        const auto restore = qScopeGuard([mask = ::umask(0)] { ::umask(mask); });
        if (before != 0)
            QVERIFY(QFile::setPermissions(writeFile(name, "\n"), QFile::Permissions(before)));
        // Without a log there is no program; nothing is closed to root.
        QCOMPARE(runProbe(command) == 0, (after & QFile::WriteOwner) || ::geteuid() == 0);
        QCOMPARE(int(QFile::permissions(name)) & 0x7077, after);
    }

    void settingsOutliveTheProcess()
    {
        const QList<QByteArray> none{"none", "none", "none", "none", "none"};
        QCOMPARE(storedValues(), none);
        QCOMPARE(storedValues(), (QList<QByteArray>{"anna@example.com", "п+a&r;o=l\"ь, 1", "",
                                                    "3128", QByteArray("\x01\x00\xff\n", 4)}));
        QVERIFY(contentOf(iniName).contains("\nsaveAuth=\n")); // as a sign-out leaves it
    }

    void everyKeyIsRead()
    {
        const ServiceProfile profile =
            profileOf("apiHost=api.test\napiPort=8443\nstreamingHost=media.test\n"
                      "streamingPort=65535\nflvHost=flv.test:8081\nredirectorHost=go.test\n"
                      "caCertificate=ключи/a,b.pem\n");
        QCOMPARE((QVariantList{profile.apiHost, profile.apiPort, profile.streamingHost,
                               profile.streamingPort, profile.flvHost, profile.redirectorHost,
                               profile.caCertificate}),
                 (QVariantList{"api.test", 8443, "media.test", 65535, "flv.test:8081", "go.test",
                               "ключи/a,b.pem"}));
    }

    void unusableLineIsAWarning_data()
    {
        const QByteArray port = "port out of range: \"service/apiPort\" = \"";
        rows<QByteArray, QByteArray>({"line", "warning"},
                                     {{"zero", "apiPort=0", port + "0\""},
                                      {"too great", "apiPort=65536", port + "65536\""},
                                      {"no number", "apiPort=none", port + "none\""},
                                      {"unknown", "apiport=1", "unknown key \"service/apiport\""}});
    }

    void unusableLineIsAWarning()
    {
        const auto [line, warning] = row<QByteArray, QByteArray>();
        QTest::ignoreMessage(QtWarningMsg, "service.ini: " + warning);
        const ServiceProfile profile = profileOf(line + "\nstreamingPort=8444\n");
        QCOMPARE(profile.apiPort, ServiceProfile().apiPort);
        QCOMPARE(profile.streamingPort, 8444);
    }

    void authorityIsAddedToTheSystems()
    {
        ServiceProfile profile;
        profile.caCertificate = certificates.filePath(ours.certificateFile());
        const auto authority = QSslCertificate::fromPath(profile.caCertificate);
        QVERIFY(authority.size() == 1 && !trusted().contains(authority.first()));
        ServiceProfile::setCurrent(profile);
        const QList<QSslCertificate> all = QSslConfiguration::systemCaCertificates() + authority;
        for (const QSslCertificate &certificate : all)
            QVERIFY(trusted().contains(certificate));
    }

    void unusableCertificateIsAWarning()
    {
        const QByteArray good = contentOf(certificates.filePath(stranger.certificateFile()));
        const QByteArray damaged = QByteArray(good).replace(60, 200, QByteArray(200, 'A'));
        ServiceProfile profile;
        profile.caCertificate = "bad.pem"_s;
        const QList<QSslCertificate> before = trusted();
        for (const QByteArray &content : {damaged, good + damaged}) {
            writeFile(profile.caCertificate, content);
            QTest::ignoreMessage(QtWarningMsg, "service.ini: invalid certificate in \"bad.pem\"");
            ServiceProfile::setCurrent(profile);
            QCOMPARE(trusted(), before);
        }
    }

private:
    /// The exit code, -1 after a crash; what it printed is in `output` and `errors`.
    int runProbe(const QString &command)
    {
        QProcess probe;
        probe.start(probeProgram, {command});
        const bool hasEnded = probe.waitForFinished(60000);
        output = probe.readAllStandardOutput();
        errors = probe.readAllStandardError();
        return hasEnded && probe.exitStatus() == QProcess::NormalExit ? probe.exitCode() : -1;
    }

    QList<QByteArray> storedValues()
    {
        QList<QByteArray> values;
        if (runProbe("settings"_s) == 0) {
            for (const QByteArray &line : output.trimmed().split('\n'))
                values.append(QByteArray::fromHex(line));
        }
        return values;
    }

    QStringList logLines() const
    {
        const QString content = QString::fromUtf8(contentOf(logName));
        // Without the end of the last line there is a half one.
        return content.endsWith(QLatin1Char('\n')) ? content.chopped(1).split(QLatin1Char('\n'))
                                                   : QStringList();
    }

    const QDir certificates = QDir::current();
    const QString probeProgram = QStringLiteral(ZORVANE_TEST_BIN_DIR "/app_probe");
    TlsIdentity ours{"ours"_s};
    TlsIdentity stranger{"stranger"_s};
    QScopedPointer<QTemporaryDir> folder;
    QByteArray output;
    QByteArray errors;
};

QTEST_GUILESS_MAIN(FilesTest)
#include "FilesTest.moc"
