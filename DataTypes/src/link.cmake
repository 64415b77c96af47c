# Util::Guid uses the RPC runtime on Windows.
if(WIN32)
    target_link_libraries(ZtUtilities PRIVATE rpcrt4)
endif()

# The value types' hot paths call their own helpers: let the compiler inline and call them
# directly instead of through the PLT (nothing outside the library replaces them).
set_source_files_properties(
    ${CMAKE_SOURCE_DIR}/DataTypes/src/blockstringcache.cpp
    ${CMAKE_SOURCE_DIR}/DataTypes/src/base64coder.cpp
    PROPERTIES COMPILE_OPTIONS "-fno-semantic-interposition")

# The Intel decimal library stays private to our shared library: its symbols are hidden there,
# so our calls into it are direct rather than through the PLT, and programs that link the
# library themselves get their own copy instead of binding to ours.
if(NOT WIN32 AND NOT APPLE)
    target_link_options(ZtUtilities PRIVATE "LINKER:--exclude-libs,libbidgcc011.a")
endif()
