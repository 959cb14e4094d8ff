#pragma once
// Charts fit for a report: curves over a grey grid, with numbers that leave each other room, titles outside
// and a legend.

#include <string>
#include <vector>

#include "kalvo/image/kxgenericroi.h"
#include "common/paper.h"

namespace App {

struct Curve {
    std::string name;  // in the legend; none if empty
    Zelkor::RGBColor color;
    std::vector<double> values;  // at 0, 1, 2, ...
};

struct Chart {
    std::string across;   // what is counted from left to right
    std::string upwards;  // what the values are
    std::vector<Curve> curves;
    bool isFilled = false;  // below the curves
};

// Draws a chart on white paper. A box that has no room for curves stays white.
void DrawChart(const Paper& paper, const Zelkor::Kalvo::GenericRoiExtent& box, const Chart& chart);

}  // namespace App
