// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>

#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>

#include "companion/AvHandles.h"
#include "companion/PictureConverter.h"
#include "tests/companion/StreamPlayer.h"
#include "tests/support/MisbehavingServer.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

using namespace ZorvaneClient::Companion;

namespace {

constexpr int anyThread = -1; ///< gets the signal
constexpr int nobody = -2;    ///< minds it

/// Where a debugger can do so. ThreadSanitizer calls handlers in its own way, and has a thread of
/// its own among the others.
bool crashWithoutStack(pid_t thread)
{
#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__)
    return ::ptrace(PTRACE_ATTACH, thread, nullptr, nullptr) == 0 &&
           ::waitpid(thread, nullptr, __WALL) == thread &&
           ::ptrace(PTRACE_POKEUSER, thread, offsetof(user, regs.rsp), nullptr) == 0 &&
           ::ptrace(PTRACE_DETACH, thread, nullptr, SIGSEGV) == 0;
#else
    return thread < 0;
#endif
}

} // namespace

/// The player as its client sees it: arguments, frame file, commands, sound, proxy.
class CompanionPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        clip = Clips::quarters(QSize(160, 96), 1000);
        QVERIFY(!clip.isEmpty());
    }

    void cannotStart_data()
    {
        const int whole = PlayerProcess::frameFileBytes;
        rows<QByteArray, int, int, QByteArray>(
            {"url", "frameFileBytes", "exitCode", "error"},
            {{"no scheme", "127.0.0.1/flv", whole, 2, "Usage: vlc-stream "},
             {"no frame file", "http://127.0.0.1:1/", -1, 1, "vlc-stream: "},
             {"long", "http://127.0.0.1:1/", whole + 1, 1, "vlc-stream: "}});
    }

    /// The tile hears of it, and the file is neither made nor touched.
    void cannotStart()
    {
        const auto [url, bytes, exitCode, error] = row<QByteArray, int, int, QByteArray>();
        QFile file(QDir::tempPath() + "/frames");
        file.remove();
        const QByteArray content(qMax(bytes, 0), PlayerProcess::untouched);
        if (bytes >= 0)
            QVERIFY(file.open(QIODevice::ReadWrite) && file.write(content) == bytes);
        file.close();
        StreamPlayer player;
        QVERIFY(player.startWithArguments({url, "frames"}));
        QVERIFY(player.ends());
        QCOMPARE(player.exitCode(), exitCode);
        QVERIFY(player.errorOutput().startsWith(error));
        QCOMPARE(player.states(), QList<int>{7});
        QCOMPARE(file.exists(), bytes >= 0);
        QVERIFY(bytes < 0 || (file.open(QIODevice::ReadOnly) && file.readAll() == content));
    }

    void pixels_data()
    {
        rows<QSize, QString, QSize>(
            {"size", "encoder", "shown"},
            {{"odd", QSize(159, 97), Clips::mpeg4, QSize(159, 97)},
             {"too large", QSize(2560, 1440), Clips::h264, QSize(2364, 1330)}});
    }

    void pixels()
    {
        const auto [size, encoder, shown] = row<QSize, QString, QSize>();
        StreamPlayer player;
        QVERIFY(player.play(stallScript(Clips::quarters(size, 480, encoder)), "/flv/archive"));
        QVERIFY(player.shows(2));
        QCOMPARE(player.size(), shown);
        player.send("pause");
        QTRY_COMPARE_WITH_TIMEOUT(Clips::faultInQuarters(player.picture()), QString(), deadline);
        const int used = 4 * shown.width() * shown.height();
        QCOMPARE(player.frameFile().mid(used),
                 QByteArray(PlayerProcess::frameFileBytes - used, PlayerProcess::untouched));
    }

    void colours_data()
    {
        constexpr auto unnamed = AVCOL_SPC_UNSPECIFIED;
        rows<int, bool, int, int>({"space", "fullRange", "height", "standard"},
                                  {{"last small one", unnamed, false, 576, 601},
                                   {"HD", unnamed, false, 577, 709},
                                   {"full range", unnamed, true, 48, 601},
                                   {"HD by name", AVCOL_SPC_BT709, false, 48, 709},
                                   {"small by name", AVCOL_SPC_SMPTE170M, false, 720, 601},
                                   {"wide", AVCOL_SPC_BT2020_NCL, false, 48, 2020},
                                   {"wide, full", AVCOL_SPC_BT2020_CL, true, 48, 2020}});
    }

    /// By what a standard says to be the shares of red and blue in the brightness.
    void colours()
    {
        const auto [space, fullRange, height, standard] = row<int, bool, int, int>();
        const int yuv[] = {90, 110, 180};
        for (const QByteArray format :
             {"yuv420p", "yuvj420p", "yuv422p", "yuvj422p", "yuv444p", "yuvj444p", "gray",
              "yuv420p10le", "yuv422p10le", "yuv444p10le"}) {
            const FrameHandle picture(av_frame_alloc());
            picture->format = av_get_pix_fmt(format);
            picture->width = 63;
            picture->height = height;
            picture->colorspace = AVColorSpace(space);
            picture->color_range = fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_UNSPECIFIED;
            QVERIFY(av_frame_get_buffer(picture.get(), 0) >= 0);
            const AVPixFmtDescriptor &about = *av_pix_fmt_desc_get(AVPixelFormat(picture->format));
            for (int plane = 0; plane < about.nb_components; ++plane) {
                const int rows = AV_CEIL_RSHIFT(height, plane > 0 ? about.log2_chroma_h : 0);
                const int bytes = rows * picture->linesize[plane];
                if (about.comp[0].depth == 8)
                    std::fill_n(picture->data[plane], bytes, uint8_t(yuv[plane]));
                else
                    std::fill_n(reinterpret_cast<uint16_t *>(picture->data[plane]), bytes / 2,
                                uint16_t(yuv[plane] << 2));
            }
            std::vector<QRgb> shown(63 * size_t(height));
            QVERIFY(
                PictureConverter().convert(*picture, reinterpret_cast<uint8_t *>(shown.data())));

            const double redShare = standard == 601 ? 0.299 : standard == 709 ? 0.2126 : 0.2627;
            const double blueShare = standard == 601 ? 0.114 : standard == 709 ? 0.0722 : 0.0593;
            const bool full = fullRange || format.startsWith("yuvj");
            const double chroma = format == "gray" ? 0 : full ? 2 : 2 * 255 / 224.0;
            const double y = full ? yuv[0] : (yuv[0] - 16) * 255 / 219.0;
            const double red = y + (1 - redShare) * chroma * (yuv[2] - 128);
            const double blue = y + (1 - blueShare) * chroma * (yuv[1] - 128);
            const double green =
                (y - redShare * red - blueShare * blue) / (1 - redShare - blueShare);
            const QColor found = QColor::fromRgba(shown.front());
            const QByteArray text = format + ' ' + found.name().toLatin1();
            QVERIFY2(qAbs(found.red() - red) < 4, text);
            QVERIFY2(qAbs(found.green() - green) < 4, text);
            QVERIFY2(qAbs(found.blue() - blue) < 4, text);
            QCOMPARE(found.alpha(), 255);
            QCOMPARE(std::count(shown.begin(), shown.end(), shown.front()), 63 * height);
        }
    }

    void fittedSizes()
    {
        QCOMPARE(fittedSize({2048, 1536}).width, 2048);
        QCOMPARE(fittedSize({2048, 1537}).width, 2047);
        QCOMPARE(fittedSize({1, 4'000'000}).height, 3'145'728);
        QCOMPARE(fittedSize({INT_MAX, INT_MAX}).width, 1773);
        QCOMPARE(fittedSize({0, 100}).width, 0);
    }

    void sizeChangesInMidStream()
    {
        StreamPlayer player;
        QVERIFY(player.play(stallScript(Clips::quarters(QSize(320, 180), 400)
                                            .then(Clips::quarters(QSize(640, 360), 400))
                                            .then(Clips::quarters(QSize(176, 144), 400))),
                            "/flv/archive"));
        QTRY_COMPARE_WITH_TIMEOUT(player.size(), QSize(176, 144), deadline);
        QTRY_COMPARE_WITH_TIMEOUT(Clips::faultInQuarters(player.picture()), QString(), deadline);
        QByteArray lines;
        for (const PlayerLine &line : player.lines()) {
            if (!line.text.startsWith("time ") && !lines.endsWith(line.text))
                lines += ", " + line.text;
        }
        QCOMPARE(lines, QByteArray(", state 1, state 2, state 3, size 320 180, frame, "
                                   "size 640 360, frame, size 176 144, frame"));
    }

    /// Of a stream that stops after its first key frame that picture is shown.
    void soundDoesNotHoldUpThePicture()
    {
        StreamPlayer player;
        // The encoders put the first picture at 26 ms or before.
        QVERIFY(player.play(stallScript(Clips::withTone(400, "aac"_s), 45)));
        QTRY_COMPARE_WITH_TIMEOUT(player.frames(), 1, 8000);
        QCOMPARE(Clips::faultInQuarters(player.picture()), QString());
    }

    /// For longer than a stream may stall, too.
    void pauseFreezesAndStopsReading()
    {
        const FlvClip heavy = Clips::made("-f lavfi -i nullsrc=s=640x360:r=25,"
                                          "geq=random(1)*255:128:128 -t 1 -c:v libx264 "
                                          "-preset ultrafast -qp 6 -g 5 -tune zerolatency "
                                          "-pix_fmt yuv420p"_s);
        QVERIFY(heavy.bytes().size() > 3'000'000);
        StreamPlayer player;
        QVERIFY(player.play(StreamScript::of(heavy.repeated(60))));
        QVERIFY(player.shows(5));
        player.send("pause");
        const qint64 pausedAt = player.elapsed();
        qint64 taken = -1;
        QTRY_VERIFY_WITH_TIMEOUT(
            (QTest::qWait(1000), taken == std::exchange(taken, player.server.takenBytes())),
            deadline);
        const int frames = player.frames();
        const QByteArray picture = player.frameFile();
        const auto lines = player.lines().size();
        QTRY_VERIFY_WITH_TIMEOUT(player.elapsed() > pausedAt + 12'000, deadline);
        QCOMPARE(player.server.takenBytes(), taken);
        QCOMPARE(player.lines().size(), lines);
        QVERIFY(player.frameFile() == picture);

        player.send("unpause");
        QVERIFY(player.shows(frames + 10));
        QTRY_VERIFY_WITH_TIMEOUT(player.server.takenBytes() > taken + heavy.bytes().size(),
                                 deadline);
        QVERIFY(!player.states().contains(4) && !player.states().contains(7));
    }

    /// Other commands are no pings.
    void noPing()
    {
        StreamPlayer player;
        QVERIFY(player.play(StreamScript::of(clip.repeated(30))));
        player.stopPinging();
        QTRY_VERIFY_WITH_TIMEOUT(player.elapsed() > 8000, deadline);
        player.send("unpause");
        QVERIFY(player.ends());
        QVERIFY(player.elapsed() >= 10'000 && player.elapsed() < 18'000);
        QCOMPARE(player.exitCode(), 0);
        QCOMPARE(player.states().indexOf(7), player.states().size() - 1);
    }

    void crashes_data()
    {
        rows<int, int>({"signal", "thread"}, {{"no stack for pictures", SIGSEGV, 0},
                                              {"no stack for commands", SIGSEGV, 1},
                                              {"no stack for the stream", SIGSEGV, 2},
                                              {"no stack for sound", SIGSEGV, 3},
                                              {"under nohup", SIGHUP, nobody}});
        for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGTERM,
                                 SIGHUP, SIGINT, SIGQUIT, SIGXCPU, SIGUSR1, SIGIO, SIGRTMAX})
            QTest::newRow(::strsignal(signal)) << signal << anyThread;
        QTest::newRow("a window that changes its size") << SIGWINCH << nobody;
    }

    /// The tile hears of it at once; and the system would rather end the tile than the window.
    void crashes()
    {
        const auto [signal, thread] = row<int, int>();
        StreamPlayer player;
        for (const char *options : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
            player.setEnvironment(options, ownSignals);
        const auto before =
            ::signal(signal, thread == nobody && signal == SIGHUP ? SIG_IGN : SIG_DFL);
        const bool plays = player.play(StreamScript::of(clip.repeated(30)));
        ::signal(signal, before);
        QVERIFY(plays && player.shows(3));
        const QString process = "/proc/%1/"_s.arg(player.pid());
        QFile score(process + "oom_score_adj");
        QVERIFY(score.open(QIODevice::ReadOnly));
        QCOMPARE(score.readAll().toInt(), 500);
        const auto folders = QDir::Dirs | QDir::NoDotAndDotDot;
        const QStringList threads = QDir(process + "task").entryList(folders, QDir::Unsorted);
        if (thread < 0)
            QCOMPARE(::kill(pid_t(player.pid()), signal), 0);
        else if (!crashWithoutStack(threads.value(thread).toInt())) // listed as they began
            QSKIP("threads of others can't be changed here");
        QVERIFY(thread == nobody ? player.shows(player.frames() + 10) : player.ends());
        QCOMPARE(player.lines().last().text == "state 7", thread != nobody);
        QCOMPARE(player.exitCode(), thread == nobody ? -1 : 128 + signal);
    }

    void closedInput()
    {
        for (const int frames : {0, 10}) {
            StreamPlayer player;
            QVERIFY(player.play(stallScript(clip, frames * 100)));
            QTRY_COMPARE_WITH_TIMEOUT(player.server.heads().size(), 1, deadline);
            QVERIFY(player.shows(frames));
            player.closeInput();
            QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), 9000); // a ping lacks after ten
            QCOMPARE(player.exitCode(), 0);
        }
    }

    void sound_data()
    {
        rows<QString, int, double>({"codec", "volume", "share"},
                                   {{"MP3", "libmp3lame", 1000, 1.0}, {"AAC", "aac", 50, 0.5}});
    }

    /// The audio library writes what would be heard into a file.
    void sound()
    {
        const auto [codec, volume, share] = row<QString, int, double>();
        constexpr double tonePeak = 32767.0 / 8; // of ffmpeg's "sine"
        constexpr int bytesPerSecond = 4 * 44'100;
        QFile file("sound.raw"_s);
        file.remove();
        StreamPlayer player;
        player.setEnvironment("SDL_AUDIODRIVER", "disk");
        player.setEnvironment("SDL_DISKAUDIOFILE", QFileInfo(file).absoluteFilePath().toUtf8());
        QVERIFY(player.play(StreamScript::of(Clips::withTone(8000, codec))));
        player.send("volume 0");
        QVERIFY(player.shows(25));
        QVERIFY(!file.exists());
        player.send("volume " + QByteArray::number(volume));
        QTRY_VERIFY_WITH_TIMEOUT(file.size() > 2 * bytesPerSecond, deadline);
        player.send("volume 0");
        QVERIFY(player.shows(player.frames() + 15));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY(player.ends());
        QCOMPARE(player.exitCode(), 0);
        QCOMPARE(file.size(), bytes.size());

        // Of stereo: the peak, and how often the left channel rises through zero in a second.
        const auto *samples = reinterpret_cast<const qint16 *>(bytes.constData());
        int peak = 0;
        QList<int> rises;
        for (int i = 2; i < bytes.size() / 2; i += 2) {
            peak = qMax(peak, qAbs(int(samples[i])));
            if (samples[i - 2] < 0 && samples[i] >= 0)
                rises << i / 2;
        }
        QVERIFY2(qAbs(peak - tonePeak * share) < tonePeak * 0.2, QByteArray::number(peak));
        const double pitch = (rises.size() - 1) * 44'100.0 / (rises.last() - rises.first());
        QVERIFY2(pitch > 300 && pitch < 480, QByteArray::number(pitch));
    }

    void proxy_data()
    {
        rows<QByteArray, QByteArray, QByteArray>(
            {"user", "password", "given"},
            {{"open", "", "", ""},
             {"no user", "", "secret", "secret"},
             {"any characters", "dom\\an na@x", "a:/@%41 \"?#\\&=", "a:/@%41 \"?#\\&="},
             {"wrong password", "anna", "secret", "wrong"}});
    }

    void proxy()
    {
        const auto [user, password, given] = row<QByteArray, QByteArray, QByteArray>();
        StreamPlayer player;
        QVERIFY(player.server.start(StreamScript::of(clip)));
        if (!password.isEmpty())
            player.server.requireProxyAuthorization(user, password);
        QList<QByteArray> more = {":http-proxy=http://" + (user.isEmpty() ? "" : user + "@") +
                                  player.server.url("/").mid(7)};
        if (!given.isEmpty())
            more.append(":http-proxy-pwd=" + given);
        player.setEnvironment("no_proxy", "*");
        QVERIFY(player.start("http://streams.zorvane.example:8080/flv/live?q=1", more));
        QVERIFY(player.ends());
        QCOMPARE(player.frames() > 3, given == password);
        QCOMPARE(player.exitCode(), given == password ? 0 : 1);
        const QByteArray head = player.server.heads().last();
        QVERIFY2(head.startsWith("GET http://streams.zorvane.example:8080/flv/live?q=1 HTTP/1.1\r"),
                 head.constData());
        QCOMPARE(head.contains("Proxy-Authorization: Basic " + (user + ":" + given).toBase64()),
                 !given.isEmpty());
    }

    /// Whom nobody vouches for is not even asked for the stream.
    void unknownServer()
    {
        const TlsIdentity identity("stranger"_s);
        MisbehavingServer stranger;
        QVERIFY(identity.isValid() && stranger.start(&identity));
        StreamPlayer player;
        QVERIFY(player.start(stranger.origin() + "/flv/live") && player.ends());
        QCOMPARE(player.states(), (QList<int>{1, 7}));
        QVERIFY(stranger.requests().isEmpty());
    }

    /// A camera of the local network gets no proxy argument, so it goes direct; and the client
    /// escapes nothing.
    void direct()
    {
        StreamPlayer player;
        QVERIFY(player.server.start(StreamScript::of(clip)));
        player.setEnvironment("http_proxy",
                              "http://127.0.0.1:" + QByteArray::number(StreamServer::deadPort()));
        QVERIFY(player.start(player.server.url("/flv/live?server=a b\r\nX: y&x=%41+")));
        QVERIFY(player.shows(3));
        QVERIFY(player.server.heads().first().startsWith(
            "GET /flv/live?server=a%20b%0D%0AX:%20y&x=%41+ HTTP/1.1\r\n"));
    }

private:
    FlvClip clip;
};

QTEST_GUILESS_MAIN(CompanionPlayerTest)
#include "CompanionPlayerTest.moc"
