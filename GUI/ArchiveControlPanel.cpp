// SPDX-License-Identifier: MIT
#include "GUI/ArchiveControlPanel.h"

#include <QCoreApplication>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/CalendarPopup.h"
#include "GUI/IconButton.h"
#include "GUI/SharedTexts.h"
#include "GUI/StyleBackground.h"
#include "ui_ArchiveControlPanel.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// Makes the date's text a button that opens the calendar.
class DateTextFilter : public QObject
{
public:
    explicit DateTextFilter(QDateEdit *edit) : QObject(edit), dateEdit(edit) {}

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (object == dateEdit)
            return event->type() == QEvent::KeyPress && opensByKey(event);
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            pressArrow();
            return true;
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: // the text can't be selected
            return true;
        default:
            return QObject::eventFilter(object, event);
        }
    }

private:
    bool opensByKey(QEvent *event)
    {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const bool opens = key == Qt::Key_Return || key == Qt::Key_Enter;
        if (opens)
            pressArrow();
        return opens;
    }

    void pressArrow()
    {
        const QPoint arrow(dateEdit->width() - 1, dateEdit->height() - 1);
        QCoreApplication::postEvent(
            dateEdit, new QMouseEvent(QEvent::MouseButtonPress, arrow, dateEdit->mapToGlobal(arrow),
                                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    }

    QDateEdit *dateEdit;
};

} // namespace

ArchiveControlPanel::ArchiveControlPanel(QWidget *parent)
    : QWidget(parent), ui(new Ui::ArchiveControlPanel), calendar(new CalendarPopup(this))
{
    ui->setupUi(this);
    setUpDateEdit();
    ui->messageWidget->hide();
    nameDayButtons();

    connect(ui->dateEdit, &QDateEdit::dateChanged, this, &ArchiveControlPanel::dateChanged);
    connect(ui->dateEdit, &QDateEdit::dateChanged, this, &ArchiveControlPanel::nameDayButtons);
    connect(ui->zoomInButton, &QPushButton::clicked, this, &ArchiveControlPanel::zoomedIn);
    connect(ui->zoomOutButton, &QPushButton::clicked, this, &ArchiveControlPanel::zoomedOut);
    connect(ui->zoomSlider, &QSlider::valueChanged, this, &ArchiveControlPanel::zoomed);
}

ArchiveControlPanel::~ArchiveControlPanel() = default;

void ArchiveControlPanel::setUpDateEdit()
{
    ui->dateEdit->setCalendarWidget(calendar);
    // The calendar now lies in a window of the edit field, which would shine through it.
    calendar->window()->setAttribute(Qt::WA_TranslucentBackground);
    ui->dateEdit->setFrame(false);
    ui->dateEdit->setAccessibleName(SharedTexts::records());
    ui->dateEdit->setDate(App::Environment::now().date());

    auto *text = ui->dateEdit->findChild<QLineEdit *>(QStringLiteral("qt_spinbox_lineedit"));
    auto *filter = new DateTextFilter(ui->dateEdit);
    text->installEventFilter(filter);
    ui->dateEdit->installEventFilter(filter);
    text->setCursor(Qt::PointingHandCursor);
}

void ArchiveControlPanel::nameDayButtons()
{
    const QDate date = ui->dateEdit->date();
    const auto text = [this](QDate day) {
        return locale().toString(day, ui->dateEdit->displayFormat());
    };
    nameIconButton(ui->prevDayButton, text(date.addDays(-1)));
    nameIconButton(ui->nextDayButton, text(date.addDays(1)));
}

void ArchiveControlPanel::addCamera(API::CameraPtr camera)
{
    calendar->addCamera(camera);
}

void ArchiveControlPanel::setDate(QDate date)
{
    ui->dateEdit->setDate(date);
}

void ArchiveControlPanel::clear()
{
    calendar->clear();
}

void ArchiveControlPanel::clear(API::CameraPtr camera)
{
    calendar->clear(camera);
}

void ArchiveControlPanel::zoom(int level)
{
    if (ui->zoomSlider->value() != level)
        ui->zoomSlider->setValue(level);
}

void ArchiveControlPanel::showSelectFragmentMessage()
{
    ui->messageWidget->setCurrentWidget(ui->selectFragmentPage);
    ui->messageWidget->show();
}

void ArchiveControlPanel::showExportingMessage()
{
    ui->messageWidget->setCurrentWidget(ui->exportingPage);
    ui->messageWidget->show();
}

void ArchiveControlPanel::hideMessage()
{
    ui->messageWidget->hide();
}

void ArchiveControlPanel::on_prevDayButton_clicked()
{
    ui->dateEdit->setDate(ui->dateEdit->date().addDays(-1));
}

void ArchiveControlPanel::on_nextDayButton_clicked()
{
    ui->dateEdit->setDate(ui->dateEdit->date().addDays(1));
}

void ArchiveControlPanel::paintEvent(QPaintEvent *)
{
    drawStyleBackground(*this);
}

} // namespace GUI
} // namespace ZorvaneClient
