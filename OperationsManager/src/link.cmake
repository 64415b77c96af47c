# The regular-expression filters use RE2 (linear time, no recursion); it stays private to the
# library. Debian's RE2 comes with a pkg-config file; the mingw-w64 build of tools/windows-deps
# with RE2's own CMake package.
if(CMAKE_CROSSCOMPILING AND WIN32)
    find_package(re2 CONFIG REQUIRED)
    target_link_libraries(ZtUtilities PRIVATE re2::re2)
else()
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(ZT_RE2 REQUIRED IMPORTED_TARGET re2)
    target_link_libraries(ZtUtilities PRIVATE PkgConfig::ZT_RE2)
endif()
