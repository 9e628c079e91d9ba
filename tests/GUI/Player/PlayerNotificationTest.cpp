// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/Player/PlayerNotification.h"
#include "tests/GUI/Player/TileFixture.h"

using ZorvaneClient::GUI::PlayerNotification;
using ZorvaneClient::Tests::pixelOf;

namespace {

/// Remembers what the program wants to have translated.
class AskedTexts : public QTranslator
{
public:
    AskedTexts() { QCoreApplication::installTranslator(this); }
    ~AskedTexts() override { QCoreApplication::removeTranslator(this); }

    QString translate(const char *context, const char *source, const char *, int) const override
    {
        if (qstrcmp(context, "PlayerNotification") == 0)
            texts << QString::fromUtf8(source);
        return QString();
    }
    bool isEmpty() const override { return false; }

    mutable QStringList texts;
};

} // namespace

/// The hints over the grid.
class PlayerNotificationTest : public QObject
{
    Q_OBJECT

public slots:
    void rememberUrl(const QUrl &url) { opened << url; }

private slots:
    void look_data()
    {
        rows<bool, QColor>({"error", "color"}, {
                                                   {"done", false, QColor(56, 189, 253)},
                                                   {"error", true, QColor(253, 56, 56)},
                                               });
    }

    void look()
    {
        const auto [error, color] = row<bool, QColor>();
        QWidget parent;
        parent.setStyleSheet("background: black;"_s);
        parent.resize(500, 300);
        PlayerNotification hint("Snapshot saved."_s, error, &parent);
        hint.move(10, 10);
        parent.show();
        QCOMPARE(hint.size(), QSize(355, 40));
        const QColor seen = pixelOf(parent, 10 + 355 / 2, 12);
        // 96 of a hundred over black
        QVERIFY(qAbs(seen.red() - color.red() * 96 / 100) <= 2);
        QVERIFY(qAbs(seen.green() - color.green() * 96 / 100) <= 2);
        QVERIFY(qAbs(seen.blue() - color.blue() * 96 / 100) <= 2);
        QCOMPARE(hint.findChild<QLabel *>("messageLabel"_s)->text(), "Snapshot saved."_s);
    }

    void hasNoTextOfItsOwn()
    {
        // Who shows a hint translates its text; the sample in the form is nobody's to translate.
        const AskedTexts asked;
        const PlayerNotification hint("Snapshot saved."_s, false);
        QCOMPARE(asked.texts, QStringList());
    }

    void goesAwayByItself()
    {
        QWidget parent;
        parent.resize(500, 300);
        QElapsedTimer time;
        time.start();
        PlayerNotification hint("Snapshot saved."_s, false, &parent);
        hint.move(10, 10);
        parent.show();
        QSignalSpy closed(&hint, &PlayerNotification::closed);
        QTRY_COMPARE_WITH_TIMEOUT(closed.size(), 1, 15000);
        QVERIFY(time.elapsed() >= 3000);
        QCOMPARE(hint.geometry(), QRect(10, 50, 355, 40));
    }

    void closeButton()
    {
        QWidget parent;
        parent.resize(500, 300);
        PlayerNotification hint("Snapshot saved."_s, false, &parent);
        hint.move(10, 10);
        parent.show();
        QSignalSpy closed(&hint, &PlayerNotification::closed);
        hint.findChild<QPushButton *>("closeButton"_s)->click();
        QVERIFY(closed.isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(!closed.isEmpty(), 2500);
        QCOMPARE(hint.pos(), QPoint(10, 10));
    }

    void linkOpensTheFolder()
    {
        QDesktopServices::setUrlHandler("file"_s, this, "rememberUrl");
        PlayerNotification hint("<a href=\"/tmp/a b\">Open folder</a>"_s, false);
        QSignalSpy closed(&hint, &PlayerNotification::closed);
        emit hint.findChild<QLabel *>("messageLabel"_s)->linkActivated("/tmp/a b"_s);
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(opened, QList<QUrl>{QUrl::fromLocalFile("/tmp/a b"_s)});
        QTRY_VERIFY_WITH_TIMEOUT(!closed.isEmpty(), 2500);
    }

    void slides()
    {
        QWidget parent;
        parent.resize(500, 300);
        PlayerNotification hint("Snapshot saved."_s, false, &parent);
        hint.move(10, -40);
        parent.show();
        hint.animateTo(QPoint(10, 10));
        QCOMPARE(hint.geometry(), QRect(10, -40, 355, 40));
        QTRY_COMPARE(hint.geometry(), QRect(10, 10, 355, 40));
    }

private:
    QList<QUrl> opened;
};

QTEST_MAIN(PlayerNotificationTest)
#include "PlayerNotificationTest.moc"
