// SPDX-License-Identifier: MIT
#include "GUI/Question.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include "GUI/IconButton.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// Puts the release of a window off until its question is over. The question has an event loop
/// of its own, in which the window would go while its functions wait for the answer.
class ReleaseDelay : public QObject
{
public:
    explicit ReleaseDelay(QMessageBox *question) : QObject(question), box(question)
    {
        box->parentWidget()->window()->installEventFilter(this);
    }

    bool eventFilter(QObject *window, QEvent *event) override
    {
        if (event->type() != QEvent::DeferredDelete)
            return QObject::eventFilter(window, event);
        // Not a second deleteLater(), which an object can ignore.
        connect(
            box, &QObject::destroyed, qApp,
            [waiting = QPointer<QObject>(window)] { delete waiting; }, Qt::QueuedConnection);
        box->reject();
        return true;
    }

private:
    QMessageBox *box;
};

} // namespace

QMessageBox::StandardButton ask(const Question &question, QWidget *asker)
{
    const QPointer<QMessageBox> box = new QMessageBox(asker);
    box->setText(question.text);
    box->setInformativeText(question.details);
    box->setStandardButtons(question.buttons);
    box->setDefaultButton(question.defaultButton);
    showTextButtons(*box);
    box->setStyleSheet(QStringLiteral("font-size: 14px;"));
    box->setWindowModality(question.modality);
    new ReleaseDelay(box);
    const int answer = box->exec();
    if (!box)
        return QMessageBox::NoButton;
    delete box;
    return static_cast<QMessageBox::StandardButton>(answer);
}

} // namespace GUI
} // namespace ZorvaneClient
