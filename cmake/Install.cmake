include(CMakePackageConfigHelpers)

install(TARGETS ZtUtilities EXPORT ZtUtilitiesTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY inc/Util DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${CMAKE_BINARY_DIR}/generated/Util/Version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Util)
if(ZT_BUILD_TOOLS)
    install(TARGETS ztutil RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(ZT_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZtUtilities)
install(EXPORT ZtUtilitiesTargets NAMESPACE ZtUtilities:: DESTINATION ${ZT_CMAKE_DIR})
configure_package_config_file(cmake/ZtUtilitiesConfig.cmake.in
    ${CMAKE_BINARY_DIR}/ZtUtilitiesConfig.cmake INSTALL_DESTINATION ${ZT_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/ZtUtilitiesConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/ZtUtilitiesConfig.cmake
              ${CMAKE_BINARY_DIR}/ZtUtilitiesConfigVersion.cmake
        DESTINATION ${ZT_CMAKE_DIR})

configure_file(cmake/ZtUtilities.pc.in ${CMAKE_BINARY_DIR}/ZtUtilities.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/ZtUtilities.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
