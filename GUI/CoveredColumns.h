// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QVector>

#include <vector>

#include "GUI/TimeAxis.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

class RecordTimes;

/// The pixel columns of a strip on which some record lies. What is drawn of them is bounded
/// by the strip's width, however many records there are.
class CoveredColumns
{
public:
    explicit CoveredColumns(const TimeAxis &axis);

    void add(const RecordTimes &times);
    /// One rectangle for each run of columns, from `top` to above `bottom`.
    QVector<QRect> bars(int top, int bottom) const;

private:
    /// Of the records with these reaches, the first that isn't over left of the axis.
    size_t firstVisible(const std::vector<qint64> &reaches) const;

    const TimeAxis axis;
    std::vector<qint64> columnEnds; ///< first moment right of each column of the axis
    std::vector<char> covered;
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
