// A host may unload the library and load it again; nothing of it runs in between.
#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

using Distribution = double (*)(double, double, double, int);

TEST(Reload, EveryLoadServesAndNoUnloadDisturbs) {
    for (int i = 0; i < 5; ++i) {
        void* const library = dlopen(ORVANTH_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        const auto cdf = reinterpret_cast<Distribution>(dlsym(library, "NormalCDF"));
        ASSERT_NE(cdf, nullptr);
        EXPECT_EQ(cdf(0, 0, 1, 0), 0.5);
        EXPECT_EQ(dlclose(library), 0);
    }
}

}  // namespace
