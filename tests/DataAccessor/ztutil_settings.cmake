# ztutil settings on a scratch data directory: a value written is read back, a missing key and a
# damaged repository exit non-zero.
if(TARGET ztutil)
    set(zt_settings_dir "${CMAKE_BINARY_DIR}/ztutil-settings")
    file(MAKE_DIRECTORY "${zt_settings_dir}")
    set(zt_settings_env "ZTUTIL_DATA_DIR=${zt_settings_dir};ZTUTIL_PROGRAM_DIR=${zt_settings_dir}")
    # The shell runs a cross-built ztutil through the emulator (Wine) itself.
    set(zt_run "")
    if(CMAKE_CROSSCOMPILING_EMULATOR)
        set(zt_run "${CMAKE_CROSSCOMPILING_EMULATOR} ")
    endif()
    add_test(NAME settings.ZtutilSetThenGet
        COMMAND sh -c "${zt_run}$<TARGET_FILE:ztutil> settings set ZTW.INI Window Left 120 && ${zt_run}$<TARGET_FILE:ztutil> settings get ZTW.INI Window Left")
    add_test(NAME settings.ZtutilMissingKeyFails COMMAND ztutil settings get ZTW.INI Window Nothing)
    add_test(NAME settings.ZtutilCheckReportsDamage
        COMMAND sh -c "echo broken > '${zt_settings_dir}/BROKEN.INI.XML'; ${zt_run}$<TARGET_FILE:ztutil> settings check; test $? -eq 1")
    set_tests_properties(settings.ZtutilSetThenGet settings.ZtutilMissingKeyFails
        settings.ZtutilCheckReportsDamage PROPERTIES ENVIRONMENT "${zt_settings_env}"
        RESOURCE_LOCK ztutil-settings)
    set_tests_properties(settings.ZtutilSetThenGet PROPERTIES PASS_REGULAR_EXPRESSION "^120")
    set_tests_properties(settings.ZtutilMissingKeyFails PROPERTIES WILL_FAIL TRUE)
    set_tests_properties(settings.ZtutilCheckReportsDamage PROPERTIES
        PASS_REGULAR_EXPRESSION "damaged: BROKEN.INI.XML")
endif()
