# What `cmake --install` puts under its prefix, and the Debian package made
# of it (`make package`). README.md, section Install, describes the result.
#
#   lib/wz/libwz.so        the exit: the file that a qm.ini stanza names
#   bin/wzreform           the trace reader
#   bin/wzreform32         the same reader under its second name (a link)
#   share/doc/wz/          README.md, docs/*.md, wz.def.sample, qm.ini.sample
#
# zkqm and dspzkver stand in for the queue manager and its level display in
# the tests and the demonstration. They belong to the component "testtools",
# which neither the default install nor the package holds:
#
#   cmake --install build --component testtools --prefix P
#
# puts them together (zkqm finds dspzkver beside itself) in P/libexec/wz/.
# tests/package/ checks all of this.

# The component of everything installed by default and packaged.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME wz)
set(WZ_INSTALL_LIBDIR lib/wz)
set(WZ_INSTALL_BINDIR bin)
set(WZ_INSTALL_DOCDIR share/doc/wz)
set(WZ_INSTALL_TESTTOOLSDIR libexec/wz)
# The prefix of the package, the one that docs/qm.ini.sample names.
set(WZ_PACKAGE_PREFIX /opt/wz)

# The exit keeps the file name libwz.so (see CMakeLists.txt: the version is
# in its SONAME only).
install(TARGETS wz LIBRARY DESTINATION ${WZ_INSTALL_LIBDIR})

file(GLOB WZ_DOCS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/docs/*.md)
install(FILES ${CMAKE_SOURCE_DIR}/README.md ${WZ_DOCS} ${CMAKE_SOURCE_DIR}/docs/wz.def.sample
        DESTINATION ${WZ_INSTALL_DOCDIR})
# The qm.ini sample names the library where this install puts it: the
# package's prefix in the source is replaced by the prefix of the install.
install(CODE "set(WZ_QM_INI_SAMPLE \"${CMAKE_SOURCE_DIR}/docs/qm.ini.sample\")
set(WZ_PACKAGE_PREFIX \"${WZ_PACKAGE_PREFIX}\")
set(WZ_INSTALL_DOCDIR \"${WZ_INSTALL_DOCDIR}\")
set(WZ_INSTALL_LIBDIR \"${WZ_INSTALL_LIBDIR}\")" COMPONENT wz)
install(SCRIPT ${CMAKE_SOURCE_DIR}/cmake/install_qm_ini.cmake COMPONENT wz)

foreach(tool zkqm dspzkver)
  if(TARGET ${tool})
    install(TARGETS ${tool} RUNTIME DESTINATION ${WZ_INSTALL_TESTTOOLSDIR}
            COMPONENT testtools EXCLUDE_FROM_ALL)
  endif()
endforeach()

# The trace reader is defined in reform/, which may be added after this
# file is read: its rules are made once the whole top directory is read.
function(wz_install_reader)
  set(elf_files $<TARGET_FILE:wz>)
  if(TARGET wzreform)
    # The package needs nothing but libc6 (cmake/package_depends.cmake):
    # the reader carries its C++ runtime inside, as the exit does. Not with
    # the sanitizers, whose runtimes need the shared one.
    if(NOT WZ_SANITIZE)
      foreach(reader wzreform wzreform32)
        if(TARGET ${reader})
          target_link_options(${reader} PRIVATE -static-libstdc++ -static-libgcc)
        endif()
      endforeach()
    endif()
    install(TARGETS wzreform RUNTIME DESTINATION ${WZ_INSTALL_BINDIR})
    list(APPEND elf_files $<TARGET_FILE:wzreform>)
    if(TARGET wzreform32)
      install(TARGETS wzreform32 RUNTIME DESTINATION ${WZ_INSTALL_BINDIR})
      list(APPEND elf_files $<TARGET_FILE:wzreform32>)
    else()
      # A relative link, made here and installed as a link beside wzreform.
      set(link ${CMAKE_BINARY_DIR}/install-links/wzreform32)
      file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/install-links)
      file(CREATE_LINK wzreform ${link} SYMBOLIC)
      install(FILES ${link} DESTINATION ${WZ_INSTALL_BINDIR})
    endif()
  endif()
  # The programs and libraries of the package, for its Depends field
  # (cmake/package_depends.cmake reads them when cpack runs).
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/CPackWzProject.cmake
       CONTENT "set(WZ_PACKAGE_ELF_FILES \"${elf_files}\")
include(\"${CMAKE_SOURCE_DIR}/cmake/package_depends.cmake\")
")
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL wz_install_reader)

# ---- the Debian package: wz_<version>_i386.deb ----
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME wz)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "wz support")
set(CPACK_PACKAGE_CONTACT "wz support <support@wz-trace.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "API-call trace exit for the ZK queue manager")
# The long description under the summary line; cpack indents its lines and
# marks the empty one.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "The queue manager loads libwz.so into every process that connects to it.
The exit writes a record of each ZKI call before and after it runs: the
handles, every structure field by field, the message data parsed through
its headers. wzreform reads the trace files back.

Installed under /opt/wz: the exit is /opt/wz/lib/wz/libwz.so; a qm.ini
stanza and a commented wz.def are in /opt/wz/share/doc/wz/.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CPACK_PACKAGE_CONTACT}")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Every binary is built for i386 (cmake/i386.cmake).
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Nothing but the C library: the C++ runtime is linked into libwz.so.
# cmake/package_depends.cmake fills in the version of libc6 that the
# binaries need, and fails on any other library. wzreform opens traces
# compressed with zstd through the zstd program; gzip is always there.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "zstd")
# The install runs with the package's prefix itself (and the staging
# folder as DESTDIR), so that the qm.ini sample names /opt/wz.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX ${WZ_PACKAGE_PREFIX})
set(CPACK_PACKAGING_INSTALL_PREFIX ${WZ_PACKAGE_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_BINARY_DIR}/CPackWzProject.cmake)
# The source package is not made: the repository is the source.
set(CPACK_SOURCE_GENERATOR "")
include(CPack)
