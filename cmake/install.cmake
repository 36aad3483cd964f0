# cmake --install: the shared library, its headers, the CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)
install(TARGETS VdStoMgr EXPORT VdStoMgrTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/vdstomgr DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h"
        PATTERN "dao/jet" EXCLUDE PATTERN "dao/sqlite" EXCLUDE PATTERN "posix" EXCLUDE
        PATTERN "win32" EXCLUDE)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VdStoMgr)
install(EXPORT VdStoMgrTargets NAMESPACE VdStoMgr:: DESTINATION ${package_dir})
file(WRITE ${PROJECT_BINARY_DIR}/VdStoMgrConfig.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/VdStoMgrTargets.cmake)\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VdStoMgrConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VdStoMgrConfig.cmake
              ${PROJECT_BINARY_DIR}/VdStoMgrConfigVersion.cmake DESTINATION ${package_dir})
file(RELATIVE_PATH prefix_from_pc /p/${CMAKE_INSTALL_LIBDIR}/pkgconfig /p)
configure_file(${PROJECT_SOURCE_DIR}/cmake/vdstomgr.pc.in ${PROJECT_BINARY_DIR}/vdstomgr.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vdstomgr.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
