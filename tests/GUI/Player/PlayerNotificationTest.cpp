// SPDX-License-Identifier: MIT
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTranslator>
#include <QtTest>

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
    void look_data();
    void look();
    void hasNoTextOfItsOwn();
    void goesAwayByItself();
    void closeButton();
    void linkOpensTheFolder();
    void slides();

private:
    QList<QUrl> opened;
};

void PlayerNotificationTest::look_data()
{
    QTest::addColumn<bool>("error");
    QTest::addColumn<QColor>("color");
    QTest::newRow("done") << false << QColor(56, 189, 253);
    QTest::newRow("error") << true << QColor(253, 56, 56);
}

void PlayerNotificationTest::look()
{
    QFETCH(bool, error);
    QFETCH(QColor, color);
    QWidget parent;
    parent.setStyleSheet(QStringLiteral("background: black;"));
    parent.resize(500, 300);
    PlayerNotification hint(QStringLiteral("Snapshot saved."), error, &parent);
    hint.move(10, 10);
    parent.show();
    QCOMPARE(hint.size(), QSize(355, 40));
    const QColor seen = pixelOf(parent, 10 + 355 / 2, 12);
    // 96 of a hundred over black
    QVERIFY(qAbs(seen.red() - color.red() * 96 / 100) <= 2);
    QVERIFY(qAbs(seen.green() - color.green() * 96 / 100) <= 2);
    QVERIFY(qAbs(seen.blue() - color.blue() * 96 / 100) <= 2);
    QCOMPARE(hint.findChild<QLabel *>(QStringLiteral("messageLabel"))->text(),
             QStringLiteral("Snapshot saved."));
}

void PlayerNotificationTest::hasNoTextOfItsOwn()
{
    // Who shows a hint translates its text; the sample in the form is nobody's to translate.
    const AskedTexts asked;
    const PlayerNotification hint(QStringLiteral("Snapshot saved."), false);
    QCOMPARE(asked.texts, QStringList());
}

void PlayerNotificationTest::goesAwayByItself()
{
    QWidget parent;
    parent.resize(500, 300);
    QElapsedTimer time;
    time.start();
    PlayerNotification hint(QStringLiteral("Snapshot saved."), false, &parent);
    hint.move(10, 10);
    parent.show();
    QSignalSpy closed(&hint, &PlayerNotification::closed);
    QTRY_COMPARE_WITH_TIMEOUT(closed.size(), 1, 15000);
    QVERIFY(time.elapsed() >= 3000);
    QCOMPARE(hint.geometry(), QRect(10, 50, 355, 40));
}

void PlayerNotificationTest::closeButton()
{
    QWidget parent;
    parent.resize(500, 300);
    PlayerNotification hint(QStringLiteral("Snapshot saved."), false, &parent);
    hint.move(10, 10);
    parent.show();
    QSignalSpy closed(&hint, &PlayerNotification::closed);
    hint.findChild<QPushButton *>(QStringLiteral("closeButton"))->click();
    QVERIFY(closed.isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(!closed.isEmpty(), 2500);
    QCOMPARE(hint.pos(), QPoint(10, 10));
}

void PlayerNotificationTest::linkOpensTheFolder()
{
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "rememberUrl");
    PlayerNotification hint(QStringLiteral("<a href=\"/tmp/a b\">Open folder</a>"), false);
    QSignalSpy closed(&hint, &PlayerNotification::closed);
    emit hint.findChild<QLabel *>(QStringLiteral("messageLabel"))
        ->linkActivated(QStringLiteral("/tmp/a b"));
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    QCOMPARE(opened, QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/tmp/a b"))});
    QTRY_VERIFY_WITH_TIMEOUT(!closed.isEmpty(), 2500);
}

void PlayerNotificationTest::slides()
{
    QWidget parent;
    parent.resize(500, 300);
    PlayerNotification hint(QStringLiteral("Snapshot saved."), false, &parent);
    hint.move(10, -40);
    parent.show();
    hint.animateTo(QPoint(10, 10));
    QCOMPARE(hint.geometry(), QRect(10, -40, 355, 40));
    QTRY_COMPARE(hint.geometry(), QRect(10, 10, 355, 40));
}

QTEST_MAIN(PlayerNotificationTest)
#include "PlayerNotificationTest.moc"
