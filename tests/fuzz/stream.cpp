// SPDX-License-Identifier: MIT
// The player's whole way from the network to the picture, with a server of its own on the
// loopback that answers with the bytes.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "companion/PictureConverter.h"
#include "companion/PictureDecoder.h"
#include "companion/StreamReader.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::Companion;

namespace {

constexpr size_t frameBytes = 12'582'912;
constexpr size_t queueBytes = size_t(16) * 1024 * 1024;
constexpr auto queueSpan = std::chrono::hours(1);
constexpr auto patience = std::chrono::milliseconds(1000);

int listener()
{
    static const int fd = [] {
        const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::bind(made, reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0 ||
            ::listen(made, 1) != 0)
            std::abort();
        return made;
    }();
    return fd;
}

std::string url()
{
    sockaddr_in address = {};
    socklen_t length = sizeof(address);
    ::getsockname(listener(), reinterpret_cast<sockaddr *>(&address), &length);
    return "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/flv/archive";
}

void answer(const uint8_t *data, size_t size)
{
    const int fd = ::accept(listener(), nullptr, nullptr);
    char head[4096];
    const std::string start = "HTTP/1.0 200 OK\r\n\r\n";
    if (::recv(fd, head, sizeof(head), 0) > 0) {
        ::send(fd, start.data(), start.size(), MSG_NOSIGNAL | MSG_MORE);
        ::send(fd, data, size, MSG_NOSIGNAL);
    }
    ::close(fd);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static std::string frame(frameBytes, '\0');
    av_log_set_level(AV_LOG_QUIET);
    Arguments arguments;
    arguments.url = url();
    std::thread server(answer, data, size);
    const Controls controls;
    const PacketQueue::Limits limits{queueBytes, queueSpan, PacketQueue::Overflow::DropToKey};
    PacketQueue video(limits);
    PacketQueue audio(limits);
    StreamReader(arguments, controls, video, audio).run();
    server.join();

    PictureDecoder decoder;
    PictureConverter converter;
    const auto convertAll = [&] {
        while (const AVFrame *picture = decoder.receive())
            converter.convert(*picture, reinterpret_cast<uint8_t *>(frame.data()));
    };
    QueuedPacket item;
    while (video.pop(item, patience) == PacketQueue::Taken::Packet) {
        decoder.send(item);
        convertAll();
    }
    decoder.sendEnd();
    convertAll();
    return 0;
}
