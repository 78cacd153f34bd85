# Adds the members of the archive FROM to the archive INTO: cmake -DAR= -DINTO= -DFROM= -P
get_filename_component(directory ${INTO} DIRECTORY)
get_filename_component(name ${INTO} NAME)
# The script language of ar takes no path with special characters, hence the copies; and that of
# LLVM's ar cannot open an archive, hence a new one.
file(RENAME ${INTO} ${directory}/merged_into.a)
file(COPY_FILE ${FROM} ${directory}/merged_in.a)
file(WRITE ${directory}/merge.mri
  "CREATE ${name}\nADDLIB merged_into.a\nADDLIB merged_in.a\nSAVE\nEND\n")
execute_process(COMMAND ${AR} -M INPUT_FILE ${directory}/merge.mri
  WORKING_DIRECTORY ${directory} RESULT_VARIABLE result)
file(REMOVE ${directory}/merged_into.a ${directory}/merged_in.a ${directory}/merge.mri)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "merging ${FROM} into ${INTO} failed")
endif()
