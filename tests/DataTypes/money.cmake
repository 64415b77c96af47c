# Money and decimal numbers: the independent decimal oracle (Python's decimal module).
find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_test(NAME money.DecimalOracle
         COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/decimal_oracle.py
                 --test-binary $<TARGET_FILE:test_DataTypes> --count 100000)
set_tests_properties(money.DecimalOracle PROPERTIES TIMEOUT 300 LABELS money)
