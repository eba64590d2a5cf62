# Toolchain: Windows on x86 by mingw-w64 with POSIX threads. Doubles are evaluated by SSE2 in 64 bits. A host may call
# with a stack that is aligned to 4 bytes only, so each function aligns its own.
set(ORVANTH_WIDTH 32)
set(ORVANTH_MINGW i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR i686)
foreach(language C CXX Fortran)
  set(CMAKE_${language}_FLAGS_INIT "-march=i686 -msse2 -mfpmath=sse -mstackrealign")
endforeach()
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
