set(CMAKE_SYSTEM_PROCESSOR i686)
# Every Windows from 8 on needs a processor with these instructions. The engine's ciphers use them, and floating-point
# numbers come out as in 64 bits.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
