// SPDX-License-Identifier: MIT
#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class ToolBar;
}

namespace ZorvaneClient {
namespace GUI {

/// The column of tabs at the window's edge. Setting a mode checks its tab and emits nothing.
class ToolBar : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ToolBar)

public:
    explicit ToolBar(QWidget *parent = nullptr);
    ~ToolBar() override;

signals:
    void liveClicked();
    void layoutsClicked();
    void settingsClicked();

public slots:
    void setRosterMode();
    void setLayoutsMode();
    void setSettingsMode();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QScopedPointer<Ui::ToolBar> ui;
};

} // namespace GUI
} // namespace ZorvaneClient
