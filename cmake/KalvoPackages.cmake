# Debian packages: the library, what programs are built with, and our own programs. scripts/packages.sh makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Kalvo developers <kalvo@example.org>")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_COMPONENTS_ALL library svg development programs python)

find_package(Python COMPONENTS Interpreter REQUIRED)
math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
set(library libkalvo${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "Images and regions of interest over fifteen pixel types, archives of image
trees, TIFF, BMP and JPEG files, typed vectors, units, display, resampling.")

set(svg_library libkalvo-svg${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_SVG_PACKAGE_NAME ${svg_library})
set(CPACK_DEBIAN_SVG_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_SVG_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_SVG_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_SVG_DESCRIPTION "Draws annotated images and plots as vector graphics.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkalvo-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}), ${svg_library} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Headers, and what CMake and pkg-config need to find the library.")

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME kalvo)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}), ${svg_library} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_PROGRAMS_DESCRIPTION
    "kalvo converts, compares, draws and plots images and archives; kalvo-view
shows them and places regions of interest on them.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-kalvo)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}), python3-numpy, python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}), python3 (<< ${Python_VERSION_MAJOR}.${next_minor})")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "Images as arrays of numpy, regions, masks, archives, files, pictures and plots
in Python.")

file(WRITE ${CMAKE_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/debian/triggers)
set(CPACK_DEBIAN_SVG_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/debian/triggers)

# Python leaves what it compiles beside its files.
file(WRITE ${CMAKE_BINARY_DIR}/debian/prerm
     "#!/bin/sh\nset -e\nif command -v py3clean >/dev/null; then py3clean -p python3-kalvo; fi\n")
file(CHMOD ${CMAKE_BINARY_DIR}/debian/prerm PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
     WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/debian/prerm)

# What Debian wants to know of every package.
file(WRITE ${CMAKE_BINARY_DIR}/debian/copyright "Copyright 2026 the Kalvo developers\nAll rights reserved.\n")
file(WRITE ${CMAKE_BINARY_DIR}/debian/changelog
     "kalvo (${PROJECT_VERSION}) stable; urgency=medium\n\n  * See CHANGELOG.md of the sources.\n\n"
     " -- ${CPACK_PACKAGE_CONTACT}  Thu, 01 Jan 2026 00:00:00 +0000\n")
find_program(GZIP gzip REQUIRED)
execute_process(COMMAND ${GZIP} -9nfk changelog WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/debian)
foreach(component LIBRARY SVG DEVELOPMENT PROGRAMS PYTHON)
  string(TOLOWER ${component} name)
  install(FILES ${CMAKE_BINARY_DIR}/debian/copyright ${CMAKE_BINARY_DIR}/debian/changelog.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${component}_PACKAGE_NAME} COMPONENT ${name})
endforeach()
include(CPack)
