// SPDX-License-Identifier: MIT
#include "tests/GUI/DialogVisitor.h"

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

namespace {

void clickStandardButton(const QDialog *dialog, QDialogButtonBox::StandardButton which)
{
    QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(which), Qt::LeftButton);
}

} // namespace

DialogVisitor::DialogVisitor(Handler handler) : handle(std::move(handler))
{
    qApp->installEventFilter(this);
}

DialogVisitor::~DialogVisitor() = default;

int DialogVisitor::visits() const
{
    return count;
}

bool DialogVisitor::eventFilter(QObject *object, QEvent *event)
{
    auto *dialog = qobject_cast<QDialog *>(object);
    if (dialog && dialog->isModal() && event->type() == QEvent::Show) {
        QMetaObject::invokeMethod(
            this, [this, guard = QPointer<QDialog>(dialog)] { visit(guard); },
            Qt::QueuedConnection);
    }
    return false;
}

void DialogVisitor::visit(QDialog *dialog)
{
    if (!dialog)
        return;
    ++count;
    const QPointer<QDialog> guard(dialog);
    handle(dialog);
    if (guard && guard->isVisible())
        guard->reject();
}

void clickOk(const QDialog *dialog)
{
    clickStandardButton(dialog, QDialogButtonBox::Ok);
}

void clickCancel(const QDialog *dialog)
{
    clickStandardButton(dialog, QDialogButtonBox::Cancel);
}

} // namespace ZorvaneClient::Tests
