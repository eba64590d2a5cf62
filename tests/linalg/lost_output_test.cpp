// LAPACK prints a line about a rejected argument. Where nobody takes that line, errno stays as it was all the same.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "orvanth/linalg.h"

namespace {

double a[9] = {1, 2, 3, 4, 5, 6, 7, 8, 10}, b[3], s[3], tau[3], u[9], vt[9];
std::int32_t jpvt[3], m;
constexpr MatrixDescriptor kNarrow{0, 1, 3, 3}, kSquare{0, 3, 3, 3}, kColumn{0, 3, 3, 1};

struct Call {
    const char* name;
    std::int32_t (*rejected)();
};
constexpr Call kCalls[] = {
    {"QR", [] { return QR(a, &kNarrow, tau); }},
    {"QRP", [] { return QRP(a, &kNarrow, tau, jpvt); }},
    {"QR_Q", [] { return QR_Q(a, &kNarrow, tau); }},
    {"QR_Qy", [] { return QR_Qy(a, &kNarrow, 0, tau, b, &kColumn); }},
    {"FullSVD", [] { return FullSVD(a, &kNarrow, s, u, &kSquare, vt, &kSquare); }},
    {"ThinSVD", [] { return ThinSVD(a, &kNarrow, s, u, &kSquare, vt, &kSquare); }},
    {"EigenSymmetric", [] { return EigenSymmetric(a, &kNarrow, s, &m, u, &kSquare); }},
    {"LS", [] { return LS(a, &kNarrow, b, &kColumn); }},
    {"OLS", [] { return OLS(a, &kNarrow, b, &kColumn, u, &kSquare, tau, 1e-7); }},
    {"SolveTriangularSystem", [] { return SolveTriangularSystem(a, &kNarrow, 1, 0, b, &kColumn); }},
};

class LostOutput : public testing::TestWithParam<Call> {};

TEST_P(LostOutput, LeavesErrnoAlone) {
    for (const char* device : {"", "/dev/full"}) {
        const pid_t child = fork();
        if (child == 0) {
            close(1);
            close(2);
            if (*device != '\0') {
                if (open(device, O_WRONLY) != 1 || dup(1) != 2) _exit(200);
            }
            setvbuf(stdout, nullptr, _IONBF, 0);  // the line is written when it is printed
            errno = 7;
            const bool rejected = GetParam().rejected() < 0;
            _exit(rejected ? errno : 201);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 7) << (*device != '\0' ? device : "closed");
    }
}

INSTANTIATE_TEST_SUITE_P(Linalg, LostOutput, testing::ValuesIn(kCalls),
                         [](const testing::TestParamInfo<Call>& call) { return std::string(call.param.name); });

}  // namespace
