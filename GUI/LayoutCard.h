// SPDX-License-Identifier: MIT
#pragma once

#include <QSharedPointer>

#include "API/Types.h"
#include "GUI/Preview.h"

namespace ZorvaneClient {
namespace GUI {

/// The card of one saved layout: a picture of its grid with the cameras' previews in it.
class LayoutCard : public Preview
{
    Q_OBJECT
    Q_DISABLE_COPY(LayoutCard)

public:
    explicit LayoutCard(API::LayoutPtr layout, QWidget *parent = nullptr);

public slots:
    /// Takes the layout and paints the picture anew.
    void setLayoutInfo(API::LayoutPtr layout);

signals:
    void openLayout(API::LayoutPtr layout);
    void openInNewWindow(API::LayoutPtr layout);
    void layoutDeleted(API::LayoutPtr layout);

protected:
    QMimeData *createMimeData() override;

private slots:
    void onOpenLayout();
    void onOpenInNewWindow();
    void deleteLayout();

private:
    API::LayoutPtr shownLayout;
};

} // namespace GUI
} // namespace ZorvaneClient
