// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace ZorvaneClient {
namespace GUI {

/// Seen only while the service does not answer; its tool tip says since when, and what is tried.
class ServiceSign : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY(ServiceSign)

public:
    explicit ServiceSign(QWidget *parent = nullptr);

private:
    void showLink();
};

} // namespace GUI
} // namespace ZorvaneClient
