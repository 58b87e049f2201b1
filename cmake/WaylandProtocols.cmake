# valdrix_wayland_protocols(TARGET XML…): a library with what wayland-scanner makes of protocol
# descriptions. The header of NAME.xml is <wayland-protocols/NAME.h>.
function(valdrix_wayland_protocols TARGET)
  pkg_get_variable(scanner wayland-scanner wayland_scanner)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${TARGET})
  file(MAKE_DIRECTORY ${folder}/wayland-protocols)
  set(sources)
  foreach(xml IN LISTS ARGN)
    get_filename_component(name ${xml} NAME_WE)
    set(header ${folder}/wayland-protocols/${name}.h)
    set(code ${folder}/${name}.c)
    add_custom_command(OUTPUT ${header}
      COMMAND ${scanner} client-header ${xml} ${header} DEPENDS ${xml} VERBATIM)
    add_custom_command(OUTPUT ${code}
      COMMAND ${scanner} private-code ${xml} ${code} DEPENDS ${xml} VERBATIM)
    list(APPEND sources ${header} ${code})
  endforeach()
  add_library(${TARGET} STATIC ${sources})
  target_include_directories(${TARGET} SYSTEM PUBLIC ${folder})
  target_link_libraries(${TARGET} PUBLIC PkgConfig::WAYLAND)
endfunction()
