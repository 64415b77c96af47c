# The expression engine's tree walks and Util::Variant's conversions call their own helpers on
# every node: let the compiler inline them instead of calling through the PLT (nothing outside
# the library replaces them).
if(NOT MSVC)
    set_source_files_properties(
        ${CMAKE_SOURCE_DIR}/expression/src/parsetreeeval.cpp
        ${CMAKE_SOURCE_DIR}/expression/src/parsetreeengine.cpp
        ${CMAKE_SOURCE_DIR}/expression/src/nodevariantdata.cpp
        PROPERTIES COMPILE_OPTIONS "-fno-semantic-interposition")
endif()

# Util::Variant's OLE VARIANT conversions (DataTypes/src/variant_win.cpp) use oleaut32.
if(WIN32)
    target_link_libraries(ZtUtilities PRIVATE oleaut32)
endif()
