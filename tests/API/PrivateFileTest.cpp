// SPDX-License-Identifier: MIT
#include "API/PrivateFile.h"

#include "tests/support/Test.h"

#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ZorvaneClient::API::Internal;

namespace {

constexpr uid_t nobody = 65534;
constexpr mode_t forEverybody = 0777;

/// While it lives, this thread has no more rights to files than any user.
class WithoutPrivilege
{
public:
    WithoutPrivilege() : previous(static_cast<uid_t>(::setfsuid(nobody))) {}
    ~WithoutPrivilege() { ::setfsuid(previous); }

private:
    uid_t previous;
};

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// What all files with the user's secrets share.
class PrivateFileTest : public QObject
{
    Q_OBJECT

private slots:
    void isReplacedAsAWhole_data()
    {
        rows<int>({"modeBefore"}, {
                                      {"new", 0},
                                      {"readable to all", 0644},
                                  });
    }

    void isReplacedAsAWhole()
    {
        QFETCH(int, modeBefore);
        const mode_t mask = ::umask(0);
        const auto restore = qScopeGuard([mask] { ::umask(mask); });
        const QTemporaryDir folder;
        const QString name = folder.filePath("file"_s);
        QFile reader(name);
        if (modeBefore != 0) {
            QVERIFY(reader.open(QIODevice::WriteOnly));
            reader.write("before");
            reader.close();
            ::chmod(QFile::encodeName(name), static_cast<mode_t>(modeBefore));
            QVERIFY(reader.open(QIODevice::ReadOnly));
        }
        QVERIFY(writePrivateFile(name, QByteArrayLiteral("after")));
        QCOMPARE(contentOf(name), QByteArrayLiteral("after"));
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(name), &status), 0);
        QCOMPARE(status.st_mode & forEverybody, mode_t(0600));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"file"});
        // A crash in the middle must not cost the old content: who has it open keeps all of it.
        if (modeBefore != 0)
            QCOMPARE(reader.readAll(), QByteArrayLiteral("before"));
    }

    void isWrittenInPlaceWhereNoFileCanBeMade()
    {
        // Nobody gets into the folder of this run.
        const QTemporaryDir folder("/tmp/zorvane-test.XXXXXX"_s);
        const QByteArray name = QFile::encodeName(folder.filePath("file"_s));
        QVERIFY(writePrivateFile(QString::fromLocal8Bit(name), QByteArray(100, 'x')));
        ::chmod(name, 0644);
        ::chmod(QFile::encodeName(folder.path()), 0555);
        if (::geteuid() == 0)
            QCOMPARE(::chown(name, nobody, gid_t(-1)), 0);
        {
            const WithoutPrivilege user;
            QVERIFY(writePrivateFile(QString::fromLocal8Bit(name), QByteArrayLiteral("after")));
        }
        ::chmod(QFile::encodeName(folder.path()), 0755);
        QCOMPARE(contentOf(QString::fromLocal8Bit(name)), QByteArrayLiteral("after"));
        struct stat status = {};
        QCOMPARE(::stat(name, &status), 0);
        QCOMPARE(status.st_mode & forEverybody, mode_t(0600));
    }

    void failureIsTold()
    {
        const QTemporaryDir folder;
        QVERIFY(!writePrivateFile(folder.path(), QByteArrayLiteral("x")));
        QVERIFY(!writePrivateFile(folder.filePath("gone/file"_s), QByteArrayLiteral("x")));
    }
};

QTEST_GUILESS_MAIN(PrivateFileTest)
#include "PrivateFileTest.moc"
