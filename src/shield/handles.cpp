#include "shield/handles.hpp"

#include <new>

namespace orvanth::shield {

// All slots of a chunk become free at once, so that objects that live one after another have many places. Chunks stay
// until the process ends.
bool HandleTable::MakeChunk() noexcept {
    if (slots_ == kChunkLength * kMostChunks) return false;
    Slot* const chunk = new (std::nothrow) Slot[kChunkLength];
    if (chunk == nullptr) return false;
    for (std::size_t i = 0; i + 1 < kChunkLength; ++i) chunk[i].nextFree_ = slots_ + i + 2;
    chunks_[slots_ / kChunkLength].store(chunk, std::memory_order_release);
    firstFree_ = slots_ + 1;
    lastFree_ = slots_ += kChunkLength;
    return true;
}

HandleTable::Handle HandleTable::Insert(Kind kind, void* object) noexcept {
    std::lock_guard inside(lock_);
    if (firstFree_ == 0 && !MakeChunk()) return 0;
    const Handle index = firstFree_ - 1;
    Slot& slot = *Find(index << kIndexShift);
    firstFree_ = slot.nextFree_;
    if (firstFree_ == 0) lastFree_ = 0;
    slot.nextFree_ = 0;
    slot.object_ = object;
    const Handle handle =
        slot.generation_ << kGenerationShift | index << kIndexShift | static_cast<Handle>(kind) << kKindShift;
    slot.holds_.store(handle, std::memory_order_release);
    return handle;
}

Access HandleTable::Outlived(const Slot& slot, Handle handle) noexcept {
    std::lock_guard inside(lock_);
    return handle >> kGenerationShift < slot.generation_ ? Access::Deleted : Access::NeverMade;
}

// The slot goes to the end of the list, so that generations rise evenly.
void HandleTable::Remove(Slot& slot, Handle handle) noexcept {
    std::lock_guard inside(lock_);
    slot.object_ = nullptr;
    slot.generation_ = (handle >> kGenerationShift) + 1;
    if ((slot.generation_ << kGenerationShift) == 0)
        slot.generation_ = 1;  // all generations used: from the first again
    slot.holds_.store(0, std::memory_order_release);
    const std::size_t number = IndexOf(handle) + 1;
    if (lastFree_ == 0)
        firstFree_ = number;
    else
        Find((lastFree_ - 1) << kIndexShift)->nextFree_ = number;
    lastFree_ = number;
}

}  // namespace orvanth::shield
