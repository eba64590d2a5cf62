// The shared library as a host sees it: opened by name, functions found by name. It stays loaded, so
// that a leak checker can name what it finds in it.
#ifndef ORVANTH_TESTS_SUPPORT_LIBRARY_HPP
#define ORVANTH_TESTS_SUPPORT_LIBRARY_HPP

#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <stdexcept>
#include <string>

namespace orvanth::test {

#if defined(_WIN32)
class Library {
public:
    explicit Library(const char* path) : handle_(LoadLibraryA(path)) {
        if (handle_ == nullptr)
            throw std::runtime_error("cannot load the library: error " + std::to_string(GetLastError()) +
                                     "; build the target core_math first");
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    // Null if the library has no such export.
    template <class Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
    }

private:
    HMODULE handle_;
};
#else
class Library {
public:
    explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
        if (handle_ == nullptr)
            throw std::runtime_error(std::string("cannot load the library: ") + dlerror() +
                                     "; build the target core_math first");
    }
    ~Library() { dlclose(handle_); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    // Null if the library has no such export.
    template <class Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(dlsym(handle_, name));
    }

private:
    void* handle_;
};
#endif

}  // namespace orvanth::test

#endif
