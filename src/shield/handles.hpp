// Handles that know when they were deleted. A handle is a number made of a slot's index and its generation; a
// slot changes its generation whenever its object is deleted, so an old handle meets no new object.
#ifndef ORVANTH_SHIELD_HANDLES_HPP
#define ORVANTH_SHIELD_HANDLES_HPP

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace orvanth::shield {

enum class Kind : std::uintptr_t { Stream = 0, Minimiser = 1 };

enum class Access { Granted, InUse, Deleted, NeverMade };

class HandleTable {
public:
    using Handle = std::uintptr_t;  // 0 means none

    // 0 if there is no memory or no slot left.
    Handle Insert(Kind kind, void* object) noexcept;

    // Granted: `object` is the caller's alone until Release or Remove.
    Access Acquire(Kind kind, Handle handle, void*& object) noexcept;
    void Release(Handle handle) noexcept;
    void Remove(Handle handle) noexcept;  // of an acquired handle

private:
    // A handle from its lowest bit on: whether it is in use (in a slot only), kind, index, generation.
    static constexpr unsigned kKindShift = 1, kIndexShift = 2, kIndexBits = 20;
    static constexpr unsigned kGenerationShift = kIndexShift + kIndexBits;
    static constexpr Handle kInUse = 1;
    static constexpr std::size_t kChunkLength = 1024;
    static constexpr std::size_t kMostChunks = (std::size_t{1} << kIndexBits) / kChunkLength;

    struct Slot {
        std::atomic<Handle> holds{0};  // the live handle, with kInUse; 0 while the slot is free
        void* object = nullptr;
        Handle generation = 1;  // of the next object
        std::size_t nextFree = 0;
    };

    static std::size_t IndexOf(Handle handle) { return handle >> kIndexShift & ((Handle{1} << kIndexBits) - 1); }
    Slot* Find(Handle handle) noexcept;
    bool MakeSlot() noexcept;

    std::array<std::atomic<Slot*>, kMostChunks> chunks_{};
    std::mutex lock_;  // of what follows
    std::size_t slots_ = 0;
    std::size_t firstFree_ = 0, lastFree_ = 0;  // index + 1; 0 means none
};

// An acquired handle, released at the end of the scope unless it was removed.
class Hold {
public:
    Hold(HandleTable& table, Kind kind, HandleTable::Handle handle) noexcept
        : table_(table), handle_(handle), access_(table.Acquire(kind, handle, object_)) {}
    ~Hold() {
        if (access_ == Access::Granted && !removed_) table_.Release(handle_);
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

    Access Result() const { return access_; }
    void* Object() const { return object_; }
    void Remove() noexcept {
        table_.Remove(handle_);
        removed_ = true;
    }

private:
    HandleTable& table_;
    HandleTable::Handle handle_;
    void* object_ = nullptr;
    bool removed_ = false;
    Access access_;
};

}  // namespace orvanth::shield

#endif
