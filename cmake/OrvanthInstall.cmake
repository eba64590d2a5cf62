# cmake --install: headers, library, notices, pkg-config file and CMake package.
include(CMakePackageConfigHelpers)

set(libraries core_math)
if(ORVANTH_SHIELD)
  list(APPEND libraries core_math_shield)
endif()
install(TARGETS ${libraries} EXPORT OrvanthCoreMathTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)
  foreach(library ${libraries})
    install(FILES $<TARGET_PROPERTY:${library},ORVANTH_IMPORT_LIBRARY> DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endforeach()
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orvanth DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/THIRD_PARTY_NOTICES.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(EXPORT OrvanthCoreMathTargets NAMESPACE Orvanth::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvanthCoreMath)

set(package_dir ${CMAKE_CURRENT_BINARY_DIR}/package)
file(WRITE ${package_dir}/OrvanthCoreMathConfig.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/OrvanthCoreMathTargets.cmake)\n")
write_basic_package_version_file(${package_dir}/OrvanthCoreMathConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${package_dir}/OrvanthCoreMathConfig.cmake ${package_dir}/OrvanthCoreMathConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvanthCoreMath)

file(RELATIVE_PATH prefix_from_pc "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
set(pkg_config_files orvanth-core-math)
if(ORVANTH_SHIELD)
  list(APPEND pkg_config_files orvanth-core-math-shield)
endif()
foreach(name ${pkg_config_files})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${package_dir}/${name}.pc @ONLY)
  install(FILES ${package_dir}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
