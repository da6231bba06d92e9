# add_template_package(<target> <folder> <zip>)
#
# Zips a template package folder into <zip>, entries named relative to the
# folder so that control.xml stands at the root of the zip. The folder's
# notes and git attributes are not part of the package.
function(add_template_package target folder zip)
  file(GLOB_RECURSE entries CONFIGURE_DEPENDS RELATIVE ${folder} ${folder}/*)
  list(REMOVE_ITEM entries README.md .gitattributes)
  list(TRANSFORM entries PREPEND ${folder}/ OUTPUT_VARIABLE files)
  get_filename_component(name ${folder} NAME)
  add_custom_command(
    OUTPUT ${zip}
    COMMAND ${CMAKE_COMMAND} -E tar cf ${zip} --format=zip ${entries}
    WORKING_DIRECTORY ${folder}
    DEPENDS ${files}
    COMMENT "Zipping the template package ${name}"
    VERBATIM)
  add_custom_target(${target} ALL DEPENDS ${zip})
endfunction()
