# SPDX-License-Identifier: BSD-3-Clause
# Linker version script from the ABI manifest: an anonymous node, so the exported
# symbols stay unversioned; everything not listed is local.
function(kroj_generate_version_script manifest out)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${manifest})
  file(STRINGS ${manifest} lines)
  set(body "{\n  global:\n")
  foreach(line IN LISTS lines)
    if(line MATCHES "^#" OR line STREQUAL "")
      continue()
    endif()
    string(REGEX REPLACE "\t.*$" "" name "${line}")
    string(APPEND body "    ${name};\n")
  endforeach()
  string(APPEND body "  local:\n    *;\n};\n")
  file(WRITE ${out}.tmp "${body}")
  configure_file(${out}.tmp ${out} COPYONLY)
endfunction()
