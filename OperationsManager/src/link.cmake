# The regular-expression filters use RE2 (linear time, no recursion); it stays private to the
# library.
find_package(PkgConfig REQUIRED)
pkg_check_modules(ZT_RE2 REQUIRED IMPORTED_TARGET re2)
target_link_libraries(ZtUtilities PRIVATE PkgConfig::ZT_RE2)
