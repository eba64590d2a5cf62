// Random words for a call. The name of a parameter says what it is; some parameters then follow each other.
#include <algorithm>
#include <cmath>
#include <string>

#include "fuzz/call.hpp"
#include "fuzz/random_values.hpp"

namespace orvanth::fuzz {
namespace {

constexpr std::int32_t kFlags[] = {0, 1, 0, 1, 0, 1, 256, -1, 2, 255, 257, INT32_MIN, 0x10000};

bool IsOneOf(const std::string& name, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(), [&](const char* one) { return name == one; });
}

double Point(Random& random, const std::string& exportName) {
    if (exportName.find("Beta") != std::string::npos) return Probability(random);
    if (exportName.starts_with("Kolmogorov")) return random.Chance(80) ? random.PowerOfTen(-6, 0) : random.Unit();
    if (exportName == "LogXplus1") return random.Sign() * Probability(random);
    switch (random.Whole(0, 5)) {
        case 0:
            return random.Sign() * random.PowerOfTen(-300, 300);
        case 1:
            return random.Sign() * random.PowerOfTen(-3, 1.5);
        case 2:
            return random.Between(-7, 7);
        case 3:
            return random.PowerOfTen(-20, 3);
        default:
            return random.PowerOfTen(-4, 4);
    }
}

double RandomDouble(Random& random, const std::string& exportName, const std::string& name) {
    if (name == "x" && exportName.starts_with("Hypergeometric")) return Count(random);
    if (name == "x") return Point(random, exportName);
    if (IsOneOf(name, {"p", "q", "alpha", "probability"}))
        return (exportName == "InverseErf" ? random.Sign() : 1) * Probability(random);
    if (name == "z") return Probability(random) * random.Whole(1, 2);
    if (IsOneOf(name, {"k", "n", "r", "N", "trials", "successes"})) return Count(random);
    if (name == "mean") return random.Chance(50) ? 0 : AnyDouble(random);
    if (name == "odds")
        return random.Chance(70)   ? random.PowerOfTen(-3, 3)
               : random.Chance(30) ? 1 + random.Sign() * random.PowerOfTen(-16.5, -6)
                                   : random.PowerOfTen(-300, 300);
    if (name == "accuracy") return random.Of({1e-8, 1e-8, 1e-12, 0.0, 1e-3, 0.1, 1e-15, 1.0});
    if (name == "tolerance") return random.Of({1e-7, 1e-10, 0.0, -1.0, std::nan(""), kInfinite, 1.0, 1e300});
    return Positive(random);  // shapes, scales, degrees of freedom
}

std::int32_t RandomInt(Random& random, const std::string& exportName, const std::string& name) {
    if (name == "k")
        return random.Chance(95)   ? random.Whole(1, 12)
               : random.Chance(80) ? random.Whole(1, 100)
                                   : random.Whole(-3, 1000);
    if (IsOneOf(name, {"tail", "complement", "roundUp", "upper", "transpose"})) return random.Of(kFlags);
    if (name == "boundSelector") return random.Chance(90) ? random.Whole(0, 1) : AnyInt(random);
    if (IsOneOf(name, {"count", "rows"}))
        return random.Chance(8) ? random.Whole(-3, -1) : random.Whole(0, random.Chance(90) ? 40 : 9000);
    if (name == "columns") return random.Chance(90) ? random.Whole(-1, 6) : random.Whole(0, 30);
    if (name == "seed") return AnyInt(random);
    if (exportName.starts_with("FNC")) return static_cast<int>(random.PowerOfTen(0, random.Chance(70) ? 3 : 9.33));
    return AnyInt(random);
}

// Access to the words by the names of the parameters.
class Words {
public:
    Words(const Export& which, Call& call) : export_(which), call_(call) {}
    bool Has(std::string_view name) const { return export_.Find(name) >= 0; }
    double D(std::string_view name) const { return AsDouble(Word(name)); }
    int I(std::string_view name) const { return AsInt(Word(name)); }
    void Set(std::string_view name, double value) { Word(name) = AsWord(value); }
    void Set(std::string_view name, int value) { Word(name) = AsWord(std::int32_t{value}); }

private:
    std::uint64_t& Word(std::string_view name) const {
        return call_.words.at(static_cast<std::size_t>(export_.Find(name)));
    }
    const Export& export_;
    Call& call_;
};

double Part(Random& random) { return random.Chance(80) ? random.Unit() : Probability(random); }

void FitHypergeometric(Random& random, Words& words) {
    const double top = random.Chance(50) ? 2.5 : random.Chance(60) ? 5.2 : 9.63;
    const double N = std::floor(random.PowerOfTen(0, top));
    const double r = std::min(N, std::floor((N + 0.99) * Part(random)));
    const double n = std::min(N, std::floor((N + 0.99) * Part(random)));
    words.Set("N", N);
    words.Set("r", r);
    words.Set("n", n);
    if (!words.Has("x")) return;
    const double low = std::max(0.0, n + r - N), high = std::min(n, r);
    const double mode = std::floor((r + 1) * (n + 1) / (N + 2));
    double x = random.Chance(50) ? std::floor(low + (high - low) * Probability(random))
                                 : mode + std::floor(random.Between(-5, 5) * std::sqrt(N));
    if (random.Chance(85)) x = std::clamp(x, low, high);
    words.Set("x", x);
}

void FitNoncentral(Random& random, Words& words) {
    const int N = words.I("N");
    const int n = static_cast<int>(N * Part(random)), m = static_cast<int>(N * Part(random));
    words.Set("n", n);
    words.Set("m", m);
    if (!words.Has("x")) return;
    const double low = std::max(0.0, static_cast<double>(n) + m - N), high = std::min(n, m);
    words.Set("x", random.Chance(90) ? static_cast<int>(random.Between(low, high)) : AnyInt(random));
}

void FitTogether(Random& random, const Export& which, Call& call) {
    Words words(which, call);
    const std::string name = which.name;
    if (name.starts_with("Hypergeometric")) {
        if (random.Chance(85)) FitHypergeometric(random, words);
    } else if (name.starts_with("FNC")) {
        if (random.Chance(85) && words.I("N") >= 0) FitNoncentral(random, words);
    } else if (name == "BinomialPDF" || name == "BinomialCDF") {
        if (random.Chance(80)) words.Set("k", std::floor(words.D("n") * Probability(random)));
    } else if (name == "BinomialPS") {
        if (random.Chance(80)) words.Set("successes", std::floor(words.D("trials") * Probability(random)));
    } else if (name == "KolmogorovCDF") {
        if (!random.Chance(70)) return;
        const double n = std::floor(random.PowerOfTen(0, random.Chance(50) ? 3 : 9.33));
        words.Set("n", n);
        words.Set("x", std::sqrt(random.PowerOfTen(-3, 2.7) / n));
    } else if (words.Has("x") && words.Has("a") && which.parameters[0].type == "double") {
        // The incomplete gamma function changes its method about x = a.
        if (random.Chance(30) && name.find("Beta") == std::string::npos)
            words.Set("x", words.D("a") * random.Between(0.95, 1.05));
    }
}

}  // namespace

Call RandomCall(const Export& which, std::uint64_t seed) {
    Random random(seed);
    Call call;
    const bool wild = random.Chance(25);
    for (const Parameter& parameter : which.parameters) {
        if (parameter.type == "double")
            call.words.push_back(AsWord(
                random.Chance(wild ? 50 : 6) ? AnyDouble(random) : RandomDouble(random, which.name, parameter.name)));
        else if (parameter.type == "int32_t" || parameter.type == "TailFlag") {
            // A wild count of values would need gigabytes.
            const bool bounded = IsOneOf(parameter.name, {"count", "rows", "columns", "k"});
            call.words.push_back(AsWord(wild && !bounded && random.Chance(50)
                                            ? AnyInt(random)
                                            : RandomInt(random, which.name, parameter.name)));
        } else
            call.words.push_back(random.Next());
    }
    call.words.push_back(random.Next());
    if (!wild) FitTogether(random, which, call);
    call.errnoBefore = random.Of({0, 0, 7, 34, 33, 4242});
    return call;
}

}  // namespace orvanth::fuzz
