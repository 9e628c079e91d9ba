// SPDX-License-Identifier: MIT
#pragma once

#include <QScopedPointer>
#include <QWidget>

#include "API/Types.h"

class QAction;

namespace Ui {
class InfoPanel;
}

namespace ZorvaneClient {
namespace GUI {

/// The bar above the grid: the layout's name, the buttons of the editor, a menu.
class InfoPanel : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(InfoPanel)

public:
    /// What mode() tells.
    enum Mode : int { EmptyMode = 1, ViewMode = 2, UnsavedMode = 3, EditMode = 4 };

    explicit InfoPanel(QWidget *parent = nullptr);
    ~InfoPanel() override;

    QString layoutName() const;
    int mode() const;
    /// The keys go to the name, which the next letter replaces.
    void editName();

public slots:
    void setTitle(QString title);
    void hideShowButton();
    void showShowButton();
    /// Shows the layout's name and enters view mode.
    void setCurrentLayout(API::LayoutPtr layout);
    void enterEmptyMode();
    void enterViewMode();
    /// Nothing happens in edit mode. Nothing calls it yet.
    void enterUnsavedMode();
    void enterEditMode();

signals:
    void layoutSizeChanged(int rows, int columns);
    void layoutSaved();
    void layoutCancelled();
    void showRequest();
    void editMode();
    void closeLayout();
    void cloneWindowClicked();
    /// What is open goes by this name; empty when nothing is.
    void shownNameChanged(QString name);

protected:
    void paintEvent(QPaintEvent *event) override;

private slots:
    void on_layoutNameEdit_returnPressed();
    void on_gridSizeButton_clicked();

private:
    void setMode(Mode mode);
    void tellName();
    void showReadOnlyName();
    void rebuildMenu(const QList<QAction *> &actions);
    QList<QAction *> viewActions() const;

    QScopedPointer<Ui::InfoPanel> ui;
    API::LayoutPtr currentLayout;
    int currentMode = 0;
};

} // namespace GUI
} // namespace ZorvaneClient
