// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "App/ServiceProfile.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/SettingsWidget.h"
#include "GUI/SideBar.h"
#include "GUI/ToolBar.h"
#include "tests/GUI/RosterWorld.h"
#include "tests/support/MisbehavingServer.h"

using GUI::SideBar;
using GUI::ToolBar;

class SideBarTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
        profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
        App::ServiceProfile::setCurrent(profile);
    }

    void cleanup() { setWorld({}); }

    void modesShowTheirPage()
    {
        SideBar bar;
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
        auto *edit = bar.findChild<QLineEdit *>("searchEdit");
        QCOMPARE(bar.width(), 269);
        QVERIFY(bar.rosterWidget()->isVisible());
        QVERIFY(!bar.layoutListWidget()->isVisible());
        QCOMPARE(edit->placeholderText(), "Search for cameras..."_s);
        bar.setLayoutsMode();
        QVERIFY(!bar.rosterWidget()->isVisible());
        QVERIFY(bar.layoutListWidget()->isVisible());
        QCOMPARE(edit->placeholderText(), "Search for layouts..."_s);
        QVERIFY(edit->isVisible());
        edit->setText("yard"_s);
        bar.setSettingsMode();
        QVERIFY(!bar.layoutListWidget()->isVisible());
        QVERIFY(bar.settingsWidget()->isVisible());
        QVERIFY(!edit->isVisible());
        QVERIFY(bar.findChild<QLabel *>("settingsLabel")->isVisible());
        QCOMPARE(bar.width(), 269);
        bar.setRosterMode();
        QVERIFY(bar.rosterWidget()->isVisible());
        QVERIFY(!bar.settingsWidget()->isVisible());
        QCOMPARE(edit->text(), "yard"_s);
        QVERIFY(edit->isVisible());
    }

    void searchGoesToBothPagesAndStays()
    {
        setWorld({{"s"_s, "Server"_s, {{1, "Door"_s}}}});
        SideBar bar;
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
        bar.rosterWidget()->updateRoster();
        API::LayoutsContainer layouts;
        for (const QString &name : {"Yard"_s, "Night"_s}) {
            const auto layout = API::LayoutPtr::create();
            layout->setName(name);
            layouts.insert(layout->id(), layout);
        }
        bar.layoutListWidget()->updateLayouts(layouts);
        auto *edit = bar.findChild<QLineEdit *>("searchEdit");
        edit->setFocus();
        QTest::keyClicks(edit, "yard"_s);

        const auto *entry = bar.findChild<GUI::ServerWidget *>();
        QVERIFY(!entry->findChild<QCheckBox *>("expandButton")->isChecked());
        bar.setLayoutsMode();
        QCOMPARE(edit->text(), "yard"_s);
        int visible = 0;
        const auto cards = bar.findChildren<GUI::LayoutCard *>();
        for (const GUI::LayoutCard *card : cards)
            visible += card->isVisible() ? 1 : 0;
        QCOMPARE(cards.size(), 2);
        QCOMPARE(visible, 1);
        edit->clear();
        QVERIFY(entry->findChild<QCheckBox *>("expandButton")->isChecked());
    }

    void hideButtonAsks()
    {
        SideBar bar;
        QSignalSpy asked(&bar, &SideBar::hideRequest);
        QTest::mouseClick(bar.findChild<QPushButton *>("hideRosterButton"), Qt::LeftButton);
        QCOMPARE(asked.count(), 1);
    }

    void tabClicksEmitAndModesDoNot()
    {
        ToolBar bar;
        bar.resize(60, 400);
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
        QSignalSpy live(&bar, &ToolBar::liveClicked);
        QSignalSpy layouts(&bar, &ToolBar::layoutsClicked);
        QSignalSpy settings(&bar, &ToolBar::settingsClicked);
        auto *rosterButton = bar.findChild<QPushButton *>("rosterButton");
        auto *layoutsButton = bar.findChild<QPushButton *>("layoutsButton");
        QVERIFY(rosterButton->isChecked());
        QTest::mouseClick(layoutsButton, Qt::LeftButton);
        QCOMPARE(layouts.count(), 1);
        QVERIFY(layoutsButton->isChecked() && !rosterButton->isChecked());
        bar.setRosterMode();
        QVERIFY(rosterButton->isChecked() && !layoutsButton->isChecked());
        bar.setLayoutsMode();
        QVERIFY(layoutsButton->isChecked());
        bar.setSettingsMode();
        auto *settingsButton = bar.findChild<QPushButton *>("settingsButton");
        QVERIFY(settingsButton->isChecked() && !layoutsButton->isChecked());
        QCOMPARE(layouts.count(), 1);
        QCOMPARE(settings.count(), 0);
        QTest::mouseClick(settingsButton, Qt::LeftButton);
        QCOMPARE(settings.count(), 1);
        QCOMPARE(live.count(), 0);
        QTest::mouseClick(rosterButton, Qt::LeftButton);
        QCOMPARE(live.count(), 1);
        // The form's background, which a plain widget with a style sheet has to paint itself.
        QCOMPARE(bar.grab().toImage().pixelColor(30, 250), QColor(91, 102, 122));
    }
};

QTEST_MAIN(SideBarTest)
#include "SideBarTest.moc"
