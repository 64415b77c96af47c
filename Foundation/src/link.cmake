# The process memory counters behind the page-fault count live in psapi on Windows.
if(WIN32)
    target_link_libraries(ZtUtilities PRIVATE psapi)
endif()
