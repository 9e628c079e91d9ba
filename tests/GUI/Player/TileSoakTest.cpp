// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>

#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ProcessTraces.h"
#include "tests/support/ScriptedChild.h"

using GUI::Player::VideoWidget;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool memoryTells = false; // what is freed is kept for a while
#else
constexpr bool memoryTells = true;
#endif

constexpr int usualCycles = 25;
constexpr int longCycles = 500;
constexpr int warmUpCycles = 5;
constexpr qint64 memoryGrowthLimit = 4 << 20;

int soakCycles()
{
    return qEnvironmentVariableIsSet("ZORVANE_SOAK") ? longCycles : usualCycles;
}

} // namespace

/// Tiles and children by the hundred: nothing of them may stay.
class TileSoakTest : public QObject
{
    Q_OBJECT

private slots:
    void openAndClose()
    {
        const LogCapture log; // keeps the console quiet
        ScriptedChild child({"solid 640 360 ff0000ff", "print size 640 360\\nframe\\n"});
        QWidget window;
        window.resize(640, 480);
        window.show();
        ProcessTraces before;
        qint64 memoryBefore = 0;
        for (int cycle = -warmUpCycles; cycle < soakCycles(); ++cycle) {
            if (cycle == 0) {
                before = ProcessTraces::now();
                memoryBefore = residentBytes();
            }
            auto tile = std::make_unique<VideoWidget>(localCamera(), &window);
            tile->resize(640, 360);
            tile->show();
            QVERIFY(tile->playLive());
            if (cycle == 0) {
                QCOMPARE(ProcessTraces::now().mappings, before.mappings + 1);
                QCOMPARE(ProcessTraces::now().children, before.children + 1);
            }
            QTRY_COMPARE(stateOf(*tile), "Playing"_s);
            QCOMPARE(pixelOf(*tile, 320, 180), QColor(Qt::red));
        }
        QCOMPARE(ProcessTraces::now().text(), before.text());
        if (memoryTells)
            QVERIFY2(residentBytes() - memoryBefore < memoryGrowthLimit,
                     qPrintable(QString::number(residentBytes() - memoryBefore)));
    }

    void kills()
    {
        constexpr int longestWaitMsecs = 15;
        const int kills = qMax(10, soakCycles() * 2 / 5);
        const LogCapture log;
        FakeClock clock(QDateTime(QDate(2015, 3, 3), QTime(12, 0, 0)));
        ScriptedChild child({"solid 640 360 ff0000ff", "print size 640 360\\n", "flood 20 frame\\n",
                             "pace 500 frame\\n"});
        const ProcessTraces before = ProcessTraces::now();
        {
            VideoWidget tile(localCamera());
            tile.resize(640, 360);
            tile.show();
            QProcess &process = *tile.findChild<QProcess *>();
            QVERIFY(tile.playLive());
            QRandomGenerator generator(20150303);
            for (int kill = 0; kill < kills; ++kill) {
                QElapsedTimer time;
                time.start();
                const int wait = generator.bounded(longestWaitMsecs);
                while (time.elapsed() < wait)
                    QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
                QVERIFY(process.processId() > 0);
                ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
                QTRY_COMPARE(process.state(), QProcess::NotRunning);

                // A tile that had got to play is brought back by itself, one that had not by its
                // user.
                const bool wasPlaying = tile.isPlaying();
                clock.advance(11);
                tick(tile);
                if (!wasPlaying || process.state() == QProcess::NotRunning)
                    QVERIFY(tile.playLive());
                QCOMPARE(process.state(), QProcess::Running);
            }
            QTRY_COMPARE(stateOf(tile), "Playing"_s);
            QCOMPARE(pixelOf(tile, 320, 180), QColor(Qt::red));
        }
        QCOMPARE(ProcessTraces::now().text(), before.text());
    }
};

QTEST_MAIN(TileSoakTest)
#include "TileSoakTest.moc"
