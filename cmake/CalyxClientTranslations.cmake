# What people read is English in the sources, and German and French by translations/<name>_<language>.ts. Where Qt's lrelease is
# missing, it is English.

set(CALYXCLIENT_LANGUAGES de fr)
get_target_property(qmake Qt${CALYXCLIENT_QT}::qmake IMPORTED_LOCATION)
execute_process(COMMAND "${qmake}" -query QT_HOST_BINS OUTPUT_VARIABLE bin OUTPUT_STRIP_TRAILING_WHITESPACE)
find_program(CALYXCLIENT_LRELEASE lrelease HINTS "${bin}")
find_program(CALYXCLIENT_LUPDATE lupdate HINTS "${bin}")
mark_as_advanced(CALYXCLIENT_LRELEASE CALYXCLIENT_LUPDATE)
if(NOT CALYXCLIENT_LRELEASE)
    message(STATUS "lrelease not found: all texts are English (install qttools5-dev-tools, or qt6-l10n-tools, for German and French)")
endif()

# calyxclient_translations(<target> <name>): embeds them as the resource <name>_translations, in which QTranslator finds them as
# ":/calyxclient/<name>_<language>.qm". The empty English one ends its search where English comes first.
function(calyxclient_translations target name)
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/translations")
    file(WRITE "${folder}/${name}_en.ts" "<!DOCTYPE TS><TS version=\"2.1\" language=\"en\"/>\n")
    set(catalogues "")
    set(files "")
    set(commands "")
    if(CALYXCLIENT_LRELEASE)
        set(catalogues "${folder}/${name}_en.ts")
        foreach(language IN LISTS CALYXCLIENT_LANGUAGES)
            list(APPEND catalogues "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../translations/${name}_${language}.ts")
        endforeach()
    endif()
    foreach(catalogue IN LISTS catalogues)
        get_filename_component(stem "${catalogue}" NAME_WE)
        string(APPEND files "<file>${stem}.qm</file>")
        list(APPEND commands COMMAND "${CALYXCLIENT_LRELEASE}" -silent "${catalogue}" -qm "${folder}/${stem}.qm")
    endforeach()
    file(WRITE "${folder}/${name}.qrc" "<RCC><qresource prefix=\"/calyxclient\">${files}</qresource></RCC>\n")
    add_custom_command(OUTPUT "${folder}/${name}.cpp"
        ${commands}
        COMMAND Qt${CALYXCLIENT_QT}::rcc -name ${name}_translations "${folder}/${name}.qrc" -o "${folder}/${name}.cpp"
        DEPENDS ${catalogues}
        COMMENT "Translating ${name}"
        VERBATIM)
    target_sources(${target} PRIVATE "${folder}/${name}.cpp")
    set_source_files_properties("${folder}/${name}.cpp" PROPERTIES SKIP_AUTOGEN ON COMPILE_OPTIONS -w)
endfunction()

# Takes new texts of the sources into the catalogues, and those that are gone out of them. Translate with Qt's linguist.
if(CALYXCLIENT_LUPDATE AND CALYXCLIENT_TOP_LEVEL)
    set(commands "")
    foreach(part IN ITEMS calyxclient:src/lesson desk:examples/desk slate:examples/slate calyx-presenter:presenter/src)
        string(REPLACE ":" ";" part "${part}")
        list(GET part 0 name)
        list(GET part 1 sources)
        set(catalogues "")
        foreach(language IN LISTS CALYXCLIENT_LANGUAGES)
            list(APPEND catalogues translations/${name}_${language}.ts)
        endforeach()
        list(APPEND commands COMMAND "${CALYXCLIENT_LUPDATE}" -silent -no-obsolete -locations none -source-language en
            -I src -I "${PROJECT_BINARY_DIR}/include" ${sources} -ts ${catalogues})
    endforeach()
    add_custom_target(update-translations ${commands} WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" VERBATIM)
endif()
