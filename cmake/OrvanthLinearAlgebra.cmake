# orvanth_linear_algebra: BLAS and LAPACK from the provider that ORVANTH_LINEAR_ALGEBRA names.
include_guard(GLOBAL)

if(WIN32)
  set(default_provider ReferenceLapack)
else()
  set(default_provider OpenBlas)
endif()
set(ORVANTH_LINEAR_ALGEBRA ${default_provider} CACHE STRING
    "OpenBlas, a library of the system, or ReferenceLapack, compiled in from third_party/lapack")
set_property(CACHE ORVANTH_LINEAR_ALGEBRA PROPERTY STRINGS OpenBlas ReferenceLapack)

add_library(orvanth_linear_algebra INTERFACE)
if(ORVANTH_LINEAR_ALGEBRA STREQUAL "OpenBlas")
  # The system's libblas and liblapack are alternatives that anyone may switch, so the library is found under its own
  # name.
  find_library(ORVANTH_OPENBLAS_LIBRARY NAMES openblas)
  find_path(ORVANTH_LAPACK_INCLUDE_DIR NAMES lapack.h)
  if(NOT ORVANTH_OPENBLAS_LIBRARY)
    orvanth_missing("OpenBLAS (libopenblas-dev)" build)
  endif()
  if(NOT ORVANTH_LAPACK_INCLUDE_DIR)
    orvanth_missing("The header lapack.h (liblapacke-dev)" build)
  endif()
  target_link_libraries(orvanth_linear_algebra INTERFACE ${ORVANTH_OPENBLAS_LIBRARY})
  target_include_directories(orvanth_linear_algebra SYSTEM INTERFACE ${ORVANTH_LAPACK_INCLUDE_DIR})
elseif(ORVANTH_LINEAR_ALGEBRA STREQUAL "ReferenceLapack")
  add_subdirectory(${PROJECT_SOURCE_DIR}/src/reference_lapack ${PROJECT_BINARY_DIR}/src/reference_lapack)
  target_link_libraries(orvanth_linear_algebra INTERFACE orvanth_reference_lapack)
else()
  message(FATAL_ERROR "ORVANTH_LINEAR_ALGEBRA is '${ORVANTH_LINEAR_ALGEBRA}'; give OpenBlas or ReferenceLapack")
endif()
