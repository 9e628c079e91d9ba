// SPDX-License-Identifier: MIT
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

#include "GUI/GridSizeEditor.h"

using namespace ZorvaneClient::GUI;

class GridSizeEditorTest : public QObject
{
    Q_OBJECT

private slots:
    void sizeUnderMouse_data();
    void sizeUnderMouse();
    void pressInMatrixSelects();
    void pressInMarginCloses();
    void paintsHoveredAndCurrentCells();
};

namespace {

QColor cellColor(GridSizeEditor &editor, int row, int column)
{
    return editor.grab().toImage().pixelColor(10 + 14 * column + 6, 10 + 12 * row + 5);
}

} // namespace

void GridSizeEditorTest::sizeUnderMouse_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QSize>("columnsByRows");
    QTest::newRow("first pixel") << QPoint(10, 10) << QSize(1, 1);
    QTest::newRow("last pixel") << QPoint(93, 81) << QSize(6, 6);
    QTest::newRow("right of it") << QPoint(94, 81) << QSize(0, 0);
    QTest::newRow("below it") << QPoint(93, 82) << QSize(0, 0);
    QTest::newRow("beyond both") << QPoint(94, 82) << QSize(0, 0);
    QTest::newRow("left of it") << QPoint(9, 40) << QSize(0, 0);
    QTest::newRow("above it: no rows") << QPoint(40, 9) << QSize(3, 0);
    QTest::newRow("last pixel of the first column's step") << QPoint(23, 10) << QSize(1, 1);
    QTest::newRow("first pixel of the second") << QPoint(24, 10) << QSize(2, 1);
    QTest::newRow("second row") << QPoint(10, 22) << QSize(1, 2);
}

void GridSizeEditorTest::sizeUnderMouse()
{
    QFETCH(QPoint, position);
    QFETCH(QSize, columnsByRows);
    const GridSize size = GridSizeEditor::sizeAt(position, QSize(104, 92));
    QCOMPARE(size.columns, columnsByRows.width());
    QCOMPARE(size.rows, columnsByRows.height());
}

void GridSizeEditorTest::pressInMatrixSelects()
{
    GridSizeEditor *editor = new GridSizeEditor;
    QSignalSpy selected(editor, &GridSizeEditor::sizeSelected);
    editor->setCurrentSize(3, 2);
    editor->show();
    QCOMPARE(editor->size(), QSize(104, 92));
    QTest::mouseMove(editor, QPoint(24, 34));
    QTest::mousePress(editor, Qt::LeftButton, Qt::NoModifier, QPoint(24, 34));
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.first().at(0).toInt(), 3);
    QCOMPARE(selected.first().at(1).toInt(), 2);
    editor->close();
}

void GridSizeEditorTest::pressInMarginCloses()
{
    QPointer<GridSizeEditor> editor = new GridSizeEditor;
    QSignalSpy selected(editor.data(), &GridSizeEditor::sizeSelected);
    editor->show();
    QTest::mouseMove(editor, QPoint(5, 5));
    QTest::mousePress(editor, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QTRY_VERIFY(!editor);
    QCOMPARE(selected.count(), 0);
}

void GridSizeEditorTest::paintsHoveredAndCurrentCells()
{
    GridSizeEditor *editor = new GridSizeEditor;
    editor->setCurrentSize(3, 3);
    editor->show();
    QTest::mouseMove(editor, QPoint(12, 12 + 12));
    QCOMPARE(cellColor(*editor, 1, 0), QColor(62, 183, 253));
    QCOMPARE(cellColor(*editor, 2, 2), QColor(129, 134, 144));
    QCOMPARE(cellColor(*editor, 5, 5), QColor(52, 55, 60));
    editor->close();
}

QTEST_MAIN(GridSizeEditorTest)
#include "GridSizeEditorTest.moc"
