// Rows of a tab-separated table with '#' comments.
#ifndef ORVANTH_TESTS_SUPPORT_TABLE_HPP
#define ORVANTH_TESTS_SUPPORT_TABLE_HPP

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvanth::test {

// `name` is below tests/data.
inline std::vector<std::vector<std::string>> ReadTable(const std::string& name) {
    std::ifstream file(std::string(ORVANTH_TEST_DATA) + "/" + name);
    if (!file) throw std::runtime_error("cannot read tests/data/" + name);
    std::vector<std::vector<std::string>> rows;
    std::string line;
    while (std::getline(file, line)) {
        if (line.empty() || line.front() == '#') continue;
        std::istringstream cells(line);
        rows.emplace_back();
        for (std::string cell; std::getline(cells, cell, '\t');) rows.back().push_back(cell);
    }
    return rows;
}

}  // namespace orvanth::test

#endif
