// The arguments of one call: numbers from its words, and arrays of exactly the documented size with guards around
// them.
#ifndef ORVANTH_TESTS_FUZZ_STORAGE_HPP
#define ORVANTH_TESTS_FUZZ_STORAGE_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/call.hpp"
#include "fuzz/random_values.hpp"
#include "orvanth/types.h"

namespace orvanth::fuzz {

// Under the address sanitizer a block ends where the array ends, so that it sees a read beyond it; elsewhere a
// pattern around the array shows a write.
#if defined(ORVANTH_ADDRESS_SANITIZER)
inline constexpr std::size_t kGuard = 0;
#else
inline constexpr std::size_t kGuard = 64;
#endif

class Array {
public:
    Array(const Parameter& parameter, std::size_t elements, std::size_t elementSize, Random fill);

    void* Data() { return block_.data() + kGuard * 8; }
    double* Doubles() { return static_cast<double*>(Data()); }
    std::int32_t* Ints() { return static_cast<std::int32_t*>(Data()); }
    std::size_t Elements() const { return elements_; }
    const Parameter& Of() const { return *parameter_; }
    void Keep() { given_ = block_; }  // the call begins here

    bool GuardsStand() const;
    bool Unchanged() const { return given_ == block_; }
    // Elements before the view and between its columns are those that were given.
    bool KeptOutside(int offset, int leadingDimension, int rows, int columns) const;
    std::uint64_t Hash(std::uint64_t hash) const;

private:
    const Parameter* parameter_;
    std::size_t elements_, elementSize_;
    std::vector<unsigned char> block_, given_;
};

// The sizes that a call is about: a is m by n, with k columns in the other matrix.
struct Shape {
    int m, n, k;
};

class Storage {
public:
    Storage(const Export& which, const Call& call);
    ~Storage();
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;

    template <class T>
    T Next() {
        const int at = next_++;
        if constexpr (std::is_same_v<T, double>)
            return AsDouble(call_.words[static_cast<std::size_t>(at)]);
        else if constexpr (std::is_same_v<T, std::int32_t>)
            return AsInt(call_.words[static_cast<std::size_t>(at)]);
        else if constexpr (std::is_same_v<T, RandomStreamHandle>)
            return handle_;
        else
            return reinterpret_cast<T>(pointers_[static_cast<std::size_t>(at)]);
    }

    // What was written, and what should not have been.
    void Inspect(Outcome& outcome);

private:
    struct View {
        int array;
        bool honoursOffset;
        MatrixDescriptor descriptor, given;
        int rows, columns;  // what the manual says of the matrix, whatever the descriptor's unread fields hold
    };
    void MakeMatrix(int parameter, Random& random);
    void MakeArray(int parameter, Random& random);
    void MakeHandle(std::uint64_t word);
    void Prepare(Random& random);
    std::string WrongValues(std::int64_t status);
    Array* Find(std::string_view name);
    std::int32_t Int(std::string_view name) const;
    std::pair<int, int> MatrixSize(const std::string& name) const;
    std::size_t ArraySize(const std::string& name) const;

    const Export& export_;
    const Call& call_;
    int next_ = 0;
    Shape shape_{};
    bool finite_ = true;  // the first matrix
    std::vector<void*> pointers_;
    std::deque<Array> arrays_;
    std::deque<View> views_;
    RandomStreamHandle handle_ = 0;
    bool ownsHandle_ = false;
    std::vector<unsigned char> noStream_;
};

}  // namespace orvanth::fuzz

#endif
