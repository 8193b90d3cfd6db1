# cpack runs this when it has installed the files of the package, and before it packs them.

# CMake creates directories with the umask of whoever builds the package.
file(CHMOD_RECURSE "${CPACK_TEMPORARY_DIRECTORY}/usr" DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# Removes symbols, and the sections that only name the compiler, from programs and libraries.
file(GLOB_RECURSE files LIST_DIRECTORIES OFF "${CPACK_TEMPORARY_DIRECTORY}/usr/bin/*"
  "${CPACK_TEMPORARY_DIRECTORY}/usr/lib/*.so" "${CPACK_TEMPORARY_DIRECTORY}/usr/libexec/*")
foreach(file IN LISTS files)
  execute_process(COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note "${file}"
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
