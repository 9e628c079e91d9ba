// SPDX-License-Identifier: MIT
#include "GUI/KeyMap.h"

#include <QCoreApplication>
#include <QKeySequence>

#include <algorithm>
#include <chrono>

#include "GUI/GridRules.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

using namespace std::chrono_literals;

constexpr int milliseconds(std::chrono::milliseconds duration)
{
    return static_cast<int>(duration.count());
}

constexpr int shortSeek = milliseconds(10s);
constexpr int longSeek = milliseconds(1min);
constexpr int anyNumber = 0;
/// More keys than these on a line are told by the first and the last.
constexpr int mostKeysOfLine = 4;

/// Letters of the Russian layout, and what is printed on the same keys in Latin.
const QString cyrillicKeys = QStringLiteral("ЙЦУКЕНГШЩЗФЫВАПРОЛДЯЧСМИТЬ");
const QString latinKeys = QStringLiteral("QWERTYUIOPASDFGHJKLZXCVBNM");

const char *const seekText =
    QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Ten seconds back and on in the archive");
const char *const longSeekText =
    QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "A minute back and on in the archive");
const char *const fullscreenText =
    QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Fullscreen and back");
const char *const speedText =
    QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Archive faster and slower");
const char *const stepLayoutText =
    QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Previous and next layout");
const char *const openLayoutText =
    QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Saved layouts, in the order of their list");
const char *const moveText =
    QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Make a neighbouring camera active");

QVector<KeyRow> makeRows()
{
    const auto none = Qt::NoModifier;
    const auto shift = Qt::ShiftModifier;
    const auto control = Qt::ControlModifier;
    const auto toward = [](Direction direction) { return static_cast<int>(direction); };
    QVector<KeyRow> rows{
        {Qt::Key_Space, none, KeyAction::Pause, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Pause and play")},
        {Qt::Key_F, none, KeyAction::Fullscreen, anyNumber, fullscreenText},
        {Qt::Key_F11, none, KeyAction::Fullscreen, anyNumber, fullscreenText},
        {Qt::Key_Enter, none, KeyAction::Maximise, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "One camera alone, and all again")},
        {Qt::Key_Return, none, KeyAction::Maximise, anyNumber, nullptr},
        {Qt::Key_Escape, none, KeyAction::Back, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard",
                           "Back: all cameras, then out of fullscreen")},
        {Qt::Key_0, none, KeyAction::ResetZoom, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Whole pictures again")},
        {Qt::Key_N, none, KeyAction::Names, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Names on the pictures")},
        {Qt::Key_Left, none, KeyAction::Seek, -shortSeek, seekText},
        {Qt::Key_Right, none, KeyAction::Seek, shortSeek, seekText},
        {Qt::Key_Left, shift, KeyAction::Seek, -longSeek, longSeekText},
        {Qt::Key_Right, shift, KeyAction::Seek, longSeek, longSeekText},
        {Qt::Key_Plus, none, KeyAction::Speed, 1, speedText},
        // Where plus lies above the equals sign.
        {Qt::Key_Plus, shift, KeyAction::Speed, 1, nullptr},
        {Qt::Key_Equal, none, KeyAction::Speed, 1, nullptr},
        {Qt::Key_Minus, none, KeyAction::Speed, -1, speedText},
        {Qt::Key_L, none, KeyAction::Live, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Live")},
        {Qt::Key_R, none, KeyAction::Records, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Show and hide the records")},
        {Qt::Key_S, none, KeyAction::Snapshot, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Snapshot of the active camera")},
        {Qt::Key_M, none, KeyAction::Sound, anyNumber,
         QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Sound on and off")},
        {Qt::Key_Left, control, KeyAction::MoveToTile, toward(Direction::Left), moveText},
        {Qt::Key_Right, control, KeyAction::MoveToTile, toward(Direction::Right), moveText},
        {Qt::Key_Up, control, KeyAction::MoveToTile, toward(Direction::Up), moveText},
        {Qt::Key_Down, control, KeyAction::MoveToTile, toward(Direction::Down), moveText},
        {Qt::Key_PageUp, none, KeyAction::StepLayout, -1, stepLayoutText},
        {Qt::Key_PageDown, none, KeyAction::StepLayout, 1, stepLayoutText}};
    for (int digit = Qt::Key_1; digit <= Qt::Key_9; ++digit) {
        rows.append({static_cast<Qt::Key>(digit), control, KeyAction::OpenLayout, digit - Qt::Key_1,
                     openLayoutText});
    }
    rows.append({Qt::Key_T, none, KeyAction::Tour, anyNumber,
                 QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Saved layouts in turn")});
    rows.append({Qt::Key_F, control, KeyAction::Search, anyNumber,
                 QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "Search")});
    rows.append({Qt::Key_F1, none, KeyAction::Help, anyNumber,
                 QT_TRANSLATE_NOOP("ZorvaneClient::GUI::KeyCard", "This card")});
    return rows;
}

int latinKey(int key)
{
    constexpr int lastLetter = 0xffff;
    const int place = key > lastLetter ? -1 : cyrillicKeys.indexOf(QChar(key));
    return place < 0 ? key : latinKeys.at(place).unicode();
}

QString nameOf(const KeyRow &row)
{
    switch (row.key) {
    case Qt::Key_Left:
        return QStringLiteral("←");
    case Qt::Key_Right:
        return QStringLiteral("→");
    case Qt::Key_Up:
        return QStringLiteral("↑");
    case Qt::Key_Down:
        return QStringLiteral("↓");
    default:
        return QKeySequence(row.key).toString(QKeySequence::NativeText);
    }
}

QString prefixOf(const KeyRow &row)
{
    if (row.modifiers == Qt::ControlModifier)
        return QStringLiteral("Ctrl+");
    return row.modifiers == Qt::ShiftModifier ? QStringLiteral("Shift+") : QString();
}

} // namespace

const QVector<KeyRow> &keyMap()
{
    static const QVector<KeyRow> rows = makeRows();
    return rows;
}

const KeyRow *keyRow(int key, Qt::KeyboardModifiers modifiers)
{
    const int wanted = latinKey(key);
    const Qt::KeyboardModifiers held =
        modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const QVector<KeyRow> &rows = keyMap();
    const auto row = std::find_if(rows.cbegin(), rows.cend(), [=](const KeyRow &candidate) {
        return candidate.key == wanted && candidate.modifiers == held;
    });
    return row == rows.cend() ? nullptr : &*row;
}

QVector<KeyLine> keyLines()
{
    QVector<KeyLine> lines;
    QStringList names;
    const QVector<KeyRow> &rows = keyMap();
    for (int place = 0; place < rows.size(); ++place) {
        const KeyRow &row = rows.at(place);
        if (!row.text)
            continue;
        if (lines.isEmpty() || lines.last().text != row.text) {
            names.clear();
            lines.append({QString(), row.text});
        }
        names.append(nameOf(row));
        const QString shown = names.size() > mostKeysOfLine
                                  ? names.first() + QStringLiteral(" … ") + names.last()
                                  : names.join(QLatin1Char(' '));
        lines.last().keys = prefixOf(row) + shown;
    }
    return lines;
}

} // namespace GUI
} // namespace ZorvaneClient
