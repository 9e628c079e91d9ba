// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "App/Environment.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/CalendarPopup.h"

using GUI::ArchiveControlPanel;

namespace {

const QDate today(2026, 3, 1);

template <typename T>
T *child(ArchiveControlPanel &panel, const char *name)
{
    return panel.findChild<T *>(QLatin1String(name));
}

QWidget *dateText(ArchiveControlPanel &panel)
{
    return child<QWidget>(panel, "qt_spinbox_lineedit");
}

QDate shownDate(ArchiveControlPanel &panel)
{
    return child<QDateEdit>(panel, "dateEdit")->date();
}

GUI::CalendarPopup *openCalendar()
{
    QWidget *popup = QApplication::activePopupWidget();
    return popup ? popup->findChild<GUI::CalendarPopup *>() : nullptr;
}

} // namespace

class ArchiveControlPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        App::Environment::setClock([] { return QDateTime(today, QTime(12, 0)); });
    }

    void cleanup()
    {
        while (QWidget *popup = QApplication::activePopupWidget())
            popup->close();
    }

    void cleanupTestCase() { App::Environment::setClock({}); }

    void startsWithToday()
    {
        ArchiveControlPanel panel;
        QCOMPARE(shownDate(panel), today);
        QCOMPARE(child<QDateEdit>(panel, "dateEdit")->text(),
                 QLocale().toString(today, "MMM dd"_s));
        QCOMPARE(dateText(panel)->cursor().shape(), Qt::PointingHandCursor);
        QVERIFY(child<QWidget>(panel, "messageWidget")->isHidden());
        QCOMPARE(panel.minimumHeight(), 37);
        QCOMPARE(panel.maximumHeight(), 37);
    }

    void dayButtons()
    {
        ArchiveControlPanel panel;
        QSignalSpy changed(&panel, &ArchiveControlPanel::dateChanged);
        auto *previous = child<QPushButton>(panel, "prevDayButton");
        previous->click();
        QCOMPARE(changed.takeFirst().first().toDate(), QDate(2026, 2, 28));
        // They tell where they lead.
        const QString name = QLocale().toString(QDate(2026, 2, 27), "MMM dd"_s);
        QVERIFY(previous->toolTip().contains(name));
        QCOMPARE(previous->accessibleName(), name);
        child<QPushButton>(panel, "nextDayButton")->click();
        child<QPushButton>(panel, "nextDayButton")->click();
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.last().first().toDate(), QDate(2026, 3, 2)); // tomorrow
    }

    void setDate()
    {
        ArchiveControlPanel panel;
        QSignalSpy changed(&panel, &ArchiveControlPanel::dateChanged);
        panel.setDate(today);
        QCOMPARE(changed.count(), 0);
        panel.setDate(QDate(2025, 12, 31));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(shownDate(panel), QDate(2025, 12, 31));
    }

    void zoom()
    {
        ArchiveControlPanel panel;
        auto *slider = child<QSlider>(panel, "zoomSlider");
        QSignalSpy level(&panel, &ArchiveControlPanel::zoomed);
        panel.zoom(40);
        QCOMPARE(slider->value(), 40);
        QCOMPARE(level.takeFirst().first().toInt(), 40);
        panel.zoom(40);
        QCOMPARE(level.count(), 0);
        slider->setValue(100);
        QCOMPARE(level.takeFirst().first().toInt(), 100);
        QCOMPARE(slider->minimum(), 0);
        QCOMPARE(slider->maximum(), 100);

        QSignalSpy in(&panel, &ArchiveControlPanel::zoomedIn);
        QSignalSpy out(&panel, &ArchiveControlPanel::zoomedOut);
        child<QPushButton>(panel, "zoomInButton")->click();
        QCOMPARE(in.count(), 1);
        QCOMPARE(out.count(), 0);
        child<QPushButton>(panel, "zoomOutButton")->click();
        QCOMPARE(out.count(), 1);
    }

    void messages()
    {
        ArchiveControlPanel panel;
        panel.resize(800, 37);
        panel.show();
        auto *select = child<QLabel>(panel, "selectFragmentLabel");
        auto *exporting = child<QLabel>(panel, "exportingLabel");
        QCOMPARE(select->text(), "Select fragment to export"_s);
        QCOMPARE(exporting->text(), "Exporting..."_s);
        panel.showSelectFragmentMessage();
        QVERIFY(select->isVisible() && !exporting->isVisible());
        panel.showExportingMessage();
        QVERIFY(!select->isVisible() && exporting->isVisible());
        panel.hideMessage();
        QVERIFY(!select->isVisible() && !exporting->isVisible());
    }

    void clickOnTheDateOpensTheCalendar_data()
    {
        rows<bool>({"atTheEnd"}, {
                                     {"begin of the text", false},
                                     {"end of the text", true},
                                 });
    }

    void clickOnTheDateOpensTheCalendar()
    {
        const auto [atTheEnd] = row<bool>();
        ArchiveControlPanel panel;
        panel.resize(800, 37);
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QWidget *text = dateText(panel);
        const QPoint place(atTheEnd ? text->width() - 2 : 1, text->height() / 2);
        QTest::mousePress(text, Qt::LeftButton, Qt::NoModifier, place);
        QTRY_VERIFY(openCalendar());
        QVERIFY(openCalendar()->isVisible());
        QCOMPARE(openCalendar()->size(), QSize(320, 312));
        QCOMPARE(openCalendar()->selectedDate(), today);
    }

    void pickedDayIsEmitted()
    {
        ArchiveControlPanel panel;
        panel.resize(800, 37);
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QTest::mousePress(dateText(panel), Qt::LeftButton);
        QTRY_VERIFY(openCalendar());

        QSignalSpy changed(&panel, &ArchiveControlPanel::dateChanged);
        auto *days = openCalendar()->findChild<QTableView *>("qt_calendar_calendarview"_s);
        // March 2026 begins with a Sunday; the second week has the days 2 to 8.
        const bool weekBeginsOnSunday = openCalendar()->firstDayOfWeek() == Qt::Sunday;
        const int row = weekBeginsOnSunday ? 1 : 2;
        const QRect cell = days->visualRect(days->model()->index(row, weekBeginsOnSunday ? 4 : 3));
        QTest::mouseClick(days->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().toDate(), QDate(2026, 3, 5));
        QTRY_VERIFY(!QApplication::activePopupWidget());
    }

    void dateTextIsNoText_data()
    {
        rows<QEvent::Type>({"type"}, {
                                         {"double click", QEvent::MouseButtonDblClick},
                                         {"drag", QEvent::MouseMove},
                                     });
    }

    void dateTextIsNoText()
    {
        const auto [type] = row<QEvent::Type>();
        ArchiveControlPanel panel;
        panel.resize(800, 37);
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        auto *text = qobject_cast<QLineEdit *>(dateText(panel));
        const QPoint place = text->rect().center();
        QMouseEvent event(type, place, text->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(text, &event);
        QVERIFY(!text->hasSelectedText());
        QCoreApplication::processEvents();
        QVERIFY(!openCalendar());
    }
};

QTEST_MAIN(ArchiveControlPanelTest)
#include "ArchiveControlPanelTest.moc"
