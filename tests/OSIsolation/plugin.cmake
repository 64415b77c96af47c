add_library(zt_test_plugin MODULE ${CMAKE_CURRENT_LIST_DIR}/plugin/plugin.cpp)
add_dependencies(test_OSIsolation zt_test_plugin)
target_compile_definitions(test_OSIsolation PRIVATE
    ZT_TEST_PLUGIN_PATH="$<TARGET_FILE:zt_test_plugin>")
