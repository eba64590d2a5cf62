# orvanth_openblas: BLAS and LAPACK from OpenBLAS itself. The system's libblas and liblapack are alternatives
# that anyone may switch, so the library is found under its own name.
include_guard(GLOBAL)

find_library(ORVANTH_OPENBLAS_LIBRARY NAMES openblas)
find_path(ORVANTH_LAPACK_INCLUDE_DIR NAMES lapack.h)
if(NOT ORVANTH_OPENBLAS_LIBRARY)
  orvanth_missing("OpenBLAS (libopenblas-dev)" build)
endif()
if(NOT ORVANTH_LAPACK_INCLUDE_DIR)
  orvanth_missing("The header lapack.h (liblapacke-dev)" build)
endif()

add_library(orvanth_openblas INTERFACE)
target_link_libraries(orvanth_openblas INTERFACE ${ORVANTH_OPENBLAS_LIBRARY})
target_include_directories(orvanth_openblas SYSTEM INTERFACE ${ORVANTH_LAPACK_INCLUDE_DIR})
