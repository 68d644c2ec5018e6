# SPDX-License-Identifier: Apache-2.0
#
# What makes a mistake hard to exploit, in everything that users run: guarded stacks, checked copies, no
# address known beforehand, no table that can be written to after the start, nothing writable that runs.
# tests/hardening/check_hardening.py looks for it in what was built.

if(MSVC)
    house_compile_options(/GS /guard:cf)
    add_link_options(/guard:cf /DYNAMICBASE /NXCOMPAT)
    return()
endif()
# The sanitizers check more, and do not know all of this.
if(DEVICEDISCOVER_SANITIZE)
    return()
endif()

house_compile_options(-fstack-protector-strong)
# Checked copies need an optimiser.
if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
    house_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
if(WIN32)
    # MinGW-w64's C library has no guard: the option brings the library that has it.
    add_link_options(-fstack-protector-strong -Wl,--dynamicbase,--nxcompat,--high-entropy-va)
    return()
endif()

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
house_compile_options(-fstack-clash-protection)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i.86)$")
    house_compile_options(-fcf-protection)
endif()
add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
