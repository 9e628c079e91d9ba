// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>
#include <cstdio>

#include <sys/resource.h>

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "API/LayoutVersions.h"
#include "App/Settings.h"
#include "tests/support/Roster.h"

namespace {

constexpr int layoutCount = 40;
constexpr int gridSide = 6;
constexpr quint32 longestLifeMicroseconds = 30000;
const QString email = "saver@zorvane.example"_s;
const QString saverArgument = "--save"_s;

int killCount()
{
    return qEnvironmentVariableIsSet("ZORVANE_SOAK") ? 200 : 20;
}

/// Forty layouts full of cameras, the same in each process. The two variants differ in the name
/// and in every cell of every layout, so a mixture of them is neither.
API::LayoutsContainer savedLayouts(int variant)
{
    constexpr int cameras = gridSide * gridSide;
    if (!rosterCamera("s"_s, 1)) {
        QStringList names;
        for (int camera = 1; camera <= cameras; ++camera)
            names << "camera %1"_s.arg(camera);
        addServerToRoster("s"_s, names);
    }
    API::LayoutsContainer layouts;
    for (int number = 0; number < layoutCount; ++number) {
        const QString id = "layout-%1"_s.arg(number, 2, 10, QLatin1Char('0'));
        const auto layout = API::LayoutPtr::create(QVariantMap{{"id"_s, id}});
        layout->setName("%1 of variant %2"_s.arg(id).arg(variant));
        layout->resize(gridSide, gridSide);
        for (int cell = 0; cell < cameras; ++cell)
            layout->setCamera(rosterCamera("s"_s, 1 + (cell + variant) % cameras), cell / gridSide,
                              cell % gridSide, 1, 1);
        layouts.insert(id, layout);
    }
    return layouts;
}

/// Saves one list after the other, without a pause, until it is killed.
[[noreturn]] void saveForever()
{
    App::settings().setValue("auth/email"_s, email);
    const API::LayoutsContainer variants[] = {savedLayouts(0), savedLayouts(1)};
    API::CloudAPIClient client;
    for (int count = 0;; ++count) {
        for (const API::LayoutPtr &layout : variants[count % 2])
            client.addLayout(layout);
        client.saveLayoutsToFile();
        if (count == 0) {
            std::puts("saving");
            std::fflush(stdout);
        }
    }
}

} // namespace

/// Whatever moment a process dies at, the cache file holds one whole list of layouts.
class SaveKillTest : public QObject
{
    Q_OBJECT

private slots:
    void killedInTheMiddleOfSaves()
    {
        const QString cacheFile = API::Internal::layoutsCacheFile(email);
        QVERIFY(QDir().mkpath(QFileInfo(cacheFile).path()));
        QJsonArray contents[2];
        for (int variant = 0; variant < 2; ++variant)
            contents[variant] =
                QJsonArray::fromVariantList(API::Internal::toVariantList(savedLayouts(variant)));

        int found[2] = {};
        int kept = 0;
        const auto mayGoOn = [&](int kill) {
            return kill < killCount() ||
                   (kill < 10 * killCount() && (found[0] == 0 || found[1] == 0));
        };
        for (int kill = 0; mayGoOn(kill); ++kill) {
            QProcess saver;
            saver.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            saver.start(QCoreApplication::applicationFilePath(), {saverArgument});
            QTRY_VERIFY_WITH_TIMEOUT(saver.canReadLine(), 30000);
            QThread::usleep(QRandomGenerator::global()->bounded(longestLifeMicroseconds) *
                            quint32(1 + kill / killCount()));
            QCOMPARE(saver.state(), QProcess::Running);
            saver.kill();
            QVERIFY(saver.waitForFinished());

            QFile file(cacheFile);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QJsonObject document = QJsonDocument::fromJson(file.readAll()).object();
            QVERIFY2(document.value("last_update"_s).toInt() > 0, "torn");
            const QJsonArray layouts = document.value("layouts"_s).toArray();
            QVERIFY2(layouts == contents[0] || layouts == contents[1], "a mixture");
            ++found[layouts == contents[1] ? 1 : 0];
            const int before = qMin(kept, API::Internal::keptLayoutVersions);
            kept = 0;
            for (int number = API::Internal::keptLayoutVersions; number >= 0; --number) {
                QFile version("%1.%2"_s.arg(cacheFile).arg(number));
                if (!version.open(QIODevice::ReadOnly))
                    continue;
                ++kept;
                const QJsonValue list =
                    QJsonDocument::fromJson(version.readAll()).object().value("layouts"_s);
                QVERIFY2(list == contents[0] || list == contents[1], "a torn or mixed version");
            }
            QVERIFY2(kept >= before, "a kill loses a version");
        }
        QVERIFY2(found[0] > 0 && found[1] > 0, "the kills fell at one and the same moment");
    }

    void aWriteThatFailsCostsNoVersion()
    {
        const QTemporaryDir folder;
        const QString cacheFile = folder.filePath("cache"_s);
        for (int number = 0; number <= API::Internal::keptLayoutVersions; ++number) {
            QFile file(number == 0 ? cacheFile : "%1.%2"_s.arg(cacheFile).arg(number));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QStringLiteral(R"({"layouts":[%1]})").arg(number).toUtf8());
        }
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit none = {0, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
        API::Internal::keepLayoutVersion(cacheFile, "{}");
        setrlimit(RLIMIT_FSIZE, &before);
        QFile oldest(cacheFile + ".10");
        QVERIFY(oldest.open(QIODevice::ReadOnly));
        QCOMPARE(oldest.readAll(), QByteArray(R"({"layouts":[10]})"));
    }
};

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QCoreApplication::setApplicationName("Zorvane Client"_s);
    if (QCoreApplication::arguments().contains(saverArgument))
        saveForever();
    SaveKillTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SaveKillTest.moc"
