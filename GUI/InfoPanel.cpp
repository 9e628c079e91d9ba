// SPDX-License-Identifier: MIT
#include "GUI/InfoPanel.h"

#include <QMenu>

#include "API/Layout.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/IconButton.h"
#include "GUI/SharedTexts.h"
#include "GUI/StyleBackground.h"
#include "ui_InfoPanel.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int popupGapPixels = 5;

} // namespace

InfoPanel::InfoPanel(QWidget *parent) : QWidget(parent), ui(new Ui::InfoPanel)
{
    ui->setupUi(this);
    nameIconButton(ui->settingsButton, SharedTexts::options());
    setProperty("modified", false);
    connect(ui->saveLayoutButton, &QPushButton::clicked, this, &InfoPanel::layoutSaved);
    connect(ui->cancelLayoutButton, &QPushButton::clicked, this, &InfoPanel::layoutCancelled);
    connect(ui->showPBtn, &QPushButton::clicked, this, &InfoPanel::showRequest);
    connect(ui->actionEdit_view, &QAction::triggered, this, &InfoPanel::editMode);
    connect(ui->actionClose, &QAction::triggered, this, &InfoPanel::closeLayout);
    connect(ui->actionClone_window, &QAction::triggered, this, &InfoPanel::cloneWindowClicked);
    connect(ui->layoutNameEdit, &QLineEdit::textChanged, this, &InfoPanel::tellName);
    hideShowButton();
    enterEmptyMode();
}

InfoPanel::~InfoPanel() = default;

QString InfoPanel::layoutName() const
{
    return ui->layoutNameEdit->text();
}

int InfoPanel::mode() const
{
    return currentMode;
}

void InfoPanel::editName()
{
    ui->layoutNameEdit->setFocus();
    ui->layoutNameEdit->selectAll();
}

void InfoPanel::setMode(Mode mode)
{
    currentMode = mode;
    tellName();
}

void InfoPanel::tellName()
{
    emit shownNameChanged(currentMode == EmptyMode ? QString() : layoutName());
}

void InfoPanel::setTitle(QString title)
{
    ui->layoutNameEdit->setText(title);
    // A name too long for its field shows how it begins.
    ui->layoutNameEdit->setCursorPosition(0);
}

void InfoPanel::hideShowButton()
{
    ui->showPBtn->hide();
}

void InfoPanel::showShowButton()
{
    ui->showPBtn->show();
}

void InfoPanel::setCurrentLayout(API::LayoutPtr layout)
{
    currentLayout = layout;
    setTitle(layout ? layout->name() : QString());
    enterViewMode();
}

void InfoPanel::enterEmptyMode()
{
    setMode(EmptyMode);
    ui->layoutNameEdit->hide();
    ui->gridSizeButton->hide();
    ui->buttonsStack->setCurrentWidget(ui->settingsPage);
    rebuildMenu({ui->actionClone_window});
}

void InfoPanel::enterViewMode()
{
    setMode(ViewMode);
    showReadOnlyName();
    ui->buttonsStack->setCurrentWidget(ui->settingsPage);
    rebuildMenu(viewActions());
}

void InfoPanel::enterUnsavedMode()
{
    if (currentMode == EditMode)
        return;
    setMode(UnsavedMode);
    showReadOnlyName();
    ui->buttonsStack->setCurrentWidget(ui->controlsPage);
    rebuildMenu(viewActions());
}

void InfoPanel::enterEditMode()
{
    if (currentMode == EditMode)
        return;
    setMode(EditMode);
    ui->layoutNameEdit->show();
    ui->layoutNameEdit->setReadOnly(false);
    ui->layoutNameEdit->setFocusPolicy(Qt::StrongFocus);
    ui->gridSizeButton->show();
    ui->buttonsStack->setCurrentWidget(ui->controlsPage);
    rebuildMenu(viewActions());
}

void InfoPanel::showReadOnlyName()
{
    ui->layoutNameEdit->show();
    ui->layoutNameEdit->setReadOnly(true);
    ui->layoutNameEdit->setFocusPolicy(Qt::NoFocus);
    ui->layoutNameEdit->clearFocus();
    ui->layoutNameEdit->setCursorPosition(0);
    ui->gridSizeButton->hide();
}

QList<QAction *> InfoPanel::viewActions() const
{
    return {ui->actionEdit_view, ui->actionClone_window, ui->actionClose};
}

void InfoPanel::rebuildMenu(const QList<QAction *> &actions)
{
    QMenu *oldMenu = ui->settingsButton->menu();
    auto *menu = new QMenu(this);
    menu->addActions(actions);
    ui->settingsButton->setMenu(menu);
    if (oldMenu)
        oldMenu->deleteLater();
}

void InfoPanel::on_layoutNameEdit_returnPressed()
{
    ui->layoutNameEdit->clearFocus();
}

void InfoPanel::on_gridSizeButton_clicked()
{
    auto *editor = new GridSizeEditor(ui->gridSizeButton);
    connect(editor, &GridSizeEditor::sizeSelected, this, [this, editor](int rows, int columns) {
        editor->close();
        emit layoutSizeChanged(rows, columns);
    });
    editor->setCurrentSize(currentLayout ? currentLayout->rows() : 1,
                           currentLayout ? currentLayout->columns() : 1);
    const QPoint below(0, ui->gridSizeButton->height() + popupGapPixels);
    editor->move(ui->gridSizeButton->mapToGlobal(below));
    editor->show();
}

void InfoPanel::paintEvent(QPaintEvent *)
{
    drawStyleBackground(*this);
}

} // namespace GUI
} // namespace ZorvaneClient
