// SPDX-License-Identifier: MIT
#include "service/HttpExchange.h"

#include <algorithm>
#include <cctype>

#include "service/Connection.h"

namespace ZorvaneService {

namespace {

class Sink : public BodySink
{
public:
    explicit Sink(httplib::DataSink &target) : sink(target) {}

    bool write(const void *data, std::size_t size) override
    {
        return sink.write(static_cast<const char *>(data), size);
    }

    bool isOpen() override { return sink.is_writable(); }
    void breakOff() override { Connection::current()->breakOff(); }

private:
    httplib::DataSink &sink;
};

} // namespace

HttpRequest wireRequest(const std::string &listener, const httplib::Request &from)
{
    HttpRequest request;
    request.listener = listener;
    request.method = from.method;
    const std::size_t question = std::min(from.target.find('?'), from.target.size());
    request.path = from.target.substr(0, question);
    if (question < from.target.size())
        request.query = from.target.substr(question + 1);
    for (const auto &[key, value] : from.headers) {
        std::string name = key;
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) {
            return static_cast<char>(std::tolower(letter));
        });
        // The library's own additions were not on the wire.
        if (name != "remote_addr" && name != "remote_port" && name != "local_addr" &&
            name != "local_port")
            request.headers.emplace_back(name, value);
    }
    request.body = from.body;
    request.localPort = from.local_port;
    request.peer = from.remote_addr;
    return request;
}

void give(const HttpReply &reply, httplib::Response *to)
{
    if (reply.hangUp)
        Connection::current()->hangUp();
    to->status = reply.status;
    for (const auto &[key, value] : reply.headers)
        to->set_header(key, value);
    if (!reply.stream) {
        to->set_content(reply.body, reply.contentType);
        return;
    }
    to->set_header("Connection", "close");
    const auto provide = [stream = reply.stream](std::size_t, httplib::DataSink &target) {
        Sink sink(target);
        if (stream(sink))
            target.done();
        Connection::current()->hangUp();
        return false;
    };
    if (to->has_header("Content-Length"))
        to->set_content_provider(reply.contentType, provide);
    else
        to->set_chunked_content_provider(reply.contentType, provide);
}

} // namespace ZorvaneService
