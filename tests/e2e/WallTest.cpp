// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "API/RestClient.h"
#include "GUI/CameraWidget.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"

namespace {

const QString layoutName = "Ворота & двор"_s;
constexpr qint64 sharedWithinMs = 40000;

#define COMPARE_WALL()                                                                             \
    QTRY_COMPARE_WITH_TIMEOUT(paintedWall(mainWindow(), plan.rows(), plan.columns()), plan.text(), \
                              pictureDeadlineMs)

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

/// The only layout of the document, with its cells in one order; no keys unless it is the only.
QJsonObject onlyLayout(const QJsonObject &document)
{
    const QJsonArray layouts = document.value("layouts"_s).toArray();
    if (layouts.size() != 1)
        return QJsonObject();
    QJsonObject layout = layouts.first().toObject();
    layout.remove("id"_s);
    return layout;
}

} // namespace

/// A layout from its first camera to the machine of someone else on the same account.
class WallTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 1;
        options.cameras = 3;
        options.lanServers = 0;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);
        const QString large = service.addServer("Warehouse"_s, 9);
        QVERIFY(!large.isEmpty());
        world = service.cameras();
        QVector<DemoCamera> cameras;
        std::copy_if(world.begin(), world.end(), std::back_inserter(cameras),
                     [&](const DemoCamera &camera) { return camera.server == large; });
        QCOMPARE(cameras.size(), 9);
        std::sort(cameras.begin(), cameras.end(),
                  [](const DemoCamera &a, const DemoCamera &b) { return a.name < b.name; });
        for (const DemoCamera &camera : qAsConst(cameras))
            nine << camera.number;

        QVERIFY(enter(service));
        for (const DemoCamera &camera : qAsConst(world))
            QTRY_VERIFY_WITH_TIMEOUT(card(camera.server, camera.camera), pollDeadlineMs);
        // What the service holds from now on is newer than what any other client starts with.
        QTRY_VERIFY_WITH_TIMEOUT(onService().value("last_update"_s).toInt() > 0, pollDeadlineMs);
    }

    void cleanupTestCase()
    {
        other.closeWriteChannel();
        if (other.state() != QProcess::NotRunning && !other.waitForFinished())
            other.kill();
        leave();
        service.stop();
    }

    void droppedCamerasAndServerFillANewLayout()
    {
        press(mainWindow(), "layoutsButton");
        press(mainWindow(), "addLayoutButton");
        COMPARE_WALL();
        const int first = world.at(0).number;
        const int second = world.at(1).number;
        dropCamera(first, 0, 0);
        dropCamera(second, 1, 1);
        COMPARE_WALL();

        // Nine cameras on two free cells of two columns: four rows more.
        const QString large = service.camera(nine.first()).server;
        QWidget *target = widgetInCell(gridOf(mainWindow()), {1, 0}, 2, 2);
        QVERIFY(dropOn(target, *serverDrag(large), Qt::MoveAction));
        plan.resize(6, 2);
        for (const int number : qAsConst(nine))
            plan.append(number);
        COMPARE_WALL();
        QVERIFY(everyTileMoves(mainWindow()));
    }

    void gridPopupResizesIt()
    {
        chooseGridSize(4, 4);
        COMPARE_WALL();
        // What stood below the fourth row comes back into the new columns.
        dropCamera(nine.at(6), 0, 2);
        dropCamera(nine.at(7), 1, 3);
        dropCamera(nine.at(8), 3, 3);
        COMPARE_WALL();
        QCOMPARE(mainWindow()->playerCount(), 11);
    }

    void savedLayoutIsInTheCacheAndOnTheService()
    {
        // The other machine runs before the layout is saved, with its first copy of the list.
        QVERIFY(startOtherMachine());
        QTRY_VERIFY_WITH_TIMEOUT(told.contains("stamp"_s), pollDeadlineMs);
        // Lists are ordered by whole seconds.
        const qint64 stamp = told.value("stamp"_s).toInt();
        QTRY_VERIFY(QDateTime::currentSecsSinceEpoch() > stamp);

        auto *name = mainWindow()->findChild<QLineEdit *>("layoutNameEdit"_s);
        name->setText(layoutName);
        press(mainWindow(), "saveLayoutButton");
        savedAtMs = QDateTime::currentMSecsSinceEpoch();
        QCOMPARE(onlyLayout(inCache()), document());
        QTRY_COMPARE_WITH_TIMEOUT(onlyLayout(onService()), document(), replyDeadlineMs);
        QVERIFY(layoutCard(mainWindow(), layoutName));
        COMPARE_WALL();
    }

    void discardedEditsLeaveTheSavedLayout()
    {
        const WallPlan saved = plan;
        moveTile({0, 0}, {1, 2});
        COMPARE_WALL();
        moveTile({3, 3}, {2, 3}); // an empty cell
        COMPARE_WALL();
        chooseGridSize(3, 5);
        COMPARE_WALL();
        answerQuestion(QMessageBox::Discard);
        press(mainWindow(), "cancelLayoutButton");
        plan = saved;
        COMPARE_WALL();
        QCOMPARE(onlyLayout(inCache()), document());
    }

    void otherMachineGetsTheLayout()
    {
        QTRY_VERIFY_WITH_TIMEOUT(told.contains("card"_s), pollDeadlineMs);
        const auto seenAtMs = static_cast<qint64>(told.value("card"_s).toDouble());
        const QByteArray delay = QByteArray::number(seenAtMs - savedAtMs) + " ms";
        qInfo("the card stood on the other machine after %s", delay.constData());
        QVERIFY2(seenAtMs > savedAtMs && seenAtMs - savedAtMs <= sharedWithinMs, delay);
        QTRY_COMPARE_WITH_TIMEOUT(told.value("wall"_s).toString(), plan.text(), pictureDeadlineMs);
        other.closeWriteChannel();
        QTRY_COMPARE(other.state(), QProcess::NotRunning);
        QCOMPARE(other.exitStatus(), QProcess::NormalExit);
        QCOMPARE(other.exitCode(), 0);
    }

    void savedEditsComeBackFromTheCard()
    {
        moveTile({0, 0}, {1, 1});
        moveTile({2, 0}, {3, 2});
        press(mainWindow(), "saveLayoutButton");
        COMPARE_WALL();
        QCOMPARE(onlyLayout(inCache()), document());
        QTRY_COMPARE_WITH_TIMEOUT(onlyLayout(onService()), document(), replyDeadlineMs);

        mainWindow()->findChild<QAction *>("actionClose"_s)->trigger();
        QCOMPARE(mainWindow()->playerCount(), 0);
        QTRY_COMPARE(paintedWall(mainWindow(), 1, 1), WallPlan(1, 1).text());
        openFromCard();
        COMPARE_WALL();
    }

    void layoutOutlivesTheSession_data()
    {
        rows<bool>({"fromService"}, {
                                        {"from the cache, the service fails", false},
                                        {"from the service, the cache is gone", true},
                                    });
    }

    void layoutOutlivesTheSession()
    {
        const auto [fromService] = row<bool>();
        QVERIFY(leave());
        if (fromService) {
            QVERIFY(QFile::remove(API::Internal::layoutsCacheFile(service.email())));
        } else {
            DemoFault fault;
            fault.kind = "status"_s;
            fault.route = "//layouts"_s;
            fault.value = 500;
            QVERIFY(service.addFault(fault) > 0);
        }
        QVERIFY(enter(service));
        openFromCard();
        COMPARE_WALL();
        QVERIFY(everyTileMoves(mainWindow()));
        QVERIFY(service.clearFaults());
    }

private:
    void dropCamera(int number, int row, int column)
    {
        const DemoCamera camera = service.camera(number);
        QWidget *target =
            widgetInCell(gridOf(mainWindow()), {column, row}, plan.rows(), plan.columns());
        QVERIFY(dropOn(target, *cameraDrag(camera.server, camera.camera), Qt::CopyAction));
        plan.set(row, column, number);
    }

    /// The drop alone: a tile may enter only from a drag in progress, which knows its source.
    void moveTile(API::LayoutPoint from, API::LayoutPoint to)
    {
        QWidget *target = widgetInCell(gridOf(mainWindow()), to, plan.rows(), plan.columns());
        const auto data = tileDrag(from);
        QDropEvent drop(QPointF(5, 5), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        static_cast<QObject *>(target)->event(&drop);
        plan.exchange(from, to);
    }

    void chooseGridSize(int rows, int columns)
    {
        press(mainWindow(), "gridSizeButton");
        auto *popup = qobject_cast<GUI::GridSizeEditor *>(QApplication::activePopupWidget());
        QVERIFY(popup);
        const QPoint cell(10 + 14 * (columns - 1) + 6, 10 + 12 * (rows - 1) + 5);
        QTest::mouseMove(popup, cell);
        QTest::mousePress(popup, Qt::LeftButton, Qt::NoModifier, cell);
        QVERIFY(!QApplication::activePopupWidget());
        plan.resize(rows, columns);
    }

    void openFromCard()
    {
        press(mainWindow(), "layoutsButton");
        QTRY_VERIFY_WITH_TIMEOUT(layoutCard(mainWindow(), layoutName), pollDeadlineMs);
        QTest::mouseClick(layoutCard(mainWindow(), layoutName), Qt::LeftButton);
    }

    /// The layout as it should stand in the cache file and on the service.

    QJsonObject document() const
    {
        QJsonArray cells;
        for (int column = 0; column < plan.columns(); ++column) {
            for (int row = 0; row < plan.rows(); ++row) {
                const auto camera =
                    std::find_if(world.begin(), world.end(), [&](const DemoCamera &candidate) {
                        return candidate.number == plan.at(row, column);
                    });
                if (camera == world.end())
                    continue;
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

    QJsonObject inCache() const
    {
        QFile file(API::Internal::layoutsCacheFile(service.email()));
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject();
    }

    QJsonObject onService() const
    {
        API::RestClient client;
        QVariant reply;
        bool answered = false;
        connect(&client, &API::RestClient::responseReceived, &client,
                [&](const QVariant &response) {
                    reply = response;
                    answered = true;
                });
        connect(&client, &API::RestClient::error, &client, [&](int, int) { answered = true; });
        client.request("/layouts"_s, {{"sessionId"_s, API::CloudAPIClient::sessionId()}},
                       QNetworkAccessManager::GetOperation);
        return QTest::qWaitFor([&] { return answered; }, replyDeadlineMs)
                   ? QJsonObject::fromVariantMap(reply.toMap())
                   : QJsonObject();
    }

    bool startOtherMachine()
    {
        const QDir folder(QDir::current().absoluteFilePath("other-machine"_s));
        for (const char *name : {"run", "home/.cache", "home/.config", "tmp"})
            folder.mkpath(QLatin1String(name));
        {
            QSettings configuration(folder.filePath("run/service.ini"_s), QSettings::IniFormat);
            const App::ServiceProfile profile = service.profile();
            configuration.beginGroup("service"_s);
            configuration.setValue("apiHost"_s, profile.apiHost);
            configuration.setValue("apiPort"_s, profile.apiPort);
            configuration.setValue("streamingHost"_s, profile.streamingHost);
            configuration.setValue("streamingPort"_s, profile.streamingPort);
            configuration.setValue("flvHost"_s, profile.flvHost);
            configuration.setValue("caCertificate"_s, profile.caCertificate);
        }
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME"_s, folder.filePath("home"_s));
        environment.insert("XDG_CACHE_HOME"_s, folder.filePath("home/.cache"_s));
        environment.insert("XDG_CONFIG_HOME"_s, folder.filePath("home/.config"_s));
        environment.insert("TMPDIR"_s, folder.filePath("tmp"_s));
        other.setProcessEnvironment(environment);
        other.setWorkingDirectory(folder.filePath("run"_s));
        other.setStandardErrorFile(folder.filePath("output.txt"_s));
        connect(&other, &QProcess::readyReadStandardOutput, this, &WallTest::readOtherMachine);
        other.start(QStringLiteral(ZORVANE_TEST_BIN_DIR "/second-client"),
                    {service.email(), service.password(), layoutName});
        return other.waitForStarted();
    }

    void readOtherMachine()
    {
        while (other.canReadLine()) {
            const QJsonObject line = QJsonDocument::fromJson(other.readLine()).object();
            for (auto item = line.begin(); item != line.end(); ++item)
                told.insert(item.key(), item.value());
        }
    }

    DemoService service;
    QVector<DemoCamera> world;
    QList<int> nine; // numbers of the large server's cameras, in the order of their names
    WallPlan plan{2, 2};
    QProcess other;
    QJsonObject told; // the newest of each thing that the other machine said
    qint64 savedAtMs = 0;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<WallTest>(); });
}
#include "WallTest.moc"
