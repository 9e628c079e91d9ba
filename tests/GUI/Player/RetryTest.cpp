// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/ScriptedChild.h"

using GUI::Player::VideoWidget;

/// The tile that gave up tries again by itself. Takes its thirty seconds.
class RetryTest : public QObject
{
    Q_OBJECT

private slots:
    void givesUpAndComesBack()
    {
        FakeClock clock(QDateTime(QDate(2015, 3, 3), QTime(12, 0, 0)));
        ScriptedChild child({"print frame\\nstate 7\\n"});
        VideoWidget tile(localCamera());
        tile.resize(320, 240);
        tile.show();
        QVERIFY(tile.playLive());
        for (int start = 1; start <= 3; ++start) {
            QTRY_COMPARE(stateOf(tile), "Error"_s);
            clock.advance(11);
            tick(tile);
        }
        QTRY_COMPARE(stateOf(tile), "Error"_s);
        QElapsedTimer sinceGivingUp;
        sinceGivingUp.start();
        tick(tile);
        QVERIFY(showsText(tile, "No video available"_s));
        QCOMPARE(child.starts().size(), 4);

        // The user has gone to the archive meanwhile, and is taken back.
        child.setScript({"print frame\\n"});
        QVERIFY(tile.playArchive(clock.now().addDays(-1), clock.now(), 1));
        QTRY_COMPARE(child.starts().size(), 5);
        QTRY_COMPARE_WITH_TIMEOUT(child.starts().size(), 6, 60000);
        QVERIFY(sinceGivingUp.elapsed() >= 28500); // a coarse timer may be five in a hundred early
        QVERIFY(child.starts().last().first().contains("/flv/live"_s));
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QVERIFY(dumpOf(tile).contains("reloads count: 0 "_s));
    }
};

QTEST_MAIN(RetryTest)
#include "RetryTest.moc"
