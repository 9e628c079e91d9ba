// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/Preview.h"
#include "GUI/SpinnerWidget.h"
#include "tests/GUI/RosterWorld.h"

using GUI::Preview;

namespace {

const QString cameraIcon = ":/roster/icons/rosterCardPreviewCam.png"_s;
const QString noCameraIcon = ":/roster/icons/rosterCardPreviewNoCam.png"_s;
constexpr QPoint home(20, 10);
constexpr QPoint pressed(22, 12);

class DraggableCard : public Preview
{
public:
    using Preview::Preview;

protected:
    QMimeData *createMimeData() override
    {
        auto *mimeData = new QMimeData;
        mimeData->setData("test"_s, "payload");
        return mimeData;
    }
};

/// A window with a card in it, at `home`.
template <typename Card>
struct Stage {
    explicit Stage(int kind = Preview::KindCamera)
    {
        window.resize(300, 200);
        card = new Card(kind, &window);
        card->move(home);
        window.show();
        ready = QTest::qWaitForWindowExposed(&window);
    }

    QLabel *picture() const { return card->template findChild<QLabel *>("previewImage"); }
    QString page() const
    {
        return card->template findChild<QStackedWidget *>("imageStack")
            ->currentWidget()
            ->objectName();
    }

    QWidget window;
    Card *card;
    bool ready;
};

QPixmap colouredPixmap(const QSize &size)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::darkGreen);
    return pixmap;
}

} // namespace

class PreviewTest : public QObject
{
    Q_OBJECT

private slots:
    void imageIsScaledByKind_data()
    {
        // Of the label's size: -1 is that side of the label, 0 follows from the shape.
        rows<int, QSize, QSize>(
            {"kind", "image", "shown"},
            {
                {"camera, wide", int(Preview::KindCamera), QSize(300, 200), QSize(-1, 0)},
                {"camera, tall", int(Preview::KindCamera), QSize(200, 300), QSize(0, -1)},
                {"camera, square", int(Preview::KindCamera), QSize(50, 50), QSize(0, -1)},
                {"layout", int(Preview::KindLayout), QSize(640, 480), QSize(-1, -1)},
                {"other", 7, QSize(30, 40), QSize(30, 40)},
            });
    }

    void imageIsScaledByKind()
    {
        auto [kind, image, shown] = row<int, QSize, QSize>();
        const Stage<Preview> stage(kind);
        const QSize label = stage.picture()->size();
        QVERIFY(label.width() > 200 && label.height() > 100);
        stage.card->setImage(colouredPixmap(image));

        if (shown.width() == -1)
            shown.setWidth(label.width());
        if (shown.height() == -1)
            shown.setHeight(label.height());
        if (shown.width() == 0)
            shown.setWidth(qRound(double(image.width()) * label.height() / image.height()));
        if (shown.height() == 0)
            shown.setHeight(qRound(double(image.height()) * label.width() / image.width()));
        const QSize real = labelPicture(stage.card, "previewImage").size();
        QVERIFY2(qAbs(real.width() - shown.width()) <= 1 &&
                     qAbs(real.height() - shown.height()) <= 1,
                 qPrintable("%1 x %2"_s.arg(real.width()).arg(real.height())));
        QTRY_COMPARE(stage.picture()->size(), label);
    }

    void imageSetBeforeTheLayoutFitsWhenPainted()
    {
        Preview card(Preview::KindLayout);
        card.setImage(colouredPixmap(QSize(640, 480)));
        card.show();
        QVERIFY(QTest::qWaitForWindowExposed(&card));
        const auto *label = card.findChild<QLabel *>("previewImage");
        QTRY_COMPARE(labelPicture(&card, "previewImage").size(), label->size());
    }

    void spinnerShowsOnlyWhileThereIsNoPicture()
    {
        const Stage<Preview> stage;
        const auto *spinner = stage.card->findChild<GUI::SpinnerWidget *>("spinnerWidget");
        QCOMPARE(stage.page(), "previewPage"_s);
        stage.card->startAnimation();
        QCOMPARE(stage.page(), "spinnerPage"_s);
        QVERIFY(spinner->isVisible());

        stage.card->setImage(QPixmap());
        QCOMPARE(stage.page(), "previewPage"_s);
        QVERIFY(!spinner->isVisible());
        QCOMPARE(labelPicture(stage.card, "previewImage"), resourcePicture(cameraIcon));

        stage.card->startAnimation();
        stage.card->setImage(colouredPixmap(QSize(300, 200)));
        QCOMPARE(stage.page(), "previewPage"_s);
        stage.card->startAnimation();
        QCOMPARE(stage.page(), "previewPage"_s);
        stage.card->stopAnimation();
        QCOMPARE(stage.page(), "previewPage"_s);
        QVERIFY(labelPicture(stage.card, "previewImage") != resourcePicture(cameraIcon));
    }

    void stateOffTakesThePictureForGood()
    {
        const Stage<Preview> stage;
        stage.card->setImage(colouredPixmap(QSize(300, 200)));
        const QImage picture = labelPicture(stage.card, "previewImage");
        stage.card->setState(Preview::StateOn);
        QCOMPARE(labelPicture(stage.card, "previewImage"), picture);

        stage.card->setState(Preview::StateOff);
        QCOMPARE(labelPicture(stage.card, "previewImage"), resourcePicture(noCameraIcon));
        stage.picture()->resize(100, 60);
        stage.card->repaint();
        QCOMPARE(labelPicture(stage.card, "previewImage"), resourcePicture(noCameraIcon));

        // A picture that comes late is shown, and the same state takes it away again.
        stage.card->setImage(colouredPixmap(QSize(300, 200)));
        QVERIFY(labelPicture(stage.card, "previewImage") != resourcePicture(noCameraIcon));
        stage.card->setState(Preview::StateOff);
        QCOMPARE(labelPicture(stage.card, "previewImage"), resourcePicture(noCameraIcon));
        stage.card->startAnimation();
        stage.card->setState(Preview::StateOff);
        QCOMPARE(stage.page(), "previewPage"_s);
    }

    void statesHaveTheirIcons()
    {
        const Stage<Preview> stage;
        stage.card->setState(Preview::StateOn);
        QCOMPARE(labelPicture(stage.card, "cameraStateImage"),
                 resourcePicture(":/roster/icons/rosterCardOn.png"_s));
        stage.card->setState(Preview::StateOff);
        QCOMPARE(labelPicture(stage.card, "cameraStateImage"),
                 resourcePicture(":/roster/icons/rosterCardOff.png"_s));
        stage.card->setState(static_cast<Preview::State>(3));
        QVERIFY(labelPicture(stage.card, "cameraStateImage").isNull());
    }

    void pressAndReleaseBringTheCardBack()
    {
        const Stage<Preview> stage;
        QSignalSpy clicked(stage.card, &Preview::clicked);
        QTest::mousePress(stage.card, Qt::LeftButton);
        QCOMPARE(stage.card->pos(), pressed);
        QCOMPARE(clicked.count(), 0);
        QTest::mouseRelease(stage.card, Qt::LeftButton);
        QCOMPARE(stage.card->pos(), home);
        QCOMPARE(clicked.count(), 1);

        QTest::mousePress(stage.card, Qt::RightButton);
        QCOMPARE(stage.card->pos(), home);
        QTest::mouseRelease(stage.card, Qt::RightButton);
        QCOMPARE(stage.card->pos(), home);
        QCOMPARE(clicked.count(), 1);
    }

    void aCardThatCantBeDraggedStaysPressed()
    {
        const Stage<Preview> stage;
        QSignalSpy clicked(stage.card, &Preview::clicked);
        QVERIFY(!dragFrom(stage.card, QPoint(10, 10), QPoint(150, 100)));
        QCOMPARE(stage.card->pos(), pressed);
        QTest::mouseRelease(stage.card, Qt::LeftButton);
        QCOMPARE(stage.card->pos(), home);
        QCOMPARE(clicked.count(), 1);
    }

    void aDragMovesTheCardBackFirst()
    {
        const Stage<DraggableCard> stage;
        QSignalSpy clicked(stage.card, &Preview::clicked);
        const int distance = QApplication::startDragDistance();
        QVERIFY(!dragFrom(stage.card, QPoint(10, 10), QPoint(9 + distance, 10)));
        QCOMPARE(stage.card->pos(), pressed);
        QTest::mouseRelease(stage.card, Qt::LeftButton);
        QCOMPARE(clicked.count(), 1);

        const QDrag *drag = dragFrom(stage.card, QPoint(10, 10), QPoint(8 + distance, 12));
        QVERIFY(drag);
        QCOMPARE(stage.card->pos(), home);
        QCOMPARE(drag->mimeData()->data("test"_s), QByteArray("payload"));
        QCOMPARE(drag->hotSpot(), QPoint(80, 50));
        QCOMPARE(drag->supportedActions(), Qt::DropActions(Qt::CopyAction));
        // Tilted by 4 degrees: 233 cos + 157 sin by 233 sin + 157 cos.
        QVERIFY(qAbs(drag->pixmap().width() - 243) <= 2);
        QVERIFY(qAbs(drag->pixmap().height() - 173) <= 2);

        // What is left of the mouse's way moves and clicks nothing.
        QTest::mouseRelease(stage.card, Qt::LeftButton);
        QCOMPARE(stage.card->pos(), home);
        QCOMPARE(clicked.count(), 1);
    }

    void aLayoutPassWhilePressedDoesNotShiftTheCard()
    {
        const Stage<Preview> stage;
        QTest::mousePress(stage.card, Qt::LeftButton);
        stage.card->move(home);
        QTest::mouseRelease(stage.card, Qt::LeftButton);
        QCOMPARE(stage.card->pos(), home);
    }

    void aNewMenuReplacesTheOld()
    {
        const Stage<Preview> stage;
        const QPointer<QMenu> first(new QMenu(stage.card));
        auto *second = new QMenu(stage.card);
        stage.card->setMenu(first);
        stage.card->setMenu(second);
        QTRY_VERIFY(!first);
        QCOMPARE(stage.card->findChild<QPushButton *>("previewMenu")->menu(), second);
    }

    void rightButtonOpensTheMenu()
    {
        const Stage<Preview> stage;
        auto *menu = new QMenu(stage.card);
        menu->addAction("Entry"_s);
        stage.card->setMenu(menu);
        bool opened = false;
        QTimer watch;
        connect(&watch, &QTimer::timeout, menu, [&] {
            opened |= menu->isVisible();
            menu->close();
        });
        watch.start(10);
        const QPoint at(30, 30);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, stage.card->mapToGlobal(at));
        QCoreApplication::sendEvent(stage.card, &event);
        QVERIFY(opened);
    }

    void longCaptionLeavesTheCardInShape()
    {
        const Stage<Preview> stage;
        const QSize picture = stage.picture()->size();
        stage.card->setText(QString(300, QLatin1Char('W')) + "\nsecond line"_s);
        QCoreApplication::processEvents();
        const auto *button = stage.card->findChild<QPushButton *>("previewMenu");
        QCOMPARE(button->width(), 24);
        QVERIFY(stage.card->rect().contains(button->geometry()));
        QCOMPARE(stage.picture()->size(), picture);
        QCOMPARE(stage.card->size(), QSize(233, 157));
    }
};

QTEST_MAIN(PreviewTest)
#include "PreviewTest.moc"
