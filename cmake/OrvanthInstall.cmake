# cmake --install: headers, library, pkg-config file and CMake package.
