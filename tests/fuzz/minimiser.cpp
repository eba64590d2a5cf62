// Runs of the minimiser: one or two at a time, on functions good and bad, with bounds good and bad.
#include <cerrno>
#include <cmath>
#include <memory>
#include <vector>

#include "fuzz/call.hpp"
#include "fuzz/random_values.hpp"
#include "orvanth/core_math.h"

namespace orvanth::fuzz {
namespace {

constexpr double kOutside = -1.2345678901234567e+99;  // stands in front of and behind every array

std::uint64_t Hash(std::uint64_t hash, double value) { return (hash ^ AsWord(value)) * 1099511628211u; }

// An array with one element more at each end.
class Guarded {
public:
    explicit Guarded(std::size_t size) : values_(size + 2, kOutside) {}
    double* Data() { return values_.data() + 1; }
    double& operator[](std::size_t i) { return values_[i + 1]; }
    bool Stands() const { return values_.front() == kOutside && values_.back() == kOutside; }

private:
    std::vector<double> values_;
};

class Run {
public:
    explicit Run(Random& random)
        : random_(random),
          n_(random.Chance(5) ? random.Whole(-2, 0) : random.Whole(1, random.Chance(90) ? 6 : 60)),
          size_(n_ > 0 ? static_cast<std::size_t>(n_) : 0),
          kind_(random.Whole(0, 8)),
          lower_(size_),
          upper_(size_),
          x_(size_),
          gradient_(size_),
          bounds_(size_) {
        const int m = random.Chance(5)   ? random.Whole(-2, 0)
                      : random.Chance(2) ? (random.Chance(50) ? 14000 : INT32_MAX)
                                         : random.Whole(1, 9);
        const bool wild = random.Chance(20);
        for (std::size_t i = 0; i < size_; ++i) {
            lower_[i] = wild ? AnyDouble(random) : random.Between(-3, 1);
            upper_[i] = wild ? AnyDouble(random) : lower_[i] + (random.Chance(10) ? 0 : random.Between(0, 3));
            bounds_[i] = random.Chance(2) ? AnyInt(random) : random.Whole(0, 3);
            x_[i] = wild ? AnyDouble(random) : random.Between(-3, 3);
            gradient_[i] = AnyDouble(random);
        }
        const double factr = random.Chance(90) ? random.PowerOfTen(0, 12) : AnyDouble(random);
        const double pgtol = random.Chance(80) ? random.PowerOfTen(-12, -2) : AnyDouble(random);
        value_ = AnyDouble(random);
        const Entered entered;
        state_ = LBFGSBStart(n_, m, lower_.Data(), upper_.Data(), bounds_.data(), factr, pgtol);
    }
    ~Run() { LBFGSBEnd(state_); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void Step(Outcome& outcome) {
        if (done_) return;
        const int code = Next();
        outcome.result = static_cast<std::uint64_t>(code);
        for (std::size_t i = 0; i < size_; ++i) outcome.written = Hash(outcome.written, x_[i]);
        outcome.written = Hash(outcome.written, value_);
        if (n_ < 0 && state_ != nullptr) outcome.violation = "a state for a negative n";
        if (code < 1 || code > 5 || (state_ == nullptr && code != 5))
            outcome.violation = "a code that is not documented";
        if (!lower_.Stands() || !upper_.Stands() || !x_.Stands() || !gradient_.Stands())
            outcome.violation = "written beyond an array";
        if (code == 1)
            Evaluate();
        else if (code >= 3)
            done_ = random_.Chance(90);  // steps after the end are allowed
    }

private:
    int Next() {
        const Entered entered;
        return LBFGSBStep(state_, x_.Data(), &value_, gradient_.Data());
    }
    void Evaluate() {
        const int kept = errno;
        double f = 0;
        for (std::size_t i = 0; i < size_; ++i) {
            const double x = x_[i];
            switch (kind_) {
                case 0:
                    f += (x - 1) * (x - 1);
                    gradient_[i] = 2 * (x - 1);
                    break;
                case 1: {  // Rosenbrock
                    const double next = i + 1 < size_ ? x_[i + 1] : 1, before = i > 0 ? x_[i - 1] : 0;
                    f += 100 * (next - x * x) * (next - x * x) + (1 - x) * (1 - x);
                    gradient_[i] =
                        -400 * (next - x * x) * x - 2 * (1 - x) + (i > 0 ? 200 * (x - before * before) : 0);
                    break;
                }
                case 2:
                    f -= x;
                    gradient_[i] = -1;
                    break;  // without a minimum
                case 3:
                    f = 3;
                    gradient_[i] = 0;
                    break;
                case 4:
                    f += std::sin(5 * x) + x * x;
                    gradient_[i] = -5 * std::cos(5 * x);
                    break;  // a wrong gradient
                case 5:
                    f = random_.Chance(20) ? std::nan("") : f + x * x;
                    gradient_[i] = 2 * x;
                    break;
                case 6:
                    f += AnyDouble(random_);
                    gradient_[i] = AnyDouble(random_);
                    break;
                case 7:
                    f += x * x;
                    gradient_[i] = random_.Chance(10) ? std::nan("") : 2 * x;
                    break;
                default:
                    f += std::exp(50 * x) - x;
                    gradient_[i] = 50 * std::exp(50 * x) - 1;
            }
        }
        value_ = f;
        errno = kept;
    }

    Random& random_;
    int n_;
    std::size_t size_;
    int kind_;
    Guarded lower_, upper_, x_, gradient_;
    std::vector<std::int32_t> bounds_;
    double value_ = 0;
    LBFGSBDriverState* state_ = nullptr;
    bool done_ = false;
};

}  // namespace

Outcome RunMinimiser(const Export&, const Call& call) {
    Random random(call.words.back());
    Outcome outcome;
    outcome.written = 14695981039346656037u;
    errno = call.errnoBefore;
    {
        std::vector<std::unique_ptr<Run>> runs(random.Chance(80) ? 1 : 2);
        for (auto& run : runs) run = std::make_unique<Run>(random);
        for (int steps = random.Whole(0, random.Chance(50) ? 8 : 120); steps > 0; --steps)
            for (auto& run : runs) run->Step(outcome);
        if (random.Chance(5)) LBFGSBEnd(nullptr);
    }
    outcome.errnoAfter = errno;
    return outcome;
}

}  // namespace orvanth::fuzz
