/* Nanoseconds a call of a few exports, through a library that is loaded by its path: the best of five runs.
 *   time LIBRARY */
#include <stdint.h>
#include <stdio.h>
#include <time.h>

#if defined(_WIN32)
#include <windows.h>
static void* Find(const char* path, const char* name) {
    return (void*)GetProcAddress(LoadLibraryA(path), name);
}
static double Now(void) {
    LARGE_INTEGER ticks, frequency;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&frequency);
    return (double)ticks.QuadPart / (double)frequency.QuadPart;
}
#else
#include <dlfcn.h>
static void* Find(const char* path, const char* name) { return dlsym(dlopen(path, RTLD_NOW), name); }
static double Now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + 1e-9 * (double)t.tv_nsec;
}
#endif

typedef struct {
    int32_t offset, leadingDimension, rows, columns;
} Descriptor;

static void Report(const char* name, double seconds, int calls) { printf("%s %.0f\n", name, seconds / calls * 1e9); }

int main(int count, char** arguments) {
    double (*normal)(double, double, double, int32_t) = Find(arguments[count - 1], "NormalCDF");
    double (*gamma)(double, double, double, int32_t) = Find(arguments[count - 1], "GammaICDF");
    double (*binomial)(double, double, double, int32_t) = Find(arguments[count - 1], "BinomialCDF");
    int32_t (*svd)(double*, const Descriptor*, double*, double*, const Descriptor*, double*, const Descriptor*) =
        Find(arguments[count - 1], "ThinSVD");
    static double a[5000], u[5000], s[50], vt[2500];
    const Descriptor tall = {0, 100, 100, 50}, square = {0, 50, 50, 50};
    double best[4] = {1e9, 1e9, 1e9, 1e9}, sum = 0;
    for (int run = 0; run < 5; ++run) {
        const int n = 200000, few = 10;
        double start = Now();
        for (int i = 0; i < n; ++i) sum += normal(-3 + 6.0 * i / n, 0, 1, 0);
        double end = Now();
        if (end - start < best[0]) best[0] = end - start;
        start = Now();
        for (int i = 0; i < n; ++i) sum += gamma((i + 0.5) / n, 2.5, 1, 0);
        end = Now();
        if (end - start < best[1]) best[1] = end - start;
        start = Now();
        for (int i = 0; i < n; ++i) sum += binomial(i % 40, 40, 0.3, 0);
        end = Now();
        if (end - start < best[2]) best[2] = end - start;
        double spent = 0;
        for (int i = 0; i < few; ++i) {
            for (int j = 0; j < 5000; ++j) a[j] = (double)((j * 7919 + i) % 1000) / 1000;
            start = Now();
            svd(a, &tall, s, u, &tall, vt, &square);
            spent += Now() - start;
        }
        if (spent < best[3]) best[3] = spent;
    }
    Report("NormalCDF", best[0], 200000);
    Report("GammaICDF", best[1], 200000);
    Report("BinomialCDF", best[2], 200000);
    Report("ThinSVD(100x50)", best[3], 10);
    return sum == 0;
}
