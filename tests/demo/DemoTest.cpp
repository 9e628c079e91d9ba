// SPDX-License-Identifier: MIT
#include "tests/demo/DemoTest.h"

#include <QtTest>

namespace ZorvaneClient {
namespace Tests {

DemoTest::DemoTest(const DemoService::Options &serviceOptions)
    : client(service), world(serviceOptions)
{
}

DemoService::Options DemoTest::plainWorld()
{
    DemoService::Options result;
    result.servers = 2;
    result.cameras = 4;
    result.plain = true;
    return result;
}

void DemoTest::initTestCase()
{
    QVERIFY2(service.start(world), qPrintable(service.errorString()));
}

void DemoTest::init()
{
    QVERIFY(service.reset());
    session = client.session();
    QVERIFY(!session.isEmpty());
}

} // namespace Tests
} // namespace ZorvaneClient
