/* A small host: loads a DLL by its path and calls one function by its name.
 *   host.exe DLL NAME    NAME is NormalICDF or SafeNormalICDF */
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <windows.h>

int main(int count, char** arguments) {
    typedef double (*Quantile)(double, double, double, int32_t);
    HMODULE library = count == 3 ? LoadLibraryA(arguments[1]) : NULL;
    Quantile quantile = library ? (Quantile)(void*)GetProcAddress(library, arguments[2]) : NULL;
    if (!quantile) {
        fprintf(stderr, "host.exe: no function %s in %s, error %lu\n", count == 3 ? arguments[2] : "",
                count == 3 ? arguments[1] : "", GetLastError());
        return 1;
    }
    double q = quantile(0.975, 0, 1, 0);
    printf("%s(0.975, 0, 1) = %.15g in %d bits\n", arguments[2], q, (int)(8 * sizeof(void*)));
    return fabs(q - 1.959963984540054) < 1e-14 ? 0 : 1;
}
