// The calls of the driver under libFuzzer, which looks for inputs that reach new branches. FAMILY in the environment
// names the exports: the beginnings of their names, separated by commas.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/call.hpp"
#include "fuzz/random_values.hpp"

namespace {

using namespace orvanth::fuzz;

const std::vector<const Export*>& Family() {
    static const std::vector<const Export*> family = [] {
        std::vector<const Export*> found;
        const char* names = std::getenv("FAMILY");
        std::istringstream list(names != nullptr ? names : "");
        for (std::string name; std::getline(list, name, ',');)
            for (const Export& one : Exports())
                if (one.run != nullptr && std::string(one.name).starts_with(name)) found.push_back(&one);
        if (found.empty()) {
            std::fprintf(stderr, "name the exports in FAMILY, for example FAMILY=Binomial\n");
            std::exit(2);
        }
        return found;
    }();
    return family;
}

class Bytes {
public:
    Bytes(const unsigned char* data, std::size_t size) : data_(data), left_(size) {}

    template <class Value>
    Value Take() {
        Value value{};
        const std::size_t count = left_ < sizeof value ? left_ : sizeof value;
        std::memcpy(&value, data_, count);
        data_ += count;
        left_ -= count;
        return value;
    }
    double Double() {
        const auto how = Take<std::uint8_t>();
        switch (how % 4) {
            case 0:
                return Take<double>();
            case 1:
                return Take<std::uint32_t>();
            case 2:
                return Take<std::uint32_t>() * 0x1p-32;
            default:
                return kSpecialValues[how / 4 % std::size(kSpecialValues)] + Take<std::int8_t>();
        }
    }
    std::int32_t Int() {
        switch (Take<std::uint8_t>() % 4) {
            case 0:
                return Take<std::int32_t>();
            case 1:
                return Take<std::int16_t>();
            default:
                return Take<std::uint8_t>();
        }
    }

private:
    const unsigned char* data_;
    std::size_t left_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Bytes bytes(data, size);
    const Export& which = *Family()[bytes.Take<std::uint8_t>() % Family().size()];
    Call call;
    call.errnoBefore = 7;
    for (const Parameter& parameter : which.parameters) {
        if (parameter.type == "double")
            call.words.push_back(AsWord(bytes.Double()));
        else if (parameter.name == "k")
            call.words.push_back(AsWord(bytes.Int() % 8));  // the time grows with the number of groups
        else if (std::string_view(which.name).starts_with("FNC") && parameter.type == "int32_t")
            call.words.push_back(AsWord(bytes.Int() % 1000000));  // a call of the largest counts takes a minute
        else if (parameter.type == "int32_t" || parameter.type == "TailFlag")
            call.words.push_back(AsWord(bytes.Int()));
        else
            call.words.push_back(bytes.Take<std::uint64_t>());
    }
    call.words.push_back(0);
    const Outcome outcome = Make(which, call);
    if (const std::string fault = Judge(which, call, outcome); !fault.empty()) {
        std::fprintf(stderr, "VIOLATION %s: %s\n    %s\n    %s\n", fault.c_str(), Describe(which, call).c_str(),
                     RepeatLine(which, call).c_str(), Describe(outcome).c_str());
        std::abort();
    }
    return 0;
}
