# Cross-builds for 64-bit Windows with Debian's mingw-w64 (posix thread model: std::mutex and
# std::thread need it) and runs the programs under Wine.
# ZT_WINDOWS_DEPS names the prefix tools/windows-deps built (the Intel decimal library, pugixml,
# RE2 and GoogleTest for mingw-w64).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT ZT_WINDOWS_DEPS AND DEFINED ENV{ZT_WINDOWS_DEPS})
    set(ZT_WINDOWS_DEPS "$ENV{ZT_WINDOWS_DEPS}")
endif()
if(NOT ZT_WINDOWS_DEPS)
    file(GLOB zt_deps_done /var/cache/ztutilities/mingw-*/.done)
    if(zt_deps_done)
        list(SORT zt_deps_done)
        list(GET zt_deps_done -1 zt_deps_newest)
        get_filename_component(ZT_WINDOWS_DEPS "${zt_deps_newest}" DIRECTORY)
    endif()
endif()
set(ZT_WINDOWS_DEPS "${ZT_WINDOWS_DEPS}" CACHE PATH "Prefix of the mingw-w64 dependencies")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZT_WINDOWS_DEPS)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${ZT_WINDOWS_DEPS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Boost's header-only parts are used as they are.
set(Boost_INCLUDE_DIR ${ZT_WINDOWS_DEPS}/boost-headers)

# CMakeLists.txt includes cmake/Windows.cmake, which runs the programs under Wine.
