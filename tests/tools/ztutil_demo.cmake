# ztutil demo prints the same sections, in the same order, on every platform (on Windows under
# Wine): the headings of the sections every build has.
if(TARGET ztutil)
    add_test(NAME ztutil.DemoPrintsEverySection COMMAND ztutil demo)
    set(zt_demo_headings "")
    foreach(title "Statuses" "Operations manager" "Money" "Expression engine and Variant"
                  "Value types" "Persistent settings" "Foundation services")
        string(APPEND zt_demo_headings "\n== ${title} ==\n.*")
    endforeach()
    set_tests_properties(ztutil.DemoPrintsEverySection PROPERTIES
        PASS_REGULAR_EXPRESSION "^ZtUtilities [0-9.]+ demo\n${zt_demo_headings}")
endif()
