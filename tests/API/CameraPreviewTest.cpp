// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/PreviewImage.h"

using namespace ZorvaneClient::API;

namespace {

const QString serverId = "10.0.0.5:80"_s;

CameraPtr makeCamera(const QString &server = serverId)
{
    const CameraPtr camera = CameraPtr::create();
    camera->setId(server, 7);
    camera->setKind(LocalCamera);
    return camera;
}

QString cacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
}

QPixmap plainPicture(const QSize &size)
{
    QPixmap picture(size);
    picture.fill(Qt::green);
    return picture;
}

/// Two pixels side by side, red and blue.
QPixmap twoPixels()
{
    QImage image(2, 1, QImage::Format_RGB32);
    image.setPixelColor(0, 0, Qt::red);
    image.setPixelColor(1, 0, Qt::blue);
    return QPixmap::fromImage(image);
}

/// Letters of the pixels, rows parted by a bar.
QString letters(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage();
    QString text;
    for (int y = 0; y < image.height(); ++y) {
        text += y > 0 ? "|"_s : QString();
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            text += QLatin1Char(color == Qt::red ? 'r' : color == Qt::blue ? 'b' : '?');
        }
    }
    return text;
}

} // namespace

class CameraPreviewTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setApplicationName("CameraPreviewTest"_s); }

    void init()
    {
        QVERIFY(QDir(cacheFolder()).removeRecursively());
        QVERIFY(QDir().mkpath(cacheFolder()));
    }

    void orientation_data()
    {
        rows<int, bool, QString>({"rotation", "mirror", "shown"},
                                 {
                                     {"clockwise", 90, false, "r|b"_s},
                                     {"anticlockwise", -90, false, "b|r"_s},
                                     {"mirrored", 0, true, "br"_s},
                                     {"turned, then mirrored", 90, true, "r|b"_s},
                                 });
    }

    void orientation()
    {
        const auto [rotation, mirror] = row<int, bool>();
        const CameraPtr camera = makeCamera();
        camera->setPreview(twoPixels());
        camera->setRotation(rotation);
        camera->setMirrored(mirror);
        QTEST(letters(camera->preview()), "shown");
        QCOMPARE(letters(camera->sourcePreview()), "rb"_s);

        // A picture that comes later is turned in the same way.
        camera->setPreview(twoPixels());
        QTEST(letters(camera->preview()), "shown");
    }

    void cacheFile()
    {
        QVERIFY(makeCamera()->preview().isNull());

        const CameraPtr first = makeCamera();
        first->setRotation(90);
        first->setPreview(plainPicture(QSize(32, 18)));
        const QString name = "10.0.0.5:80_7.jpeg"_s;
        QCOMPARE(QDir(cacheFolder()).entryList(QDir::Files | QDir::Hidden), QStringList(name));
        const QString file = QDir(cacheFolder()).filePath(name);
        QVERIFY(!(QFile::permissions(file) & QFile::ReadOther));
        QFile::setPermissions(file, QFile::permissions(file) | QFile::ReadOther);
        first->setPreview(plainPicture(QSize(32, 18)));
        QVERIFY(!(QFile::permissions(file) & QFile::ReadOther));

        // The file keeps the picture as it was received.
        const CameraPtr second = makeCamera();
        QVERIFY(!second->hasPreview());
        QCOMPARE(second->preview().size(), QSize(32, 18));
        QVERIFY(second->hasPreview());
    }

    void fileStaysInTheCacheFolder()
    {
        const CameraPtr camera = makeCamera("../outside/%2"_s);
        camera->setPreview(plainPicture(QSize(32, 18)));
        QCOMPARE(QDir(cacheFolder()).entryList(QDir::Files | QDir::Hidden),
                 QStringList(".._outside_%2_7.jpeg"_s));
        camera->setPreview(QPixmap());
        QCOMPARE(camera->sourcePreview().size(), QSize(32, 18));
    }

    void decoding_data()
    {
        const auto encoded = [](const char *format) {
            QBuffer buffer;
            buffer.open(QIODevice::WriteOnly);
            plainPicture(QSize(64, 36)).save(&buffer, format);
            return buffer.data();
        };
        // A header that promises 20,000 by 10,000 pixels, which would be 800 MB.
        QByteArray bomb = encoded("JPEG");
        const int frame = bomb.indexOf("\xff\xc0");
        QVERIFY(frame > 0);
        bomb.replace(frame + 5, 4, QByteArray::fromHex("27104e20"));
        rows<QByteArray, QSize>({"bytes", "size"},
                                {
                                    {"jpeg", encoded("JPEG"), QSize(64, 36)},
                                    {"garbage", QByteArray(4096, 'x'), QSize(0, 0)},
                                    {"head of a jpeg", encoded("JPEG").left(20), QSize(0, 0)},
                                    {"giant", bomb, QSize(0, 0)},
                                });
    }

    void decoding()
    {
        const auto [bytes] = row<QByteArray>();
        QTEST(decodePreview(bytes).size(), "size");
    }
};

QTEST_MAIN(CameraPreviewTest)
#include "CameraPreviewTest.moc"
