# Money and decimal numbers: the independent decimal oracle (Python's decimal module).
find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_test(NAME money.DecimalOracle
         COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/decimal_oracle.py
                 --test-binary $<TARGET_FILE:test_DataTypes> --count 100000)
set_tests_properties(money.DecimalOracle PROPERTIES TIMEOUT 300 LABELS money)

# ztutil money: a dollar amount plus a percent, an overflow, and a usage error.
if(TARGET ztutil)
    add_test(NAME money.ZtutilAddsPercentToDollars COMMAND ztutil money 5 + 10%)
    set_tests_properties(money.ZtutilAddsPercentToDollars PROPERTIES
        PASS_REGULAR_EXPRESSION "result: +5\\.10\nkind: +dollar\npercent: +no")
    add_test(NAME money.ZtutilReportsOverflow COMMAND ztutil money 9999999999999.99 + 0.01)
    set_tests_properties(money.ZtutilReportsOverflow PROPERTIES WILL_FAIL TRUE)
    add_test(NAME money.ZtutilOverflowText COMMAND ztutil money 9999999999999.99 + 0.01)
    set_tests_properties(money.ZtutilOverflowText PROPERTIES
        PASS_REGULAR_EXPRESSION "error: +yes\noverflow: +yes")
    add_test(NAME money.ZtutilUnknownOperatorIsAUsageError COMMAND ztutil money 1 ^ 2)
    set_tests_properties(money.ZtutilUnknownOperatorIsAUsageError PROPERTIES WILL_FAIL TRUE)
    add_test(NAME money.ZtutilDemoShowsOverflow COMMAND ztutil demo)
    set_tests_properties(money.ZtutilDemoShowsOverflow PROPERTIES
        PASS_REGULAR_EXPRESSION "Overflow flag after it: set")
endif()
