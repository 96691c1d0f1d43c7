# Reads what differs from one fleet of devices to the next: the devices' public keys, the seeds of
# stored passwords, the models with a comment of their own. Checks all of it, and turns it into
# generated/DeploymentData.h, which the interface target deployment_data lets others include.

set(PSTOXPJL_DEPLOYMENT "${PROJECT_SOURCE_DIR}/deployment/demo" CACHE PATH
  "Folder with the deployment.cmake to build for")
find_program(OPENSSL_PROGRAM openssl)
mark_as_advanced(OPENSSL_PROGRAM)

function(deployment_error)
  list(JOIN ARGN "" text)
  message(FATAL_ERROR "Deployment ${PSTOXPJL_DEPLOYMENT}: ${text}")
endfunction()

# deployment_openssl(<result> <argument>...): what openssl prints, or an empty text if it fails.
function(deployment_openssl result)
  execute_process(COMMAND "${OPENSSL_PROGRAM}" ${ARGN}
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_QUIET)
  if(NOT status EQUAL 0)
    set(output "")
  endif()
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

# deployment_key(<prefix> <variable> <bits>): checks the key file that <variable> names. Sets
# <prefix>_TEXT, its PEM body as lines of C string literals, and <prefix>_SHA256, the identifier by
# which a device knows its key: the fingerprint of the DER SubjectPublicKeyInfo, as C bytes.
function(deployment_key prefix variable bits)
  if("${${variable}}" STREQUAL "")
    deployment_error("${variable} is not set. It names the PEM file of the ${bits}-bit public key.")
  endif()
  cmake_path(ABSOLUTE_PATH ${variable} BASE_DIRECTORY "${PSTOXPJL_DEPLOYMENT}" OUTPUT_VARIABLE file)
  if(NOT EXISTS "${file}" OR IS_DIRECTORY "${file}")
    deployment_error("there is no key file ${file} (${variable}).")
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")

  file(READ "${file}" pem)
  if(NOT pem MATCHES "^-----BEGIN PUBLIC KEY-----")
    deployment_error("${file} does not begin with \"-----BEGIN PUBLIC KEY-----\". Make it with: "
      "openssl pkey -pubin -in <key> -pubout")
  endif()
  deployment_openssl(description pkey -pubin -in "${file}" -noout -text)
  set(der_file "${PROJECT_BINARY_DIR}/generated/${prefix}.der")
  file(REMOVE "${der_file}")
  deployment_openssl(ignored pkey -pubin -in "${file}" -pubout -outform DER -out "${der_file}")
  deployment_openssl(pem pkey -pubin -in "${file}" -pubout)
  if(description STREQUAL "" OR pem STREQUAL "" OR NOT EXISTS "${der_file}")
    deployment_error("openssl cannot read the public key in ${file}.")
  endif()
  file(READ "${der_file}" der HEX)
  # Two sequence heads, then the algorithm rsaEncryption: other kinds of keys have another one.
  if(NOT der MATCHES "^3082....300d06092a864886f70d0101010500")
    deployment_error("${file} holds no RSA key.")
  endif()
  if(NOT description MATCHES "\\(${bits} bit")
    deployment_error("the RSA key in ${file} (${variable}) has not ${bits} bits.")
  endif()

  string(REGEX REPLACE "-----[^\n]*-----\n" "" body "${pem}")
  string(REGEX REPLACE "([^\n]+)\n" "    \"\\1\\\\n\"\n" body "${body}")
  string(STRIP "${body}" body)
  file(SHA256 "${der_file}" fingerprint)
  deployment_bytes(fingerprint "${fingerprint}")
  set(${prefix}_TEXT "${body}" PARENT_SCOPE)
  set(${prefix}_SHA256 "${fingerprint}" PARENT_SCOPE)
endfunction()

# deployment_bytes(<result> <hex digits>): C initialisers, eight bytes a line.
function(deployment_bytes result hex)
  string(REGEX REPLACE "(..)" "0x\\1, " bytes "${hex}")
  string(TOLOWER "${bytes}" bytes)
  set(byte "0x[0-9a-f][0-9a-f], ")
  string(REGEX REPLACE "(${byte}${byte}${byte}${byte}${byte}${byte}${byte}0x[0-9a-f][0-9a-f],) "
    "\\1\n    " bytes "${bytes}")
  string(STRIP "${bytes}" bytes)
  set(${result} "${bytes}" PARENT_SCOPE)
endfunction()

# deployment_seed(<result> <variable> <bytes>): checks the seed, and makes C initialisers of it.
function(deployment_seed result variable bytes)
  set(hex "${${variable}}")
  if(NOT hex MATCHES "^[0-9A-Fa-f]*$")
    deployment_error("${variable} holds something else than hexadecimal digits.")
  endif()
  string(LENGTH "${hex}" digits)
  math(EXPR expected "2 * ${bytes}")
  if(NOT digits EQUAL expected)
    deployment_error("${variable} has ${digits} hexadecimal digits, but ${bytes} bytes are "
      "${expected}.")
  endif()
  deployment_bytes(initialisers "${hex}")
  set(${result} "${initialisers}" PARENT_SCOPE)
endfunction()

# deployment_models(<result> <model>...): C string literals, each with a comma behind it.
function(deployment_models result)
  set(literals "")
  foreach(model IN LISTS ARGN)
    if(model STREQUAL "" OR model MATCHES "[\r\n]")
      deployment_error("DEPLOYMENT_MODELS_WITH_COMMENT holds an empty model or a line end.")
    endif()
    string(REGEX REPLACE "([\\\"])" "\\\\\\1" model "${model}")
    string(APPEND literals "\"${model}\", ")
  endforeach()
  set(${result} "${literals}" PARENT_SCOPE)
endfunction()

function(read_deployment)
  set(settings "${PSTOXPJL_DEPLOYMENT}/deployment.cmake")
  if(NOT EXISTS "${settings}")
    deployment_error("there is no deployment.cmake in this folder.")
  endif()
  if(NOT OPENSSL_PROGRAM)
    deployment_error("the openssl program, which reads its keys, was not found. "
      "Set OPENSSL_PROGRAM to its path.")
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${settings}")
  foreach(name IN ITEMS NAME IS_DEMONSTRATION PUBLIC_KEY_2048 PUBLIC_KEY_3072 STORAGE_KEY_SEED
      STORAGE_MESSAGE_SEED STORAGE_IV MODELS_WITH_COMMENT)
    set(DEPLOYMENT_${name} "")
  endforeach()
  include("${settings}")
  file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/generated")

  if(DEPLOYMENT_NAME STREQUAL "")
    get_filename_component(folder "${PSTOXPJL_DEPLOYMENT}" REALPATH)
    cmake_path(GET folder FILENAME DEPLOYMENT_NAME)
    string(REGEX REPLACE "[^A-Za-z0-9 ._-]" "_" DEPLOYMENT_NAME "${DEPLOYMENT_NAME}")
  endif()
  if(NOT DEPLOYMENT_NAME MATCHES "^[A-Za-z0-9 ._-]+$")
    deployment_error("DEPLOYMENT_NAME \"${DEPLOYMENT_NAME}\" may hold letters, digits, blanks and "
      "._- only.")
  endif()
  set(DEMONSTRATION false)
  if(DEPLOYMENT_IS_DEMONSTRATION)
    set(DEMONSTRATION true)
  endif()
  deployment_key(KEY_2048 DEPLOYMENT_PUBLIC_KEY_2048 2048)
  deployment_key(KEY_3072 DEPLOYMENT_PUBLIC_KEY_3072 3072)
  deployment_seed(SEED1 DEPLOYMENT_STORAGE_KEY_SEED 32)
  deployment_seed(SEED2 DEPLOYMENT_STORAGE_MESSAGE_SEED 32)
  deployment_seed(SEED3 DEPLOYMENT_STORAGE_IV 16)
  deployment_models(MODELS "${DEPLOYMENT_MODELS_WITH_COMMENT}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/DeploymentData.h.in"
    "${PROJECT_BINARY_DIR}/generated/DeploymentData.h" @ONLY)

  if(DEPLOYMENT_IS_DEMONSTRATION)
    string(CONCAT notice "** This build is for the DEMONSTRATION deployment. Its keys and seeds are "
      "public:\n** no real device opens the passwords it seals, and everybody else can.\n"
      "** For real devices configure with -DPSTOXPJL_DEPLOYMENT=<folder>.")
    message(NOTICE "${notice}")
    set(PSTOXPJL_DEPLOYMENT_NOTICE "${notice}" PARENT_SCOPE)
  else()
    message(STATUS "Deployment: ${PSTOXPJL_DEPLOYMENT}")
  endif()
  set(PSTOXPJL_DEPLOYMENT_IS_DEMONSTRATION "${DEPLOYMENT_IS_DEMONSTRATION}" PARENT_SCOPE)
endfunction()

read_deployment()
add_library(deployment_data INTERFACE)
target_include_directories(deployment_data INTERFACE "${PROJECT_BINARY_DIR}/generated")
