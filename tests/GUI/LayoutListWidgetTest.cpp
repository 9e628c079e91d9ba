// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "tests/support/Roster.h"

using GUI::LayoutCard;
using GUI::LayoutListWidget;

namespace {

API::LayoutPtr named(const QString &name)
{
    const auto layout = API::LayoutPtr::create();
    layout->setName(name);
    return layout;
}

API::LayoutsContainer container(const QList<API::LayoutPtr> &layouts)
{
    API::LayoutsContainer result;
    for (const API::LayoutPtr &layout : layouts)
        result.insert(layout->id(), layout);
    return result;
}

QString captionOf(const LayoutCard *card)
{
    return card->findChild<QLabel *>("cameraName"_s)->text();
}

QList<LayoutCard *> shownCards(const LayoutListWidget &list)
{
    QCoreApplication::processEvents();
    QList<LayoutCard *> cards;
    const auto all = list.findChildren<LayoutCard *>();
    for (LayoutCard *card : all) {
        if (card->isVisible())
            cards.append(card);
    }
    std::sort(cards.begin(), cards.end(),
              [](const LayoutCard *a, const LayoutCard *b) { return a->y() < b->y(); });
    return cards;
}

QStringList shownNames(const LayoutListWidget &list)
{
    QStringList names;
    const auto cards = shownCards(list);
    for (const LayoutCard *card : cards)
        names.append(captionOf(card));
    return names;
}

} // namespace

class LayoutListWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { addServerToRoster("s"_s, {"a", "b"}); }

    void cardsStandByName()
    {
        LayoutListWidget list;
        list.resize(260, 700);
        list.show();
        const API::LayoutPtr renamed = named("b"_s);
        QList<API::LayoutPtr> layouts{named("a"_s), renamed, named("C"_s)};
        list.updateLayouts(container(layouts));
        QCOMPARE(shownNames(list), (QStringList{"C", "a", "b"}));
        renamed->setName("A"_s);
        list.updateLayouts(container(layouts));
        QCOMPARE(shownNames(list), (QStringList{"A", "C", "a"}));
        QVERIFY(list.hasLayout(renamed));
        QVERIFY(!list.hasLayout(API::LayoutPtr::create(*renamed)));
    }

    void aVanishedLayoutLosesItsCard()
    {
        LayoutListWidget list;
        list.resize(260, 700);
        list.show();
        const API::LayoutPtr kept = named("kept"_s);
        list.updateLayouts(container({kept, named("gone"_s)}));
        QCOMPARE(shownNames(list).size(), 2);
        list.updateLayouts(container({kept}));
        QCOMPARE(shownNames(list), QStringList{"kept"});
    }

    void searchStaysAfterARefresh()
    {
        LayoutListWidget list;
        list.resize(260, 700);
        list.show();
        const QList<API::LayoutPtr> layouts{named("Yard north"_s), named("Gate"_s)};
        list.updateLayouts(container(layouts));
        list.search("YARD"_s);
        QCOMPARE(shownNames(list), QStringList{"Yard north"});
        list.updateLayouts(container(layouts));
        QCOMPARE(shownNames(list), QStringList{"Yard north"});
        list.search(QString());
        QCOMPARE(shownNames(list).size(), 2);
    }

    void cardMenuReachesTheList()
    {
        LayoutListWidget list;
        list.resize(260, 700);
        list.show();
        const API::LayoutPtr layout = named("Gate"_s);
        list.addLayout(layout);
        QCOMPARE(API::CloudAPIClient::layoutList().value(layout->id()), layout);
        QTRY_COMPARE(shownCards(list).size(), 1);
        QList<API::LayoutPtr> opened;
        QList<API::LayoutPtr> openedInNewWindow;
        connect(&list, &LayoutListWidget::openLayout, &list,
                [&](API::LayoutPtr clicked) { opened.append(clicked); });
        connect(&list, &LayoutListWidget::openInNewWindow, &list,
                [&](API::LayoutPtr clicked) { openedInNewWindow.append(clicked); });
        LayoutCard *card = shownCards(list).first();
        const QList<QAction *> actions =
            card->findChild<QPushButton *>("previewMenu"_s)->menu()->actions();
        QCOMPARE(actions.size(), 3);
        actions.at(0)->trigger();
        QTest::mouseClick(card, Qt::LeftButton);
        QCOMPARE(opened, (QList<API::LayoutPtr>{layout, layout}));
        actions.at(1)->trigger();
        QCOMPARE(openedInNewWindow, QList<API::LayoutPtr>{layout});
        actions.at(2)->trigger();
        QVERIFY(API::CloudAPIClient::layoutList().isEmpty());
        QTRY_VERIFY(shownCards(list).isEmpty());
    }

    void pictureShowsPreviewsAndLines()
    {
        const API::CameraPtr camera = rosterCamera("s"_s, 1);
        QPixmap preview(320, 180);
        preview.fill(Qt::red);
        camera->setPreview(preview);
        const API::LayoutPtr layout = named("Gate"_s);
        layout->resize(2, 2);
        layout->setCamera(camera, 1, 0, 1, 1);
        LayoutCard card(layout);
        card.show();
        auto *label = card.findChild<QLabel *>("previewImage"_s);
        const QImage picture = label->grab().toImage();
        const auto colorAt = [&picture](double x, double y) {
            return picture.pixelColor(qRound(picture.width() * x), qRound(picture.height() * y));
        };
        QCOMPARE(colorAt(0.25, 0.75), QColor(Qt::red));
        QCOMPARE(colorAt(0.25, 0.25), QColor(25, 25, 29));
        QCOMPARE(colorAt(0.75, 0.75), QColor(25, 25, 29));
        // The preview keeps its shape, so the cell stays dark above it.
        QCOMPARE(colorAt(0.25, 0.53), QColor(25, 25, 29));
        QVERIFY(colorAt(0.5, 0.25) != QColor(25, 25, 29));
    }

    void aHugeGridIsPaintedAtOnce()
    {
        const API::LayoutPtr layout = named("huge"_s);
        layout->resize(1000000000, 1000000000);
        LayoutCard card(layout);
        QCOMPARE(captionOf(&card), "huge"_s);
    }
};

QTEST_MAIN(LayoutListWidgetTest)
#include "LayoutListWidgetTest.moc"
