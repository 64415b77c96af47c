# The filter tests describe filters as subscription-file elements, parsed with pugixml.
target_link_libraries(test_OperationsManager PRIVATE pugixml::pugixml)
# The INI reader is internal to the library (not exported): its test builds its own copy.
target_sources(test_OperationsManager PRIVATE ${CMAKE_SOURCE_DIR}/OperationsManager/src/opsinifile.cpp)
