# ztutil time and the foundation demo section.
if(TARGET ztutil)
    # Wine counts no page faults.
    set(zt_faults "[1-9]")
    if(CMAKE_CROSSCOMPILING)
        set(zt_faults "[0-9]")
    endif()
    add_test(NAME ztutil.TimeRunsACommandAndReportsItsCost
             COMMAND ztutil time $<TARGET_FILE:ztutil> --version)
    set_tests_properties(ztutil.TimeRunsACommandAndReportsItsCost PROPERTIES
        PASS_REGULAR_EXPRESSION "exit status: 0\nwall: +[0-9]+ ms\nwall: +[0-9]+ us\npage faults: ${zt_faults}")
    add_test(NAME ztutil.TimeFailsWhenTheCommandFails COMMAND ztutil time ztutil no-such-command)
    set_tests_properties(ztutil.TimeFailsWhenTheCommandFails PROPERTIES WILL_FAIL TRUE)
    add_test(NAME ztutil.TimeOfAMissingProgramFails COMMAND ztutil time zt-no-such-program)
    set_tests_properties(ztutil.TimeOfAMissingProgramFails PROPERTIES WILL_FAIL TRUE)
    add_test(NAME ztutil.TimeWithoutACommandIsAUsageError COMMAND ztutil time)
    set_tests_properties(ztutil.TimeWithoutACommandIsAUsageError PROPERTIES WILL_FAIL TRUE)
    add_test(NAME ztutil.DemoShowsFoundationServices COMMAND ztutil demo)
    set_tests_properties(ztutil.DemoShowsFoundationServices PROPERTIES
        PASS_REGULAR_EXPRESSION "sum of 1..1000 = 500500.*removed once: yes, twice: no")
endif()
