# SPDX-License-Identifier: Apache-2.0
#
# The packages that the application libraries and the application stand on. The broker needs none.
#
# On Linux they are Debian's packages. The Windows build uses their header-only side from the same
# packages: each library's own folder is linked into the build tree, since the whole of the host's
# include folder would hide the Windows headers.

if(CMAKE_CROSSCOMPILING)
    function(borrow_headers target folder)
        find_path(${target}_includes NAMES ${folder} PATHS /usr/include
                  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
        file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/borrowed/${folder})
        file(CREATE_LINK ${${target}_includes}/${folder} ${CMAKE_BINARY_DIR}/borrowed/${folder}/${folder}
             SYMBOLIC)
        add_library(${target} INTERFACE IMPORTED)
        target_include_directories(${target} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/borrowed/${folder})
    endfunction()
    borrow_headers(fmt::fmt-header-only fmt)
    target_compile_definitions(fmt::fmt-header-only INTERFACE FMT_HEADER_ONLY=1)
    borrow_headers(spdlog::spdlog_header_only spdlog)
    target_compile_definitions(spdlog::spdlog_header_only INTERFACE SPDLOG_FMT_EXTERNAL)
    target_link_libraries(spdlog::spdlog_header_only INTERFACE fmt::fmt-header-only)
    borrow_headers(nlohmann_json::nlohmann_json nlohmann)
    borrow_headers(CLI11::CLI11 CLI)
else()
    find_package(fmt REQUIRED)
    find_package(spdlog REQUIRED)
    find_package(nlohmann_json REQUIRED)
    find_package(CLI11 REQUIRED)
endif()
