#include "bench/report/table.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace mw::bench {

void Table::section(std::string title) {
    lines_.push_back({std::move(title), {}});
}

void Table::row(std::string measurement, std::optional<double> value, std::string unit, std::optional<double> floor) {
    lines_.push_back({std::nullopt, {std::move(measurement), value, std::move(unit), floor}});
}

std::string formatFigure(double value) {
    const double magnitude = std::fabs(value);
    int decimals = 0;
    if (magnitude == 0 || magnitude >= 100)
        decimals = 0;
    else if (magnitude >= 10)
        decimals = 1;
    else if (magnitude >= 1)
        decimals = 2;
    else
        decimals = std::min(6, 2 - static_cast<int>(std::floor(std::log10(magnitude))));
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::optional<double> median(std::vector<double> values) {
    if (values.empty()) return std::nullopt;
    std::sort(values.begin(), values.end());
    const std::size_t mid = values.size() / 2;
    return values.size() % 2 == 1 ? values[mid] : (values[mid - 1] + values[mid]) / 2;
}

namespace {

struct Cells {
    std::string measurement, value, unit, floor, ratio;
};

Cells cellsOf(const TableRow& row) {
    Cells c{row.measurement, row.value ? formatFigure(*row.value) : "n/a", row.unit,
            row.floor ? formatFigure(*row.floor) : "", ""};
    if (row.value && row.floor && *row.floor > 0) c.ratio = formatFigure(*row.value / *row.floor) + "x";
    return c;
}

std::string padded(const std::string& text, std::size_t width, bool right) {
    const std::size_t gap = width > text.size() ? width - text.size() : 0;
    return right ? std::string(gap, ' ') + text : text + std::string(gap, ' ');
}

}  // namespace

std::string Table::render() const {
    Cells width{"measurement", "value", "unit", "floor", "ratio"};
    std::vector<std::size_t> w{width.measurement.size(), width.value.size(), width.unit.size(), width.floor.size(),
                               width.ratio.size()};
    for (const auto& line : lines_) {
        if (line.section) continue;
        const auto c = cellsOf(line.row);
        w[0] = std::max(w[0], c.measurement.size());
        w[1] = std::max(w[1], c.value.size());
        w[2] = std::max(w[2], c.unit.size());
        w[3] = std::max(w[3], c.floor.size());
        w[4] = std::max(w[4], c.ratio.size());
    }
    auto format = [&](const Cells& c) {
        std::string text = padded(c.measurement, w[0], false) + "  " + padded(c.value, w[1], true) + "  " +
                           padded(c.unit, w[2], false) + "  " + padded(c.floor, w[3], true) + "  " +
                           padded(c.ratio, w[4], true);
        while (!text.empty() && text.back() == ' ') text.pop_back();
        return text + "\n";
    };
    std::string out = format(width);
    out += std::string(w[0] + w[1] + w[2] + w[3] + w[4] + 8, '-') + "\n";
    for (const auto& line : lines_) out += line.section ? "# " + *line.section + "\n" : format(cellsOf(line.row));
    return out;
}

}  // namespace mw::bench
