// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include "tests/demo/DemoClient.h"
#include "tests/support/DemoService.h"

namespace ZorvaneClient {
namespace Tests {

/// What tests of the demo service share: a running one, reset before each test, and a client
/// that has signed in.
class DemoTest : public QObject
{
    Q_OBJECT

protected:
    explicit DemoTest(const DemoService::Options &serviceOptions = DemoService::Options());

    /// Cameras 1 to 4 in the cloud and 5 to 7 at a LAN server, with all rights.
    static DemoService::Options plainWorld();

    DemoService service;
    DemoClient client;
    QString session;

private slots:
    void initTestCase();
    void init();

private:
    const DemoService::Options world;
};

} // namespace Tests
} // namespace ZorvaneClient
