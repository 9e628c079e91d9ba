// SPDX-License-Identifier: MIT
#include "tests/support/DialogVisitor.h"

namespace ZorvaneClient::Tests {

DialogVisitor::DialogVisitor(Handler handler) : handle(std::move(handler))
{
    qApp->installEventFilter(this);
}

bool DialogVisitor::eventFilter(QObject *object, QEvent *event)
{
    const QPointer<QDialog> dialog = qobject_cast<QDialog *>(object);
    if (!dialog || !dialog->isModal() || event->type() != QEvent::Show)
        return false;
    const auto visit = [this, dialog] {
        if (!dialog)
            return;
        ++count;
        handle(dialog);
        if (dialog && dialog->isVisible())
            dialog->reject();
    };
    QMetaObject::invokeMethod(this, visit, Qt::QueuedConnection);
    return false;
}

void clickOk(const QDialog *dialog)
{
    auto *button = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    QTest::mouseClick(button, Qt::LeftButton);
}

void clickCancel(const QDialog *dialog)
{
    auto *button = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Cancel);
    QTest::mouseClick(button, Qt::LeftButton);
}

} // namespace ZorvaneClient::Tests
