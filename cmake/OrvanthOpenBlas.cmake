# orvanth_openblas: BLAS and LAPACK from OpenBLAS itself. The system's libblas and liblapack are alternatives
# that anyone may switch, so the library is found under its own name.
include_guard(GLOBAL)

find_library(ORVANTH_OPENBLAS_LIBRARY NAMES openblas REQUIRED)
find_path(ORVANTH_LAPACK_INCLUDE_DIR NAMES lapack.h REQUIRED)

add_library(orvanth_openblas INTERFACE)
target_link_libraries(orvanth_openblas INTERFACE ${ORVANTH_OPENBLAS_LIBRARY})
target_include_directories(orvanth_openblas SYSTEM INTERFACE ${ORVANTH_LAPACK_INCLUDE_DIR})
