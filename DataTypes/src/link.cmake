# Util::Guid uses the RPC runtime on Windows.
if(WIN32)
    target_link_libraries(ZtUtilities PRIVATE rpcrt4)
endif()
