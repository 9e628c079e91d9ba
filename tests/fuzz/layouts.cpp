// SPDX-License-Identifier: MIT
#include "API/CloudData.h"
#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "tests/fuzz/Roster.h"

using namespace ZorvaneClient::API;

/// The layouts of the account's file, as a new start of the program has them, by their identifier.
static QVariantMap layoutsOfStart()
{
    Internal::cloudData.layouts.clear();
    Internal::cloudData.layoutsLastUpdate = 0;
    // So that no service is asked.
    Internal::cloudData.lastLayoutsUpdate = QDateTime::currentDateTime();
    CloudAPIClient().updateLayouts();
    QVariantMap layouts;
    for (const LayoutPtr &layout : Internal::cloudData.layouts)
        layouts.insert(layout->id(), layout->toVariantMap());
    return layouts;
}

/// What is read, saved and read again is the same.
void tryInput(const QByteArray &input)
{
    takeUsualRoster();
    writeFile(Internal::layoutsCacheFile(QString()), input);
    const QVariantMap layouts = layoutsOfStart();
    CloudAPIClient().saveLayoutsToFile();
    check(layoutsOfStart() == layouts);
}
