// SPDX-License-Identifier: MIT
// The export of a fragment, beside whatever else is done in the window.
#include "tests/GUI/ArchiveWindow.h"

class ArchiveExportTest : public ArchiveWindow
{
    Q_OBJECT

private slots:
    void exports_data()
    {
        // Steps are buttons and words of the player; ">2" makes a camera active, "+2" adds a tile
        // of it, "-2" closes the second oldest tile of the grid; "size" resizes it, "again" opens
        // it as it is and "new" an empty one. "dead" is a player that ends without a word.
        const QString over = "controlPage exportButtonPage "_s;
        const QString empty = "emptyPage exportButtonPage "_s;
        const QString marking = "exportPage exportButtonPage selectFragmentPage"_s;
        const QString running = "exportPage exportLabelPage exportingPage"_s;
        const QString saved = "Record saved. <a style=\"color: white\" href=\"%1\">Open folder</a>";
        rows<QString, QString, QString>(
            {"steps", "shown", "hint"},
            {{"done", "exportMode export done", over, saved},
             {"error", "exportMode export error", over, "Error while exporting."},
             {"closed", "exportMode export -1", over, ""},
             {"all closed", "exportMode export -1 -1", empty, ""},
             {"another layout", "exportMode export new", empty, ""},
             {"only marked, another layout", "exportMode new", empty, ""},
             {"only marked, its camera closed", "exportMode >2 -1 size", marking, ""},
             {"beside an edited grid", "exportMode export >2 +1 -2", running, ""},
             {"older tile of the camera closed", "+1 exportMode export -1", running, ""},
             {"newer tile of the camera closed", "+1 exportMode export -1 -2", over, ""},
             {"pressed twice", "exportMode export >2 export", running, ""},
             {"the same layout", "exportMode export again", running, ""},
             {"dead, the same layout", "exportMode export dead again", over, ""}});
    }

    /// What the panels show of an export, which Cancel ends in any case.
    void exports()
    {
        const auto [steps, expected, hint] = row<QString, QString, QString>();
        const QString tour = "Saved layouts in turn, every 30 s."_s;
        const QString last = steps.section(' ', -1);
        playTwo(1);
        press("showRecordsButton");
        timeline()->grab(); // What it paints decides whether there is something to export.
        child->setScript({"print export-start\\nexport-percent 7\\n", "wait last word",
                          "print export-" + last + "\\n", "exit 0"});
        qint64 process = 0;
        for (const QString &step : steps.split(' ')) {
            const int number = step.mid(1).toInt() - 1;
            if (step == "export" && process == 0) {
                press("exportButton");
                QVERIFY2(!tile(0)->isExporting(), "it may not");
                shown.at(0)->setExportEnabled(true);
                shown.at(1)->setExportEnabled(true);
                press("exportButton");
                QTRY_COMPARE_WITH_TIMEOUT(textOf("exportPercent"), "7%"_s, startDeadlineMs);
                process = child->lastProcessId();
                continue;
            }
            if (step == last && (last == "done" || last == "error"))
                child->tell("last word");
            else if (step == "dead")
                QTRY_VERIFY((child->tell("last word"), !tile(0)->isExporting()));
            else if (step == "size")
                grid()->resizeLayout(2, 2);
            else if (step == "again")
                window->openLayout(API::LayoutPtr::create(*grid()->workingLayout()));
            else if (step == "new")
                window->openLayout(API::LayoutPtr::create());
            else if (step.startsWith('>'))
                window->activateCamera(shown.at(number));
            else if (step.startsWith('+'))
                window->addToLayout(shown.at(number));
            else if (auto *closed = grid()->findChildren<VideoWidget *>().value(number))
                emit closed->closed(closed);
            else
                press(step + "Button");
        }
        const auto pages = [this] {
            return panel()->currentWidget()->objectName() + ' ' + pageOf("exportControl") + ' ' +
                   pageOf("messageWidget");
        };
        const QString folder = QFileInfo(child->starts().last().last()).path();
        const QString end =
            last == "error" ? hint + " in red"_s : QString(hint).replace("%1", folder);
        QTRY_COMPARE(pages(), expected);
        QTRY_COMPARE(hinted(), end); // before it goes by itself
        if (expected.startsWith("exportPage")) {
            QCOMPARE(ScriptedChild::isAlive(process), process != 0);
            if (process != 0) { // layouts in turn wait for it, live too
                const auto other = API::LayoutPtr::create();
                API::CloudAPIClient().addLayout(other);
                window->findChild<LayoutListWidget *>()->updateLayouts();
                window->playLive();
                QTest::keyClick(window.data(), Qt::Key_T);
                QTRY_COMPARE(hinted(), tour);
                clock->advance(31);
                expireTimers(std::chrono::seconds(1), window.data());
                QVERIFY(window->playerCount() > 0);
                API::CloudAPIClient().deleteLayout(other);
            }
            press("cancelButton");
            QCOMPARE(pages(), "controlPage exportButtonPage "_s);
        } else {
            const QList<API::LayoutCell> cells = grid()->workingLayout()->cellList();
            QCOMPARE(timeline()->cameraCount(), int(cells.size()));
            QCOMPARE(timeline()->activeCamera(), cells.value(0).camera);
        }
        QTRY_VERIFY(!ScriptedChild::isAlive(process));
        QVERIFY(hinted() == end || hinted() == tour || hinted().isEmpty());
    }
};

QTEST_MAIN(ArchiveExportTest)
#include "ArchiveExportTest.moc"
