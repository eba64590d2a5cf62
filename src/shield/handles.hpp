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

    class Slot;
    // Granted: the slot's object is the caller's alone until Release or Remove.
    Access Acquire(Kind kind, Handle handle, Slot*& slot) noexcept;
    static void Release(Slot& slot, Handle handle) noexcept;
    void Remove(Slot& slot, Handle handle) noexcept;  // of an acquired handle

private:
    // A handle from its lowest bit on: whether it is in use (in a slot only), kind, index, generation. In 32 bits
    // 65536 objects may live at once, and as slots are reused in turn, a handle comes back after 16 million others at
    // least.
    static constexpr unsigned kKindShift = 1, kIndexShift = 2, kIndexBits = sizeof(Handle) == 8 ? 20 : 16;
    static constexpr unsigned kGenerationShift = kIndexShift + kIndexBits;
    static constexpr Handle kInUse = 1;
    static constexpr std::size_t kChunkLength = 1024;
    static constexpr std::size_t kMostChunks = (std::size_t{1} << kIndexBits) / kChunkLength;

    static std::size_t IndexOf(Handle handle) { return handle >> kIndexShift & ((Handle{1} << kIndexBits) - 1); }
    Slot* Find(Handle handle) const noexcept;  // null if none was made for this index
    bool MakeChunk() noexcept;                 // of free slots
    static bool IsPossible(Kind kind, Handle handle) {
        return (handle & kInUse) == 0 && (handle >> kKindShift & 1) == static_cast<Handle>(kind) &&
               handle >> kGenerationShift != 0;
    }
    Access Outlived(const Slot& slot, Handle handle) noexcept;  // Deleted or NeverMade

    std::array<std::atomic<Slot*>, kMostChunks> chunks_{};
    std::mutex lock_;  // of what follows
    std::size_t slots_ = 0;
    std::size_t firstFree_ = 0, lastFree_ = 0;  // index + 1; 0 means none
};

class HandleTable::Slot {
public:
    void* Object() const { return object_; }

private:
    friend class HandleTable;
    std::atomic<Handle> holds_{0};  // the live handle, with kInUse; 0 while the slot is free
    void* object_ = nullptr;
    Handle generation_ = 1;  // of the next object
    std::size_t nextFree_ = 0;
};

inline HandleTable::Slot* HandleTable::Find(Handle handle) const noexcept {
    const std::size_t index = IndexOf(handle);
    Slot* const chunk = chunks_[index / kChunkLength].load(std::memory_order_acquire);
    return chunk == nullptr ? nullptr : chunk + index % kChunkLength;
}

inline Access HandleTable::Acquire(Kind kind, Handle handle, Slot*& slot) noexcept {
    slot = Find(handle);
    if (slot == nullptr || !IsPossible(kind, handle)) return Access::NeverMade;
    Handle found = handle;
    if (slot->holds_.compare_exchange_strong(found, handle | kInUse, std::memory_order_acquire)) [[likely]]
        return Access::Granted;
    return found == (handle | kInUse) ? Access::InUse : Outlived(*slot, handle);
}

inline void HandleTable::Release(Slot& slot, Handle handle) noexcept {
    slot.holds_.store(handle, std::memory_order_release);
}

// An acquired handle, released at the end of the scope unless it was removed.
class Hold {
public:
    Hold(HandleTable& table, Kind kind, HandleTable::Handle handle) noexcept
        : table_(table), handle_(handle), access_(table.Acquire(kind, handle, slot_)) {}
    ~Hold() {
        if (access_ == Access::Granted && !removed_) HandleTable::Release(*slot_, handle_);
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

    Access Result() const { return access_; }
    void* Object() const { return slot_->Object(); }
    void Remove() noexcept {
        table_.Remove(*slot_, handle_);
        removed_ = true;
    }

private:
    HandleTable& table_;
    HandleTable::Handle handle_;
    HandleTable::Slot* slot_ = nullptr;
    bool removed_ = false;
    Access access_;
};

}  // namespace orvanth::shield

#endif
