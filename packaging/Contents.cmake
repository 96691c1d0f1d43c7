# What is told of a release: the date and version of its change log, and the SPDX file of what is built
# into the programs, with the versions that this configuration has found.

set(epoch "$ENV{SOURCE_DATE_EPOCH}")  # the packager's, empty when there is none
set(ENV{SOURCE_DATE_EPOCH} ${PSTOXPJL_RELEASED})
string(TIMESTAMP released_iso "%Y-%m-%dT%H:%M:%SZ" UTC)
string(TIMESTAMP released_mail "%a, %d %b %Y %H:%M:%S +0000" UTC)
if(epoch STREQUAL "")
  unset(ENV{SOURCE_DATE_EPOCH})
else()
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})
endif()
configure_file(packaging/debian/changelog.in "${PROJECT_BINARY_DIR}/changelog.Debian" @ONLY)

# spdx_part(<name> <version> <license> <relationship> <comment>)
set(parts "")
function(spdx_part name version license relationship comment)
  if(version STREQUAL "")
    set(version NOASSERTION)
  endif()
  string(APPEND parts "PackageName: ${name}\nSPDXID: SPDXRef-${name}\nPackageVersion: ${version}\n"
    "PackageDownloadLocation: NOASSERTION\nFilesAnalyzed: false\nPackageLicenseConcluded: ${license}\n"
    "PackageLicenseDeclared: ${license}\nPackageCopyrightText: NOASSERTION\n"
    "PackageComment: <text>${comment}</text>\n"
    "Relationship: SPDXRef-pstoxpjl ${relationship} SPDXRef-${name}\n\n")
  set(parts "${parts}" PARENT_SCOPE)
endfunction()

set(crypto DYNAMIC_LINK)
if(APPLE)
  set(crypto STATIC_LINK)
endif()
set(compiler "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
spdx_part(openssl "${OPENSSL_VERSION}" Apache-2.0 ${crypto} "libcrypto, in all programs")
spdx_part(cups "${CUPS_VERSION}" Apache-2.0 DYNAMIC_LINK "libcups, in all programs")
spdx_part(utfcpp "${utf8cpp_VERSION}" BSL-1.0 STATIC_LINK "headers, in all programs")
spdx_part(cli11 "${CLI11_VERSION}" BSD-3-Clause STATIC_LINK "headers, in the tools")
spdx_part(nlohmann-json "${nlohmann_json_VERSION}" MIT STATIC_LINK "headers, in xpjl-inspect")
if(NOT APPLE)
  spdx_part(libstdcxx "${CMAKE_CXX_COMPILER_VERSION}" "GPL-3.0-or-later WITH GCC-exception-3.1"
    STATIC_LINK "C++ library of ${compiler}, in the filters; loaded by the tools")
endif()
string(STRIP "${parts}" parts)
configure_file(packaging/pstoxpjl.spdx.in "${PROJECT_BINARY_DIR}/pstoxpjl.spdx" @ONLY)
