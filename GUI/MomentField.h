// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QWidget>

class QLineEdit;

namespace ZorvaneClient {
namespace GUI {

/// A field in which the user writes a moment of the past to go to. Closes and deletes itself when
/// one is chosen, by Esc, and when something else is clicked; a text that is no moment of the
/// past turns red and stays.
class MomentField : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(MomentField)

public:
    /// Begins with the text of `shown`; a time without a date is taken for one of its day.
    explicit MomentField(const QDateTime &shown, QWidget *parent);

    /// Over `area` of the screen, from its left edge and in its height, as wide as need be.
    void showOver(const QRect &area);

signals:
    void chosen(QDateTime moment);

private:
    void choose();

    QLineEdit *edit;
    QDate day;
};

} // namespace GUI
} // namespace ZorvaneClient
