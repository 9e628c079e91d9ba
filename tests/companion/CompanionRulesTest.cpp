// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <future>

#include "companion/CommandInput.h"
#include "companion/Controls.h"
#include "companion/PacketQueue.h"
#include "companion/PlayerArguments.h"
#include "companion/PlayerOutput.h"
#include "companion/export/ContainerWriter.h"
#include "companion/export/ExportArguments.h"
#include "companion/export/FormatProbe.h"
#include "companion/export/ParameterSets.h"
#include "companion/export/TargetFile.h"
#include "tests/companion/Words.h"

using namespace ZorvaneClient::Companion;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

PacketHandle packetOf(const QByteArray &bytes, int dts = 0, int delay = 0, bool key = true)
{
    PacketHandle packet(av_packet_alloc());
    av_new_packet(packet.get(), int(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), packet->data);
    packet->dts = dts;
    packet->pts = dts + delay;
    packet->duration = 40;
    packet->flags = key ? AV_PKT_FLAG_KEY : 0;
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

QueuedPacket queued(int milliseconds, bool key)
{
    return {packetOf("ten bytes.", milliseconds, 0, key), std::make_shared<StreamFormat>(), {}};
}

std::vector<std::string> words(const QString &arguments)
{
    std::vector<std::string> found;
    for (const QString &word : arguments.split('|'))
        found.push_back(word.toStdString());
    return found;
}

} // namespace

/// The decisions of the player and the exporter that need no process to be seen.
class CompanionRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void playerArguments_data()
    {
        rows<QString, QString>(
            {"arguments", "meaning"},
            {{"live", "http://h/flv/live?q=1|F", "http://h/flv/live?q=1 live"},
             {"archive", "http://h/live/archive?x=/live|F", "http://h/live/archive?x=/live"},
             {"unsafe bytes", "h://h/a\r\n\"<П>&x=%41|F", "h://h/a%0D%0A%22%3C%D0%9F%3E&x=%41"},
             {"proxy of IPv6", "h://h/|F|:http-proxy=http://::1:80/", "h://h/ http://[::1]:80/"},
             {"user without password", "h://h/|F|:http-proxy=http://d\\a b@x@p:80/",
              "h://h/ http://d%5Ca%20b%40x:@p:80/"},
             {"password", "h://h/|F|:http-proxy=http://a@p:65535/|:http-proxy-pwd=a:/@~é",
              "h://h/ http://a:a%3A%2F%40~%C3%A9@p:65535/"}});
    }

    void playerArguments()
    {
        const auto [arguments, meaning] = row<QString, QString>();
        const auto parsed = parsePlayerArguments(words(arguments));
        QVERIFY(parsed && parsed->frameName == "F");
        const std::string proxy = parsed->proxyUrl.empty() ? "" : " " + parsed->proxyUrl;
        QCOMPARE((parsed->url + (parsed->live ? " live" : "") + proxy).c_str(), meaning);
    }

    void refusedArguments()
    {
        for (const char *line : {"h://h/", "h/flv|F", "://h/flv|F", "a b://h/|F", "h://h/|../F",
                                 "h://h/|..", "h://h/|F|:http-proxi=http://p:1/"})
            QVERIFY2(!parsePlayerArguments(words(line)), line);
        for (const char *proxy :
             {"p:1/", "http://p/", "http://:1/", "http://p/a:1/", "http://p:8o/", "http://p:65536/",
              "http://p:1/|:http-proxy-pw=a", "http://p:1/|:http-proxy-pwd=a|b"})
            QVERIFY2(!parsePlayerArguments(words("h://h/|F|:http-proxy="_s + proxy)), proxy);
        for (const char *line : {"|mp4|4|/f", "h://h/|mkv|4|/f", "h://h/|mp4|4s|/f",
                                 "h://h/|mp4|0|/f", "h://h/|mp4|1125899906842625|/f",
                                 "h://h/|mp4|4|f", "h://h/|mp4|4|/f/", "h://h/|mp4|4|/f|x"})
            QVERIFY2(!parseExportArguments(words(line)), line);
    }

    void commands_data()
    {
        rows<QByteArray, bool, int>(
            {"lines", "paused", "volume"},
            {{"unpause", "pause\nunpause\n", false, 0},
             {"blanks around", "\t pause \r\n  volume 7 \r\n", true, 7},
             {"not whole", "volume 7\npause", false, 7},
             {"others", "PAUSE\npauses\nping pong\nstate 7\n\n \nvolumes 9\n", false, 0},
             {"not a number", "volume 7\nvolume\nvolume \nvolume x\nvolume 5x\n", false, 7},
             {"out of bounds", "volume 1000\n", false, 100},
             {"far out of bounds", "volume 99999999999999999999\n", false, 100},
             {"negative", "volume 7\nvolume -1\n", false, 0},
             {"very long", QByteArray(60'000, 'a') + " \npause\n", true, 0},
             {"end of a long one", QByteArray(10'000, ' ') + "pause\nvolume 3\n", false, 3},
             {"a long one in one read", QByteArray(2'000, ' ') + "pause\nvolume 3\n", false, 3},
             {"zero byte", QByteArray("pause\0more\nvolume 4\n", 20), false, 4}});
    }

    void commands()
    {
        const auto [lines, paused, volume] = row<QByteArray, bool, int>();
        QTemporaryFile input;
        QVERIFY(input.open() && input.write(lines) == lines.size() && input.seek(0));
        Controls controls;
        CommandInput(input.handle(), controls).run();
        QCOMPARE(controls.isPaused(), paused);
        QCOMPARE(controls.volume(), volume);
    }

    /// "k40" brings a key packet of that time, "40" another one, each of ten bytes. A packet that
    /// is taken tells its time and how much was dropped before it.
    void queue_data()
    {
        rows<QString, QString>(
            {"steps", "told"},
            {{"taken is no longer waiting", "k0 40 80 span pop pop span pop span",
              "80 0 40 40 80 0"},
             {"full by bytes", "k0 1 2 3 4 5 6 7 8 9 10 k11 12 pop pop pop", "11+10 12 nothing"},
             {"room again", "k0 1 2 3 4 5 6 7 8 9 pop 10 pop", "0 1"},
             {"full by time", "k0 500 1000 1040 k1080 pop pop", "1080+1040 nothing"},
             {"room in time again", "k0 500 990 pop pop 1400 span pop", "0 500 900 990"},
             {"step that is a pause", "k0 10000 span", "10000"},
             {"step that is a jump", "k0 10001 span 10041 span", "0 40"},
             {"step back", "k1000 900 span 940 span", "0 40"},
             {"to a key within reach", "k0 40 k80 120 k160 reach100 span pop span", "120 80+40 80"},
             {"to the last key of all", "k0 40 k80 120 k160 reach1000 pop pop", "160+120 nothing"},
             {"no key to go to", "k0 40 80 reach1000 pop pop", "0 40"},
             {"bytes of what was dropped", "k0 1 2 3 4 k5 6 7 8 9 reach9 10 pop 11 12 13 pop",
              "5+4 6"},
             {"cleared", "k0 40 clear span pop k80 pop", "0 nothing 80+40"},
             {"end", "k0 finish pop pop", "0 end"}});
    }

    void queue()
    {
        const auto [steps, told] = row<QString, QString>();
        PacketQueue queue({100, milliseconds(1000), PacketQueue::Overflow::DropToKey});
        const auto tell = [&queue](const QString &step) {
            QueuedPacket item;
            if (step == "pop"_s) {
                const auto taken = queue.pop(item, milliseconds(0));
                const auto dropped = QString::number(item.droppedBefore.count());
                if (taken == PacketQueue::Taken::Packet)
                    return QString::number(item.packet->dts) + '+' + dropped;
                return taken == PacketQueue::Taken::End ? "end"_s : "nothing"_s;
            }
            if (step == "span"_s)
                return QString::number(queue.span().count());
            if (step.startsWith("reach"_s))
                queue.dropToKey(millisecondsOf(step.mid(5)));
            else if (step == "clear"_s)
                queue.clear();
            else if (step == "finish"_s)
                queue.finish(PacketQueue::End::Finished);
            else
                queue.push(queued(step.mid(step.startsWith('k')).toInt(), step.startsWith('k')));
            return ""_s;
        };
        QCOMPARE(tellAll(steps, tell).replace("+0"_s, ""_s), told);
    }

    void fullQueueHoldsTheReaderBack()
    {
        PacketQueue queue({100, milliseconds(10'000), PacketQueue::Overflow::Wait});
        std::atomic<int> pushed{0};
        const auto reader = std::async(std::launch::async, [&] {
            for (; pushed < 200; ++pushed)
                queue.push(queued(pushed, true));
            queue.finish(PacketQueue::End::Finished);
        });
        QTRY_COMPARE(pushed.load(), 10);
        QueuedPacket item;
        int taken = 0;
        bool inOrder = true;
        bool heldBack = true;
        for (; queue.pop(item, milliseconds(10'000)) == PacketQueue::Taken::Packet; ++taken) {
            inOrder = inOrder && item.packet->dts == taken;
            heldBack = heldBack && pushed <= taken + 11;
        }
        QCOMPARE(taken, 200);
        QVERIFY(inOrder && heldBack);
    }

    /// Frames and times are lost then, the last state and size are not; nothing blocks.
    void linesToAClientThatDoesNotRead()
    {
        int ends[2];
        QCOMPARE(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        fcntl(ends[1], F_SETPIPE_SZ, 4096);
        QFile client;
        QVERIFY(client.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
        PlayerOutput output(ends[1]);
        for (int i = 0; i < 2000; ++i) {
            output.time(i);
            output.frame();
            QVERIFY(output.flush());
        }
        output.size(640, 480);
        output.state(StreamState::Playing);
        QVERIFY(output.flush());
        const QByteArray early = client.readAll();
        QVERIFY(early.startsWith("time 0\nframe\n"));
        QVERIFY(early.endsWith("frame\n") && !early.contains("size"));

        output.time(5000);
        output.frame();
        QVERIFY(output.flush());
        QCOMPARE(client.readAll(), QByteArray("state 3\nsize 640 480\ntime 5000\nframe\n"));
        client.close();
        output.frame();
        std::signal(SIGPIPE, SIG_IGN);
        QVERIFY(!output.flush());
        ::close(ends[1]);
    }

    /// By the times in the address; -1 where they don't tell.
    void silenceInExport_data()
    {
        rows<QString, int, int>({"url", "recorded", "silence"},
                                {{"no times", "h://h/a", 4000, -1},
                                 {"some", "h://h/?startTime=1&endTime=9001&q=2", 4000, 5000},
                                 {"less than recorded", "h://h/?endTime=9&startTime=1", 99, 0},
                                 {"ends first", "h://h/?startTime=9&endTime=8", 4, -1},
                                 {"other names", "h://h/startTime=1?xstartTime=1&endTime=8", 4, -1},
                                 {"no number", "h://h/?startTime=1s&endTime=8", 4, -1}});
    }

    void silenceInExport()
    {
        const auto [url, recorded, silence] = row<QString, int, int>();
        const auto parsed = parseExportArguments(words("%1|avi|%2|/f"_s.arg(url).arg(recorded)));
        QVERIFY(parsed && parsed->container == "avi" && parsed->path == "/f");
        QCOMPARE(parsed->url.c_str(), url);
        QCOMPARE(int(parsed->recorded.count()), recorded);
        QCOMPARE(int(parsed->silence.value_or(milliseconds(-1)).count()), silence);
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
        const auto [record, newRecord, key, packet, result] =
            row<QByteArray, QByteArray, bool, QByteArray, QByteArray>();
        ParameterSets sets;
        const auto first = QByteArray::fromHex(record);
        sets.set(data(first), size_t(first.size()));
        const PacketHandle frame = packetOf(QByteArray::fromHex(packet), 0, 0, key);
        const auto second = QByteArray::fromHex(newRecord);
        if (const auto size = size_t(second.size()))
            std::copy_n(data(second), size,
                        av_packet_new_side_data(frame.get(), AV_PKT_DATA_NEW_EXTRADATA, size));
        QVERIFY(sets.apply(*frame));
        const QByteArray found(reinterpret_cast<const char *>(frame->data), frame->size);
        QCOMPARE(found.toHex(' '), result);
    }

    /// Of MP3 streams whose head says nothing but the codec.
    void soundFormats_data()
    {
        const auto stereo = QByteArray("\xFF\xFB\x90\x00", 4).leftJustified(417, '\0');
        const auto mono = QByteArray("\xFF\xFB\x94\xC0").leftJustified(384, '\0');
        rows<QList<QByteArray>, int, int>({"packets", "rate", "channels"},
                                          {{"stereo", {stereo}, 44'100, 2},
                                           {"behind a broken one", {"broken", mono}, 48'000, 1},
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

QTEST_GUILESS_MAIN(CompanionRulesTest)
#include "CompanionRulesTest.moc"
