// A scalar export over strided arrays. The guard stands outside the loop; an element that fails gets what the
// export gave, or a NaN where it threw, and the loop goes on behind it.
#ifndef ORVANTH_SHIELD_EACH_HPP
#define ORVANTH_SHIELD_EACH_HPP

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "shield/guard.hpp"

namespace orvanth::shield {

// Unaligned elements are allowed: a step can be the size of any record.
template <class T>
T Load(const char* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

inline void Store(char* at, double value) { std::memcpy(at, &value, sizeof value); }

// The first failure of a loop and how many there were.
class Tally {
public:
    bool IsFirst() const { return failures_ == 0; }
    void Count(std::intptr_t index, Status status) {
        if (failures_++ == 0) {
            first_ = index;
            status_ = status;
        }
        kinds_ |= 1u << static_cast<unsigned>(status);
    }
    // The thread's last failure is the first of the loop.
    void Report(EachReport* report) const {
        if (failures_ == 0) lastFailure.status = Status::Ok;
        if (report == nullptr) return;
        report->failures = failures_;
        report->first = first_;
        report->status = static_cast<std::int32_t>(status_);
        report->kinds = kinds_;
        std::memcpy(report->text, failures_ == 0 ? "\0" : lastFailure.text, failures_ == 0 ? 1 : ORVANTH_TEXT_LENGTH);
    }

private:
    std::intptr_t failures_ = 0;
    std::intptr_t first_ = -1;
    Status status_ = Status::Ok;
    std::uint32_t kinds_ = 0;
};

// The inner arrays of one call laid end to end, where their own elements are not.
class Gathered {
public:
    Gathered(std::intptr_t length, std::intptr_t step) : length_(length), step_(step) {
        // A length beyond the address space is possible: with a step of 0 it stands for one element.
        if (step != sizeof(double) && length > 0 && length <= PTRDIFF_MAX / std::intptr_t{sizeof(double)})
            block_ = static_cast<double*>(std::malloc(static_cast<std::size_t>(length) * sizeof(double)));
    }
    ~Gathered() { std::free(block_); }
    Gathered(const Gathered&) = delete;
    Gathered& operator=(const Gathered&) = delete;

    bool Failed() const { return step_ != sizeof(double) && length_ > 0 && block_ == nullptr; }
    const double* From(const char* at) const {
        if (block_ == nullptr) return reinterpret_cast<const double*>(at);
        for (std::intptr_t i = 0; i < length_; ++i) block_[i] = Load<double>(at + i * step_);
        return block_;
    }
    std::intptr_t Length() const { return length_; }

private:
    std::intptr_t length_, step_;
    double* block_ = nullptr;
};

// The arguments of one element. Integers arrive as 64 bits; `refused` becomes the number of the first that its
// own type cannot hold, or of an array that is shorter than the integer before it says.
template <const Facts& facts>
class Element {
public:
    Element(char* const* pointers, const std::intptr_t* steps, std::intptr_t index, const Gathered& gathered)
        : pointers_(pointers), steps_(steps), index_(index), gathered_(gathered) {}

    template <class Argument>
    Argument Next() {
        const int i = used_++;
        char* const at = pointers_[i] + index_ * steps_[i];
        if constexpr (std::is_same_v<Argument, double>) {
            return Load<double>(at);
        } else if constexpr (std::is_same_v<Argument, std::int32_t>) {
            const auto wide = Load<std::int64_t>(at);
            const bool isFlag = (facts.tailFlags >> i & 1) != 0;
            const std::int64_t least = isFlag ? -128 : std::numeric_limits<std::int32_t>::min();
            const std::int64_t most = isFlag ? 255 : std::numeric_limits<std::int32_t>::max();
            if ((wide < least || wide > most) && refused == 0) [[unlikely]] {
                refused = i + 1;
                refusedValue = wide;
            }
            lastIntegerAt_ = i;
            return lastInteger_ = static_cast<std::int32_t>(wide);
        } else if constexpr (std::is_same_v<Argument, const double*>) {
            if ((lastInteger_ < 0 || lastInteger_ > gathered_.Length()) && refused == 0) [[unlikely]] {
                refused = lastIntegerAt_ + 1;
                refusedValue = lastInteger_;
            }
            return refused == 0 ? gathered_.From(at) : nullptr;
        } else {
            return &outputs[outputs_++];
        }
    }

    int refused = 0;
    std::int64_t refusedValue = 0;
    double outputs[2] = {kNaN, kNaN};

private:
    char* const* pointers_;
    const std::intptr_t* steps_;
    std::intptr_t index_;
    const Gathered& gathered_;
    int used_ = 0, outputs_ = 0, lastIntegerAt_ = 0;
    std::int32_t lastInteger_ = 0;
};

template <auto Function, const Facts& facts, class Result, class... Arguments>
void EachOf(Result (*)(Arguments...), char* const* pointers, const std::intptr_t* dimensions,
            const std::intptr_t* steps, EachReport* report) noexcept {
    constexpr int kArguments = sizeof...(Arguments);
    constexpr bool kHasResult = !std::is_void_v<Result>;
    constexpr bool kHasArray = (std::is_same_v<Arguments, const double*> || ...);
    const Gathered gathered(kHasArray ? dimensions[1] : 0,
                            kHasArray ? steps[kArguments + kHasResult] : sizeof(double));
    const std::intptr_t count = dimensions[0];
    const int before = errno;
    errno = 0;
    Tally tally;
    std::intptr_t i = 0;
    const auto store = [&](double result, const double* outputs) {
        if constexpr (kHasResult) {
            Store(pointers[kArguments] + i * steps[kArguments], result);
        } else {
            constexpr int kFirst = kArguments - 2;
            for (int k = 0; k < 2; ++k) Store(pointers[kFirst + k] + i * steps[kFirst + k], outputs[k]);
        }
    };
    constexpr double kNothing[] = {kNaN, kNaN};
    while (i < count) {
        try {
            for (; i < count; ++i) {
                Element<facts> element(pointers, steps, i, gathered);
                // Braces fix the order of evaluation to that of the arguments.
                const std::tuple<Arguments...> arguments{element.template Next<Arguments>()...};
                if (element.refused != 0 || gathered.Failed()) [[unlikely]] {
                    store(kNaN, kNothing);
                    const Status status = gathered.Failed() ? Status::Memory : Status::Argument;
                    if (tally.IsFirst()) {
                        if (gathered.Failed())
                            Note(Status::Memory, facts.name, "out of memory");
                        else
                            NoteOutOfRange(facts, element.refused - 1, element.refusedValue);
                    }
                    tally.Count(i, status);
                    continue;
                }
                double result = kNaN;
                if constexpr (kHasResult)
                    result = std::apply(Function, arguments);
                else
                    std::apply(Function, arguments);
                store(result, element.outputs);
                if constexpr (facts.isSilent) {
                    if (errno != 0) [[unlikely]] {
                        if (tally.IsFirst()) NoteErrnoOfCall<facts>(errno, arguments);
                        tally.Count(i, errno == ERANGE ? Status::Overflow : Status::Domain);
                        errno = 0;
                    }
                }
                if constexpr (facts.hasReservedValue) {
                    if (IsReserved(facts, kHasResult ? result : element.outputs[0])) [[unlikely]] {
                        if (tally.IsFirst()) NoteReservedOfCall<facts>(arguments);
                        tally.Count(i, Status::NoValue);
                    }
                }
            }
        } catch (...) {
            const Status status = NoteException(tally.IsFirst());
            store(kNaN, kNothing);
            tally.Count(i, status);
            errno = 0;
            ++i;
        }
    }
    errno = before;
    tally.Report(report);
}

template <auto Function, const Facts& facts>
void Each(char* const* pointers, const std::intptr_t* dimensions, const std::intptr_t* steps,
          EachReport* report) noexcept {
    EachOf<Function, facts>(Function, pointers, dimensions, steps, report);
}

}  // namespace orvanth::shield

#endif
