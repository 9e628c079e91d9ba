// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/CloudToolTip.h"
#include "GUI/TippedButton.h"
#include "GUI/TippedIcon.h"

namespace {

QString pictureFile(const QString &name, Qt::GlobalColor color)
{
    QPixmap picture(20, 20);
    picture.fill(color);
    const QString path = QDir::current().absoluteFilePath(name);
    return picture.save(path) ? path : QString();
}

QList<CloudToolTip *> tipsOnScreen()
{
    QList<CloudToolTip *> tips;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (auto *tip = qobject_cast<CloudToolTip *>(window))
            tips.append(tip);
    }
    return tips;
}

QString textOf(CloudToolTip *tip)
{
    return tip->findChild<QLabel *>()->text();
}

QColor shownColor(const QLabel &label)
{
    return label.pixmap(Qt::ReturnByValue).toImage().pixelColor(10, 10);
}

QImage paintingOf(QWidget *widget)
{
    QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

} // namespace

class TipTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        redFile = pictureFile("red.png"_s, Qt::red);
        greenFile = pictureFile("green.png"_s, Qt::green);
        QVERIFY(!redFile.isEmpty() && !greenFile.isEmpty());
    }

    void init()
    {
        window.reset(new QWidget);
        first = new TippedIcon(redFile, "What the first one is for."_s, window.data());
        first->setHoverPixmap(greenFile);
        second = new TippedIcon(redFile, "The second"_s, window.data());
        button = new TippedButton(redFile, "Press"_s, window.data());
        first->setGeometry(150, 150, 20, 20);
        second->setGeometry(170, 150, 20, 20);
        button->setGeometry(190, 150, 20, 20);
        window->setGeometry(200, 200, 400, 300);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.data()));
        moveMouseAway();
    }

    void cleanup()
    {
        CloudToolTip::hideTip();
        window.reset();
    }

    void hoverChangesPictureAndShowsTip()
    {
        QCOMPARE(shownColor(*first), QColor(Qt::red));
        QVERIFY(!CloudToolTip::isVisible());

        moveMouseTo(first);
        QCOMPARE(shownColor(*first), QColor(Qt::green));
        QVERIFY(CloudToolTip::isVisible());
        QCOMPARE(tipsOnScreen().size(), 1);
        QCOMPARE(textOf(tipsOnScreen().first()), "What the first one is for."_s);

        moveMouseAway();
        QCOMPARE(shownColor(*first), QColor(Qt::red));
        QVERIFY(!CloudToolTip::isVisible());
        QVERIFY(tipsOnScreen().isEmpty());
    }

    void movingOnLeavesOneTip()
    {
        moveMouseTo(first);
        moveMouseTo(second);
        QCOMPARE(tipsOnScreen().size(), 1);
        QCOMPARE(textOf(tipsOnScreen().first()), "The second"_s);
        QCOMPARE(shownColor(*second), QColor(Qt::red)); // no other picture was set
        QCOMPARE(shownColor(*first), QColor(Qt::red));
    }

    void emptyTextShowsOnlyThePicture()
    {
        TippedIcon icon(redFile, QString(), window.data());
        icon.setHoverPixmap(greenFile);
        icon.setGeometry(50, 150, 20, 20);
        icon.show();
        moveMouseTo(first);
        moveMouseTo(&icon);
        QCOMPARE(shownColor(icon), QColor(Qt::green));
        QVERIFY(!CloudToolTip::isVisible());
        QVERIFY(tipsOnScreen().isEmpty());
    }

    void pointerStandsOverTheIcon()
    {
        moveMouseTo(first);
        const CloudToolTip *tip = tipsOnScreen().first();
        const QPoint target = first->mapToGlobal(QPoint(0, -5));
        QCOMPARE(tip->x(), target.x() - (tip->width() - 1) / 2 + 10);
        QCOMPARE(tip->geometry().bottom(), target.y());
        QVERIFY(!tip->isActiveWindow());
    }

    void bubbleHasAPointerAndRoundCorners()
    {
        moveMouseTo(first);
        CloudToolTip *tip = tipsOnScreen().first();
        const QImage image = paintingOf(tip);
        const int middle = (tip->width() - 1) / 2;
        const int bottom = tip->height() - 1;
        QCOMPARE(image.pixelColor(middle, bottom - 2), QColor(Qt::white));
        QCOMPARE(image.pixelColor(middle - 5, bottom - 8), QColor(Qt::white));
        QCOMPARE(image.pixelColor(middle + 5, bottom - 8), QColor(Qt::white));
        QCOMPARE(image.pixelColor(middle - 8, bottom - 2).alpha(), 0);
        QCOMPARE(image.pixelColor(middle + 8, bottom - 2).alpha(), 0);
        QCOMPARE(image.pixelColor(1, 10).alpha(), 0);
        QVERIFY(image.pixelColor(3, 3).alpha() < 128);
        QCOMPARE(image.pixelColor(6, tip->height() / 2), QColor(Qt::white));
    }

    void sheetOfTheOwnerDoesNotColorTheBubble()
    {
        window->setStyleSheet("* { background: rgb(86, 153, 216); color: white; }"_s);
        moveMouseTo(first);
        const QImage image = paintingOf(tipsOnScreen().first());
        bool hasText = false;
        for (int y = 8; y < image.height() - 18; ++y) {
            for (int x = 8; x < image.width() - 8; ++x) {
                const QColor color = image.pixelColor(x, y);
                QVERIFY(color != QColor(86, 153, 216));
                hasText = hasText || color.lightness() < 128;
            }
        }
        QVERIFY(hasText);
    }

    void tipClosedFromOutsideIsForgotten()
    {
        moveMouseTo(first);
        QPointer<CloudToolTip> tip = tipsOnScreen().first();
        tip->close();
        QTRY_VERIFY(tip.isNull());
        QVERIFY(!CloudToolTip::isVisible());
        moveMouseAway();
        moveMouseTo(first);
        QCOMPARE(tipsOnScreen().size(), 1);
    }

    void tipGoesWithItsOwner()
    {
        moveMouseTo(first);
        QVERIFY(CloudToolTip::isVisible());
        window.reset();
        QVERIFY(!CloudToolTip::isVisible());
        QVERIFY(tipsOnScreen().isEmpty());
        CloudToolTip::hideTip();
    }

    void buttonAnswersMouseAndKeys()
    {
        QSignalSpy clicks(button, &TippedButton::clicked);
        moveMouseTo(button);
        QCOMPARE(textOf(tipsOnScreen().first()), "Press"_s);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(clicks.size(), 1);
        QTest::keyClick(button, Qt::Key_Space);
        QTest::keyClick(button, Qt::Key_Return);
        QTest::keyClick(button, Qt::Key_A);
        QCOMPARE(clicks.size(), 3);
        button->setEnabled(false);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(clicks.size(), 3);
    }

private:
    void moveMouseTo(QWidget *widget)
    {
        QTest::mouseMove(window->windowHandle(), widget->geometry().center());
        QCoreApplication::processEvents();
    }

    void moveMouseAway()
    {
        // A move to where the mouse is already would be no event.
        QTest::mouseMove(window->windowHandle(), QPoint(20, 20));
        QTest::mouseMove(window->windowHandle(), QPoint(10, 10));
        QCoreApplication::processEvents();
    }

    QString redFile;
    QString greenFile;
    QScopedPointer<QWidget> window;
    TippedIcon *first = nullptr;
    TippedIcon *second = nullptr;
    TippedButton *button = nullptr;
};

QTEST_MAIN(TipTest)
#include "TipTest.moc"
