// SPDX-License-Identifier: MIT
#include "GUI/CardForm.h"

#include "GUI/Colours.h"
#include "GUI/IconButton.h"
#include "GUI/IconPixmap.h"
#include "GUI/Preview.h"
#include "GUI/SharedTexts.h"
#include "ui_Preview.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// As wide as the edge of a chosen tab.
constexpr int openMarkPixels = 3;
const QString stateOnIcon = QStringLiteral(":/roster/icons/rosterCardOn.png");
const QString stateOffIcon = QStringLiteral(":/roster/icons/rosterCardOff.png");

QString stateIcon(int state)
{
    switch (state) {
    case Preview::StateOff:
        return stateOffIcon;
    case Preview::StateOn:
        return stateOnIcon;
    default:
        return QString();
    }
}

QPixmap scaledImage(const QPixmap &image, int kind, const QSize &size)
{
    switch (kind) {
    case Preview::KindCamera:
        return image.width() > image.height()
                   ? image.scaledToWidth(size.width(), Qt::SmoothTransformation)
                   : image.scaledToHeight(size.height(), Qt::SmoothTransformation);
    case Preview::KindLayout:
        return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    default:
        return image;
    }
}

} // namespace

CardForm::CardForm(QFrame *card, int cardKind)
    : ui(new Ui::Preview), openMark(new QFrame(card)), kind(cardKind)
{
    const bool isSeen = card->isVisible();
    ui->setupUi(card);
    ui->spinnerWidget->setColor(Colours::accent());
    openMark->setObjectName(QStringLiteral("openMark"));
    openMark->setGeometry(0, 0, openMarkPixels, card->height());
    openMark->raise();
    nameIconButton(ui->previewMenu, SharedTexts::options());
    if (!isSeen)
        return;
    // Inside a card on the screen they are hidden, and would come up one round of the event
    // loop later.
    const QWidgetList parts{ui->imageStack, ui->cameraStateImage, ui->cameraName, ui->previewMenu};
    for (QWidget *part : parts)
        part->show();
}

CardForm::~CardForm() = default;

void CardForm::setMenu(QMenu *menu)
{
    ui->previewMenu->setMenu(menu);
}

void CardForm::show(const CardLook &look)
{
    if (look.caption)
        ui->cameraName->setText(*look.caption);
    ui->cameraName->highlight(look.marked);
    if (look.state != shown.state)
        ui->cameraStateImage->setPixmap(iconPixmap(stateIcon(look.state)));
    ui->verticalLayout->activate();
    showPicture(look);
    ui->imageStack->setCurrentWidget(look.isWaiting ? ui->spinnerPage : ui->previewPage);
    if (look.isWaiting) {
        ui->spinnerWidget->start();
    } else {
        ui->spinnerWidget->stop();
    }
    openMark->setVisible(look.isOpen);
    shown = look;
}

void CardForm::showPicture(const CardLook &look)
{
    if (look.image.isNull()) {
        if (!shown.image.isNull() || look.icon != shown.icon)
            ui->previewImage->setPixmap(iconPixmap(look.icon));
        return;
    }
    // Of the screen on which the card is now.
    const qreal ratio = ui->previewImage->devicePixelRatioF();
    const QSize size = ui->previewImage->size() * ratio;
    if (look.image.cacheKey() == shown.image.cacheKey() && size == shownSize)
        return;
    shownSize = size;
    QPixmap scaled = scaledImage(look.image, kind, size);
    scaled.setDevicePixelRatio(ratio);
    ui->previewImage->setPixmap(scaled);
}

} // namespace GUI
} // namespace ZorvaneClient
