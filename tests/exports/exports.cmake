# The library exports its interface and nothing else, and keeps exporting every name of
# exports.txt: its dynamic symbols (nm -D on Linux, the DLL's export table on Windows) checked
# by check_exports.py. Cheap (a second or two) and needs only binutils and Python.
find_package(Python3 COMPONENTS Interpreter)
find_program(ZT_CXXFILT NAMES c++filt)
if(Python3_Interpreter_FOUND AND ZT_CXXFILT)
    if(WIN32)
        set(zt_exports_args --format pe --objdump ${CMAKE_OBJDUMP})
    else()
        set(zt_exports_args --format elf --nm ${CMAKE_NM})
    endif()
    add_test(NAME Exports.LibraryExportsItsInterfaceOnly
        COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/check_exports.py
            ${zt_exports_args} --cxxfilt ${ZT_CXXFILT} --library $<TARGET_FILE:ZtUtilities>
            --headers ${CMAKE_SOURCE_DIR}/inc/Util --required ${CMAKE_CURRENT_LIST_DIR}/exports.txt)
endif()
