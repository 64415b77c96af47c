# The Base64 tests compare with OpenSSL's block encoder, and on Windows with CryptoAPI's.
if(WIN32)
    target_link_libraries(test_DataTypes PRIVATE crypt32)
else()
    find_package(OpenSSL REQUIRED)
    target_link_libraries(test_DataTypes PRIVATE OpenSSL::Crypto)
endif()

# ztutil's base64 and guid commands, checked by Python's base64 and uuid modules.
if(TARGET ztutil)
    find_package(Python3 COMPONENTS Interpreter)
    if(Python3_Interpreter_FOUND)
        add_test(NAME values.ZtutilBase64AndGuidAgreeWithPython
                 COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/values_ztutil.py
                         $<TARGET_FILE:ztutil>)
    endif()
endif()
