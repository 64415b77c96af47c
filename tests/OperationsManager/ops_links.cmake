# The filter tests describe filters as subscription-file elements, parsed with pugixml.
target_link_libraries(test_OperationsManager PRIVATE pugixml::pugixml)
