# ztutil calc end to end: values and types, assignments, aliases, functions, errors with carets.
if(TARGET ztutil)
    add_test(NAME calc.ValueAndType COMMAND ztutil calc "1 + 2 * 3")
    set_tests_properties(calc.ValueAndType PROPERTIES PASS_REGULAR_EXPRESSION "^7 \\(double\\)")
    add_test(NAME calc.AssignmentIsPrinted
             COMMAND ztutil calc --var Qty=4 --var Price=2.5 --alias "Disc=Qty * 0.5"
                     "Total := Price * Qty - $(Disc)")
    set_tests_properties(calc.AssignmentIsPrinted PROPERTIES PASS_REGULAR_EXPRESSION
                         "Total := 8\n8 \\(double\\)")
    add_test(NAME calc.Functions COMMAND ztutil calc --var s=abc
             "upper(s) + len(s) + if(max(1, 5) > 4, 'y', 'n') + round(2.346, 2) + abs(-1)")
    set_tests_properties(calc.Functions PROPERTIES PASS_REGULAR_EXPRESSION "^ABC3y2.351 \\(string\\)")
    add_test(NAME calc.WrongArgumentCount COMMAND ztutil calc "abs(1, 2)")
    set_tests_properties(calc.WrongArgumentCount PROPERTIES WILL_FAIL TRUE)
    add_test(NAME calc.WrongArgumentCountMessage COMMAND ztutil calc "abs(1, 2)")
    set_tests_properties(calc.WrongArgumentCountMessage PROPERTIES PASS_REGULAR_EXPRESSION
                         "status 14 .*Invalid number of parameters abs ")
    add_test(NAME calc.CaretUnderTheError COMMAND ztutil calc "(1 + 2")
    set_tests_properties(calc.CaretUnderTheError PROPERTIES PASS_REGULAR_EXPRESSION
                         "status 3 .* at offset 6\n  \\(1 \\+ 2\n        \\^")
    add_test(NAME calc.Tree COMMAND ztutil calc --tree "a := 2 - 1")
    set_tests_properties(calc.Tree PROPERTIES PASS_REGULAR_EXPRESSION
                         "Assign \\(1\\)\n  Variable a \\(1\\)\n  Sub \\(1\\)")
    add_test(NAME calc.NoExpressionIsAUsageError COMMAND ztutil calc --tree)
    set_tests_properties(calc.NoExpressionIsAUsageError PROPERTIES WILL_FAIL TRUE)
    add_test(NAME calc.DemoSection COMMAND ztutil demo)
    set_tests_properties(calc.DemoSection PROPERTIES PASS_REGULAR_EXPRESSION
                         "Total := \\(Price \\* Qty\\) - \\$\\(Discount\\)  ->  45")
endif()
