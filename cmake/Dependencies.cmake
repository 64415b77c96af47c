# Every dependency comes from a Debian package installed by tools/install-deps.
find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(pugixml REQUIRED)

# The Intel decimal library, built with a global rounding mode and global status flags.
find_library(ZT_BID_LIBRARY NAMES libbidgcc011.a bidgcc011 REQUIRED)
find_path(ZT_BID_INCLUDE_DIR NAMES bid_functions.h REQUIRED)
add_library(ZtUtil_bid INTERFACE)
add_library(ZtUtil::bid ALIAS ZtUtil_bid)
target_link_libraries(ZtUtil_bid INTERFACE ${ZT_BID_LIBRARY})
target_include_directories(ZtUtil_bid SYSTEM INTERFACE ${ZT_BID_INCLUDE_DIR})
target_compile_definitions(ZtUtil_bid INTERFACE DECIMAL_CALL_BY_REFERENCE=0
                           DECIMAL_GLOBAL_ROUNDING=1 DECIMAL_GLOBAL_EXCEPTION_FLAGS=1)
