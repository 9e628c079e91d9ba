// SPDX-License-Identifier: MIT
#include "GUI/SharedTexts.h"

#include <QCoreApplication>

namespace ZorvaneClient {
namespace GUI {
namespace SharedTexts {

QString options()
{
    return QCoreApplication::translate("VideoWidget", "Options");
}

QString close()
{
    return QCoreApplication::translate("VideoWidget", "Close");
}

QString records()
{
    return QCoreApplication::translate("ControlPanel", "Records");
}

QString sound()
{
    return QCoreApplication::translate("CameraSettingsDialog", "Sound");
}

QString cameras()
{
    return QCoreApplication::translate("ToolBar", "Cameras");
}

QString layouts()
{
    return QCoreApplication::translate("ToolBar", "Layouts");
}

} // namespace SharedTexts
} // namespace GUI
} // namespace ZorvaneClient
