# What the build needs. What is missing is said by name, with the command that brings it.

function(orvanth_missing what set)
  message(FATAL_ERROR "${what} is missing.\n"
                      "On Debian 12 this command installs it: ${PROJECT_SOURCE_DIR}/tools/install_packages.sh ${set}")
endfunction()

macro(orvanth_needs_package name version what set)
  find_package(${name} ${version} QUIET)
  if(NOT ${name}_FOUND)
    orvanth_missing("${what}" ${set})
  endif()
endmacro()

macro(orvanth_needs_language language what set)
  include(CheckLanguage)
  check_language(${language})
  if(NOT CMAKE_${language}_COMPILER)
    orvanth_missing("${what}" ${set})
  endif()
  enable_language(${language})
endmacro()
