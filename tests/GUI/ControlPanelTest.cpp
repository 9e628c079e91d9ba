// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "App/Settings.h"
#include "GUI/ControlPanel.h"

using GUI::ControlPanel;

namespace {

template <typename T>
T *child(ControlPanel &panel, const char *name)
{
    return panel.findChild<T *>(QLatin1String(name));
}

QString volumeWordOf(ControlPanel &panel)
{
    return child<QPushButton>(panel, "soundButton")->property("volume").toString();
}

} // namespace

class ControlPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        App::settings().setValue("sound/volume"_s, 50);
        App::settings().setValue("sound/on"_s, true);
    }

    void takesVolumeAndSoundFromTheSettings()
    {
        App::settings().setValue("sound/volume"_s, 17);
        App::settings().setValue("sound/on"_s, false);
        ControlPanel panel;
        QCOMPARE(panel.volume(), 17);
        QVERIFY(!panel.isSoundEnabled());
        QVERIFY(!child<QSlider>(panel, "soundSlider")->isEnabled());
        QCOMPARE(panel.speed(), 1);
    }

    void volumeWord_data()
    {
        rows<int, bool, QString>({"volume", "on", "word"},
                                 {
                                     {"silent", 0, true, "low"},
                                     {"quiet", 1, true, "mid"},
                                     {"below the middle", 49, true, "mid"},
                                     {"middle", 50, true, "high"},
                                     {"off", 80, false, "mute"},
                                 });
    }

    void volumeWord()
    {
        const auto [volume, on, word] = row<int, bool, QString>();
        ControlPanel panel;
        panel.setSoundVolume(volume);
        panel.enableSound(on);
        QCOMPARE(volumeWordOf(panel), word);
        QCOMPARE(panel.volume(), volume);
    }

    void volumeIsStoredOnEachChange()
    {
        ControlPanel panel;
        QSignalSpy changed(&panel, &ControlPanel::soundVolumeChanged);
        panel.setSoundVolume(30);
        QCOMPARE(App::settings().value("sound/volume"_s).toInt(), 30);
        QCOMPARE(changed.count(), 1);
        panel.setSoundVolume(30);
        QCOMPARE(changed.count(), 1);
    }

    void soundButtonWaitsForTheAnswer()
    {
        ControlPanel panel;
        QSignalSpy enabled(&panel, &ControlPanel::soundEnabled);
        child<QPushButton>(panel, "soundButton")->click();
        QCOMPARE(enabled.count(), 1);
        QCOMPARE(enabled.first().first().toBool(), false);
        QCOMPARE(App::settings().value("sound/on"_s).toBool(), false);
        // The look follows only when the window tells of the switch.
        QVERIFY(panel.isSoundEnabled());
        panel.enableSound(false);
        QVERIFY(!panel.isSoundEnabled());
    }

    void speed()
    {
        ControlPanel panel;
        QSignalSpy changed(&panel, &ControlPanel::speedChanged);
        auto *slider = child<QSlider>(panel, "speedSlider");
        auto *label = child<QLabel>(panel, "speedLabel");
        auto *button = child<QPushButton>(panel, "speedButton");
        button->click();
        QCOMPARE(changed.count(), 0);
        panel.showSpeedSlider();
        slider->setValue(3);
        QCOMPARE(panel.speed(), 8);
        QCOMPARE(label->text(), "8x"_s);
        QCOMPARE(button->property("acc").toString(), "yes"_s);
        QCOMPARE(changed.last().first().toInt(), 8);
        panel.hideSpeedSlider();
        QVERIFY(slider->isHidden());
        QVERIFY(!label->isHidden());
        button->click();
        QCOMPARE(panel.speed(), 1);
        QCOMPARE(button->property("acc").toString(), "no"_s);
        slider->setValue(5);
        panel.resetSpeed();
        QCOMPARE(changed.last().first().toInt(), 1);
        QVERIFY(label->isHidden());
    }

    void slidersAppearUnderTheMouse()
    {
        ControlPanel panel;
        bool reached = false;
        auto *control = child<QWidget>(panel, "soundControl");
        auto *slider = child<QSlider>(panel, "soundSlider");
        QVERIFY(slider->isHidden());
        QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
        reached = QCoreApplication::sendEvent(control, &enter);
        QVERIFY(!slider->isHidden());
        QEvent leave(QEvent::Leave);
        QVERIFY(QCoreApplication::sendEvent(control, &leave) && reached);
        QVERIFY(slider->isHidden());

        auto *speedControl = child<QWidget>(panel, "speedSelector");
        QEvent hover(QEvent::HoverEnter);
        QCoreApplication::sendEvent(speedControl, &hover);
        QVERIFY(!child<QSlider>(panel, "speedSlider")->isHidden());
    }

    void qualityMenu()
    {
        ControlPanel panel;
        const QList<QAction *> actions =
            child<QPushButton>(panel, "qualityButton")->menu()->actions();
        QCOMPARE(actions.size(), 4);
        QList<QRadioButton *> items;
        for (QAction *action : actions)
            items.append(qobject_cast<QRadioButton *>(
                qobject_cast<QWidgetAction *>(action)->defaultWidget()));
        QVERIFY(items.last()->isChecked());
        QSignalSpy low(&panel, &ControlPanel::setLowQuality);
        QSignalSpy middle(&panel, &ControlPanel::setMidQuality);
        QSignalSpy high(&panel, &ControlPanel::setHighQuality);
        QSignalSpy automatic(&panel, &ControlPanel::setAutoQuality);
        for (QRadioButton *item : qAsConst(items))
            item->click();
        for (const QSignalSpy *spy : {&low, &middle, &high, &automatic})
            QCOMPARE(spy->count(), 1);
        items.first()->click();
        panel.resetQuality();
        QVERIFY(items.last()->isChecked());
        QVERIFY(!items.first()->isChecked());
        QCOMPARE(automatic.count(), 1);
    }

    void buttonsEmit()
    {
        ControlPanel panel;
        const QList<QPair<const char *, void (ControlPanel::*)()>> wiring{
            {"goLiveButton", &ControlPanel::liveButtonClicked},
            {"cancelButton", &ControlPanel::cancelExportButtonClicked},
            {"showRecordsButton", &ControlPanel::showRecordsButtonClicked},
            {"hideRecordsButton", &ControlPanel::hideRecordsButtonClicked},
            {"exportButton", &ControlPanel::exportButtonClicked},
            {"fullscreenButton", &ControlPanel::fullscreenButtonClicked},
            {"pauseButton", &ControlPanel::pause},
            {"playButton", &ControlPanel::play}};
        for (const auto &wire : wiring) {
            QSignalSpy spy(&panel, wire.second);
            child<QPushButton>(panel, wire.first)->click();
            QCOMPARE(spy.count(), 1);
        }
        QSignalSpy exportMode(&panel, &ControlPanel::exportModeButtonClicked);
        child<QPushButton>(panel, "exportModeButton")->click();
        QCOMPARE(exportMode.count(), 0);
        panel.enableExport(true);
        child<QPushButton>(panel, "exportModeButton")->click();
        QCOMPARE(exportMode.count(), 1);
    }

    void modes()
    {
        ControlPanel panel;
        const auto page = [&](const char *stack) {
            return child<QStackedWidget>(panel, stack)->currentWidget()->objectName();
        };
        QCOMPARE(panel.currentWidget()->objectName(), "controlPage"_s);
        QCOMPARE(page("modeSelector"), "recordsModePage"_s);
        QCOMPARE(page("playPauseStack"), "pausePage"_s);
        panel.showRecordsControls();
        QCOMPARE(page("modeSelector"), "exportModePage"_s);
        panel.showDateLabel();
        QCOMPARE(page("controlMode"), "datePage"_s);
        panel.showLiveLabel();
        QCOMPARE(page("controlMode"), "livePage"_s);
        panel.showPlayButton();
        QCOMPARE(page("playPauseStack"), "playPage"_s);
        panel.setExportMode();
        panel.exportStarted();
        panel.exportPercentDone(42);
        QCOMPARE(child<QLabel>(panel, "exportPercent")->text(), "42%"_s);
        QCOMPARE(page("exportControl"), "exportLabelPage"_s);
        panel.setNormalMode();
        QCOMPARE(page("exportControl"), "exportButtonPage"_s);
        panel.setEmptyMode(true);
        QCOMPARE(panel.currentWidget()->objectName(), "emptyPage"_s);
        panel.setEmptyMode(false);
        QCOMPARE(panel.currentWidget()->objectName(), "controlPage"_s);
        panel.setTime(QDateTime(QDate(2026, 8, 10), QTime(9, 7, 5)));
        QCOMPARE(child<QLabel>(panel, "timeLabel")->text(), "09:07:05"_s);
        QCOMPARE(child<QLabel>(panel, "dateLabel")->text(), "10/08"_s);
    }

    void speedIconShowsFromTheStart()
    {
        ControlPanel panel;
        panel.show();
        panel.showRecordsControls();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        const QImage picture = child<QPushButton>(panel, "speedButton")->grab().toImage();
        int brightest = 0;
        for (int x = 0; x < picture.width(); ++x)
            brightest = qMax(brightest, picture.pixelColor(x, picture.height() / 2).green());
        QVERIFY2(brightest > 150, qPrintable(QString::number(brightest)));
    }

    void barEndsRound()
    {
        const QColor background(64, 69, 78);
        ControlPanel panel;
        panel.resize(800, 50);
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        auto *bar = child<QWidget>(panel, "controlBar");
        const QImage picture = panel.grab().toImage();
        const QPoint origin = bar->mapTo(&panel, QPoint(0, 0));
        // Four pixels in from the corner, a bar with a radius of 16 is not there yet.
        for (const QPoint &corner : {QPoint(4, 0), QPoint(8, 0), QPoint(8, bar->height() - 1),
                                     QPoint(bar->width() - 9, 0)})
            QCOMPARE(picture.pixelColor(origin + corner), background);
        QCOMPARE(picture.pixelColor(origin + QPoint(20, 1)), QColor(77, 83, 94));
    }
};

QTEST_MAIN(ControlPanelTest)
#include "ControlPanelTest.moc"
