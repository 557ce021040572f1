# What `cmake --install` lays out beside the headers (see CalyxClientForwardingHeaders.cmake), and the packages through
# which hosts find the library: CMake (also from this build tree), pkg-config and qmake. None holds an absolute path.

include(CMakePackageConfigHelpers)

set(CALYXCLIENT_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/${CALYXCLIENT_PACKAGE}")
set(CALYXCLIENT_PC_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(CALYXCLIENT_PRI_DIR "${CMAKE_INSTALL_LIBDIR}/qmake")
set(CALYXCLIENT_PACKAGE_BUILD_DIR "${PROJECT_BINARY_DIR}/package")

# Who links the static library links what it is made of.
if(BUILD_SHARED_LIBS)
    set(CALYXCLIENT_EXPORTED calyxclient)
    set(CALYXCLIENT_LINK "-l${CALYXCLIENT_LIBRARY}")
    set(CALYXCLIENT_PC_STATIC_REQUIRES "")
    set(CALYXCLIENT_PRI_STATIC_LINK "")
else()
    set(CALYXCLIENT_EXPORTED calyxclient LzmaSdk)
    set(CALYXCLIENT_LINK "-l${CALYXCLIENT_LIBRARY} -l${CALYXCLIENT_LIBRARY}-lzma")
    set(CALYXCLIENT_PC_STATIC_REQUIRES " zlib")
    set(CALYXCLIENT_PRI_STATIC_LINK " -lz")
endif()

# The installed host finds the library beside it, wherever both have been moved to.
if(TARGET calyx-presenter AND BUILD_SHARED_LIBS AND UNIX AND NOT APPLE)
    file(RELATIVE_PATH way "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(calyx-presenter PROPERTIES INSTALL_RPATH "$ORIGIN/${way}")
endif()

# calyxclient_path_to_prefix(<variable> <installed folder>): the way back, as in ../..
function(calyxclient_path_to_prefix variable folder)
    file(RELATIVE_PATH path "/${folder}" "/")
    string(REGEX REPLACE "/$" "" path "${path}")
    set(${variable} "${path}" PARENT_SCOPE)
endfunction()

calyxclient_path_to_prefix(CALYXCLIENT_PC_PREFIX "${CALYXCLIENT_PC_DIR}")
calyxclient_path_to_prefix(CALYXCLIENT_PRI_PREFIX "${CALYXCLIENT_PRI_DIR}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/calyxclient.pc.in" "${CALYXCLIENT_PACKAGE_BUILD_DIR}/${CALYXCLIENT_LIBRARY}.pc" @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/cmake/calyxclient.pri.in" "${CALYXCLIENT_PACKAGE_BUILD_DIR}/${CALYXCLIENT_LIBRARY}.pri" @ONLY)

# The installed config, and the one of the build tree.
set(CALYXCLIENT_PRESENTER_PATH "${CMAKE_INSTALL_BINDIR}/calyx-presenter${CMAKE_EXECUTABLE_SUFFIX}")
set(CALYXCLIENT_CLASSROOM_PATH "${CMAKE_INSTALL_BINDIR}/calyx-classroom")
set(CALYXCLIENT_QML_PATH "${CALYXCLIENT_QML_DIR}")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/CalyxClientConfig.cmake.in"
    "${CALYXCLIENT_PACKAGE_BUILD_DIR}/${CALYXCLIENT_PACKAGE}Config.cmake"
    INSTALL_DESTINATION "${CALYXCLIENT_CMAKE_DIR}"
    PATH_VARS CALYXCLIENT_PRESENTER_PATH CALYXCLIENT_CLASSROOM_PATH CALYXCLIENT_QML_PATH)
set(CALYXCLIENT_PRESENTER_PATH "presenter/calyx-presenter${CMAKE_EXECUTABLE_SUFFIX}")
set(CALYXCLIENT_CLASSROOM_PATH "classroom/calyx-classroom")
set(CALYXCLIENT_QML_PATH "qml")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/CalyxClientConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/${CALYXCLIENT_PACKAGE}Config.cmake"
    INSTALL_PREFIX "${PROJECT_BINARY_DIR}" INSTALL_DESTINATION "."
    PATH_VARS CALYXCLIENT_PRESENTER_PATH CALYXCLIENT_CLASSROOM_PATH CALYXCLIENT_QML_PATH)
math(EXPR CALYXCLIENT_POINTER_BITS "8 * ${CMAKE_SIZEOF_VOID_P}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/CalyxClientConfigVersion.cmake.in"
    "${PROJECT_BINARY_DIR}/${CALYXCLIENT_PACKAGE}ConfigVersion.cmake" @ONLY)

install(TARGETS ${CALYXCLIENT_EXPORTED} EXPORT ${CALYXCLIENT_PACKAGE}Targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Development)
install(EXPORT ${CALYXCLIENT_PACKAGE}Targets NAMESPACE CalyxClient:: DESTINATION "${CALYXCLIENT_CMAKE_DIR}"
    COMPONENT Development)
export(EXPORT ${CALYXCLIENT_PACKAGE}Targets NAMESPACE CalyxClient:: FILE "${PROJECT_BINARY_DIR}/${CALYXCLIENT_PACKAGE}Targets.cmake")
install(FILES "${CALYXCLIENT_PACKAGE_BUILD_DIR}/${CALYXCLIENT_PACKAGE}Config.cmake" "${PROJECT_BINARY_DIR}/${CALYXCLIENT_PACKAGE}ConfigVersion.cmake"
    DESTINATION "${CALYXCLIENT_CMAKE_DIR}" COMPONENT Development)
install(FILES "${CALYXCLIENT_PACKAGE_BUILD_DIR}/${CALYXCLIENT_LIBRARY}.pc" DESTINATION "${CALYXCLIENT_PC_DIR}" COMPONENT Development)
install(FILES "${CALYXCLIENT_PACKAGE_BUILD_DIR}/${CALYXCLIENT_LIBRARY}.pri" DESTINATION "${CALYXCLIENT_PRI_DIR}"
    COMPONENT Development)
install(FILES "${PROJECT_BINARY_DIR}/include/CalyxClient/calyxclient_export.h"
    "${PROJECT_BINARY_DIR}/include/CalyxClient/calyxclient_version.h"
    DESTINATION "${CALYXCLIENT_INCLUDE_DIR}/CalyxClient" COMPONENT Development)
