# What every target of ours is built with.

if(CALYXCLIENT_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

option(CALYXCLIENT_WARNINGS "Build our own code with many warnings" OFF)
option(CALYXCLIENT_WERROR "Treat warnings in our own code as errors" OFF)

find_program(CALYXCLIENT_CCACHE ccache)
mark_as_advanced(CALYXCLIENT_CCACHE)
if(CALYXCLIENT_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER "${CALYXCLIENT_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CALYXCLIENT_CCACHE}")
endif()

# Settings of one target of ours: language level, moc, warnings, sanitizers.
function(calyxclient_settings target)
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        CXX_STANDARD 17
        CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING QT_STRICT_ITERATORS)
    if(CALYXCLIENT_WARNINGS)
        target_compile_options(${target} PRIVATE
            $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion;-Wnon-virtual-dtor>
            # Qt's own qCDebug(category), as everybody writes it.
            $<$<COMPILE_LANG_AND_ID:CXX,Clang,AppleClang>:-Wno-gnu-zero-variadic-macro-arguments>)
        # In a unity build every file is a header to the compiler, in which nothing should be of one file alone.
        if(CMAKE_UNITY_BUILD)
            target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
        endif()
        # Qt 6 counts in 64 bits: the library, which takes what comes from outside, says where it does not.
        if(CALYXCLIENT_QT EQUAL 6 AND NOT target STREQUAL calyxclient)
            target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-conversion>)
        endif()
    endif()
    if(CALYXCLIENT_WERROR)
        target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Werror>)
    endif()
    if(CALYXCLIENT_SANITIZERS)
        target_compile_options(${target} PRIVATE
            -fsanitize=${CALYXCLIENT_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=${CALYXCLIENT_SANITIZERS})
    endif()
endfunction()
