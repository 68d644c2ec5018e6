# SPDX-License-Identifier: Apache-2.0
#
# How every target is built: the language, the warnings, what may leave a shared library, and where
# things land in the build tree.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Programs and libraries stand side by side, as they do on Windows.
set(HOUSE_BIN ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${HOUSE_BIN})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${HOUSE_BIN})
# Vendors' modules stand in the folder where the vendor list beside the library looks for them.
set(HOUSE_MODULES ${HOUSE_BIN}/DeviceDiscover/modules)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

find_package(Threads REQUIRED)
link_libraries(Threads::Threads)

# house_compile_options(OPTION...): for the compilers; that of Windows resources has none of these.
macro(house_compile_options)
    add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:${ARGN}>")
endmacro()

if(MSVC)
    house_compile_options(/W4 /WX /permissive- /utf-8 /Zc:__cplusplus)
else()
    house_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                          -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        house_compile_options(-Wmismatched-tags)
    elseif(CMAKE_UNITY_BUILD)
        # In a file made of several sources GCC takes each of them for a header.
        house_compile_options(-Wno-subobject-linkage)
    endif()
endif()
if(WIN32)
    add_compile_definitions(UNICODE _UNICODE)
endif()
if(MINGW)
    # The same sources make the same bytes.
    add_link_options(-Wl,--no-insert-timestamp)
endif()
if(DEVICEDISCOVER_SANITIZE)
    # The end of a cancelled thread reaches its handler as a reference to nothing; a pointer to nothing
    # that is used crashes anyway.
    house_compile_options(-fsanitize=${DEVICEDISCOVER_SANITIZE} -fno-sanitize=null
                          -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${DEVICEDISCOVER_SANITIZE})
endif()

# house_description(TARGET TEXT): what Windows says about the file, beside its version.
function(house_description version_target version_description)
    if(NOT WIN32)
        return()
    endif()
    get_target_property(kind ${version_target} TYPE)
    if(kind STREQUAL "EXECUTABLE")
        set(version_type VFT_APP)
        set(version_suffix .exe)
    else()
        set(version_type VFT_DLL)
        set(version_suffix .dll)
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${version_target}.rc @ONLY)
    target_sources(${version_target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${version_target}.rc)
endfunction()

# house_shared_library(TARGET BUILDING MACRO [DESCRIPTION TEXT]): a library that others find by its plain name.
function(house_shared_library target)
    cmake_parse_arguments(ARG "" "BUILDING;DESCRIPTION" "" ${ARGN})
    target_compile_definitions(${target} PRIVATE ${ARG_BUILDING})
    set_target_properties(${target} PROPERTIES DEFINE_SYMBOL "")
    if(ARG_DESCRIPTION)
        house_description(${target} "${ARG_DESCRIPTION}")
    endif()
    if(WIN32)
        set_target_properties(${target} PROPERTIES PREFIX "")
    else()
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
    if(DEVICEDISCOVER_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # Clang leaves the sanitizer's run-time to the program.
        get_target_property(options ${target} LINK_OPTIONS)
        list(REMOVE_ITEM options -Wl,--no-undefined)
        set_target_properties(${target} PROPERTIES LINK_OPTIONS "${options}")
    endif()
endfunction()

# house_public_headers(TARGET): who links to TARGET includes the interface and the platform headers.
function(house_public_headers target)
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/devicediscover>)
endfunction()

# house_vendor_module(TARGET): a module that a vendor list can name. It sees the vendors' headers only.
function(house_vendor_module target)
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/include)
    set_target_properties(${target} PROPERTIES PREFIX "" DEFINE_SYMBOL ""
        LIBRARY_OUTPUT_DIRECTORY ${HOUSE_MODULES} RUNTIME_OUTPUT_DIRECTORY ${HOUSE_MODULES})
endfunction()
