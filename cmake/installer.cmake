# The two deliveries of the fourteen programs, made by every build of the
# windows preset: the setup program and the portable zip, both in dist/ and
# both named with the delivery's version (tools/variants.py product-version).
execute_process(
  COMMAND python3 ${CMAKE_SOURCE_DIR}/tools/variants.py product-version
  OUTPUT_VARIABLE KELVO_PRODUCT_VERSION
  OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
set(KELVO_DIST ${CMAKE_BINARY_DIR}/dist)
set(KELVO_SETUP_FILE ${KELVO_DIST}/KelvoLum-${KELVO_PRODUCT_VERSION}-setup.exe)
set(KELVO_PORTABLE_FILE ${KELVO_DIST}/KelvoLum-${KELVO_PRODUCT_VERSION}-portable.zip)

find_program(KELVO_MAKENSIS makensis)
if(NOT KELVO_MAKENSIS)
  message(WARNING "makensis not found (Debian package nsis, see tools/setup_packages.sh): "
                  "no setup program and no portable zip")
  return()
endif()

set(KELVO_PROGRAM_FILES)
foreach(target IN LISTS KELVO_PROGRAM_TARGETS)
  list(APPEND KELVO_PROGRAM_FILES $<TARGET_FILE:${target}>)
endforeach()
add_custom_command(
  OUTPUT ${KELVO_SETUP_FILE} ${KELVO_PORTABLE_FILE}
  COMMAND python3 ${CMAKE_SOURCE_DIR}/tools/make_installer.py
          --bin ${CMAKE_BINARY_DIR}/bin --icon ${KELVO_GENERATED_RES}/kelvo.ico
          --work ${KELVO_DIST}/work --makensis ${KELVO_MAKENSIS}
          --installer ${KELVO_SETUP_FILE} --zip ${KELVO_PORTABLE_FILE}
  DEPENDS ${KELVO_PROGRAM_FILES} ${KELVO_GENERATED_RES}/kelvo.ico
          ${CMAKE_SOURCE_DIR}/tools/make_installer.py ${CMAKE_SOURCE_DIR}/tools/variants.py
          ${CMAKE_SOURCE_DIR}/tools/installer/kelvo.nsi ${CMAKE_SOURCE_DIR}/src/core/variants.def
  COMMENT "Making the setup program and the portable zip"
  VERBATIM)
add_custom_target(installer ALL DEPENDS ${KELVO_SETUP_FILE} ${KELVO_PORTABLE_FILE})
add_dependencies(installer ${KELVO_PROGRAM_TARGETS} kelvo_generated_res)
