// SPDX-License-Identifier: MIT
// The colours of the style sheets reach what the user sees, and texts stand out from their ground.
#include "tests/support/Test.h"

#include <cmath>

#include "App/Application.h"
#include "GUI/LayoutWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/Timeline.h"
#include "tests/GUI/PanelStage.h"

namespace {

const QColor accent(62, 183, 253);
const QColor panel(64, 69, 78);
const QColor field(77, 83, 94);
const QColor side(224, 228, 235);
const QColor dark(41, 44, 49);
const QColor disabled(83, 88, 96);

constexpr double readableContrast = 4.5;

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QColor &first, const QColor &second)
{
    const double one = luminance(first) + 0.05;
    const double other = luminance(second) + 0.05;
    return qMax(one, other) / qMin(one, other);
}

/// Of the colour that stands out most from the most frequent one, by the formula for web pages.
double contrastIn(const QImage &picture)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    }
    QRgb ground = picture.pixel(0, 0);
    for (auto entry = counts.cbegin(); entry != counts.cend(); ++entry) {
        if (entry.value() > counts.value(ground))
            ground = entry.key();
    }
    double strongest = 1;
    for (auto entry = counts.cbegin(); entry != counts.cend(); ++entry)
        strongest = qMax(strongest, contrast(QColor(ground), QColor(entry.key())));
    return strongest;
}

/// Enlarged, so that thin letters have pixels of their full colour; without the round ends.
QImage textOf(QWidget *widget)
{
    constexpr qreal scale = 4;
    const int margin = widget->height() / 3;
    const QRect inside = widget->rect().adjusted(widget->height() > 20 ? margin : 0, 2,
                                                 widget->height() > 20 ? -margin : 0, -2);
    QImage picture(inside.size() * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    QWidget *window = widget->window();
    window->render(&picture, QPoint(),
                   QRect(widget->mapTo(window, inside.topLeft()), inside.size()));
    return picture;
}

} // namespace

class LookTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { leaveWithoutService(); }

    void colours_data()
    {
        QTest::addColumn<QString>("parent");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QPoint>("place");
        QTest::addColumn<QColor>("colour");
        const auto row = [](const char *title, const char *parent, const char *name, QPoint place,
                            QColor colour) {
            QTest::newRow(title) << parent << name << place << colour;
        };
        row("tool bar", "ToolBar", "", {30, 250}, {91, 102, 122});
        row("checked tab", "ToolBar", "rosterButton", {50, 5}, {108, 118, 136});
        row("its edge", "ToolBar", "rosterButton", {1, 25}, accent);
        row("line below a tab", "ToolBar", "layoutsButton", {30, 49}, {108, 118, 136});
        row("side bar", "SideBar", "", {5, 300}, side);
        row("roster", "SideBar", "rosterWidget", {100, 200}, side);
        row("info panel", "InfoPanel", "", {690, 3}, panel);
        row("layout's name", "InfoPanel", "layoutNameEdit", {100, 3}, field);
        row("save", "InfoPanel", "saveLayoutButton", {30, 2}, accent);
        row("beside its round end", "InfoPanel", "saveLayoutButton", {0, 0}, panel);
        row("cancel editing", "InfoPanel", "cancelLayoutButton", {30, 2}, field);
        row("control panel", "ControlPanel", "controlPage", {300, 3}, panel);
        row("control bar", "ControlPanel", "controlBar", {30, 2}, field);
        row("live", "ControlPanel", "liveLabel", {15, 1}, accent);
        row("export", "ControlPanel", "exportButton", {30, 2}, accent);
        row("cancel export", "ControlPanel", "cancelButton", {30, 2}, field);
        row("archive panel", "ArchiveControlPanel", "", {400, 3}, dark);
        row("empty cell", "VideoPlaceholder", "", {20, 20}, {25, 25, 29});
    }

    void colours()
    {
        QFETCH(QString, parent);
        QFETCH(QString, name);
        QFETCH(QPoint, place);
        QFETCH(QColor, colour);
        PanelStage stage;
        QVERIFY(stage.isExposed);
        QWidget *widget = stage.reveal(parent, name);
        QVERIFY(widget);
        if (auto *edit = qobject_cast<QLineEdit *>(widget))
            edit->setReadOnly(false);
        QCOMPARE(stage.pictureOf(widget, QRect(place, QSize(1, 1)), 1).pixelColor(0, 0), colour);
    }

    void sliders_data()
    {
        const QColor handle(175, 176, 178);
        rows<QString, QString, bool, QColor, QColor, QColor>(
            {"parent", "name", "enabled", "filled", "handle", "unfilled"},
            {
                {"sound", "ControlPanel", "soundSlider", true, accent, handle, QColor(Qt::white)},
                {"sound off", "ControlPanel", "soundSlider", false, disabled, disabled, disabled},
                {"speed", "ControlPanel", "speedSlider", true, accent, handle, QColor(Qt::black)},
                {"zoom", "ArchiveControlPanel", "zoomSlider", true, accent, handle,
                 QColor(Qt::black)},
            });
    }

    void sliders()
    {
        const auto [parent, name, enabled] = row<QString, QString, bool>();
        PanelStage stage;
        QVERIFY(stage.isExposed);
        auto *slider = qobject_cast<QSlider *>(stage.reveal(parent, name));
        QVERIFY(slider);
        slider->setValue((slider->minimum() + slider->maximum() + 1) / 2);
        slider->setEnabled(enabled);
        const QImage picture = stage.pictureOf(slider, slider->rect(), 1);
        const double share =
            double(slider->value() - slider->minimum()) / (slider->maximum() - slider->minimum());
        const int middle = picture.height() / 2;
        const int onHandle = 4 + qRound(share * (picture.width() - 8));
        QTEST(picture.pixelColor(8, middle), "filled");
        QTEST(picture.pixelColor(onHandle, middle), "handle");
        QTEST(picture.pixelColor(picture.width() - 8, middle), "unfilled");
    }

    void gridShowsThatItTakesADrop()
    {
        GUI::LayoutWidget grid;
        grid.resize(300, 200);
        QCOMPARE(grid.grab().toImage().pixelColor(150, 0), dark);
        QMimeData mime;
        mime.setData("layout"_s, "name");
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&grid, &enter);
        QCOMPARE(grid.grab().toImage().pixelColor(150, 0), QColor(25, 134, 243));
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&grid, &leave);
        QCOMPARE(grid.grab().toImage().pixelColor(150, 0), dark);
    }

    void timelineGround()
    {
        GUI::Timeline timeline(QDate(2020, 3, 4));
        timeline.resize(600, 56);
        QCOMPARE(timeline.grab().toImage().pixelColor(300, 50), dark);
    }

    void texts_data()
    {
        QTest::addColumn<QString>("parent");
        QTest::addColumn<QString>("name");
        const char *const places[][2] = {
            {"SideBar", "searchEdit"},           {"SideBar", "addLayoutButton"},
            {"SideBar", "languageBox"},          {"ServerWidget", "serverName"},
            {"ServerWidget", "noCamerasLabel"},  {"InfoPanel", "saveLayoutButton"},
            {"InfoPanel", "cancelLayoutButton"}, {"InfoPanel", "layoutNameEdit"},
            {"ControlPanel", "timeLabel"},       {"ControlPanel", "liveLabel"},
            {"ControlPanel", "exportButton"},    {"ControlPanel", "cancelButton"},
            {"VideoPlaceholder", "hintLabel"},   {"ArchiveControlPanel", "selectFragmentLabel"},
        };
        for (const auto &place : places)
            QTest::newRow(place[1]) << place[0] << place[1];
    }

    void texts()
    {
        QFETCH(QString, parent);
        QFETCH(QString, name);
        PanelStage stage;
        QVERIFY(stage.isExposed);
        QWidget *widget = stage.reveal(parent, name);
        QVERIFY(widget);
        if (auto *edit = qobject_cast<QLineEdit *>(widget)) {
            edit->setReadOnly(false);
            edit->clear(); // shows what to type
        }
        const double found = contrastIn(textOf(widget));
        QVERIFY2(found >= readableContrast, qPrintable(QString::number(found)));
    }

    void signInTexts_data()
    {
        rows<QByteArray, QString>(
            {"alert", "name"},
            {
                {"what to type", QByteArray("showWrongEmailPassAlert"), "emailLn"},
                {"wrong password", QByteArray("showWrongEmailPassAlert"), "wrongEmailPassLbl"},
                {"no network", QByteArray("showNoInternetAlert"), "noInternetLbl"},
                {"local mode", QByteArray("showNoInternetAlert"), "localLoginPBtn"},
                {"proxy", QByteArray("showUsesProxyAlert"), "usesProxyLbl"},
                {"proxy settings", QByteArray("showUsesProxyAlert"), "settingsPBtn2"},
            });
    }

    void signInTexts()
    {
        const auto [alert, name] = row<QByteArray, QString>();
        GUI::LoginDialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(QMetaObject::invokeMethod(&dialog, alert.constData()));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        auto *widget = dialog.findChild<QWidget *>(name);
        QVERIFY(widget->isVisible());
        const double found = contrastIn(textOf(widget));
        QVERIFY2(found >= readableContrast, qPrintable(QString::number(found)));
    }

    /// They inherit the sheet of their button, which colours all that lies in the bar.
    void toolTipsOfTheBar()
    {
        PanelStage stage;
        QVERIFY(stage.isExposed);
        QWidget *button = stage.reveal("ControlPanel"_s, "pauseButton"_s);
        QHelpEvent ask(QEvent::ToolTip, QPoint(5, 5), button->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(button, &ask);
        QWidget *tip = nullptr;
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget *window : windows) {
            if (window->inherits("QTipLabel"))
                tip = window;
        }
        QVERIFY(tip);
        QVERIFY(contrastIn(tip->grab().toImage()) >= readableContrast);
        const QColor ground = tip->grab().toImage().pixelColor(3, tip->height() / 2);
        QVERIFY(ground != field);
    }

    void languageListShowsItsSelection()
    {
        PanelStage stage;
        QVERIFY(stage.isExposed);
        auto *box = qobject_cast<QComboBox *>(stage.reveal("SideBar"_s, "languageBox"_s));
        QVERIFY(box);
        box->showPopup();
        QAbstractItemView *list = box->view();
        QVERIFY(QTest::qWaitForWindowExposed(list->window()));
        const QRect row = list->visualRect(list->currentIndex()).adjusted(2, 2, -2, -2);
        const double found = contrastIn(list->viewport()->grab(row).toImage());
        QVERIFY2(found >= readableContrast, qPrintable(QString::number(found)));
        box->hidePopup();
    }
};

int main(int argc, char *argv[])
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    LookTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "LookTest.moc"
