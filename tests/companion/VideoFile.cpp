// SPDX-License-Identifier: MIT
#include "tests/companion/VideoFile.h"

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

namespace {

constexpr int limitMilliseconds = 60'000;

struct Output {
    QByteArray text;
    QByteArray errors;
};

Output run(const char *program, const QStringList &arguments)
{
    QProcess process;
    process.start(QString::fromLatin1(program), QStringList{"-v", "error"} + arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(limitMilliseconds))
        return {QByteArray(), "no end"};
    return {process.readAllStandardOutput(), process.readAllStandardError()};
}

double numberOf(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString().toDouble();
}

} // namespace

VideoFile VideoFile::read(const QString &path)
{
    const Output probed =
        run("ffprobe", {"-count_frames", "-show_format", "-show_streams", "-of", "json", path});
    const QJsonObject root = QJsonDocument::fromJson(probed.text).object();
    VideoFile file;
    file.seconds = numberOf(root.value("format"_s).toObject(), "duration");
    const QJsonArray streams = root.value("streams"_s).toArray();
    for (const QJsonValue &value : streams) {
        const QJsonObject stream = value.toObject();
        const QString codec = stream.value("codec_name"_s).toString();
        if (stream.value("codec_type"_s).toString() == "audio"_s) {
            file.soundCodec = codec;
            continue;
        }
        file.videoCodec = codec;
        file.size = QSize(stream.value("width"_s).toInt(), stream.value("height"_s).toInt());
        file.pictures = static_cast<int>(numberOf(stream, "nb_read_frames"));
    }
    file.faults = probed.errors + run("ffmpeg", {"-i", path, "-f", "null", "-"}).errors;
    return file;
}

QImage pictureAt(const QString &path, double seconds)
{
    const Output output = run("ffmpeg", {"-ss", QString::number(seconds), "-i", path, "-frames:v",
                                         "1", "-f", "image2pipe", "-c:v", "png", "-"});
    return QImage::fromData(output.text);
}

} // namespace ZorvaneClient::Tests
