// The control word of the x87 unit of a thread. Hosts, compilers' run-time libraries and drivers set its precision to
// 53 or to 64 bits; no result may depend on it.
#ifndef ORVANTH_TESTS_SUPPORT_PRECISION_WORD_HPP
#define ORVANTH_TESTS_SUPPORT_PRECISION_WORD_HPP

#include <cstdint>
#include <cstdlib>

#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <thread>
#endif

namespace orvanth::test {

inline std::uint16_t ControlWord() {
    std::uint16_t word = 0;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

inline void SetControlWord(std::uint16_t word) { asm volatile("fldcw %0" : : "m"(word)); }

// While it is alive the control word is the one given, or the one that the variable ORVANTH_X87 gives in hexadecimal
// digits. Without either the word stays as it is.
class PrecisionWord {
public:
    PrecisionWord() : before_(ControlWord()) {
        static const char* const word = std::getenv("ORVANTH_X87");
        if (word != nullptr) SetControlWord(static_cast<std::uint16_t>(std::strtoul(word, nullptr, 16)));
    }
    explicit PrecisionWord(std::uint16_t word) : before_(ControlWord()) { SetControlWord(word); }
    ~PrecisionWord() { SetControlWord(before_); }
    PrecisionWord(const PrecisionWord&) = delete;
    PrecisionWord& operator=(const PrecisionWord&) = delete;

private:
    std::uint16_t before_;
};

#if defined(_WIN32)
// On a thread made by the system's own call, of which no run-time library knows.
template <class Function>
struct Work {
    static DWORD WINAPI Run(void* given) {
        Work& work = *static_cast<Work*>(given);
        work.result = work.function();
        return 0;
    }
    Function& function;
    int result;
};

template <class Function>
int OnNewThread(Function function) {
    Work<Function> work{function, 0};
    const HANDLE thread = CreateThread(nullptr, 1 << 23, Work<Function>::Run, &work, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    return work.result;
}
#else
template <class Function>
int OnNewThread(Function function) {
    int result = 0;
    std::thread([&] { result = function(); }).join();
    return result;
}
#endif

// Runs on a new thread if the variable ORVANTH_HOST_THREAD is set, otherwise on this one.
template <class Function>
int OnAThreadOfTheHost(Function function) {
    return std::getenv("ORVANTH_HOST_THREAD") != nullptr ? OnNewThread(function) : function();
}

}  // namespace orvanth::test

#endif
