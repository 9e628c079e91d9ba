// SPDX-License-Identifier: MIT
// layout-saver
// Saves one list of layouts after the other to the cache file, without a pause, until it is
// killed. Prints a line after the first.
#include "tests/support/Test.h"

#include <cstdio>

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "App/Settings.h"
#include "tests/e2e/SavedLayouts.h"

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QCoreApplication::setApplicationName("Zorvane Client"_s);
    App::settings().setValue("auth/email"_s, QString::fromLatin1(saverEmail()));
    QList<API::LayoutPtr> variants[savedVariants];
    for (int variant = 0; variant < savedVariants; ++variant)
        variants[variant] = savedLayouts(variant);

    API::CloudAPIClient client;
    for (int count = 0;; ++count) {
        for (const API::LayoutPtr &layout : variants[count % savedVariants])
            client.addLayout(layout);
        client.saveLayoutsToFile();
        if (count == 0) {
            std::puts("saving");
            std::fflush(stdout);
        }
    }
}
