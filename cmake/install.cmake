# cmake --install: the shared library, its headers, the CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)
install(TARGETS VdStoMgr EXPORT VdStoMgrTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

# The installed headers are the interface: what vdstomgr.h includes, and nothing else.
function(vdsto_add_closure header)
  get_property(seen GLOBAL PROPERTY vdsto_interface)
  if(header IN_LIST seen)
    return()
  endif()
  set_property(GLOBAL APPEND PROPERTY vdsto_interface ${header})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${header})
  file(STRINGS ${PROJECT_SOURCE_DIR}/${header} includes REGEX "^#include \"vdstomgr/")
  foreach(include ${includes})
    string(REGEX REPLACE "^#include \"(.*)\".*" "\\1" include "${include}")
    vdsto_add_closure(${include})
  endforeach()
endfunction()
vdsto_add_closure(vdstomgr/vdstomgr.h)
get_property(interface GLOBAL PROPERTY vdsto_interface)
foreach(header ${interface})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

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
