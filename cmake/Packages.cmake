# SPDX-License-Identifier: Apache-2.0
#
# What scripts/package makes, with CPack: Debian packages, one for each part of the installation, and for
# Windows an archive and an installer that hold all of it.

set(CPACK_PACKAGE_NAME DeviceDiscover)
set(CPACK_PACKAGE_VENDOR "The DeviceDiscover authors")
set(CPACK_PACKAGE_CONTACT "The DeviceDiscover authors <devicediscover@users.noreply.invalid>")
# Each Debian package has a summary of its own, which CPack would put after this one.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_OUTPUT_FILE_PREFIX ${CMAKE_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL Runtime Application Sdk VendorSdk)

find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(our_libraries DeviceDiscover LogHelper PrinterAdapter PrinterDiscoverAPI PrinterUtil)
set(library_files "")
foreach(library IN LISTS our_libraries)
    list(APPEND library_files $<TARGET_FILE:${library}>)
endforeach()

# bill_of_materials(COMPONENT PACKAGE ARGUMENT...): is written when the component is installed, from what is
# there then.
function(bill_of_materials component package)
    set(bill ${CMAKE_BINARY_DIR}/${package}.spdx.json)
    list(TRANSFORM ARGN REPLACE "(.+)" "\"\\1\"" OUTPUT_VARIABLE arguments)
    list(JOIN arguments " " arguments)
    install(CODE "execute_process(COMMAND \"${Python3_EXECUTABLE}\" \"${PROJECT_SOURCE_DIR}/cmake/sbom.py\"
        --name ${package} --version ${PROJECT_VERSION} --build \"${CMAKE_BINARY_DIR}\" --output \"${bill}\"
        ${arguments} COMMAND_ERROR_IS_FATAL ANY)" COMPONENT ${component})
    install(FILES ${bill} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endfunction()

if(WIN32)
    set(CPACK_GENERATOR ZIP NSIS)
    set(CPACK_PACKAGE_FILE_NAME DeviceDiscover-${PROJECT_VERSION}-win64)
    set(CPACK_MODULE_PATH ${PROJECT_SOURCE_DIR}/cmake/package)
    set(CPACK_MONOLITHIC_INSTALL ON)
    bill_of_materials(Runtime DeviceDiscover --binaries ${library_files} $<TARGET_FILE:devicediscover>
        --own ${library_files} --dlls ${stripped_libraries})
    include(CPack)
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${HOUSE_BIN})
set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
get_target_property(abi DeviceDiscover SOVERSION)
string(TIMESTAMP today "%a, %d %b %Y %H:%M:%S +0000" UTC)

# debian_package(COMPONENT NAME SECTION DEPENDS SUMMARY TEXT): what the component is as a package.
macro(debian_package component name section depends summary text)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${text}")
    set(package_of_${component} ${name})
    set(folder ${CMAKE_BINARY_DIR}/debian/${name})
    configure_file(cmake/package/changelog.in ${folder}/changelog @ONLY)
    configure_file(cmake/package/copyright.in ${folder}/copyright @ONLY)
    # -n: without a time.
    execute_process(COMMAND gzip -9nc ${folder}/changelog OUTPUT_FILE ${folder}/changelog.Debian.gz
        COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${folder}/changelog.Debian.gz ${folder}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endmacro()

set(library_package libdevicediscover${abi})
debian_package(Runtime ${library_package} libs ""
    "broker library that finds printers through vendors' modules"
    "DeviceDiscover finds printers and puts them on a network through the modules
of the printers' vendors. This package has the library, and the four libraries
that it stands on.")
debian_package(Application devicediscover utils "${library_package} ${same_version}"
    "finds printers and puts them on a network"
    "DeviceDiscover finds printers and puts them on a network through the modules
of the printers' vendors. This package has the command-line program, and the
module for printers that need no driver.")
debian_package(VendorSdk devicediscover-vendor-sdk libdevel ""
    "headers for vendor modules of DeviceDiscover"
    "DeviceDiscover finds printers and puts them on a network through the modules
of the printers' vendors. This package has what such a module is built with.")
debian_package(Sdk libdevicediscover-dev libdevel
    "${library_package} ${same_version}, devicediscover-vendor-sdk ${same_version}"
    "headers for programs that use DeviceDiscover"
    "DeviceDiscover finds printers and puts them on a network through the modules
of the printers' vendors. This package has what programs that use the library
are built with.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# CPack makes neither for one package alone.
set(folder ${CMAKE_BINARY_DIR}/debian/${library_package})
file(WRITE ${folder}/shlibs "libDeviceDiscover ${abi} ${library_package} (>= ${PROJECT_VERSION})\n")
file(WRITE ${folder}/triggers "activate-noawait ldconfig\n")
file(CHMOD ${folder}/shlibs ${folder}/triggers PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${folder}/shlibs ${folder}/triggers)
set(CPACK_DEBIAN_APPLICATION_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_APPLICATION_PACKAGE_RECOMMENDS "avahi-daemon")
set(CPACK_DEBIAN_APPLICATION_PACKAGE_SUGGESTS "cups-daemon, ipp-usb, network-manager")

install(FILES docs/third-party.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/devicediscover COMPONENT Application)
bill_of_materials(Runtime ${library_package} --binaries ${library_files} --own ${library_files})
bill_of_materials(Application devicediscover --own ${library_files}
    --binaries $<TARGET_FILE:devicediscover> $<TARGET_FILE:driverless> $<TARGET_FILE:driverless_scan>)
bill_of_materials(Sdk libdevicediscover-dev)
bill_of_materials(VendorSdk devicediscover-vendor-sdk)
include(CPack)
