# Toolchain: Windows on x86-64 by mingw-w64 with POSIX threads.
set(ORVANTH_WIDTH 64)
set(ORVANTH_MINGW x86_64-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
