// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QPixmap>
#include <QPoint>
#include <QScopedPointer>
#include <QSize>
#include <QString>

class QMenu;
class QMimeData;

namespace Ui {
class Preview;
}

namespace ZorvaneClient {
namespace GUI {

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

    explicit Preview(int kind, QWidget *parent = nullptr);
    ~Preview() override;

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
    void stopAnimation();

signals:
    void clicked();

protected:
    struct NoForm {
    };
    /// A card that keeps what it is told and makes its widgets only at makeForm(). With
    /// thousands of cards few are ever seen.
    Preview(int kind, NoForm, QWidget *parent);
    bool hasForm() const;
    void makeForm();

    /// What a drag of the card carries, for the caller to own. Null: it can't be dragged.
    virtual QMimeData *createMimeData();

    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private slots:
    void showContextMenu(QPoint pos);

private:
    void showIcon(const QString &path);
    void dropImage();
    void showForm();
    void showCaption();
    void showState();
    void showPicture();
    void showAnimation();
    void liftPressedLook();

    QScopedPointer<Ui::Preview> ui;
    QMenu *actionsMenu = nullptr;
    QPoint pressPosition{-1, -1};
    QPoint pressedPlace;
    QPixmap image;
    QSize shownSize{-1, -1};
    /// Stands in the place of a null image.
    QString icon;
    QString caption;
    int cardState = 0;
    bool animated = false;
    int kind;
};

} // namespace GUI
} // namespace ZorvaneClient
