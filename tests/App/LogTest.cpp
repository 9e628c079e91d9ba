// SPDX-License-Identifier: MIT
#include <QHash>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include "AppProbe.h"

class LogTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void linesCarryLevelAndStamp();
    void startEmptiesTheLog();
    void linesAreOnDiskAtOnce();
    void fatalLineEndsTheProcess();
    void logThatCannotBeOpenedIsFatal();
    void threadsDontMixTheirLines();

private:
    QStringList logLines() const;

    QScopedPointer<QTemporaryDir> folder;
    QString logFile;
};

void LogTest::init()
{
    folder.reset(new QTemporaryDir);
    logFile = folder->filePath(QStringLiteral("zorvane_client_log.txt"));
}

void LogTest::cleanup()
{
    folder.reset();
}

QStringList LogTest::logLines() const
{
    QStringList lines = QString::fromUtf8(contentsOf(logFile)).split(QLatin1Char('\n'));
    // The text after the last line's end: empty if that line is whole.
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

void LogTest::linesCarryLevelAndStamp()
{
    const QDateTime before = QDateTime::currentDateTime();
    QCOMPARE(runProbe(folder->path(), {QStringLiteral("log-levels")}).exitCode, 0);
    const QDateTime after = QDateTime::currentDateTime();

    const QStringList levels = {QString(), QStringLiteral("Warning: "),
                                QStringLiteral("Critical: "), QString()};
    const QStringList texts = {QStringLiteral("a debug line"), QStringLiteral("a warning line"),
                               QStringLiteral("a critical line"), QString::fromUtf8("камера")};
    const QStringList lines = logLines();
    QCOMPARE(lines.size(), texts.size());
    const QString stampFormat = QStringLiteral("dd.MM.yyyy hh:mm::ss.zzz");
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

void LogTest::startEmptiesTheLog()
{
    QFile file(logFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("a line of an earlier run\n").repeated(1000));
    file.close();
    QCOMPARE(runProbe(folder->path(), {QStringLiteral("log-levels")}).exitCode, 0);
    QCOMPARE(logLines().size(), 4);
}

void LogTest::linesAreOnDiskAtOnce()
{
    QProcess probe;
    probe.setWorkingDirectory(folder->path());
    probe.start(probeProgram(), {QStringLiteral("log-wait")});
    QByteArray output;
    QTRY_VERIFY_WITH_TIMEOUT((output += probe.readAllStandardOutput()).contains("written"), 30000);
    QVERIFY(contentsOf(logFile).endsWith("still alive\n"));
    probe.kill();
    QVERIFY(probe.waitForFinished());
}

void LogTest::fatalLineEndsTheProcess()
{
    QVERIFY(runProbe(folder->path(), {QStringLiteral("log-fatal")}).crashed);
    const QStringList lines = logLines();
    QCOMPARE(lines.size(), 2);
    QVERIFY(QRegularExpression(QStringLiteral("^Fatal: [0-9.]{10} [0-9:.]{13} the end$"))
                .match(lines.last())
                .hasMatch());
}

void LogTest::logThatCannotBeOpenedIsFatal()
{
    QVERIFY(QDir().mkdir(logFile));
    const ProbeResult probe = runProbe(folder->path(), {QStringLiteral("log-levels")});
    QVERIFY(probe.crashed);
    QVERIFY(probe.errors.contains("Cannot open log file"));
    QVERIFY(!probe.errors.contains("a debug line"));
}

void LogTest::threadsDontMixTheirLines()
{
    constexpr int threads = 8;
    constexpr int linesOfEach = 500;
    const ProbeResult probe =
        runProbe(folder->path(), {QStringLiteral("log-threads"), QString::number(threads),
                                  QString::number(linesOfEach)});
    QCOMPARE(probe.exitCode, 0);

    const QStringList lines = logLines();
    QCOMPARE(lines.size(), threads * linesOfEach);
    const QRegularExpression shape(
        QStringLiteral("^Warning: [0-9.]{10} [0-9:.]{13} thread ([0-9]+) line ([0-9]+) end$"));
    QHash<QString, int> nextLine;
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = shape.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        QCOMPARE(match.captured(2).toInt(), nextLine[match.captured(1)]++);
    }
    QCOMPARE(nextLine.size(), threads);
}

QTEST_GUILESS_MAIN(LogTest)
#include "LogTest.moc"
