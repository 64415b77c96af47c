# The Windows build (mingw-w64, see cmake/mingw-w64-x86_64.cmake): every program and DLL goes to
# one bin folder with the compiler's runtime DLLs, as an installed copy would lay them out, and
# programs built here run under Wine through the wine-run script, in a Wine prefix of this build
# folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# Runtime DLLs of the posix thread model: libstdc++, libgcc's SEH unwinder and winpthreads.
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
                    OUTPUT_VARIABLE dll_path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${dll_path}")
        message(FATAL_ERROR "The compiler's runtime ${dll} was not found")
    endif()
    file(COPY ${dll_path} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endforeach()

if(CMAKE_CROSSCOMPILING)
    find_program(ZT_WINE64 NAMES wine64 PATHS /usr/lib/wine NO_DEFAULT_PATH)
    find_program(ZT_WINE64 NAMES wine64 wine REQUIRED)
    set(ZT_WINEPREFIX ${CMAKE_BINARY_DIR}/wineprefix)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/wine-run.in ${CMAKE_BINARY_DIR}/wine-run @ONLY
                   FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
                                    GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_BINARY_DIR}/wine-run)
endif()
