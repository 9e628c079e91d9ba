// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <optional>

#include "companion/ExportTimeline.h"

using std::chrono::milliseconds;
using ZorvaneClient::Companion::ExportTimeline;

/// Where packets stand in an exported file. A stamp below -1000 is one of sound, negated.
class CompanionTimelineTest : public QObject
{
    Q_OBJECT

private slots:
    void places_data()
    {
        using List = QList<int>;
        // -1: not known
        rows<List, int, List>(
            {"stamps", "silence", "times"},
            {
                {"rare pictures, silence not known", List{0, 3000, 6000, 9000}, -1,
                 List{0, 40, 3040, 6040}},
                {"clock set back a little", List{0, 40, 80, 20, 60, 100, 140}, -1,
                 List{0, 40, 80, 81, 82, 100, 140}},
                {"sound of before the gap, late",
                 List{2000, 2040, 2080, 72'000, -2090, 72'040, -72'030}, 70'000,
                 List{0, 40, 80, 120, 90, 160, 150}},
                {"sound stops and comes back",
                 List{2000, -2010, 3000, 4000, 5000, 6000, 7000, -7010}, 0,
                 List{0, 10, 1000, 2000, 3000, 4000, 5000, 5010}},
                {"more jumps than silence", List{0, 40, 80, 5080, 5120, 5160, 10'160}, 7000,
                 List{0, 40, 80, 120, 160, 200, 3200}},
            });
    }

    void places()
    {
        const auto [stamps, silence, times] = row<QList<int>, int, QList<int>>();
        ExportTimeline timeline(milliseconds(20'000), silence < 0 ? std::optional<milliseconds>()
                                                                  : milliseconds(silence));
        QList<int> found;
        for (const int stamp : stamps) {
            const auto kind = stamp < -1000 ? ExportTimeline::Sound : ExportTimeline::Video;
            found.append(static_cast<int>(timeline.place(kind, qAbs(stamp))));
        }
        QCOMPARE(found, times);
    }
};

QTEST_GUILESS_MAIN(CompanionTimelineTest)
#include "CompanionTimelineTest.moc"
