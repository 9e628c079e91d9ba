// SPDX-License-Identifier: MIT
#include "GUI/Preview.h"

#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>

#include "GUI/CardForm.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr QSize cardSize(233, 157);
constexpr QPoint pressedOffset(2, 2);

const QString cameraIcon = QStringLiteral(":/roster/icons/rosterCardPreviewCam.png");
const QString noCameraIcon = QStringLiteral(":/roster/icons/rosterCardPreviewNoCam.png");

} // namespace

Preview::Preview(int cardKind, QWidget *parent, Making making) : QFrame(parent), kind(cardKind)
{
    setObjectName(QStringLiteral("Preview"));
    setFixedSize(cardSize);
    setCursor(Qt::PointingHandCursor);
    look.icon = cameraIcon;
    connect(this, &QWidget::customContextMenuRequested, this, &Preview::showContextMenu);
    if (making == Making::AtOnce)
        makeForm();
}

Preview::~Preview() = default;

QString Preview::caption() const
{
    return look.caption.value_or(QString());
}

bool Preview::isOpen() const
{
    return look.isOpen;
}

bool Preview::hasForm() const
{
    return !form.isNull();
}

void Preview::makeForm()
{
    if (hasForm())
        return;
    form.reset(new CardForm(this, kind));
    showLook();
}

void Preview::showLook()
{
    if (hasForm())
        form->show(look);
}

void Preview::setMenu(QMenu *newMenu)
{
    makeForm();
    if (actionsMenu)
        actionsMenu->deleteLater();
    form->setMenu(newMenu);
    actionsMenu = newMenu;
}

void Preview::showContextMenu(QPoint pos)
{
    actionsMenu->exec(mapToGlobal(pos));
}

void Preview::setImage(QPixmap image)
{
    if (image.isNull()) {
        clearImage();
        return;
    }
    look.image = image;
    look.isWaiting = false;
    showLook();
}

void Preview::clearImage()
{
    showNoImage(cameraIcon);
}

void Preview::showNoImage(const QString &icon)
{
    look.image = QPixmap();
    look.icon = icon;
    look.isWaiting = false;
    showLook();
}

void Preview::setState(State state)
{
    look.state = state;
    if (state == StateOff) {
        showNoImage(noCameraIcon);
    } else {
        showLook();
    }
}

void Preview::setText(QString text)
{
    look.caption = text;
    showLook();
}

void Preview::highlight(QString text)
{
    look.marked = text;
    showLook();
}

void Preview::highlightOff()
{
    highlight(QString());
}

void Preview::startAnimation()
{
    if (!look.image.isNull())
        return;
    look.isWaiting = true;
    showLook();
}

void Preview::stopAnimation()
{
    look.isWaiting = false;
    showLook();
}

void Preview::setOpen(bool isOpen)
{
    if (look.isOpen == isOpen)
        return;
    look.isOpen = isOpen;
    showLook();
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
    if (!startsDrag(*event, pressPosition))
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
    showLook(); // the picture's place can have another size by now
    QFrame::paintEvent(event);
}

} // namespace GUI
} // namespace ZorvaneClient
