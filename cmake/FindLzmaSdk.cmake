# Finds the sources of the LZMA SDK and compiles the encoder and the decoder into the static library
# LzmaSdk::LzmaSdk. Debian's lzma-dev puts them under include/lzma; another tree is named with LZMA_SDK_ROOT.

find_path(LZMA_SDK_DIR NAMES LzmaEnc.c LzmaDec.c
    HINTS "${LZMA_SDK_ROOT}" "$ENV{LZMA_SDK_ROOT}"
    PATH_SUFFIXES lzma C)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LzmaSdk REQUIRED_VARS LZMA_SDK_DIR
    REASON_FAILURE_MESSAGE "Install lzma-dev, or set LZMA_SDK_ROOT to a folder that holds LzmaEnc.c")

if(LzmaSdk_FOUND AND NOT TARGET LzmaSdk)
    add_library(LzmaSdk STATIC
        "${LZMA_SDK_DIR}/LzFind.c" "${LZMA_SDK_DIR}/LzmaDec.c" "${LZMA_SDK_DIR}/LzmaEnc.c")
    add_library(LzmaSdk::LzmaSdk ALIAS LzmaSdk)
    # The match finder of the multi-threaded encoder is neither shipped there nor wanted here.
    target_compile_definitions(LzmaSdk PRIVATE _7ZIP_ST)
    target_include_directories(LzmaSdk PRIVATE "${LZMA_SDK_DIR}")
    target_include_directories(LzmaSdk SYSTEM INTERFACE "$<BUILD_INTERFACE:${LZMA_SDK_DIR}>")
    set_target_properties(LzmaSdk PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        C_VISIBILITY_PRESET hidden
        C_STANDARD 11
        OUTPUT_NAME ${CALYXCLIENT_LIBRARY}-lzma)
endif()
