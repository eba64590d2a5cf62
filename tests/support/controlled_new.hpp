// Operator new under control: what a fresh block holds, and whether there is a block at all. The program that
// links controlled_new.cpp has it in place of the standard one; both controls act on the thread that makes them.
#ifndef ORVANTH_TESTS_SUPPORT_CONTROLLED_NEW_HPP
#define ORVANTH_TESTS_SUPPORT_CONTROLLED_NEW_HPP

namespace orvanth::test {

// While it is alive every byte of a new block holds `byte`.
class NewFilledWith {
public:
    explicit NewFilledWith(unsigned char byte);
    ~NewFilledWith();
    NewFilledWith(const NewFilledWith&) = delete;
    NewFilledWith& operator=(const NewFilledWith&) = delete;
};

// While it is alive `allowed` allocations succeed and every further one fails, with errno ENOMEM as malloc has it.
class NewFailsAfter {
public:
    explicit NewFailsAfter(int allowed);
    ~NewFailsAfter();
    NewFailsAfter(const NewFailsAfter&) = delete;
    NewFailsAfter& operator=(const NewFailsAfter&) = delete;
};

// Blocks that this thread has got from operator new and not given back.
long LiveBlocks();

}  // namespace orvanth::test

#endif
