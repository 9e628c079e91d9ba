// SPDX-License-Identifier: MIT
#include "GUI/Preview.h"

#include <QApplication>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>

#include "GUI/IconButton.h"
#include "GUI/IconPixmap.h"
#include "GUI/TiltedDrag.h"
#include "ui_Preview.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr QSize cardSize(233, 157);
constexpr QPoint pressedOffset(2, 2);
constexpr QPoint notPressed(-1, -1);
constexpr QSize neverShown(-1, -1);
const QColor spinnerColor(62, 183, 253);

const QString cameraIcon = QStringLiteral(":/roster/icons/rosterCardPreviewCam.png");
const QString noCameraIcon = QStringLiteral(":/roster/icons/rosterCardPreviewNoCam.png");
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

Preview::Preview(int cardKind, QWidget *parent) : Preview(cardKind, NoForm(), parent)
{
    makeForm();
}

Preview::Preview(int cardKind, NoForm, QWidget *parent)
    : QFrame(parent), icon(cameraIcon), kind(cardKind)
{
    setObjectName(QStringLiteral("Preview"));
    setFixedSize(cardSize);
    connect(this, &QWidget::customContextMenuRequested, this, &Preview::showContextMenu);
}

Preview::~Preview() = default;

bool Preview::hasForm() const
{
    return !ui.isNull();
}

void Preview::makeForm()
{
    if (hasForm())
        return;
    ui.reset(new Ui::Preview);
    ui->setupUi(this);
    ui->spinnerWidget->setColor(spinnerColor);
    nameIconButton(ui->previewMenu, QCoreApplication::translate("VideoWidget", "Options"));
    if (caption.isNull())
        caption = ui->cameraName->text();
    showCaption();
    showState();
    showPicture();
    showAnimation();
    if (isVisible())
        showForm();
}

/// Widgets made inside a visible card are hidden, and would come up one round of the event
/// loop later.
void Preview::showForm()
{
    const QWidgetList parts{ui->imageStack, ui->cameraStateImage, ui->cameraName, ui->previewMenu};
    for (QWidget *part : parts)
        part->show();
    layout()->activate();
}

void Preview::setMenu(QMenu *newMenu)
{
    makeForm();
    if (actionsMenu)
        actionsMenu->deleteLater();
    ui->previewMenu->setMenu(newMenu);
    actionsMenu = newMenu;
}

void Preview::showContextMenu(QPoint pos)
{
    actionsMenu->exec(mapToGlobal(pos));
}

void Preview::setImage(QPixmap newImage)
{
    if (newImage.isNull()) {
        clearImage();
        return;
    }
    stopAnimation();
    image = newImage;
    icon.clear();
    showPicture();
}

void Preview::clearImage()
{
    dropImage();
    showIcon(cameraIcon);
}

void Preview::dropImage()
{
    stopAnimation();
    image = QPixmap();
    shownSize = neverShown;
}

void Preview::showIcon(const QString &path)
{
    if (icon == path)
        return;
    icon = path;
    showPicture();
}

void Preview::showPicture()
{
    if (!hasForm())
        return;
    if (image.isNull()) {
        ui->previewImage->setPixmap(iconPixmap(icon));
        return;
    }
    const qreal ratio = ui->previewImage->devicePixelRatioF();
    shownSize = ui->previewImage->size();
    QPixmap scaled = scaledImage(image, kind, shownSize * ratio);
    scaled.setDevicePixelRatio(ratio);
    ui->previewImage->setPixmap(scaled);
}

void Preview::setState(State state)
{
    if (state == StateOff) {
        dropImage();
        showIcon(noCameraIcon);
    }
    if (cardState == state)
        return;
    cardState = state;
    showState();
}

void Preview::showState()
{
    if (hasForm())
        ui->cameraStateImage->setPixmap(iconPixmap(stateIcon(cardState)));
}

void Preview::setText(QString text)
{
    caption = text;
    showCaption();
}

void Preview::showCaption()
{
    if (hasForm())
        ui->cameraName->setText(caption);
}

void Preview::highlight(QString text)
{
    if (hasForm())
        ui->cameraName->highlight(text);
}

void Preview::highlightOff()
{
    highlight(QString());
}

void Preview::startAnimation()
{
    if (!image.isNull())
        return;
    animated = true;
    showAnimation();
}

void Preview::stopAnimation()
{
    animated = false;
    showAnimation();
}

void Preview::showAnimation()
{
    if (!hasForm())
        return;
    ui->imageStack->setCurrentWidget(animated ? ui->spinnerPage : ui->previewPage);
    if (animated) {
        ui->spinnerWidget->start();
    } else {
        ui->spinnerWidget->stop();
    }
}

QMimeData *Preview::createMimeData()
{
    return nullptr;
}

void Preview::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QFrame::mousePressEvent(event);
        return;
    }
    liftPressedLook();
    pressPosition = event->pos();
    move(pos() + pressedOffset);
    pressedPlace = pos();
}

void Preview::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QFrame::mouseReleaseEvent(event);
        return;
    }
    // Without a press here it belongs to a menu or a drag that has just ended.
    if (pressPosition == notPressed)
        return;
    liftPressedLook();
    emit clicked();
}

void Preview::mouseMoveEvent(QMouseEvent *event)
{
    const bool held = event->buttons().testFlag(Qt::LeftButton) && pressPosition != notPressed;
    const int distance = (event->pos() - pressPosition).manhattanLength();
    if (!held || distance < QApplication::startDragDistance())
        return;
    QMimeData *mimeData = createMimeData();
    if (!mimeData)
        return;
    liftPressedLook();
    dragCard(this, mimeData, Qt::CopyAction);
}

/// Moves the card back, unless its layout has done so already.
void Preview::liftPressedLook()
{
    if (pressPosition != notPressed && pos() == pressedPlace)
        move(pos() - pressedOffset);
    pressPosition = notPressed;
}

void Preview::paintEvent(QPaintEvent *event)
{
    if (hasForm() && !image.isNull() && ui->previewImage->size() != shownSize)
        showPicture();
    QFrame::paintEvent(event);
}

} // namespace GUI
} // namespace ZorvaneClient
