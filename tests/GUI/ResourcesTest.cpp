// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

namespace {

struct Picture {
    const char *path;
    int width;
    int height;
    bool hasHover;
};

constexpr bool hover = true;
constexpr bool plain = false;

const Picture pictures[] = {
    {"mainwidget/icons/iconRecordsShow", 32, 32, hover},
    {"mainwidget/icons/iconRecordsHide", 32, 32, hover},
    {"mainwidget/icons/iconExport", 32, 32, hover},
    {"mainwidget/icons/iconLive", 32, 32, hover},
    {"mainwidget/icons/iconMore", 24, 24, hover},
    {"mainwidget/icons/iconExpand", 24, 24, hover},
    {"mainwidget/icons/iconCollapse", 24, 24, hover},
    {"mainwidget/icons/iconMaximize", 24, 24, hover},
    {"mainwidget/icons/iconMinimize", 24, 24, hover},
    {"mainwidget/icons/iconQuality", 24, 24, hover},
    {"mainwidget/icons/iconRewind", 24, 24, hover},
    {"mainwidget/icons/iconRewind_active", 24, 24, plain},
    {"mainwidget/icons/iconVolume0", 24, 24, hover},
    {"mainwidget/icons/iconVolume1", 24, 24, hover},
    {"mainwidget/icons/iconVolume2", 24, 24, hover},
    {"mainwidget/icons/iconVolumeMute", 24, 24, hover},
    {"mainwidget/icons/playerPlay", 24, 24, hover},
    {"mainwidget/icons/playerPause", 24, 24, hover},
    {"mainwidget/icons/playerBoxMore", 20, 20, hover},
    {"mainwidget/icons/playerBoxSnap", 20, 20, hover},
    {"mainwidget/icons/boxCloseCam", 20, 20, hover},
    {"mainwidget/icons/tabCamera", 32, 32, hover},
    {"mainwidget/icons/tabLayouts", 32, 32, hover},
    {"mainwidget/icons/tabSettings", 32, 32, hover},
    {"mainwidget/icons/timelineZoomIn", 20, 20, hover},
    {"mainwidget/icons/timelineZoomOut", 20, 20, hover},
    {"mainwidget/icons/dropdownCheck", 16, 16, hover},
    {"mainwidget/icons/rotate_left", 24, 24, hover},
    {"mainwidget/icons/rotate_right", 24, 24, hover},
    {"roster/icons/listExpand", 16, 16, hover},
    {"roster/icons/listCollapse", 16, 16, hover},
    {"roster/icons/rosterOfflineserver", 20, 20, plain},
    {"roster/icons/rosterMore", 24, 24, hover},
    {"roster/icons/rosterCardOn", 16, 16, plain},
    {"roster/icons/rosterCardOff", 16, 16, plain},
    {"roster/icons/rosterCardPreviewCam", 120, 96, plain},
    {"roster/icons/rosterCardPreviewNoCam", 120, 96, plain},
    {"calendar/icons/arrow_left", 16, 16, hover},
    {"calendar/icons/arrow_right", 16, 16, hover},
    {"calendar/icons/dropdown", 12, 12, hover},
    {"player/icons/edit_grid", 24, 24, hover},
    {"player/icons/notification_ok", 24, 24, plain},
    {"player/icons/notificationError", 24, 24, plain},
    {"player/icons/placeholder_logo", 64, 48, plain},
    {"login/icons/logo", 176, 44, plain},
    {"login/icons/settings", 24, 24, hover},
    {"login/icons/tip", 20, 20, hover},
    {"login/icons/warn", 20, 20, plain},
    {"login/icons/info", 20, 20, plain},
    {"login/icons/arrow_line", 440, 10, plain},
    {"login/icons/radiobtn", 20, 20, plain},
    {"login/icons/radiobtn_checked", 20, 20, plain},
    {"login/icons/checkbox", 20, 20, plain},
    {"login/icons/checkbox_checked", 20, 20, plain},
    {"icons/zorvane-client", 128, 128, plain},
    {"icons/selection-start", 11, 30, plain},
    {"icons/selection-end", 11, 30, plain},
    {"icons/timeline_footer", 16, 6, plain},
};

struct Mention {
    QString file;
    QString path;
    bool isHoverRule;
};

QString contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The pictures that forms, style sheets and code name, without ":/" and ".png".
QList<Mention> mentions()
{
    static const QRegularExpression name(":/{0,2}((?:[\\w-]+/)+[\\w-]+)\\.png"_s);
    static const QRegularExpression hoverRule(":hover[^{};]*\\{[^}]*$"_s,
                                              QRegularExpression::DotMatchesEverythingOption);
    const QString root = QStringLiteral(ZORVANE_SOURCE_DIR "/");
    QList<Mention> found;
    for (const char *folder : {"forms", "resources", "GUI", "App"}) {
        QDirIterator files(root + QLatin1String(folder), {"*.ui"_s, "*.qss"_s, "*.cpp"_s, "*.h"_s},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            const QString content = contentOf(file);
            QRegularExpressionMatchIterator matches = name.globalMatch(content);
            while (matches.hasNext()) {
                const QRegularExpressionMatch match = matches.next();
                const QString before = content.left(static_cast<int>(match.capturedStart()));
                found.append({file.mid(root.size()), match.captured(1),
                              hoverRule.match(before.right(400)).hasMatch()});
            }
        }
    }
    return found;
}

QImage loaded(const QString &path, const char *ending)
{
    return QImage(":/"_s + path + QLatin1String(ending));
}

int visiblePixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    }
    return count;
}

/// Mean colour of the well covered pixels: tells a change of colour from one of shape.
QColor inkColour(const QImage &image)
{
    constexpr int coveredAlpha = 200;
    qint64 red = 0, green = 0, blue = 0, count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qAlpha(pixel) < coveredAlpha)
                continue;
            red += qRed(pixel);
            green += qGreen(pixel);
            blue += qBlue(pixel);
            ++count;
        }
    }
    return count == 0 ? QColor() : QColor(int(red / count), int(green / count), int(blue / count));
}

} // namespace

/// The compiled-in pictures and fonts, as a program that links them sees them.
class ResourcesTest : public QObject
{
    Q_OBJECT

private slots:
    void pictureIsThereInBothSizes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QSize>("size");
        for (const Picture &picture : pictures) {
            const QString path = QString::fromLatin1(picture.path);
            const QSize size(picture.width, picture.height);
            QTest::newRow(picture.path) << path << size;
            if (picture.hasHover)
                QTest::newRow(qPrintable(path + " hover"_s)) << path + "_hover"_s << size;
        }
    }

    void pictureIsThereInBothSizes()
    {
        QFETCH(QString, path);
        QFETCH(QSize, size);
        const QImage normal = loaded(path, ".png");
        const QImage doubled = loaded(path, "@2x.png");
        QCOMPARE(normal.size(), size);
        QCOMPARE(doubled.size(), size * 2);
        QVERIFY(visiblePixels(normal) > 0);
        QVERIFY(visiblePixels(doubled) > visiblePixels(normal));
    }

    void hoverFormHasItsOwnColour_data()
    {
        QTest::addColumn<QString>("path");
        for (const Picture &picture : pictures) {
            if (picture.hasHover)
                QTest::newRow(picture.path) << QString::fromLatin1(picture.path);
        }
    }

    void hoverFormHasItsOwnColour()
    {
        QFETCH(QString, path);
        const QColor normal = inkColour(loaded(path, "@2x.png"));
        const QColor hovered = inkColour(loaded(path, "_hover@2x.png"));
        QVERIFY(normal.isValid());
        QVERIFY(hovered.isValid());
        const int difference = qAbs(normal.red() - hovered.red()) +
                               qAbs(normal.green() - hovered.green()) +
                               qAbs(normal.blue() - hovered.blue());
        constexpr int noticeable = 30;
        QVERIFY2(difference >= noticeable, qPrintable(QString::number(difference)));
    }

    void everyPictureIsListed()
    {
        QSet<QString> listed;
        for (const Picture &picture : pictures) {
            listed.insert(QString::fromLatin1(picture.path));
            if (picture.hasHover)
                listed.insert(QString::fromLatin1(picture.path) + "_hover"_s);
        }
        static const QRegularExpression ending("(@2x)?\\.png$"_s);
        QSet<QString> found;
        for (const char *folder :
             {"mainwidget", "roster", "calendar", "player", "login", "icons"}) {
            QDirIterator files(":/"_s + QLatin1String(folder), {"*.png"_s}, QDir::Files,
                               QDirIterator::Subdirectories);
            while (files.hasNext())
                found.insert(files.next().mid(2).remove(ending));
        }
        QCOMPARE(found - listed, QSet<QString>());
        QCOMPARE(listed - found, QSet<QString>());
    }

    void namedPictureIsThere_data()
    {
        QTest::addColumn<QString>("path");
        const QList<Mention> all = mentions();
        QVERIFY(!all.isEmpty());
        for (const Mention &mention : all)
            QTest::newRow(qPrintable(mention.file + ": "_s + mention.path)) << mention.path;
    }

    void namedPictureIsThere()
    {
        QFETCH(QString, path);
        QVERIFY(!loaded(path, ".png").isNull());
    }

    void hoverRuleNamesTheHoverForm_data()
    {
        QTest::addColumn<QString>("path");
        const QList<Mention> all = mentions();
        for (const Mention &mention : all) {
            if (mention.isHoverRule)
                QTest::newRow(qPrintable(mention.file + ": "_s + mention.path)) << mention.path;
        }
    }

    void hoverRuleNamesTheHoverForm()
    {
        QFETCH(QString, path);
        QVERIFY(path.endsWith("_hover"_s));
    }

    /// A hover form that nothing names is one that some button lacks.
    void everyPictureIsNamedSomewhere()
    {
        QSet<QString> unnamed;
        for (const Picture &picture : pictures) {
            unnamed.insert(QString::fromLatin1(picture.path));
            if (picture.hasHover)
                unnamed.insert(QString::fromLatin1(picture.path) + "_hover"_s);
        }
        const QList<Mention> all = mentions();
        for (const Mention &mention : all)
            unnamed.remove(mention.path);
        QCOMPARE(unnamed, QSet<QString>());
    }

    void rootPathWithTwoSlashesResolves()
    {
        QCOMPARE(QImage("://icons/zorvane-client.png"_s).size(), QSize(128, 128));
        QCOMPARE(QImage(":icons/selection-start.png"_s).size(), QSize(11, 30));
    }

    void fontsAreOfTheFamily_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("family");
        for (const char *file : {"PTS55F", "PTS56F", "PTS75F", "PTS76F"})
            QTest::newRow(file) << file << "PT Sans";
        for (const char *file : {"PTC55F", "PTC75F"})
            QTest::newRow(file) << file << "PT Sans Caption";
        for (const char *file : {"PTN57F", "PTN77F"})
            QTest::newRow(file) << file << "PT Sans Narrow";
    }

    void fontsAreOfTheFamily()
    {
        QFETCH(QString, file);
        QFETCH(QString, family);
        const int font = QFontDatabase::addApplicationFont(":/login/fonts/%1.ttf"_s.arg(file));
        QVERIFY(font >= 0);
        QCOMPARE(QFontDatabase::applicationFontFamilies(font), QStringList(family));
    }
};

QTEST_MAIN(ResourcesTest)
#include "ResourcesTest.moc"
