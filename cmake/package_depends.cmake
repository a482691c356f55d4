# Read by cpack (through CPackWzProject.cmake, which cmake/install.cmake
# writes with the list WZ_PACKAGE_ELF_FILES): the Depends field of the
# package, from the binaries themselves. Every library they need must come
# from libc6, and libc6 must be at least the newest GLIBC_ symbol version
# they use. Anything else stops the packaging: a new dependency is a
# decision, not an accident.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
find_program(WZ_READELF NAMES readelf)
if(NOT WZ_READELF)
  message(FATAL_ERROR "readelf (binutils) is needed to find the package's dependencies")
endif()

set(newest "")
foreach(elf IN LISTS WZ_PACKAGE_ELF_FILES)
  if(NOT EXISTS "${elf}")
    message(FATAL_ERROR "${elf} has not been built")
  endif()
  execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C
                          ${WZ_READELF} --wide --dynamic --dyn-syms "${elf}"
                  OUTPUT_VARIABLE dump RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "readelf failed on ${elf}")
  endif()
  string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*\\[[^]\n]+\\]" needed_lines "${dump}")
  foreach(line IN LISTS needed_lines)
    string(REGEX REPLACE ".*\\[([^]]+)\\]" "\\1" library "${line}")
    if(NOT library MATCHES "^(libc\\.so\\.6|libm\\.so\\.6|libdl\\.so\\.2|libpthread\\.so\\.0|librt\\.so\\.1|ld-linux\\.so\\.2)$")
      message(FATAL_ERROR "${elf} needs ${library}, which libc6 does not provide: "
                          "link it statically or add the package to cmake/package_depends.cmake")
    endif()
  endforeach()
  string(REGEX MATCHALL "@GLIBC_[0-9]+(\\.[0-9]+)+" versions "${dump}")
  foreach(v IN LISTS versions)
    string(REPLACE "@GLIBC_" "" v "${v}")
    if(newest STREQUAL "" OR v VERSION_GREATER newest)
      set(newest ${v})
    endif()
  endforeach()
endforeach()

if(newest STREQUAL "")
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6")
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= ${newest})")
endif()
message(STATUS "wz package depends on: ${CPACK_DEBIAN_PACKAGE_DEPENDS}")
