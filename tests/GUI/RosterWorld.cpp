// SPDX-License-Identifier: MIT
#include "tests/GUI/RosterWorld.h"

#include "API/CloudAPIClient.h"

namespace ZorvaneClient::Tests {

void stopClockAt(double seconds)
{
    const QDateTime start(QDate(2024, 5, 17), QTime(12, 0));
    App::Environment::setClock([=] { return start.addMSecs(static_cast<qint64>(seconds * 1000)); });
}

QRect placeOf(const QColor &colour, QWidget *widget)
{
    return QRegion(widget->grab().createMaskFromColor(colour, Qt::MaskOutColor)).boundingRect();
}

QString labelText(const QWidget *parent, const char *name)
{
    auto *label = parent->findChild<QLabel *>(QLatin1String(name));
    QString text = label->text();
    const auto letterAt = [&](int x) {
        int letter = 0;
        while (label->fontMetrics().horizontalAdvance(text.left(letter)) < x - 1)
            ++letter;
        return letter;
    };
    const QRect mark = placeOf(QColor(62, 183, 253), label);
    if (!mark.isEmpty())
        text.insert(letterAt(mark.right() + 1), ']').insert(letterAt(mark.left()), '[');
    return text;
}

QDrag *dragTo(QWidget *widget, const QPoint &to)
{
    // A platform with drags of its own would wait for the button.
    QTimer::singleShot(0, widget, [] { QDrag::cancel(); });
    const int before = widget->window()->findChildren<QDrag *>().size();
    QMouseEvent move(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    const QList<QDrag *> drags = widget->window()->findChildren<QDrag *>();
    return drags.size() > before ? drags.last() : nullptr;
}

void RosterTest::init()
{
    stopClockAt(0);
    service.reset();
}

void RosterTest::cleanup()
{
    setWorld({});
    QFile::remove("local_roster.txt"_s);
    API::CloudAPIClient().loadLocalRoster();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace ZorvaneClient::Tests
