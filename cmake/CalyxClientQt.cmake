# Which Qt the library is built with, and what the build for either is called. Both can be installed side by side.

set(CALYXCLIENT_QT 5 CACHE STRING "Major version of Qt to build with: 5 or 6")
set_property(CACHE CALYXCLIENT_QT PROPERTY STRINGS 5 6)

if(CALYXCLIENT_QT EQUAL 5)
    set(CALYXCLIENT_QT_VERSION 5.15)
    set(CALYXCLIENT_PACKAGE CalyxClient)
    set(CALYXCLIENT_OTHER_QT 6)
    set(CALYXCLIENT_OTHER_PACKAGE CalyxClientQt6)
    set(CALYXCLIENT_LIBRARY calyxclient)
    set(CALYXCLIENT_INCLUDE_DIR "${CMAKE_INSTALL_INCLUDEDIR}")
elseif(CALYXCLIENT_QT EQUAL 6)
    set(CALYXCLIENT_QT_VERSION 6.4)
    set(CALYXCLIENT_PACKAGE CalyxClientQt6)
    set(CALYXCLIENT_OTHER_QT 5)
    set(CALYXCLIENT_OTHER_PACKAGE CalyxClient)
    set(CALYXCLIENT_LIBRARY calyxclient-qt6)
    # A folder of its own: neither package owns the other's headers.
    set(CALYXCLIENT_INCLUDE_DIR "${CMAKE_INSTALL_INCLUDEDIR}/calyxclient-qt6")
else()
    message(FATAL_ERROR "CALYXCLIENT_QT is \"${CALYXCLIENT_QT}\". It is 5 or 6.")
endif()

# calyxclient_find_qt(<component>...)
macro(calyxclient_find_qt)
    find_package(Qt${CALYXCLIENT_QT} ${CALYXCLIENT_QT_VERSION} REQUIRED COMPONENTS ${ARGN})
endmacro()
