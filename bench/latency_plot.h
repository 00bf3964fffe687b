#ifndef VORN_BENCH_LATENCY_PLOT_H
#define VORN_BENCH_LATENCY_PLOT_H

#include <string>
#include <vector>

namespace VornBench {
// One run's latency distribution: its 0th to 100th percentiles, in ms.
struct PlotCurve {
    std::string label;
    std::vector<double> percentiles;
};

// The runs made under one condition, drawn in one panel.
struct PlotPanel {
    std::string title;
    double markMs = 0; // a dashed line here (the path's RTT), none when 0
    std::vector<PlotCurve> curves;
};

// Latency distributions as cumulative curves (share of requests answered within a time) on a log
// time axis, one panel per condition side by side, all on the same axes so that panels compare
// at a glance; a label keeps its colour in every panel. Plain SVG, written by hand.
class LatencyPlot {
public:
    LatencyPlot(std::string title, std::vector<PlotPanel> panels);

    std::string Svg() const;
    // False when the file cannot be written.
    bool Write(const std::string &path) const;

private:
    struct Range {
        double lowExponent;
        double highExponent;
    };

    Range TimeRange() const;
    std::vector<std::string> Labels() const;
    void DrawPanel(std::string &svg, const PlotPanel &panel, double left, const Range &range) const;
    void DrawLegend(std::string &svg) const;

    std::string title_;
    std::vector<PlotPanel> panels_;
};
} // namespace VornBench

#endif // VORN_BENCH_LATENCY_PLOT_H
