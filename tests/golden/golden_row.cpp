#include "golden/golden_row.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvanth::golden {

namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

std::string Show(double value) {
    char buffer[80];
    std::snprintf(buffer, sizeof buffer, "%.17g (%a)", value, value);
    return buffer;
}

bool SameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

// NaN and infinities match by kind and sign, everything else within the tolerance.
bool Matches(double got, double want, const std::string& tolerance, double& relativeError) {
    if (std::isnan(want) || std::isnan(got)) return std::isnan(want) && std::isnan(got);
    if (std::isinf(want) || std::isinf(got)) return got == want;
    relativeError = want == 0 ? (std::fabs(got) <= 1e-300 ? 0 : kOutputBefore * kOutputBefore)
                              : std::fabs(got - want) / std::fabs(want);
    if (tolerance == "exact") return SameBits(got, want);
    return relativeError <= ParseDouble(tolerance);
}

std::string JudgeText(const Row& row, const std::string& text) {
    const bool open = row.text.ends_with('*');
    const std::string want = open ? row.text.substr(0, row.text.size() - 1) : row.text;
    if (open ? text.starts_with(want) : text == want) return {};
    return "text is \"" + text + "\", not \"" + row.text + "\"";
}

}  // namespace

double ParseDouble(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0') throw std::runtime_error("not a number: '" + text + "'");
    return value;
}

std::vector<double> ParseArray(const std::string& text) {
    if (text.size() < 2 || text.front() != '[' || text.back() != ']')
        throw std::runtime_error("not an array [a,b,c]: '" + text + "'");
    std::vector<double> values;
    if (text.size() > 2)
        for (const std::string& part : Split(text.substr(1, text.size() - 2), ','))
            values.push_back(ParseDouble(part));
    return values;
}

std::vector<Row> ReadRows(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    const std::string name = path.substr(path.rfind('/') + 1);
    std::vector<Row> rows;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.empty() || line.front() == '#') continue;
        const std::vector<std::string> columns = Split(line, '\t');
        const std::string place = name + ":" + std::to_string(number);
        if (columns.size() != 7) throw std::runtime_error(place + ": 7 tab-separated columns are needed");
        if (columns[2] != "value" && columns[2] != "throws")
            throw std::runtime_error(place + ": outcome is 'value' or 'throws'");
        rows.push_back({place, columns[0], Split(columns[1], ' '), columns[2] == "throws", columns[3], columns[4],
                        columns[5], columns[6]});
    }
    return rows;
}

std::string Judge(const Row& row, const Outcome& outcome, int errnoBefore, double& relativeError) {
    relativeError = 0;
    const int wantErrno = row.errnoAfter == "*"   ? outcome.errnoAfter
                          : row.errnoAfter == "0" ? errnoBefore
                                                  : std::atoi(row.errnoAfter.c_str());
    std::ostringstream wrong;
    if (outcome.errnoAfter != wantErrno)
        wrong << "errno is " << outcome.errnoAfter << ", not " << wantErrno << " (it was " << errnoBefore << "); ";
    if (row.throws) {
        const std::string got = outcome.exceptionClass.empty() ? "no exception" : outcome.exceptionClass;
        if (got != row.result) {
            wrong << got << " was thrown, not " << row.result << "; text \"" << outcome.text << "\"; ";
        } else {
            wrong << JudgeText(row, outcome.text);
            if (!outcome.outputsUntouched) wrong << "an out-pointer's target was written before the throw; ";
        }
        return wrong.str();
    }
    if (!outcome.exceptionClass.empty()) {
        wrong << outcome.exceptionClass << " was thrown (\"" << outcome.text << "\"), not a value returned; ";
        return wrong.str();
    }
    if (row.result == "any") return wrong.str();
    const std::vector<double> want =
        row.result.starts_with('[') ? ParseArray(row.result) : std::vector<double>{ParseDouble(row.result)};
    if (want.size() != outcome.values.size()) {
        wrong << outcome.values.size() << " values, not " << want.size() << "; ";
        return wrong.str();
    }
    for (std::size_t i = 0; i < want.size(); ++i) {
        double error = 0;
        if (!Matches(outcome.values[i], want[i], row.tolerance, error))
            wrong << "value " << i << " is " << Show(outcome.values[i]) << ", not " << Show(want[i]) << " within "
                  << row.tolerance << " (relative difference " << error << "); ";
        relativeError = std::max(relativeError, error);
    }
    return wrong.str();
}

}  // namespace orvanth::golden
