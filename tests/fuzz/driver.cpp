// Random calls of every export, in children that are watched.
//
//   fuzz_driver SECONDS [SEED [NAME-PART]]      calls each export in turn; prints a table and every violation
//   fuzz_driver repeat NAME WORD...             repeats one call, as a violation printed it (words in hexadecimal)
//
// Ends with 1 if anything happened that may never happen.
#include <fcntl.h>
#include <malloc.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "fuzz/call.hpp"
#include "fuzz/random_values.hpp"

namespace {

using namespace orvanth::fuzz;

#if defined(ORVANTH_ADDRESS_SANITIZER)
constexpr bool kSanitized = true;
constexpr int kSecondsOfACall = 60;  // of processor time
#else
constexpr bool kSanitized = false;
constexpr int kSecondsOfACall = 15;
#endif
constexpr int kMostExports = 128;
constexpr int kMostReports = 5;  // of one export
constexpr int kExitHang = 99, kExitCrash = 98, kExitMemory = 97;

struct Tally {
    std::uint64_t calls, thrown, marked, violations, next;
    double slowest;
};
// Shared with the children.
struct Board {
    Tally tally[kMostExports];
};
Board* board;
int report = 2;  // the library prints on standard output, and that is closed

// The call that is being made, for the handlers of signals: text that is ready to be written.
char current[4096];
int currentExport;
volatile std::uint64_t beat = 0, beatSeen = 0;
volatile int secondsSeen = 0;

void WriteViolation(const char* what, const char* outcome) {
    if (board->tally[currentExport].violations++ >= kMostReports) return;
    char text[6000];
    const int length = std::snprintf(text, sizeof text, "VIOLATION %s: %s\n    %s\n", what, current, outcome);
    (void)!write(report, text, static_cast<std::size_t>(std::min<int>(length, sizeof text - 1)));
}

void OnTick(int) {
    if (beat != beatSeen) {
        beatSeen = beat;
        secondsSeen = 0;
        return;
    }
    secondsSeen = secondsSeen + 1;
    if (secondsSeen >= kSecondsOfACall) {
        WriteViolation("a call over its time limit", "");
        _exit(kExitHang);
    }
}

void OnCrash(int number) {
    WriteViolation("a crash", strsignal(number));
    _exit(kExitCrash);
}

void Watch() {
    static char stack[1 << 16];
    stack_t alternative{};
    alternative.ss_sp = stack;
    alternative.ss_size = sizeof stack;
    sigaltstack(&alternative, nullptr);
    struct sigaction action {};
    action.sa_handler = OnCrash;
    action.sa_flags = SA_ONSTACK;
    for (int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) sigaction(number, &action, nullptr);
    action.sa_handler = OnTick;
    action.sa_flags = SA_RESTART;
    sigaction(SIGPROF, &action, nullptr);
    const itimerval second{{1, 0}, {1, 0}};
    setitimer(ITIMER_PROF, &second, nullptr);
}

void Announce(const Export& which, const Call& call) {
    std::snprintf(current, sizeof current, "%s\n    %s", Describe(which, call).c_str(),
                  RepeatLine(which, call).c_str());
    beat = beat + 1;
}

void Repeat(const Export& which, const Call& call, const Outcome& first) {
    // One call at a time uses the workspace; the others run beside each other.
    Outcome there, here;
    const bool together = which.threads == "Reentrant";
    std::thread other([&] { there = Make(which, call); });
    if (!together) other.join();
    here = Make(which, call);
    if (together) other.join();
    if (!(here == first)) WriteViolation("another result when asked again", Describe(here).c_str());
    if (!(there == first)) WriteViolation("another result on another thread", Describe(there).c_str());
}

[[noreturn]] void Child(int number, std::uint64_t seed, double seconds) {
    const Export& which = Exports()[static_cast<std::size_t>(number)];
    Tally& tally = board->tally[number];
    currentExport = number;
    if (!kSanitized) {
        const rlimit limit{rlim_t{5} << 30, rlim_t{5} << 30};
        setrlimit(RLIMIT_AS, &limit);
    }
    Watch();
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < end) {
        const std::uint64_t turn = tally.next++;
        const Call call = RandomCall(which, Random(seed + static_cast<std::uint64_t>(number) * 7919).Next() + turn);
        Announce(which, call);
        const auto start = Clock::now();
        const Outcome outcome = Make(which, call);
        const double taken = std::chrono::duration<double>(Clock::now() - start).count();
        tally.calls++;
        tally.thrown += !outcome.exceptionClass.empty();
        tally.marked += outcome.errnoAfter != call.errnoBefore;
        tally.slowest = std::max(tally.slowest, taken);
        if (const std::string fault = Judge(which, call, outcome); !fault.empty())
            WriteViolation(fault.c_str(), Describe(outcome).c_str());
        if (turn % 16 == 0 && taken < 0.2) Repeat(which, call, outcome);
        // FNCHypergeometricCDF keeps its tables on purpose.
        if (turn % 256 == 0 && mallinfo2().uordblks + mallinfo2().hblkhd > 1500000000u) _exit(kExitMemory);
    }
    _exit(0);
}

void Serve(int number, std::uint64_t seed, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (int children = 0; children < 200; ++children) {
        const double left = seconds - std::chrono::duration<double>(Clock::now() - start).count();
        if (left <= 0) break;
        const pid_t child = fork();
        if (child == 0) Child(number, seed, left);
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0) break;
        const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        if (code == kExitHang || code == kExitCrash || code == kExitMemory) continue;
        // The sanitizers end a child by themselves, after their report.
        board->tally[number].violations++;
        dprintf(report, "VIOLATION a child of %s ended with status %#x: fuzz_driver 1 %llu %s\n",
                Exports()[static_cast<std::size_t>(number)].name, static_cast<unsigned>(status),
                static_cast<unsigned long long>(seed), Exports()[static_cast<std::size_t>(number)].name);
    }
}

int RepeatOne(int count, char** words) {
    for (const Export& which : Exports()) {
        if (std::strcmp(which.name, words[0]) != 0 || which.run == nullptr) continue;
        if (count != static_cast<int>(which.parameters.size()) + 3) break;
        Call call;
        for (int i = 1; i + 1 < count; ++i) call.words.push_back(std::strtoull(words[i], nullptr, 16));
        call.errnoBefore = static_cast<int>(std::strtol(words[count - 1], nullptr, 16));
        std::printf("%s\n", Describe(which, call).c_str());
        const Outcome outcome = Make(which, call);
        const std::string fault = Judge(which, call, outcome);
        std::printf("    %s\n%s\n", Describe(outcome).c_str(), fault.empty() ? "as documented" : fault.c_str());
        return fault.empty() ? 0 : 1;
    }
    std::fprintf(stderr, "fuzz_driver: repeat NAME, a word for each argument, the seed of the shapes, errno\n");
    return 2;
}

int RunAll(double seconds, std::uint64_t seed, const char* part) {
    board =
        static_cast<Board*>(mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    report = dup(1);
    dup2(open("/dev/null", O_WRONLY), 1);
    std::vector<int> chosen;
    for (std::size_t i = 0; i < Exports().size(); ++i)
        if (Exports()[i].run != nullptr && std::strstr(Exports()[i].name, part) != nullptr)
            chosen.push_back(static_cast<int>(i));
    dprintf(report, "seed %llu, %zu exports, %g seconds\n", static_cast<unsigned long long>(seed), chosen.size(),
            seconds);
    for (int number : chosen) Serve(number, seed, seconds / static_cast<double>(chosen.size()));
    Tally total{};
    dprintf(report, "%-28s %12s %10s %10s %12s\n", "export", "calls", "thrown", "errno", "slowest, ms");
    for (int number : chosen) {
        const Tally& one = board->tally[number];
        total.calls += one.calls;
        total.violations += one.violations;
        dprintf(report, "%-28s %12llu %10llu %10llu %12.3f%s\n", Exports()[static_cast<std::size_t>(number)].name,
                static_cast<unsigned long long>(one.calls), static_cast<unsigned long long>(one.thrown),
                static_cast<unsigned long long>(one.marked), one.slowest * 1e3,
                one.violations > 0 ? "  VIOLATIONS" : "");
    }
    dprintf(report, "%llu calls, %llu violations, seed %llu\n", static_cast<unsigned long long>(total.calls),
            static_cast<unsigned long long>(total.violations), static_cast<unsigned long long>(seed));
    return total.violations > 0 ? 1 : 0;
}

}  // namespace

#if defined(ORVANTH_ADDRESS_SANITIZER)
// The sanitizers say what is wrong; this says in which call.
extern "C" void __asan_on_error() { WriteViolation("a report of a sanitizer", ""); }
extern "C" const char* __asan_default_options() { return "detect_leaks=0:allocator_may_return_null=1:handle_segv=0"; }
#endif

int main(int count, char** words) {
    if (count > 2 && std::strcmp(words[1], "repeat") == 0) {
        static Board own;
        board = &own;
        return RepeatOne(count - 2, words + 2);
    }
    char* end = nullptr;
    const double seconds = count > 1 ? std::strtod(words[1], &end) : 0;
    if (count < 2 || *end != '\0') {
        std::fprintf(stderr, "fuzz_driver SECONDS [SEED [NAME-PART]]\nfuzz_driver repeat NAME WORD...\n");
        return 2;
    }
    const auto now = static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
    const std::uint64_t seed = count > 2 ? std::strtoull(words[2], nullptr, 0) : Random(now).Next() % 1000000;
    return RunAll(seconds, seed, count > 3 ? words[3] : "");
}
