// The exports that use no shared workspace, called from several threads at once. Each thread has its own data
// and must find the bits that the same calls give alone.
#include <thread>

#include "linalg/matrices.hpp"

namespace orvanth::test {
namespace {

std::vector<double> Everything(int order, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    Matrix a(order, order), u(order, order), vt(order, order), b(order, 1);
    FillRandom(a, random);
    FillRandom(b, random);
    for (int i = 0; i < order; ++i) a(i, i) += 3;
    const Matrix given = a;
    std::vector<double> s(static_cast<std::size_t>(order)), w(s), all;
    std::int32_t m = 0;
    EXPECT_EQ(ThinSVD(a.Data(), a.Descriptor(), s.data(), u.Data(), u.Descriptor(), vt.Data(), vt.Descriptor()), 0);
    a = given;
    EXPECT_EQ(EigenSymmetric(a.Data(), a.Descriptor(), w.data(), &m, vt.Data(), vt.Descriptor()), 0);
    all.push_back(Xb(given.storage.data(), given.Descriptor(), b.Data(), s.data()));
    EXPECT_EQ(SolveTriangularSystem(given.storage.data(), given.Descriptor(), 1, 0, b.Data(), b.Descriptor()), 0);
    for (const auto& part : {s, w, u.storage, vt.storage, b.storage}) all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST(LinalgThread, ExportsWithoutSharedWorkspaceAreReentrant) {
    constexpr int kThreads = 4, kRounds = 20;
    std::vector<std::vector<double>> alone;
    for (int t = 0; t < kThreads; ++t) alone.push_back(Everything(20 + 5 * t, kSeed + static_cast<std::uint64_t>(t)));
    std::vector<int> differences(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            const auto index = static_cast<std::size_t>(t);
            for (int round = 0; round < kRounds; ++round)
                if (!SameBits(Everything(20 + 5 * t, kSeed + index), alone[index])) ++differences[index];
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(differences, std::vector<int>(kThreads, 0));
}

}  // namespace
}  // namespace orvanth::test
