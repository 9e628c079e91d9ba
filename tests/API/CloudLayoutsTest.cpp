// SPDX-License-Identifier: MIT
#include "tests/API/CloudFixture.h"

#include <limits>

#include "API/LayoutDocument.h"
#include "tests/support/LogCapture.h"

namespace {

const QString longestName(1000, 'x');

QByteArray cellJson(int camera, int row, int column, int w, int h)
{
    const auto format = R"({"camera":%d,"column":%d,"h":%d,"row":%d,"server":"s1","w":%d})";
    return QString::asprintf(format, camera, column, h, row, w).toLatin1();
}

QByteArray layoutJson(const char *id, const QString &name, const QByteArray &cells, int side = 3)
{
    const auto format = R"({"cameras":[%3],"columns":%4,"id":"%1","name":"%2","rows":%4})"_s;
    return format.arg(id, name, cells, QString::number(side)).toUtf8();
}

QByteArray document(int stamp, const QByteArray &layouts)
{
    return "{\"last_update\":" + QByteArray::number(stamp) + ",\"layouts\":[" + layouts + "]}";
}

/// Cells of every kind that nobody sends on purpose.
QByteArray hostileCells()
{
    QByteArray cells = R"(7,null,[1],{"server":[1],"camera":{}},{"row":"x","w":{}})";
    for (int i = 0; i < 10000; ++i)
        cells += ',' + cellJson(7, i / 100 - 10, i % 100 - 10, 1000000000, -7);
    return cells;
}

/// Names of the layouts in memory, as "A B".
QString names()
{
    QStringList list;
    for (const LayoutPtr &layout : CloudAPIClient::layoutList())
        list.append(layout->name());
    return list.join(' ');
}

CameraPtr camera(int number)
{
    return CloudAPIClient::serverList().value("s1"_s)->cameras().value(number);
}

/// "row,column wxh camera" of each cell.
QString describe(const Layout &layout)
{
    QStringList result;
    for (const LayoutCell &cell : layout.cellList())
        result << QString::asprintf("%d,%d %dx%d %d", cell.row(), cell.column(), cell.rowSpan(),
                                    cell.columnSpan(), cell.camera ? cell.camera->id() : 0);
    return result.join("; "_s);
}

} // namespace

/// The layouts of an account: memory, cache file and service.
class CloudLayoutsTest : public CloudFixture
{
    Q_OBJECT

private slots:
    void init()
    {
        CloudFixture::init();
        updateRoster();
        service.succeed("GET", "//layouts", document(0, ""));
        service.succeed("POST", "//layouts", "null");
        service.server().clearRequests();
        setTime(0);
    }

    void newestCopyWins_data()
    {
        const QByteArray cell = cellJson(7, 1, 2, 1, 2);
        const QByteArray cached =
            document(100, layoutJson("a", "A", cell) + ',' + layoutJson("b", "B", ""));
        rows<QByteArray, int, bool>(
            {"cache", "stamp", "serviceWins"},
            {{"newer on the service", cached, 101, true},
             {"equal", cached, 100, false},
             {"older on the service", cached, 99, false},
             {"cache cut off", cached.chopped(1), 5, true},
             {"stamp is text", R"({"last_update":"soon","layouts":[{"id":"a"}]})", 5, true},
             {"cache nested too deep", QByteArray(100000, '['), 5, true}});
    }

    void newestCopyWins()
    {
        const auto [cached, stamp, serviceWins] = row<QByteArray, int, bool>();
        const QByteArray fresh = layoutJson("a", "Fresh", cellJson(7, 1, 2, 1, 2));
        writeFile(cache, cached);
        service.succeed("GET", "//layouts", document(stamp, fresh));
        client->updateLayouts();
        const LayoutPtr known = client->layoutList().value("a"_s);
        settle(serviceWins ? 1 : 2);
        QCOMPARE(names(), serviceWins ? "Fresh"_s : "A B"_s);
        const LayoutPtr layout = client->layoutList().value("a"_s);
        QCOMPARE(layout, known ? known : layout); // who shows it goes on with it
        QCOMPARE(layout->cellAt(1, 2).camera, camera(7));
        if (serviceWins) {
            // The cache has the new list under a stamp of its own.
            QCOMPARE(parse(contentOf(cache)), parse(document(startStamp, fresh)));
            QVERIFY(isPrivate(cache));
        } else {
            const WireRequest last = service.requestsTo("//layouts").last();
            QCOMPARE(last.method(), QByteArray("POST"));
            QCOMPARE(parse("{'layouts':" + last.body + '}').value("layouts"_s),
                     parse(cached).value("layouts"_s));
        }
    }

    void throttle()
    {
        QSignalSpy updated(client.get(), &CloudAPIClient::layoutsUpdated);
        QSignalSpy failed(client.get(), &CloudAPIClient::layoutsUpdateError);
        // The signal comes with the lock held; what a list reads must not block.
        int servers = 0;
        connect(client.get(), &CloudAPIClient::layoutsUpdated, this, [&servers] {
            servers = CloudAPIClient::serverList().size() + CloudAPIClient::layoutList().size();
        });
        update(0, 2); // GET and POST
        update(0, 2);
        update(29, 2);
        QCOMPARE(servers, 1);
        // The cache is read every time.
        const QByteArray cached = document(100, layoutJson("a", "Cached", ""));
        writeFile(cache, cached);
        update(29, 2);
        QCOMPARE(names(), "Cached"_s);

        // A failure keeps memory and file, and counts for the throttle.
        service.answer("GET", "//layouts", WireReply::json("", 500));
        update(30, 3);
        QVERIFY(failed.count() == 1 && names() == "Cached"_s && contentOf(cache) == cached);
        updated.clear();
        update(59, 3);
        QCOMPARE(updated.count(), 1);
        update(60, 4);
    }

    void failedSaveIsSentAgain()
    {
        service.answer("POST", "//layouts", WireReply::json("", 500));
        QSignalSpy failed(client.get(), &CloudAPIClient::layoutsUpdateError);
        client->addLayout(LayoutPtr::create());
        QVERIFY(QDir().mkdir(cache)); // stands where the file should
        const LogCapture log;
        client->saveLayoutsToFile();
        QCOMPARE(log.linesOf("Could not save layouts cache to"_s).size(), 1);
        client->saveLayoutsToAPI();
        QTRY_COMPARE(failed.count(), 1);

        // The stamp here stays ahead, so an older copy changes nothing and the list goes again.
        service.succeed("POST", "//layouts", "null");
        service.succeed("GET", "//layouts", document(startStamp, layoutJson("b", "Old", "")));
        update(0, 3);
        QCOMPARE(names(), "Untitled Layout"_s);
        const auto requests = service.requestsTo("//layouts");
        QVERIFY(requests.last().head == requests.first().head);
        QCOMPARE(requests.last().body, requests.first().body);
    }

    void signOutKeepsTheCache()
    {
        client->addLayout(LayoutPtr::create());
        client->saveLayoutsToFile();
        client->logout();
        // Without cameras, layouts are neither read nor asked for.
        QSignalSpy updated(client.get(), &CloudAPIClient::layoutsUpdated);
        update(0, 0);
        QCOMPARE(client->layoutList().size() + updated.count(), 0);
        updateRoster();
        update(0, 2);
        QCOMPARE(client->layoutList().size(), 1);
        QCOMPARE(Internal::layoutsCacheFile("Ж"_s),
                 cacheFolder().filePath("layouts.d82d7ca255082e2ca8720d69da507ee1"_s));
    }

    void formerListsAreKept()
    {
        const auto layout = LayoutPtr::create();
        client->addLayout(layout);
        const auto save = [&](const QString &name) {
            layout->setName(name);
            client->saveLayoutsToFile();
        };
        const auto kept = [this] {
            QStringList names;
            for (int number = 1; number <= 11; ++number) {
                QFile file("%1.%2"_s.arg(cache).arg(number));
                const bool isOpen = file.open(QIODevice::ReadOnly);
                if (isOpen && file.permissions() & (QFile::ReadGroup | QFile::ReadOther))
                    return "readable by all"_s;
                const QJsonObject document = QJsonDocument::fromJson(file.readAll()).object();
                const QJsonArray list = document.value("layouts"_s).toArray();
                names << (isOpen ? list.at(0).toObject().value("name"_s).toString() : "-"_s);
            }
            return names.join(' ');
        };
        save("a"_s);
        QCOMPARE(kept(), "- - - - - - - - - - -"_s);
        save("b"_s);
        setTime(40);
        save("b"_s); // a new stamp alone is no other list
        QCOMPARE(kept(), "a - - - - - - - - - -"_s);
        for (const char name : {'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k'})
            save(QLatin1String(&name, 1));
        QCOMPARE(kept(), "j i h g f e d c b a -"_s);
        save("l"_s);
        QCOMPARE(kept(), "k j i h g f e d c b -"_s);
        // Someone was killed while the numbers moved on, and another one before the new list stood.
        QVERIFY(QFile::remove(cache + ".3"_s));
        save("m"_s);
        QCOMPARE(kept(), "l k j h g f e d c b -"_s);
        QVERIFY(QFile::remove(cache) && QFile::copy(cache + ".1"_s, cache));
        save("n"_s);
        QCOMPARE(kept(), "l k j h g f e d c b -"_s);
        // None takes another's place where one can't move on; it waits for the next time.
        const QString oldest = cache + ".10"_s;
        QVERIFY(QFile::remove(oldest) && QDir().mkdir(oldest));
        save("o"_s);
        QCOMPARE(kept(), "l k j h g f e d c - -"_s);
        QVERIFY(QDir().rmdir(oldest));
        save("p"_s);
        QCOMPARE(kept(), "o n l k j h g f e d -"_s);
        // No list of ours is that large.
        QVERIFY(QFile::resize(cache, Internal::LayoutBounds::documentBytes + 1));
        save("q"_s);
        QCOMPARE(kept(), "o n l k j h g f e d -"_s);
    }

    void bounds_data()
    {
        const QByteArray largest = layoutJson("a", longestName, cellJson(7, 31, 31, 32, 32), 32);
        rows<QByteArray, QByteArray>(
            {"given", "taken"},
            {{"largest", largest, largest},
             {"name", layoutJson("a", longestName + 'x', ""), layoutJson("a", longestName, "")},
             {"rows", "{'rows':33}", "{'rows':32}"},
             {"columns", "{'columns':-1}", "{'columns':0}"},
             {"cells", "{'cameras':[{'row':-1},{},{'column':32}]}", "{'cameras':[{}]}"},
             {"span of rows", "{'cameras':[{'w':33}]}", "{'cameras':[{'w':32}]}"},
             {"span of columns", "{'cameras':[{'h':-1}]}", "{'cameras':[{'h':0}]}"}});
    }

    void bounds()
    {
        const auto [given, taken] = row<QByteArray, QByteArray>();
        const LogCapture log;
        QCOMPARE(Internal::boundedLayouts({parse(given)}), QList<QVariantMap>{parse(taken)});
        const bool fits = given == taken;
        QCOMPARE(log.lines().join(' '), fits ? ""_s : "Layouts beyond all bounds, cut: 1"_s);
        const QVariantList many = QVector<QVariant>(1001, parse(taken)).toList();
        QCOMPARE(Internal::boundedLayouts(many).size(), 1000);
    }

    void hostileDocument()
    {
        const QByteArray layouts =
            R"(7,null,"x",{"id":{},"name":{},"rows":"many","cameras":"all"},)" +
            layoutJson("a", QString(1000000, 'x'), hostileCells(), 1000000000);
        service.succeed("GET", "//layouts", document(101, layouts));
        update(0, 1);
        const LayoutPtr layout = client->layoutList().value("a"_s);
        QVERIFY(layout);
        QCOMPARE(layout->cellList().size(), 32 * 32);
        QCOMPARE(describe(*layout).count(" 32x0 7"_s), 32 * 32);
        // Nor does a grid that nobody has bounded do any harm.
        Layout far(parse(layoutJson("a", "A", hostileCells(), 1000000000)));
        QCOMPARE(far.freeCellCount(), std::numeric_limits<int>::max());
        far.resize(-50, 2);
        far.setCamera(camera(7), 0, 0, 1, 1);
        QCOMPARE(far.cellList().size(), 0);
    }

    /// Of a 2x2 tile and one below it on a grid of three by three; rows before columns.
    void changes_data()
    {
        rows<QString, QString, int>(
            {"steps", "cells", "signals"},
            {{"beyond the grid", "set 9 4 0 1 1, set 9 0 4 1 1", "0,0 2x2 7; 2,1 1x2 8", 0},
             {"the bounds belong to it", "set 9 3 3 1 1", "0,0 2x2 7; 2,1 1x2 8; 3,3 1x1 9", 1},
             {"the same camera keeps its span", "set 7 0 0 1 1", "0,0 2x2 7; 2,1 1x2 8", 0},
             {"nothing to clear", "clear 3 4, clear 2 2", "0,0 2x2 7; 2,1 1x2 8", 0},
             {"clear", "clear 2 1", "0,0 2x2 7", 1},
             {"two tiles", "swap 0 0 2 1", "0,0 1x1 8; 2,1 1x1 7", 0},
             {"tile to empty cell", "swap 0 0 2 2", "2,1 1x2 8; 2,2 1x1 7", 0},
             {"empty cell to tile", "swap 2 2 0 0", "0,0 1x1 0; 2,1 1x2 8; 2,2 1x1 7", 0},
             {"two empty cells", "swap 2 2 0 2", "0,0 2x2 7; 2,1 1x2 8; 0,2 1x1 0", 0},
             {"newer version", "update 9 0 0 3 1", "0,0 3x1 9; 2,1 1x2 8", 0},
             {"unknown camera in it", "update 1 0 0 3 1", "0,0 2x2 7; 2,1 1x2 8", 0},
             {"grow", "resize 9 9", "0,0 2x2 7; 2,1 1x2 8", 1},
             {"fewer rows", "resize 2 9", "0,0 2x2 7", 1},
             {"fewer columns", "resize 9 1", "0,0 2x2 7", 1}});
    }

    void changes()
    {
        const auto [steps, cells, signalCount] = row<QString, QString, int>();
        const QByteArray json =
            layoutJson("a", "A", cellJson(7, 0, 0, 2, 2) + ',' + cellJson(8, 2, 1, 1, 2));
        Layout layout(parse(json));
        QCOMPARE(layout.toVariantMap(), parse(json));
        QVERIFY(layout == Layout(parse(json)));
        QSignalSpy updated(&layout, &Layout::updated);
        for (const QString &step : steps.split(", "_s)) {
            const QStringList words = step.split(' ');
            const auto n = [&words](int place) { return words.value(place).toInt(); };
            const QByteArray cell = cellJson(n(1), n(2), n(3), n(4), n(5));
            if (words.first() == "update"_s)
                layout.update(parse(layoutJson("b", "B", cell)));
            else if (words.first() == "set"_s)
                layout.setCamera(camera(n(1)), n(2), n(3), n(4), n(5));
            else if (words.first() == "clear"_s)
                layout.clearCell(n(1), n(2));
            else if (words.first() == "swap"_s)
                layout.swapCells(n(1), n(2), n(3), n(4));
            else
                layout.resize(n(1), n(2));
        }
        QCOMPARE(layout.id(), "a"_s);
        QCOMPARE(describe(layout), cells);
        QCOMPARE(updated.size(), signalCount);
    }

private:
    /// Waits until the service has had so many requests in all, and no more.
    void settle(int requests)
    {
        QTRY_COMPARE(service.requestsTo("//layouts").size(), requests);
        CloudFixture::settle();
        QCOMPARE(service.requestsTo("//layouts").size(), requests);
    }

    void update(int seconds, int requests)
    {
        setTime(seconds);
        client->updateLayouts();
        settle(requests);
    }

    // Of "demo@zorvane.example".
    const QString cache = cacheFolder().filePath("layouts.924942403f0708c36c6637682cb19b21"_s);
};

QTEST_MAIN(CloudLayoutsTest)
#include "CloudLayoutsTest.moc"
