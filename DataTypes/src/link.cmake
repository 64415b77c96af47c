# The Intel decimal library stays private to our shared library: its symbols are hidden there,
# so our calls into it are direct rather than through the PLT, and programs that link the
# library themselves get their own copy instead of binding to ours.
if(NOT WIN32 AND NOT APPLE)
    target_link_options(ZtUtilities PRIVATE "LINKER:--exclude-libs,libbidgcc011.a")
endif()
