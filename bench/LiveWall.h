// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QRect>

#include <optional>

#include "API/Types.h"
#include "demo/client/DemoService.h"

namespace ZorvaneClient {
namespace GUI::Player {
class VideoWidget;
}

namespace Bench {

/// Clean pictures are easy to decode; noisy ones are as hard as a camera's.
enum class Pictures { Clean, Noisy };

/// What the parts of a wall have taken of the processor so far.
struct WallCpu {
    double clientMs = 0;
    double playersMs = 0;
    double displayMs = 0; ///< of the display's server, 0 if it can't be told

    double sum() const { return clientMs + playersMs + displayMs; }
    /// What was taken since `before`, as a mean over `parts`.
    WallCpu since(const WallCpu &before, double parts) const;
};

/// Live tiles of the client in a window over the whole display, with the demo service and the
/// real players. The application lives in this process.
class LiveWall
{
public:
    static constexpr int mostTiles = 36;
    static constexpr int framesPerSecond = 25;
    static constexpr int recordedSeconds = 9;

    ~LiveWall();

    /// Starts the service and signs in to it. False, with a line on standard error, if that fails.
    bool start(Pictures pictures);

    /// Opens `side` by `side` cameras in an API::StreamQuality, or in that of the rule.
    /// Milliseconds until each has shown a picture; nothing if that takes too long.
    std::optional<qint64> open(int side, std::optional<int> quality);
    void close();

    API::CameraPtr camera(int cell) const { return cameras.at(cell); }
    QList<GUI::Player::VideoWidget *> tiles() const;
    /// Where each tile's picture stands on the display.
    QList<QRect> pictures() const;
    WallCpu cpu() const;
    double pssMebibytes() const;

    /// `recordedSeconds` of the first camera's live stream.
    QByteArray record(int quality) const;

private:
    QList<qint64> players() const;

    ZorvaneDemo::DemoService service;
    QList<API::CameraPtr> cameras;
};

} // namespace Bench
} // namespace ZorvaneClient
