# test_core includes every public header at once (globalnames_test_posix.cpp): one generated
# header that lists them all, so a new header is checked without being named anywhere.
file(GLOB zt_public_headers CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/inc/Util/*.h")
list(SORT zt_public_headers)
set(zt_all_headers_text "")
foreach(header IN LISTS zt_public_headers)
    get_filename_component(header_name "${header}" NAME)
    string(APPEND zt_all_headers_text "#include \"Util/${header_name}\"\n")
endforeach()
file(GENERATE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/zt_all_public_headers.h"
     CONTENT "${zt_all_headers_text}")
target_compile_definitions(test_core PRIVATE
    ZT_ALL_PUBLIC_HEADERS="${CMAKE_CURRENT_BINARY_DIR}/zt_all_public_headers.h")
