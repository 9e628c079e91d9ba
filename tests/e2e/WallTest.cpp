// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include "API/LayoutDocument.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/LayoutCard.h"
#include "tests/e2e/ClientProcess.h"
#include "tests/e2e/Wall.h"

namespace {

const QString layoutName = "Ворота & двор"_s;
/// Both machines look at the service every 20 seconds, one after the other in the worst case.
constexpr int sharedWithinMs = 2 * pollDeadlineMs;
const QDateTime stampOfTheDead(QDate(2015, 3, 3), QTime(12, 0));
/// As docs/reliability.md tells it: the file of an older list, as the newest one.
const QString restoreCommand =
    "sed 's/\"last_update\": [0-9]*/\"last_update\": '$(date +%s)'/' '%1.1' > '%1'"_s;

/// Presses a button of the next question on the screen.
void answerQuestion(QMessageBox::StandardButton button)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, button] {
        auto *question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!question)
            return;
        timer->deleteLater();
        question->button(button)->click();
    });
    timer->start(10);
}

QJsonObject documentIn(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

} // namespace

/// A layout from its first camera to the machine of someone else on the same account.
class WallTest : public EndToEndTest
{
    Q_OBJECT

private slots:
    void aWallOnTwoMachines()
    {
        const QString folder = QDir::current().absoluteFilePath("other-machine"_s);
        QVERIFY(QDir().mkpath(folder + "/tmp"_s));
        startWorld(1, 3, 0, {"--write-config"_s, folder});
        const QString large = service.addServer("Warehouse"_s, 9);
        world = service.cameras();
        QVector<DemoCamera> nine;
        std::copy_if(world.begin(), world.end(), std::back_inserter(nine),
                     [&](const DemoCamera &camera) { return camera.server == large; });
        QCOMPARE(nine.size(), 9);
        std::sort(nine.begin(), nine.end(),
                  [](const DemoCamera &a, const DemoCamera &b) { return a.name < b.name; });
        QVERIFY(entered());

        // Dropped cameras and a dropped server fill a new layout.
        press(mainWindow(), "layoutsButton");
        press(mainWindow(), "addLayoutButton");
        QVERIFY(wallIsPainted());
        drop(world.at(0), {0, 0});
        drop(world.at(1), {1, 1});
        QVERIFY(wallIsPainted());
        // Nine cameras on two free cells of two columns: four rows more.
        QVERIFY(dropOn(cell({1, 0}), GUI::serverDrag(large), Qt::MoveAction));
        plan.resize(6, 2);
        for (const DemoCamera &each : qAsConst(nine))
            plan.append(each.number);
        QVERIFY(wallIsPainted());
        QVERIFY(everyTileMoves(mainWindow()));

        // What stood below the fourth row comes back into the new columns.
        chooseGridSize(4, 4);
        QVERIFY(wallIsPainted());
        drop(nine.at(6), {2, 0});
        drop(nine.at(7), {3, 1});
        drop(nine.at(8), {3, 3});
        QVERIFY(wallIsPainted());
        QCOMPARE(mainWindow()->playerCount(), 11);

        // The other machine runs before the layout is saved, with its first copy of the list.
        ClientProcess other(folder);
        other.remember(service.email(), service.password(), "en"_s);
        QFile leftOver(folder + "/tmp/zorvane-player-99999"_s);
        QVERIFY(leftOver.open(QIODevice::ReadWrite));
        QVERIFY(leftOver.setFileTime(stampOfTheDead, QFileDevice::FileModificationTime));
        QVERIFY(other.start({}));
        QTRY_VERIFY_WITH_TIMEOUT(other.press("ToolBar"_s, "layoutsButton"_s), pollDeadlineMs);
        QVERIFY(!leftOver.exists());
        const QString cache = cacheFile();
        const QString otherCache = other.cacheFile(cache);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(otherCache), pollDeadlineMs);
        // Lists are ordered by whole seconds.
        const qint64 stamp = documentIn(otherCache).value("last_update"_s).toInt();
        QTRY_VERIFY(QDateTime::currentSecsSinceEpoch() > stamp);
        part<QLineEdit>(mainWindow(), "layoutNameEdit")->setText(layoutName);
        press(mainWindow(), "saveLayoutButton");
        QCOMPARE(onlyLayout(cache), document());
        QVERIFY(layoutCard(mainWindow(), layoutName));
        QVERIFY(wallIsPainted());
        QTRY_VERIFY_WITH_TIMEOUT(other.texts("LayoutListWidget"_s).contains(layoutName),
                                 sharedWithinMs);
        QVERIFY(other.press("LayoutCard"_s));
        // Its cells are equal, with two pixels between them.
        const auto otherWall = [&] {
            const QImage grid = other.picture("LayoutWidget"_s);
            return wallIn(grid, plan.rows(), plan.columns(), [&](API::LayoutPoint cell) {
                const QSizeF size((grid.width() - 2.0) / plan.columns(),
                                  (grid.height() - 2.0) / plan.rows());
                return QRectF(2 + cell.column * size.width(), 2 + cell.row * size.height(),
                              size.width() - 2, size.height() - 2)
                    .toRect();
            });
        };
        QVERIFY(QTest::qWaitFor([&] { return otherWall() == plan.text(); }, pictureDeadlineMs));
        QCOMPARE(onlyLayout(otherCache), document());
        QVERIFY(other.close("MainWindow"_s));
        QTRY_VERIFY_WITH_TIMEOUT(!other.isClientRunning(), pollDeadlineMs);

        // Discarded edits leave the saved layout.
        const WallPlan saved = plan;
        moveTile({0, 0}, {1, 2});
        moveTile({3, 3}, {2, 3}); // an empty cell
        QVERIFY(wallIsPainted());
        chooseGridSize(3, 5);
        QVERIFY(wallIsPainted());
        answerQuestion(QMessageBox::Discard);
        press(mainWindow(), "cancelLayoutButton");
        plan = saved;
        QVERIFY(wallIsPainted());
        QCOMPARE(onlyLayout(cache), document());

        // Saved ones come back from the card, and outlive the session: from the cache while the
        // service fails, from the service when the cache is gone.
        moveTile({0, 0}, {1, 1});
        moveTile({2, 0}, {3, 2});
        press(mainWindow(), "saveLayoutButton");
        QCOMPARE(onlyLayout(cache), document());
        // Goes out with the next look at the service.
        QTRY_COMPARE_WITH_TIMEOUT(postedLayout(), document(), pollDeadlineMs);
        part<QAction>(mainWindow(), "actionClose")->trigger();
        QCOMPARE(mainWindow()->playerCount(), 0);
        openFromCard();
        for (const bool fromService : {false, true}) {
            QVERIFY(leave());
            DemoFault fault;
            fault.kind = "status"_s;
            fault.route = "//layouts"_s;
            fault.value = 500;
            QVERIFY(fromService ? QFile::remove(cache) : service.addFault(fault) > 0);
            QVERIFY(entered());
            openFromCard();
            QVERIFY(everyTileMoves(mainWindow()));
            QVERIFY(service.clearFaults());
        }

        // A layout that is gone everywhere comes back from the last version that had it.
        chooseFromMenu(part<QPushButton>(layoutCard(mainWindow(), layoutName), "previewMenu"),
                       "Delete"_s);
        QCOMPARE(documentIn(cache).value("layouts"_s), QJsonValue(QJsonArray()));
        QTRY_COMPARE_WITH_TIMEOUT(postedLayout(), QJsonObject(), pollDeadlineMs);
        QVERIFY(leave());
        const qint64 lost = documentIn(cache).value("last_update"_s).toInt();
        QTRY_VERIFY(QDateTime::currentSecsSinceEpoch() > lost);
        QCOMPARE(QProcess::execute("/bin/sh"_s, {"-c"_s, restoreCommand.arg(cache)}), 0);
        QVERIFY(entered());
        openFromCard();
        QTRY_COMPARE_WITH_TIMEOUT(postedLayout(), document(), pollDeadlineMs);
    }

private:
    QString cacheFile() const { return API::Internal::layoutsCacheFile(service.email()); }

    /// Signs in, and waits until every camera has its card.
    bool entered()
    {
        const auto isThere = [](const DemoCamera &each) { return card(each.server, each.camera); };
        return enter(service) &&
               QTest::qWaitFor([&] { return std::all_of(world.begin(), world.end(), isThere); },
                               pollDeadlineMs);
    }

    bool wallIsPainted()
    {
        const auto painted = [this] {
            return paintedWall(mainWindow(), plan.rows(), plan.columns());
        };
        const bool isPainted =
            QTest::qWaitFor([&] { return painted() == plan.text(); }, pictureDeadlineMs);
        if (!isPainted)
            qWarning("painted %s, wanted %s", qPrintable(painted()), qPrintable(plan.text()));
        return isPainted;
    }

    QWidget *cell(API::LayoutPoint place)
    {
        return widgetInCell(gridOf(mainWindow()), place, plan.rows(), plan.columns());
    }

    void drop(const DemoCamera &camera, API::LayoutPoint place)
    {
        QVERIFY(
            dropOn(cell(place), GUI::cameraDrag({camera.server, camera.camera}), Qt::CopyAction));
        plan.cells[place.row][place.column] = camera.number;
    }

    /// The drop alone: a tile may enter only from a drag in progress, which knows its source.
    void moveTile(API::LayoutPoint from, API::LayoutPoint to)
    {
        const std::unique_ptr<QMimeData> data(GUI::tileDrag(from));
        QDropEvent drop(QPointF(5, 5), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        static_cast<QObject *>(cell(to))->event(&drop);
        plan.exchange(from, to);
    }

    void chooseGridSize(int rows, int columns)
    {
        press(mainWindow(), "gridSizeButton");
        auto *popup = qobject_cast<GUI::GridSizeEditor *>(QApplication::activePopupWidget());
        QVERIFY(popup);
        const QPoint place(10 + 14 * (columns - 1) + 6, 10 + 12 * (rows - 1) + 5);
        QTest::mouseMove(popup, place);
        QTest::mousePress(popup, Qt::LeftButton, Qt::NoModifier, place);
        QVERIFY(!QApplication::activePopupWidget());
        plan.resize(rows, columns);
    }

    void openFromCard()
    {
        press(mainWindow(), "layoutsButton");
        QTRY_VERIFY_WITH_TIMEOUT(layoutCard(mainWindow(), layoutName), pollDeadlineMs);
        QTest::mouseClick(layoutCard(mainWindow(), layoutName), Qt::LeftButton);
        QCursor::setPos(10000, 10000); // the bars of a tile under it hide the strip
        QVERIFY(wallIsPainted());
    }

    /// The layout as it should stand in the cache file.
    QJsonObject document() const
    {
        QJsonArray cells;
        for (int column = 0; column < plan.columns(); ++column) {
            for (int row = 0; row < plan.rows(); ++row) {
                const int number = plan.cells.at(row).at(column);
                const auto camera =
                    std::find_if(world.begin(), world.end(),
                                 [=](const DemoCamera &each) { return each.number == number; });
                if (camera != world.end())
                    cells.append(QJsonObject{{"server"_s, camera->server},
                                             {"camera"_s, camera->camera},
                                             {"row"_s, row},
                                             {"column"_s, column},
                                             {"w"_s, 1},
                                             {"h"_s, 1}});
            }
        }
        return {{"name"_s, layoutName},
                {"rows"_s, plan.rows()},
                {"columns"_s, plan.columns()},
                {"cameras"_s, cells}};
    }

    /// What the service was sent last.
    QJsonObject postedLayout()
    {
        QByteArray body;
        const auto requests = service.requests("//layouts"_s);
        for (const DemoRequest &request : requests)
            body = request.method == "POST"_s ? request.body : body;
        return only(QJsonDocument::fromJson(body).array());
    }

    static QJsonObject onlyLayout(const QString &cache)
    {
        return only(documentIn(cache).value("layouts"_s).toArray());
    }

    /// No keys unless it is the only one.
    static QJsonObject only(const QJsonArray &layouts)
    {
        QJsonObject layout = layouts.size() == 1 ? layouts.first().toObject() : QJsonObject();
        layout.remove("id"_s);
        return layout;
    }

    WallPlan plan{2, 2};
};

END_TO_END_MAIN(WallTest)
#include "WallTest.moc"
