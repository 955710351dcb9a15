#pragma once
// The report's table: sections of rows, each a measurement with its value,
// unit, floor and the ratio of value to floor, printed as aligned plain text.

#include <optional>
#include <string>
#include <vector>

namespace mw::bench {

struct TableRow {
    std::string measurement;
    std::optional<double> value;  // nothing: not measured here
    std::string unit;
    std::optional<double> floor;  // nothing: this row has no floor
    bool operator==(const TableRow&) const = default;
};

class Table {
  public:
    void section(std::string title);
    void row(std::string measurement, std::optional<double> value, std::string unit, std::optional<double> floor);
    std::string render() const;

  private:
    struct Line {
        std::optional<std::string> section;  // a section title, or a row
        TableRow row;
    };
    std::vector<Line> lines_;
};

// Three significant figures at most, no exponent: 0.0123, 1.23, 12.3, 123.
std::string formatFigure(double value);

// The middle value (mean of the two middle ones for an even count); nothing
// for no values.
std::optional<double> median(std::vector<double> values);

}  // namespace mw::bench
