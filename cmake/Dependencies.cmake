# Every dependency comes from a Debian package installed by tools/install-deps.
find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(pugixml REQUIRED)

# The library links a private copy of pugixml: the static archive, its symbols kept local on
# Linux as the DLL keeps them on Windows. The library routes that copy's allocations through its
# memory manager (MemoryManager/src/xmlmemory.cpp), a process-wide setting of pugixml that must
# not reach a program using the system's shared pugixml itself.
add_library(ZtUtil_pugixml INTERFACE)
add_library(ZtUtil::pugixml ALIAS ZtUtil_pugixml)
if(TARGET pugixml::static)
    target_link_libraries(ZtUtil_pugixml INTERFACE pugixml::static)
else()
    target_link_libraries(ZtUtil_pugixml INTERFACE pugixml::pugixml)
endif()
if(NOT WIN32)
    target_link_options(ZtUtil_pugixml INTERFACE "LINKER:--exclude-libs,libpugixml.a")
endif()

# The Intel decimal library, built with a global rounding mode and global status flags.
find_library(ZT_BID_LIBRARY NAMES libbidgcc011.a bidgcc011 REQUIRED)
find_path(ZT_BID_INCLUDE_DIR NAMES bid_functions.h REQUIRED)
add_library(ZtUtil_bid INTERFACE)
add_library(ZtUtil::bid ALIAS ZtUtil_bid)
target_link_libraries(ZtUtil_bid INTERFACE ${ZT_BID_LIBRARY})
target_include_directories(ZtUtil_bid SYSTEM INTERFACE ${ZT_BID_INCLUDE_DIR})
target_compile_definitions(ZtUtil_bid INTERFACE DECIMAL_CALL_BY_REFERENCE=0
                           DECIMAL_GLOBAL_ROUNDING=1 DECIMAL_GLOBAL_EXCEPTION_FLAGS=1)
