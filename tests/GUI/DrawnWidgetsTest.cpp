// SPDX-License-Identifier: MIT
// The widgets that paint themselves: the spinner and the tip.
#include "tests/support/Test.h"

#include "GUI/CloudToolTip.h"
#include "GUI/SpinnerWidget.h"
#include "GUI/TippedIcon.h"

using namespace ZorvaneClient::GUI;

namespace {

constexpr int spinnerSide = 80;
constexpr int spinnerLine = 6;

/// Stands still after the step that the test waits for.
class CountingSpinner : public SpinnerWidget
{
public:
    using SpinnerWidget::SpinnerWidget;
    int steps = 0;
    int lastStep = 0;

protected:
    void timerEvent(QTimerEvent *event) override
    {
        if (steps == lastStep)
            return;
        SpinnerWidget::timerEvent(event);
        ++steps;
    }
};

QImage paintingOf(QWidget *widget)
{
    QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// Degrees counter-clockwise from three o'clock.
QColor colourOnRing(const QImage &image, double degrees, double radius)
{
    const double angle = qDegreesToRadians(degrees);
    return image.pixelColor(qRound(spinnerSide / 2 + radius * qCos(angle)),
                            qRound(spinnerSide / 2 - radius * qSin(angle)));
}

/// True if full colour meets nothing there, and nowhere else.
bool hasItsHeadAt(const QImage &image, int degrees)
{
    const auto edgeAt = [&image](int place) {
        constexpr double radius = spinnerSide / 2 - spinnerLine;
        constexpr int reach = 6;
        return colourOnRing(image, place + reach, radius).alpha() -
               colourOnRing(image, place - reach, radius).alpha();
    };
    int head = 0;
    for (int place = 1; place < 360; ++place)
        head = edgeAt(place) > edgeAt(head) ? place : head;
    // Less than half a step, and more than a pixel's blur.
    return qAbs((head - degrees + 540) % 360 - 180) <= 8;
}

QColor shownColour(const QLabel *label)
{
    return label->pixmap(Qt::ReturnByValue).toImage().pixelColor(10, 10);
}

} // namespace

class DrawnWidgetsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QPixmap picture(20, 20);
        picture.fill(Qt::red);
        QVERIFY(picture.save("red.png"_s));
        picture.fill(Qt::green);
        QVERIFY(picture.save("green.png"_s));
        window.reset(new QWidget);
        window->setGeometry(200, 200, 400, 300);
        spinner = new CountingSpinner(window.data());
        spinner->resize(spinnerSide, spinnerSide);
        spinner->setLineWidth(spinnerLine);
        spinner->setColor(Qt::red);
        first = new TippedIcon("red.png"_s, "What the first one is for."_s, window.data());
        second = new TippedIcon("red.png"_s, "The second"_s, window.data());
        silent = new TippedIcon("red.png"_s, QString(), window.data());
        int x = 150;
        for (QWidget *icon : QWidgetList{first, second, silent})
            icon->setGeometry(x += 20, 150, 20, 20);
        first->setHoverPixmap("green.png"_s);
        silent->setHoverPixmap("green.png"_s);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.data()));
        moveMouseAway();
    }

    void cleanup()
    {
        CloudToolTip::hideTip();
        window.reset();
    }

    void turnsClockwiseByTwentyDegrees_data()
    {
        rows<int, int>(
            {"steps", "head"},
            {{"one step", 1, 70}, {"past three o'clock", 5, 350}, {"second turn", 18 + 2, 50}});
    }

    void turnsClockwiseByTwentyDegrees()
    {
        const auto [steps, head] = row<int, int>();
        const auto timers = [this] {
            return QAbstractEventDispatcher::instance()->registeredTimers(spinner).size();
        };
        QVERIFY(!spinner->isVisible());
        spinner->start();
        spinner->lastStep = steps;
        QTRY_COMPARE(spinner->steps, steps);
        spinner->start(); // changes nothing
        QCOMPARE(timers(), 1);
        QVERIFY(spinner->isVisible());
        const QImage image = paintingOf(spinner);
        QVERIFY(hasItsHeadAt(image, head));
        // A little after the head the colour is nearly full, and as wide as the line.
        int inked = 0;
        for (int radius = 0; radius < spinnerSide / 2; ++radius) {
            const QColor colour = colourOnRing(image, head + 10, radius);
            inked += colour.alpha() >= 128 && colour.red() > 200 && colour.green() < 30 ? 1 : 0;
        }
        QVERIFY2(qAbs(inked - spinnerLine) <= 2, QByteArray::number(inked));
        spinner->stop();
        QVERIFY(!spinner->isVisible());
        QCOMPARE(timers(), 0);
        spinner->start();
        QVERIFY(hasItsHeadAt(paintingOf(spinner), 90));
    }

    void hoverChangesPictureAndTip()
    {
        QCOMPARE(shownColour(first), QColor(Qt::red));
        moveMouseTo(first);
        QCOMPARE(shownColour(first), QColor(Qt::green));
        QCOMPARE(shownTip(), "What the first one is for."_s);
        const QImage bubble = paintingOf(window->findChild<CloudToolTip *>());
        QCOMPARE(bubble.pixelColor(6, bubble.height() / 2), QColor(Qt::white));
        moveMouseTo(second);
        QCOMPARE(shownTip(), "The second"_s);
        moveMouseTo(silent);
        QCOMPARE(shownColour(silent), QColor(Qt::green));
        QCOMPARE(shownTip(), QString());
        moveMouseTo(first);
        moveMouseAway();
        QCOMPARE(shownColour(first), QColor(Qt::red));
        QCOMPARE(shownTip(), QString());
    }

    void tipClosedFromOutsideIsForgotten()
    {
        moveMouseTo(first);
        QPointer<CloudToolTip> tip = window->findChild<CloudToolTip *>();
        tip->close();
        QTRY_VERIFY(tip.isNull());
        QVERIFY(!CloudToolTip::isVisible());
        moveMouseAway();
        moveMouseTo(first);
        QCOMPARE(shownTip(), "What the first one is for."_s);
        window.reset();
        QVERIFY(!CloudToolTip::isVisible());
    }

private:
    void moveMouseTo(QWidget *widget)
    {
        QTest::mouseMove(window->windowHandle(), widget->geometry().center());
        QCoreApplication::processEvents();
    }

    /// Of the only tip; empty without one.
    QString shownTip() const
    {
        QStringList texts;
        for (const auto *tip : window->findChildren<CloudToolTip *>())
            texts.append(tip->findChild<QLabel *>()->text());
        return CloudToolTip::isVisible() == texts.isEmpty() ? "not as it says"_s : texts.join('+');
    }

    void moveMouseAway()
    {
        // A move to where the mouse is already would be no event.
        QTest::mouseMove(window->windowHandle(), QPoint(120, 20));
        QTest::mouseMove(window->windowHandle(), QPoint(110, 10));
        QCoreApplication::processEvents();
    }

    QScopedPointer<QWidget> window;
    CountingSpinner *spinner = nullptr;
    TippedIcon *first = nullptr;
    TippedIcon *second = nullptr;
    TippedIcon *silent = nullptr;
};

QTEST_MAIN(DrawnWidgetsTest)
#include "DrawnWidgetsTest.moc"
