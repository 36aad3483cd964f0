# cpack: a zip of what cmake --install installs, and the licences of what is linked into the library.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(licences ${PROJECT_BINARY_DIR}/licences)
file(MAKE_DIRECTORY ${licences})
if(NOT VDSTO_SQLITE_LIBRARY)
  add_custom_command(OUTPUT ${licences}/database-engine.txt
    COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/extract_licences.py
            ${PROJECT_BINARY_DIR}/sqlite3.c ${licences}/database-engine.txt
    DEPENDS ${PROJECT_BINARY_DIR}/sqlite3.c ${PROJECT_SOURCE_DIR}/scripts/extract_licences.py)
  add_custom_target(licences ALL DEPENDS ${licences}/database-engine.txt)
endif()
# The run-time libraries of the compiler are linked in; Debian says where their licences lie.
if(MINGW)
  foreach(package gcc-mingw-w64-base mingw-w64-common)
    configure_file(/usr/share/doc/${package}/copyright ${licences}/${package}.txt COPYONLY)
  endforeach()
endif()
install(DIRECTORY ${licences} DESTINATION .)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME VdStoMgr-${PROJECT_VERSION}-windows-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
