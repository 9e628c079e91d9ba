// SPDX-License-Identifier: MIT
#include "GUI/ServiceSign.h"

#include "API/ServiceLink.h"
#include "GUI/IconPixmap.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int heightPixels = 50; // as the tabs have it

} // namespace

ServiceSign::ServiceSign(QWidget *parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("serviceSign"));
    setFixedHeight(heightPixels);
    setAlignment(Qt::AlignCenter);
    setPixmap(iconPixmap(QStringLiteral(":/mainwidget/icons/tabNoService.png")));
    setAccessibleName(tr("No connection to the service"));
    connect(&API::ServiceLink::instance(), &API::ServiceLink::changed, this,
            &ServiceSign::showLink);
    showLink();
}

void ServiceSign::showLink()
{
    const QDateTime since = API::ServiceLink::instance().silentSince();
    setVisible(since.isValid());
    setToolTip(since.isValid() ? tr("The service has not answered since %1. Cameras and layouts "
                                    "are asked for again and again, at least once a minute.")
                                     .arg(since.toString(QStringLiteral("dd/MM hh:mm:ss")))
                               : QString());
}

} // namespace GUI
} // namespace ZorvaneClient
