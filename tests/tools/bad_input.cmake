# ztutil against unwritable output, bad Base64 text and subscription files that are not files.
if(TARGET ztutil AND NOT WIN32)
    find_package(Python3 COMPONENTS Interpreter)
    if(Python3_Interpreter_FOUND)
        add_test(NAME ztutil.BadInputAndUnwritableOutputFail
                 COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/ztutil_bad_input.py
                         $<TARGET_FILE:ztutil>)
    endif()
endif()
