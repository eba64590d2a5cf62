# What the two toolchain files share.
set(CMAKE_SYSTEM_NAME Windows)
find_program(ORVANTH_CROSS_COMPILER ${ORVANTH_MINGW}-g++-posix)
if(NOT ORVANTH_CROSS_COMPILER)
  message(FATAL_ERROR "The cross compiler ${ORVANTH_MINGW}-g++-posix is missing.\n"
                      "On Debian 12 this command installs it: tools/install_packages.sh windows")
endif()
set(CMAKE_C_COMPILER ${ORVANTH_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ORVANTH_MINGW}-g++-posix)
set(CMAKE_Fortran_COMPILER ${ORVANTH_MINGW}-gfortran-posix)
set(CMAKE_RC_COMPILER ${ORVANTH_MINGW}-windres)
set(CMAKE_DLLTOOL ${ORVANTH_MINGW}-dlltool)
set(CMAKE_FIND_ROOT_PATH /usr/${ORVANTH_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# What is built is run by Wine: cmake/windows/win64.cmake and win32.cmake say in which width.
get_filename_component(orvanth_wine ${CMAKE_CURRENT_LIST_DIR}/../../tools/windows/wine.sh ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${orvanth_wine};${ORVANTH_WIDTH})
