// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <future>

#include "companion/Arguments.h"
#include "companion/CommandInput.h"
#include "companion/Controls.h"
#include "companion/FrameFile.h"
#include "companion/LineOutput.h"
#include "companion/PacketQueue.h"
#include "companion/PictureConverter.h"
#include "companion/PositionTrack.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

using namespace ZorvaneClient::Companion;
using std::chrono::milliseconds;

namespace {

QueuedPacket packetAt(int milliseconds, bool key)
{
    static const auto format = std::make_shared<StreamFormat>();
    QueuedPacket item;
    item.packet.reset(av_packet_alloc());
    item.format = format;
    av_new_packet(item.packet.get(), 10);
    item.packet->dts = milliseconds;
    item.packet->flags = key ? AV_PKT_FLAG_KEY : 0;
    return item;
}

/// Brightness and the two colour differences, each of eight bits.
using Yuv = std::array<int, 3>;
const std::array<Yuv, 4> quarters = {
    Yuv{90, 110, 180}, {150, 140, 120}, {60, 128, 128}, {200, 100, 128}};

/// Each quarter has one colour.
FrameHandle pictureOfQuarters(const char *format, QSize size)
{
    FrameHandle picture(av_frame_alloc());
    picture->format = av_get_pix_fmt(format);
    picture->width = size.width();
    picture->height = size.height();
    av_frame_get_buffer(picture.get(), 0);
    const AVPixFmtDescriptor &about = *av_pix_fmt_desc_get(AVPixelFormat(picture->format));
    for (int plane = 0; plane < about.nb_components; ++plane) {
        const int width = AV_CEIL_RSHIFT(size.width(), plane > 0 ? about.log2_chroma_w : 0);
        const int height = AV_CEIL_RSHIFT(size.height(), plane > 0 ? about.log2_chroma_h : 0);
        for (int i = 0; i < width * height; ++i) {
            const int x = i % width;
            const int y = i / width;
            const int value = quarters[(y >= height / 2) * 2 + (x >= width / 2)][plane];
            uint8_t *line = picture->data[plane] + y * picture->linesize[plane];
            if (about.comp[0].depth > 8)
                reinterpret_cast<uint16_t *>(line)[x] =
                    uint16_t(value << (about.comp[0].depth - 8));
            else
                line[x] = uint8_t(value);
        }
    }
    return picture;
}

/// By what that standard says to be the shares of red and blue in the brightness.
QColor colourOf(Yuv yuv, int standard, bool fullRange, bool gray)
{
    const double redShare = standard == 601 ? 0.299 : standard == 709 ? 0.2126 : 0.2627;
    const double blueShare = standard == 601 ? 0.114 : standard == 709 ? 0.0722 : 0.0593;
    const double y = fullRange ? yuv[0] : (yuv[0] - 16) * 255 / 219.0;
    const double chroma = gray ? 0 : fullRange ? 1 : 255 / 224.0;
    const double red = y + 2 * (1 - redShare) * chroma * (yuv[2] - 128);
    const double blue = y + 2 * (1 - blueShare) * chroma * (yuv[1] - 128);
    const double green = (y - redShare * red - blueShare * blue) / (1 - redShare - blueShare);
    const auto byte = [](double value) { return qBound(0, qRound(value), 255); };
    return QColor(byte(red), byte(green), byte(blue));
}

} // namespace

/// The decisions of the player that need no child to be seen.
class CompanionRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void arguments_data()
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
              "h://h/ http://a:a%3A%2F%40~%C3%A9@p:65535/"},
             {"no frame file", "http://h/", "refused"},
             {"no scheme", "h/flv|F", "refused"},
             {"empty scheme", "://h/flv|F", "refused"},
             {"strange scheme", "a b://h/flv|F", "refused"},
             {"way out for name", "http://h/|../F", "refused"},
             {"folder for name", "http://h/|..", "refused"},
             {"unknown third", "http://h/|F|:http-proxi=http://p:1/", "refused"},
             {"unknown fourth", "http://h/|F|:http-proxy=http://p:1/|:http-proxy-pw=a", "refused"},
             {"proxy without scheme", "http://h/|F|:http-proxy=p:1/", "refused"},
             {"proxy without port", "http://h/|F|:http-proxy=http://p/", "refused"},
             {"proxy without host", "http://h/|F|:http-proxy=http://:1/", "refused"},
             {"proxy with path", "http://h/|F|:http-proxy=http://p/a:1/", "refused"},
             {"port too big", "http://h/|F|:http-proxy=http://p:65536/", "refused"},
             {"port is no number", "http://h/|F|:http-proxy=http://p:8o/", "refused"},
             {"too many", "http://h/|F|:http-proxy=http://p:1/|:http-proxy-pwd=a|b", "refused"}});
    }

    void arguments()
    {
        const auto [arguments, meaning] = row<QString, QString>();
        std::vector<std::string> words;
        for (const QString &word : arguments.split('|'))
            words.push_back(word.toStdString());
        const auto parsed = parseArguments(words);
        std::string found = "refused";
        if (parsed)
            found = parsed->url + (parsed->live ? " live" : "") +
                    (parsed->proxyUrl.empty() ? "" : " " + parsed->proxyUrl);
        QCOMPARE(QString::fromStdString(found), meaning);
        QVERIFY(!parsed || parsed->frameName == "F");
    }

    void commands_data()
    {
        rows<QByteArray, bool, int>(
            {"lines", "paused", "volume"},
            {
                {"pause", "pause\n", true, 0},
                {"unpause", "pause\nunpause\n", false, 0},
                {"blanks around", "\t pause \r\n  volume 7 \r\n", true, 7},
                {"not whole", "volume 7\npause", false, 7},
                {"others", "PAUSE\npauses\nping pong\nstate 7\n\n \nvolumes 9\n", false, 0},
                {"not a number", "volume 7\nvolume\nvolume \nvolume x\nvolume 5x\n", false, 7},
                {"out of bounds", "volume 1000\n", false, 100},
                {"far out of bounds", "volume 99999999999999999999\n", false, 100},
                {"negative", "volume 7\nvolume -1\n", false, 0},
                {"very long", QByteArray(60'000, 'a') + " \npause\n", true, 0},
                {"end of a long one", QByteArray(10'000, ' ') + "pause\nvolume 3\n", false, 3},
                {"zero byte", QByteArray("pause\0more\nvolume 4\n", 20), false, 4},
            });
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

    void positions_data()
    {
        rows<QString, int, QString>(
            {"stamps", "passed", "positions"},
            {{"from anywhere", "50000 50040 50080", 40, "0 40 80"},
             {"back", "900 940 0 40", 40, "0 40 80 120"},
             {"gap of ten seconds", "0 10000 10040", 40, "0 10000 10040"},
             {"farther", "0 10001 10041", 40, "0 40 80"},
             {"farther, and as much time passed", "0 60000 60040", 58'000, "0 60000 60040"},
             {"farther than the time that passed", "0 60001 60041", 58'000, "0 40 80"}});
    }

    void positions()
    {
        const auto [stamps, passed, positions] = row<QString, int, QString>();
        PositionTrack track;
        QStringList found;
        for (const QString &stamp : stamps.split(' ')) {
            const int time = stamp.toInt();
            track.advance(time, time, milliseconds(found.isEmpty() ? 0 : passed));
            found << QString::number(time + track.offset());
        }
        QCOMPARE(found.join(' '), positions);
    }

    void colours_data()
    {
        constexpr auto unnamed = AVCOL_SPC_UNSPECIFIED;
        const QSize small(64, 48);
        rows<QByteArray, int, bool, QSize, int>(
            {"format", "space", "fullRange", "size", "standard"},
            {{"ordinary", "yuv420p", unnamed, false, small, 601},
             {"odd", "yuv420p", unnamed, false, QSize(159, 97), 601},
             {"all of a row", "yuv422p", unnamed, false, small, 601},
             {"all", "yuv444p", unnamed, false, QSize(63, 47), 601},
             {"gray", "gray", unnamed, false, small, 601},
             {"ten bits", "yuv420p10le", unnamed, false, small, 601},
             {"ten bits, row", "yuv422p10le", unnamed, false, small, 601},
             {"ten bits, all", "yuv444p10le", unnamed, false, small, 601},
             {"full range", "yuv420p", unnamed, true, small, 601},
             {"full by format", "yuvj420p", unnamed, false, small, 601},
             {"full, row", "yuvj422p", unnamed, false, small, 601},
             {"full, all", "yuvj444p", unnamed, false, small, 601},
             {"last small one", "yuv420p", unnamed, false, QSize(64, 576), 601},
             {"HD", "yuv420p", unnamed, false, QSize(64, 578), 709},
             {"HD by name", "yuv420p", AVCOL_SPC_BT709, false, small, 709},
             {"HD, full", "yuvj420p", AVCOL_SPC_BT709, false, small, 709},
             {"small by name", "yuv420p", AVCOL_SPC_SMPTE170M, false, QSize(64, 720), 601},
             {"wide", "yuv420p", AVCOL_SPC_BT2020_NCL, false, small, 2020},
             {"wide, full", "yuv420p", AVCOL_SPC_BT2020_CL, true, small, 2020},
             {"too large", "yuv420p", unnamed, false, QSize(3839, 2159), 709},
             {"too large, ten bits", "yuv422p10le", unnamed, false, QSize(2560, 1440), 709}});
    }

    void colours()
    {
        const auto [format, space, fullRange, size, standard] =
            row<QByteArray, int, bool, QSize, int>();
        const FrameHandle picture = pictureOfQuarters(format, size);
        picture->colorspace = AVColorSpace(space);
        picture->color_range = fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_UNSPECIFIED;
        const PictureSize fitted = fittedSize({size.width(), size.height()});
        QImage shown(fitted.width, fitted.height, QImage::Format_ARGB32);
        shown.fill(Qt::transparent);
        QVERIFY(PictureConverter().convert(*picture, shown.bits()));
        for (int i = 0; i < 4; ++i) {
            const QColor found = shown.pixelColor(fitted.width * (1 + 2 * (i % 2)) / 4,
                                                  fitted.height * (1 + 2 * (i / 2)) / 4);
            const bool full = fullRange || format.startsWith("yuvj");
            const QColor wanted = colourOf(quarters[i], standard, full, format == "gray");
            const int fault =
                std::max({qAbs(found.red() - wanted.red()), qAbs(found.green() - wanted.green()),
                          qAbs(found.blue() - wanted.blue())});
            QVERIFY2(fault <= 5, qPrintable("%1 and not %2"_s.arg(found.name(), wanted.name())));
            QCOMPARE(found.alpha(), 255);
        }
    }

    void fittedSizes()
    {
        const auto fitted = [](int width, int height) {
            const PictureSize size = fittedSize({width, height});
            return QSize(size.width, size.height);
        };
        QCOMPARE(fitted(2048, 1536), QSize(2048, 1536));
        QCOMPARE(fitted(2048, 1537), QSize(2047, 1536));
        QCOMPARE(fitted(1, 4'000'000), QSize(1, 3'145'728));
        QCOMPARE(fitted(INT_MAX, INT_MAX), QSize(1773, 1773));
        QCOMPARE(fitted(0, 100), QSize(0, 0));
    }

    /// "k40" brings a key packet of that time, "40" another one, each of ten bytes. A packet that
    /// is taken tells its time and how much was dropped before it.
    void queue_data()
    {
        rows<QString, QString>(
            {"steps", "told"},
            {
                {"taken is no longer waiting", "k0 40 80 span pop pop span pop span",
                 "80 0 40 40 80 0"},
                {"full by bytes", "k0 1 2 3 4 5 6 7 8 9 10 k11 12 pop pop pop", "11+10 12 nothing"},
                {"room again", "k0 1 2 3 4 5 6 7 8 9 pop 10 pop", "0 1"},
                {"full by time", "k0 500 1000 1040 k1080 pop pop", "1080+1040 nothing"},
                {"room in time again", "k0 500 990 pop pop 1400 span pop", "0 500 900 990"},
                {"step that is a pause", "k0 10000 span", "10000"},
                {"step that is a jump", "k0 10001 span 10041 span", "0 40"},
                {"step back", "k1000 900 span 940 span", "0 40"},
                {"to a key within reach", "k0 40 k80 120 k160 reach100 span pop span",
                 "dropped 120 80+40 80"},
                {"to the last key of all", "k0 40 k80 120 k160 reach1000 pop pop",
                 "dropped 160+120 nothing"},
                {"no key to go to", "k0 40 80 reach1000 pop", "kept 0"},
                {"bytes of what was dropped", "k0 1 2 3 4 k5 6 7 8 9 reach9 10 pop 11 12 13 pop",
                 "dropped 5+4 6"},
                {"cleared", "k0 40 clear span pop k80 pop", "0 nothing 80+40"},
                {"end", "k0 finish pop pop", "0 end"},
            });
    }

    void queue()
    {
        const auto [steps, told] = row<QString, QString>();
        PacketQueue queue({100, milliseconds(1000), PacketQueue::Overflow::DropToKey});
        QStringList found;
        for (const QString &step : steps.split(' ')) {
            if (step == "pop"_s) {
                QueuedPacket item;
                const auto taken = queue.pop(item, milliseconds(0));
                const auto dropped = QString::number(item.droppedBefore.count());
                if (taken == PacketQueue::Taken::Packet)
                    found << QString::number(item.packet->dts) + '+' + dropped;
                else
                    found << (taken == PacketQueue::Taken::End ? "end" : "nothing");
            } else if (step == "span"_s) {
                found << QString::number(queue.span().count());
            } else if (step == "clear"_s) {
                queue.clear();
            } else if (step == "finish"_s) {
                queue.finish(PacketQueue::End::Finished);
            } else if (step.startsWith("reach"_s)) {
                const milliseconds reach(step.mid(5).toInt());
                found << (queue.dropToKey(reach) ? "dropped" : "kept");
            } else {
                queue.push(packetAt(step.mid(step.startsWith('k')).toInt(), step.startsWith('k')));
            }
        }
        QCOMPARE(found.join(' ').replace("+0"_s, ""_s), told);
    }

    void fullQueueHoldsTheReaderBack()
    {
        PacketQueue queue({100, milliseconds(10'000), PacketQueue::Overflow::Wait});
        std::atomic<int> pushed{0};
        const auto reader = std::async(std::launch::async, [&] {
            for (; pushed < 200; ++pushed)
                queue.push(packetAt(pushed, true));
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
        LineOutput output(ends[1]);
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

    void clockStandsStillInAPause()
    {
        Controls controls;
        QTRY_VERIFY(controls.now() > milliseconds(20));
        controls.setPaused(true);
        const auto paused = controls.now();
        const auto end = paused + milliseconds(30);
        const auto waiter = std::async(std::launch::async, [&] { controls.waitUntil(end); });
        const bool waits = waiter.wait_for(milliseconds(100)) == std::future_status::timeout;
        const bool stands = controls.now() == paused;
        controls.setPaused(false);
        waiter.wait();
        QVERIFY(waits && stands);
        QVERIFY(controls.now() >= end);
    }
};

QTEST_GUILESS_MAIN(CompanionRulesTest)
#include "CompanionRulesTest.moc"
