#include "latency_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <utility>

namespace VornBench {
namespace {
constexpr double PANEL_WIDTH = 340;
constexpr double PANEL_GAP = 56; // room for the next panel's percent labels
constexpr double PLOT_HEIGHT = 260;
constexpr double MARGIN_LEFT = 62;
constexpr double MARGIN_RIGHT = 20;
constexpr double MARGIN_TOP = 100; // title, legend, then panel titles
constexpr double LEGEND_TOP = 44;
constexpr double MARGIN_BOTTOM = 52; // tick labels and the axis title
constexpr double LEGEND_ROW = 18;
constexpr double LOWEST_MS = 0.01;
constexpr int PERCENT_STEP = 25;
constexpr int HUNDRED = 100;
// Colour-blind safe (Okabe and Ito), in order of first appearance.
const char *const COLOURS[] = {"#0072B2", "#E69F00", "#009E73", "#CC79A7", "#D55E00", "#56B4E9", "#000000"};

std::string Number(double value)
{
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%.1f", value);
    return buffer;
}

std::string Escaped(const std::string &text)
{
    std::string out;
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string Text(double x, double y, const std::string &text, const char *anchor = "middle", int size = 12)
{
    return "<text x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" text-anchor=\"" + anchor + "\" font-size=\"" +
        std::to_string(size) + "\">" + Escaped(text) + "</text>\n";
}

std::string Line(double x1, double y1, double x2, double y2, const std::string &style)
{
    return "<line x1=\"" + Number(x1) + "\" y1=\"" + Number(y1) + "\" x2=\"" + Number(x2) + "\" y2=\"" + Number(y2) +
        "\" " + style + "/>\n";
}

// "0.01", "0.1", "1", "10", "100", "1000": a tick label for 10^exponent ms.
std::string TickLabel(int exponent)
{
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%.*f", exponent < 0 ? -exponent : 0, std::pow(10.0, exponent));
    return buffer;
}
} // namespace

LatencyPlot::LatencyPlot(std::string title, std::vector<PlotPanel> panels)
    : title_(std::move(title)), panels_(std::move(panels))
{
}

LatencyPlot::Range LatencyPlot::TimeRange() const
{
    double low = 0;
    double high = 0;
    for (const PlotPanel &panel : panels_) {
        for (const PlotCurve &curve : panel.curves) {
            for (double value : curve.percentiles) {
                value = std::max(value, LOWEST_MS);
                low = low == 0 ? value : std::min(low, value);
                high = std::max(high, value);
            }
        }
    }
    if (high == 0) {
        return {0, 1};
    }
    Range range {std::floor(std::log10(low)), std::ceil(std::log10(high))};
    range.highExponent = std::max(range.highExponent, range.lowExponent + 1);
    return range;
}

std::vector<std::string> LatencyPlot::Labels() const
{
    std::vector<std::string> labels;
    for (const PlotPanel &panel : panels_) {
        for (const PlotCurve &curve : panel.curves) {
            if (std::find(labels.begin(), labels.end(), curve.label) == labels.end()) {
                labels.push_back(curve.label);
            }
        }
    }
    return labels;
}

void LatencyPlot::DrawLegend(std::string &svg) const
{
    const std::vector<std::string> labels = Labels();
    constexpr double swatch = 22;
    constexpr double columnWidth = 300;
    for (size_t i = 0; i < labels.size(); ++i) {
        const double x = MARGIN_LEFT + static_cast<double>(i % 2) * columnWidth;
        const double y = LEGEND_TOP + static_cast<double>(i / 2) * LEGEND_ROW;
        const char *colour = COLOURS[i % std::size(COLOURS)];
        svg += Line(x, y - 4, x + swatch, y - 4, std::string("stroke=\"") + colour + "\" stroke-width=\"2.5\"");
        svg += Text(x + swatch + 6, y, labels[i], "start");
    }
}

void LatencyPlot::DrawPanel(std::string &svg, const PlotPanel &panel, double left, const Range &range) const
{
    const double top = MARGIN_TOP;
    const double bottom = top + PLOT_HEIGHT;
    const double right = left + PANEL_WIDTH;
    auto xOf = [&](double ms) {
        const double exponent = std::log10(std::max(ms, LOWEST_MS));
        return left + (exponent - range.lowExponent) / (range.highExponent - range.lowExponent) * PANEL_WIDTH;
    };
    auto yOf = [&](double percent) { return bottom - percent / HUNDRED * PLOT_HEIGHT; };
    const std::string grid = "stroke=\"#dddddd\" stroke-width=\"1\"";

    svg += Text((left + right) / 2, top - 10, panel.title, "middle", 14);
    for (int percent = 0; percent <= HUNDRED; percent += PERCENT_STEP) {
        svg += Line(left, yOf(percent), right, yOf(percent), grid);
        svg += Text(left - 6, yOf(percent) + 4, std::to_string(percent) + " %", "end", 11);
    }
    for (int exponent = static_cast<int>(range.lowExponent); exponent <= static_cast<int>(range.highExponent);
         ++exponent) {
        const double decade = std::pow(10.0, exponent);
        svg += Line(xOf(decade), top, xOf(decade), bottom, "stroke=\"#bbbbbb\" stroke-width=\"1\"");
        svg += Text(xOf(decade), bottom + 16, TickLabel(exponent), "middle", 11);
        for (double minor : {2.0, 5.0}) {
            if (exponent < static_cast<int>(range.highExponent)) {
                svg += Line(xOf(minor * decade), top, xOf(minor * decade), bottom, grid);
            }
        }
    }
    if (panel.markMs > 0) {
        svg += Line(xOf(panel.markMs), top, xOf(panel.markMs), bottom,
            "stroke=\"#666666\" stroke-width=\"1.2\" stroke-dasharray=\"5,4\"");
        svg += Text(xOf(panel.markMs) + 4, top + 12, "1 RTT", "start", 10);
    }
    svg += "<rect x=\"" + Number(left) + "\" y=\"" + Number(top) + "\" width=\"" + Number(PANEL_WIDTH) +
        "\" height=\"" + Number(PLOT_HEIGHT) + "\" fill=\"none\" stroke=\"#333333\"/>\n";
    svg += Text((left + right) / 2, bottom + 36, "latency (ms, log scale)");

    const std::vector<std::string> labels = Labels();
    for (const PlotCurve &curve : panel.curves) {
        const size_t index = static_cast<size_t>(std::find(labels.begin(), labels.end(), curve.label) - labels.begin());
        const double step =
            curve.percentiles.size() > 1 ? HUNDRED / static_cast<double>(curve.percentiles.size() - 1) : 0;
        std::string points;
        for (size_t i = 0; i < curve.percentiles.size(); ++i) {
            points += Number(xOf(curve.percentiles[i])) + "," + Number(yOf(step * static_cast<double>(i))) + " ";
        }
        svg += std::string("<polyline fill=\"none\" stroke=\"") + COLOURS[index % std::size(COLOURS)] +
            "\" stroke-width=\"2\" stroke-linejoin=\"round\" points=\"" + points + "\"/>\n";
    }
}

std::string LatencyPlot::Svg() const
{
    const double width =
        MARGIN_LEFT + static_cast<double>(panels_.size()) * (PANEL_WIDTH + PANEL_GAP) - PANEL_GAP + MARGIN_RIGHT;
    const double height = MARGIN_TOP + PLOT_HEIGHT + MARGIN_BOTTOM;
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + Number(width) + "\" height=\"" +
        Number(height) + "\" viewBox=\"0 0 " + Number(width) + " " + Number(height) +
        "\" font-family=\"DejaVu Sans, Helvetica, Arial, sans-serif\">\n";
    svg += "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    svg += Text(MARGIN_LEFT, 20, title_, "start", 14);
    DrawLegend(svg);
    const double middle = MARGIN_TOP + PLOT_HEIGHT / 2;
    svg += "<text x=\"14\" y=\"" + Number(middle) +
        "\" text-anchor=\"middle\" font-size=\"12\" transform=\"rotate(-90 14 " + Number(middle) +
        ")\">requests answered within</text>\n";
    const Range range = TimeRange();
    for (size_t i = 0; i < panels_.size(); ++i) {
        DrawPanel(svg, panels_[i], MARGIN_LEFT + static_cast<double>(i) * (PANEL_WIDTH + PANEL_GAP), range);
    }
    svg += "</svg>\n";
    return svg;
}

bool LatencyPlot::Write(const std::string &path) const
{
    std::ofstream out(path);
    out << Svg();
    return static_cast<bool>(out);
}
} // namespace VornBench
