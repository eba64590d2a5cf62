# Settings shared by the library, its tests and its benchmarks.

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# No build type defines NDEBUG: the assertions of Boost.Math are part of the library.
set(CMAKE_C_FLAGS_RELEASE "-O2")
set(CMAKE_CXX_FLAGS_RELEASE "-O2")
set(CMAKE_Fortran_FLAGS_RELEASE "-O2")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1")
set(CMAKE_Fortran_FLAGS_RELWITHDEBINFO "-O2 -g1")

# Digits are part of the contract: no contraction, no fast-math.
add_compile_options(-ffp-contract=off)

set(ORVANTH_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=")
if(ORVANTH_SANITIZE)
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")  # compiles in half the time
  add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=${ORVANTH_SANITIZE}>
                      $<$<COMPILE_LANGUAGE:C,CXX>:-fno-omit-frame-pointer>)
  add_link_options(-fsanitize=${ORVANTH_SANITIZE})
  if(ORVANTH_SANITIZE MATCHES undefined)
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-fno-sanitize-recover=undefined>)
  endif()
endif()

# Our own code compiles without a warning.
set(ORVANTH_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Werror)

# add_core_test(<name> <sources>...): a GoogleTest program. It links the library's objects, so that
# kernels behind the boundary can be tested; tests of exports go through the same objects.
function(add_core_test name)
  add_executable(${name} ${ARGN})
  target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${ORVANTH_WARNINGS}>)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE ORVANTH_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  target_link_libraries(${name} PRIVATE core_math_objects GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 ENVIRONMENT "OPENBLAS_NUM_THREADS=1")
endfunction()

# add_thread_tests(<program>): of this test program, those tests that start threads (their names say so) are what
# the thread sanitizer is for. They are built and run there by the target and the label `threads`.
add_custom_target(threads)
function(add_thread_tests program)
  add_dependencies(threads ${program})
  add_test(NAME ${program}_threads COMMAND ${program} --gtest_filter=*Thread*)
  set_tests_properties(${program}_threads PROPERTIES TIMEOUT 600 ENVIRONMENT "OPENBLAS_NUM_THREADS=1" LABELS threads)
endfunction()

# add_core_bench(<name> <sources>...): a Google Benchmark program over the library's objects.
function(add_core_bench name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/benchmarks)
  target_link_libraries(${name} PRIVATE core_math_objects benchmark::benchmark_main)
endfunction()
