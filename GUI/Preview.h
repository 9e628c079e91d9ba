// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QPixmap>
#include <QPoint>
#include <QScopedPointer>
#include <QString>

#include "GUI/CardLook.h"
#include "GUI/TiltedDrag.h"

class QMenu;
class QMimeData;

namespace ZorvaneClient {
namespace GUI {

class CardForm;

/// A card of fixed size: a picture, a state icon, a caption and a menu button. It can be
/// clicked, shows a spinner while its first picture is coming, and can be dragged.
class Preview : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY(Preview)

public:
    enum State { StateOff = 1, StateOn = 2 };
    /// How a picture meets the card: a camera's keeps its shape, a layout's fills the card.
    enum Kind : int { KindCamera = 1, KindLayout = 2 };
    /// When the widgets inside are made. Of thousands of cards few are ever seen; such a card
    /// keeps what it is told until it gets its menu.
    enum class Making { AtOnce, Later };

    explicit Preview(int kind, QWidget *parent = nullptr, Making making = Making::AtOnce);
    ~Preview() override;

    /// Empty before a text is set.
    QString caption() const;
    bool isOpen() const;

public slots:
    /// The menu of the button and of the right mouse button; the one before is deleted.
    void setMenu(QMenu *menu);
    /// A null image is clearImage().
    void setImage(QPixmap image);
    /// Back to the camera icon.
    void clearImage();
    /// StateOff also takes the picture away.
    void setState(State state);
    void setText(QString text);
    void highlight(QString text);
    void highlightOff();
    /// Shows the spinner, unless there is a picture.
    void startAnimation();
    /// Nothing calls it yet.
    void stopAnimation();
    /// Marks what is open in the card's window.
    void setOpen(bool isOpen);

signals:
    void clicked();

protected:
    /// The widgets inside are made.
    bool hasForm() const;

    /// What a drag of the card carries, for the caller to own. Null: it can't be dragged.
    virtual QMimeData *createMimeData();

    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private slots:
    void showContextMenu(QPoint pos);

private:
    void makeForm();
    void showLook();
    void showNoImage(const QString &icon);
    void liftPressedLook();

    QScopedPointer<CardForm> form;
    CardLook look;
    QMenu *actionsMenu = nullptr;
    QPoint pressPosition = notPressed;
    QPoint pressedPlace;
    int kind;
};

} // namespace GUI
} // namespace ZorvaneClient
