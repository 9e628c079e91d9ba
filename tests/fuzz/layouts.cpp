// SPDX-License-Identifier: MIT
#include "API/CloudData.h"
#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "tests/fuzz/Roster.h"

using namespace ZorvaneClient;
using API::Internal::cloudData;

/// The layouts of the account's file, as a new start of the program has them, by their identifier.
static QVariantMap layoutsOfStart()
{
    cloudData.layouts.clear();
    cloudData.layoutsLastUpdate = 0;
    cloudData.lastLayoutsUpdate = QDateTime::currentDateTime(); // so that no service is asked
    API::CloudAPIClient().updateLayouts();
    QVariantMap layouts;
    for (const API::LayoutPtr &layout : cloudData.layouts)
        layouts.insert(layout->id(), layout->toVariantMap());
    return layouts;
}

/// What is read, saved and read again is the same.
void tryInput(const QByteArray &input)
{
    takeUsualRoster();
    writeFile(API::Internal::layoutsCacheFile(QString()), input);
    const QVariantMap layouts = layoutsOfStart();
    API::CloudAPIClient().saveLayoutsToFile();
    check(layoutsOfStart() == layouts);
}
