// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/SpinnerWidget.h"

using ZorvaneClient::GUI::SpinnerWidget;

namespace {

constexpr int sidePixels = 80;
constexpr int lineWidthPixels = 6;
constexpr int stepsOfATurn = 18;
// Degrees; less than half a step, and more than a pixel's blur.
constexpr int headTolerance = 8;

class CountingSpinner : public SpinnerWidget
{
public:
    using SpinnerWidget::SpinnerWidget;
    int steps = 0;
    int lastStep = -1;

protected:
    void timerEvent(QTimerEvent *event) override
    {
        // Stands still after the step that the test waits for.
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
    widget->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

QColor colorOnRing(const QImage &image, double degrees, double radius)
{
    const double angle = qDegreesToRadians(degrees);
    return image.pixelColor(qRound(sidePixels / 2 + radius * qCos(angle)),
                            qRound(sidePixels / 2 - radius * qSin(angle)));
}

// The angle where full colour meets nothing, counter-clockwise from three o'clock.
int headOf(const QImage &image)
{
    constexpr double radius = sidePixels / 2 - lineWidthPixels;
    constexpr int reach = 6;
    int head = -1;
    int greatestEdge = 0;
    for (int degrees = 0; degrees < 360; ++degrees) {
        const int edge = colorOnRing(image, degrees + reach, radius).alpha() -
                         colorOnRing(image, degrees - reach, radius).alpha();
        if (edge > greatestEdge) {
            greatestEdge = edge;
            head = degrees;
        }
    }
    return head;
}

int degreesBetween(int one, int other)
{
    const int apart = qAbs(one - other) % 360;
    return qMin(apart, 360 - apart);
}

int timersOf(QObject *object)
{
    return static_cast<int>(QAbstractEventDispatcher::instance()->registeredTimers(object).size());
}

} // namespace

class SpinnerWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window.reset(new QWidget);
        spinner = new CountingSpinner(window.data());
        spinner->resize(sidePixels, sidePixels);
        spinner->setLineWidth(lineWidthPixels);
        spinner->setAttribute(Qt::WA_NoSystemBackground);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.data()));
    }

    void cleanup() { window.reset(); }

    void isHiddenUnlessItTurns()
    {
        QVERIFY(!spinner->isVisible());
        spinner->stop();
        QVERIFY(!spinner->isVisible());
        spinner->start();
        QVERIFY(spinner->isVisible());
        QCOMPARE(timersOf(spinner), 1);
        spinner->stop();
        QVERIFY(!spinner->isVisible());
        QCOMPARE(timersOf(spinner), 0);
    }

    void turnsClockwiseByTwentyDegrees_data()
    {
        rows<int, int>({"steps", "head"}, {
                                              {"start", 0, 90},
                                              {"one step", 1, 70},
                                              {"past three o'clock", 5, 350},
                                              {"half a turn", 9, 270},
                                              {"second turn", stepsOfATurn + 2, 50},
                                          });
    }

    void turnsClockwiseByTwentyDegrees()
    {
        const auto [steps, head] = row<int, int>();
        spinner->start();
        runTo(steps);
        const int painted = headOf(paintingOf(spinner));
        QVERIFY2(degreesBetween(painted, head) <= headTolerance,
                 qPrintable(QString::number(painted)));
    }

    void turnTakesNineTenthsOfASecond()
    {
        QElapsedTimer timer;
        timer.start();
        spinner->start();
        runTo(stepsOfATurn);
        // A coarse timer is at most 5 percent early.
        QVERIFY2(timer.elapsed() >= 850, qPrintable(QString::number(timer.elapsed())));
    }

    void secondStartChangesNothing()
    {
        spinner->start();
        runTo(4);
        spinner->start();
        QCOMPARE(timersOf(spinner), 1);
        QVERIFY(degreesBetween(headOf(paintingOf(spinner)), 10) <= headTolerance);
    }

    void newStartBeginsAtTheTop()
    {
        spinner->start();
        runTo(4);
        spinner->stop();
        spinner->start();
        QVERIFY(degreesBetween(headOf(paintingOf(spinner)), 90) <= headTolerance);
    }

    void paintsColorAndWidth()
    {
        spinner->setColor(QColor(255, 0, 0));
        spinner->start();
        spinner->lastStep = 0;
        const QImage image = paintingOf(spinner);
        // Straight up from the centre, a little after the head, where the colour is nearly full.
        int inked = 0;
        for (int radius = 0; radius < sidePixels / 2; ++radius) {
            const QColor color = colorOnRing(image, 100, radius);
            if (color.alpha() < 128)
                continue;
            ++inked;
            QVERIFY(color.red() > 200);
            QVERIFY(color.green() < 30);
        }
        QVERIFY2(qAbs(inked - lineWidthPixels) <= 1, qPrintable(QString::number(inked)));
    }

private:
    void runTo(int step)
    {
        spinner->lastStep = step;
        QTRY_COMPARE(spinner->steps, step);
    }

    QScopedPointer<QWidget> window;
    CountingSpinner *spinner = nullptr;
};

QTEST_MAIN(SpinnerWidgetTest)
#include "SpinnerWidgetTest.moc"
