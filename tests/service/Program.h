// SPDX-License-Identifier: MIT
#pragma once

#include "demo/client/DemoService.h"
#include "tests/service/ServiceClient.h"

namespace ZorvaneClient::Tests {

/// A program that answers the client, with a LAN server that has a camera. What a test must know
/// of it comes from here alone, so that it can be any.
class Program
{
public:
    virtual ~Program() = default;

    /// Starts it anew with what it kept; first of all, for the first time.
    virtual bool start() = 0;
    virtual App::ServiceProfile profile() const = 0;
    virtual QByteArray account() const = 0;
    virtual QString lanAddress() const = 0;
    virtual QString lanPassword() const = 0;
    virtual int lanCamera() = 0;
    /// Makes these spans, in milliseconds since the epoch, what the camera has recorded.
    virtual bool record(const QVector<QPair<qint64, qint64>> &spans) = 0;
};

class DemoProgram : public Program
{
public:
    bool start() override
    {
        const bool again = service.process()->state() != QProcess::NotRunning;
        return again ? service.restart() : service.start();
    }
    App::ServiceProfile profile() const override { return service.profile(); }
    QByteArray account() const override
    {
        return ServiceClient::account(service.email(), service.password());
    }
    QString lanAddress() const override
    {
        return "127.0.0.1:%1"_s.arg(service.lanPorts().value(0));
    }
    QString lanPassword() const override { return service.lanPassword(); }
    int lanCamera() override { return camera().camera; }
    bool record(const QVector<QPair<qint64, qint64>> &spans) override
    {
        return service.setArchive(camera(), spans);
    }

private:
    ZorvaneDemo::DemoCamera camera()
    {
        const auto all = service.cameras();
        return *std::find_if(all.begin(), all.end(), [](const auto &one) { return one.lan; });
    }

    ZorvaneDemo::DemoService service;
};

} // namespace ZorvaneClient::Tests
