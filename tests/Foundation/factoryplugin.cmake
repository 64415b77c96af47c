add_library(zt_factory_plugin MODULE ${CMAKE_CURRENT_LIST_DIR}/factoryplugin/factoryplugin.cpp)
target_link_libraries(zt_factory_plugin PRIVATE ZtUtilities)
target_include_directories(zt_factory_plugin PRIVATE ${CMAKE_SOURCE_DIR})
add_dependencies(test_Foundation zt_factory_plugin)
target_compile_definitions(test_Foundation PRIVATE
    ZT_FACTORY_PLUGIN_PATH="$<TARGET_FILE:zt_factory_plugin>")
