// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Layout.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/InfoPanel.h"

using GUI::InfoPanel;

namespace {

using ModeSlot = void (InfoPanel::*)();

struct Shown {
    bool name;
    bool readOnly;
    bool gridButton;
    QString page;
    QStringList menu;
};

const QStringList viewMenu{"Edit view"_s, "Open new window"_s, "Close view"_s};

Shown shownBy(InfoPanel &panel)
{
    const auto *edit = panel.findChild<QLineEdit *>("layoutNameEdit"_s);
    QStringList menu;
    const auto *menuButton = panel.findChild<QPushButton *>("settingsButton"_s);
    const QList<QAction *> actions = menuButton->menu()->actions();
    for (const QAction *action : actions)
        menu.append(action->text());
    return {!edit->isHidden(), edit->isReadOnly(),
            !panel.findChild<QPushButton *>("gridSizeButton"_s)->isHidden(),
            panel.findChild<QStackedWidget *>("buttonsStack"_s)->currentWidget()->objectName(),
            menu};
}

} // namespace

Q_DECLARE_METATYPE(ModeSlot)

class InfoPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void modes_data()
    {
        rows<ModeSlot, int, bool, bool, QString, QStringList>(
            {"enter", "mode", "name", "editable", "page", "menu"},
            {
                {"empty", &InfoPanel::enterEmptyMode, 1, false, false, "settingsPage",
                 QStringList{"Open new window"}},
                {"view", &InfoPanel::enterViewMode, 2, true, false, "settingsPage", viewMenu},
                {"unsaved", &InfoPanel::enterUnsavedMode, 3, true, false, "controlsPage", viewMenu},
                {"edit", &InfoPanel::enterEditMode, 4, true, true, "controlsPage", viewMenu},
            });
    }

    void modes()
    {
        const auto [enter, mode, name, editable, page, menu] =
            row<ModeSlot, int, bool, bool, QString, QStringList>();
        InfoPanel panel;
        (panel.*enter)();
        QCOMPARE(panel.mode(), mode);
        const Shown shown = shownBy(panel);
        QCOMPARE(shown.name, name);
        QCOMPARE(shown.gridButton, editable);
        if (name)
            QCOMPARE(shown.readOnly, !editable);
        QCOMPARE(shown.page, page);
        QCOMPARE(shown.menu, menu);
    }

    void editModeIsLeftForViewAndEmptyOnly()
    {
        InfoPanel panel;
        panel.enterEditMode();
        panel.enterUnsavedMode();
        QCOMPARE(panel.mode(), 4);
        panel.enterViewMode();
        QCOMPARE(panel.mode(), 2);
        QVERIFY(shownBy(panel).readOnly);
        panel.enterEditMode();
        panel.enterEmptyMode();
        QCOMPARE(panel.mode(), 1);
    }

    void buttonsAndMenuEntriesEmit()
    {
        InfoPanel panel;
        panel.enterEditMode();
        QSignalSpy saved(&panel, &InfoPanel::layoutSaved);
        QSignalSpy cancelled(&panel, &InfoPanel::layoutCancelled);
        QSignalSpy shown(&panel, &InfoPanel::showRequest);
        QSignalSpy edited(&panel, &InfoPanel::editMode);
        QSignalSpy cloned(&panel, &InfoPanel::cloneWindowClicked);
        QSignalSpy closed(&panel, &InfoPanel::closeLayout);
        QVERIFY(panel.findChild<QPushButton *>("showPBtn"_s)->isHidden());
        panel.showShowButton();
        for (const char *name : {"saveLayoutButton", "cancelLayoutButton", "showPBtn"})
            panel.findChild<QPushButton *>(QLatin1String(name))->click();
        for (const char *name : {"actionEdit_view", "actionClone_window", "actionClose"})
            panel.findChild<QAction *>(QLatin1String(name))->trigger();
        for (const QSignalSpy *spy : {&saved, &cancelled, &shown, &edited, &cloned, &closed})
            QCOMPARE(spy->count(), 1);
    }

    void pickedSizeIsEmittedOnceThePopupIsClosed()
    {
        InfoPanel panel;
        const auto layout = API::LayoutPtr::create();
        layout->setName("Yard"_s);
        layout->resize(2, 3);
        panel.setCurrentLayout(layout);
        QCOMPARE(panel.layoutName(), "Yard"_s);
        QCOMPARE(panel.mode(), 2);
        panel.enterEditMode();
        panel.show();

        auto *button = panel.findChild<QPushButton *>("gridSizeButton"_s);
        button->click();
        auto *editor = button->findChild<GUI::GridSizeEditor *>();
        QVERIFY(editor && editor->isVisible());
        // Some platforms give a popup a frame of a pixel or two.
        const QPoint below = button->mapToGlobal(QPoint(0, button->height() + 5));
        QVERIFY((editor->pos() - below).manhattanLength() <= 4);
        bool popupWasOpen = true;
        QSignalSpy changed(&panel, &InfoPanel::layoutSizeChanged);
        connect(&panel, &InfoPanel::layoutSizeChanged, &panel,
                [&] { popupWasOpen = editor->isVisible(); });
        // The present size counts as a choice too.
        const QPoint cell(10 + 14 * 2 + 3, 10 + 12 * 1 + 3);
        QTest::mouseMove(editor, cell);
        QTest::mousePress(editor, Qt::LeftButton, Qt::NoModifier, cell);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().at(0).toInt(), 2);
        QCOMPARE(changed.first().at(1).toInt(), 3);
        QVERIFY(!popupWasOpen);
    }

    void returnEndsTheEditingOfTheName()
    {
        InfoPanel panel;
        panel.enterEditMode();
        panel.show();
        QVERIFY(QTest::qWaitForWindowActive(&panel));
        auto *edit = panel.findChild<QLineEdit *>("layoutNameEdit"_s);
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(!edit->hasFocus());
    }

    void aLongNameShowsItsBeginning()
    {
        InfoPanel panel;
        auto *edit = panel.findChild<QLineEdit *>("layoutNameEdit"_s);
        panel.setTitle("A name longer than its field "_s.repeated(10));
        QCOMPARE(edit->cursorPosition(), 0);
        panel.enterEditMode();
        edit->setCursorPosition(edit->text().size());
        panel.enterViewMode();
        QCOMPARE(edit->cursorPosition(), 0);
        panel.setCurrentLayout(API::LayoutPtr());
        QCOMPARE(panel.layoutName(), QString());
    }
};

QTEST_MAIN(InfoPanelTest)
#include "InfoPanelTest.moc"
