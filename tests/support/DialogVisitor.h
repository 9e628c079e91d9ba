// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// While it lives, hands each modal dialog that opens to a handler, inside the dialog's own
/// event loop. A dialog that the handler leaves open is rejected.
class DialogVisitor : public QObject
{
public:
    using Handler = std::function<void(QDialog *)>;

    explicit DialogVisitor(Handler handler);

    int visits() const { return count; }

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    Handler handle;
    int count = 0;
};

/// Clicks the standard button of a dialog with one of that name.
void clickOk(const QDialog *dialog);
void clickCancel(const QDialog *dialog);

} // namespace ZorvaneClient::Tests
