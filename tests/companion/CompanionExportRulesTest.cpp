// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <optional>
#include <sstream>

#include "companion/ContainerWriter.h"
#include "companion/ExportArguments.h"
#include "companion/ExportTimeline.h"
#include "companion/FormatProbe.h"
#include "companion/ParameterSets.h"
#include "companion/TargetFile.h"

using namespace ZorvaneClient::Companion;
using std::chrono::milliseconds;

namespace {

PacketHandle packetOf(const QByteArray &bytes, int dts = 0, int delay = 0)
{
    PacketHandle packet(av_packet_alloc());
    av_new_packet(packet.get(), int(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), packet->data);
    packet->dts = dts;
    packet->pts = dts + delay;
    packet->duration = 40;
    packet->flags = AV_PKT_FLAG_KEY;
    return packet;
}

CodecParametersHandle parametersOf(AVMediaType type, AVCodecID codec)
{
    CodecParametersHandle parameters(avcodec_parameters_alloc());
    parameters->codec_type = type;
    parameters->codec_id = codec;
    return parameters;
}

const uint8_t *data(const QByteArray &bytes)
{
    return reinterpret_cast<const uint8_t *>(bytes.constData());
}

} // namespace

/// Where packets stand in an exported file, and what stands in them.
class CompanionExportRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void arguments_data()
    {
        rows<QString, QString>({"arguments", "meaning"},
                               {{"no times", "h://h/a b|mp4|4000|/f", "mp4 4000/-1 h://h/a%20b"},
                                {"silence", "h://h/?startTime=1&endTime=9001&q=2|avi|4000|/f",
                                 "avi 4000/5000 h://h/?startTime=1&endTime=9001&q=2"},
                                {"less than recorded", "h://h/?endTime=9&startTime=1|mp4|99|/f",
                                 "mp4 99/0 h://h/?endTime=9&startTime=1"},
                                {"ends before it begins", "h://h/?startTime=9&endTime=8|mp4|4|/f",
                                 "mp4 4/-1 h://h/?startTime=9&endTime=8"},
                                {"other names", "h://h/startTime=1?xstartTime=1&endTime=8|mp4|4|/f",
                                 "mp4 4/-1 h://h/startTime=1?xstartTime=1&endTime=8"},
                                {"no number", "h://h/?startTime=1s&endTime=8|mp4|4|/f",
                                 "mp4 4/-1 h://h/?startTime=1s&endTime=8"},
                                {"no address", "|mp4|4000|/f", "refused"},
                                {"other container", "h://h/|mkv|4000|/f", "refused"},
                                {"length is no number", "h://h/|mp4|4s|/f", "refused"},
                                {"no length", "h://h/|mp4|0|/f", "refused"},
                                {"endless", "h://h/|mp4|1125899906842625|/f", "refused"},
                                {"path not absolute", "h://h/|mp4|4000|f", "refused"},
                                {"a folder", "h://h/|mp4|4000|/f/", "refused"},
                                {"too many", "h://h/|mp4|4000|/f|x", "refused"}});
    }

    void arguments()
    {
        const auto [arguments, meaning] = row<QString, QString>();
        std::vector<std::string> words;
        for (const QString &word : arguments.split('|'))
            words.push_back(word.toStdString());
        const auto parsed = parseExportArguments(words);
        std::ostringstream found;
        if (parsed)
            found << parsed->container << ' ' << parsed->recorded.count() << '/'
                  << parsed->silence.value_or(milliseconds(-1)).count() << ' ' << parsed->url;
        QCOMPARE(QString::fromStdString(parsed ? found.str() : "refused"), meaning);
        QVERIFY(!parsed || parsed->path == "/f");
    }

    /// Times of packets in the file, by their stamps. "s" marks sound.
    void places_data()
    {
        // -1: not known
        rows<QString, int, QString>(
            {"stamps", "silence", "times"},
            {{"rare pictures, silence not known", "0 3000 6000 9000", -1, "0 40 3040 6040"},
             {"clock set back a little", "0 40 80 20 60 100 140", -1, "0 40 80 81 82 100 140"},
             {"sound of before the gap, late", "2000 2040 2080 72000 s2090 72040 s72030", 70'000,
              "0 40 80 120 90 160 150"},
             {"sound stops and comes back", "2000 s2010 3000 4000 5000 6000 7000 s7010", 0,
              "0 10 1000 2000 3000 4000 5000 5010"},
             {"more jumps than silence", "0 40 80 5080 5120 5160 10160", 7000,
              "0 40 80 120 160 200 3200"}});
    }

    void places()
    {
        const auto [stamps, silence, times] = row<QString, int, QString>();
        ExportTimeline timeline(milliseconds(20'000), silence < 0 ? std::optional<milliseconds>()
                                                                  : milliseconds(silence));
        QStringList found;
        for (const QString &stamp : stamps.split(' ')) {
            const bool sound = stamp.startsWith('s');
            found << QString::number(timeline.place(
                sound ? ExportTimeline::Sound : ExportTimeline::Video, stamp.mid(sound).toInt()));
        }
        QCOMPARE(found.join(' '), times);
    }

    /// What the file says itself. Pictures are shown `delay` after they are decoded; one that
    /// would be decoded too early goes into the same millisecond as the one before it. A frame of
    /// sound is 128 ms long.
    void timesInFile_data()
    {
        rows<QString, int, QString, QString>(
            {"container", "delay", "stamps", "times"},
            {{"steady", "mp4", 0, "0 s0 40 80 s128 s256", "0 s0 40 80 s128 s256"},
             {"decoding time falls back", "mp4", 80, "0 40 80 60 120", "0 40 80 80 120"},
             {"decoding time stands still", "mp4", 0, "0 40 40 40 80", "0 40 40 40 80"},
             {"shown before it is decoded", "mp4", -40, "0 40 80", "0 40 80"},
             {"slots of avi", "avi", 0, "0 38 45 120", "0 40 80 120"},
             {"sound that trembles", "mp4", 0, "0 s0 s140 s250", "0 s0 s128 s256"},
             {"sound with a gap", "mp4", 0, "0 s0 s128 s900 s1028", "0 s0 s128 s900 s1028"},
             {"sound at the end of patience", "mp4", 0, "0 s0 s384", "0 s0 s128"},
             {"sound after it", "mp4", 0, "0 s0 s385", "0 s0 s385"},
             {"sound that comes again", "mp4", 0, "0 s0 s900 s100 s1028", "0 s0 s900 s1028"}});
    }

    void timesInFile()
    {
        const auto [container, delay, stamps, times] = row<QString, int, QString, QString>();
        const auto video = parametersOf(AVMEDIA_TYPE_VIDEO, AV_CODEC_ID_MPEG4);
        video->width = video->height = 16;
        const auto sound = parametersOf(AVMEDIA_TYPE_AUDIO, AV_CODEC_ID_AAC);
        sound->sample_rate = 8000;
        sound->frame_size = 1024;
        av_channel_layout_default(&sound->ch_layout, 1);
        const std::string path = QDir::current().filePath("film"_s).toStdString();
        TargetFile file(path);
        QVERIFY(file.open());
        ContainerWriter writer(file, container.toStdString());
        QVERIFY(writer.begin(*video, stamps.contains('s') ? sound.get() : nullptr, {1, 25}));
        for (const QString &stamp : stamps.split(' '))
            QVERIFY(stamp.startsWith('s')
                        ? writer.writeSound(packetOf("sound", stamp.mid(1).toInt()))
                        : writer.writeVideo(packetOf("picture", stamp.toInt(), delay)));
        QVERIFY(writer.end() && file.finish());

        AVFormatContext *context = nullptr;
        QVERIFY(avformat_open_input(&context, path.c_str(), nullptr, nullptr) >= 0);
        const FormatHandle input(context);
        QStringList found;
        const PacketHandle packet(av_packet_alloc());
        for (; av_read_frame(context, packet.get()) >= 0; av_packet_unref(packet.get())) {
            const AVStream &stream = *context->streams[packet->stream_index];
            const bool isSound = stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
            av_packet_rescale_ts(packet.get(), stream.time_base, millisecondBase);
            QVERIFY(isSound || packet->pts == packet->dts + qMax(delay, 0));
            found << (isSound ? "s%1"_s : "%1"_s).arg(packet->dts);
        }
        QCOMPARE(found.join(' '), times);
    }

    /// Hexadecimal. The record has the sets 670102 and 6803, and lengths of two bytes.
    void parameterSets_data()
    {
        const QByteArray record = "0164001ffde1 0003 670102 01 0002 6803";
        const QByteArray sets = "00 03 67 01 02 00 02 68 03";
        const QByteArray other = "0164001fffe1 0002 6709 01 0001 68"; // lengths of four bytes
        rows<QByteArray, QByteArray, bool, QByteArray, QByteArray>(
            {"record", "newRecord", "key", "packet", "result"},
            {{"key frame", record, "", true, "00 02 65 aa", sets + " 00 02 65 aa"},
             {"behind a delimiter", record, "", true, "00 02 09 10 00 02 65 aa",
              "00 02 09 10 " + sets + " 00 02 65 aa"},
             {"sets of its own", record, "", true, "00 01 67 00 01 65", "00 01 67 00 01 65"},
             {"not a key frame", record, "", false, "00 02 41 01", "00 02 41 01"},
             {"torn", record, "", true, "00 03 65 01", "00 03 65 01"},
             {"empty unit", record, "", true, "00 00 00 01 65", "00 00 00 01 65"},
             {"new record", record, other, true, "00 00 00 01 65",
              "00 00 00 02 67 09 00 00 00 01 68 00 00 00 01 65"},
             {"torn record", record, "0164001ffde1 0009 67", true, "00 01 65", sets + " 00 01 65"},
             {"no record", "", "", true, "00 01 65", "00 01 65"},
             {"several sets", "0164001ffde2 000167 000268aa 01 000169", "", true, "00 01 65",
              "00 01 67 00 02 68 aa 00 01 69 00 01 65"}});
    }

    void parameterSets()
    {
        QFETCH(QByteArray, record);
        QFETCH(QByteArray, newRecord);
        QFETCH(bool, key);
        QFETCH(QByteArray, packet);
        ParameterSets sets;
        record = QByteArray::fromHex(record);
        sets.set(data(record), size_t(record.size()));
        const PacketHandle frame = packetOf(QByteArray::fromHex(packet));
        frame->flags = key ? AV_PKT_FLAG_KEY : 0;
        newRecord = QByteArray::fromHex(newRecord);
        if (const auto size = size_t(newRecord.size()))
            std::copy_n(data(newRecord), size,
                        av_packet_new_side_data(frame.get(), AV_PKT_DATA_NEW_EXTRADATA, size));
        QVERIFY(sets.apply(*frame));
        const QByteArray found(reinterpret_cast<const char *>(frame->data), frame->size);
        QTEST(found.toHex(' '), "result");
    }

    /// Of MP3 streams whose head says nothing but the codec.
    void soundFormats_data()
    {
        const auto stereo = QByteArray("\xFF\xFB\x90\x00", 4).leftJustified(417, '\0');
        const auto mono = QByteArray("\xFF\xFB\x94\xC0").leftJustified(384, '\0');
        rows<QList<QByteArray>, int, int>({"packets", "rate", "channels"},
                                          {{"stereo", {stereo}, 44'100, 2},
                                           {"mono", {mono}, 48'000, 1},
                                           {"behind a broken one", {"broken", mono}, 48'000, 1},
                                           {"broken ones only", {"broken", "broken"}, 0, 0},
                                           {"none", {}, 0, 0}});
    }

    void soundFormats()
    {
        const auto [packets, rate, channels] = row<QList<QByteArray>, int, int>();
        const bool complete = rate > 0;
        std::vector<PacketHandle> owned;
        std::vector<const AVPacket *> given;
        for (const QByteArray &bytes : packets) {
            owned.push_back(packetOf(bytes));
            given.push_back(owned.back().get());
        }
        const auto parameters = parametersOf(AVMEDIA_TYPE_AUDIO, AV_CODEC_ID_MP3);
        QCOMPARE(completeFormat(*parameters, given), complete);
        QCOMPARE(parameters->sample_rate, rate);
        QCOMPARE(parameters->ch_layout.nb_channels, channels);
        QCOMPARE(parameters->frame_size, complete ? 1152 : 0);
        QCOMPARE(int(parameters->bit_rate), complete ? 128'000 : 0);
    }
};

QTEST_GUILESS_MAIN(CompanionExportRulesTest)
#include "CompanionExportRulesTest.moc"
