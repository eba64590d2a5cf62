# Settings shared by the library, its tests and its benchmarks. They hold in this directory and below it. A project
# that adds this one as a part keeps its own build type and flags.

if(PROJECT_IS_TOP_LEVEL)
  if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release or RelWithDebInfo" FORCE)
  endif()
  set(CMAKE_C_FLAGS_RELEASE "-O2")
  set(CMAKE_CXX_FLAGS_RELEASE "-O2")
  set(CMAKE_Fortran_FLAGS_RELEASE "-O2")
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1")
  set(CMAKE_Fortran_FLAGS_RELWITHDEBINFO "-O2 -g1")
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  find_program(ORVANTH_CCACHE ccache)
  if(ORVANTH_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ORVANTH_CCACHE})
  endif()
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# The digits of the results depend on these: no contraction of a * b + c, no fast-math. The assertions of Boost.Math
# stay on in every build type. Options come last on the command line and so win over flags that are inherited.
add_compile_options(-ffp-contract=off -fno-fast-math $<$<COMPILE_LANGUAGE:C,CXX>:-UNDEBUG>)

# Tables that are worked out at compile time take more steps than clang allows by itself.
add_compile_options("$<$<COMPILE_LANG_AND_ID:CXX,Clang>:-fconstexpr-steps=50000000>")

# Further options for all of the C++ code, last on the command line: ./check builds variants with it.
set(ORVANTH_CXX_OPTIONS "" CACHE STRING "Options for the C++ compiler, separated by semicolons")
if(ORVANTH_CXX_OPTIONS)
  add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:${ORVANTH_CXX_OPTIONS}>")
endif()

set(ORVANTH_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=")
if(ORVANTH_SANITIZE)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-O1>)  # compiles in half the time
  add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=${ORVANTH_SANITIZE}>
                      $<$<COMPILE_LANGUAGE:C,CXX>:-fno-omit-frame-pointer>)
  add_link_options(-fsanitize=${ORVANTH_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # Programs in C load the library too, whose checks of classes are in the C++ half of the runtime.
    add_link_options(-fsanitize-link-c++-runtime)
    link_libraries($<$<LINK_LANGUAGE:C>:stdc++>)
  endif()
  if(ORVANTH_SANITIZE MATCHES undefined)
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-fno-sanitize-recover=undefined>)
  endif()
  if(ORVANTH_SANITIZE MATCHES address)
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-DORVANTH_ADDRESS_SANITIZER>)  # compilers name it differently
  endif()
endif()

# This project's own code compiles without a warning. Another compiler may see more, so warnings are errors only
# where this project is developed.
set(ORVANTH_WARNINGS -Wall -Wextra -Wpedantic -Wshadow)
option(ORVANTH_WERROR "Warnings are errors" ${PROJECT_IS_TOP_LEVEL})
if(ORVANTH_WERROR)
  list(APPEND ORVANTH_WARNINGS -Werror)
endif()

# add_common_headers(<target>): the headers that nearly every test includes are compiled once for all of them. Not for
# Windows, where each file so shows that it includes what it needs.
function(add_common_headers target)
  if(WIN32)
    return()
  endif()
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # A compiler cache looks at contents, not at times.
    target_compile_options(${target} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
  endif()
  get_property(owner GLOBAL PROPERTY orvanth_common_headers)
  if(owner)
    target_precompile_headers(${target} REUSE_FROM ${owner})
  else()
    target_precompile_headers(${target} PRIVATE <gtest/gtest.h> <cmath> <cstdio> <cstring> <random>)
    set_property(GLOBAL PROPERTY orvanth_common_headers ${target})
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
      # What clang compiles ahead names the folder of the build: it is of no use to another one.
      set_target_properties(${target} PROPERTIES CXX_COMPILER_LAUNCHER "")
    endif()
  endif()
endfunction()

# add_core_test(<name> <sources>...): a GoogleTest program. It links the library's objects, so that
# kernels behind the boundary can be tested; tests of exports go through the same objects.
function(add_core_test name)
  add_executable(${name} ${ARGN})
  target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${ORVANTH_WARNINGS}>)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE core_math_objects GTest::gtest_main)
  add_common_headers(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS program TIMEOUT 600 ENVIRONMENT "OPENBLAS_NUM_THREADS=1")
endfunction()

# add_thread_tests(<program>): the tests of this program that start threads have Thread in their names. The thread
# sanitizer is for them: there they are built by the target orvanth_threads and run by the label `threads`.
add_custom_target(orvanth_threads)
function(add_thread_tests program)
  add_dependencies(orvanth_threads ${program})
  add_test(NAME ${program}_threads COMMAND ${program} --gtest_filter=*Thread*)
  set_tests_properties(${program}_threads PROPERTIES TIMEOUT 600 ENVIRONMENT "OPENBLAS_NUM_THREADS=1" LABELS threads)
endfunction()

# add_core_bench(<name> <sources>...): a Google Benchmark program over the library's objects.
function(add_core_bench name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/benchmarks)
  target_link_libraries(${name} PRIVATE core_math_objects benchmark::benchmark_main)
endfunction()
