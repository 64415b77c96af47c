# Util/Win32File.h names SHCreateDirectoryExA and ShellExecuteA, which live in shell32 on
# Windows; whoever calls them through the header links it too.
if(WIN32)
    target_link_libraries(ZtUtilities PUBLIC shell32)
endif()
