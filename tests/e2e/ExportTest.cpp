// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <cmath>
#include <csignal>
#include <optional>

#include <sys/resource.h>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"
#include "GUI/TimelinePrivate.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"

namespace {

constexpr int exportDeadlineMs = 120'000;
constexpr double maxLengthErrorSeconds = 1.0;
constexpr int toolDeadlineMs = 60'000;
constexpr int slowBytesPerSecond = 20'000;
constexpr rlim_t fullDiskBytes = 50'000;

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(toolDeadlineMs) || process.exitCode() != 0)
        return QByteArray();
    return process.readAllStandardOutput().trimmed();
}

double secondsOf(const QString &file)
{
    return outputOf("ffprobe"_s,
                    {"-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", file})
        .toDouble();
}

QByteArray codecsOf(const QString &file)
{
    return outputOf("ffprobe"_s,
                    {"-v", "error", "-show_entries", "stream=codec_name", "-of", "csv=p=0", file});
}

/// The first picture of the file.
std::optional<Strip> firstStripOf(const QString &file)
{
    const QByteArray png = outputOf("ffmpeg"_s, {"-v", "error", "-i", file, "-frames:v", "1", "-f",
                                                 "image2pipe", "-c:v", "png", "-"});
    return StripReader::read(QImage::fromData(png, "PNG"));
}

} // namespace

/// A fragment of a LAN camera's archive on its way into a file.
class ExportTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 1;
        options.cameras = 1;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);
        QVERIFY(service.writeLocalRoster(QDir::currentPath()));
        const QVector<DemoCamera> world = service.cameras();
        const auto isLan = [](const DemoCamera &each) { return each.lan; };
        const auto found = std::find_if(world.begin(), world.end(), isLan);
        QVERIFY(found != world.end());
        lan = *found;
        day = QDate::currentDate().addDays(-1);
        folder = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
        QVERIFY(QDir().mkpath(folder));

        QVERIFY(enter(service));
        QTRY_VERIFY_WITH_TIMEOUT(card(lan.server, lan.camera), pollDeadlineMs);
        camera = API::CloudAPIClient::serverList().value(lan.server)->cameras().value(lan.camera);
        QVERIFY(camera);
        mainWindow()->resize(1500, 900);
    }

    void cleanupTestCase()
    {
        camera.clear();
        leave();
        service.stop();
    }

    void init()
    {
        service.clearFaults();
        const QStringList old = files();
        for (const QString &name : old)
            QVERIFY(QFile::remove(QDir(folder).filePath(name)));
    }

    void fragmentBecomesAFile_data()
    {
        rows<QStringList, QString, int>(
            {"records", "start", "seconds"},
            {
                {"within a record", QStringList{"11:40:00-12:20:00"}, "11:58:13", 75},
                {"over a gap", QStringList{"11:40:00-11:58:40", "11:59:50-12:20:00"}, "11:58:00",
                 150},
            });
    }

    void fragmentBecomesAFile()
    {
        const auto [records, start, seconds] = row<QStringList, QString, int>();
        QVector<QPair<qint64, qint64>> spans;
        for (const QString &span : qAsConst(records)) {
            const QByteArray from = span.section('-', 0, 0).toLatin1();
            const QByteArray to = span.section('-', 1, 1).toLatin1();
            spans.append({at(from).toMSecsSinceEpoch(), at(to).toMSecsSinceEpoch()});
        }
        QVERIFY2(service.setArchive(lan, spans), qPrintable(service.errorString()));
        select(at(start.toLatin1()), seconds);

        const QDateTime from = timeline()->selectionStart();
        const QDateTime to = timeline()->selectionEnd();
        qint64 recordedMs = 0;
        for (const auto &span : qAsConst(spans))
            recordedMs += qMax<qint64>(0, qMin(to.toMSecsSinceEpoch(), span.second) -
                                              qMax(from.toMSecsSinceEpoch(), span.first));

        auto *grid = gridOf(mainWindow());
        QSignalSpy done(grid, &GUI::LayoutWidget::exportDone);
        QSignalSpy percents(grid, &GUI::LayoutWidget::exportPercentDone);
        press(mainWindow(), "exportButton");
        QTRY_VERIFY_WITH_TIMEOUT(isExporting(), replyDeadlineMs);
        QVERIFY2(!files().contains(QFileInfo(file()).completeBaseName() + ".mp4"_s),
                 "a file under its own name is complete");
        QTRY_COMPARE_WITH_TIMEOUT(done.size(), 1, exportDeadlineMs);
        QVERIFY(!isExporting());
        QVERIFY(!percents.isEmpty());

        const QString name = "%1 - %2 %3 %4-%5.mp4"_s.arg(
            camera->host(), camera->name(), from.date().toString("dd.MM.yy"_s),
            from.time().toString("hh.mm.ss"_s), to.time().toString("hh.mm.ss"_s));
        QCOMPARE(files(), QStringList{name});
        QVERIFY2(std::abs(secondsOf(file()) - recordedMs / 1000.0) <= maxLengthErrorSeconds,
                 qPrintable("%1 of %2"_s.arg(secondsOf(file())).arg(recordedMs)));
        QVERIFY2(codecsOf(file()).contains("h264"), codecsOf(file()));
        const std::optional<Strip> first = firstStripOf(file());
        QVERIFY(first);
        QCOMPARE(first->camera, lan.number);
        QCOMPARE(first->milliseconds / 1000, from.time().second());
    }

    void cancelLeavesNoFile()
    {
        QSignalSpy done(gridOf(mainWindow()), &GUI::LayoutWidget::exportDone);
        startSlowly();
        press(mainWindow(), "cancelButton");
        QVERIFY(!isExporting());
        QTRY_COMPARE(exportChild(), qint64(0));
        QCOMPARE(files(), QStringList());
        QCOMPARE(done.size(), 0);
    }

    void killedExportLeavesNoFile()
    {
        startSlowly();
        const qint64 child = exportChild();
        QVERIFY(child > 0);
        QTRY_VERIFY(!files().isEmpty());
        QCOMPARE(::kill(static_cast<pid_t>(child), SIGKILL), 0);
        QTRY_COMPARE(exportChild(), qint64(0));
        const QStringList left = QDir(folder).entryList({"*.mp4"_s}, QDir::Files);
        QCOMPARE(left, QStringList());
        press(mainWindow(), "cancelButton");
        QVERIFY(!isExporting());
    }

    void fullDiskIsTold()
    {
        startSlowly();
        QSignalSpy failed(gridOf(mainWindow()), &GUI::LayoutWidget::exportError);
        const rlimit limit = {fullDiskBytes, fullDiskBytes};
        const auto child = static_cast<pid_t>(exportChild());
        QCOMPARE(::prlimit(child, RLIMIT_FSIZE, &limit, nullptr), 0);
        QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, exportDeadlineMs);
        QVERIFY(!isExporting());
        QTRY_COMPARE(exportChild(), qint64(0));
        QCOMPARE(files(), QStringList());
        const auto labels = gridOf(mainWindow())->findChildren<QLabel *>();
        const auto isHint = [](const QLabel *label) {
            return label->text().contains(GUI::LayoutWidget::tr("Error while exporting."));
        };
        QVERIFY(std::any_of(labels.begin(), labels.end(), isHint));
    }

    void secondExportChangesNothing()
    {
        startSlowly();
        const qint64 child = exportChild();
        const QStringList before = files();
        gridOf(mainWindow())->exportArchive(camera, at("11:10:00"), at("11:12:00"));
        QCOMPARE(exportChild(), child);
        QVERIFY(isExporting());
        QCOMPARE(files(), before);
        press(mainWindow(), "cancelButton");
        QTRY_COMPARE(exportChild(), qint64(0));
    }

private:
    QDateTime at(const char *text) const
    {
        return QDateTime(day, QTime::fromString(QLatin1String(text), "h:mm:ss"_s));
    }
    GUI::Timeline *timeline() const { return mainWindow()->findChild<GUI::Timeline *>(); }

    bool isExporting() const
    {
        auto *panel = mainWindow()->findChild<QStackedWidget *>("exportControl"_s);
        return panel->isVisible() && panel->currentWidget()->objectName() == "exportLabelPage"_s;
    }

    /// Goes to the archive's export page with the fragment that begins at `start`.

    void select(const QDateTime &start, int seconds)
    {
        mainWindow()->openCamera(camera);
        press(mainWindow(), "showRecordsButton");
        mainWindow()->updateDate(day);
        QTRY_VERIFY_WITH_TIMEOUT(camera->hasRecords(day), replyDeadlineMs);
        // The button wakes up once the strip has been painted with the cursor on the day.
        mainWindow()->onPlayArchive(camera->records(day).first().start);
        auto *button = mainWindow()->findChild<QAbstractButton *>("exportModeButton"_s);
        timeline()->zoomIn();
        QTRY_VERIFY(button->isEnabled());
        button->click();
        QTRY_VERIFY(timeline()->startValue().secsTo(timeline()->endValue()) <= 1800);

        const auto pull = [&](const QDateTime &from, const QDateTime &to) {
            const auto pixelOf = [&](const QDateTime &time) {
                const double share = double(timeline()->startValue().secsTo(time)) /
                                     timeline()->startValue().secsTo(timeline()->endValue());
                const int scale = timeline()->width() - 2 * GUI::Internal::timelineMargin;
                return QPoint(GUI::Internal::timelineMargin + qRound(share * scale), 30);
            };
            QTest::mouseMove(timeline(), pixelOf(from));
            QTest::mousePress(timeline(), Qt::LeftButton, Qt::NoModifier, pixelOf(from));
            QMouseEvent move(QEvent::MouseMove, pixelOf(to), timeline()->mapToGlobal(pixelOf(to)),
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(timeline(), &move);
            QTest::mouseRelease(timeline(), Qt::LeftButton, Qt::NoModifier, pixelOf(to));
        };
        pull(timeline()->selectionEnd(), start.addSecs(seconds));
        pull(timeline()->selectionStart(), start);
        QVERIFY(std::abs(timeline()->selectionStart().secsTo(start)) <= 3);
        QVERIFY(std::abs(timeline()->selectionEnd().secsTo(start.addSecs(seconds))) <= 3);
    }

    QStringList files() const { return QDir(folder).entryList(QDir::Files | QDir::Hidden); }
    QString file() const { return QDir(folder).filePath(files().value(0)); }
    /// Begins an export that takes its time.

    void startSlowly()
    {
        QVERIFY(service.setArchive(
            lan, {{at("11:00:00").toMSecsSinceEpoch(), at("13:00:00").toMSecsSinceEpoch()}}));
        select(at("11:58:00"), 240);
        DemoFault slow;
        slow.kind = "slow"_s;
        slow.route = "/flv/archive"_s;
        slow.value = slowBytesPerSecond;
        QVERIFY(service.addFault(slow));
        press(mainWindow(), "exportButton");
        QTRY_VERIFY_WITH_TIMEOUT(isExporting(), replyDeadlineMs);
        QVERIFY(exportChild() > 0);
    }

    qint64 exportChild() const
    {
        const auto processes = tile()->findChildren<QProcess *>();
        for (const QProcess *process : processes) {
            if (process->arguments().value(0) == "export"_s)
                return process->processId();
        }
        return 0;
    }

    DemoService service;
    DemoCamera lan;
    API::CameraPtr camera;
    QDate day;
    QString folder;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<ExportTest>(); });
}

#include "ExportTest.moc"
