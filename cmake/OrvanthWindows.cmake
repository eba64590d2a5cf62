# What a build for Windows needs besides. It is a cross build on Debian: cmake/windows has the toolchains.
enable_language(RC)

# Headers of Debian that are the same for every system, each by a link: /usr/include itself holds those of Linux.
set(orvanth_headers ${PROJECT_BINARY_DIR}/include)
file(MAKE_DIRECTORY ${orvanth_headers})
foreach(folder boost nlohmann)
  if(IS_DIRECTORY /usr/include/${folder})
    file(CREATE_LINK /usr/include/${folder} ${orvanth_headers}/${folder} SYMBOLIC)
  endif()
endforeach()
set(Boost_NO_BOOST_CMAKE ON)
set(Boost_INCLUDE_DIR ${orvanth_headers} CACHE PATH "Folder of boost")

# The run-time libraries of the compiler are linked in: what is built needs DLLs of the system only. A target with the
# property ORVANTH_SHARED_RUNTIME takes them as DLLs, which then have to be found when it is loaded.
add_link_options("$<$<NOT:$<BOOL:$<TARGET_PROPERTY:ORVANTH_SHARED_RUNTIME>>>:-static>")

# orvanth_dll(<target> <version script>): the target becomes a DLL that exports the names of the version script, with a
# version resource and import libraries for mingw-w64 (.dll.a) and for the linker of Visual C++ (.lib).
function(orvanth_dll target version_script)
  get_target_property(library ${target} OUTPUT_NAME)
  set(description "Numerical core of a statistics package")
  set(definition ${CMAKE_CURRENT_BINARY_DIR}/${library}.def)
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${library}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/windows/version.rc.in ${resource} @ONLY)
  set(script ${PROJECT_SOURCE_DIR}/cmake/windows/ModuleDefinition.cmake)
  add_custom_command(OUTPUT ${definition}
    COMMAND ${CMAKE_COMMAND} -DVERSION_SCRIPT=${version_script} -DLIBRARY=${library}.dll -DDEFINITION=${definition}
            -P ${script}
    DEPENDS ${version_script} ${script})
  set(import_library ${PROJECT_BINARY_DIR}/src/${library}.lib)
  add_custom_command(OUTPUT ${import_library}
    COMMAND ${CMAKE_DLLTOOL} --input-def ${definition} --output-lib ${import_library}
    DEPENDS ${definition})
  add_custom_target(${target}_import_library ALL DEPENDS ${import_library})
  target_sources(${target} PRIVATE ${definition} ${resource})
  target_link_options(${target} PRIVATE $<$<CONFIG:Release>:-s> -Wl,-Map=${PROJECT_BINARY_DIR}/src/${library}.map)
  set_target_properties(${target} PROPERTIES
    PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/src ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/src
    LINK_DEPENDS ${definition} ORVANTH_IMPORT_LIBRARY ${import_library})
endfunction()
