# SPDX-License-Identifier: Apache-2.0
#
# What is installed, and how another project finds it:
#
#     find_package(DeviceDiscover REQUIRED)                         or: pkg-config devicediscover
#     target_link_libraries(app PRIVATE DeviceDiscover::DeviceDiscover)
#
#     find_package(DeviceDiscover REQUIRED COMPONENTS VendorSdk)    or: pkg-config devicediscover-vendor-sdk
#     target_link_libraries(module PRIVATE DeviceDiscover::VendorSdk)
#
# `cmake --install BUILD --component NAME` installs one part:
#
#     Runtime      the libraries, as a program needs them
#     Application  devicediscover, and on Linux the module for standard printers with its vendor list
#     Sdk          what an application is built with, besides VendorSdk
#     VendorSdk    what a vendor's module is built with

include(CMakePackageConfigHelpers)

set(PACKAGE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/DeviceDiscover)
set(PKG_CONFIG_FOLDER ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(HEADER_FOLDER ${CMAKE_INSTALL_INCLUDEDIR}/devicediscover)

add_library(VendorSdk INTERFACE)
add_library(DeviceDiscover::VendorSdk ALIAS VendorSdk)
target_compile_features(VendorSdk INTERFACE cxx_std_17)
target_include_directories(VendorSdk INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${HEADER_FOLDER}>)

install(TARGETS DeviceDiscover LogHelper PrinterAdapter PrinterDiscoverAPI PrinterUtil
    EXPORT DeviceDiscoverSdkTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Sdk
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Sdk)
install(TARGETS VendorSdk EXPORT DeviceDiscoverVendorSdkTargets)

# install_headers(COMPONENT FOLDER...)
function(install_headers component)
    install(DIRECTORY ${ARGN} DESTINATION ${HEADER_FOLDER} COMPONENT ${component}
        FILES_MATCHING PATTERN "*.h" PATTERN os_calls.h EXCLUDE PATTERN process_end.h EXCLUDE)
endfunction()
install_headers(VendorSdk include/VendorSdk)
install_headers(Sdk include/DeviceDiscover platform)
# How an application chooses its vendor list and its log, and learns why no ping could be sent, with the
# application libraries of this package.
foreach(header LogHelper/log_settings.h PrinterDiscoverAPI/ping_report.h PrinterUtil/vendor_list.h)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES host/${header} DESTINATION ${HEADER_FOLDER}/host/${folder} COMPONENT Sdk)
endforeach()

foreach(component Sdk VendorSdk)
    install(EXPORT DeviceDiscover${component}Targets NAMESPACE DeviceDiscover::
        DESTINATION ${PACKAGE_FOLDER} COMPONENT ${component})
endforeach()
configure_package_config_file(cmake/DeviceDiscoverConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfig.cmake INSTALL_DESTINATION ${PACKAGE_FOLDER})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfigVersion.cmake
    DESTINATION ${PACKAGE_FOLDER} COMPONENT VendorSdk)

# The files say where the package is as seen from themselves, so that it may be moved.
file(RELATIVE_PATH package_to_prefix /${PKG_CONFIG_FOLDER} /)
string(REGEX REPLACE "/$" "" package_to_prefix "${package_to_prefix}")
configure_file(cmake/devicediscover.pc.in devicediscover.pc @ONLY)
configure_file(cmake/devicediscover-vendor-sdk.pc.in devicediscover-vendor-sdk.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/devicediscover.pc
    DESTINATION ${PKG_CONFIG_FOLDER} COMPONENT Sdk)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/devicediscover-vendor-sdk.pc
    DESTINATION ${PKG_CONFIG_FOLDER} COMPONENT VendorSdk)

# Our licence, and those of the software of others that is a part of what is installed.
install(FILES LICENSE NOTICE docs/third-party.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Runtime)

# A Windows program finds the libraries of the compiler's run-time beside itself or nowhere. They
# are installed without their symbols, which are most of their size.
if(MINGW)
    set(stripped_libraries "")
    foreach(name libgcc_s_seh-1.dll libssp-0.dll libstdc++-6.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE library OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT EXISTS ${library})
            message(FATAL_ERROR "The compiler does not say where its ${name} is")
        endif()
        set(stripped ${CMAKE_BINARY_DIR}/runtime/${name})
        add_custom_command(OUTPUT ${stripped}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/runtime
            COMMAND ${CMAKE_STRIP} -o ${stripped} ${library}
            DEPENDS ${library} VERBATIM)
        list(APPEND stripped_libraries ${stripped})
    endforeach()
    add_custom_target(runtime_libraries ALL DEPENDS ${stripped_libraries})
    install(FILES ${stripped_libraries} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)
endif()
