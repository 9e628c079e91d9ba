// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QString>

namespace ZorvaneClient {
namespace GUI {

/// What a box asks the user, with plain buttons at its foot.
struct Question {
    QString text;
    QString details;
    QMessageBox::StandardButtons buttons = QMessageBox::Ok | QMessageBox::Cancel;
    QMessageBox::StandardButton defaultButton = QMessageBox::Ok;
    Qt::WindowModality modality = Qt::ApplicationModal;
};

/// Asks and waits for the button. NoButton if the question ends without one, as when the
/// program quits, or `asker` goes: the caller must not touch a member of it then.
/// A window that is released by deleteLater() meanwhile stays until the call is over.
QMessageBox::StandardButton ask(const Question &question, QWidget *asker);

} // namespace GUI
} // namespace ZorvaneClient
