# Installs the library into a scratch prefix, then configures, builds and runs a consumer
# project against it through find_package(ZtUtilities).
set(zt_consumer_flags "")
if(ZT_SANITIZE STREQUAL "address")
    set(zt_consumer_flags "-fsanitize=address,undefined")
elseif(ZT_SANITIZE STREQUAL "thread")
    set(zt_consumer_flags "-fsanitize=thread")
endif()
add_test(NAME Install.ConsumerBuildsAgainstInstallTree
    COMMAND ${CMAKE_COMMAND}
        -DBUILD_DIR=${CMAKE_BINARY_DIR}
        -DWORK_DIR=${CMAKE_BINARY_DIR}/install-test
        -DCONSUMER_DIR=${CMAKE_CURRENT_LIST_DIR}/consumer
        -DGENERATOR=${CMAKE_GENERATOR}
        "-DCONSUMER_FLAGS=${zt_consumer_flags}"
        # Cross-built: the consumer uses the same toolchain and runs under the emulator (Wine),
        # linked against the import library.
        "-DTOOLCHAIN=${CMAKE_TOOLCHAIN_FILE}" "-DWINDOWS_DEPS=${ZT_WINDOWS_DEPS}"
        "-DEMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}"
        "-DRUNTIME_DIR=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
        -P ${CMAKE_SOURCE_DIR}/cmake/RunInstallTest.cmake)
set_tests_properties(Install.ConsumerBuildsAgainstInstallTree PROPERTIES TIMEOUT 300)
