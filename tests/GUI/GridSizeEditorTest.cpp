// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/GridSizeEditor.h"

using namespace ZorvaneClient::GUI;

namespace {

QColor cellColor(GridSizeEditor &editor, int row, int column)
{
    return editor.grab().toImage().pixelColor(10 + 14 * column + 6, 10 + 12 * row + 5);
}

} // namespace

class GridSizeEditorTest : public QObject
{
    Q_OBJECT

private slots:
    void sizeUnderMouse_data()
    {
        rows<QPoint, QSize>(
            {"position", "columnsByRows"},
            {
                {"first pixel", QPoint(10, 10), QSize(1, 1)},
                {"last pixel", QPoint(93, 81), QSize(6, 6)},
                {"right of it", QPoint(94, 81), QSize(0, 0)},
                {"below it", QPoint(93, 82), QSize(0, 0)},
                {"beyond both", QPoint(94, 82), QSize(0, 0)},
                {"left of it", QPoint(9, 40), QSize(0, 0)},
                {"above it: no rows", QPoint(40, 9), QSize(3, 0)},
                {"last pixel of the first column's step", QPoint(23, 10), QSize(1, 1)},
                {"first pixel of the second", QPoint(24, 10), QSize(2, 1)},
                {"second row", QPoint(10, 22), QSize(1, 2)},
            });
    }

    void sizeUnderMouse()
    {
        const auto [position, columnsByRows] = row<QPoint, QSize>();
        const GridSize size = GridSizeEditor::sizeAt(position, QSize(104, 92));
        QCOMPARE(size.columns, columnsByRows.width());
        QCOMPARE(size.rows, columnsByRows.height());
    }

    void pressInMatrixSelects()
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

    void pressInMarginCloses()
    {
        QPointer<GridSizeEditor> editor = new GridSizeEditor;
        QSignalSpy selected(editor.data(), &GridSizeEditor::sizeSelected);
        editor->show();
        QTest::mouseMove(editor, QPoint(5, 5));
        QTest::mousePress(editor, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QTRY_VERIFY(!editor);
        QCOMPARE(selected.count(), 0);
    }

    void paintsHoveredAndCurrentCells()
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
};

QTEST_MAIN(GridSizeEditorTest)
#include "GridSizeEditorTest.moc"
