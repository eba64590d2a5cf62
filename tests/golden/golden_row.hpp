// One line of a golden file and the verdict on a call's outcome.
#ifndef ORVANTH_TESTS_GOLDEN_ROW_HPP
#define ORVANTH_TESTS_GOLDEN_ROW_HPP

#include <string>
#include <vector>

namespace orvanth::golden {

struct Row {
    std::string place;  // file:line
    std::string name;
    std::vector<std::string> arguments;
    bool throws = false;
    std::string result;  // a number, [numbers], `any`, or the exception class
    std::string errnoAfter;
    std::string text;
    std::string tolerance;
};

// What a call left behind.
struct Outcome {
    std::string exceptionClass;  // empty: returned
    std::string text;
    std::vector<double> values;  // the result, or what the out-pointers got
    int errnoAfter = 0;
    bool outputsUntouched = true;  // of a call that threw
};

// What an out-pointer's target holds before the call.
inline constexpr double kOutputBefore = -12345.0;

std::vector<Row> ReadRows(const std::string& path);
double ParseDouble(const std::string& text);
std::vector<double> ParseArray(const std::string& text);

// Empty if the outcome is what the row wants, otherwise what was wrong and what would be right.
// relativeError gets the largest relative difference of the row's values.
std::string Judge(const Row& row, const Outcome& outcome, int errnoBefore, double& relativeError);

}  // namespace orvanth::golden

#endif
