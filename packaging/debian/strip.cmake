# Removes symbols, and the sections that only name the compiler, from the programs and libraries of
# the package. cpack runs this before it packs the files.
file(GLOB_RECURSE files LIST_DIRECTORIES OFF "${CPACK_TEMPORARY_DIRECTORY}/usr/bin/*"
  "${CPACK_TEMPORARY_DIRECTORY}/usr/lib/*.so" "${CPACK_TEMPORARY_DIRECTORY}/usr/libexec/*")
foreach(file IN LISTS files)
  execute_process(COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note "${file}"
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
