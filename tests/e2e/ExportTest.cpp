// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include <cmath>

#include <sys/resource.h>

#include "tests/e2e/Wall.h"

namespace {

constexpr int exportDeadlineMs = 120'000;
constexpr double maxLengthErrorSeconds = 1.0;
constexpr int slowBytesPerSecond = 20'000;
constexpr rlim_t fullDiskBytes = 50'000;

QByteArray outputOf(const QString &command)
{
    QProcess process;
    process.start("sh"_s, {"-c"_s, command});
    return process.waitForFinished(exportDeadlineMs) && process.exitCode() == 0
               ? process.readAllStandardOutput().trimmed()
               : QByteArray();
}

} // namespace

/// A fragment of a LAN camera's archive on its way into a file.
class ExportTest : public EndToEndTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        startWorld(1, 1, 1);
        QVERIFY(service.writeLocalRoster("."_s));
        lan = firstCamera(true);
        folder = QDir(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
        QVERIFY(folder.mkpath("."_s));
        QVERIFY(enter(service));
        pollRoster();
        QTRY_VERIFY_WITH_TIMEOUT(card(lan.server, lan.camera), pollDeadlineMs);
        camera = API::CloudAPIClient::serverList().value(lan.server)->cameras().value(lan.camera);
        QVERIFY(camera);
        mainWindow()->resize(1500, 900);
    }

    void init()
    {
        const QStringList old = files();
        for (const QString &name : old)
            QVERIFY(folder.remove(name));
    }

    void fragmentBecomesAFile_data()
    {
        rows<QStringList, QString, int>(
            {"records", "start", "seconds"},
            {{"within a record", QStringList{"11:40:00", "12:20:00"}, "11:58:13", 62},
             {"over a gap", QStringList{"11:40:00", "11:58:30", "11:59:40", "12:20:00"}, "11:58:00",
              130}});
    }

    void fragmentBecomesAFile()
    {
        const auto [records, start, seconds] = row<QStringList, QString, int>();
        select(records, at(start), seconds);
        const QDateTime from = timeline()->selectionStart();
        const QDateTime to = timeline()->selectionEnd();
        qint64 recordedSeconds = 0;
        for (int i = 0; i < records.size(); i += 2)
            recordedSeconds +=
                qMax<qint64>(0, qMax(from, at(records[i])).secsTo(qMin(to, at(records[i + 1]))));

        auto *grid = gridOf(mainWindow());
        QSignalSpy done(grid, &GUI::LayoutWidget::exportDone);
        QSignalSpy percents(grid, &GUI::LayoutWidget::exportPercentDone);
        press(mainWindow(), "exportButton");
        QTRY_VERIFY_WITH_TIMEOUT(isExporting(), replyDeadlineMs);
        QTRY_COMPARE_WITH_TIMEOUT(done.size(), 1, exportDeadlineMs);
        QVERIFY(!isExporting());
        QVERIFY(!percents.isEmpty());

        const QString name = "%1 - %2 %3 %4-%5.mp4"_s.arg(
            camera->host(), camera->name(), from.toString("dd.MM.yy"_s),
            from.toString("hh.mm.ss"_s), to.toString("hh.mm.ss"_s));
        QCOMPARE(files(), QStringList{name});
        const QString file = '"' + folder.filePath(name) + '"';
        const QByteArray said = outputOf(
            "ffprobe -v error -show_entries stream=codec_name:format=duration -of csv=p=0 "_s +
            file);
        QVERIFY2(said.contains("h264"), said);
        const double length = said.mid(said.lastIndexOf('\n') + 1).toDouble();
        QVERIFY2(std::abs(length - recordedSeconds) <= maxLengthErrorSeconds, said);
        const auto first = StripReader::read(QImage::fromData(
            outputOf("ffmpeg -v error -i %1 -frames:v 1 -f image2pipe -c:v png -"_s.arg(file))));
        QVERIFY(first);
        QCOMPARE(first->camera, lan.number);
        QCOMPARE(first->milliseconds / 1000, from.time().second());
    }

    void cancelLeavesNoFileAndAFullDiskIsTold()
    {
        select({"11:00:00"_s, "13:00:00"_s}, at("11:58:00"_s), 240);
        DemoFault slow;
        slow.kind = "slow"_s;
        slow.route = "/flv/archive"_s;
        slow.value = slowBytesPerSecond;
        QVERIFY(service.addFault(slow));
        QSignalSpy failed(gridOf(mainWindow()), &GUI::LayoutWidget::exportError);
        for (const bool full : {false, true}) {
            press(mainWindow(), "exportButton");
            QTRY_VERIFY_WITH_TIMEOUT(isExporting(), replyDeadlineMs);
            const qint64 child = exportChild();
            QVERIFY(child > 0);
            const rlimit limit = {fullDiskBytes, fullDiskBytes};
            if (full)
                QCOMPARE(::prlimit(static_cast<pid_t>(child), RLIMIT_FSIZE, &limit, nullptr), 0);
            else
                press(mainWindow(), "cancelButton");
            QTRY_COMPARE_WITH_TIMEOUT(failed.size(), full ? 1 : 0, exportDeadlineMs);
            QTRY_COMPARE(exportChild(), qint64(0));
            QVERIFY(!isExporting());
            QCOMPARE(files(), QStringList());
            if (!full)
                select({"11:00:00"_s, "13:00:00"_s}, at("11:58:00"_s), 240);
        }
        const auto labels = gridOf(mainWindow())->findChildren<QLabel *>();
        QVERIFY(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
            return label->text().contains("Error while exporting."_s);
        }));
    }

private:
    QStringList files() const { return folder.entryList(QDir::Files | QDir::Hidden); }

    static bool isExporting()
    {
        auto *panel = part<QStackedWidget>(mainWindow(), "exportControl");
        return panel->isVisible() && panel->currentWidget()->objectName() == "exportLabelPage"_s;
    }

    static qint64 exportChild()
    {
        const auto processes = tile()->findChildren<QProcess *>();
        for (const QProcess *process : processes) {
            if (process->arguments().value(0) == "export"_s)
                return process->processId();
        }
        return 0;
    }

    /// Goes to the archive's export page with a fragment; `records` are begin and end in turn.
    void select(const QStringList &records, const QDateTime &start, int seconds)
    {
        setRecords(lan, records);
        mainWindow()->openCamera(camera);
        press(mainWindow(), "showRecordsButton");
        const QDate day = start.date();
        mainWindow()->updateDate(day);
        QTRY_VERIFY_WITH_TIMEOUT(camera->hasRecords(day), replyDeadlineMs);
        // The button wakes up once the strip has been painted with the cursor on the day.
        mainWindow()->onPlayArchive(camera->records(day).first().start);
        auto *button = part<QAbstractButton>(mainWindow(), "exportModeButton");
        timeline()->zoomIn();
        QTRY_VERIFY(button->isEnabled());
        button->click();
        QTRY_VERIFY(timeline()->startValue().secsTo(timeline()->endValue()) <= 1800);

        const auto pull = [](const QDateTime &from, const QDateTime &to) {
            QTest::mouseMove(timeline(), placeOf(from));
            QTest::mousePress(timeline(), Qt::LeftButton, Qt::NoModifier, placeOf(from));
            QMouseEvent move(QEvent::MouseMove, placeOf(to), timeline()->mapToGlobal(placeOf(to)),
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(timeline(), &move);
            QTest::mouseRelease(timeline(), Qt::LeftButton, Qt::NoModifier, placeOf(to));
        };
        pull(timeline()->selectionEnd(), start.addSecs(seconds));
        pull(timeline()->selectionStart(), start);
        QVERIFY(std::abs(timeline()->selectionStart().secsTo(start)) <= 3);
        QVERIFY(std::abs(timeline()->selectionEnd().secsTo(start.addSecs(seconds))) <= 3);
    }

    DemoCamera lan;
    API::CameraPtr camera;
    QDir folder;
};

END_TO_END_MAIN(ExportTest)
#include "ExportTest.moc"
