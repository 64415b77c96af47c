# A fresh process reads its redirection rules from the section "Redirect" of "FileLocations.ini"
# in the data directory.
if(TARGET ztutil)
    set(zt_redirect_dir "${CMAKE_CURRENT_BINARY_DIR}/redirect_settings")
    file(MAKE_DIRECTORY "${zt_redirect_dir}")
    file(WRITE "${zt_redirect_dir}/FileLocations.ini" "[Redirect]\n/zt-requested=/zt-real\n")
    add_test(NAME files.RulesComeFromFileLocationsIni
             COMMAND ztutil files redirect /zt-requested/ledger.dat)
    set_tests_properties(files.RulesComeFromFileLocationsIni PROPERTIES
        ENVIRONMENT "ZTUTIL_PROGRAM_DIR=${zt_redirect_dir};ZTUTIL_DATA_DIR=${zt_redirect_dir}"
        PASS_REGULAR_EXPRESSION "/zt-real/ledger.dat")
endif()
