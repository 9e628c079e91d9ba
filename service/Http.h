// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace ZorvaneService {

/// A request as it stood on the wire.
struct HttpRequest {
    static constexpr const char *lanListener = "lan"; ///< of every LAN server

    std::string listener; ///< "api", "streaming", "flv", `lanListener` or "control"
    std::string method;
    std::string path;                                         ///< undecoded, without the query
    std::string query;                                        ///< undecoded
    std::vector<std::pair<std::string, std::string>> headers; ///< names in lower case
    std::string body;
    int localPort = 0;
    std::string peer; ///< its address

    /// The query's items, percent-decoded. A plus sign stays one: stream URLs carry their
    /// values as they are.
    std::map<std::string, std::string> parameters() const;
    std::string header(const std::string &name) const;
    bool isForLanServer() const { return listener == lanListener; }
};

/// Takes bytes of a reply's body.
class BodySink
{
public:
    virtual ~BodySink() = default;
    /// Blocks while the receiver does not read. False when the connection is gone.
    virtual bool write(const void *data, std::size_t size) = 0;
    /// False when the connection is gone.
    virtual bool isOpen() = 0;
    /// The body ends before its end, and the receiver is to take it for broken.
    virtual void breakOff() = 0;
};

struct HttpReply {
    using Stream = std::function<bool(BodySink &)>;

    int status = 200;
    std::string contentType = "text/plain";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    /// When set, writes the body in place of `body`: in chunks, unless the headers tell its
    /// length. True when it came to its end, false when it broke off; the connection closes
    /// either way.
    Stream stream;
    /// The connection closes without any reply.
    bool hangUp = false;

    /// A reply without a body.
    static HttpReply refusal(int status);
    /// Bytes that are no UTF-8 are replaced.
    static HttpReply json(int status, const nlohmann::json &content);
};

bool beginsWith(const std::string &text, const std::string &beginning);
/// Percent-decoding; what is no valid escape stays as it is.
std::string percentDecoded(const std::string &text);
/// Items of "a=b&c=d". In a form a plus sign means a space.
std::map<std::string, std::string> decodedItems(const std::string &text, bool plusIsSpace);
/// Seconds or milliseconds beyond this are no times that a request can mean.
constexpr std::int64_t largestTime = 100'000'000'000'000;
/// The number that `text` is from begin to end, else `fallback`.
std::int64_t numberOr(const std::string &text, std::int64_t fallback);

} // namespace ZorvaneService
