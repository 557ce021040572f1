# Public headers: <CalyxClient/Name> for every public class, value type and enum namespace, and
# <CalyxClient/folder/Name.h>, both in the build tree and where the library is installed.

# calyxclient_forward(<target> <header below src, without .h> <name>...)
function(calyxclient_forward target header)
    get_filename_component(folder "${header}" DIRECTORY)
    set(root "${PROJECT_BINARY_DIR}/include/CalyxClient")
    foreach(name IN LISTS ARGN)
        file(CONFIGURE OUTPUT "${root}/${name}" CONTENT "#include \"@header@.h\"\n" @ONLY)
        install(FILES "${root}/${name}" DESTINATION "${CALYXCLIENT_INCLUDE_DIR}/CalyxClient" COMPONENT Development)
    endforeach()
    # With its whole path: by its name it may find itself.
    file(CONFIGURE OUTPUT "${root}/${header}.h" CONTENT "#include \"@PROJECT_SOURCE_DIR@/src/@header@.h\"\n" @ONLY)
    install(FILES "${PROJECT_SOURCE_DIR}/src/${header}.h"
        DESTINATION "${CALYXCLIENT_INCLUDE_DIR}/CalyxClient/${folder}" COMPONENT Development)
endfunction()
