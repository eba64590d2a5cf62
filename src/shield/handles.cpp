#include "shield/handles.hpp"

#include <new>

namespace orvanth::shield {

HandleTable::Slot* HandleTable::Find(Handle handle) noexcept {
    const std::size_t index = IndexOf(handle);
    Slot* const chunk = chunks_[index / kChunkLength].load(std::memory_order_acquire);
    return chunk == nullptr ? nullptr : chunk + index % kChunkLength;
}

// Makes one more slot and puts it on the list of free ones. Chunks stay until the process ends.
bool HandleTable::MakeSlot() noexcept {
    if (slots_ == kChunkLength * kMostChunks) return false;
    if (slots_ % kChunkLength == 0) {
        Slot* const chunk = new (std::nothrow) Slot[kChunkLength];
        if (chunk == nullptr) return false;
        chunks_[slots_ / kChunkLength].store(chunk, std::memory_order_release);
    }
    firstFree_ = lastFree_ = ++slots_;
    return true;
}

HandleTable::Handle HandleTable::Insert(Kind kind, void* object) noexcept {
    std::lock_guard inside(lock_);
    if (firstFree_ == 0 && !MakeSlot()) return 0;
    const Handle index = firstFree_ - 1;
    Slot& slot = *Find(index << kIndexShift);
    firstFree_ = slot.nextFree;
    if (firstFree_ == 0) lastFree_ = 0;
    slot.nextFree = 0;
    slot.object = object;
    const Handle handle =
        slot.generation << kGenerationShift | index << kIndexShift | static_cast<Handle>(kind) << kKindShift;
    slot.holds.store(handle, std::memory_order_release);
    return handle;
}

Access HandleTable::Acquire(Kind kind, Handle handle, void*& object) noexcept {
    Slot* const slot = Find(handle);
    const bool isPossible = (handle & kInUse) == 0 && (handle >> kKindShift & 1) == static_cast<Handle>(kind) &&
                            handle >> kGenerationShift != 0;
    if (slot == nullptr || !isPossible) return Access::NeverMade;
    Handle found = handle;
    if (slot->holds.compare_exchange_strong(found, handle | kInUse, std::memory_order_acquire)) {
        object = slot->object;
        return Access::Granted;
    }
    if (found == (handle | kInUse)) return Access::InUse;
    std::lock_guard inside(lock_);
    return handle >> kGenerationShift < slot->generation ? Access::Deleted : Access::NeverMade;
}

void HandleTable::Release(Handle handle) noexcept { Find(handle)->holds.store(handle, std::memory_order_release); }

// The slot goes to the end of the list, so that generations rise evenly.
void HandleTable::Remove(Handle handle) noexcept {
    Slot& slot = *Find(handle);
    std::lock_guard inside(lock_);
    slot.object = nullptr;
    slot.generation = (handle >> kGenerationShift) + 1;
    if ((slot.generation << kGenerationShift) == 0)
        slot.generation = 1;  // all generations used: from the first again
    slot.holds.store(0, std::memory_order_release);
    const std::size_t number = IndexOf(handle) + 1;
    if (lastFree_ == 0)
        firstFree_ = number;
    else
        Find((lastFree_ - 1) << kIndexShift)->nextFree = number;
    lastFree_ = number;
}

}  // namespace orvanth::shield
