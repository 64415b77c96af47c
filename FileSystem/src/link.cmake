# Disk devices resolve machine addresses through Winsock on Windows.
if(WIN32)
    target_link_libraries(ZtUtilities PRIVATE ws2_32)
endif()
