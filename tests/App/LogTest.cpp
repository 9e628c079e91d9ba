// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "AppProbe.h"

class LogTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder.reset(new QTemporaryDir);
        logFile = folder->filePath("zorvane_client_log.txt"_s);
    }

    void cleanup() { folder.reset(); }

    void linesCarryLevelAndStamp()
    {
        const QDateTime before = QDateTime::currentDateTime();
        QCOMPARE(runProbe(folder->path(), {"log-levels"_s}).exitCode, 0);
        const QDateTime after = QDateTime::currentDateTime();

        const QStringList levels = {QString(), "Warning: "_s, "Critical: "_s, QString()};
        const QStringList texts = {"a debug line"_s, "a warning line"_s, "a critical line"_s,
                                   QString::fromUtf8("камера")};
        const QStringList lines = logLines();
        QCOMPARE(lines.size(), texts.size());
        const QString stampFormat = "dd.MM.yyyy hh:mm::ss.zzz"_s;
        for (int i = 0; i < lines.size(); ++i) {
            const int stampEnd = levels.at(i).size() + stampFormat.size();
            QCOMPARE(lines.at(i).left(levels.at(i).size()), levels.at(i));
            QCOMPARE(lines.at(i).mid(stampEnd), QLatin1Char(' ') + texts.at(i));
            const QDateTime stamp = QDateTime::fromString(
                lines.at(i).mid(levels.at(i).size(), stampFormat.size()), stampFormat);
            QVERIFY2(stamp.isValid(), qPrintable(lines.at(i)));
            QVERIFY(stamp >= before.addMSecs(-1) && stamp <= after);
        }
    }

    void startEmptiesTheLog()
    {
        QFile file(logFile);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("a line of an earlier run\n").repeated(1000));
        file.close();
        QCOMPARE(runProbe(folder->path(), {"log-levels"_s}).exitCode, 0);
        QCOMPARE(logLines().size(), 4);
    }

    void linesAreOnDiskAtOnce()
    {
        QProcess probe;
        probe.setWorkingDirectory(folder->path());
        probe.start(probeProgram(), {"log-wait"_s});
        QByteArray output;
        QTRY_VERIFY_WITH_TIMEOUT((output += probe.readAllStandardOutput()).contains("written"),
                                 30000);
        QVERIFY(contentsOf(logFile).endsWith("still alive\n"));
        probe.kill();
        QVERIFY(probe.waitForFinished());
    }

    void fatalLineEndsTheProcess()
    {
        QVERIFY(runProbe(folder->path(), {"log-fatal"_s}).crashed);
        const QStringList lines = logLines();
        QCOMPARE(lines.size(), 2);
        QVERIFY(QRegularExpression("^Fatal: [0-9.]{10} [0-9:.]{13} the end$"_s)
                    .match(lines.last())
                    .hasMatch());
    }

    void logThatCannotBeOpenedIsFatal()
    {
        QVERIFY(QDir().mkdir(logFile));
        const ProbeResult probe = runProbe(folder->path(), {"log-levels"_s});
        QVERIFY(probe.crashed);
        QVERIFY(probe.errors.contains("Cannot open log file"));
        QVERIFY(!probe.errors.contains("a debug line"));
    }

    void threadsDontMixTheirLines()
    {
        constexpr int threads = 8;
        constexpr int linesOfEach = 500;
        const ProbeResult probe =
            runProbe(folder->path(),
                     {"log-threads"_s, QString::number(threads), QString::number(linesOfEach)});
        QCOMPARE(probe.exitCode, 0);

        const QStringList lines = logLines();
        QCOMPARE(lines.size(), threads * linesOfEach);
        const QRegularExpression shape(
            "^Warning: [0-9.]{10} [0-9:.]{13} thread ([0-9]+) line ([0-9]+) end$"_s);
        QHash<QString, int> nextLine;
        for (const QString &line : lines) {
            const QRegularExpressionMatch match = shape.match(line);
            QVERIFY2(match.hasMatch(), qPrintable(line));
            QCOMPARE(match.captured(2).toInt(), nextLine[match.captured(1)]++);
        }
        QCOMPARE(nextLine.size(), threads);
    }

private:
    QStringList logLines() const
    {
        QStringList lines = QString::fromUtf8(contentsOf(logFile)).split(QLatin1Char('\n'));
        // The text after the last line's end: empty if that line is whole.
        if (lines.last().isEmpty())
            lines.removeLast();
        return lines;
    }

    QScopedPointer<QTemporaryDir> folder;
    QString logFile;
};

QTEST_GUILESS_MAIN(LogTest)
#include "LogTest.moc"
