# ztutil's subscription-file check and the operations-manager demo section.
if(TARGET ztutil)
    add_test(NAME ztutil.OpsCheckDescribesTheExample
             COMMAND ztutil ops check ${CMAKE_SOURCE_DIR}/examples/Diagnostics.ops)
    set_tests_properties(ztutil.OpsCheckDescribesTheExample PROPERTIES PASS_REGULAR_EXPRESSION
        "4 subscriptions.*ExpressionTrace.*wants: FUNC_ENTER, FUNC_STATUS, FUNC_EXIT at any level")
    add_test(NAME ztutil.OpsCheckNamesWhatIsWrong
             COMMAND ztutil ops check ${CMAKE_CURRENT_SOURCE_DIR}/OperationsManager/data/malformed.ops)
    set_tests_properties(ztutil.OpsCheckNamesWhatIsWrong PROPERTIES WILL_FAIL TRUE)
    add_test(NAME ztutil.OpsCheckWithoutFileIsAUsageError COMMAND ztutil ops check)
    set_tests_properties(ztutil.OpsCheckWithoutFileIsAUsageError PROPERTIES WILL_FAIL TRUE)
    add_test(NAME ztutil.OpsDemoQueuesReplaysAndLogs COMMAND ztutil demo)
    set_tests_properties(ztutil.OpsDemoQueuesReplaysAndLogs PROPERTIES PASS_REGULAR_EXPRESSION
        "6 events queued.*LVL_WARNING MESSAGE tools/ztutil/cmd_ops.cpp \\([0-9]+\\) : Disk space is low")
endif()
