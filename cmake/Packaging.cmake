# SPDX-License-Identifier: Apache-2.0
#
# Installing the library with its application libraries, and finding it from another project:
#
#     find_package(DeviceDiscover REQUIRED)
#     target_link_libraries(app PRIVATE DeviceDiscover::DeviceDiscover)

include(CMakePackageConfigHelpers)

set(PACKAGE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/DeviceDiscover)
set(HEADER_FOLDER ${CMAKE_INSTALL_INCLUDEDIR}/devicediscover)

install(TARGETS DeviceDiscover LogHelper PrinterAdapter PrinterDiscoverAPI PrinterUtil
    EXPORT DeviceDiscoverTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/DeviceDiscover include/VendorSdk platform
    DESTINATION ${HEADER_FOLDER} FILES_MATCHING PATTERN "*.h"
    PATTERN os_calls.h EXCLUDE PATTERN process_end.h EXCLUDE)
# How an application chooses its vendor list and its log, and learns why no ping could be sent, with the
# application libraries of this package.
install(FILES host/LogHelper/log_settings.h DESTINATION ${HEADER_FOLDER}/host/LogHelper)
install(FILES host/PrinterDiscoverAPI/ping_report.h
    DESTINATION ${HEADER_FOLDER}/host/PrinterDiscoverAPI)
install(FILES host/PrinterUtil/vendor_list.h DESTINATION ${HEADER_FOLDER}/host/PrinterUtil)
install(EXPORT DeviceDiscoverTargets NAMESPACE DeviceDiscover:: DESTINATION ${PACKAGE_FOLDER})
configure_package_config_file(cmake/DeviceDiscoverConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfig.cmake INSTALL_DESTINATION ${PACKAGE_FOLDER})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/DeviceDiscoverConfigVersion.cmake
    DESTINATION ${PACKAGE_FOLDER})
# Our licence, and those of the software of others that is a part of what is installed.
install(FILES LICENSE NOTICE docs/third-party.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

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
    install(FILES ${stripped_libraries} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
