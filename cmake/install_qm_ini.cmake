# Install step (cmake/install.cmake): the qm.ini sample, with the library's
# path under the prefix of this install in place of the package's.
file(READ "${WZ_QM_INI_SAMPLE}" text)
string(REPLACE "${WZ_PACKAGE_PREFIX}/${WZ_INSTALL_LIBDIR}/libwz.so"
               "${CMAKE_INSTALL_PREFIX}/${WZ_INSTALL_LIBDIR}/libwz.so" text "${text}")
set(target "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${WZ_INSTALL_DOCDIR}/qm.ini.sample")
message(STATUS "Installing: ${target}")
file(WRITE "${target}" "${text}")
list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${target}")
