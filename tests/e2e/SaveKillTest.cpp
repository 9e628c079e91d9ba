// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "tests/e2e/SavedLayouts.h"

namespace {

constexpr int usualKills = 20;
constexpr int soakKills = 200;
constexpr unsigned long longestLifeMicroseconds = 30000;

int killCount()
{
    return qEnvironmentVariableIsSet("ZORVANE_SOAK") ? soakKills : usualKills;
}

} // namespace

/// Whatever moment a process dies at, the cache file holds one whole list of layouts.
class SaveKillTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setApplicationName("Zorvane Client"_s);
        cacheFile = API::Internal::layoutsCacheFile(QString::fromLatin1(saverEmail()));
        QVERIFY(QDir().mkpath(QFileInfo(cacheFile).path()));
        for (int variant = 0; variant < savedVariants; ++variant) {
            API::LayoutsContainer layouts;
            for (const API::LayoutPtr &layout : savedLayouts(variant))
                layouts.insert(layout->id(), layout);
            contents[variant] = QJsonArray::fromVariantList(API::Internal::toVariantList(layouts));
        }
        QVERIFY(contents[0] != contents[1]);
    }

    void killedInTheMiddleOfSaves()
    {
        int found[savedVariants] = {};
        for (int kill = 0; kill < killCount(); ++kill) {
            QProcess saver;
            saver.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            saver.start(QStringLiteral(ZORVANE_TEST_BIN_DIR "/layout-saver"), QStringList());
            QTRY_VERIFY_WITH_TIMEOUT(saver.canReadLine(), 30000);
            QThread::usleep(QRandomGenerator::global()->bounded(quint32(longestLifeMicroseconds)));
            QCOMPARE(saver.state(), QProcess::Running);
            saver.kill();
            QVERIFY(saver.waitForFinished());
            const int variant = variantInCache();
            QVERIFY2(variant >= 0, qPrintable("torn by kill %1"_s.arg(kill)));
            ++found[variant];
        }
        const QFileInfo cache(cacheFile);
        const int strays = cache.dir().entryList({"layouts.*"_s}, QDir::Files).size() - 1;
        qInfo("%d kills in the middle of writing %lld bytes: %d times one content, %d the other; "
              "%d unfinished files beside it",
              killCount(), static_cast<long long>(cache.size()), found[0], found[1], strays);
        QVERIFY2(found[0] > 0 && found[1] > 0, "the kills fell at one and the same moment");
    }

private:
    /// Which content the cache file holds, -1 for none of them.

    int variantInCache() const
    {
        QFile file(cacheFile);
        if (!file.open(QIODevice::ReadOnly))
            return -1;
        const QJsonObject document = QJsonDocument::fromJson(file.readAll()).object();
        if (document.value("last_update"_s).toInt() <= 0)
            return -1;
        const QJsonArray layouts = document.value("layouts"_s).toArray();
        for (int variant = 0; variant < savedVariants; ++variant) {
            if (layouts == contents[variant])
                return variant;
        }
        return -1;
    }

    QString cacheFile;
    QJsonArray contents[savedVariants];
};

QTEST_MAIN(SaveKillTest)
#include "SaveKillTest.moc"
