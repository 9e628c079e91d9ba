// SPDX-License-Identifier: MIT
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QtTest>

#include "API/Layout.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/InfoPanel.h"

using namespace ZorvaneClient;
using GUI::InfoPanel;

class InfoPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void modes_data();
    void modes();
    void editModeIsLeftForViewAndEmptyOnly();
    void buttonsAndMenuEntriesEmit();
    void pickedSizeIsEmittedOnceThePopupIsClosed();
    void returnEndsTheEditingOfTheName();
    void aLongNameShowsItsBeginning();
};

namespace {

using ModeSlot = void (InfoPanel::*)();

struct Shown {
    bool name;
    bool readOnly;
    bool gridButton;
    QString page;
    QStringList menu;
};

const QStringList viewMenu{QStringLiteral("Edit view"), QStringLiteral("Open new window"),
                           QStringLiteral("Close view")};

Shown shownBy(InfoPanel &panel)
{
    const auto *edit = panel.findChild<QLineEdit *>(QStringLiteral("layoutNameEdit"));
    QStringList menu;
    const auto *menuButton = panel.findChild<QPushButton *>(QStringLiteral("settingsButton"));
    const QList<QAction *> actions = menuButton->menu()->actions();
    for (const QAction *action : actions)
        menu.append(action->text());
    return {!edit->isHidden(), edit->isReadOnly(),
            !panel.findChild<QPushButton *>(QStringLiteral("gridSizeButton"))->isHidden(),
            panel.findChild<QStackedWidget *>(QStringLiteral("buttonsStack"))
                ->currentWidget()
                ->objectName(),
            menu};
}

} // namespace

Q_DECLARE_METATYPE(ModeSlot)

void InfoPanelTest::modes_data()
{
    QTest::addColumn<ModeSlot>("enter");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("name");
    QTest::addColumn<bool>("editable");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("menu");
    QTest::newRow("empty") << &InfoPanel::enterEmptyMode << 1 << false << false << "settingsPage"
                           << QStringList{"Open new window"};
    QTest::newRow("view") << &InfoPanel::enterViewMode << 2 << true << false << "settingsPage"
                          << viewMenu;
    QTest::newRow("unsaved") << &InfoPanel::enterUnsavedMode << 3 << true << false << "controlsPage"
                             << viewMenu;
    QTest::newRow("edit") << &InfoPanel::enterEditMode << 4 << true << true << "controlsPage"
                          << viewMenu;
}

void InfoPanelTest::modes()
{
    QFETCH(ModeSlot, enter);
    QFETCH(int, mode);
    QFETCH(bool, name);
    QFETCH(bool, editable);
    QFETCH(QString, page);
    QFETCH(QStringList, menu);
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

void InfoPanelTest::editModeIsLeftForViewAndEmptyOnly()
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

void InfoPanelTest::buttonsAndMenuEntriesEmit()
{
    InfoPanel panel;
    panel.enterEditMode();
    QSignalSpy saved(&panel, &InfoPanel::layoutSaved);
    QSignalSpy cancelled(&panel, &InfoPanel::layoutCancelled);
    QSignalSpy shown(&panel, &InfoPanel::showRequest);
    QSignalSpy edited(&panel, &InfoPanel::editMode);
    QSignalSpy cloned(&panel, &InfoPanel::cloneWindowClicked);
    QSignalSpy closed(&panel, &InfoPanel::closeLayout);
    QVERIFY(panel.findChild<QPushButton *>(QStringLiteral("showPBtn"))->isHidden());
    panel.showShowButton();
    for (const char *name : {"saveLayoutButton", "cancelLayoutButton", "showPBtn"})
        panel.findChild<QPushButton *>(QLatin1String(name))->click();
    for (const char *name : {"actionEdit_view", "actionClone_window", "actionClose"})
        panel.findChild<QAction *>(QLatin1String(name))->trigger();
    for (const QSignalSpy *spy : {&saved, &cancelled, &shown, &edited, &cloned, &closed})
        QCOMPARE(spy->count(), 1);
}

void InfoPanelTest::pickedSizeIsEmittedOnceThePopupIsClosed()
{
    InfoPanel panel;
    const auto layout = API::LayoutPtr::create();
    layout->setName(QStringLiteral("Yard"));
    layout->resize(2, 3);
    panel.setCurrentLayout(layout);
    QCOMPARE(panel.layoutName(), QStringLiteral("Yard"));
    QCOMPARE(panel.mode(), 2);
    panel.enterEditMode();
    panel.show();

    auto *button = panel.findChild<QPushButton *>(QStringLiteral("gridSizeButton"));
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

void InfoPanelTest::returnEndsTheEditingOfTheName()
{
    InfoPanel panel;
    panel.enterEditMode();
    panel.show();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    auto *edit = panel.findChild<QLineEdit *>(QStringLiteral("layoutNameEdit"));
    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());
    QTest::keyClick(edit, Qt::Key_Return);
    QVERIFY(!edit->hasFocus());
}

void InfoPanelTest::aLongNameShowsItsBeginning()
{
    InfoPanel panel;
    auto *edit = panel.findChild<QLineEdit *>(QStringLiteral("layoutNameEdit"));
    panel.setTitle(QStringLiteral("A name longer than its field ").repeated(10));
    QCOMPARE(edit->cursorPosition(), 0);
    panel.enterEditMode();
    edit->setCursorPosition(edit->text().size());
    panel.enterViewMode();
    QCOMPARE(edit->cursorPosition(), 0);
    panel.setCurrentLayout(API::LayoutPtr());
    QCOMPARE(panel.layoutName(), QString());
}

QTEST_MAIN(InfoPanelTest)
#include "InfoPanelTest.moc"
