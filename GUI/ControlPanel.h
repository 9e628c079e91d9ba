// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QScopedPointer>
#include <QStackedWidget>

class QMouseEvent;
class QWidgetAction;

namespace Ui {
class ControlPanel;
}

namespace ZorvaneClient {
namespace GUI {

class QualityItem;

/// The bar at the foot of the window. Decides nothing about playback: it emits what the user
/// pressed and shows what it is told.
class ControlPanel : public QStackedWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ControlPanel)

public:
    explicit ControlPanel(QWidget *parent = nullptr);
    ~ControlPanel() override;

    /// 0 to 100.
    int volume() const;
    /// Archive speed: 1, 2, 4, 8, 16 or 32.
    int speed() const;
    bool isSoundEnabled() const;
    void setTime(QDateTime dateTime);
    void resetSpeed();
    /// Checks "Auto" in the menu; emits nothing.
    void resetQuality();

    // For keys: as a click on the buttons, if they are there.

    void pressPause();
    void pressRecords();
    void pressSound();
    /// To the next speeds, faster or slower, as far as there are any.
    void stepSpeed(int steps);

public slots:
    void showSpeedSlider();
    void showSoundSlider();
    void hideSpeedSlider();
    void hideSoundSlider();
    void setExportMode();
    void setNormalMode();
    void setEmptyMode(bool active);
    void showRecordsControls();
    void hideRecordsControls();
    void showLiveLabel();
    void showDateLabel();
    void showPauseButton();
    void showPlayButton();
    void enableExport(bool enabled);
    void setSoundVolume(int volume);
    void enableSound(bool enable);
    void enterFullscreen();
    void leaveFullscreen();
    void exportStarted();
    void exportPercentDone(int percent);

signals:
    void showRecordsButtonClicked();
    void hideRecordsButtonClicked();
    void liveButtonClicked();
    void exportModeButtonClicked();
    void cancelExportButtonClicked();
    void exportButtonClicked();
    void fullscreenButtonClicked();
    void setLowQuality();
    void setMidQuality();
    void setHighQuality();
    void setAutoQuality();
    void pause();
    void play();
    void soundVolumeChanged(int volume);
    void soundEnabled(bool enable);
    void speedChanged(int speed);
    /// The user wrote where in the past to go to.
    void momentChosen(QDateTime moment);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private slots:
    void on_speedSlider_valueChanged(int value);
    void on_soundSlider_valueChanged(int value);
    void on_soundButton_clicked();
    void on_speedButton_clicked();
    void updateVolumeButton();
    QWidgetAction *createQualityMenuItem(QString text, bool checked);

private:
    void setUpSound();
    /// A slider, or what holds one. One room in the bar is for whichever slider is unfolded, so
    /// that no button moves away from the pointer.
    void setShown(QWidget *part, bool shown);
    // There is room for one: the other one folds away.
    void unfoldSpeed();
    void unfoldSound();
    /// So that Tab comes to the slider too.
    void unfoldFocused(QWidget *left, QWidget *entered);
    void createQualityMenu();
    void connectButtons();
    void setTimeClickable(bool clickable);
    /// A click on the time in records opens the field for a moment.
    void onTimeReleased(const QMouseEvent &event);

    QScopedPointer<Ui::ControlPanel> ui;
    /// Checked at the start, and again by resetQuality().
    QualityItem *startQuality = nullptr;
    QDateTime shownTime;
};

} // namespace GUI
} // namespace ZorvaneClient
