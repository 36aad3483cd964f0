# Language level, warnings and sanitizers: one place for every target of ours (vdsto_defaults).
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(VDSTO_CCACHE ccache)
if(VDSTO_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${VDSTO_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VDSTO_CCACHE})
endif()

if(VDSTO_SANITIZE)
  add_compile_options(-fsanitize=${VDSTO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VDSTO_SANITIZE})
endif()

add_library(vdsto_defaults INTERFACE)
target_include_directories(vdsto_defaults INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(vdsto_defaults INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Werror
  -fvisibility=hidden -fvisibility-inlines-hidden)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This compiler warns of overlaps inside std::string's own operator+ when it optimises.
  target_compile_options(vdsto_defaults INTERFACE -Wno-restrict)
endif()
